#include "Usage.h"

namespace marlet::tool
{

namespace
{

/// Text as roff takes it: a backslash, and a point or an apostrophe at the start of a line, mean something
/// there.
std::string Roff(const std::string &text)
{
    std::string roff;
    for (const char c : text) {
        const bool startsLine = roff.empty() || roff.back() == '\n';
        if (startsLine && (c == '.' || c == '\''))
            roff += "\\&";
        if (c == '\\')
            roff += "\\e";
        else if (c == '-')
            roff += "\\-";
        else
            roff += c;
    }
    return roff;
}

std::string Paragraph(const std::string &bold, const std::string &text)
{
    return ".TP\n.B " + Roff(bold) + "\n" + Roff(text) + "\n";
}

/// The lines of a synopsis as one.
std::string Joined(std::string synopsis)
{
    for (char &c : synopsis)
        if (c == '\n')
            c = ' ';
    return synopsis;
}

} // namespace

std::string ManPage()
{
    std::string page =
        ".TH MARLET 1 \"\" \"" + Roff(VersionLine().substr(0, VersionLine().size() - 1)) +
        "\" \"User Commands\"\n"
        ".SH NAME\nmarlet \\- look at and work on projects of video compositing and editing\n"
        ".SH SYNOPSIS\n.B marlet\nCOMMAND ...\n.br\n.B marlet help\n[COMMAND]\n.br\n.B marlet \\-\\-version\n"
        ".SH DESCRIPTION\nMarlet projects are XML files. A file is never changed in place unless a "
        "command is told to write to it, and written as a whole or not at all.\n"
        ".SH COMMANDS\n";
    for (const CommandSpec *command : Commands()) {
        page += ".SS " + Roff(command->name + " " + Joined(command->synopsis)) + "\n" +
                Roff(command->summary) + ".\n";
        for (const OptionSpec &option : command->options)
            page += Paragraph(option.name + (option.placeholder.empty() ? "" : " " + option.placeholder),
                              option.help);
        if (!command->example.empty())
            page += ".PP\nExample:\n.IP\n.B marlet " + Roff(command->example) + "\n";
    }
    page +=
        ".SH COLOURS\n.BR \\-\\-color=always , .B \\-\\-color=never\nand, as without,\n.B \\-\\-color=auto\n"
        "with any command say whether findings, differences and failures have colours. Auto is on a "
        "terminal, "
        "unless NO_COLOR is set.\n";
    return page + ".SH EXIT STATUS\n0 if all went well, 1 if something failed or a command that looks for "
                  "faults found one, 2 if the words of the call make no sense.\n";
}

} // namespace marlet::tool
