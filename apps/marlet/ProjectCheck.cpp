#include "ProjectCheck.h"

#include "Document.h"
#include "LayerContent.h"
#include "QuietStandardError.h"
#include "SequenceCheck.h"
#include "Timeline.h"
#include "TypedValue.h"
#include "plugins/Ribbon.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AbstractAssetInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/project/TextureImage.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <unordered_set>

namespace marlet::tool
{

using namespace project;

namespace
{

using LayerMap = std::unordered_map<kytl::KyID, LayerPointer>;
using IDSet = std::unordered_set<kytl::KyID>;

constexpr const char *kDangling = "dangling ID";
constexpr const char *kRepeated = "repeated ID";
constexpr const char *kCircle = "parent circle";
constexpr const char *kMissing = "missing file";
constexpr const char *kNoPoint = "missing point";
constexpr const char *kType = "unexpected type";

/// A layer as its class makes it, which tells the type of each property; empty for a type of no class.
LayerPointer FreshLayer(LayerType type)
{
    switch (type) {
    case LayerType::Asset:
        return AssetLayer::Create(SolidAsset::Create({}, {}, 1, 1, PAR::Square));
    case LayerType::Camera:
        return CameraLayer::Create({}, 0, 0, 0, 0);
    case LayerType::Light:
        return LightLayer::Create({}, LightLayer::LightType{});
    case LayerType::Point:
        return PointLayer::Create({});
    case LayerType::Grade:
        return GradeLayer::Create({}, 0, 0);
    case LayerType::Text:
        return TextLayer::Create({}, 0, 0);
    case LayerType::Effect3D:
        return Effect3DLayer::Create(std::make_shared<Ribbon>(), {});
    default:
        return {};
    }
}

/// The layers whose parents run in a circle, or lead into one.
IDSet LayersInCircles(const LayerMap &layers)
{
    IDSet circular;
    IDSet sound;
    for (const auto &[start, unused] : layers) {
        IDSet way;
        kytl::KyID at = start;
        while (layers.count(at) > 0 && circular.count(at) == 0 && sound.count(at) == 0 &&
               way.insert(at).second)
            at = layers.at(at)->ParentLayerID();
        const bool endless = way.count(at) > 0 || circular.count(at) > 0;
        (endless ? circular : sound).insert(way.begin(), way.end());
    }
    return circular;
}

class ProjectChecker
{
public:
    explicit ProjectChecker(const Project &project) : project_(project) {}

    std::vector<Finding> Run()
    {
        CollectFolders(project_.Assets().Bin());
        for (const auto &asset : project_.Assets().All())
            CheckAsset(*asset);
        for (const CompositionPointer &composition : Compositions(project_))
            CheckComposition(*composition);
        const std::vector<Finding> ofSequence = CheckSequence(project_);
        findings_.insert(findings_.end(), ofSequence.begin(), ofSequence.end());
        if (const SequencePointer sequence = project_.Sequence())
            CheckContents(sequence);
        return std::move(findings_);
    }

private:
    void Add(const char *kind, const std::string &place, const std::string &what)
    {
        findings_.push_back({kind, place, what});
    }

    static std::string Place(const std::string &kind, const WideString &name)
    {
        return kind + " \"" + ToUtf8(name) + "\"";
    }

    void CheckFolderReference(const std::string &place, const kytl::KyID &id)
    {
        if (!id.IsNull() && folders_.count(id) == 0)
            Add(kDangling, place, "the parent folder " + id.ToNarrowString() + " does not exist");
    }

    void CollectFolders(const BinFolder &root)
    {
        std::vector<const BinFolder *> folders{&root};
        for (std::size_t i = 0; i < folders.size(); ++i) {
            if (!folders_.insert(folders[i]->ID()).second)
                Add(kRepeated, Place("folder", folders[i]->Name()), folders[i]->ID().ToNarrowString());
            for (const auto &folder : folders[i]->Folders())
                folders.push_back(folder.get());
        }
        for (const BinFolder *folder : folders)
            CheckFolderReference(Place("folder", folder->Name()), folder->ParentFolderID());
    }

