#include <marlet/animation/PropertyManager.h>
#include <marlet/history/Parts.h>
#include <marlet/history/SameValue.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace marlet::project
{

namespace
{

constexpr int kAlways = std::numeric_limits<int>::min();
constexpr int kForEver = std::numeric_limits<int>::max();

void AddChange(ChangeList &changes, const PropertyOwner &owner, const PropertyChange &added)
{
    ObjectChange &change = changes.Of(owner.kind, owner.id);
    change.aspects |= Aspect::Properties;
    const auto known = std::ranges::find(change.properties, added.name, &PropertyChange::name);
    if (known == change.properties.end()) {
        change.properties.push_back(added);
        return;
    }
    known->firstTime = std::min(known->firstTime, added.firstTime);
    known->lastTime = std::max(known->lastTime, added.lastTime);
}

std::vector<KeyFrame> FramesOf(const KeyFrameList &keys)
{
    std::vector<KeyFrame> frames;
    frames.reserve(keys.Count());
    keys.ForEach([&frames](const KeyFrame &key) { frames.push_back(key); });
    return frames;
}

/// The times between which two curves may differ: as far as the nearest key frames that are the same, or
/// those beyond them on a path in space, whose tangents come from their neighbours. Nothing if the curves do
/// not differ.
std::optional<PropertyChange> Difference(const KeyFrameList &first, const KeyFrameList &second)
{
    const std::vector<KeyFrame> a = FramesOf(first);
    const std::vector<KeyFrame> b = FramesOf(second);
    const auto same = [](const KeyFrame &x, const KeyFrame &y) { return AreSameToTheBit(x, y); };
    const auto headEnd = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), same).first;
    if (headEnd == a.end() && a.size() == b.size())
        return std::nullopt;
    const auto tailEnd = std::mismatch(a.rbegin(), std::make_reverse_iterator(headEnd), b.rbegin(),
                                       b.rend() - (headEnd - a.begin()), same)
                             .first;
    const std::ptrdiff_t head = headEnd - a.begin();
    const std::ptrdiff_t tail = tailEnd - a.rbegin();
    const std::ptrdiff_t reach = first.IsSpatial() ? 2 : 1;
    PropertyChange change;
    if (head >= reach)
        change.firstTime = a[static_cast<std::size_t>(head - reach)].Time();
    if (tail >= reach)
        change.lastTime = a[a.size() - static_cast<std::size_t>(tail - reach + 1)].Time();
    return change;
}

/// What a property holds, without its key frames where there are none.
struct PropertyState {
    PropertyState(const PropertyManager &properties, const char *name)
        : staticValue(properties.StaticValue(name)),
          expression(properties.Expression(name)),
          spatialType(properties.KeyFrames(name).SpatialType())
    {
        const KeyFrameList &live = properties.KeyFrames(name);
        if (!live.IsEmpty())
            keys = std::make_unique<KeyFrameList>(live);
    }

    void Exchange(PropertyManager &properties, const char *name)
    {
        std::swap(staticValue, properties.StaticValue(name));
        std::swap(expression, properties.Expression(name));
        KeyFrameList &live = properties.KeyFrames(name);
        const KeyFrameList::SpatialDataType liveType = live.SpatialType();
        if (!keys && !live.IsEmpty())
            keys = std::make_unique<KeyFrameList>();
        if (keys)
            live.Swap(*keys);
        if (live.SpatialType() != spatialType)
            live.SetSpatialType(spatialType);
        spatialType = liveType;
    }

    std::optional<PropertyChange> DifferenceTo(const PropertyManager &properties, const char *name) const
    {
        const KeyFrameList &live = properties.KeyFrames(name);
        if (expression != properties.Expression(name) || spatialType != live.SpatialType() ||
            (live.IsEmpty() && !AreSameToTheBit(staticValue, properties.StaticValue(name))))
            return PropertyChange();
        if (!keys)
            return live.IsEmpty() ? std::nullopt : std::optional(PropertyChange());
        if (live.IsEmpty())
            return PropertyChange();
        if (!AreSameToTheBit(staticValue, properties.StaticValue(name)))
            return PropertyChange();
        return Difference(live, *keys);
    }

