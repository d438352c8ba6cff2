#include <marlet/tracking/Tracker.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::project
{

struct Tracker_Impl {
    kytl::KyID id;
    WideString name;
    kytl::KyID parentLayerID;
    Tracker::TrackerType type = Tracker::TrackerType::SinglePoint;
    Tracker::TrackerMethod method = Tracker::TrackerMethod::OpticalFlow;
    Tracker::TrackerPurpose purpose{1};
    unsigned int transformationOptions = 3;
    kytl::KyID destinationLayerID;
    std::shared_ptr<TrackingPoint> primary;
    std::shared_ptr<TrackingPoint> secondary;
    KeptXml kept;
};

namespace
{

using Point = kytl::matl::KyPoint<2, float>;

constexpr char kTag[] = "Tracker";
constexpr char kPrimaryTag[] = "Primary";
constexpr char kSecondaryTag[] = "Secondary";
constexpr unsigned int kVersion = 0;

template <class Xml, class Data> void TrackerFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("ParentLayerID", data.parentLayerID);
    xml.Child("Type", data.type);
    xml.Child("Method", data.method);
    xml.Child("Purpose", data.purpose);
    xml.Child("TransformOptions", data.transformationOptions);
    xml.Child("DestinationLayerID", data.destinationLayerID);
}

} // namespace

Tracker::Tracker() = default;

Tracker::Tracker(const XmlCursor &element, const Deserializer &) : Tracker()
{
    element.RequireHeader(kTag, kVersion);
    TrackerFields(element, *impl_);
    if (const XmlCursor point = element.Find(kPrimaryTag); !point.IsNull())
        impl_->primary.reset(new TrackingPoint(point, kPrimaryTag));
    if (const XmlCursor point = element.Find(kSecondaryTag); !point.IsNull())
        impl_->secondary.reset(new TrackingPoint(point, kSecondaryTag));
    impl_->kept = KeptXml(element);
}

Tracker::Tracker(const Tracker &other) = default;

Tracker::~Tracker() = default;

std::shared_ptr<Tracker> Tracker::Create(const WideString &name, const Point &primaryPosition,
                                         const Point &secondaryPosition, float featureSize, float searchSize)
{
    std::shared_ptr<Tracker> tracker(new Tracker());
    Tracker_Impl &data = *tracker->impl_;
    data.id = kytl::KyID::Generate();
    data.name = name;
    data.primary.reset(new TrackingPoint(TrackingPoint::TrackingPointType::Primary, data.id, primaryPosition,
                                         featureSize, searchSize));
    data.secondary.reset(new TrackingPoint(TrackingPoint::TrackingPointType::Secondary, data.id,
                                           secondaryPosition, featureSize, searchSize));
    data.secondary->SetVisible(false);
    return tracker;
}

std::shared_ptr<Tracker> Tracker::Copy(const std::shared_ptr<Tracker> &tracker)
{
    Require(tracker, "tracker");
    std::shared_ptr<Tracker> copy(new Tracker(*tracker));
    Tracker_Impl &data = *copy->impl_;
    data.id = kytl::KyID::Generate();
    for (std::shared_ptr<TrackingPoint> *point : {&data.primary, &data.secondary}) {
        if (*point)
            *point = TrackingPoint::Copy(**point, data.id);
    }
    return copy;
}

void Tracker::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion, impl_->kept);
    TrackerFields(writer, *impl_);
    if (impl_->primary)
        impl_->primary->Serialize(writer, kPrimaryTag);
    if (impl_->secondary)
        impl_->secondary->Serialize(writer, kSecondaryTag);
}

const kytl::KyID &Tracker::ID() const
{
    return impl_->id;
}

const WideString &Tracker::Name() const
{
    return impl_->name;
}

void Tracker::SetName(const WideString &name)
{
    impl_->name = name;
}

Tracker::TrackerType Tracker::Type() const
{
    return impl_->type;
}

void Tracker::SetType(TrackerType type)
{
    impl_->type = type;
}

Tracker::TrackerMethod Tracker::Method() const
{
    return impl_->method;
}

void Tracker::SetMethod(TrackerMethod method)
{
    impl_->method = method;
}

Tracker::TrackerPurpose Tracker::Purpose() const
{
    return impl_->purpose;
}

void Tracker::SetPurpose(TrackerPurpose purpose)
{
    impl_->purpose = purpose;
}

unsigned int Tracker::TransformationOptions() const
{
    return impl_->transformationOptions;
}

void Tracker::SetTransformationOptions(unsigned int options)
{
    impl_->transformationOptions = options;
}

const kytl::KyID &Tracker::ParentLayerID() const
{
    return impl_->parentLayerID;
}

void Tracker::SetParentLayerID(const kytl::KyID &id)
{
    impl_->parentLayerID = id;
}

void Tracker::ClearParentLayerID()
{
    impl_->parentLayerID = {};
}

const kytl::KyID &Tracker::DestinationLayerID() const
{
    return impl_->destinationLayerID;
}

void Tracker::SetDestinationLayerID(const kytl::KyID &id)
{
    impl_->destinationLayerID = id;
}

void Tracker::ClearDestinationLayerID()
{
    impl_->destinationLayerID = {};
}

std::shared_ptr<TrackingPoint> &Tracker::PrimaryTrackingPoint()
{
    return impl_->primary;
}

const std::shared_ptr<TrackingPoint> &Tracker::PrimaryTrackingPoint() const
{
    return impl_->primary;
}

std::shared_ptr<TrackingPoint> &Tracker::SecondaryTrackingPoint()
{
    return impl_->secondary;
}

const std::shared_ptr<TrackingPoint> &Tracker::SecondaryTrackingPoint() const
{
    return impl_->secondary;
}

} // namespace marlet::project
