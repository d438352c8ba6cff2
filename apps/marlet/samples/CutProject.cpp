#include "CutProject.h"

#include "TitlesProject.h"
#include "document/Document.h"
#include "document/Timeline.h"
#include "options/FindByIdOrName.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/SequenceTransitions.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

namespace marlet::tool
{

using namespace project;

namespace
{

using AssetPointer = std::shared_ptr<AbstractAsset>;
using VisualPointer = std::shared_ptr<VisualObject>;

/// Builds the cut by the steps that an editor would take.
class Cut
{
public:
    explicit Cut(const ProjectPointer &project) : project_(project), sequence_(project->Sequence())
    {
        sequence_->VideoTracks().Add(VideoTrack::Create(sequence_, u"Video 2"));
        sequence_->AudioTracks().Add(AudioTrack::Create(sequence_, u"Audio 2"));
    }

    void Build()
    {
        AddAssets();
        AddStory();
        AddTitles();
        AddMusic();
        ConfigurePanel();
    }

private:
    /// Frames from fiftieths of the sequence.
    int At(int fiftieth) const
    {
        return static_cast<int>(static_cast<long long>(sequence_->Settings().FrameCount()) * fiftieth / 50);
    }

    AssetPointer Put(const AssetPointer &asset, BinFolder &folder)
    {
        project_->Assets().All().Add(asset);
        folder.Assets().Add(asset);
        asset->SetParentFolderID(folder.ID());
        return asset;
    }

    /// No file of the name is there, which leaves the asset offline.
    AssetPointer PutMedia(const WideString &path, const WideString &name)
    {
        const AssetPointer media = project_->Media().CreateMediaAsset(path);
        media->SetName(name);
        return Put(media, *footage_);
    }

    void AddAssets()
    {
        BinFolder &root = project_->Assets().Bin();
        footage_ = BinFolder::Create(u"Footage");
        footage_->SetParentFolderID(root.ID());
        root.Folders().Add(footage_);
        interview_ = PutMedia(u"footage/interview.mov", u"Interview");
        sea_ = PutMedia(u"footage/sea.mov", u"Sea");
        music_ = PutMedia(u"footage/music.wav", u"Music");
        const AudioVideoSettings &format = sequence_->Settings();
        bar_ = Put(SolidAsset::Create(u"Bar", {0.1f, 0.1f, 0.3f, 0.8f}, format.Width(), format.Height() / 6,
                                      format.PixelAspectRatio()),
                   root);
    }

    TrackPointer Track(const char *name) const { return FindTrack(*sequence_, name); }

    VisualPointer AddPicture(const AssetPointer &asset, const char *track, int from, int to,
                             int assetStart = 0, const TrackPointer &sound = {})
    {
        const auto added =
            PlaceAsset(project_, {asset, Track(track), sound, At(from), assetStart, At(to) - At(from)});
        return std::static_pointer_cast<VisualObject>(added[0]);
    }

    void AddTransition(const ObjectPointer &object, ObjectEnd end, const kytl::KyID &plugin, int fiftieths,
                       Sharing sharing = Sharing::WithNeighbour)
    {
        SetTransition(project_, object, end, Plugins()->FindPlugin(plugin), At(fiftieths), sharing);
    }

    std::shared_ptr<EffectInstance> AddEffect(AbstractSequenceObject &object, const kytl::KyID &plugin)
    {
        auto effect = EffectInstance::Create(Plugins()->FindPlugin(plugin));
        effect->SetParent(object.ID(), sequence_->ID());
        object.Effects().Add(effect);
        return effect;
    }