    PropertyValue staticValue;
    NarrowString expression;
    KeyFrameList::SpatialDataType spatialType;
    std::unique_ptr<KeyFrameList> keys;
};

class PropertyPart final : public EditedPart
{
public:
    PropertyPart(const std::shared_ptr<PropertyManager> &properties, const char *name,
                 const PropertyOwner &owner)
        : EditedPart({properties.get(), "property", name}),
          properties_(properties),
          owner_(owner),
          kept_(*properties, name)
    {
    }

    void Exchange() override { kept_.Exchange(*properties_, Name()); }

    void Describe(ChangeList &changes) const override
    {
        if (std::optional<PropertyChange> change = kept_.DifferenceTo(*properties_, Name())) {
            change->name = Name();
            AddChange(changes, owner_, *change);
        }
    }

    std::size_t Size() const override
    {
        const std::size_t keys = kept_.keys ? kept_.keys->Count() : 0;
        return sizeof *this + kept_.expression.capacity() + keys * sizeof(KeyFrame);
    }

private:
    const char *Name() const { return At().name.c_str(); }

    std::shared_ptr<PropertyManager> properties_;
    PropertyOwner owner_;
    PropertyState kept_;
};

/// A key frame with those at its time, in their order.
struct KeyFrameState {
    KeyFrameState(const KeyFrameList &keys, const kytl::KyID &id)
    {
        int time = 0;
        if (!keys.Exists(id, &time))
            return;
        key = keys.GetByID(id);
        if (keys.CountAt(time) > 1)
            order = keys.IdentifiersAt(time);
    }

    std::optional<KeyFrame> key;
    std::vector<kytl::KyID> order; ///< empty where it is alone
};

class KeyFramePart final : public EditedPart
{
public:
    KeyFramePart(const std::shared_ptr<PropertyManager> &properties, const char *name, const kytl::KyID &id,
                 const PropertyOwner &owner)
        : EditedPart({properties.get(), "key frame", NarrowString(name) + ' ' + id.ToNarrowString()}),
          properties_(properties),
          name_(name),
          id_(id),
          owner_(owner),
          kept_(properties->KeyFrames(name), id)
    {
    }

    void Exchange() override
    {
        KeyFrameList &keys = Keys();
        KeyFrameState live(keys, id_);
        if (live.key && kept_.key) {
            if (live.key->Time() != kept_.key->Time())
                keys.Move(id_, kept_.key->Time());
            keys.GetByID(id_) = *kept_.key;
        } else if (live.key) {
            keys.Remove(id_);
        } else if (kept_.key) {
            keys.Add(*kept_.key);
        }
        PutInOrder(keys);
        kept_ = std::move(live);
    }

    void Describe(ChangeList &changes) const override
    {
        const KeyFrameState live(Keys(), id_);
        const bool isSame = live.key.has_value() == kept_.key.has_value() &&
                            (!live.key || AreSameToTheBit(*live.key, *kept_.key)) &&
                            live.order == kept_.order;
        if (isSame)
            return;
        if (live.key)
            AddChange(changes, owner_, Around(live.key->Time()));
        if (kept_.key)
            AddChange(changes, owner_, Around(kept_.key->Time()));
    }

    std::size_t Size() const override
    {
        return sizeof *this + name_.capacity() + kept_.order.size() * sizeof(kytl::KyID);
    }

private:
    KeyFrameList &Keys() { return properties_->KeyFrames(name_.c_str()); }
    const KeyFrameList &Keys() const { return std::as_const(*properties_).KeyFrames(name_.c_str()); }

