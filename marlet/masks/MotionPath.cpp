#include <marlet/masks/MotionPath.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/masks/PathPoint.h>

#include <algorithm>

namespace marlet::project
{

struct MotionPath_Impl {
    kytl::KyID id = kytl::KyID::Generate();
    kytl::KyID parentID;
    bool closed = false;
    MotionPath::PointList points;
};

namespace
{

constexpr char kTag[] = "MotionPath";
constexpr unsigned int kVersion = 0;

bool CanBeClosed(const MotionPath::PointList &points)
{
    return points.size() - static_cast<std::size_t>(std::ranges::count(points, nullptr)) >= 3;
}

template <class Xml, class Data> void MotionPathFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Closed", data.closed);
    xml.Child("ParentID", data.parentID);
}

} // namespace

MotionPath::MotionPath() = default;

MotionPath::MotionPath(const MotionPath &other) : MotionPath()
{
    impl_->closed = other.impl_->closed;
    for (const std::shared_ptr<PathPoint> &point : other.impl_->points) {
        if (!point)
            continue;
        impl_->points.Add(PathPoint::Copy(point));
        impl_->points.back()->SetParentPathID(impl_->id);
    }
}

MotionPath &MotionPath::operator=(MotionPath other)
{
    impl_.Swap(other.impl_);
    return *this;
}

MotionPath::~MotionPath() = default;

WideString MotionPath::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void MotionPath::Deserialize(const WideString &xml)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

void MotionPath::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion);
    MotionPathFields(writer, *impl_);
    const XmlElement points(writer, "Points");
    for (const std::shared_ptr<PathPoint> &point : impl_->points)
        if (point)
            point->Serialize(writer);
}

void MotionPath::Deserialize(const XmlCursor &element)
{
    element.RequireHeader(kTag, kVersion);
    MotionPathFields(element, *impl_);
    impl_->points.Clear();
    for (XmlCursor point = element.Find("Points").Find("Point"); !point.IsNull(); point = point.Next("Point"))
        impl_->points.Add(std::shared_ptr<PathPoint>(new PathPoint(point)));
}

const kytl::KyID &MotionPath::ID() const
{
    return impl_->id;
}

const kytl::KyID &MotionPath::ParentID() const
{
    return impl_->parentID;
}

void MotionPath::SetParentID(const kytl::KyID &id)
{
    impl_->parentID = id;
}

bool MotionPath::IsClosed() const
{
    return impl_->closed && CanBeClosed(impl_->points);
}

void MotionPath::SetClosed(bool closed)
{
    impl_->closed = closed && CanBeClosed(impl_->points);
}

bool MotionPath::WantsToBeClosed() const
{
    return impl_->closed;
}

void MotionPath::SetWantsToBeClosed(bool closed)
{
    impl_->closed = closed;
}

MotionPath::PointList &MotionPath::Points()
{
    return impl_->points;
}

const MotionPath::PointList &MotionPath::Points() const
{
    return impl_->points;
}

} // namespace marlet::project
