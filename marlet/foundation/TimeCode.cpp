#include <marlet/foundation/TimeCode.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/Tolerance.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace marlet::project
{

namespace
{

constexpr std::array kDropRates = {23.976, 29.97, 59.94};

std::int64_t Rounded(double value)
{
    return Truncate<std::int64_t>(RoundHalfAway(value));
}

/// The frame numbers that are left out at each minute except every tenth.
std::int64_t DroppedPerMinute(double rate)
{
    return Rounded(rate * 0.06);
}

std::int64_t TotalSecondsOf(const TimeCode &code)
{
    return std::int64_t(code.hours) * 3600 + std::int64_t(code.minutes) * 60 + code.seconds;
}

void SetFields(TimeCode &code, std::int64_t number, std::int64_t framesPerSecond)
{
    const std::int64_t seconds = number / framesPerSecond;
    code.frames = static_cast<int>(number % framesPerSecond);
    code.seconds = static_cast<int>(seconds % 60);
    code.minutes = static_cast<int>(seconds / 60 % 60);
    code.hours = static_cast<int>(seconds / 3600);
}

/// The number that a frame of a drop-frame time code has once those that are left out are counted.
std::int64_t DropFrameNumber(std::int64_t frame, double rate)
{
    const std::int64_t dropped = DroppedPerMinute(rate);
    const std::int64_t framesPerTenMinutes = Rounded(rate * 600);
    const std::int64_t framesPerMinute = Rounded(rate) * 60 - dropped;
    frame %= 24 * Rounded(rate * 3600);
    const std::int64_t blocks = frame / framesPerTenMinutes;
    const std::int64_t rest = frame % framesPerTenMinutes;
    const std::int64_t minutes = std::max<std::int64_t>(rest - dropped, 0) / framesPerMinute;
    return frame + dropped * (9 * blocks + minutes);
}

bool IsSeparator(char16_t c)
{
    return c == u':' || c == u'|' || c == u';';
}

/// Takes one or two digits off the text.
bool TakeNumber(const char16_t *&text, int &number)
{
    const auto isDigit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
    if (!isDigit(*text))
        return false;
    number = *text++ - u'0';
    if (isDigit(*text))
        number = 10 * number + (*text++ - u'0');
    return true;
}

void AppendPadded(NarrowString &text, int number)
{
    const NarrowString digits = std::to_string(number);
    text.append(digits.size() < 2 ? 1 : 0, '0');
    text += digits;
}

} // namespace

bool TimeCode::IsDropTimeCode(double rate)
{
    return std::ranges::any_of(kDropRates, [rate](double dropRate) {
        return kytl::NearlyEqual(rate, dropRate, kytl::kRatioTolerance);
    });
}

TimeCode TimeCode::FromFrame(int frame, double rate)
{
    TimeCode code;
    code.frameRate = rate;
    code.negative = frame < 0;
    const std::int64_t magnitude = frame < 0 ? -std::int64_t(frame) : frame;
    if (IsDropTimeCode(rate))
        SetFields(code, DropFrameNumber(magnitude, rate), Rounded(rate));
    else if (rate >= 1.0)
        SetFields(code, magnitude, AudioVideoSettings::IntegerFrameRate(rate));
    return code;
}

bool TimeCode::FromString(const char16_t *text, double rate, TimeCode &result)
{
    Require(text, "text");
    if (rate <= 0)
        return false;
    const bool negative = *text == u'-';
    if (negative)
        ++text;
    int numbers[4];
    for (int i = 0; i < 4; ++i) {
        if (i > 0 && !IsSeparator(*text++))
            return false;
        if (!TakeNumber(text, numbers[i]))
            return false;
    }
    if (*text != u'\0')
        return false;
    result.frameRate = rate;
    result.negative = negative;
    result.hours = numbers[0];
    result.minutes = numbers[1];
    result.seconds = numbers[2];
    result.frames = numbers[3];
    return true;
}

int TimeCode::ToFrame() const
{
    // In double, whose rounding lies far beyond the limits of the result and which cannot overflow.
    double frame = static_cast<double>(TotalSecondsOf(*this)) * RoundHalfAway(frameRate) + frames;
    if (IsDropTimeCode(frameRate)) {
        const std::int64_t totalMinutes = std::int64_t(hours) * 60 + minutes;
        const std::int64_t dropped = DroppedPerMinute(frameRate) * (totalMinutes - totalMinutes / 10);
        frame -= static_cast<double>(dropped);
    }
    return Truncate<int>(negative ? -frame : frame);
}

int TimeCode::TotalSeconds() const
{
    return static_cast<int>(std::clamp<std::int64_t>(TotalSecondsOf(*this), std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

NarrowString TimeCode::ToString() const
{
    const char separator = IsDropTimeCode(frameRate) ? ';' : ':';
    NarrowString text;
    if (negative)
        text += '-';
    AppendPadded(text, hours);
    for (const int number : {minutes, seconds, frames}) {
        text += separator;
        AppendPadded(text, number);
    }
    return text;
}

WideString TimeCode::ToWideString() const
{
    return FromUtf8(ToString());
}

} // namespace marlet::project
