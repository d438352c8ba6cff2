#include <marlet/project/CompositionAsset.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAssetImpl.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace marlet::project
{

namespace
{

bool IsCamera(const std::shared_ptr<AbstractLayer> &layer)
{
    return layer && layer->Type() == LayerType::Camera;
}

/// In 64 bits, since frames may lie at both ends of int.
std::int64_t Distance(int a, int b)
{
    return std::abs(std::int64_t(a) - b);
}

int LimitedTo(int frameCount, int frame)
{
    return std::min(std::max(frame, 0), frameCount);
}

} // namespace

CompositionAsset::CompositionAsset() = default;

CompositionAsset::CompositionAsset(const WideString &name, AudioVideoSettings::Preset preset, int frameCount)
{
    impl_->id = kytl::KyID::Generate();
    impl_->name = name;
    impl_->settings = AudioVideoSettings(preset, frameCount);
    impl_->outPoint = frameCount;
}

CompositionAsset::CompositionAsset(const CompositionAsset &other) = default;

CompositionAsset::~CompositionAsset() = default;

std::shared_ptr<CompositionAsset> CompositionAsset::Create(const WideString &name,
                                                           AudioVideoSettings::Preset preset, int frameCount)
{
    return std::shared_ptr<CompositionAsset>(new CompositionAsset(name, preset, frameCount));
}

std::shared_ptr<CompositionAsset> CompositionAsset::Copy(const std::shared_ptr<CompositionAsset> &other)
{
    Require(other, "composition");
    return std::static_pointer_cast<CompositionAsset>(other->Clone());
}

std::shared_ptr<AbstractAsset> CompositionAsset::Clone() const
{
    std::shared_ptr<CompositionAsset> clone(new CompositionAsset(*this));
    clone->impl_->id = kytl::KyID::Generate();
    clone->impl_->viewerPanelState = impl_->viewerPanelState.WithNewViews();
    clone->impl_->layerPanelState = impl_->layerPanelState.WithNewViews();

    std::unordered_map<NarrowString, NarrowString> newIDs;
    for (const std::shared_ptr<AbstractLayer> &layer : Layers()) {
        if (!layer)
            continue;
        const std::shared_ptr<AbstractLayer> copy = layer->Clone(clone->ID());
        if (!copy)
            throw std::logic_error("A layer gave no clone of itself");
        copy->SetParentComposition(clone->ID());
        clone->Layers().Add(copy);
        newIDs.try_emplace(layer->ID().ToNarrowString(), copy->ID().ToNarrowString());
    }
    // Only now, since a layer can refer to one further down the list.
    clone->ChangeLayerReferences(newIDs);
    return clone;
}

std::shared_ptr<AbstractLayer> CompositionAsset::FindLayerByID(const kytl::KyID &id) const
{
    return impl_->layersByID->Find(Layers(), id);
}

void CompositionAsset::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    for (const std::shared_ptr<AbstractLayer> &layer : std::as_const(*this).Layers())
        if (layer)
            layer->ChangeLayerReferences(changes);
}

bool CompositionAsset::Is3D() const
{
    return std::ranges::any_of(Layers(), IsCamera);
}

std::shared_ptr<AbstractLayer> CompositionAsset::ActiveCameraLayer(int frame) const
{
    const auto found = std::ranges::find_if(Layers(), [frame](const std::shared_ptr<AbstractLayer> &layer) {
        return IsCamera(layer) && layer->IsVisible() && layer->StartFrame() <= frame &&
               frame < layer->EndFrame();
    });
    return found == Layers().end() ? nullptr : *found;
}

int CompositionAsset::PreviousEdit(int frame) const
{
    int best = 0;
    for (const std::shared_ptr<AbstractLayer> &layer : Layers()) {
        if (!layer)
            continue;
        const int edit = layer->EndFrame() < frame ? layer->EndFrame() : layer->StartFrame();
        if (edit < frame && Distance(frame, edit) < Distance(frame, best))
            best = edit;
    }
    return LimitedTo(impl_->settings.FrameCount(), best);
}

int CompositionAsset::NextEdit(int frame) const
{
    const int frameCount = impl_->settings.FrameCount();
    int best = frameCount;
    for (const std::shared_ptr<AbstractLayer> &layer : Layers()) {
        if (!layer)
            continue;
        const int edit = frame < layer->StartFrame() ? layer->StartFrame() : layer->EndFrame();
        if (frame < edit && Distance(frame, edit) < Distance(frame, best))
            best = edit;
    }
    return LimitedTo(frameCount, best);
}

