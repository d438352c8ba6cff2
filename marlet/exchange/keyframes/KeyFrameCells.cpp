#include <marlet/exchange/keyframes/KeyFrameCells.h>

#include <marlet/animation/PropertyValueTraits.h>
#include <marlet/exchange/Telling.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Numbers.h>

#include <boost/variant/apply_visitor.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>

namespace marlet::project
{

namespace
{

constexpr char kValue[] = "value";
constexpr double kMsPerSecond = 1000;
constexpr std::array<std::string_view, 3> kInterpolations{"bezier", "linear", "hold"};

/// The shortest that reads back as the same number.
template <class Number> NarrowString NumberText(Number number)
{
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

NarrowString CellText(float value)
{
    return NumberText(value);
}
NarrowString CellText(double value)
{
    return NumberText(value);
}
NarrowString CellText(int value)
{
    return NumberText(value);
}
NarrowString CellText(unsigned int value)
{
    return NumberText(value);
}
NarrowString CellText(unsigned char value)
{
    return NumberText(static_cast<unsigned int>(value));
}
NarrowString CellText(bool value)
{
    return value ? "true" : "false";
}
NarrowString CellText(const kytl::KyID &value)
{
    return value.ToNarrowString();
}

[[noreturn]] void RefuseCell(int line, std::string_view cell, const NarrowString &text, const char *what)
{
    RefuseLine(line, NarrowString(cell) + " is " +
                         (text.empty() ? "missing" : "\"" + text + "\", which is " + what));
}

template <class Number> bool ReadNumber(std::string_view text, Number &number)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

void ReadCell(int line, std::string_view cell, const NarrowString &text, std::floating_point auto &value)
{
    if (!ReadNumber(text, value))
        RefuseCell(line, cell, text, "no number");
}

/// Spreadsheets may write whole numbers with a point.
void ReadCell(int line, std::string_view cell, const NarrowString &text, std::integral auto &value)
{
    using Integer = std::remove_reference_t<decltype(value)>;
    double number = 0;
    if (!ReadNumber(text, number) || number != std::trunc(number) ||
        number < double{std::numeric_limits<Integer>::min()} ||
        number > double{std::numeric_limits<Integer>::max()})
        RefuseCell(line, cell, text, "no whole number in the range of the type");
    value = static_cast<Integer>(number);
}

void ReadCell(int line, std::string_view cell, const NarrowString &text, bool &value)
{
    const NarrowString small = SmallLetters(text);
    if (small != "true" && small != "false" && small != "1" && small != "0")
        RefuseCell(line, cell, text, "neither true nor false");
    value = small == "true" || small == "1";
}

void ReadCell(int line, std::string_view cell, const NarrowString &text, kytl::KyID &value)
{
    try {
        value = kytl::KyID::FromString(std::string_view(text));
    } catch (const std::runtime_error &) {
        RefuseCell(line, cell, text, "no ID");
    }
}

/// The cell, or an empty one.
const NarrowString &Component(const KeyFrameRow &row, std::string_view name)
{
    static const NarrowString none;
    const auto found = row.components.find(name);
    return found == row.components.end() ? none : found->second;
}

template <class T> void ReadComponents(const KeyFrameRow &row, T &value)
{
    if (!row.type.empty() && row.type != ValueTraits<T>::kTag)
        RefuseLine(row.line,
                   "the property holds " + NarrowString(ValueTraits<T>::kTag) + ", not " + row.type);
    if constexpr (HasFields<T>) {
        for (const auto &field : ValueTraits<T>::kFields) {
            const NarrowString name = SmallLetters(field.name);
            ReadCell(row.line, name, Component(row, name), value.*field.member);
        }
    } else {
        ReadCell(row.line, kValue, Component(row, kValue), value);
    }
}

/// As everywhere in the library a frame begins at the millisecond before it.
int TimeOfFrame(double frame, double frameRate)
{
    return Truncate<int>(AudioVideoSettings::MsPerFrame(frameRate) * frame);
}

int TimeOf(const KeyFrameRow &row, double frameRate)
{
    double time = 0;
    bool isFrame = false;
    if (!row.time.empty()) {
        ReadCell(row.line, "time", row.time, time);
    } else {
        ReadCell(row.line, row.frame.empty() ? "time" : "frame", row.frame, time);
        isFrame = time == std::trunc(time);
        time *= AudioVideoSettings::MsPerFrame(frameRate);
    }
    if (!(std::abs(time) <= std::numeric_limits<int>::max()))
        RefuseLine(row.line, "the time is beyond all times");
    return Truncate<int>(isFrame ? time : std::round(time));
}

KeyFrameType InterpolationOf(const KeyFrameRow &row)
{
    if (row.interpolation.empty())
        return KeyFrameType::Linear;
    const NarrowString small = SmallLetters(row.interpolation);
    for (std::size_t i = 0; i < kInterpolations.size(); ++i)
        if (small == kInterpolations[i])
            return static_cast<KeyFrameType>(i);
    RefuseCell(row.line, "interpolation", row.interpolation, "none of bezier, linear and hold");
}

kytl::matl::KyVector<2, float> HandleOf(const KeyFrameRow &row, const char *name, const NarrowString &time,
                                        const NarrowString &value)
{
    kytl::matl::KyVector<2, float> handle{0, 0};
    if (!time.empty())
        ReadCell(row.line, name + NarrowString(" time"), time, handle.X);
    if (!value.empty())
        ReadCell(row.line, name + NarrowString(" value"), value, handle.Y);
    return handle;
}

} // namespace

NarrowString SmallLetters(std::string_view text)
{
    NarrowString small(text);
    for (char &c : small)
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return small;
}

KeyFrameRow RowOf(const KeyFrame &key, double frameRate)
{
    KeyFrameRow row;
    row.id = key.ID().ToNarrowString();
    row.time = CellText(key.Time());
    if (frameRate > 0) {
        const double frame = std::round(key.Time() * frameRate / kMsPerSecond);
        row.frame = CellText(TimeOfFrame(frame, frameRate) == key.Time()
                                 ? frame
                                 : std::round(key.Time() * frameRate) / kMsPerSecond);
    }
    row.interpolation = kInterpolations.at(static_cast<std::size_t>(key.Type()));
    row.inTime = CellText(key.IncomingPoint().X);
    row.inValue = CellText(key.IncomingPoint().Y);
    row.outTime = CellText(key.OutgoingPoint().X);
    row.outValue = CellText(key.OutgoingPoint().Y);
    boost::apply_visitor(
        [&row](const auto &alternative) {
            using T = std::decay_t<decltype(alternative)>;
            row.type = ValueTraits<T>::kTag;
            if constexpr (HasFields<T>)
                for (const auto &field : ValueTraits<T>::kFields)
                    row.components[SmallLetters(field.name)] = CellText(alternative.*field.member);
            else
                row.components[kValue] = CellText(alternative);
        },
        key.Value());
    return row;
}

KeyFrameOfRow ReadRow(const KeyFrameRow &row, const PropertyValue &model, double frameRate)
{
    PropertyValue value = model;
    boost::apply_visitor([&row](auto &alternative) { ReadComponents(row, alternative); }, value);
    KeyFrameOfRow read{KeyFrame(TimeOf(row, frameRate), value), {}};
    read.key.SetType(InterpolationOf(row));
    read.key.SetIncomingPoint(HandleOf(row, "in", row.inTime, row.inValue));
    read.key.SetOutgoingPoint(HandleOf(row, "out", row.outTime, row.outValue));
    if (!row.id.empty())
        ReadCell(row.line, "id", row.id, read.id);
    return read;
}

} // namespace marlet::project
