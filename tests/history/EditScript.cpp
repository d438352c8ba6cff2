#include "EditScript.h"

#include <marlet/checks/Validate.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>

namespace marlet::test
{

namespace
{

struct Dropped : std::exception {
};

} // namespace

struct EditScript::Observer : ChangeObserver {
    explicit Observer(EditScript &ofScript) : script(ofScript) {}

    void Changed(const ChangeNotice &notice) override
    {
        script.mirror_.Take(*script.document_.project, notice);
        for (const StaleFrames &stale : notice.Stale())
            if (stale.first >= stale.end)
                script.fault_("no frames are stale");
    }

    EditScript &script;
};

EditScript::EditScript(Numbers numbers, Fault fault)
    : numbers_(std::move(numbers)), fault_(std::move(fault)), observer_(std::make_shared<Observer>(*this))
{
    document_.sequence->VideoTracks().Add(VideoTrack::Create(document_.sequence, u"Second"));
    mirror_ = Mirror(*document_.project);
    history_.AddObserver(observer_);
    states_.push_back(document_.project->Serialize());
    Look("the beginning");
}

EditScript::~EditScript() = default;

void EditScript::Run(int steps)
{
    for (int i = 0; i < steps; ++i) {
        switch (Below(8)) {
        case 0:
        case 1:
            Go(true);
            break;
        case 2:
            Go(false);
            break;
        default:
            OneEdit();
        }
    }
}

void EditScript::UndoAndRedoAll()
{
    while (history_.CanUndo())
        Go(true);
    if (document_.project->Serialize() != states_.front())
        fault_("undoing all did not give the first text");
    while (history_.CanRedo())
        Go(false);
    if (document_.project->Serialize() != states_.back())
        fault_("redoing all did not give the last text");
}

void EditScript::Go(bool back)
{
    const bool could = back ? history_.Undo() : history_.Redo();
    if (could)
        state_ += back ? -1 : 1;
    Look(back ? "an undo" : "a redo");
}

void EditScript::OneEdit()
{
    const std::size_t steps = history_.UndoCount();
    const bool drops = Chance(6);
    try {
        Edit edit(document_.project, u"Edit");
        SomeActions(edit);
        if (drops)
            throw Dropped();
        edit.Commit();
    } catch (const Dropped &) {
        Look("a dropped edit");
        return;
    }
    if (history_.UndoCount() != steps) {
        states_.resize(state_ + 1);
        states_.push_back(document_.project->Serialize());
        ++state_;
    }
    Look("an edit");
}

/// Inner edits are committed, dropped, or end by an exception that is caught.
void EditScript::SomeActions(Edit &edit)
{
    const unsigned int count = 1 + Below(4);
    for (unsigned int i = 0; i < count; ++i) {
        const Action action = Actions()[Below(static_cast<unsigned int>(Actions().size()))];
        if (!Chance(4)) {
            (this->*action)(edit);
            continue;
        }
        try {
            Edit inner(document_.project, u"Inner");
            (this->*action)(inner);
            if (Chance(3))
                throw Dropped();
            if (Chance(3))
                inner.Drop();
            else
                inner.Commit();
        } catch (const Dropped &) {
        }
    }
}

void EditScript::Look(const NarrowString &after)
{
    const WideString text = document_.project->Serialize();
    if (text != states_[state_]) {
        const auto place =
            static_cast<std::size_t>(std::ranges::mismatch(text, states_[state_]).in1 - text.begin());
        fault_("the text is another one after " + after + ": " +
               ToUtf8(text.substr(place - std::min<std::size_t>(place, 200), 300)) + "\n instead of\n" +
               ToUtf8(states_[state_].substr(place - std::min<std::size_t>(place, 200), 300)));
    }
    if (const std::string difference = mirror_.DifferenceTo(*document_.project); !difference.empty())
        fault_("after " + after + " the mirror was " + difference);
    LookAtAddresses(after);
    Validate(*document_.project);
}

void EditScript::LookAtAddresses(const NarrowString &after)
{
    for (const auto &[key, facts] : FactsOf(*document_.project)) {
        const auto known = addresses_.try_emplace(key, facts.address).first;
        if (known->second != facts.address)
            fault_("another object has the ID of " + key + " after " + after);
    }
}

const std::vector<EditScript::Action> &EditScript::Actions()
{
    static const std::vector<Action> actions{
        &EditScript::ChangeValue,      &EditScript::ChangeKeyFrames, &EditScript::ChangeOneKeyFrame,
        &EditScript::ChangeProperties, &EditScript::ChangeLayer,     &EditScript::ChangeLayerLists,
        &EditScript::AddLayer,         &EditScript::RemoveLayer,     &EditScript::MoveLayerInStack,
        &EditScript::ChangeText,       &EditScript::ChangeMask,      &EditScript::ChangeTracker,
        &EditScript::ChangeEffect,     &EditScript::ChangeAsset,     &EditScript::ChangeFolders,
        &EditScript::ChangeProject,    &EditScript::ChangeSequence,  &EditScript::ChangeTrack,
        &EditScript::ChangeObject,     &EditScript::AddObject,       &EditScript::MoveObject,
        &EditScript::MoveToOtherTrack, &EditScript::RemoveObject,    &EditScript::ShiftObjects,
        &EditScript::ChangeTransition, &EditScript::ChangePanels};
    return actions;
}

WideString EditScript::Word()
{
    return FromUtf8("word " + std::to_string(Below(1000)));
}

void EditScript::ChangeValue(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    edit.Touch(layer, "orientation");
    layer->Animation().StaticValue("orientation") = Orientation3D{float(Below(100)), 0, 1};
    if (Chance(2)) {
        edit.Touch(layer, "rotationZ");
        layer->Animation().Expression("rotationZ") = "wiggle(" + std::to_string(Below(9)) + ")";
    }
}

void EditScript::ChangeCurve(KeyFrameList &keys)
{
    const int time = static_cast<int>(Below(6)) * 100;
    switch (Below(4)) {
    case 0:
        keys.Set(time, float(Below(360)));
        break;
    case 1:
        keys.Add(KeyFrame(time, float(Below(360))));
        break;
    case 2:
        if (!keys.IsEmpty())
            keys.Move(AnyOf(keys.Identifiers()), time);
        break;
    default:
        keys.Remove(time);
    }
}

void EditScript::ChangeKeyFrames(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    edit.Touch(layer, "rotationX");
    ChangeCurve(layer->Animation().KeyFrames("rotationX"));
    ChangeCurve(layer->Animation().KeyFrames("rotationX"));
}

void EditScript::ChangeOneKeyFrame(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    KeyFrameList &keys = layer->Animation().KeyFrames("rotationX");
    const std::vector<KyID> all = keys.Identifiers();
    const KyID id = all.empty() ? KyID::Generate() : AnyOf(all);
    KeyFrame added(static_cast<int>(Below(4)) * 100, float(Below(360)));
    edit.TouchKeyFrame(PropertiesOf(layer), "rotationX", all.empty() ? added.ID() : id, ObjectKind::Layer,
                       layer->ID());
    if (all.empty())
        keys.Add(added);
    else if (Chance(3))
        keys.Remove(id);
    else if (Chance(2))
        keys.Move(id, added.Time());
    else
        keys.GetByID(id).SetOutgoingPoint({float(Below(50)), 3});
}

void EditScript::ChangeProperties(Edit &edit)
{
    const std::shared_ptr<PropertyManager> properties = PropertiesOf(document_.point);
    edit.TouchAll(properties, ObjectKind::Layer, document_.point->ID());
    const NarrowString name = "extra" + std::to_string(Below(5));
    properties->CreateProperty(name.c_str(), float(Below(9)), PropertyManager::Type::Animatable, nullptr);
    properties->StaticValue(name.c_str()) = float(Below(9));
}

void EditScript::ChangeLayer(Edit &edit)
{
    if (document_.composition->Layers().empty())
        return;
    const auto layer = AnyLayer();
    edit.Touch(layer);
    layer->SetName(Word());
    layer->SetStartFrame(Frame());
    layer->SetEndFrame(Frame());
    layer->SetVisible(Chance(2));
    layer->SetSelected(Chance(2));
    layer->SetBlendMode(Blend{static_cast<int>(Below(30))});
    layer->SetDimensions(LayerDimensions{static_cast<int>(Below(3))});
    layer->SetParentLayer(Chance(2) ? AnyLayer()->ID() : KyID());
    if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer)) {
        shown->SetAssetInstanceStart(Frame());
        shown->SetAsset(Chance(2) ? std::static_pointer_cast<AbstractAsset>(document_.inner)
                                  : document_.solid);
        shown->SetDimensions(LayerDimensions{static_cast<int>(Below(3))});
        shown->SetPromoteLights(Chance(2));
    } else if (const auto camera = std::dynamic_pointer_cast<CameraLayer>(layer)) {
        camera->SetNearClip(float(Below(100)));
        camera->SetDepthOfField(Chance(2));
    } else if (const auto light = std::dynamic_pointer_cast<LightLayer>(layer)) {
        light->SetLightSourceType(LightLayer::LightType{static_cast<int>(Below(4))});
    } else if (const auto grade = std::dynamic_pointer_cast<GradeLayer>(layer)) {
        grade->SetWidth(static_cast<int>(Below(1000)));
    }
}

