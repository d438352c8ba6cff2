// The parts of a project, its folders and assets.

#include <marlet/editor/EditorSequence.h>
#include <marlet/history/Fields.h>
#include <marlet/history/Parts.h>
#include <marlet/history/StoredFields.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AbstractAssetInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/SolidAsset.h>

#include <unordered_set>

namespace marlet::project
{

// Values without an equality of their own.

bool operator==(const MediaAsset::OverrideOptions &a, const MediaAsset::OverrideOptions &b)
{
    return a.overrideFrameRate == b.overrideFrameRate && a.overrideFields == b.overrideFields &&
           a.overridePAR == b.overridePAR && AreSame(a.frameRate, b.frameRate) && a.fields == b.fields &&
           a.par == b.par;
}

bool operator==(const CompositionRenderSettings &a, const CompositionRenderSettings &b)
{
    return a.Serialize() == b.Serialize();
}

/// Views are many numbers, half of which no text holds, and panels are hardly ever part of an edit: so they
/// always count as changed.
bool operator==(const PanelRenderState &, const PanelRenderState &)
{
    return false;
}

namespace
{

constexpr std::tuple kProjectFields(
    Setting(Aspect::Name, &Project::Name, &Project::SetName),
    Field{Aspect::Settings, [](const Project &project) { return project.Settings().ColorBitDepth(); },
          [](Project &project, BPC depth) { project.Settings().SetColorBitDepth(depth); }},
    Field{Aspect::Members, [](const Project &project) { return project.Sequence(); },
          [](Project &project, const std::shared_ptr<EditorSequence> &sequence) {
              project.SetSequence(sequence);
          }});

constexpr std::tuple kAssetsFields(Field{
    Aspect::Members, [](const Project &project) { return project.Assets().All(); },
    [](Project &project, const AssetList::Assets &assets) { project.Assets().All() = assets; }});

constexpr std::tuple kFolderFields(Setting(Aspect::Name, &BinFolder::Name, &BinFolder::SetName),
                                   Setting(Aspect::View, &BinFolder::IsExpanded, &BinFolder::SetExpanded),
                                   Setting(Aspect::Links, &BinFolder::ParentFolderID,
                                           &BinFolder::SetParentFolderID),
                                   Held(Aspect::Members, &BinFolder::Assets, &BinFolder::Assets),
                                   Held(Aspect::Members, &BinFolder::Folders, &BinFolder::Folders));

constexpr std::tuple kAssetFields(Setting(Aspect::Name, &AbstractAsset::Name, &AbstractAsset::SetName),
                                  Setting(Aspect::Links, &AbstractAsset::ParentFolderID,
                                          &AbstractAsset::SetParentFolderID),
                                  Held(Aspect::Links, &AbstractAsset::Instances, &AbstractAsset::Instances));

constexpr std::tuple kSolidFields(Setting(Aspect::Settings, &SolidAsset::Color, &SolidAsset::SetColor),
                                  Setting(Aspect::Settings, &SolidAsset::Width, &SolidAsset::SetWidth),
                                  Setting(Aspect::Settings, &SolidAsset::Height, &SolidAsset::SetHeight),
                                  Setting(Aspect::Settings, &SolidAsset::PixelAspectRatio,
                                          &SolidAsset::SetPixelAspectRatio));

// A new name makes an image forget its pixel aspect ratio.
constexpr std::tuple kImageFields(Setting(Aspect::File, &ImageAsset::Filename, &ImageAsset::SetFilename),
                                  Setting(Aspect::Settings, &ImageAsset::PixelAspectRatio,
                                          &ImageAsset::SetPixelAspectRatio));

constexpr std::tuple kMediaFields(Field{Aspect::View, StoredFields::TrimmerInPoint,
                                        [](MediaAsset &asset, int frame) { asset.SetTrimmerInPoint(frame); }},
                                  Field{
                                      Aspect::View, StoredFields::TrimmerOutPoint,
                                      [](MediaAsset &asset, int frame) { asset.SetTrimmerOutPoint(frame); }});

using Composition = CompositionAsset;

constexpr std::tuple kCompositionFields(
    Held(Aspect::Settings, &Composition::Settings, &Composition::Settings),
    Held(Aspect::Settings, &Composition::RenderSettings, &Composition::RenderSettings),
    Setting(Aspect::View, &Composition::CurrentTimeIndicator, &Composition::SetCurrentTimeIndicator),
    Setting(Aspect::View, &Composition::InPoint, StoredFields::SetInPoint<Composition>),
    Setting(Aspect::View, &Composition::OutPoint, &Composition::SetOutPoint),
    Setting(Aspect::View, &Composition::TimelineZoom, &Composition::SetTimelineZoom),
    Setting(Aspect::View, &Composition::SplitterPosition, &Composition::SetSplitterPosition),
    Setting(Aspect::View, &Composition::TimelineTimeFormat, &Composition::SetTimelineTimeFormat),
    Setting(Aspect::View, &Composition::TimelineSnapMode, &Composition::SetTimelineSnapMode));

constexpr std::tuple kLayersFields(Held(Aspect::Members, &Composition::Layers, &Composition::Layers));

constexpr std::tuple
    kCompositionPanels(Held(Aspect::View, &Composition::ViewerPanelState, &Composition::ViewerPanelState),
                       Held(Aspect::View, &Composition::LayerPanelState, &Composition::LayerPanelState));

class LayersPart final : public FieldsPart<CompositionAsset, kLayersFields>
{
public:
    using FieldsPart::FieldsPart;