    void CheckAsset(const AbstractAsset &asset)
    {
        const QuietStandardError quiet;
        const std::string place = Place("asset", asset.Name());
        if (!assets_.insert(asset.ID()).second)
            Add(kRepeated, place, asset.ID().ToNarrowString());
        CheckFolderReference(place, asset.ParentFolderID());
        if (const auto *media = dynamic_cast<const MediaAsset *>(&asset))
            CheckMedia(*media, place);
        else if (asset.IsOffline())
            Add(kMissing, place, "its file is not there");
        else if (const auto *image = dynamic_cast<const ImageAsset *>(&asset);
                 image && image->Status() == ImageAsset::FileStatus::Unreadable)
            Add(kMissing, place, ToUtf8(image->Filename()) + " cannot be read as an image");
    }

    /// Whatever keeps the file of a media asset from being used counts as offline.
    void CheckMedia(const MediaAsset &media, const std::string &place)
    {
        const std::string file = ToUtf8(media.Filename());
        if (media.MediaFileStatus() == MediaAsset::Status::Missing)
            Add(kMissing, place, file + " is not there");
        else if (media.IsOffline())
            Add(kMissing, place, file + " cannot be read as media");
    }

    void CheckComposition(const CompositionAsset &composition)
    {
        const LayerMap layers = LayersByID(composition);
        const IDSet circular = LayersInCircles(layers);
        IDSet seen;
        for (const LayerPointer &layer : composition.Layers()) {
            const std::string place =
                Place("layer", layer->Name()) + " of " + Place("composition", composition.Name());
            if (!seen.insert(layer->ID()).second)
                Add(kRepeated, place, layer->ID().ToNarrowString());
            for (const LayerReference &reference : LayerReferences(*layer))
                if (layers.count(reference.target) == 0)
                    Add(kDangling, place,
                        "the " + HolderText(reference) + (reference.object.IsNull() ? " " : ": the layer ") +
                            reference.target.ToNarrowString() + " does not exist");
            if (circular.count(layer->ID()) > 0)
                Add(kCircle, place, "its parents run in a circle");
            CheckOwners(composition, *layer, place);
            CheckLayerTypes(*layer, place);
            CheckTrackers(*layer, place);
            CheckEffects(EffectsOf(*layer), layer->ID(), place);
            CheckMasks(*layer, place);
            CheckEffect3D(*layer, place);
        }
    }

    void CheckTrackers(const AbstractLayer &layer, const std::string &layerPlace)
    {
        IDSet seen;
        const auto fresh = Tracker::Create({}, {}, {}, 0, 0)->PrimaryTrackingPoint();
        for (const auto &tracker : TrackersOf(layer)) {
            const std::string place = layerPlace + ", " + Place("tracker", tracker->Name());
            if (!seen.insert(tracker->ID()).second)
                Add(kRepeated, place, tracker->ID().ToNarrowString());
            CheckHolder(place, tracker->ParentLayerID(), layer.ID());
            for (const std::shared_ptr<const TrackingPoint> point :
                 {tracker->PrimaryTrackingPoint(), tracker->SecondaryTrackingPoint()})
                if (point)
                    CheckTypes(point->Animation(), fresh->Animation(), place);
                else
                    Add(kNoPoint, place, "it cannot be run");
        }
    }

    void CheckEffects(const EffectList &effects, const kytl::KyID &holder, const std::string &holderPlace)
    {
        IDSet seen;
        for (const auto &effect : effects) {
            const std::string place = holderPlace + ", " + Place("effect", effect->Name());
            if (!seen.insert(effect->ID()).second)
                Add(kRepeated, place, effect->ID().ToNarrowString());
            CheckHolder(place, effect->ParentID(), holder);
            CheckTypes(std::as_const(*effect).Properties(), effect->Plugin()->Properties(), place);
        }
    }

    /// What is in the objects of the sequence: their properties, effects and transitions.
    void CheckContents(const SequencePointer &sequence)
    {
        // Whatever the asset, the types of the properties are the same.
        const auto asset = SolidAsset::Create({}, {}, 1, 1, PAR::Square);
        const auto picture = VisualObject::Create(asset, sequence);
        const auto sound = AudioObject::Create(asset, sequence);
        for (const std::shared_ptr<const AbstractSequenceObject> object : ObjectsOf(*sequence)) {
            const std::string place = Place("object", object->Name());
            const AbstractSequenceObject &model = object->Type() == ObjectType::Visual
                                                      ? static_cast<const AbstractSequenceObject &>(*picture)
                                                      : *sound;
            CheckTypes(object->Properties(), model.Properties(), place);
            CheckEffects(object->Effects(), object->ID(), place);
            for (const TransitionPointer &transition :
                 {object->IncomingTransition(), object->OutgoingTransition()})
                if (transition && transition->Plugin())
                    CheckTypes(std::as_const(*transition).Properties(), transition->Plugin()->Properties(),
                               place + ", transition " + TransitionName(*transition));
        }
    }