void EditScript::ChangeLayerLists(Edit &edit)
{
    const auto layer = document_.layer;
    edit.Touch(layer);
    switch (Below(4)) {
    case 0: {
        const auto effect = EffectInstance::Create(document_.plugins->plugins[0]);
        effect->SetParent(layer->ID(), document_.composition->ID());
        layer->Effects().Add(effect);
        break;
    }
    case 1:
        if (!layer->Effects().empty())
            layer->Effects().erase(layer->Effects().begin());
        break;
    case 2: {
        const auto mask = Mask::Create(Word());
        mask->SetParentLayerID(layer->ID());
        layer->Masks().insert(layer->Masks().begin(), mask);
        break;
    }
    default:
        std::ranges::reverse(layer->Masks());
    }
}

void EditScript::AddLayer(Edit &edit)
{
    std::shared_ptr<AbstractLayer> layer;
    switch (Below(4)) {
    case 0:
        layer = CameraLayer::Create(Word(), 1, 100, 100, 1);
        break;
    case 1:
        layer = LightLayer::Create(Word(), LightLayer::LightType{0});
        break;
    case 2:
        layer = GradeLayer::Create(Word(), 10, 20);
        break;
    default:
        layer = document_.layer->Clone(document_.composition->ID());
    }
    layer->SetParentComposition(document_.composition);
    layer->SetEndFrame(Frame());
    edit.TouchLayers(document_.composition);
    auto &layers = document_.composition->Layers();
    layers.insert(std::next(layers.begin(), Below(static_cast<unsigned int>(layers.size()) + 1)), layer);
}

