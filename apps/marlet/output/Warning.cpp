#include "Warning.h"

#include "Output.h"

#include <cstdio>

namespace marlet::tool
{

namespace
{

Color ColorOf(project::LoadEntry::Severity severity)
{
    using Severity = project::LoadEntry::Severity;
    if (severity == Severity::Note)
        return Color::Blue;
    return severity == Severity::Warning ? Color::Magenta : Color::Red;
}

} // namespace

std::string PlaceName(const std::string &file, const std::optional<project::TextPlace> &place)
{
    return place ? file + ":" + std::to_string(place->line) + ":" + std::to_string(place->column) : file;
}

std::string PlaceLine(const std::string &file, const std::optional<project::TextPlace> &place,
                      project::LoadEntry::Severity severity, const std::string &what, Stream stream)
{
    return Colored(OneLine(PlaceName(file, place) + ":"), Color::Bold, stream) + " " +
           Colored(std::string(project::SeverityName(severity)) + ":", ColorOf(severity), stream) + " " +
           OneLine(what);
}

std::optional<project::TextPlace> PlaceOf(const project::LoadEntry &entry)
{
    if (entry.line == 0)
        return std::nullopt;
    return project::TextPlace{entry.offset, entry.line, entry.column};
}

std::string WhatAndWhere(const std::string &what, const std::string &path)
{
    return path.empty() ? what : what + " (" + path + ")";
}

std::string PluginText(const project::UnresolvedPlugin &plugin)
{
    return "the plug-in \"" + project::ToUtf8(plugin.name) + "\" " + plugin.version +
           (plugin.isOlder ? " is there in an older version only, for " : " is missing, for ") +
           Counted(static_cast<std::size_t>(plugin.uses), "use");
}

void Warn(const std::string &file, const std::string &message)
{
    const std::string line =
        PlaceLine(file, {}, project::LoadEntry::Severity::Warning, message, Stream::Error) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace marlet::tool
