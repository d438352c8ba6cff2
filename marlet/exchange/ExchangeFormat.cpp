#include "ExchangeFormat.h"

#include "Formats.h"

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

/// The ending of a path in small letters. The letters beyond ASCII are in no format's ending.
std::string EndingOf(const std::filesystem::path &path)
{
    std::string ending = path.extension().string();
    std::ranges::transform(ending, ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return ending;
}

bool HasEnding(const ExchangeFormat &format, const std::filesystem::path &path)
{
    const auto endings = format.Endings();
    return std::ranges::find(endings, EndingOf(path)) != endings.end();
}

[[noreturn]] void RefuseTo(std::string_view what, const ExchangeFormat &format)
{
    throw std::logic_error(std::string(format.Title()) + " cannot be " + std::string(what));
}

} // namespace

const std::vector<const ExchangeFormat *> &ExchangeFormat::All()
{
    static const std::vector<const ExchangeFormat *> formats = Formats();
    return formats;
}

const ExchangeFormat *ExchangeFormat::ByName(std::string_view name)
{
    const auto found = std::ranges::find(All(), name, [](const auto *format) { return format->Name(); });
    return found == All().end() ? nullptr : *found;
}

const ExchangeFormat *ExchangeFormat::ForWriting(const std::filesystem::path &path)
{
    const auto found = std::ranges::find_if(
        All(), [&](const auto *format) { return format->CanWrite() && HasEnding(*format, path); });
    return found == All().end() ? nullptr : *found;
}

const ExchangeFormat *ExchangeFormat::ForReading(const std::filesystem::path &path, std::string_view bytes)
{
    std::vector<const ExchangeFormat *> readable;
    std::ranges::copy_if(All(), std::back_inserter(readable),
                         [](const auto *format) { return format->CanRead() || format->CanReadInto(); });
    std::vector<const ExchangeFormat *> alike;
    std::ranges::copy_if(readable, std::back_inserter(alike),
                         [&](const auto *format) { return format->Recognises(bytes); });
    if (alike.size() == 1)
        return alike.front();
    const auto &candidates = alike.empty() ? readable : alike;
    const auto found =
        std::ranges::find_if(candidates, [&](const auto *format) { return HasEnding(*format, path); });
    return found == candidates.end() ? nullptr : *found;
}

ExchangeFormat::~ExchangeFormat() = default;

NarrowString ExchangeFormat::Write(const std::shared_ptr<Project> &, const ExchangeOptions &) const
{
    RefuseTo("written", *this);
}

bool ExchangeFormat::Recognises(std::string_view) const
{
    return false;
}

std::shared_ptr<Project> ExchangeFormat::Read(std::string_view, const ExchangeOptions &) const
{
    RefuseTo("read into a new project", *this);
}

void ExchangeFormat::ReadInto(const std::shared_ptr<Project> &, std::string_view,
                              const ExchangeOptions &) const
{
    RefuseTo("read into a project", *this);
}

} // namespace marlet::project
