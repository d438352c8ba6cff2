#include "Bindings.h"
#include "KeyFrameHandles.h"
#include "Values.h"

#include <marlet/operations/curves/KeyFrameOperations.h>

#include <utility>

namespace marlet::python
{

namespace
{

using Keys = std::vector<KeyFrameHandle>;

/// Key frames on their way from one property to another.
struct CopiedKeyFrames {
    std::vector<KeyFrame> keys;
};

const KeyFrameList &ListOf(const KeyFramesHandle &keys, const std::shared_ptr<PropertyManager> &properties)
{
    return std::as_const(*properties).KeyFrames(keys.property->name.c_str());
}

std::vector<kytl::KyID> Identifiers(const KeyFramesHandle &keys)
{
    const auto properties = keys.Properties();
    return ListOf(keys, properties).Identifiers();
}

/// Those that are named, or all.
std::vector<kytl::KyID> Chosen(const KeyFramesHandle &keys, const std::optional<Keys> &chosen)
{
    if (!chosen)
        return Identifiers(keys);
    std::vector<kytl::KyID> ids;
    for (const KeyFrameHandle &key : *chosen) {
        key.Get();
        ids.push_back(key.ID());
    }
    return ids;
}

TimeSpan Span(std::optional<int> first, std::optional<int> last)
{
    TimeSpan span;
    span.first = first.value_or(span.first);
    span.last = last.value_or(span.last);
    return span;
}

py::list ShowKeys(const KeyFramesHandle &keys, const std::vector<kytl::KyID> &ids)
{
    py::list shown(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i)
        shown[i] = KeyFrameHandle(keys.property, ids[i]);
    return shown;
}

py::list ShowAllKeys(const KeyFramesHandle &keys)
{
    const auto properties = keys.Properties();
    const KeyFrameList &list = ListOf(keys, properties);
    py::list shown(list.Count());
    std::size_t place = 0;
    list.ForEach([&](const KeyFrame &key) { shown[place++] = KeyFrameHandle(keys.property, key); });
    return shown;
}

py::object Item(const KeyFramesHandle &keys, const py::object &index)
{
    // What is not a slice and no whole number is told so by the list.
    const std::vector<kytl::KyID> ids = Identifiers(keys);
    if (!PyIndex_Check(index.ptr()))
        return ShowKeys(keys, ids)[index];
    const auto at = PyNumber_AsSsize_t(index.ptr(), PyExc_IndexError);
    if (PyErr_Occurred())
        throw py::error_already_set();
    const auto count = static_cast<py::ssize_t>(ids.size());
    const auto place = at < 0 ? at + count : at;
    if (place < 0 || place >= count)
        throw py::index_error("There are only " + std::to_string(count) + " key frames");
    return py::cast(KeyFrameHandle(keys.property, ids[static_cast<std::size_t>(place)]));
}

/// Runs an operation on key frames as an edit, and tells a plug-in of it.
template <class Function>
auto Run(const KeyFramesHandle &keys, const char16_t *label, const Function &operation)
{
    const AnimatedProperty property = keys.property->Animated();
    const PropertyOwner &owner = *keys.property->owner;
    const auto document = keys.Owner();
    return Edited(*document, label, [&](Edit &edit) {
        if constexpr (std::is_void_v<decltype(operation(document->Open(), property))>) {
            operation(document->Open(), property);
            owner.Announce(edit, property.Name().c_str());
        } else {
            auto result = operation(document->Open(), property);
            owner.Announce(edit, property.Name().c_str());
            return result;
        }
    });
}

void Remove(const KeyFramesHandle &keys, const std::vector<kytl::KyID> &ids)
{
    Run(keys, u"Remove key frames", [&](const auto &project, const AnimatedProperty &property) {
        RemoveKeyFrames(project, property, ids);
    });
}

KeyFrameHandle Set(const KeyFramesHandle &keys, int time, const py::object &value)
{
    const auto properties = keys.Properties();
    const char *const name = keys.property->name.c_str();
    if (!properties->CanAnimate(name))
        throw Failure("OperationError", "The property " + keys.property->name + " cannot be animated");
    const PropertyValue after = FromPython(value, std::as_const(*properties).StaticValue(name));
    const PropertyOwner &owner = *keys.property->owner;
    return Edited(*keys.Owner(), u"Set key frame", [&](Edit &edit) {
        KeyFrameList &list = properties->KeyFrames(name);
        const KeyFrame added(time, after);
        const kytl::KyID id = list.Exists(time) ? std::as_const(list).At(time).ID() : added.ID();
        edit.TouchKeyFrame(properties, name, id, owner.Kind(), owner.ID());
        if (id == added.ID())
            list.Add(added);
        else
            list.GetByID(id).SetValue(after);
        owner.Announce(edit, name);
        return KeyFrameHandle(keys.property, id);
    });
}

void Assign(const KeyFramesHandle &keys, const py::object &times, const py::sequence &values,
            const std::string &type)
{
    const IntegerArray at = ToIntegers(times);
    if (at.values.size() != values.size())
        throw py::value_error("There are " + std::to_string(at.values.size()) + " times and " +
                              std::to_string(values.size()) + " values");
    const char *const name = keys.property->name.c_str();
    const PropertyValue like = std::as_const(*keys.Properties()).StaticValue(name);
    if (!keys.Properties()->CanAnimate(name))
        throw Failure("OperationError", "The property " + keys.property->name + " cannot be animated");
    const KeyFrameType as = Words<KeyFrameType>{
        {KeyFrameType::Bezier, "bezier"},
        {KeyFrameType::Linear, "linear"},
        {KeyFrameType::Hold,
         "hold"}}.Find(type);
    std::vector<KeyFrame> added;
    added.reserve(at.values.size());
    for (std::size_t i = 0; i < at.values.size(); ++i) {
        added.emplace_back(at.values[i], FromPython(py::object(values[i]), like));
        added.back().SetType(as);
    }
    keys.property->Change(u"Set key frames", [&](PropertyManager &properties) {
        KeyFrameList &list = properties.KeyFrames(name);
        list.Clear();
        for (const KeyFrame &key : added)
            list.Add(key);
    });
}

py::array Values(const KeyFramesHandle &keys)
{
    const auto properties = keys.Properties();
    const KeyFrameList &list = ListOf(keys, properties);
    std::vector<PropertyValue> values;
    values.reserve(list.Count());
    list.ForEach([&](const KeyFrame &key) { values.push_back(key.Value()); });
    return ValuesArray({static_cast<py::ssize_t>(values.size())}, [&](int i) {
        return values.empty() ? std::as_const(*properties).StaticValue(keys.property->name.c_str())
                              : values[static_cast<std::size_t>(i)];
    });
}

void BindSequence(py::class_<KeyFramesHandle> &type)
{
    type.def("__len__", [](const KeyFramesHandle &keys) {
        const auto properties = keys.Properties();
        return ListOf(keys, properties).Count();
    });
    type.def("__getitem__", &Item, py::arg("index"));
    type.def("__iter__", [](const KeyFramesHandle &keys) { return py::iter(ShowAllKeys(keys)); });
    type.def("__contains__", [](const KeyFramesHandle &keys, const KeyFrameHandle &key) {
        const auto properties = keys.Properties();
        return ListOf(keys, properties).Exists(key.ID(), nullptr);
    });
    type.def("__delitem__", [](const KeyFramesHandle &keys, const py::object &index) {
        const py::object item = Item(keys, index);
        const bool isOne = py::isinstance<KeyFrameHandle>(item);
        Remove(keys, Chosen(keys, isOne ? Keys{py::cast<KeyFrameHandle>(item)} : py::cast<Keys>(item)));
    });
    type.def("__repr__", [](const KeyFramesHandle &keys) {
        const auto properties = keys.Properties();
        return "<marlet.KeyFrames of '" + keys.property->name + "', " +
               std::to_string(ListOf(keys, properties).Count()) + ">";
    });
    type.def_property_readonly(
        "times",
        [](const KeyFramesHandle &keys) {
            const auto properties = keys.Properties();
            const std::vector<int> times = ListOf(keys, properties).Locations();
            return py::array_t<int>(static_cast<py::ssize_t>(times.size()), times.data());
        },
        "The times of all key frames as one array.");
    type.def_property_readonly("values", &Values, "The values of all key frames as one array.");
}

void BindChanges(py::class_<KeyFramesHandle> &type)
{
    type.def(
        "at",
        [](const KeyFramesHandle &keys, int time) {
            const auto properties = keys.Properties();
            return KeyFrameHandle(keys.property, ListOf(keys, properties).At(time).ID());
        },
        py::arg("time"), "The first key frame at a time. Raises LookupError if there is none.");
    type.def(
        "nearest",
        [](const KeyFramesHandle &keys, int time) {
            const auto properties = keys.Properties();
            return KeyFrameHandle(keys.property, ListOf(keys, properties).NearestToTime(time).ID());
        },
        py::arg("time"), "The nearest key frame. Raises LookupError if there are none.");
    type.def(
        "between",
        [](const KeyFramesHandle &keys, int first, int last) {
            return ShowKeys(keys, KeyFramesIn(keys.property->Animated(), {first, last}));
        },
        py::arg("first"), py::arg("last"), "A list of those from one time to another, both included.");
    type.def("set", &Set, py::arg("time"), py::arg("value"),
             "Gives the key frame at a time the value, or adds a linear one, and returns it.");
    type.def(
        "insert",
        [](const KeyFramesHandle &keys, int time) {
            return KeyFrameHandle(
                keys.property,
                Run(keys, u"Insert key frame", [&](const auto &project, const AnimatedProperty &property) {
                    return InsertKeyFrame(project, property, time);
                }));
        },
        py::arg("time"), "Adds a key frame on the curve, which keeps its shape, and returns it.");
    type.def("assign", &Assign, py::arg("times"), py::arg("values"), py::arg("type") = "linear",
             "Puts new key frames in place of all that there are.");
    type.def(
        "remove",
        [](const KeyFramesHandle &keys, const Keys &removed) { Remove(keys, Chosen(keys, removed)); },
        py::arg("key_frames"), "Removes key frames.");
    type.def(
        "clear", [](const KeyFramesHandle &keys) { Remove(keys, Identifiers(keys)); }, "Removes all.");
}

void BindShaping(py::class_<KeyFramesHandle> &type)
{
    const auto all = py::arg("key_frames") = py::none();
    const auto first = py::arg("first") = py::none();
    const auto last = py::arg("last") = py::none();
    type.def(
        "move",
        [](const KeyFramesHandle &keys, int milliseconds, const std::optional<Keys> &chosen) {
            Run(keys, u"Move key frames", [&](const auto &project, const AnimatedProperty &property) {
                MoveKeyFrames(project, property, Chosen(keys, chosen), milliseconds);
            });
        },
        py::arg("milliseconds"), all, "Moves some or all in time.");
    type.def(
        "scale",
        [](const KeyFramesHandle &keys, int pivot, double factor, const std::optional<Keys> &chosen) {
            Run(keys, u"Scale key frames", [&](const auto &project, const AnimatedProperty &property) {
                ScaleKeyFrames(project, property, Chosen(keys, chosen), pivot, factor);
            });
        },
        py::arg("pivot"), py::arg("factor"), all, "Multiplies the distances in time to a pivot.");
    type.def(
        "reverse",
        [](const KeyFramesHandle &keys, std::optional<int> from, std::optional<int> to) {
            Run(keys, u"Reverse key frames", [&](const auto &project, const AnimatedProperty &property) {
                ReverseKeyFrames(project, property, Span(from, to));
            });
        },
        first, last, "Turns the curve round in time.");
    type.def(
        "ease",
        [](const KeyFramesHandle &keys, const std::string &word, const std::optional<Keys> &chosen) {
            const std::optional<Easing> easing = FindEasing(word);
            if (!easing)
                throw py::value_error("'" + word + "' is no easing");
            Run(keys, u"Ease key frames", [&](const auto &project, const AnimatedProperty &property) {
                EaseKeyFrames(project, property, Chosen(keys, chosen), *easing);
            });
        },
        py::arg("easing"), all,
        "Shapes the pieces that begin at some or all: 'linear', 'ease-in', 'ease-out', 'ease-in-out' or "
        "'hold'.");
    type.def(
        "simplify",
        [](const KeyFramesHandle &keys, double tolerance, std::optional<int> from, std::optional<int> to) {
            return Run(keys, u"Simplify key frames",
                       [&](const auto &project, const AnimatedProperty &property) {
                           return SimplifyKeyFrames(project, property, tolerance, Span(from, to));
                       });
        },
        py::arg("tolerance"), first, last,
        "Removes those without which the value stays within a tolerance of where it was, and returns how "
        "many.");
    type.def(
        "bake",
        [](const KeyFramesHandle &keys, double rate, std::optional<int> from, std::optional<int> to) {
            Run(keys, u"Bake key frames", [&](const auto &project, const AnimatedProperty &property) {
                BakeKeyFrames(project, property, rate, Span(from, to));
            });
        },
        py::arg("frames_per_second"), first, last, "Gives the curve a linear key frame for each frame.");
}

void BindCopies(py::module_ &module, py::class_<KeyFramesHandle> &type)
{
    py::class_<CopiedKeyFrames>(module, "CopiedKeyFrames",
                                "Copies of key frames, to be pasted to any property of their type.")
        .def("__len__", [](const CopiedKeyFrames &copied) { return copied.keys.size(); });
    type.def(
        "copy",
        [](const KeyFramesHandle &keys, const std::optional<Keys> &chosen) {
            return CopiedKeyFrames{CopyKeyFrames(keys.property->Animated(), Chosen(keys, chosen))};
        },
        py::arg("key_frames") = py::none(), "Copies of some or all.");
    type.def(
        "paste",
        [](const KeyFramesHandle &keys, const CopiedKeyFrames &copied, int time) {
            return ShowKeys(keys, Run(keys, u"Paste key frames",
                                      [&](const auto &project, const AnimatedProperty &property) {
                                          return PasteKeyFrames(project, property, copied.keys, time);
                                      }));
        },
        py::arg("copied"), py::arg("time"),
        "Adds copies, the first at a time, in place of what is between them there, and returns them.");
}

} // namespace

void BindKeyFrames(py::module_ &module)
{
    py::class_<KeyFramesHandle> type(
        module, "KeyFrames",
        "The key frames of a property, as a sequence in the order of their times, which are milliseconds "
        "from the start of the owner. Whole columns are had at once by `times` and `values`.");
    BindSequence(type);
    BindChanges(type);
    BindShaping(type);
    BindCopies(module, type);
}

} // namespace marlet::python