void EditScript::RemoveLayer(Edit &edit)
{
    edit.TouchLayers(document_.composition);
    auto &layers = document_.composition->Layers();
    if (layers.size() > 2)
        layers.erase(std::next(layers.begin(), Below(static_cast<unsigned int>(layers.size()))));
}

void EditScript::MoveLayerInStack(Edit &edit)
{
    edit.TouchLayers(document_.composition);
    auto &layers = document_.composition->Layers();
    if (!layers.empty())
        layers.splice(layers.begin(), layers, std::prev(layers.end()));
}

void EditScript::ChangeText(Edit &edit)
{
    const auto text = document_.text;
    edit.TouchText(text);
    if (Chance(3))
        text->Text() = {};
    const auto format = text->TextFormat(u"Family", u"Bold", static_cast<int>(Below(40)), {}, {}, 1, 0, 0);
    text->Text().Append(TextLayer::CreateCharToken(static_cast<unsigned short>('a' + Below(26)), format, {}));
    text->Text().first->format = format;
    text->SetMinX(float(Below(300)) - 150);
    text->SetMaxX(float(Below(300)) - 150);
    text->SetCursorPosition(text->Text().first, {});
    if (Chance(2))
        text->CleanUpFormat();
}

void EditScript::ChangeMask(Edit &edit)
{
    const auto mask = document_.mask;
    edit.Touch(mask);
    mask->SetName(Word());
    mask->SetVisible(Chance(2));
    auto &points = mask->Path().Points();
    if (Chance(2))
        points.Add(PathPoint::Create(float(Below(9)), 1, mask->Path().ID()));
    else if (!points.empty())
        points.erase(points.begin());
    mask->Path().SetClosed(Chance(2));
    if (points.empty())
        return;
    edit.Touch(points.back());
    points.back()->SetLocked(Chance(2));
    points.back()->SetLinear(Chance(2));
    edit.Touch(points.back(), "position");
    points.back()->Animation().StaticValue("position") = kytl::matl::KyPoint<2, float>{float(Below(9)), 1};
}

