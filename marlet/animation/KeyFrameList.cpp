#include <marlet/animation/KeyFrameList.h>

#include <marlet/animation/KeyFrameWalk.h>
#include <marlet/animation/PropertyValueXml.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

void WriteHandle(XmlWriter &writer, const char *tag, const kytl::matl::KyVector<2, float> &handle)
{
    const XmlElement element(writer, tag);
    writer.Attribute("X", handle.X);
    writer.Attribute("Y", handle.Y);
}

kytl::matl::KyVector<2, float> ReadHandle(const XmlCursor &element)
{
    kytl::matl::KyVector<2, float> handle;
    element.RequiredAttribute("X", handle.X);
    element.RequiredAttribute("Y", handle.Y);
    return handle;
}

const KeyFrameList_Impl &RequireAny(const KeyFrameList_Impl &list)
{
    if (list.InOrder().Size() == 0)
        throw std::out_of_range("There are no key frames");
    return list;
}

/// Calls a callback on its own copy of each key frame.
auto OnCopies(const std::function<void(const KeyFrame &)> &callback)
{
    return [&callback](const KeyFrame &key) {
        callback(KeyFrame(key));
        return false;
    };
}

auto InPlace(const std::function<void(KeyFrame &)> &callback)
{
    return [&callback](KeyFrame &key) {
        callback(key);
        return false;
    };
}

} // namespace

KeyFrameList::KeyFrameList() = default;
KeyFrameList::KeyFrameList(const KeyFrameList &other) = default;

KeyFrameList::~KeyFrameList()
{
    KeyFrameWalk::Release(std::move(impl_));
}

KeyFrameList &KeyFrameList::operator=(KeyFrameList other)
{
    impl_.Swap(other.impl_);
    return *this;
}

void KeyFrameList::Swap(KeyFrameList &other) noexcept
{
    impl_.Swap(other.impl_);
}

bool KeyFrameList::IsEmpty() const
{
    return impl_->Count() == 0;
}

unsigned int KeyFrameList::Count() const
{
    return static_cast<unsigned int>(impl_->Count());
}

unsigned int KeyFrameList::CountAt(int time) const
{
    const KeyFrameList_Impl &list = impl_->InOrder();
    return static_cast<unsigned int>(list.FirstAfter(time) - list.FirstFrom(time));
}

bool KeyFrameList::Exists(int time) const
{
    return impl_->FirstAt(time) != nullptr;
}

bool KeyFrameList::Exists(const kytl::KyID &id, int *time) const
{
    const std::optional<std::size_t> position = impl_->InOrder().TryFind(id);
    if (position && time != nullptr)
        *time = impl_->times[*position];
    return position.has_value();
}

std::vector<kytl::KyID> KeyFrameList::Identifiers() const
{
    std::vector<kytl::KyID> ids(impl_->Count());
    std::ranges::transform(impl_->InOrder().places, ids.begin(),
                           [](const KeyFramePlace &place) { return place.node->key.ID(); });
    return ids;
}

std::vector<kytl::KyID> KeyFrameList::IdentifiersAt(int time) const
{
    const KeyFrameList_Impl &list = impl_->InOrder();
    std::vector<kytl::KyID> ids;
    const std::size_t end = list.FirstAfter(time);
    for (std::size_t i = list.FirstFrom(time); i < end; ++i)
        ids.push_back(list.Key(i).ID());
    return ids;
}

std::vector<int> KeyFrameList::Locations() const
{
    return impl_->InOrder().times;
}

KeyFrame &KeyFrameList::At(int time)
{
    return impl_->InOrder().Key(impl_->InOrder().Find(time));
}

const KeyFrame &KeyFrameList::At(int time) const
{
    return impl_->InOrder().Key(impl_->InOrder().Find(time));
}

KeyFrame &KeyFrameList::GetByID(const kytl::KyID &id)
{
    return impl_->InOrder().Key(impl_->InOrder().Find(id));
}

const KeyFrame &KeyFrameList::GetByID(const kytl::KyID &id) const
{
    return impl_->InOrder().Key(impl_->InOrder().Find(id));
}

const KeyFrame &KeyFrameList::FirstByTime() const
{
    return RequireAny(*impl_).Key(0);
}

const KeyFrame &KeyFrameList::LastByTime() const
{
    const KeyFrameList_Impl &list = RequireAny(*impl_);
    return list.Key(list.Size() - 1);
}

const KeyFrame &KeyFrameList::NearestToTime(int time) const
{
    const KeyFrameList_Impl &list = RequireAny(*impl_);
    const std::size_t next = list.FirstFrom(time);
    if (next == list.Size())
        return list.Key(next - 1);
    if (next == 0)
        return list.Key(0);
    const std::int64_t before = std::int64_t{time} - list.times[next - 1];
    const std::int64_t after = std::int64_t{list.times[next]} - time;
    const bool takesNext = after == 0 || after < before;
    return list.Key(takesNext ? next : next - 1);
}