    /// What is added comes last at its time; those that stood behind it go behind it again.
    void PutInOrder(KeyFrameList &keys) const
    {
        const auto own = std::ranges::find(kept_.order, id_);
        if (own == kept_.order.end() || keys.IdentifiersAt(kept_.key->Time()) == kept_.order)
            return;
        for (auto behind = own; behind != kept_.order.end(); ++behind) {
            if (!keys.Exists(*behind, nullptr))
                continue;
            const KeyFrame key = keys.GetByID(*behind);
            keys.Remove(*behind);
            keys.Add(key);
        }
    }

    /// As far as the neighbours that are there, which have parts of their own if they were others before.
    PropertyChange Around(int time) const
    {
        const std::size_t reach = Keys().IsSpatial() ? 2 : 1;
        return {name_, Neighbour(time, reach, false), Neighbour(time, reach, true)};
    }

    int Neighbour(int time, std::size_t steps, bool isAfter) const
    {
        for (std::size_t i = 0; i < steps; ++i) {
            const KeyFrame *before = nullptr;
            const KeyFrame *after = nullptr;
            Keys().AdjacentKeyFrames(time, &before, &after);
            const KeyFrame *next = isAfter ? after : before;
            if (!next)
                return isAfter ? kForEver : kAlways;
            time = next->Time();
        }
        return time;
    }

    std::shared_ptr<PropertyManager> properties_;
    NarrowString name_;
    kytl::KyID id_;
    PropertyOwner owner_;
    KeyFrameState kept_;
};

/// All properties of a manager. What differs is told property by property, those that come or go at all
/// times.
class PropertiesPart final : public EditedPart
{
public:
    PropertiesPart(const std::shared_ptr<PropertyManager> &properties, const PropertyOwner &owner)
        : EditedPart({properties.get(), "properties", {}}),
          properties_(properties),
          owner_(owner),
          kept_(PropertyManager::CopyWithIDs(*properties))
    {
    }

    void Exchange() override { properties_->Swap(*kept_); }

    void Describe(ChangeList &changes) const override
    {
        const std::vector<NarrowString> live = properties_->PropertyNames();
        for (const NarrowString &name : live)
            DescribeOne(changes, name);
        for (const NarrowString &name : kept_->PropertyNames())
            if (!properties_->HasProperty(name.c_str()))
                AddChange(changes, owner_, {name, kAlways, kForEver});
        if (live != kept_->PropertyNames())
            changes.Of(owner_.kind, owner_.id).aspects |= Aspect::Properties;
    }

    std::size_t Size() const override
    {
        std::size_t size = sizeof *this;
        for (const NarrowString &name : kept_->PropertyNames())
            size += 256 + std::as_const(*kept_).KeyFrames(name.c_str()).Count() * sizeof(KeyFrame);
        return size;
    }

private:
    void DescribeOne(ChangeList &changes, const NarrowString &name) const
    {
        PropertyChange all{name, kAlways, kForEver};
        if (!kept_->HasProperty(name.c_str())) {
            AddChange(changes, owner_, all);
        } else if (std::optional<PropertyChange> change =
                       PropertyState(*kept_, name.c_str()).DifferenceTo(*properties_, name.c_str())) {
            change->name = name;
            AddChange(changes, owner_, *change);
        }
    }

    std::shared_ptr<PropertyManager> properties_;
    PropertyOwner owner_;
    std::shared_ptr<PropertyManager> kept_;
};

} // namespace

std::unique_ptr<EditedPart> MakePropertyPart(const std::shared_ptr<PropertyManager> &properties,
                                             const char *name, const PropertyOwner &owner)
{
    return std::make_unique<PropertyPart>(properties, name, owner);
}

std::unique_ptr<EditedPart> MakeKeyFramePart(const std::shared_ptr<PropertyManager> &properties,
                                             const char *name, const kytl::KyID &keyFrame,
                                             const PropertyOwner &owner)
{
    return std::make_unique<KeyFramePart>(properties, name, keyFrame, owner);
}

std::unique_ptr<EditedPart> MakePropertiesPart(const std::shared_ptr<PropertyManager> &properties,
                                               const PropertyOwner &owner)
{
    return std::make_unique<PropertiesPart>(properties, owner);
}

} // namespace marlet::project
