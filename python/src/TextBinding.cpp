#include "Bindings.h"
#include "Effects.h"
#include "Values.h"

#include <marlet/layers/TextLayer.h>
#include <marlet/operations/layers/TextOperations.h>

namespace marlet::python
{

namespace
{

using Format = TextLayer::Format;
using Type = py::class_<TextLayerHandle, LayerHandle>;

/// Python counts characters, the library the units of UTF-16.
std::size_t UnitsOf(const WideString &text, std::size_t characters)
{
    std::size_t units = 0;
    for (; characters > 0 && units < text.size(); --characters) {
        const bool isPair = (text[units] & 0xfc00) == 0xd800 && units + 1 < text.size();
        units += isPair ? 2 : 1;
    }
    if (characters > 0)
        throw py::index_error("The text has not so many characters");
    return units;
}

std::size_t CharactersOf(const WideString &text, std::size_t units)
{
    std::size_t characters = 0;
    for (std::size_t i = 0; i < units; ++i)
        characters += (text[i] & 0xfc00) != 0xdc00;
    return characters;
}

TextRange RangeOf(const TextLayer &layer, std::size_t first, std::optional<std::size_t> count)
{
    const WideString text = ReadText(layer).text;
    const std::size_t begin = UnitsOf(text, first);
    return {begin, count ? UnitsOf(text, first + *count) - begin : WideString::npos};
}

void BindFormat(py::module_ &module)
{
    py::class_<Format> type(module, "TextFormat",
                            "How characters look. A value: changing it changes no text.");
    type.def(py::init([](const WideString &family, const WideString &style, int size, const Color &fill,
                         const Color &stroke, float strokeWidth, float tracking, float leading) {
                 return Format{{},          family,   style,  size, ToColor(fill), ToColor(stroke),
                               strokeWidth, tracking, leading};
             }),
             py::arg("family"), py::arg("style") = u"Regular", py::kw_only(), py::arg("size") = 72,
             py::arg("fill") = Color(1.f, 1.f, 1.f, 1.f), py::arg("stroke") = Color(0.f, 0.f, 0.f, 0.f),
             py::arg("stroke_width") = 0.f, py::arg("tracking") = 0.f, py::arg("leading") = 0.f);
    type.def_readwrite("family", &Format::family, "The font's family.");
    type.def_readwrite("style", &Format::style, "The font's style.");
    type.def_readwrite("size", &Format::size, "Of the font.");
    type.def_readwrite("stroke_width", &Format::strokeWidth, "Of the outline.");
    type.def_readwrite("tracking", &Format::tracking, "Between characters.");
    type.def_readwrite("leading", &Format::leading, "Between lines.");
    type.def_property(
        "fill", [](const Format &format) { return ToTuple(format.fillColor); },
        [](Format &format, const Color &color) { format.fillColor = ToColor(color); },
        "Red, green, blue and alpha.");
    type.def_property(
        "stroke", [](const Format &format) { return ToTuple(format.strokeColor); },
        [](Format &format, const Color &color) { format.strokeColor = ToColor(color); },
        "Red, green, blue and alpha.");
    type.def("__repr__", [](const Format &format) {
        return "<marlet.TextFormat '" + ToUtf8(format.family) + "' " + ToUtf8(format.style) + " " +
               std::to_string(format.size) + ">";
    });
}

void BindChanges(Type &type)
{
    type.def_property(
        "text", [](const TextLayerHandle &layer) { return ReadText(*layer.Get()).text; },
        [](const TextLayerHandle &layer, const WideString &text) {
            const auto changed = layer.Get();
            Operate(*layer.Owner(), [&](const auto &project) { SetText(project, changed, text); });
        },
        "The characters, with '\\n' between paragraphs. What is assigned has the format of the first "
        "character.");
    type.def(
        "insert",
        [](const TextLayerHandle &layer, std::size_t position, const WideString &text) {
            const auto changed = layer.Get();
            const std::size_t at = UnitsOf(ReadText(*changed).text, position);
            Operate(*layer.Owner(), [&](const auto &project) { InsertText(project, changed, at, text); });
        },
        py::arg("position"), py::arg("text"), "Puts a text in, with the format of the character before it.");
    type.def(
        "replace",
        [](const TextLayerHandle &layer, const WideString &text, std::size_t first,
           std::optional<std::size_t> count) {
            const auto changed = layer.Get();
            const TextRange range = RangeOf(*changed, first, count);
            Operate(*layer.Owner(), [&](const auto &project) { ReplaceText(project, changed, range, text); });
        },
        py::arg("text"), py::arg("first") = 0, py::arg("count") = py::none(),
        "Puts a text in place of so many characters, by default of all that follow.");
    type.def(
        "set_format",
        [](const TextLayerHandle &layer, const Format &format, std::size_t first,
           std::optional<std::size_t> count) {
            const auto changed = layer.Get();
            const TextRange range = RangeOf(*changed, first, count);
            Operate(*layer.Owner(),
                    [&](const auto &project) { SetTextFormat(project, changed, range, format); });
        },
        py::arg("format"), py::arg("first") = 0, py::arg("count") = py::none(),
        "Gives so many characters a format, by default all that follow.");
}

py::list FormatsOf(const TextLayerHandle &layer)
{
    const FormattedText text = ReadText(*layer.Get());
    py::list runs;
    for (const FormattedText::Run &run : text.formats) {
        const std::size_t first = CharactersOf(text.text, run.first);
        runs.append(
            py::make_tuple(first, CharactersOf(text.text, run.first + run.count) - first, run.format));
    }
    return runs;
}

} // namespace

void BindText(py::module_ &module)
{
    BindFormat(module);
    Type type(module, "TextLayer", "A layer of styled text. Positions and counts are of characters.");
    BindChanges(type);
    type.def_property_readonly(
        "formats", &FormatsOf,
        "A list of (first, count, TextFormat) for each stretch of the text of one format.");
    BindEffectChanges<TextLayerHandle>(type);
}

} // namespace marlet::python