    void CheckMasks(const AbstractLayer &layer, const std::string &layerPlace)
    {
        IDSet seen;
        for (const auto &mask : MasksOf(layer)) {
            const std::string place = layerPlace + ", " + Place("mask", mask->Name());
            if (!seen.insert(mask->ID()).second)
                Add(kRepeated, place, mask->ID().ToNarrowString());
            CheckHolder(place, mask->ParentLayerID(), layer.ID());
            CheckTypes(std::as_const(*mask).Animation(), Mask::Create({})->Animation(), place);
        }
    }

    /// What is on a layer or object names it, or none.
    void CheckHolder(const std::string &place, const kytl::KyID &named, const kytl::KyID &holder)
    {
        if (!named.IsNull() && named != holder)
            Add(kDangling, place, "the holder " + named.ToNarrowString() + " that it names is another one");
    }

    void CheckEffect3D(const AbstractLayer &layer, const std::string &layerPlace)
    {
        const QuietStandardError quiet;
        const auto *holder = dynamic_cast<const Effect3DLayer *>(&layer);
        const auto ribbon = holder ? std::dynamic_pointer_cast<const Ribbon>(holder->Effect()) : nullptr;
        if (!ribbon)
            return;
        const std::string place = layerPlace + ", 3D effect";
        CheckTypes(ribbon->Properties(), Ribbon().Properties(), place);
        if (ribbon->Texture() && !ribbon->Texture()->LoadSuccessful())
            Add(kMissing, place,
                "the texture " + ToUtf8(ribbon->Texture()->FilePath()) + " cannot be read as an image");
    }

    void CheckOwners(const CompositionAsset &composition, const AbstractLayer &layer,
                     const std::string &place)
    {
        const kytl::KyID &compositionID = layer.ParentCompositionID();
        if (compositionID != composition.ID())
            Add(kDangling, place,
                "the parent composition " + compositionID.ToNarrowString() +
                    (project_.Assets().GetByID(compositionID) ? " is another one" : " does not exist"));
        const auto *instance = dynamic_cast<const AbstractAssetInstance *>(&layer);
        if (instance && !project_.Assets().GetByID(instance->AssetID()))
            Add(kDangling, place, "the asset " + instance->AssetID().ToNarrowString() + " does not exist");
    }

    void CheckLayerTypes(const AbstractLayer &layer, const std::string &place)
    {
        const LayerPointer fresh = FreshLayer(layer.Type());
        CheckTypes(layer.Animation(), fresh ? fresh->Animation() : layer.Animation(), place);
    }

    /// The model has the types that its maker gives; properties that it does not know keep their own.
    void CheckTypes(const PropertyManager &properties, const PropertyManager &model, const std::string &place)
    {
        for (const NarrowString &name : properties.PropertyNames()) {
            const PropertyManager &known = model.HasProperty(name.c_str()) ? model : properties;
            CheckPropertyTypes(properties, name, known.DefaultValue(name.c_str()),
                               place + ", property " + name);
        }
    }

    void CheckPropertyTypes(const PropertyManager &properties, const NarrowString &name,
                            const PropertyValue &model, const std::string &place)
    {
        const auto check = [&](const std::string &which, const PropertyValue &value) {
            if (value.which() != model.which())
                Add(kType, place,
                    which + " is of type " + TypeName(value) + " in place of " + TypeName(model));
        };
        check("the default", properties.DefaultValue(name.c_str()));
        check("the static value", properties.StaticValue(name.c_str()));
        properties.KeyFrames(name.c_str()).ForEach([&](const KeyFrame &key) {
            check("the key frame at " + std::to_string(key.Time()) + " ms", key.Value());
        });
    }

    const Project &project_;
    IDSet folders_;
    IDSet assets_;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> CheckProject(const Project &project)
{
    return ProjectChecker(project).Run();
}

} // namespace marlet::tool
