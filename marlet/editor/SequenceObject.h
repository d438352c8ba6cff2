#pragma once

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

class AbstractPluginManager;
class EditorSequence;
class SequenceObjectList;
class XmlCursor;
class XmlWriter;
struct SequenceObjectKind;
struct SequenceObject_Impl;

/// What the two classes of objects have in common, which is all but their placement and level.
class MARLET_EXPORT SequenceObject : public AbstractSequenceObject
{
public:
    ~SequenceObject() override;

    const kytl::KyID &ID() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    const kytl::KyID &AssetID() const override;
    project::AssetType AssetType() const override;
    int AssetInstanceStart() const override;
    void SetAssetInstanceStart(int frame) override;
    /// The last frame of the asset that is used; speed plays no part.
    int AssetInstanceEnd() const override;
    /// Shows another asset from now on; name, frames and lists of instances stay.
    /// @throws std::invalid_argument for a null pointer
    void SetAsset(const std::shared_ptr<AbstractAsset> &asset);
    /// Its ID and type; the rest of it is asked of the asset.
    AssetUse Use() const;
    void SetUse(const AssetUse &use);
    const kytl::KyID &ParentSequenceID() const override;
    PropertyManager &Properties() override;
    const PropertyManager &Properties() const override;
    std::shared_ptr<AbstractAsset> Asset(const AssetList &assets) const override;
    int StartFrame() const override;
    int EndFrame() const override;
    void SetEndFrame(int frame) override;
    int Length() const override;
    EffectList &Effects() override;
    const EffectList &Effects() const override;
    double Speed() const override;
    void SetSpeed(double speed) override;
    const kytl::KyID &ParentTrackID() const override;
    void SetParentTrackID(const kytl::KyID &id) override;
    void ClearParentTrackID() override;
    const kytl::KyID &LinkedObjectID() const override;
    void SetLinkedObjectID(const kytl::KyID &id) override;
    void ClearLinkedObject() override;
    const std::shared_ptr<Transition> &IncomingTransition() const override;
    void SetIncomingTransition(const std::shared_ptr<Transition> &transition) override;
    void ClearIncomingTransition() override;
    const std::shared_ptr<Transition> &OutgoingTransition() const override;
    void SetOutgoingTransition(const std::shared_ptr<Transition> &transition) override;
    void ClearOutgoingTransition() override;

    WideString Serialize() const;

protected:
    /// An empty record, for the other constructors. The kind lives as long as the program.
    explicit SequenceObject(const SequenceObjectKind &kind);
    SequenceObject(const SequenceObjectKind &kind, const std::shared_ptr<AbstractAsset> &asset,
                   const std::shared_ptr<EditorSequence> &sequence);
    /// Without a list the transitions are not read.
    SequenceObject(const SequenceObjectKind &kind, const XmlCursor &element,
                   const std::shared_ptr<AbstractPluginManager> &pluginManager,
                   const SequenceObjectList *objects);
    SequenceObject(const SequenceObject &other);
    /// Takes all but the ID.
    SequenceObject &operator=(const SequenceObject &other);

    /// Makes a new copy, which still shares all with its source, an object of its own.
    void PartFromSource(bool copyTransitions);
    /// @throws std::logic_error if the list does not have the asset
    std::shared_ptr<AbstractAsset> RequireAsset(const AssetList &assets) const;
    void Serialize(XmlWriter &writer) const;

    ValuePtr<SequenceObject_Impl> impl_;

private:
    friend class SequenceTrack;

    void SetStartFrame(int frame) override;
};

} // namespace marlet::project