void EditScript::ChangeTracker(Edit &edit)
{
    const auto tracker = document_.tracker;
    edit.Touch(tracker);
    tracker->SetName(Word());
    tracker->SetType(Tracker::TrackerType{static_cast<int>(Below(2))});
    tracker->SetDestinationLayerID(AnyLayer()->ID());
    edit.Touch(tracker->PrimaryTrackingPoint());
    tracker->PrimaryTrackingPoint()->SetVisible(Chance(2));
    edit.Touch(tracker->PrimaryTrackingPoint(), "featurePosition");
    tracker->PrimaryTrackingPoint()
        ->Animation()
        .KeyFrames("featurePosition")
        .Set(static_cast<int>(Below(500)), kytl::matl::KyPoint<2, float>{float(Below(9)), 1});
}

void EditScript::ChangeEffect(Edit &edit)
{
    const auto effect = document_.effect;
    edit.Touch(std::static_pointer_cast<PluginInstance>(effect));
    TestPlugin::Text(*effect) = ToUtf8(Word());
    effect->SetName(Word());
    effect->SetEnabled(Chance(2));
    effect->SetPropertyUIState("amount", {Chance(2)});
    edit.Touch(std::static_pointer_cast<PluginInstance>(effect), "layer");
    effect->Properties().StaticValue("layer") = AnyLayer()->ID();
}

void EditScript::ChangeAsset(Edit &edit)
{
    edit.Touch(std::static_pointer_cast<AbstractAsset>(document_.solid));
    document_.solid->SetWidth(static_cast<int>(Below(500)));
    document_.solid->SetColor({float(Below(2)), 0, 0, 1});
    if (Chance(2))
        document_.solid->Instances().clear();
    edit.Touch(std::static_pointer_cast<AbstractAsset>(document_.composition));
    document_.composition->SetName(Word());
    document_.composition->Settings().SetFrameCount(static_cast<int>(Below(200)));
    document_.composition->RenderSettings().SetFogDensity(float(Below(3)));
    document_.composition->SetInPoint(Frame());
}

void EditScript::ChangeFolders(Edit &edit)
{
    edit.TouchAssets();
    edit.TouchRootFolder();
    BinFolder &root = document_.Root();
    const auto added = SolidAsset::Create(Word(), {}, 4, 4, PAR::Square);
    if (Chance(2) || root.Folders().empty()) {
        document_.project->Assets().All().Add(added);
        root.Assets().Add(added);
        added->SetParentFolderID(root.ID());
        root.Folders().Add(BinFolder::Create(Word()));
    } else {
        edit.Touch(root.Folders().back());
        root.Folders().back()->SetName(Word());
        root.Folders().back()->Assets().Add(document_.inner);
        if (Chance(2))
            root.Folders().erase(root.Folders().begin());
    }
}

void EditScript::ChangeProject(Edit &edit)
{
    edit.TouchProject();
    document_.project->SetName(Word());
    document_.project->Settings().SetColorBitDepth(BPC{static_cast<int>(Below(3)) + 1000});
    edit.TouchMetadata();
    document_.project->Metadata().SetIntegerValue(document_.project->ID(), Below(4), int(Below(100)));
}

void EditScript::ChangeSequence(Edit &edit)
{
    const auto sequence = document_.sequence;
    edit.Touch(sequence);
    sequence->SetName(Word());
    sequence->SetOutPoint(static_cast<int>(Below(100)));
    sequence->Settings().SetFrameCount(static_cast<int>(Below(100)) + 1);
    if (Chance(3))
        sequence->VideoTracks().Add(VideoTrack::Create(sequence, Word()));
    else if (Chance(2))
        std::ranges::reverse(sequence->VideoTracks());
}

