#include <marlet/exchange/edl/EdlLine.h>

#include <marlet/exchange/Telling.h>
#include <marlet/exchange/edl/EdlText.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/TimeCode.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace marlet::project
{

namespace
{

char Upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool IsAllDigits(std::string_view word)
{
    return !word.empty() && std::ranges::all_of(word, IsDigit);
}

/// The four numbers of a time code, which two digits each make, with any mark between them.
std::optional<std::array<int, 4>> NumbersOf(std::string_view word)
{
    std::array<int, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) {
            if (word.empty() || std::string_view(":;.,").find(word.front()) == std::string_view::npos)
                return std::nullopt;
            word.remove_prefix(1);
        }
        const std::size_t digits = std::min(word.find_first_not_of("0123456789"), word.size());
        if (digits < 1 || digits > 2)
            return std::nullopt;
        for (const char c : word.substr(0, digits))
            numbers[i] = 10 * numbers[i] + (c - '0');
        word.remove_prefix(digits);
    }
    return word.empty() ? std::optional(numbers) : std::nullopt;
}

/// "V", "A", "A2", "AA", "AA/V", "B", "A1A2", "VA12", "NONE"
std::optional<EdlChannels> ChannelsOf(std::string_view word)
{
    EdlChannels channels;
    if (EqualWords(word, "NONE"))
        return channels;
    if (EqualWords(word, "B"))
        return EdlChannels{true, {1}};
    for (std::size_t i = 0; i < word.size();) {
        const char c = Upper(word[i++]);
        if (c == 'V') {
            channels.picture = true;
            while (i < word.size() && IsDigit(word[i]))
                ++i;
        } else if (c == 'A' && (i == word.size() || !IsDigit(word[i]))) {
            channels.sound.push_back(static_cast<int>(channels.sound.size()) + 1);
        } else if (c == 'A') {
            for (; i < word.size() && IsDigit(word[i]); ++i)
                channels.sound.push_back(word[i] - '0');
        } else if (c != '/' && c != '+') {
            return std::nullopt;
        }
    }
    std::erase(channels.sound, 0);
    return channels;
}

bool IsKindWord(std::string_view word)
{
    if (EqualWords(word, "C") || EqualWords(word, "D") || EqualWords(word, "K") || EqualWords(word, "KB") ||
        EqualWords(word, "KO"))
        return true;
    return word.size() > 1 && Upper(word[0]) == 'W' && IsAllDigits(word.substr(1));
}

int FrameCountOf(std::string_view word, int line)
{
    int frames = 0;
    const auto end = word.data() + word.size();
    if (std::from_chars(word.data(), end, frames).ec != std::errc())
        RefuseLine(line, "a transition has no " + NarrowString(word) + " frames");
    return frames;
}

} // namespace

bool EqualWords(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, Upper, Upper);
}

bool StartsWithWord(std::string_view text, std::string_view word)
{
    return EqualWords(text.substr(0, word.size()), word);
}

