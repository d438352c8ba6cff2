#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

#include <memory>

namespace marlet::project
{

class PathPoint;
class XmlCursor;
class XmlWriter;
struct MotionPath_Impl;

/// An open or closed outline of points, which it owns, in order. Belongs to the thread that edits the
/// project.
class MARLET_EXPORT MotionPath
{
public:
    using PointList = kytl::KyList<std::shared_ptr<PathPoint>, std::vector>;

    /// An open path without points.
    MotionPath();
    /// A copy with a new ID and no parent, whose points have new IDs and name the copy as their path.
    MotionPath(const MotionPath &other);
    MotionPath &operator=(MotionPath other);
    ~MotionPath();

    const kytl::KyID &ID() const;
    /// The mask that owns the path.
    const kytl::KyID &ParentID() const;
    void SetParentID(const kytl::KyID &id);
    /// Whether the last point joins the first, which takes at least 3 points.
    bool IsClosed() const;
    /// True counts only on a path of at least 3 points. What is stored stays when points come and go.
    void SetClosed(bool closed);
    /// What is stored, however many points there are.
    bool WantsToBeClosed() const;
    void SetWantsToBeClosed(bool closed);
    PointList &Points();
    const PointList &Points() const;

    WideString Serialize() const;
    /// Replaces everything by what the text says. A failure leaves what was read until then.
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// boost::bad_lexical_cast
    void Deserialize(const WideString &xml);

private:
    friend class Mask;

    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<MotionPath_Impl> impl_;
};

} // namespace marlet::project