void EditScript::ChangeTrack(Edit &edit)
{
    const auto track = AnyVideoTrack();
    edit.Touch(std::static_pointer_cast<AbstractSequenceTrack>(track));
    track->SetName(Word());
    track->SetVisible(Chance(2));
    const auto sound = document_.sequence->AudioTracks()[0];
    edit.Touch(std::static_pointer_cast<AbstractSequenceTrack>(sound));
    sound->SetLevel(float(Below(10)));
}

std::shared_ptr<AbstractSequenceObject> EditScript::AnyObject(const AbstractSequenceTrack &track)
{
    const unsigned int count = track.Objects().Count();
    return count == 0 ? nullptr : track.Objects()[Below(count)];
}

void EditScript::ChangeObject(Edit &edit)
{
    const auto object = AnyObject(*AnyVideoTrack());
    if (!object)
        return;
    edit.Touch(object);
    object->SetName(Word());
    object->SetEndFrame(Frame());
    object->SetAssetInstanceStart(Frame());
    object->SetLinkedObjectID(Chance(2) ? document_.sound->ID() : KyID());
    edit.Touch(object, "opacity");
    object->Properties().StaticValue("opacity") = float(Below(100));
}

void EditScript::AddObject(Edit &edit)
{
    const auto track = AnyVideoTrack();
    for (unsigned int i = Chance(20) ? 100 : 1; i > 0; --i) {
        const auto object = VisualObject::Create(document_.inner, document_.sequence);
        object->SetParentTrackID(track->ID());
        object->SetEndFrame(Frame());
        edit.Touch(std::static_pointer_cast<AbstractSequenceTrack>(track), object);
        track->Objects().Insert(object, Frame());
    }
}

void EditScript::MoveObject(Edit &edit)
{
    const auto track = AnyVideoTrack();
    for (unsigned int i = Chance(20) ? 100 : 1; i > 0; --i)
        if (const auto object = AnyObject(*track)) {
            edit.Touch(object);
            track->Objects().Move(object, Frame(), Chance(2));
        }
}

void EditScript::MoveToOtherTrack(Edit &edit)
{
    const std::shared_ptr<AbstractSequenceTrack> from = AnyVideoTrack();
    const std::shared_ptr<AbstractSequenceTrack> to = AnyVideoTrack();
    const auto object = AnyObject(*from);
    if (!object || from == to)
        return;
    edit.Touch(object);
    edit.Touch(to, object);
    from->Objects().Remove(object);
    to->Objects().Insert(object, Frame());
    object->SetParentTrackID(to->ID());
}

void EditScript::RemoveObject(Edit &edit)
{
    const std::shared_ptr<AbstractSequenceTrack> track = AnyVideoTrack();
    if (const auto object = AnyObject(*track)) {
        edit.Touch(track, object);
        track->Objects().Remove(object);
    }
}

void EditScript::ShiftObjects(Edit &edit)
{
    const std::shared_ptr<AbstractSequenceTrack> track = AnyVideoTrack();
    const unsigned int position = Below(track->Objects().Count() + 1);
    edit.ShiftFrom(track, position, static_cast<int>(Below(20)));
}

void EditScript::ChangeTransition(Edit &edit)
{
    edit.Touch(std::static_pointer_cast<PluginInstance>(document_.transition));
    document_.transition->SetLength(static_cast<int>(Below(20)));
    const auto object = AnyObject(*AnyVideoTrack());
    if (!object)
        return;
    edit.Touch(object);
    object->SetOutgoingTransition(Chance(2) ? Transition::Create(document_.plugins->plugins[0]) : nullptr);
}

void EditScript::ChangePanels(Edit &edit)
{
    edit.TouchPanels(document_.composition);
    document_.composition->ViewerPanelState().AddViewState();
    edit.TouchPanels(document_.sequence);
    document_.sequence->ViewerPanelState().SetLayout(
        PanelRenderState::LayoutType{static_cast<int>(Below(4))});
}

} // namespace marlet::test