    void Describe(ChangeList &changes) const override
    {
        FieldsPart::Describe(changes);
        const CompositionAsset::LayerList &kept = std::get<0>(Kept());
        if (AreSame(kept, Live().Layers()))
            return;
        std::unordered_set<const AbstractLayer *> live;
        for (const std::shared_ptr<AbstractLayer> &layer : Live().Layers())
            live.insert(layer.get());
        for (const std::shared_ptr<AbstractLayer> &layer : kept)
            if (layer && !live.contains(layer.get()))
                changes.AddFormerFrames(Live().ID(), layer->ID(), layer->StartFrame(), layer->EndFrame());
    }
};

class MetadataPart final : public EditedPart
{
public:
    explicit MetadataPart(const std::shared_ptr<Project> &project)
        : EditedPart({&project->Metadata(), &kProjectFields, {}}),
          project_(project),
          kept_(project->Metadata().Copy())
    {
    }

    void Exchange() override { project_->Metadata().Swap(*kept_); }
    void Describe(ChangeList &changes) const override
    {
        if (!(project_->Metadata() == *kept_))
            changes.Of(ObjectKind::Project, project_->ID()).aspects |= Aspect::Settings;
    }
    std::size_t Size() const override { return sizeof *this + kept_->Size(); }

private:
    std::shared_ptr<Project> project_;
    std::unique_ptr<ProjectMetadata> kept_;
};

/// Which file a media asset has, and what the user says of it, which counts when an image sequence is opened.
/// Going back opens the former one again, or asks for it where it is open.
class MediaFilePart final : public EditedPart
{
    struct State {
        explicit State(const MediaAsset &asset)
            : filename(asset.Filename()), isSequence(asset.IsImageSequence()), options(asset.Override())
        {
        }

        bool HasFileOf(const State &other) const
        {
            return filename == other.filename && isSequence == other.isSequence;
        }

        WideString filename;
        bool isSequence;
        MediaAsset::OverrideOptions options;
    };

public:
    MediaFilePart(const std::shared_ptr<Project> &project, const std::shared_ptr<MediaAsset> &asset)
        : EditedPart({asset.get(), &kMediaFields, "file"}), project_(project), asset_(asset), kept_(*asset)
    {
    }

    void Exchange() override
    {
        State live(*asset_);
        asset_->Override() = kept_.options;
        std::shared_ptr<MediaAsset> asset = asset_;
        if (!kept_.HasFileOf(live) && kept_.isSequence)
            project_->Media().RelinkImageSequence(asset, kept_.filename);
        else if (!kept_.HasFileOf(live))
            project_->Media().RelinkMediaFile(asset, kept_.filename);
        kept_ = std::move(live);
    }

