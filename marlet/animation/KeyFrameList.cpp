#include <marlet/animation/KeyFrameList.h>

#include <marlet/animation/KeyFrameList_Impl.h>
#include <marlet/animation/PropertyValueXml.h>
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
    element.RequireAttribute("X");
    element.RequireAttribute("Y");
    element.Attribute("X", handle.X);
    element.Attribute("Y", handle.Y);
    return handle;
}

const KeyFrame &RequireOne(const KeyFrameList_Impl &list, std::size_t position)
{
    if (list.Size() == 0)
        throw std::out_of_range("There are no key frames");
    return list.Key(position);
}

} // namespace

KeyFrameList::KeyFrameList() = default;
KeyFrameList::KeyFrameList(const KeyFrameList &other) = default;
KeyFrameList::~KeyFrameList() = default;

KeyFrameList &KeyFrameList::operator=(KeyFrameList other)
{
    impl_.Swap(other.impl_);
    return *this;
}

bool KeyFrameList::IsEmpty() const
{
    return impl_->Size() == 0;
}

unsigned int KeyFrameList::Count() const
{
    return static_cast<unsigned int>(impl_->Size());
}

unsigned int KeyFrameList::CountAt(int time) const
{
    return static_cast<unsigned int>(impl_->FirstAfter(time) - impl_->FirstFrom(time));
}

bool KeyFrameList::Exists(int time) const
{
    return std::ranges::binary_search(impl_->times, time);
}

bool KeyFrameList::Exists(const kytl::KyID &id, int *time) const
{
    const std::optional<std::size_t> position = impl_->TryFind(id);
    if (position && time != nullptr)
        *time = impl_->times[*position];
    return position.has_value();
}

std::vector<kytl::KyID> KeyFrameList::Identifiers() const
{
    std::vector<kytl::KyID> ids(impl_->Size());
    std::ranges::transform(impl_->places, ids.begin(),
                           [](const KeyFramePlace &place) { return place.node->key.ID(); });
    return ids;
}

std::vector<kytl::KyID> KeyFrameList::IdentifiersAt(int time) const
{
    std::vector<kytl::KyID> ids;
    const std::size_t end = impl_->FirstAfter(time);
    for (std::size_t i = impl_->FirstFrom(time); i < end; ++i)
        ids.push_back(impl_->Key(i).ID());
    return ids;
}

std::vector<int> KeyFrameList::Locations() const
{
    return impl_->times;
}

KeyFrame &KeyFrameList::At(int time)
{
    return impl_->Key(impl_->Find(time));
}

const KeyFrame &KeyFrameList::At(int time) const
{
    return impl_->Key(impl_->Find(time));
}

KeyFrame &KeyFrameList::GetByID(const kytl::KyID &id)
{
    return impl_->Key(impl_->Find(id));
}

const KeyFrame &KeyFrameList::GetByID(const kytl::KyID &id) const
{
    return impl_->Key(impl_->Find(id));
}

const KeyFrame &KeyFrameList::FirstByTime() const
{
    return RequireOne(*impl_, 0);
}

const KeyFrame &KeyFrameList::LastByTime() const
{
    return RequireOne(*impl_, impl_->Size() - 1);
}

const KeyFrame &KeyFrameList::NearestToTime(int time) const
{
    const std::size_t next = impl_->FirstFrom(time);
    if (next == impl_->Size())
        return LastByTime();
    if (next == 0)
        return FirstByTime();
    const std::int64_t before = std::int64_t{time} - impl_->times[next - 1];
    const std::int64_t after = std::int64_t{impl_->times[next]} - time;
    const bool takesNext = after == 0 || after < before;
    return impl_->Key(takesNext ? next : next - 1);
}

void KeyFrameList::AdjacentKeyFrames(int time, const KeyFrame **before, const KeyFrame **after) const
{
    const std::size_t from = impl_->FirstFrom(time);
    const std::size_t next = impl_->FirstAfter(time);
    *before = from == 0 ? nullptr : &impl_->Key(from - 1);
    *after = next == impl_->Size() ? nullptr : &impl_->Key(next);
}

bool KeyFrameList::Find(int &time, const std::function<bool(KeyFrame)> &predicate) const
{
    for (std::size_t i = 0; i < impl_->Size(); ++i) {
        const int found = impl_->times[i];
        if (predicate(impl_->Key(i))) {
            time = found;
            return true;
        }
    }
    return false;
}

// The list is asked for its size each time, since a callback may have changed it.

void KeyFrameList::ForEach(const std::function<void(const KeyFrame &)> &callback) const
{
    for (std::size_t i = 0; i < impl_->Size(); ++i)
        callback(KeyFrame(impl_->Key(i)));
}

void KeyFrameList::ForEachReverse(const std::function<void(const KeyFrame &)> &callback) const
{
    for (std::size_t i = impl_->Size(); i > 0; i = std::min(i - 1, impl_->Size()))
        callback(KeyFrame(impl_->Key(i - 1)));
}

void KeyFrameList::ForEach(const std::function<void(KeyFrame &)> &callback)
{
    const KeyFrameWalk walk(*impl_);
    for (KeyFrameNode *node : walk.Nodes())
        if (!node->isRemoved)
            callback(node->key);
}

void KeyFrameList::ForEachReverse(const std::function<void(KeyFrame &)> &callback)
{
    const KeyFrameWalk walk(*impl_);
    for (auto node = walk.Nodes().rbegin(); node != walk.Nodes().rend(); ++node)
        if (!(*node)->isRemoved)
            callback((*node)->key);
}

void KeyFrameList::Add(const KeyFrame &key)
{
    impl_->Add(key);
}

void KeyFrameList::Set(int time, PropertyValue value)
{
    if (Exists(time))
        At(time).value_ = value;
    else
        Add(KeyFrame(time, value));
}

void KeyFrameList::Move(const kytl::KyID &id, int newTime)
{
    impl_->Move(impl_->Find(id), newTime);
}

void KeyFrameList::Remove(const kytl::KyID &id)
{
    const std::size_t position = impl_->Find(id);
    impl_->Remove(position, position + 1);
}

void KeyFrameList::Remove(int time)
{
    impl_->Remove(impl_->FirstFrom(time), impl_->FirstAfter(time));
}

void KeyFrameList::ChangeKeyFrameID(const kytl::KyID &oldID, const kytl::KyID &newID)
{
    if (const std::optional<std::size_t> position = impl_->TryFind(oldID))
        impl_->ChangeID(*position, newID);
}

void KeyFrameList::Clear()
{
    impl_->Remove(0, impl_->Size());
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
    return impl_->ParamTforSpatialCurveLength(first.Time(), second.Time(), fraction);
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
    element.RequireAttribute("Time");
    element.RequireAttribute("Type");
    int time = 0;
    KeyFrameType type = KeyFrameType::Linear;
    element.Attribute("Time", time);
    element.Attribute("Type", type);
    const XmlCursor incoming = element.Require("IncomingPt");
    const XmlCursor outgoing = element.Require("OutgoingPt");
    const auto incomingPoint = ReadHandle(incoming);
    const auto outgoingPoint = ReadHandle(outgoing);
    PropertyValue value;
    ReadValue(element.Require("Value"), value);

    KeyFrame key(time, value);
    key.type_ = type;
    key.incomingPoint_ = incomingPoint;
    key.outgoingPoint_ = outgoingPoint;
    if (type != KeyFrameType::Linear) {
        key.incomingCurveDirty_.Store(true);
        key.outgoingCurveDirty_.Store(true);
    }
    return key;
}

} // namespace marlet::project
