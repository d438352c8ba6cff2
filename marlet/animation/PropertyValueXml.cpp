#include <marlet/animation/PropertyValueXml.h>

#include <marlet/animation/PropertyValueTraits.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <boost/variant/apply_visitor.hpp>

namespace marlet::project
{

namespace
{

template <class T> void Write(XmlWriter &writer, const T &value)
{
    const char *tag = ValueTraits<T>::kTag;
    if constexpr (HasFields<T>) {
        const XmlElement element(writer, tag);
        for (const auto &field : ValueTraits<T>::kFields)
            writer.Attribute(field.name, value.*field.member);
    } else if constexpr (std::is_same_v<T, unsigned char>) {
        writer.Child(tag, static_cast<unsigned int>(value));
    } else {
        writer.Child(tag, value);
    }
}

template <class T> T Read(const XmlCursor &element)
{
    T value{};
    if constexpr (HasFields<T>) {
        for (const auto &field : ValueTraits<T>::kFields) {
            float component = 0; // also of those that are held and written as double
            element.RequiredAttribute(field.name, component);
            value.*field.member = component;
        }
    } else if constexpr (std::is_same_v<T, unsigned char>) {
        unsigned int number = 0;
        element.Get(number);
        value = static_cast<unsigned char>(number);
    } else {
        element.Get(value);
    }
    return value;
}

template <class T> bool ReadIfNamed(const XmlCursor &element, std::string_view name, PropertyValue &value)
{
    if (name != ValueTraits<T>::kTag)
        return false;
    element.MarkKnown();
    value = Read<T>(element);
    return true;
}

template <class... T> void ReadAlternative(const XmlCursor &element, boost::variant<T...> &value)
{
    const std::string_view name = element.Name();
    if ((ReadIfNamed<T>(element, name, value) || ...))
        return;
    LoadContext *const context = LoadContext::Current();
    if (!context)
        return;
    context->CountLostValue();
    context->AddUnknown(element,
                        "no value is of the type " + NarrowString(name) + "; another stands in for it");
    context->MarkAllKnown(element);
}

} // namespace

void WriteValue(XmlWriter &writer, const PropertyValue &value)
{
    boost::apply_visitor([&writer](const auto &alternative) { Write(writer, alternative); }, value);
}

void ReadValue(const XmlCursor &parent, PropertyValue &value)
{
    const XmlCursor element = parent.FirstChild();
    if (!element.IsNull())
        ReadAlternative(element, value);
}

} // namespace marlet::project
