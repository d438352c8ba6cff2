#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/foundation/ValuePtr.h>
#include <marlet/project/AbstractAssetInstance.h>

#include <memory>

namespace marlet::project
{

class AbstractAsset;
class AssetList;
class EffectInstance;
class PropertyManager;
class Transition;
struct SequenceObjectList_Impl;

enum class ObjectType : int { Visual, Audio };

/// A clip on the editor timeline: a span of frames on a track that shows or plays frames of an asset. It owns
/// its properties and effects and shares its transitions with its neighbours; asset, track, sequence and
/// partner are named by ID. A record that keeps none of these in step: what belongs together is the host's
/// business.
///
/// Frames are of the sequence; the end frame is exclusive. Belongs to the thread that edits the project.
class MARLET_EXPORT AbstractSequenceObject : public AbstractAssetInstance
{
public:
    using EffectList = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;

    ~AbstractSequenceObject() override;

    virtual const kytl::KyID &ParentSequenceID() const = 0;
    virtual ObjectType Type() const = 0;
    virtual PropertyManager &Properties() = 0;
    virtual const PropertyManager &Properties() const = 0;
    /// The asset, or an empty pointer if the list has none of that ID.
    virtual std::shared_ptr<AbstractAsset> Asset(const AssetList &assets) const = 0;
    virtual int StartFrame() const = 0;
    virtual int EndFrame() const = 0;
    virtual void SetEndFrame(int frame) = 0;
    /// Negative if the object ends before it starts.
    virtual int Length() const = 0;
    /// In order of application.
    virtual EffectList &Effects() = 0;
    virtual const EffectList &Effects() const = 0;
    /// A factor. Changes no frames.
    virtual double Speed() const = 0;
    virtual void SetSpeed(double speed) = 0;
    /// The null ID while the object is on no track.
    virtual const kytl::KyID &ParentTrackID() const = 0;
    virtual void SetParentTrackID(const kytl::KyID &id) = 0;
    virtual void ClearParentTrackID() = 0;
    /// A partner, such as the sound of a picture; the partner is not told.
    virtual const kytl::KyID &LinkedObjectID() const = 0;
    virtual void SetLinkedObjectID(const kytl::KyID &id) = 0;
    virtual void ClearLinkedObject() = 0;
    /// Transitions are not told.
    virtual const std::shared_ptr<Transition> &IncomingTransition() const = 0;
    virtual void SetIncomingTransition(const std::shared_ptr<Transition> &transition) = 0;
    virtual void ClearIncomingTransition() = 0;
    virtual const std::shared_ptr<Transition> &OutgoingTransition() const = 0;
    virtual void SetOutgoingTransition(const std::shared_ptr<Transition> &transition) = 0;
    virtual void ClearOutgoingTransition() = 0;

protected:
    /// SetEndFrame of a class calls this when it has set the frame: the list keeps it for searches.
    void TellListOfEndFrame() const;

private:
    friend class SequenceObjectList;
    friend struct SequenceObjectList_Impl;

    /// For the list alone, which stays in order.
    virtual void SetStartFrame(int frame) = 0;

    /// The list that set its start frame last, while it is there.
    Uncopied<std::weak_ptr<SequenceObjectList_Impl>> list_;
};

} // namespace marlet::project
