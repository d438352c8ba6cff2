#include <marlet/masks/PathPoint.h>

#include <marlet/animation/PropertyTable.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

namespace marlet::project
{

struct PathPoint_Impl {
    kytl::KyID id;
    kytl::KyID parentPathID;
    bool linear = true;
    bool locked = false;
    std::shared_ptr<PropertyManager> animation = PropertyManager::Create();
    KeptXml kept;
};

namespace
{

constexpr char kTag[] = "Point";
constexpr unsigned int kVersion = 0;

PropertyTable Properties(float x, float y)
{
    using Point = kytl::matl::KyPoint<2, float>;
    using Vector = kytl::matl::KyVector<2, float>;
    return {{"position", Point{x, y}}, {"leftHandle", Vector{}}, {"rightHandle", Vector{}}};
}

template <class Xml, class Data> void PathPointFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Linear", data.linear);
    xml.Child("Locked", data.locked);
    xml.Child("ParentPathID", data.parentPathID);
}

} // namespace

PathPoint::PathPoint() = default;

PathPoint::PathPoint(const XmlCursor &element) : PathPoint()
{
    static const PropertyTable required = Properties(0, 0);
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    PathPointFields(element, *impl_);
    if (const XmlCursor properties = element.Find("PropertyManager"); !properties.IsNull())
        impl_->animation->Deserialize(properties);
    RequireProperties(element, *impl_->animation, required, version);
    impl_->kept = KeptXml(element);
}

PathPoint::PathPoint(const PathPoint &other) = default;

PathPoint::~PathPoint() = default;

std::shared_ptr<PathPoint> PathPoint::Create(float x, float y, const kytl::KyID &parentPathID)
{
    std::shared_ptr<PathPoint> point(new PathPoint());
    point->impl_->id = kytl::KyID::Generate();
    point->impl_->parentPathID = parentPathID;
    CreateProperties(*point->impl_->animation, Properties(x, y));
    return point;
}

std::shared_ptr<PathPoint> PathPoint::Copy(const std::shared_ptr<PathPoint> &point)
{
    Require(point, "point");
    std::shared_ptr<PathPoint> copy(new PathPoint(*point));
    copy->impl_->id = kytl::KyID::Generate();
    copy->impl_->animation = PropertyManager::Copy(point->Animation());
    return copy;
}

void PathPoint::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion, impl_->kept);
    PathPointFields(writer, *impl_);
    impl_->animation->Serialize(writer);
}

const kytl::KyID &PathPoint::ID() const
{
    return impl_->id;
}

const kytl::KyID &PathPoint::ParentPathID() const
{
    return impl_->parentPathID;
}

void PathPoint::SetParentPathID(const kytl::KyID &id)
{
    impl_->parentPathID = id;
}

bool PathPoint::IsLinear() const
{
    return impl_->linear;
}

void PathPoint::SetLinear(bool linear)
{
    impl_->linear = linear;
    if (linear)
        impl_->locked = true;
}

bool PathPoint::IsLocked() const
{
    return impl_->locked;
}

void PathPoint::SetLocked(bool locked)
{
    impl_->locked = locked;
}

PropertyManager &PathPoint::Animation()
{
    return *impl_->animation;
}

const PropertyManager &PathPoint::Animation() const
{
    return *impl_->animation;
}

} // namespace marlet::project
