#include <marlet/exchange/keyframes/JsonKeyFramesFormat.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/JsonText.h>
#include <marlet/exchange/Selection.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/keyframes/KeyFrameRows.h>
#include <marlet/foundation/Arguments.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace marlet::project
{

namespace
{

constexpr char kFormat[] = "marlet-key-frames";
constexpr char kKeyFrames[] = "keyFrames";
constexpr std::string_view kComponents[] = {"value", "x", "y", "z", "r", "g", "b", "a"};

/// Numbers and truth values are themselves, all else is a text.
NarrowString JsonOf(const NarrowString &cell)
{
    // A whole number of JSON has no sign where it is zero.
    if (cell == "-0")
        return "-0.0";
    double number = 0;
    const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
    const bool isNumber = error == std::errc() && end == cell.data() + cell.size() && std::isfinite(number);
    return isNumber || cell == "true" || cell == "false" ? cell : '"' + cell + '"';
}

NarrowString JsonOf(const NarrowString &a, const NarrowString &b)
{
    return "[" + JsonOf(a) + ", " + JsonOf(b) + "]";
}

NarrowString ValueOf(const KeyFrameRow &row)
{
    if (row.components.size() == 1)
        return JsonOf(row.components.begin()->second);
    NarrowString text;
    for (const std::string_view name : kComponents)
        if (const auto found = row.components.find(name); found != row.components.end())
            text += (text.empty() ? "[" : ", ") + JsonOf(found->second);
    return text + "]";
}

/// The lines on which the objects begin that stand in the list of key frames, of a text that is JSON.
std::vector<int> LinesOfKeyFrames(std::string_view text)
{
    std::vector<int> lines;
    int line = 1;
    int depth = 0;
    std::string_view member;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        line += c == '\n';
        if (c == '"') {
            const std::size_t start = ++at;
            while (text[at] != '"')
                at += text[at] == '\\' ? 2 : 1;
            if (depth == 1)
                member = text.substr(start, at - start);
        } else if (c == '{' || c == '[') {
            if (c == '{' && depth == 2 && member == kKeyFrames)
                lines.push_back(line);
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return lines;
}

/// The text of a cell; of a list or an object there is none.
NarrowString CellOf(const Json &value, int line)
{
    if (value.is_null())
        return {};
    if (value.is_string())
        return value.get<NarrowString>();
    if (value.is_structured())
        RefuseLine(line, "a list or an object stands in place of a number");
    return ShortJsonTextOf(value);
}

void ReadValue(const Json &value, KeyFrameRow &row)
{
    if (value.is_object()) {
        for (const auto &[name, component] : value.items())
            row.components[name] = CellOf(component, row.line);
    } else if (value.is_array()) {
        static constexpr std::string_view kCoordinates[] = {"x", "y", "z"};
        static constexpr std::string_view kChannels[] = {"r", "g", "b", "a"};
        if (value.size() != 2 && value.size() != 3 && value.size() != 4)
            RefuseLine(row.line, "no value has " + std::to_string(value.size()) + " components");
        for (std::size_t i = 0; i < value.size(); ++i)
            row.components[NarrowString(value.size() == 4 ? kChannels[i] : kCoordinates[i])] =
                CellOf(value[i], row.line);
    } else if (!value.is_null()) {
        row.components["value"] = CellOf(value, row.line);
    }
}

void ReadHandle(const Json &handle, int line, NarrowString &time, NarrowString &value)
{
    if (handle.is_null())
        return;
    if (!handle.is_array() || handle.size() != 2)
        RefuseLine(line, "a handle is a list of a time and a value");
    time = CellOf(handle[0], line);
    value = CellOf(handle[1], line);
}

KeyFrameRow RowOf(const Json &key, int line)
{
    KeyFrameRow row;
    row.line = line;
    row.id = CellOf(MemberOf(key, "id"), line);
    row.type = CellOf(MemberOf(key, "type"), line);
    row.time = CellOf(MemberOf(key, "time"), line);
    row.frame = CellOf(MemberOf(key, "frame"), line);
    row.interpolation = CellOf(MemberOf(key, "interpolation"), line);
    ReadValue(MemberOf(key, "value"), row);
    ReadHandle(MemberOf(key, "in"), line, row.inTime, row.inValue);
    ReadHandle(MemberOf(key, "out"), line, row.outTime, row.outValue);
    return row;
}

std::vector<KeyFrameRow> ReadRows(const Json &keys, std::string_view bytes)
{
    if (!keys.is_array())
        throw ExchangeException("There is no list of key frames");
    const std::vector<int> lines = LinesOfKeyFrames(bytes);
    std::vector<KeyFrameRow> rows;
    for (const Json &key : keys) {
        if (!key.is_object() || rows.size() >= lines.size())
            throw ExchangeException("Key frame " + std::to_string(rows.size() + 1) + " is no object");
        rows.push_back(RowOf(key, lines[rows.size()]));
    }
    return rows;
}

} // namespace

NarrowString JsonKeyFramesFormat::Write(const std::shared_ptr<Project> &project,
                                        const ExchangeOptions &options) const
{
    Require(project, "project");
    const std::vector<KeyFrameRow> rows = RowsOf(*project, options);
    Json head = {{"format", kFormat},
                 {"version", 1},
                 {"property",
                  options.property.empty() ? SelectedProperty(*project, options).Name() : options.property},
                 {"frameRate", FrameRateOf(*project, options)}};
    NarrowString text = JsonTextOf(head);
    text.erase(text.size() - 2);
    text += NarrowString(",\n    \"") + kKeyFrames + "\": [";
    for (const KeyFrameRow &row : rows)
        text += NarrowString(&row == rows.data() ? "" : ",") + "\n        {\"id\": " + JsonOf(row.id) +
                ", \"type\": " + JsonOf(row.type) + ", \"time\": " + row.time + ", \"frame\": " + row.frame +
                ", \"value\": " + ValueOf(row) + ", \"interpolation\": " + JsonOf(row.interpolation) +
                ", \"in\": " + JsonOf(row.inTime, row.inValue) +
                ", \"out\": " + JsonOf(row.outTime, row.outValue) + "}";
    return text + (rows.empty() ? "" : "\n    ") + "]\n}\n";
}

bool JsonKeyFramesFormat::Recognises(std::string_view bytes) const
{
    return bytes.find(NarrowString("\"") + kFormat + "\"") != std::string_view::npos;
}

void JsonKeyFramesFormat::ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                                   const ExchangeOptions &options) const
{
    Require(project, "project");
    const Json text = ParseJson(bytes);
    if (const Json &version = MemberOf(text, "version"); !version.is_null() && version != 1)
        throw ExchangeException("Of key frames only version 1 is known");
    ExchangeOptions selection = options;
    if (const Json &rate = MemberOf(text, "frameRate"); rate.is_number() && rate.get<double>() > 0)
        selection.frameRate = rate.get<double>();
    if (selection.property.empty())
        selection.property = TextMemberOf(text, "property");
    TakeRows(project, ReadRows(MemberOf(text, kKeyFrames), bytes), selection);
}

} // namespace marlet::project
