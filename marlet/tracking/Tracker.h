#pragma once

#include <marlet/foundation/Deserializer.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyPoint.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

#include <memory>

namespace marlet::project
{

class TrackingPoint;
class XmlCursor;
class XmlWriter;
struct Tracker_Impl;

/// The description of one job of motion tracking on an asset layer: which feature or two features are
/// followed, how, and for which layer. It owns its two points. TrackingActiveObject does the tracking.
/// Belongs to the thread that edits the project.
class MARLET_EXPORT Tracker
{
public:
    enum class TrackerType : int { SinglePoint, TwoPoints };
    enum class TrackerMethod : int { OpticalFlow, TemplateMatching };
    /// What the tracker is for: the host names the values.
    enum class TrackerPurpose : int {};

    /// Positions as "featurePosition", sizes in pixels. The secondary point is hidden.
    static std::shared_ptr<Tracker> Create(const WideString &name,
                                           const kytl::matl::KyPoint<2, float> &primaryPosition,
                                           const kytl::matl::KyPoint<2, float> &secondaryPosition,
                                           float featureSize, float searchSize);
    /// A copy in which tracker and points have new IDs, on the same layer.
    static std::shared_ptr<Tracker> Copy(const std::shared_ptr<Tracker> &tracker);
    Tracker &operator=(const Tracker &) = delete;
    ~Tracker();

    const kytl::KyID &ID() const;
    const WideString &Name() const;
    void SetName(const WideString &name);
    TrackerType Type() const;
    void SetType(TrackerType type);
    TrackerMethod Method() const;
    void SetMethod(TrackerMethod method);
    TrackerPurpose Purpose() const;
    void SetPurpose(TrackerPurpose purpose);
    /// Bits of the host.
    unsigned int TransformationOptions() const;
    void SetTransformationOptions(unsigned int options);
    const kytl::KyID &ParentLayerID() const;
    void SetParentLayerID(const kytl::KyID &id);
    void ClearParentLayerID();
    /// The layer that is to take the motion over; the null ID for none.
    const kytl::KyID &DestinationLayerID() const;
    void SetDestinationLayerID(const kytl::KyID &id);
    void ClearDestinationLayerID();
    /// Always there on a new tracker; null if the file had none.
    std::shared_ptr<TrackingPoint> &PrimaryTrackingPoint();
    const std::shared_ptr<TrackingPoint> &PrimaryTrackingPoint() const;
    std::shared_ptr<TrackingPoint> &SecondaryTrackingPoint();
    const std::shared_ptr<TrackingPoint> &SecondaryTrackingPoint() const;

private:
    friend class AssetLayer;

    Tracker();
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// boost::bad_lexical_cast
    Tracker(const XmlCursor &element, const Deserializer &);
    Tracker(const Tracker &other);

    void Serialize(XmlWriter &writer) const;

    ValuePtr<Tracker_Impl> impl_;
};

} // namespace marlet::project
