#include "Editing.h"
#include "Verb.h"
#include "document/LayerContent.h"
#include "options/FindByIdOrName.h"
#include "options/TypedValue.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/animation/KeyFrame.h>
#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/history/Edit.h>
#include <marlet/masks/Mask.h>
#include <marlet/operations/curves/KeyFrameOperations.h>
#include <marlet/plugins/EffectInstance.h>

namespace marlet::tool
{

using namespace project;

namespace
{

using Keys = std::vector<kytl::KyID>;

template <class Owner>
AnimatedProperty PropertyOf(const Owner &owner, const PropertyManager &properties, const std::string &name)
{
    if (!properties.HasProperty(name.c_str()))
        throw NoSuch("property", name, properties.PropertyNames());
    return AnimatedProperty(owner, name);
}

/// Of the layer, or of its effect or mask that is named.
AnimatedProperty Property(const Editing &editing)
{
    const Arguments &arguments = editing.Words();
    if (arguments.Has("--effect") && arguments.Has("--mask"))
        throw UsageError("either --effect or --mask, not both");
    const LayerPointer layer = editing.Layer();
    const std::string &name = editing.Operand(2);
    if (arguments.Has("--effect")) {
        const auto effect = FindByIdOrName(EffectsOf(*layer), "effect", arguments.Text("--effect"));
        return PropertyOf(std::static_pointer_cast<PluginInstance>(effect), effect->Properties(), name);
    }
    if (arguments.Has("--mask")) {
        const auto mask = FindByIdOrName(MasksOf(*layer), "mask", arguments.Text("--mask"));
        return PropertyOf(mask, mask->Animation(), name);
    }
    return PropertyOf(layer, layer->Animation(), name);
}

/// That of --times, or else all times.
TimeSpan Span(const Editing &editing)
{
    if (!editing.Words().Has("--times"))
        return {};
    const std::vector<IntegerRange> ranges = editing.Words().Ranges("--times");
    if (ranges.size() != 1)
        throw UsageError("--times is one range, such as 0..1000");
    return {ranges[0].first, ranges[0].last};
}

void TellOfKeys(const Editing &editing, const char *what, std::size_t count, const AnimatedProperty &property)
{
    editing.Tell(what, Counted(count, "key frame") + " of " + property.Name() + " of layer " +
                           Quoted(editing.Layer()->Name()));
}

/// Does something to the key frames of the span.
template <class Operation> void ToKeys(const Editing &editing, const char *what, const Operation &operation)
{
    const AnimatedProperty property = Property(editing);
    const Keys keys = KeyFramesIn(property, Span(editing));
    operation(property, keys);
    TellOfKeys(editing, what, keys.size(), property);
}

void Insert(Editing &editing)
{
    const int time = editing.Words().Integer("--time");
    const AnimatedProperty property = Property(editing);
    InsertKeyFrame(editing.Document(), property, time);
    TellOfKeys(editing, "inserted", 1, property);
}

void Remove(Editing &editing)
{
    ToKeys(editing, "removed", [&](const AnimatedProperty &property, const Keys &keys) {
        RemoveKeyFrames(editing.Document(), property, keys);
    });
}

void Move(Editing &editing)
{
    const int by = editing.Words().Integer("--by");
    ToKeys(editing, "moved", [&](const AnimatedProperty &property, const Keys &keys) {
        MoveKeyFrames(editing.Document(), property, keys, by);
    });
}

void Scale(Editing &editing)
{
    const double factor = editing.Words().Real("--factor");
    const int pivot = editing.Words().Integer("--time");
    ToKeys(editing, "scaled", [&](const AnimatedProperty &property, const Keys &keys) {
        ScaleKeyFrames(editing.Document(), property, keys, pivot, factor);
    });
}

void Reverse(Editing &editing)
{
    ToKeys(editing, "reversed", [&](const AnimatedProperty &property, const Keys &) {
        ReverseKeyFrames(editing.Document(), property, Span(editing));
    });
}

void Ease(Editing &editing)
{
    const std::string &name = editing.Words().Text("--easing");
    const std::optional<Easing> easing = FindEasing(name);
    if (!easing)
        throw UsageError("--easing: \"" + name +
                         "\" is none of linear, ease-in, ease-out, ease-in-out, hold");
    ToKeys(editing, "eased", [&](const AnimatedProperty &property, const Keys &keys) {
        EaseKeyFrames(editing.Document(), property, keys, *easing);
    });
}

void Simplify(Editing &editing)
{
    const double tolerance = editing.Words().Real("--tolerance");
    const AnimatedProperty property = Property(editing);
    TellOfKeys(editing, "removed", SimplifyKeyFrames(editing.Document(), property, tolerance, Span(editing)),
               property);
}

void Bake(Editing &editing)
{
    const double rate = editing.Words().Real("--rate");
    const AnimatedProperty property = Property(editing);
    BakeKeyFrames(editing.Document(), property, rate, Span(editing));
    TellOfKeys(editing, "baked", KeyFramesIn(property, Span(editing)).size(), property);
}

/// Of the property, or of its key frame at a time, which comes in if there is none.
void SetValue(Editing &editing)
{
    const AnimatedProperty property = Property(editing);
    const char *name = property.Name().c_str();
    const auto &properties = property.Properties();
    const bool hasTime = editing.Words().Has("--time");
    if (!properties->IsStatic(name) && !hasTime)
        throw UsageError(property.Name() + " has key frames: --time says which");
    const int time = hasTime ? editing.Words().Integer("--time") : 0;
    const PropertyValue before = property.ValueAt(time);
    const std::string &text = editing.Words().Text("--value");
    const std::optional<PropertyValue> value = ParseValue(text, before);
    if (!value)
        throw UsageError("--value: \"" + text + "\" is no value of " + property.Name() + ", such as " +
                         ValueText(before));
    Edit edit(editing.Document(), u"Set " + FromUtf8(property.Name()));
    if (hasTime) {
        const kytl::KyID key = InsertKeyFrame(editing.Document(), property, time);
        property.Touch(edit, {key});
        property.KeysToEdit().GetByID(key).SetValue(*value);
    } else {
        property.Touch(edit);
        properties->StaticValue(name) = *value;
    }
    edit.Commit();
    editing.Tell("set", property.Name() + " of layer " + Quoted(editing.Layer()->Name()) + " to " +
                            ValueText(*value));
}

Verb OfKeys(const char *name, const std::string &words, void (*run)(Editing &))
{
    return {name, "COMPOSITION LAYER PROPERTY " + words + "[--effect E | --mask M]", run};
}

} // namespace

const std::vector<Verb> &CurveVerbs()
{
    static const std::vector<Verb> verbs{
        OfKeys("value set", "--value V [--time MS] ", SetValue),
        OfKeys("keys insert", "--time MS ", Insert),
        OfKeys("keys remove", "[--times MS..MS] ", Remove),
        OfKeys("keys move", "--by MS [--times MS..MS] ", Move),
        OfKeys("keys scale", "--factor X --time MS [--times MS..MS] ", Scale),
        OfKeys("keys reverse", "[--times MS..MS] ", Reverse),
        OfKeys("keys ease", "--easing E [--times MS..MS] ", Ease),
        OfKeys("keys simplify", "--tolerance X [--times MS..MS] ", Simplify),
        OfKeys("keys bake", "--rate R [--times MS..MS] ", Bake),
    };
    return verbs;
}

} // namespace marlet::tool
