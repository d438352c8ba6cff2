#include <marlet/exchange/srt/SrtText.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/srt/SrtTags.h>
#include <marlet/foundation/EncodedText.h>
#include <marlet/foundation/LoadReport.h>

#include <algorithm>
#include <cstdio>

namespace marlet::project
{

namespace
{

constexpr std::u16string_view kBlanks = u" \t\u00a0";
constexpr std::u16string_view kArrow = u"-->";
constexpr std::size_t kMostDigits = 6;

std::vector<std::u16string_view> LinesOf(std::u16string_view text)
{
    std::vector<std::u16string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        const bool isPair = text.substr(end).starts_with(u"\r\n");
        text.remove_prefix(std::min(end + (isPair ? 2 : 1), text.size()));
    }
    return lines;
}

std::u16string_view Trimmed(std::u16string_view text)
{
    const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool IsNumber(std::u16string_view line)
{
    const std::u16string_view digits = Trimmed(line);
    return !digits.empty() && std::ranges::all_of(digits, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

/// Takes "01:02:03,004" off the front of a text; hours and the part behind the comma may be missing.
std::optional<std::int64_t> TakeTime(std::u16string_view &text)
{
    std::int64_t parts[4] = {};
    std::size_t count = 0;
    std::int64_t milliseconds = 0;
    for (bool isFraction = false;;) {
        std::size_t digits = 0;
        std::int64_t number = 0;
        for (; digits < text.size() && text[digits] >= u'0' && text[digits] <= u'9'; ++digits)
            number = digits < kMostDigits ? number * 10 + (text[digits] - u'0') : number;
        if (digits == 0 || digits > kMostDigits)
            return std::nullopt;
        text.remove_prefix(digits);
        if (isFraction) {
            for (; digits < 3; ++digits)
                number *= 10;
            for (; digits > 3; --digits)
                number /= 10;
            milliseconds = number;
            break;
        }
        parts[count++] = number;
        isFraction = text.starts_with(u',') || text.starts_with(u'.');
        if (!isFraction && (!text.starts_with(u':') || count == 3))
            break;
        text.remove_prefix(1);
    }
    if (count < 2)
        return std::nullopt;
    std::int64_t seconds = 0;
    for (std::size_t i = 0; i < count; ++i)
        seconds = seconds * 60 + parts[i];
    return seconds * 1000 + milliseconds;
}

struct Times {
    std::int64_t start = 0;
    std::int64_t end = 0;
    bool hasMore = false; ///< such as where on the screen
};

std::optional<Times> TimesIn(std::u16string_view line)
{
    std::u16string_view rest = Trimmed(line);
    const auto start = TakeTime(rest);
    rest = Trimmed(rest);
    if (!start || !rest.starts_with(kArrow))
        return std::nullopt;
    rest = Trimmed(rest.substr(kArrow.size()));
    const auto end = TakeTime(rest);
    if (!end)
        return std::nullopt;
    return Times{*start, *end, !Trimmed(rest).empty()};
}

WideString DecodedText(std::string_view bytes, const ExchangeOptions &options)
{
    const EncodedText encoded(bytes);
    WideString text = encoded.IsUtf16() ? DecodeUtf16(encoded) : FromUtf8(encoded.bytes);
    if (text.find(u'\ufffd') != WideString::npos)
        Tell(options, LoadEntry::Severity::Warning, "some characters cannot be read: the text is not UTF-8");
    return text;
}

class SrtReading
{
public:
    SrtReading(const WideString &text, const ExchangeOptions &options)
        : lines_(LinesOf(text)), options_(options)
    {
    }

    std::vector<Subtitle> Run()
    {
        std::size_t line = NextTimes(0);
        TellOfText(0, FirstOf(line));
        while (line < lines_.size()) {
            const std::size_t next = NextTimes(line + 1);
            Take(line, FirstOf(next));
            line = next;
        }
        return std::move(subtitles_);
    }

private:
    std::size_t NextTimes(std::size_t from) const
    {
        while (from < lines_.size() && !TimesIn(lines_[from]))
            ++from;
        return from;
    }

    /// The line of the number in front of times, if there is one.
    std::size_t FirstOf(std::size_t times) const
    {
        return times < lines_.size() && times > 0 && IsNumber(lines_[times - 1]) ? times - 1 : times;
    }

    void TellOfText(std::size_t first, std::size_t end) const
    {
        for (std::size_t i = first; i < end; ++i)
            if (!Trimmed(lines_[i]).empty())
                return Tell(options_, LoadEntry::Severity::Loss, "text in front of the first subtitle",
                            static_cast<int>(i) + 1);
    }

    void Take(std::size_t line, std::size_t end)
    {
        const Times times = *TimesIn(lines_[line]);
        const int number = static_cast<int>(line) + 1;
        if (times.end < times.start)
            return Tell(options_, LoadEntry::Severity::Loss, "a subtitle that ends before it starts", number);
        if (times.hasMore)
            Tell(options_, LoadEntry::Severity::Loss, "where on the screen the subtitle is", number);
        std::size_t first = line + 1;
        while (first < end && Trimmed(lines_[first]).empty())
            ++first;
        while (end > first && Trimmed(lines_[end - 1]).empty())
            --end;
        WideString text;
        for (std::size_t i = first; i < end; ++i)
            text += (text.empty() ? u"" : u"\n") + WideString(Trimmed(lines_[i]));
        SrtTagged tagged = WithoutTags(text);
        for (const NarrowString &tag : tagged.unknown)
            Tell(options_, LoadEntry::Severity::Loss, "the tag " + tag, number);
        subtitles_.push_back({times.start, times.end, std::move(tagged.text), std::move(tagged.runs)});
    }

    std::vector<std::u16string_view> lines_;
    const ExchangeOptions &options_;
    std::vector<Subtitle> subtitles_;
};

NarrowString TimeText(std::int64_t milliseconds)
{
    const std::int64_t time = std::max<std::int64_t>(milliseconds, 0);
    char text[64];
    std::snprintf(text, sizeof text, "%02lld:%02d:%02d,%03d", static_cast<long long>(time / 3'600'000),
                  static_cast<int>(time / 60'000 % 60), static_cast<int>(time / 1000 % 60),
                  static_cast<int>(time % 1000));
    return text;
}

/// With the line ends of the format, and without blank lines.
NarrowString LinesText(const WideString &text)
{
    NarrowString result;
    for (const std::u16string_view line : LinesOf(text))
        if (!Trimmed(line).empty())
            result += ToUtf8(line) + "\r\n";
    return result;
}

} // namespace

std::vector<Subtitle> ParseSrt(std::string_view bytes, const ExchangeOptions &options)
{
    const WideString text = DecodedText(bytes, options);
    std::vector<Subtitle> subtitles = SrtReading(text, options).Run();
    if (subtitles.empty() && text.find_first_not_of(u" \t\r\n") != WideString::npos)
        throw ExchangeException("The text has no subtitles");
    return subtitles;
}

NarrowString SrtTextOf(const std::vector<Subtitle> &subtitles)
{
    NarrowString text;
    int number = 0;
    for (const Subtitle &subtitle : subtitles)
        text += std::to_string(++number) + "\r\n" + TimeText(subtitle.start) + " --> " +
                TimeText(subtitle.end) + "\r\n" + LinesText(WithTags(subtitle)) + "\r\n";
    return text;
}

} // namespace marlet::project