std::string_view AfterWord(std::string_view text, std::string_view word)
{
    text.remove_prefix(std::min(word.size(), text.size()));
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

NarrowString ValidUtf8(std::string_view text)
{
    return ToUtf8(FromUtf8(text));
}

EdlLine::EdlLine(std::string_view line)
{
    while (!line.empty()) {
        const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
        if (end > 0)
            words_.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
}

std::optional<std::size_t> EdlLine::TimeCodes() const
{
    std::size_t inRow = 0;
    for (std::size_t i = 0; i < words_.size(); ++i) {
        inRow = NumbersOf(words_[i]) ? inRow + 1 : 0;
        if (inRow == 4)
            return i - 3;
    }
    return std::nullopt;
}

std::optional<std::size_t> EdlLine::KindPlace() const
{
    const std::size_t end = TimeCodes().value_or(0);
    // Behind the number, the reel and the channels, and up to two words before the times.
    for (std::size_t i = end; i > 3 && i + 3 > end; --i)
        if (IsKindWord(words_[i - 1]))
            return i - 1;
    return std::nullopt;
}

std::optional<std::string_view> EdlLine::FirstTimeCode() const
{
    const auto place = TimeCodes();
    return place ? std::optional(words_[*place]) : std::nullopt;
}

NarrowString EdlLine::Joined(std::size_t first, std::size_t end) const
{
    NarrowString text;
    for (std::size_t i = first; i < end; ++i)
        text += (i > first ? " " : "") + NarrowString(words_[i]);
    return text;
}

std::optional<std::size_t> EdlLine::LastNumber(double &number) const
{
    for (std::size_t i = words_.size(); i > 0; --i) {
        std::string_view word = words_[i - 1];
        if (word.starts_with('+'))
            word.remove_prefix(1);
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error == std::errc() && end == word.data() + word.size() && std::isfinite(number))
            return i - 1;
    }
    return std::nullopt;
}

int EdlLine::Frame(const EdlTime &time, int line, std::size_t place) const
{
    const auto [hours, minutes, seconds, frames] = *NumbersOf(words_[place]);
    if (minutes > 59 || seconds > 59)
        RefuseLine(line, NarrowString(words_[place]) + " is no time code");
    if (frames >= time.FramesPerSecond())
        RefuseLine(line, NarrowString(words_[place]) + " is no time code at " +
                             std::to_string(time.FramesPerSecond()) + " frames a second");
    TimeCode code;
    code.hours = hours;
    code.minutes = minutes;
    code.seconds = seconds;
    code.frames = frames;
    code.frameRate = time.CountingRate();
    return code.ToFrame();
}

void EdlLine::Read(const EdlTime &time, int line, EdlEdit &edit, bool &isKey) const
{
    const auto times = TimeCodes();
    const auto kind = KindPlace();
    if (!times || !kind)
        RefuseLine(line, "an edit has a number, a reel, channels, a kind and four time codes");
    const auto channels = ChannelsOf(words_[*kind - 1]);
    if (!channels)
        RefuseLine(line, ValidUtf8(words_[*kind - 1]) + " are no channels");
    edit.number = words_[0];
    edit.channels = *channels;
    edit.reel = *kind > 2 ? ValidUtf8(Joined(1, *kind - 1)) : "AX";
    std::ranges::transform(edit.reel, edit.reel.begin(), Upper);
    const char letter = Upper(words_[*kind][0]);
    isKey = letter == 'K';
    edit.kind = letter == 'D' ? EdlKind::Dissolve : letter == 'W' ? EdlKind::Wipe : EdlKind::Cut;
    if (edit.kind != EdlKind::Cut && *kind + 1 < *times)
        edit.length = FrameCountOf(words_[*kind + 1], line);
    edit.sourceIn = Frame(time, line, *times);
    edit.sourceOut = Frame(time, line, *times + 1);
    edit.recordIn = Frame(time, line, *times + 2);
    edit.recordOut = Frame(time, line, *times + 3);
    if (edit.recordOut < edit.recordIn)
        RefuseLine(line, "the edit ends before it begins");
}

EdlTime EdlTime::Of(double frameRate)
{
    EdlTime time{frameRate, false};
    // What counts in drop-frame here at 23.976 does so nowhere else.
    time.isDrop = TimeCode::IsDropTimeCode(frameRate) && time.FramesPerSecond() != 24;
    return time;
}

int EdlTime::FramesPerSecond() const
{
    return AudioVideoSettings::IntegerFrameRate(frameRate);
}

double EdlTime::CountingRate() const
{
    const int whole = FramesPerSecond();
    return !isDrop ? whole : whole == 60 ? 59.94 : 29.97;
}

NarrowString EdlTime::Text(long long frame) const
{
    const TimeCode code = TimeCode::FromFrame(static_cast<int>(frame), CountingRate());
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", code.hours, code.minutes, code.seconds,
                  isDrop ? ';' : ':', code.frames);
    return text;
}

} // namespace marlet::project