void KeyFrameList::AdjacentKeyFrames(int time, const KeyFrame **before, const KeyFrame **after) const
{
    Require(before, "before");
    Require(after, "after");
    const KeyFrameList_Impl &list = impl_->InOrder();
    const std::size_t from = list.FirstFrom(time);
    const std::size_t next = list.FirstAfter(time);
    *before = from == 0 ? nullptr : &list.Key(from - 1);
    *after = next == list.Size() ? nullptr : &list.Key(next);
}

bool KeyFrameList::Find(int &time, const std::function<bool(KeyFrame)> &predicate) const
{
    return KeyFrameWalk(*impl_).Forward([&](const KeyFrame &key) {
        const int found = key.Time();
        const bool isAccepted = predicate(key);
        if (isAccepted)
            time = found;
        return isAccepted;
    });
}

void KeyFrameList::ForEach(const std::function<void(const KeyFrame &)> &callback) const
{
    KeyFrameWalk(*impl_).Forward(OnCopies(callback));
}

void KeyFrameList::ForEachReverse(const std::function<void(const KeyFrame &)> &callback) const
{
    KeyFrameWalk(*impl_).Backward(OnCopies(callback));
}

void KeyFrameList::ForEach(const std::function<void(KeyFrame &)> &callback)
{
    KeyFrameWalk(*impl_).Forward(InPlace(callback));
}

void KeyFrameList::ForEachReverse(const std::function<void(KeyFrame &)> &callback)
{
    KeyFrameWalk(*impl_).Backward(InPlace(callback));
}

void KeyFrameList::Add(const KeyFrame &key)
{
    impl_->Add(key);
}

void KeyFrameList::Set(int time, PropertyValue value)
{
    if (KeyFrame *key = impl_->FirstAt(time))
        key->value_ = value;
    else
        Add(KeyFrame(time, value));
}

void KeyFrameList::Move(const kytl::KyID &id, int newTime)
{
    impl_->Move(impl_->InOrder().Find(id), newTime);
}

void KeyFrameList::Remove(const kytl::KyID &id)
{
    const std::size_t position = impl_->InOrder().Find(id);
    impl_->Remove(position, position + 1);
}

void KeyFrameList::Remove(int time)
{
    const KeyFrameList_Impl &list = impl_->InOrder();
    impl_->Remove(list.FirstFrom(time), list.FirstAfter(time));
}

void KeyFrameList::ChangeKeyFrameID(const kytl::KyID &oldID, const kytl::KyID &newID)
{
    if (const std::optional<std::size_t> position = impl_->InOrder().TryFind(oldID))
        impl_->ChangeID(*position, newID);
}

void KeyFrameList::Clear()
{
    impl_->Remove(0, impl_->InOrder().Size());
}

bool KeyFrameList::IsSpatial() const
{
    return impl_->IsSpatial();
}

KeyFrameList::SpatialDataType KeyFrameList::SpatialType() const
{
    return impl_->spatialType;
}

void KeyFrameList::SetSpatialType(SpatialDataType type)
{
    impl_->spatialType = type;
}

double KeyFrameList::ParamTforSpatialCurveLength(const KeyFrame &first, const KeyFrame &second,
                                                 double fraction) const
{
    return impl_->InOrder().ParamTforSpatialCurveLength(first.Time(), second.Time(), fraction);
}

WideString KeyFrameList::SerializeKeyFrame(const KeyFrame &key)
{
    return XmlText([&key](XmlWriter &writer) { SerializeKeyFrame(key, writer); });
}

KeyFrame KeyFrameList::DeserializeKeyFrame(const WideString &text)
{
    const XmlDocument document(text);
    return DeserializeKeyFrame(document.Root());
}

void KeyFrameList::SerializeKeyFrame(const KeyFrame &key, XmlWriter &writer)
{
    const XmlElement element(writer, "Key");
    writer.Attribute("Time", key.time_);
    writer.Attribute("Type", key.type_);
    WriteHandle(writer, "IncomingPt", key.incomingPoint_);
    WriteHandle(writer, "OutgoingPt", key.outgoingPoint_);
    const XmlElement value(writer, "Value");
    WriteValue(writer, key.value_);
}

KeyFrame KeyFrameList::DeserializeKeyFrame(const XmlCursor &element)
{
    element.RequireTag("Key");
    int time = 0;
    int type = 0;
    element.RequiredAttribute("Time", time);
    element.RequiredAttribute("Type", type);
    if (type < 0 || type > static_cast<int>(KeyFrameType::Hold))
        TellOfChoice(element, "Type", type);
    const XmlCursor incoming = element.Require("IncomingPt");
    const XmlCursor outgoing = element.Require("OutgoingPt");
    const auto incomingPoint = ReadHandle(incoming);
    const auto outgoingPoint = ReadHandle(outgoing);
    PropertyValue value;
    ReadValue(element.Require("Value"), value);

    KeyFrame key(time, value);
    key.type_ = static_cast<KeyFrameType>(type);
    key.incomingPoint_ = incomingPoint;
    key.outgoingPoint_ = outgoingPoint;
    if (key.type_ != KeyFrameType::Linear)
        key.SetTemporalFlags();
    return key;
}

} // namespace marlet::project
