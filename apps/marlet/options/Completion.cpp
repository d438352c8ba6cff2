#include "Usage.h"

#include "output/Failure.h"

namespace marlet::tool
{

namespace
{

std::string Options(const CommandSpec &command)
{
    std::string words;
    for (const OptionSpec &option : command.options)
        words += option.name + " ";
    return words + "--help";
}

std::string BashCompletion()
{
    std::string names;
    std::string cases;
    for (const CommandSpec *command : Commands()) {
        names += command->name + " ";
        cases += "        " + command->name + ") words='" + Options(*command) + "' ;;\n";
    }
    return "# bash completion for marlet\n"
           "_marlet() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} words=\n"
           "    if ((COMP_CWORD == 1)) || [[ ${COMP_WORDS[1]} == help && $COMP_CWORD == 2 ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W '" +
           names +
           "help --version' -- \"$current\")\n"
           "        return\n"
           "    fi\n"
           "    case ${COMP_WORDS[1]} in\n" +
           cases +
           "    esac\n"
           "    if [[ $current == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "    else\n"
           "        compopt -o filenames 2>/dev/null\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "    fi\n"
           "}\n"
           "complete -F _marlet marlet\n";
}

/// With a backslash before each of the marks.
std::string Escaped(const std::string &text, const std::string &marks)
{
    std::string escaped;
    for (const char c : text) {
        if (marks.find(c) != std::string::npos)
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// As one word of zsh, in single quotes.
std::string ZshWord(const std::string &text)
{
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

std::string ZshOption(const OptionSpec &option)
{
    const std::string help = "[" + Escaped(option.help, "[]:\\") + "]";
    if (option.placeholder.empty())
        return ZshWord(option.name + help);
    const std::string join = option.name.rfind("--", 0) == 0 ? "=" : "+";
    return ZshWord(option.name + join + help + ":" + Escaped(option.placeholder, ":\\") + ":_files");
}

std::string ZshCompletion()
{
    std::string names;
    std::string cases;
    for (const CommandSpec *command : Commands()) {
        names += "        " + ZshWord(command->name + ":" + Escaped(command->summary, ":\\")) + "\n";
        cases += "    " + command->name + ") _arguments";
        for (const OptionSpec &option : command->options)
            cases += " \\\n        " + ZshOption(option);
        cases += " \\\n        '--help[how it is called]' '*:file:_files' ;;\n";
    }
    return "#compdef marlet\n"
           "_marlet() {\n"
           "    local -a commands\n"
           "    commands=(\n" +
           names +
           "        'help:how a command is called'\n"
           "        '--version:which marlet this is'\n"
           "    )\n"
           "    if ((CURRENT == 2)) || [[ $words[2] == help ]]; then\n"
           "        _describe command commands\n"
           "        return\n"
           "    fi\n"
           "    shift words\n"
           "    ((CURRENT--))\n"
           "    case $words[1] in\n" +
           cases +
           "    esac\n"
           "}\n"
           "if [[ $funcstack[1] == _marlet ]]; then _marlet \"$@\"; else compdef _marlet marlet; fi\n";
}

/// As one word of fish, in single quotes.
std::string FishWord(const std::string &text)
{
    return "'" + Escaped(text, "'\\") + "'";
}

std::string FishCompletion()
{
    std::string lines = "# fish completion for marlet\n";
    const auto offer = [&](const std::string &name, const std::string &summary) {
        for (const char *where : {"__fish_use_subcommand", "__fish_seen_subcommand_from help"})
            lines += "complete -c marlet -f -n " + FishWord(where) + " -a " + name + " -d " +
                     FishWord(summary) + "\n";
    };
    for (const CommandSpec *command : Commands())
        offer(command->name, command->summary);
    lines += "complete -c marlet -f -n __fish_use_subcommand -a help -d 'how a command is called'\n"
             "complete -c marlet -f -n __fish_use_subcommand -l version -d 'which marlet this is'\n";
    for (const CommandSpec *command : Commands()) {
        const std::string where =
            "complete -c marlet -n " + FishWord("__fish_seen_subcommand_from " + command->name);
        for (const OptionSpec &option : command->options)
            lines += where +
                     (option.name.rfind("--", 0) == 0 ? " -l " + option.name.substr(2)
                                                      : " -s " + option.name.substr(1)) +
                     (option.placeholder.empty() ? "" : " -r") + " -d " + FishWord(option.help) + "\n";
        lines += where + " -l help -d 'how it is called'\n";
    }
    return lines;
}

} // namespace

std::string Completion(const std::string &shell)
{
    if (shell.empty() || shell == "bash")
        return BashCompletion();
    if (shell == "zsh")
        return ZshCompletion();
    if (shell == "fish")
        return FishCompletion();
    throw UsageError("there is no completion for \"" + shell + "\", but for bash, zsh and fish");
}

} // namespace marlet::tool