const kytl::KyID &CompositionAsset::ID() const
{
    return impl_->id;
}

AssetType CompositionAsset::Type() const
{
    return AssetType::Composition;
}

const WideString &CompositionAsset::Name() const
{
    return impl_->name;
}

void CompositionAsset::SetName(const WideString &name)
{
    impl_->name = name;
}

bool CompositionAsset::HasAudio() const
{
    return true;
}

bool CompositionAsset::HasVideo() const
{
    return true;
}

bool CompositionAsset::IsOffline() const
{
    return false;
}

int CompositionAsset::Width() const
{
    return impl_->settings.Width();
}

int CompositionAsset::Height() const
{
    return impl_->settings.Height();
}

AbstractAsset::InstanceList &CompositionAsset::Instances()
{
    return *impl_->instances;
}

const AbstractAsset::InstanceList &CompositionAsset::Instances() const
{
    return *impl_->instances;
}

const kytl::KyID &CompositionAsset::ParentFolderID() const
{
    return impl_->parentFolderID;
}

void CompositionAsset::SetParentFolderID(const kytl::KyID &id)
{
    impl_->parentFolderID = id;
}

void CompositionAsset::ClearParentBinFolder()
{
    impl_->parentFolderID = kytl::KyID();
}

CompositionAsset::LayerList &CompositionAsset::Layers()
{
    impl_->layersByID->ExpectChanges();
    return *impl_->layers;
}

const CompositionAsset::LayerList &CompositionAsset::Layers() const
{
    return *impl_->layers;
}

AudioVideoSettings &CompositionAsset::Settings()
{
    return impl_->settings;
}

const AudioVideoSettings &CompositionAsset::Settings() const
{
    return impl_->settings;
}

CompositionRenderSettings &CompositionAsset::RenderSettings()
{
    return impl_->renderSettings;
}

const CompositionRenderSettings &CompositionAsset::RenderSettings() const
{
    return impl_->renderSettings;
}

PanelRenderState &CompositionAsset::ViewerPanelState()
{
    return impl_->viewerPanelState;
}

const PanelRenderState &CompositionAsset::ViewerPanelState() const
{
    return impl_->viewerPanelState;
}

PanelRenderState &CompositionAsset::LayerPanelState()
{
    return impl_->layerPanelState;
}

const PanelRenderState &CompositionAsset::LayerPanelState() const
{
    return impl_->layerPanelState;
}

int CompositionAsset::CurrentTimeIndicator() const
{
    return impl_->currentTimeIndicator;
}

void CompositionAsset::SetCurrentTimeIndicator(int frame)
{
    impl_->currentTimeIndicator = frame;
}

int CompositionAsset::InPoint() const
{
    return impl_->inPoint;
}

void CompositionAsset::SetInPoint(int frame)
{
    impl_->inPoint = std::max(frame, 0);
}

void CompositionAsset::RestoreInPoint(int frame)
{
    impl_->inPoint = frame;
}

int CompositionAsset::OutPoint() const
{
    return impl_->outPoint;
}

void CompositionAsset::SetOutPoint(int frame)
{
    impl_->outPoint = frame;
}

double CompositionAsset::TimelineZoom() const
{
    return impl_->timelineZoom;
}

void CompositionAsset::SetTimelineZoom(double zoom)
{
    impl_->timelineZoom = zoom;
}

int CompositionAsset::SplitterPosition() const
{
    return impl_->splitterPosition;
}

void CompositionAsset::SetSplitterPosition(int position)
{
    impl_->splitterPosition = position;
}

TimeFormat CompositionAsset::TimelineTimeFormat() const
{
    return impl_->timelineTimeFormat;
}

void CompositionAsset::SetTimelineTimeFormat(TimeFormat format)
{
    impl_->timelineTimeFormat = format;
}

SnapMode CompositionAsset::TimelineSnapMode() const
{
    return impl_->timelineSnapMode;
}

void CompositionAsset::SetTimelineSnapMode(SnapMode mode)
{
    impl_->timelineSnapMode = mode;
}

} // namespace marlet::project