    void Describe(ChangeList &changes) const override
    {
        const State live(*asset_);
        if (!kept_.HasFileOf(live))
            changes.Of(ObjectKind::Asset, asset_->ID()).aspects |= Aspect::File;
        if (!(kept_.options == live.options))
            changes.Of(ObjectKind::Asset, asset_->ID()).aspects |= Aspect::Settings;
    }

    std::size_t Size() const override { return sizeof *this + SizeBeyond(kept_.filename); }

private:
    std::shared_ptr<Project> project_;
    std::shared_ptr<MediaAsset> asset_;
    State kept_;
};

} // namespace

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<Project> &project)
{
    return Make<kProjectFields>(project, ObjectKind::Project);
}

std::unique_ptr<EditedPart> MakeMetadataPart(const std::shared_ptr<Project> &project)
{
    return std::make_unique<MetadataPart>(project);
}

std::unique_ptr<EditedPart> MakeAssetsPart(const std::shared_ptr<Project> &project)
{
    return Make<kAssetsFields>(project, ObjectKind::Project);
}

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<BinFolder> &folder)
{
    return Make<kFolderFields>(folder, ObjectKind::Folder);
}

void MakeParts(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractAsset> &asset,
               const PartSink &sink)
{
    sink(Make<kAssetFields>(asset, ObjectKind::Asset));
    if (const auto solid = std::dynamic_pointer_cast<SolidAsset>(asset))
        sink(Make<kSolidFields>(solid, ObjectKind::Asset));
    else if (const auto image = std::dynamic_pointer_cast<ImageAsset>(asset))
        sink(Make<kImageFields>(image, ObjectKind::Asset));
    else if (const auto composition = std::dynamic_pointer_cast<CompositionAsset>(asset))
        sink(Make<kCompositionFields>(composition, ObjectKind::Asset));
    else if (const auto media = std::dynamic_pointer_cast<MediaAsset>(asset)) {
        sink(Make<kMediaFields>(media, ObjectKind::Asset));
        sink(std::make_unique<MediaFilePart>(project, media));
    }
}

std::unique_ptr<EditedPart> MakeLayersPart(const std::shared_ptr<CompositionAsset> &composition)
{
    return std::make_unique<LayersPart>(composition, ObjectKind::Asset, composition->ID());
}

std::unique_ptr<EditedPart> MakePanelsPart(const std::shared_ptr<CompositionAsset> &composition)
{
    return Make<kCompositionPanels>(composition, ObjectKind::Asset);
}

void TakeOver(Project &project, const Project &other)
{
    TakeOverFields<kProjectFields>(project, other);
}

void TakeOver(BinFolder &folder, const BinFolder &other)
{
    TakeOverFields<kFolderFields>(folder, other);
}

void TakeOver(AbstractAsset &asset, const AbstractAsset &other)
{
    const AbstractAsset::InstanceList instances = asset.Instances();
    TakeOverFields<kAssetFields>(asset, other);
    asset.Instances() = instances;
    if (auto *solid = dynamic_cast<SolidAsset *>(&asset))
        TakeOverFields<kSolidFields>(*solid, dynamic_cast<const SolidAsset &>(other));
    else if (auto *image = dynamic_cast<ImageAsset *>(&asset))
        TakeOverFields<kImageFields>(*image, dynamic_cast<const ImageAsset &>(other));
    else if (auto *media = dynamic_cast<MediaAsset *>(&asset)) {
        TakeOverFields<kMediaFields>(*media, dynamic_cast<const MediaAsset &>(other));
        media->Override() = dynamic_cast<const MediaAsset &>(other).Override();
    } else if (auto *composition = dynamic_cast<CompositionAsset *>(&asset))
        TakeOverFields<kCompositionFields>(*composition, dynamic_cast<const CompositionAsset &>(other));
}

} // namespace marlet::project
