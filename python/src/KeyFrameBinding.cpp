#include "Bindings.h"
#include "KeyFrameHandles.h"
#include "Values.h"

#include <marlet/operations/curves/KeyFrameOperations.h>

#include <utility>

namespace marlet::python
{

const KeyFrame &KeyFrameHandle::Get() const
{
    const Document &document = *property_->owner->Owner();
    document.Open();
    if (read_ && generation_ == document.Generation())
        return *read_;
    const auto properties = property_->Properties();
    const KeyFrameList &keys = std::as_const(*properties).KeyFrames(property_->name.c_str());
    if (!keys.Exists(id_, nullptr))
        throw Failure("GoneError", "The key frame is not in its property any more");
    read_.emplace(keys.GetByID(id_));
    generation_ = document.Generation();
    return *read_;
}

namespace
{

using Vector2 = kytl::matl::KyVector<2, float>;

const Words<KeyFrameType> kTypes{
    {KeyFrameType::Bezier, "bezier"}, {KeyFrameType::Linear, "linear"}, {KeyFrameType::Hold, "hold"}};

/// Changes one key frame as an edit of its own.
template <class Function>
void Change(const KeyFrameHandle &key, const char16_t *label, const Function &change)
{
    key.Get();
    const PropertyHandle &property = key.Property();
    const auto properties = property.Properties();
    Edited(*property.owner->Owner(), label, [&](Edit &edit) {
        edit.TouchKeyFrame(properties, property.name.c_str(), key.ID(), property.owner->Kind(),
                           property.owner->ID());
        change(properties->KeyFrames(property.name.c_str()).GetByID(key.ID()));
        property.owner->Announce(edit, property.name.c_str());
    });
}

void SetTime(const KeyFrameHandle &key, int time)
{
    const long long distance = static_cast<long long>(time) - key.Get().Time();
    if (distance != static_cast<int>(distance))
        throw py::value_error("The time is too far away");
    const AnimatedProperty property = key.Property().Animated();
    Operate(*key.Property().owner->Owner(), [&](const std::shared_ptr<Project> &project) {
        MoveKeyFrames(project, property, {key.ID()}, static_cast<int>(distance));
    });
}

void BindHandles(py::class_<KeyFrameHandle> &type)
{
    type.def_property(
        "incoming", [](const KeyFrameHandle &key) { return ToPair(key.Get().IncomingPoint()); },
        [](const KeyFrameHandle &key, const Pair &point) {
            Change(key, u"Set key frame handle", [&](KeyFrame &changed) {
                changed.SetIncomingPoint(Vector2{point.first, point.second});
            });
        },
        "The handle of the curve piece that ends here, as an offset in time and one in value.");
    type.def_property(
        "outgoing", [](const KeyFrameHandle &key) { return ToPair(key.Get().OutgoingPoint()); },
        [](const KeyFrameHandle &key, const Pair &point) {
            Change(key, u"Set key frame handle", [&](KeyFrame &changed) {
                changed.SetOutgoingPoint(Vector2{point.first, point.second});
            });
        },
        "The handle of the curve piece that begins here, as an offset in time and one in value.");
}

} // namespace

void BindKeyFrame(py::module_ &module)
{
    py::class_<KeyFrameHandle> type(
        module, "KeyFrame", "A value that is pinned to a time, in milliseconds from the start of the owner.");
    type.def_property_readonly(
        "id", [](const KeyFrameHandle &key) { return key.ID().ToNarrowString(); }, "The text of its ID.");
    type.def_property(
        "time", [](const KeyFrameHandle &key) { return key.Get().Time(); }, &SetTime,
        "In milliseconds. Assigning moves the key frame, which is refused where another one stands.");
    type.def_property(
        "value", [](const KeyFrameHandle &key) { return ToPython(key.Get().Value()); },
        [](const KeyFrameHandle &key, const py::object &value) {
            const PropertyValue after = FromPython(value, key.Get().Value());
            Change(key, u"Set key frame", [&](KeyFrame &changed) { changed.SetValue(after); });
        },
        "The value at that time.");
    type.def_property(
        "type", [](const KeyFrameHandle &key) { return kTypes.Of(key.Get().Type()); },
        [](const KeyFrameHandle &key, const std::string &word) {
            const KeyFrameType after = kTypes.Find(word);
            Change(key, u"Set key frame type", [&](KeyFrame &changed) { changed.SetType(after); });
        },
        "How the curve piece that begins here goes: 'bezier', 'linear' or 'hold'.");
    BindHandles(type);
    type.def(
        "__eq__", [](const KeyFrameHandle &a, const KeyFrameHandle &b) { return a == b; }, py::is_operator());
    type.def("__hash__", [](const KeyFrameHandle &key) { return std::hash<kytl::KyID>()(key.ID()); });
    type.def("__repr__", [](const KeyFrameHandle &key) {
        return "<marlet.KeyFrame at " + std::to_string(key.Get().Time()) + ">";
    });
}

} // namespace marlet::python
