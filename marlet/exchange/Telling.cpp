#include <marlet/exchange/Telling.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>

#include <filesystem>

namespace marlet::project
{

void Tell(const ExchangeOptions &options, LoadEntry::Severity severity, const NarrowString &what, int line,
          const std::vector<kytl::KyID> &ids)
{
    if (!options.load.report)
        return;
    LoadEntry entry;
    entry.severity = severity;
    entry.what = what;
    entry.line = line;
    entry.ids = ids;
    options.load.report->Add(entry);
}

void RefuseLine(int line, const NarrowString &what)
{
    throw ExchangeException("Line " + std::to_string(line) + ": " + what);
}

WideString MeantPath(const ExchangeOptions &options, const WideString &path)
{
    if (options.folder.empty() || path.empty() || std::filesystem::path(path).is_absolute())
        return path;
    return options.folder + path;
}

WideString WrittenPath(const ExchangeOptions &options, const WideString &path)
{
    const bool isInFolder = !options.folder.empty() && path.starts_with(options.folder);
    return isInFolder ? path.substr(options.folder.size()) : path;
}

} // namespace marlet::project
