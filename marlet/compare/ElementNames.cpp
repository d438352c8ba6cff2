#include <marlet/compare/ElementNames.h>

#include <unordered_map>

namespace marlet::project
{

namespace
{

const std::unordered_map<std::string_view, NarrowString> &Nouns()
{
    static const std::unordered_map<std::string_view, NarrowString> nouns{
        {"Project", ""},
        {"AssetList", ""},
        {"Assets", ""},
        {"Layers", ""},
        {"LayerBase", ""},
        {"PropertyManager", ""},
        {"Animation", ""},
        {"Static", "static value"},
        {"Default", "default value"},
        {"Value", "value"},
        {"Effects", ""},
        {"Masks", ""},
        {"Trackers", ""},
        {"Points", ""},
        {"MotionPath", ""},
        {"Video", ""},
        {"Audio", ""},
        {"Objects", ""},
        {"InTrans", "incoming transition"},
        {"OutTrans", "outgoing transition"},
        {"Transition", ""},
        {"Instances", ""},
        {"Metadata", "metadata"},
        {"MediaAsset", "media"},
        {"ImageAsset", "image"},
        {"SolidAsset", "solid"},
        {"CompositionAsset", "composition"},
        {"BinFolder", "folder"},
        {"SubFolders", ""},
        {"AssetLayer", "layer"},
        {"CameraLayer", "camera"},
        {"LightLayer", "light"},
        {"PointLayer", "null point"},
        {"TextLayer", "text layer"},
        {"GradeLayer", "grade"},
        {"Effect3DLayer", "3D effect layer"},
        {"Instance", "effect"},
        {"Mask", "mask"},
        {"Point", "path point"},
        {"Tracker", "tracker"},
        {"Primary", "primary point"},
        {"Secondary", "secondary point"},
        {"Key", "key frame"},
        {"EditorSequence", "sequence"},
        {"VideoTrack", "video track"},
        {"AudioTrack", "audio track"},
        {"VisualObject", "picture"},
        {"AudioObject", "sound"},
        {"ViewerState", "viewer"},
        {"AudioVideoSettings", "format"},
        {"RenderSettings", "render settings"},
        {"ProjectSettings", "settings"},
    };
    return nouns;
}

/// The references of a folder to its assets are all alike but for what they say.
bool IsReference(const TextElement &element, const TextElement &owner)
{
    return element.Tag() == "ID" && owner.Tag() == "Assets";
}

NarrowString KeyOf(const TextElement &element, const TextElement &owner)
{
    const NarrowString tag(element.Tag());
    if (IsReference(element, owner))
        return tag + " " + element.Text();
    // A property may be called as it likes.
    if (owner.Tag() == "PropertyManager")
        return tag;
    for (const NarrowString &id : {BaseOf(element).ChildText("ID"), element.Attribute("ID")})
        if (!id.empty())
            return tag + " " + id;
    if (tag == "Key")
        return tag + " " + element.Attribute("Time");
    const NarrowString name = element.Attribute("name") + element.Attribute("Name") + element.Attribute("K");
    return name.empty() ? tag : tag + " " + name;
}

} // namespace

TextElement BaseOf(const TextElement &element)
{
    const bool isLayer = element.Tag().ends_with("Layer");
    const TextElement base = isLayer ? element.Child("LayerBase") : TextElement();
    return base.IsNull() ? element : base;
}

std::vector<NarrowString> KeysOf(const TextElement &owner, const std::vector<TextElement> &children)
{
    std::vector<NarrowString> keys;
    keys.reserve(children.size());
    std::unordered_map<NarrowString, int> turns;
    for (const TextElement &child : children) {
        NarrowString key = KeyOf(child, owner);
        if (const int turn = ++turns[key]; turn > 1)
            key += " #" + std::to_string(turn);
        keys.push_back(std::move(key));
    }
    return keys;
}

bool IsSorted(const TextElement &owner)
{
    return owner.Tag() == "Objects" || owner.Tag() == "Animation";
}

bool IsValue(const TextElement &element)
{
    return element.Tag() == "Static" || element.Tag() == "Value" || element.Tag() == "Default";
}

NarrowString ValueText(const TextElement &element)
{
    const std::vector<TextElement> children = element.Children();
    if (IsValue(element) && children.size() == 1)
        return ValueText(children[0]);
    const TextElement::Attributes attributes = element.AllAttributes();
    NarrowString text = children.empty() ? element.Text() : NarrowString();
    if (!text.empty() || attributes.empty())
        return text;
    if (NarrowString transition = element.Attribute("transID"); !transition.empty())
        return transition;
    for (const auto &[name, value] : attributes)
        text += (text.empty() ? "(" : ", ") + WithoutReferences(value);
    return text + ")";
}

NarrowString NameOf(const TextElement &element, const TextElement &owner)
{
    if (owner.Tag() == "PropertyManager")
        return "property " + NarrowString(element.Tag());
    const auto noun = Nouns().find(element.Tag());
    const NarrowString kind = noun == Nouns().end() ? NarrowString(element.Tag()) : noun->second;
    if (element.Tag() == "Key")
        return kind + " at " + element.Attribute("Time") + " ms";
    for (const NarrowString &name : {BaseOf(element).ChildText("Name"), element.Attribute("name")})
        if (!name.empty() && !kind.empty())
            return kind + " \"" + name + "\"";
    return kind;
}

NarrowString FieldNameOf(const TextElement &element, const TextElement &owner)
{
    if (owner.Tag() == "Instances")
        return "use by " + element.Attribute("ID");
    if (IsReference(element, owner))
        return "reference to " + element.Text();
    if (element.Tag() == "Item")
        return "item " + element.Attribute("K");
    const auto noun = Nouns().find(element.Tag());
    return noun == Nouns().end() || noun->second.empty() ? NarrowString(element.Tag()) : noun->second;
}

NarrowString SpanOf(const TextElement &element)
{
    if (element.Tag() != "VisualObject" && element.Tag() != "AudioObject")
        return "";
    return " of frames " + element.ChildText("StartFrame") + " to " + element.ChildText("EndFrame");
}

} // namespace marlet::project
