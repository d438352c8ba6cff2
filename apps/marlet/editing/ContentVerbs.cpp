#include "Editing.h"
#include "Verb.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/operations/layers/MaskOperations.h>
#include <marlet/operations/layers/TextOperations.h>
#include <marlet/operations/layers/TrackerOperations.h>
#include <marlet/tracking/Tracker.h>

#include <algorithm>
#include <array>

namespace marlet::tool
{

using namespace project;

namespace
{

std::shared_ptr<TextLayer> Title(const Editing &editing)
{
    const LayerPointer layer = editing.Layer();
    auto text = std::dynamic_pointer_cast<TextLayer>(layer);
    if (!text)
        throw Failure("Layer " + Quoted(layer->Name()) + " is no text");
    return text;
}

std::size_t Position(const Editing &editing, const char *option)
{
    const int position = editing.Words().Integer(option);
    if (position < 0)
        throw UsageError(std::string(option) + " counts from 0");
    return static_cast<std::size_t>(position);
}

/// What is put in, with \n for a break between paragraphs.
WideString NewText(const Editing &editing)
{
    WideString text = FromUtf8(editing.Operand(2));
    for (std::size_t at = 0; (at = text.find(u"\\n", at)) != WideString::npos; ++at)
        text.replace(at, 2, 1, u'\n');
    return text;
}

/// All that is not narrowed by an option.
TextRange Range(const Editing &editing)
{
    TextRange range;
    if (editing.Words().Has("--from"))
        range.first = Position(editing, "--from");
    if (editing.Words().Has("--length"))
        range.count = Position(editing, "--length");
    return range;
}

void TellOfText(const Editing &editing, const TextLayer &title)
{
    editing.Tell("text", Quoted(ReadText(title).text) + " of layer " + Quoted(title.Name()));
}

void Set(Editing &editing)
{
    const auto title = Title(editing);
    SetText(editing.Document(), title, NewText(editing));
    TellOfText(editing, *title);
}

void Insert(Editing &editing)
{
    const std::size_t position = Position(editing, "--from");
    const auto title = Title(editing);
    InsertText(editing.Document(), title, position, NewText(editing));
    TellOfText(editing, *title);
}

void Replace(Editing &editing)
{
    const TextRange range = Range(editing);
    const auto title = Title(editing);
    ReplaceText(editing.Document(), title, range, NewText(editing));
    TellOfText(editing, *title);
}

/// As the preview counts them.
TextLayer::JustificationType Justification(const Editing &editing)
{
    const std::string &name = editing.Words().Text("--align");
    const std::array<const char *, 3> names{"left", "centre", "right"};
    const auto place = std::find(names.begin(), names.end(), name);
    if (place == names.end())
        throw UsageError("--align: \"" + name + "\" is none of left, centre, right");
    return TextLayer::JustificationType{static_cast<int>(place - names.begin())};
}

/// The format of the first character of the range, or one to start from, with what is given.
TextLayer::Format NewFormat(const Editing &editing, const TextLayer &title, const TextRange &range)
{
    const FormattedText text = ReadText(title, range);
    TextLayer::Format format;
    if (!text.formats.empty()) {
        format = text.formats.front().format;
    } else {
        format.family = u"DejaVu Sans";
        format.style = u"Book";
        format.size = 36;
        format.fillColor = {1, 1, 1, 1};
    }
    const Arguments &arguments = editing.Words();
    if (arguments.Has("--family"))
        format.family = editing.WideText("--family");
    if (arguments.Has("--face"))
        format.style = editing.WideText("--face");
    if (arguments.Has("--height"))
        format.size = arguments.Integer("--height");
    if (arguments.Has("--colour"))
        format.fillColor = editing.Colour();
    if (format.size < 1)
        throw UsageError("--height: a font is at least one pixel high");
    return format;
}

void Style(Editing &editing)
{
    const Arguments &arguments = editing.Words();
    const bool isAligned = arguments.Has("--align");
    const bool isFormatted = arguments.Has("--family") || arguments.Has("--face") ||
                             arguments.Has("--height") || arguments.Has("--colour");
    if (!isAligned && !isFormatted)
        throw UsageError("nothing of the style is given");
    const auto title = Title(editing);
    const TextRange range = Range(editing);
    Edit edit(editing.Document(), u"Style text");
    if (isFormatted)
        SetTextFormat(editing.Document(), title, range, NewFormat(editing, *title, range));
    if (isAligned)
        SetJustification(editing.Document(), title, range, Justification(editing));
    edit.Commit();
    editing.Tell("styled", Quoted(ReadText(*title, range).text) + " of layer " + Quoted(title->Name()));
}

PictureRectangle Rectangle(const Editing &editing)
{
    const PixelSize size = editing.Words().Size("--size");
    PixelPosition middle;
    if (editing.Words().Has("--middle"))
        middle = editing.Words().Position("--middle");
    return {{middle.x, middle.y}, static_cast<float>(size.width), static_cast<float>(size.height)};
}

void TellOfMask(const Editing &editing, const Mask &mask)
{
    editing.Tell("added", "mask " + Quoted(mask.Name()) + "  " + mask.ID().ToNarrowString());
}

void MaskRectangle(Editing &editing)
{
    const PictureRectangle rectangle = Rectangle(editing);
    const float radius = editing.Words().Has("--radius") ? editing.Words().Float("--radius") : 0;
    TellOfMask(editing, *AddRectangleMask(editing.Document(), editing.Layer(), FromUtf8(editing.Operand(2)),
                                          rectangle, radius));
}

void MaskEllipse(Editing &editing)
{
    const PictureRectangle rectangle = Rectangle(editing);
    TellOfMask(editing,
               *AddEllipseMask(editing.Document(), editing.Layer(), FromUtf8(editing.Operand(2)), rectangle));
}

void Follow(Editing &editing)
{
    FollowOptions options;
    if (editing.Words().Has("--tolerance"))
        options.tolerance = editing.Words().Real("--tolerance");
    options.rotation = editing.Words().Has("--rotation");
    options.scale = editing.Words().Has("--scale");
    const CompositionPointer composition = editing.Composition();
    const AssetLayerPointer tracked = FindAssetLayer(*composition, editing.Operand(1));
    const TrackerPointer tracker = FindTracker(*tracked, editing.Operand(2));
    const LayerPointer layer = FindLayer(*composition, editing.Words().Text("--with"));
    FollowTracker(editing.Document(), tracker, layer, options);
    editing.Tell("follows", "tracker " + Quoted(tracker->Name()) + ": layer " + Quoted(layer->Name()));
}

} // namespace

const std::vector<Verb> &ContentVerbs()
{
    static const std::vector<Verb> verbs{
        {"text set", "COMPOSITION LAYER TEXT", Set},
        {"text insert", "COMPOSITION LAYER TEXT --from N", Insert},
        {"text replace", "COMPOSITION LAYER TEXT --from N [--length N]", Replace},
        {"text style",
         "COMPOSITION LAYER [--from N] [--length N] [--family F] [--face F] [--height N] [--colour RRGGBB] "
         "[--align A]",
         Style},
        {"mask rectangle", "COMPOSITION LAYER NAME --size WxH [--middle X,Y] [--radius N]", MaskRectangle},
        {"mask ellipse", "COMPOSITION LAYER NAME --size WxH [--middle X,Y]", MaskEllipse},
        {"tracker follow", "COMPOSITION LAYER TRACKER --with LAYER [--tolerance N] [--rotation] [--scale]",
         Follow},
    };
    return verbs;
}

} // namespace marlet::tool
