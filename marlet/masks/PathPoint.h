#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/ValuePtr.h>

#include <memory>

namespace marlet::project
{

class PropertyManager;
class XmlCursor;
class XmlWriter;
struct PathPoint_Impl;

/// A point of an outline. Its "position" and its handles "leftHandle" and "rightHandle", offsets from the
/// position in pixels, are key-framed properties, which it owns. Belongs to the thread that edits the
/// project.
class MARLET_EXPORT PathPoint
{
public:
    static std::shared_ptr<PathPoint> Create(float x, float y, const kytl::KyID &parentPathID);
    /// A copy with a new ID and its own properties; the parent path stays that of the source.
    static std::shared_ptr<PathPoint> Copy(const std::shared_ptr<PathPoint> &point);
    PathPoint &operator=(const PathPoint &) = delete;
    ~PathPoint();

    const kytl::KyID &ID() const;
    const kytl::KyID &ParentPathID() const;
    void SetParentPathID(const kytl::KyID &id);
    /// Stored for the host. What is made linear becomes locked, too.
    bool IsLinear() const;
    void SetLinear(bool linear);
    bool IsLocked() const;
    void SetLocked(bool locked);
    PropertyManager &Animation();
    const PropertyManager &Animation() const;

private:
    friend class MotionPath;

    PathPoint();
    explicit PathPoint(const XmlCursor &element);
    PathPoint(const PathPoint &other);

    void Serialize(XmlWriter &writer) const;

    ValuePtr<PathPoint_Impl> impl_;
};

} // namespace marlet::project
