#include <marlet/tracking/TrackingPoint.h>

#include <marlet/animation/PropertyTable.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

namespace marlet::project
{

struct TrackingPoint_Impl {
    kytl::KyID id;
    TrackingPoint::TrackingPointType type = {};
    bool visible = true;
    kytl::KyID parentTrackerID;
    std::shared_ptr<PropertyManager> animation = PropertyManager::Create();
};

namespace
{

using Point = kytl::matl::KyPoint<2, float>;

constexpr unsigned int kVersion = 0;

PropertyTable Properties(const Point &position, float featureSize, float searchSize)
{
    return {{"featurePosition", position},
            FixedProperty("featureDimensions", Point{featureSize, featureSize}),
            {"featureOffset", Point{}},
            FixedProperty("searchPosition", Point{}),
            FixedProperty("searchDimensions", Point{searchSize, searchSize})};
}

template <class Xml, class Data> void TrackingPointFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Type", data.type);
    xml.Child("Visible", data.visible);
    xml.Child("ParentTrackerID", data.parentTrackerID);
}

} // namespace

TrackingPoint::TrackingPoint() = default;

TrackingPoint::TrackingPoint(TrackingPointType type, const kytl::KyID &trackerID, const Point &position,
                             float featureSize, float searchSize)
    : TrackingPoint()
{
    impl_->id = kytl::KyID::Generate();
    impl_->type = type;
    impl_->parentTrackerID = trackerID;
    CreateProperties(*impl_->animation, Properties(position, featureSize, searchSize));
}

TrackingPoint::TrackingPoint(const XmlCursor &element, const char *tag) : TrackingPoint()
{
    static const PropertyTable required = Properties({}, 0, 0);
    const unsigned int version = element.RequireHeader(tag, kVersion);
    TrackingPointFields(element, *impl_);
    if (const XmlCursor properties = element.Find("PropertyManager"); !properties.IsNull())
        impl_->animation->Deserialize(properties);
    RequireProperties(element, *impl_->animation, required, version);
}

TrackingPoint::TrackingPoint(const TrackingPoint &other) = default;

TrackingPoint::~TrackingPoint() = default;

std::shared_ptr<TrackingPoint> TrackingPoint::Copy(const TrackingPoint &point, const kytl::KyID &trackerID)
{
    std::shared_ptr<TrackingPoint> copy(new TrackingPoint(point));
    copy->impl_->id = kytl::KyID::Generate();
    copy->impl_->animation = PropertyManager::Copy(point.Animation());
    copy->SetParentTrackerID(trackerID);
    return copy;
}

void TrackingPoint::Serialize(XmlWriter &writer, const char *tag) const
{
    const XmlElement element(writer, tag, kVersion);
    TrackingPointFields(writer, *impl_);
    impl_->animation->Serialize(writer);
}

const kytl::KyID &TrackingPoint::ID() const
{
    return impl_->id;
}

TrackingPoint::TrackingPointType TrackingPoint::Type() const
{
    return impl_->type;
}

const kytl::KyID &TrackingPoint::ParentTrackerID() const
{
    return impl_->parentTrackerID;
}

void TrackingPoint::SetParentTrackerID(const kytl::KyID &id)
{
    impl_->parentTrackerID = id;
}

PropertyManager &TrackingPoint::Animation()
{
    return *impl_->animation;
}

const PropertyManager &TrackingPoint::Animation() const
{
    return *impl_->animation;
}

bool TrackingPoint::IsVisible() const
{
    return impl_->visible;
}

void TrackingPoint::SetVisible(bool visible)
{
    impl_->visible = visible;
}

} // namespace marlet::project
