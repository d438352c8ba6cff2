#include "Bindings.h"
#include "KeyFrameHandles.h"
#include "Values.h"

#include <utility>

namespace marlet::python
{

namespace
{

const PropertyManager &Read(const std::shared_ptr<PropertyManager> &properties)
{
    return *properties;
}

PropertyHandle Find(const PropertiesHandle &properties, const NarrowString &name)
{
    PropertyHandle property{properties.owner, name};
    property.Properties();
    return property;
}

void SetStatic(const PropertyHandle &property, const py::object &value)
{
    const PropertyValue before = Read(property.Properties()).StaticValue(property.name.c_str());
    const PropertyValue after = FromPython(value, before);
    property.Change(u"Set " + FromUtf8(property.name), [&](PropertyManager &properties) {
        properties.StaticValue(property.name.c_str()) = after;
    });
}

py::array Sample(const PropertyHandle &property, const py::object &times)
{
    const IntegerArray at = ToIntegers(times);
    const auto properties = property.Properties();
    const PropertyManager::PropertyID id = properties->GetPropertyID(property.name.c_str());
    return ValuesArray(at.shape, [&](int i) {
        return properties->ValueAtTime(id, at.values.empty() ? 0 : at.values[static_cast<std::size_t>(i)]);
    });
}

void BindMapping(py::module_ &module)
{
    py::class_<PropertiesHandle> type(module, "Properties",
                                      "The properties of an object, as a mapping from names to Property, "
                                      "in the order of the file. Assigning to a name sets the value that "
                                      "the property has without key frames.");
    type.def("__getitem__", &Find, py::arg("name"));
    type.def(
        "__setitem__",
        [](const PropertiesHandle &properties, const NarrowString &name, const py::object &value) {
            SetStatic(Find(properties, name), value);
        },
        py::arg("name"), py::arg("value"));
    type.def("__len__", [](const PropertiesHandle &properties) {
        return properties.owner->Properties()->PropertyCount();
    });
    type.def("__iter__", [](const PropertiesHandle &properties) {
        return py::iter(py::cast(properties.owner->Properties()->PropertyNames()));
    });
    type.def("__contains__", [](const PropertiesHandle &properties, const py::object &name) {
        return py::isinstance<py::str>(name) &&
               properties.owner->Properties()->HasProperty(py::cast<NarrowString>(name).c_str());
    });
    type.def("__repr__", [](const PropertiesHandle &properties) {
        return "<marlet.Properties " +
               std::string(py::repr(py::cast(properties.owner->Properties()->PropertyNames()))) + ">";
    });
}

void BindValues(py::class_<PropertyHandle> &type)
{
    type.def_property(
        "value",
        [](const PropertyHandle &property) {
            return ToPython(Read(property.Properties()).StaticValue(property.name.c_str()));
        },
        &SetStatic,
        "The value while there are no key frames. What is assigned is given the type of the property: a "
        "number, a bool, a sequence of numbers, or an object or the text of its ID.");
    type.def_property_readonly(
        "default",
        [](const PropertyHandle &property) {
            return ToPython(Read(property.Properties()).DefaultValue(property.name.c_str()));
        },
        "The value that a new object has.");
    type.def(
        "value_at",
        [](const PropertyHandle &property, int time) {
            return ToPython(property.Properties()->ValueAtTime(property.name.c_str(), time));
        },
        py::arg("time"), "The value at a time in milliseconds from the start of the owner.");
    type.def("sample", &Sample, py::arg("times"),
             "The values at many times, in milliseconds from the start of the owner, as one array: a "
             "number or a row of components for each time. Fastest with an array of times.");
}

void BindFacts(py::class_<PropertyHandle> &type)
{
    const auto fact = [&type](const char *name, bool (PropertyManager::*ask)(const char *) const,
                              const char *help) {
        type.def_property_readonly(
            name,
            [ask](const PropertyHandle &property) {
                return (*property.Properties().*ask)(property.name.c_str());
            },
            help);
    };
    type.def_readonly("name", &PropertyHandle::name, "Its name.");
    type.def_property_readonly(
        "type",
        [](const PropertyHandle &property) {
            return TypeName(Read(property.Properties()).StaticValue(property.name.c_str()));
        },
        "'int', 'uint', 'byte', 'float', 'double', 'bool', 'scale3d', 'orientation3d', 'color', 'point2', "
        "'point3', 'vector2', 'vector3' or 'id'.");
    fact("can_animate", &PropertyManager::CanAnimate, "Whether it may have key frames.");
    fact("is_static", &PropertyManager::IsStatic, "Whether it has no key frames that count.");
    fact("is_default", &PropertyManager::IsDefault, "Whether it is static and has its default value.");
    fact("is_spatial", &PropertyManager::IsSpatial,
         "Whether it is a point that moves along a path in space.");
    type.def_property(
        "expression",
        [](const PropertyHandle &property) -> std::optional<NarrowString> {
            const auto properties = property.Properties();
            if (!properties->HasExpression(property.name.c_str()))
                return std::nullopt;
            return Read(properties).Expression(property.name.c_str());
        },
        [](const PropertyHandle &property, const std::optional<NarrowString> &text) {
            property.Change(u"Set expression", [&](PropertyManager &properties) {
                if (text)
                    properties.Expression(property.name.c_str()) = *text;
                else
                    properties.RemoveExpression(property.name.c_str());
            });
        },
        "The text of the expression, which nothing here evaluates, or None.");
}

} // namespace

void BindPropertyClasses(py::module_ &module)
{
    BindMapping(module);
    py::class_<PropertyHandle> type(
        module, "Property",
        "A property of an object: a value, or key frames over time. Times are whole milliseconds from the "
        "start of the owner, such as its layer.");
    BindValues(type);
    BindFacts(type);
    type.def_property_readonly(
        "key_frames",
        [](const PropertyHandle &property) {
            property.Properties();
            return KeyFramesHandle{std::make_shared<PropertyHandle>(property)};
        },
        "The key frames, as a sequence in the order of their times.");
    type.def("__repr__",
             [](const PropertyHandle &property) { return "<marlet.Property '" + property.name + "'>"; });
}

} // namespace marlet::python