    /// From the opening over the talk to the sea, and back to the talk after a pause.
    void AddStory()
    {
        const TrackPointer sound = Track("Audio 1");
        const auto opening = AddPicture(FindComposition(*project_, "Opening"), "Video 1", 0, 8);
        const auto talk = AddPicture(interview_, "Video 1", 8, 20, At(2), sound);
        const auto sea = AddPicture(sea_, "Video 1", 20, 32, At(1), sound);
        const auto end = AddPicture(interview_, "Video 1", 36, 46, At(20), sound);
        AddTransition(opening, ObjectEnd::Head, kCrossDissolveID, 1);
        AddTransition(opening, ObjectEnd::Tail, kCrossDissolveID, 2);
        AddTransition(talk, ObjectEnd::Tail, kWipeID, 2);
        AddTransition(end, ObjectEnd::Tail, kCrossDissolveID, 3);
        sea->IncomingTransition()->Properties().StaticValue("feather") = 40.f;
        // The sound fades where the picture is wiped.
        AddTransition(PartnerOf(*sequence_, *talk), ObjectEnd::Tail, kCrossDissolveID, 1);

        talk->SetScaleX(110);
        talk->SetScaleY(110);
        talk->SetPosition({-40, 15});
        AddEffect(*talk, kColorBalanceID)->Properties().StaticValue("highlightsHue") = 30.f;
        AddEffect(*talk, kGaussianBlurID)->SetEnabled(false);
        sea->SetSpeed(0.5);
        for (const ObjectPointer &object : {ObjectPointer(end), PartnerOf(*sequence_, *end)})
            object->SetName(u"Interview, the end");
    }

    void AddTitles()
    {
        const auto lower = AddPicture(bar_, "Video 2", 10, 17);
        AddTransition(lower, ObjectEnd::Head, kWipeID, 1);
        AddTransition(lower, ObjectEnd::Tail, kWipeID, 1);
        lower->SetName(u"Lower Third");
        const auto height = static_cast<float>(sequence_->Settings().Height());
        lower->SetPosition({0, -height / 4});
        lower->SetOpacity(80);
        lower->SetRotation(0, 2);
        AddEffect(*lower, kDropShadowID);
        AddPicture(FindComposition(*project_, "Credits"), "Video 2", 43, 50);
    }

    void AddMusic()
    {
        const auto added = PlaceAsset(project_, {music_, Track("Audio 2"), {}, 0, 0, At(49)});
        const auto music = std::static_pointer_cast<AudioObject>(added[0]);
        AddTransition(music, ObjectEnd::Tail, kCrossDissolveID, 4);
        music->SetLevels(-12);
        sequence_->AudioTracks().back()->SetLevel(-3);
    }

    void ConfigurePanel()
    {
        sequence_->SetCurrentTimeIndicator(At(15));
        sequence_->SetInPoint(At(4));
        sequence_->SetOutPoint(At(47));
        sequence_->SetTimelineZoom(0.25);
        constexpr PanelRenderState::LayoutType kTwoViews{2};
        PanelRenderState &panel = sequence_->ViewerPanelState();
        panel.SetLayout(kTwoViews);
        panel.SetLayoutSplitterPosition(kTwoViews, PanelRenderState::SplitterType(0), 0.6);
        for (int position = 0; position < 2; ++position)
            panel.SetViewStateForPosition(
                panel.GetOrAddViewState(PanelRenderState::ViewType(position), kTwoViews), kTwoViews,
                position);
        panel.SetActivePositionInLayout(kTwoViews, 0);
    }

    ProjectPointer project_;
    SequencePointer sequence_;
    std::shared_ptr<BinFolder> footage_;
    AssetPointer interview_;
    AssetPointer sea_;
    AssetPointer music_;
    AssetPointer bar_;
};

} // namespace

std::shared_ptr<Project> MakeCutProject(AudioVideoSettings::Preset preset, int frameCount,
                                        const std::string &file)
{
    const ProjectPointer project = MakeTitlesProject(preset, frameCount / 5, file, {});
    project->SetName(u"Cut");
    project->SetSequence(EditorSequence::Create(preset, frameCount));
    Cut(project).Build();
    FillInstances(*project);
    return project;
}

} // namespace marlet::tool
