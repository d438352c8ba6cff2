#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/project/AbstractAsset.h>

#include <unordered_map>

namespace marlet::project
{

class AbstractLayer;
class CompositionRenderSettings;
class PanelRenderState;
class XmlCursor;
struct CompositionAsset_Impl;

/// How the host shows times, and what it snaps to; the library stores the numbers.
enum class TimeFormat : int {};
enum class SnapMode : int {};

/// An asset made of layers, which it owns, in stacking order. It has a frame format of its own, render
/// settings and the state of the host's timeline. Times are frames of the composition; an end is exclusive.
class MARLET_EXPORT CompositionAsset : public AbstractAsset
{
public:
    using LayerList = kytl::KyList<std::shared_ptr<AbstractLayer>, std::list>;

    static std::shared_ptr<CompositionAsset> Create(const WideString &name, AudioVideoSettings::Preset preset,
                                                    int frameCount);
    /// @throws as Deserialize, and what the readers of layers throw
    static std::shared_ptr<CompositionAsset>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                  const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures);
    static std::shared_ptr<CompositionAsset> Copy(const std::shared_ptr<CompositionAsset> &other);
    ~CompositionAsset() override;

    /// A copy whose layers have new IDs and refer to one another as those of the source do. The views of its
    /// panels have new IDs, too; views that the source does not list are left out.
    std::shared_ptr<AbstractAsset> Clone() const override;
    const kytl::KyID &ID() const override;
    AssetType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    bool IsOffline() const override;
    int Width() const override;
    int Height() const override;
    InstanceList &Instances() override;
    const InstanceList &Instances() const override;
    const kytl::KyID &ParentFolderID() const override;
    void SetParentFolderID(const kytl::KyID &id) override;
    void ClearParentBinFolder() override;
    WideString Serialize(const ProjectTextureImageCache &textures) const override;
    /// A failure leaves the composition as it was.
    void Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory,
                     ProjectTextureImageCache &textures) override;

    /// Entries may be empty pointers, which everything passes over. FindLayerByID and what looks for layers
    /// by it notice a change in the list's length or at its ends at once, and any other one from the next
    /// call of the form that can be changed on.
    LayerList &Layers();
    const LayerList &Layers() const;
    /// The first layer with that ID, or an empty pointer. Does not walk the list.
    std::shared_ptr<AbstractLayer> FindLayerByID(const kytl::KyID &id) const;
    /// Rewrites the references of all layers from old to new layer IDs, both in text form.
    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes);

    AudioVideoSettings &Settings();
    const AudioVideoSettings &Settings() const;
    CompositionRenderSettings &RenderSettings();
    const CompositionRenderSettings &RenderSettings() const;
    /// Of the composition's viewer, which is saved, and of a layer's, which is not.
    PanelRenderState &ViewerPanelState();
    const PanelRenderState &ViewerPanelState() const;
    PanelRenderState &LayerPanelState();
    const PanelRenderState &LayerPanelState() const;

    /// Whether there is a camera, visible or not.
    bool Is3D() const;
    /// The first visible camera whose span holds the frame, or an empty pointer.
    std::shared_ptr<AbstractLayer> ActiveCameraLayer(int frame) const;
    /// The nearest start or end of a layer before and after a frame, from 0 to the frame count.
    int PreviousEdit(int frame) const;
    int NextEdit(int frame) const;

    int CurrentTimeIndicator() const;
    void SetCurrentTimeIndicator(int frame);
    int InPoint() const;
    /// A negative frame is raised to 0.
    void SetInPoint(int frame);
    int OutPoint() const;
    void SetOutPoint(int frame);
    double TimelineZoom() const;
    void SetTimelineZoom(double zoom);
    int SplitterPosition() const;
    void SetSplitterPosition(int position);
    TimeFormat TimelineTimeFormat() const;
    void SetTimelineTimeFormat(TimeFormat format);
    SnapMode TimelineSnapMode() const;
    void SetTimelineSnapMode(SnapMode mode);

private:
    friend class AssetList;
    friend class StoredFields;

    CompositionAsset();
    CompositionAsset(const WideString &name, AudioVideoSettings::Preset preset, int frameCount);
    CompositionAsset(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures);
    CompositionAsset(const CompositionAsset &other);

    void RestoreInPoint(int frame); ///< any frame, as a file may have it
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    void Deserialize(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures);

    ValuePtr<CompositionAsset_Impl> impl_;
};

} // namespace marlet::project
