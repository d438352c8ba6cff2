#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/history/ChangeNotice.h>

#include <memory>
#include <utility>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class AbstractSequenceObject;
class Edit;
class Mask;
class PathPoint;
class PluginInstance;
class TrackingPoint;

/// A property of an object of a project, for the operations on key frames. It shares the ownership of the
/// object. Belongs to the thread that edits the project.
class MARLET_EXPORT AnimatedProperty
{
public:
    // @throws std::invalid_argument for a null pointer, std::out_of_range if there is no such property

    AnimatedProperty(const std::shared_ptr<AbstractLayer> &owner, const NarrowString &name);
    AnimatedProperty(const std::shared_ptr<Mask> &owner, const NarrowString &name);
    AnimatedProperty(const std::shared_ptr<PathPoint> &owner, const NarrowString &name);
    AnimatedProperty(const std::shared_ptr<TrackingPoint> &owner, const NarrowString &name);
    AnimatedProperty(const std::shared_ptr<PluginInstance> &owner, const NarrowString &name);
    AnimatedProperty(const std::shared_ptr<AbstractSequenceObject> &owner, const NarrowString &name);
    /// One that anything else owns.
    AnimatedProperty(const std::shared_ptr<PropertyManager> &properties, const NarrowString &name,
                     ObjectKind kind, const kytl::KyID &owner);

    const NarrowString &Name() const { return name_; }
    const std::shared_ptr<PropertyManager> &Properties() const { return properties_; }
    const KeyFrameList &Keys() const { return std::as_const(*properties_).KeyFrames(name_.c_str()); }
    /// To be changed, once an edit was told.
    KeyFrameList &KeysToEdit() const { return properties_->KeyFrames(name_.c_str()); }
    PropertyValue ValueAt(int time) const { return properties_->ValueAtTime(name_.c_str(), time); }

    /// Tells the edit that these key frames are going to be changed, added or removed, or the whole property
    /// where they are so many that this costs less.
    void Touch(Edit &edit, const std::vector<kytl::KyID> &keys) const;
    /// Tells the edit of the whole property.
    void Touch(Edit &edit) const;

private:
    std::shared_ptr<PropertyManager> properties_;
    NarrowString name_;
    ObjectKind kind_;
    kytl::KyID owner_;
};

} // namespace marlet::project
