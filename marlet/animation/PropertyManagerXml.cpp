#include <marlet/animation/KeyFrameList_Impl.h>
#include <marlet/animation/PropertyManager_Impl.h>
#include <marlet/animation/PropertyValueXml.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

namespace marlet::project
{

namespace
{

constexpr char kTag[] = "PropertyManager";
constexpr auto kWarning = LoadEntry::Severity::Warning;

void WriteValueChild(XmlWriter &writer, const char *tag, const PropertyValue &value)
{
    const XmlElement element(writer, tag);
    WriteValue(writer, value);
}

std::size_t LostValues()
{
    const LoadContext *const context = LoadContext::Current();
    return context ? context->LostValues() : 0;
}

/// What can be read, but is hardly meant.
void TellOfOddities(const XmlCursor &element, const Property &property)
{
    if (property.staticValue.which() != property.defaultValue.which())
        TellLoad(kWarning, element.Find("Static"), "the value is of another type than the default");
    int before = 0;
    bool isFirst = true;
    property.keyFrames.ForEach([&](const KeyFrame &key) {
        if (!std::exchange(isFirst, false) && key.Time() == before)
            TellLoad(kWarning, element.Find("Animation"),
                     "several key frames stand at time " + std::to_string(before));
        before = key.Time();
        if (key.Value().which() != property.defaultValue.which())
            TellLoad(kWarning, element.Find("Animation"),
                     "the key frame at time " + std::to_string(before) +
                         " has a value of another type than the default");
    });
}

} // namespace

WideString PropertyManager::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void PropertyManager::Serialize(void *document, void *parent) const
{
    Require(document, "document");
    Require(parent, "parent");
    AppendXmlToDom(Serialize(), document, parent);
}

void PropertyManager::Deserialize(const WideString &xml)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

void PropertyManager::Deserialize(void *element)
{
    Require(element, "element");
    Deserialize(XmlFromDom(element));
}

// Writing and reading stand apart: the elements are named by the properties, and reading makes them.

void PropertyManager::Serialize(XmlWriter &writer) const
{
    const XmlElement manager(writer, kTag, 0, impl_->kept);
    for (const ValuePtr<Property> &property : impl_->properties) {
        const auto &kept = property->kept;
        if (kept && HashOfText(*property) == kept->asRead)
            writer.Element(property->name, kept->source);
        else
            Write(writer, *property);
    }
}

void PropertyManager::Write(XmlWriter &writer, const Property &property)
{
    const XmlElement element(writer, property.name);
    writer.Attribute("Type", property.type);
    writer.Attribute("Spatial", property.isSpatial);
    WriteValueChild(writer, "Default", property.defaultValue);
    WriteValueChild(writer, "Static", property.staticValue);
    if (!property.keyFrames.IsEmpty()) {
        const XmlElement animation(writer, "Animation");
        for (const KeyFramePlace &place : property.keyFrames.impl_->InOrder().places)
            KeyFrameList::SerializeKeyFrame(place.node->key, writer);
    }
    if (!property.expression.empty()) {
        const XmlElement expression(writer, "Expression");
        writer.Text(property.expression);
    }
}

std::size_t PropertyManager::HashOfText(const Property &property)
{
    return std::hash<WideString>()(XmlText([&property](XmlWriter &writer) { Write(writer, property); }));
}

void PropertyManager::KeepAsItCame(const char *name, const PropertyManager &from)
{
    Property &property = impl_->At(name);
    if (const auto &kept = from.impl_->At(name).kept)
        property.kept = std::make_shared<KeptProperty>(KeptProperty{kept->source, HashOfText(property)});
}

void PropertyManager::ReadKeyFrames(const XmlCursor &element, KeyFrameList &keyFrames)
{
    int last = std::numeric_limits<int>::min();
    for (XmlCursor key = element.Find("Key"); !key.IsNull(); key = key.Next("Key")) {
        const KeyFrame read = KeyFrameList::DeserializeKeyFrame(key);
        if (read.Time() < last)
            TellLoad(kWarning, key, "the key frame stands behind a later one; it is put in order of time");
        last = std::max(last, read.Time());
        keyFrames.Add(read);
    }
}

void PropertyManager::Deserialize(const XmlCursor &element)
{
    element.RequireHeader(kTag, 0);
    Clear();
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        const std::size_t lostBefore = LostValues();
        child.RequireAttribute("Type");
        Type type = Type::Animatable;
        child.Attribute("Type", type);
        if (type != Type::Animatable && type != Type::NotAnimatable)
            TellOfChoice(child, "Type", static_cast<int>(type));
        int spatial = 0;
        child.Attribute("Spatial", spatial);
        if (spatial != 0 && spatial != 1)
            TellLoad(kWarning, child,
                     "Spatial is " + std::to_string(spatial) + ", which is neither 0 nor 1; 0 is read");
        const XmlCursor defaultElement = child.Require("Default");
        const XmlCursor staticElement = child.Require("Static");
        PropertyValue defaultValue;
        PropertyValue staticValue;
        ReadValue(defaultElement, defaultValue);
        ReadValue(staticElement, staticValue);

        Property *property = impl_->Create(child.Name(), defaultValue, type, spatial == 1);
        if (property == nullptr)
            continue; // the first one of a name counts
        child.MarkKnown();
        property->staticValue = staticValue;
        ReadKeyFrames(child.Find("Animation"), property->keyFrames);
        property->expression = child.Find("Expression").Text();
        LoadContext *const context = LoadContext::Current();
        if (!context)
            continue;
        TellOfOddities(child, *property);
        if (context->KeepsUnknown() && context->LostValues() != lostBefore) {
            property->kept = std::make_shared<KeptProperty>(
                KeptProperty{NarrowString(context->SourceOf(child)), HashOfText(*property)});
            context->MarkWhole(child);
        }
    }
    Keep(element);
}

void PropertyManager::Keep(const XmlCursor &element)
{
    impl_->kept = KeptXml(element);
}

} // namespace marlet::project
