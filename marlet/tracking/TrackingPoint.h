#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyPoint.h>
#include <marlet/foundation/ValuePtr.h>

#include <memory>

namespace marlet::project
{

class PropertyManager;
class XmlCursor;
class XmlWriter;
struct TrackingPoint_Impl;

/// A feature that a tracker follows. Its properties: "featurePosition" from the middle of the frame with Y
/// up, "featureDimensions", "featureOffset", "searchPosition" as an offset from the feature,
/// "searchDimensions"; all in pixels. It owns them. Belongs to the thread that edits the project.
class MARLET_EXPORT TrackingPoint
{
public:
    enum class TrackingPointType : int { Primary, Secondary };

    TrackingPoint &operator=(const TrackingPoint &) = delete;
    ~TrackingPoint();

    const kytl::KyID &ID() const;
    TrackingPointType Type() const;
    const kytl::KyID &ParentTrackerID() const;
    PropertyManager &Animation();
    const PropertyManager &Animation() const;
    bool IsVisible() const;
    void SetVisible(bool visible);

private:
    friend class Tracker;

    TrackingPoint();
    TrackingPoint(TrackingPointType type, const kytl::KyID &trackerID,
                  const kytl::matl::KyPoint<2, float> &position, float featureSize, float searchSize);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// boost::bad_lexical_cast
    TrackingPoint(const XmlCursor &element, const char *tag);
    TrackingPoint(const TrackingPoint &other);

    static std::shared_ptr<TrackingPoint> Copy(const TrackingPoint &point, const kytl::KyID &trackerID);
    void SetParentTrackerID(const kytl::KyID &id);
    void Serialize(XmlWriter &writer, const char *tag) const;

    ValuePtr<TrackingPoint_Impl> impl_;
};

} // namespace marlet::project
