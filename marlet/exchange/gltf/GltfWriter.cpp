#include <marlet/exchange/gltf/GltfWriter.h>

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Selection.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/gltf/GltfMotion.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace marlet::project
{

namespace
{

using Layer = std::shared_ptr<AbstractLayer>;
using Severity = LoadEntry::Severity;

/// The rectangle of a layer's picture, in pixels of the layer.
struct Quad {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;
};

std::optional<Quad> QuadOf(const AbstractLayer &layer, const Project &project)
{
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        return Quad{text->MinX(), text->MinY(), text->MaxX(), text->MaxY()};
    const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
    const auto asset = shown ? shown->Asset(project.Assets()) : nullptr;
    if (!asset || asset->Width() < 1 || asset->Height() < 1)
        return std::nullopt;
    return Quad{0, 0, double(asset->Width()), double(asset->Height())};
}

/// The colours of materials are linear, and none is brighter than white.
double Linear(double channel)
{
    channel = std::clamp(FiniteSample(channel), 0.0, 1.0);
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

class GltfWriter
{
public:
    GltfWriter(const std::shared_ptr<Project> &project, const std::shared_ptr<CompositionAsset> &composition,
               const ExchangeOptions &options)
        : project_(project),
          composition_(composition),
          settings_(composition->Settings()),
          options_(options),
          document_({{"asset", {{"version", "2.0"}, {"generator", "Marlet"}}}, {"scene", 0}})
    {
    }

    /// @param camera the only one to be written, or null for all
    NarrowString Write(const Layer &camera)
    {
        bool hasCamera = false;
        for (const Layer &layer : composition_->Layers()) {
            if (!layer)
                continue;
            const bool isCamera = layer->Type() == LayerType::Camera;
            if (isCamera && camera && layer != camera)
                continue;
            hasCamera = hasCamera || isCamera;
            AddLayer(layer);
        }
        if (!hasCamera)
            AddUsualCamera();
        Json scene = {{"name", ToUtf8(composition_->Name())}, {"nodes", Json::array()}};
        for (std::size_t node = 0; node < nodes_.size(); ++node)
            scene["nodes"].push_back(node);
        document_["scenes"] = Json::array({scene});
        document_["nodes"] = nodes_;
        if (animation_.contains("channels"))
            document_["animations"] = Json::array({animation_});
        buffer_.Write(document_);
        return JsonTextOf(document_) + '\n';
    }

private:
    void AddLayer(const Layer &layer)
    {
        GltfMotion motion;
        try {
            for (int frame = 0; frame < std::max(settings_.FrameCount(), 1); ++frame)
                motion.Add(layer->WorldTransformationAtTime(
                    layer->GlobalFrameToRelativeTime(frame, composition_), project_, true));
        } catch (const std::logic_error &problem) {
            TellLoss(*layer, NarrowString(" is left out: ") + problem.what());
            return;
        }
        Json node = {{"name", ToUtf8(layer->Name())}};
        motion.WriteTo(node);
        node["extras"] = {{"layer", layer->ID().ToNarrowString()},
                          {"firstFrame", layer->StartFrame()},
                          {"endFrame", layer->EndFrame()}};
        if (const auto *camera = dynamic_cast<const CameraLayer *>(layer.get()))
            node["camera"] = AddCamera(*camera);
        else
            AddContent(layer, node);
        motion.WriteTo(animation_, nodes_.size(), settings_.FrameRate(), buffer_);
        nodes_.push_back(node);
        if (motion.IsSkewed())
            TellLoss(*layer, " is skewed, which a node is not");
    }

    void AddContent(const Layer &layer, Json &node)
    {
        if (const auto quad = QuadOf(*layer, *project_)) {
            node["mesh"] = AddQuad(*layer, *quad);
            TellLooks(*layer);
        } else if (layer->Type() != LayerType::Point) {
            TellLoss(*layer, " is a node without content");
        }
        if (layer->HasVideo() && layer->Dimensions() == LayerDimensions::TwoD)
            Tell(options_, Severity::Warning,
                 ToUtf8(layer->Name()) + " stands in space now, on the plane of the frame", 0, {layer->ID()});
        if (layer->StartFrame() > 0 || layer->EndFrame() < settings_.FrameCount())
            TellLoss(*layer, " is seen before its first frame and behind its last one, too");
    }

    /// What a rectangle does not have of the picture that it stands for.
    void TellLooks(const AbstractLayer &layer) const
    {
        NarrowString lost;
        const auto add = [&lost](bool isLost, const char *what) {
            if (isLost)
                lost += (lost.empty() ? "" : ", ") + NarrowString(what);
        };
        const auto addLists = [&add](const auto *drawn) {
            add(drawn && !drawn->Effects().empty(), "effects");
            add(drawn && !drawn->Masks().empty(), "masks");
        };
        const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
        add(!shown || !std::dynamic_pointer_cast<const SolidAsset>(AssetOf(*shown)), "picture");
        addLists(shown);
        addLists(dynamic_cast<const TextLayer *>(&layer));
        const PropertyManager &properties = layer.Animation();
        add(properties.HasProperty("opacity") &&
                (!properties.IsDefault("opacity") || properties.HasExpression("opacity")),
            "opacity");
        add(layer.BlendMode() != Blend{}, "blending");
        if (!lost.empty())
            TellLoss(layer, " is a rectangle without " + lost);
        if (!layer.IsVisible())
            TellLoss(layer, " is hidden, which a node is not");
    }

    std::shared_ptr<AbstractAsset> AssetOf(const AssetLayer &layer) const
    {
        return layer.Asset(std::as_const(*project_).Assets());
    }

    std::size_t AddQuad(const AbstractLayer &layer, const Quad &quad)
    {
        std::vector<float> corners;
        for (const auto &[x, y] : {std::pair(quad.left, quad.bottom), std::pair(quad.right, quad.bottom),
                                   std::pair(quad.right, quad.top), std::pair(quad.left, quad.top)}) {
            corners.push_back(static_cast<float>(x * kGltfUnit));
            corners.push_back(static_cast<float>(y * kGltfUnit));
            corners.push_back(0);
        }
        Json primitive = {{"attributes", {{"POSITION", buffer_.AddVectors(corners, 3)}}},
                          {"indices", buffer_.AddIndices({0, 1, 2, 0, 2, 3})},
                          {"material", AddMaterial(layer)}};
        document_["meshes"].push_back(
            {{"name", ToUtf8(layer.Name())}, {"primitives", Json::array({primitive})}});
        return document_["meshes"].size() - 1;
    }

    /// Seen from both sides, in the colour of a solid.
    std::size_t AddMaterial(const AbstractLayer &layer)
    {
        Json material = {{"name", ToUtf8(layer.Name())}, {"doubleSided", true}};
        const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
        const auto asset = shown ? AssetOf(*shown) : nullptr;
        if (const auto *solid = dynamic_cast<const SolidAsset *>(asset.get())) {
            const auto &color = solid->Color();
            material["pbrMetallicRoughness"] = {{"baseColorFactor",
                                                 {Linear(color.R), Linear(color.G), Linear(color.B),
                                                  std::clamp(FiniteSample(color.A), 0.0, 1.0)}},
                                                {"metallicFactor", 0}};
        }
        document_["materials"].push_back(material);
        return document_["materials"].size() - 1;
    }

    std::size_t AddCamera(const CameraLayer &camera)
    {
        const PropertyManager &properties = camera.Animation();
        const int time = camera.GlobalFrameToRelativeTime(0, composition_);
        if (!properties.IsStatic("zoom"))
            TellLoss(camera, " keeps the field of view of the first frame");
        if (camera.HasDepthOfField())
            TellLoss(camera, " has no depth of field");
        return AddLens(ToUtf8(camera.Name()), boost::get<float>(properties.ValueAtTime("zoom", time)),
                       camera.NearClip(), camera.FarClip());
    }

    /// A frame as far away as the zoom fills the view.
    std::size_t AddLens(const NarrowString &name, double zoom, double nearest, double farthest)
    {
        const double width = settings_.Width() * settings_.PixelAspectRatioValue();
        const double height = settings_.Height();
        Json lens = {{"yfov", 2 * std::atan(height / 2 / std::max(zoom, 1e-3))},
                     {"aspectRatio", width / height},
                     {"znear", std::max(nearest, 1e-3) * kGltfUnit}};
        if (farthest > nearest)
            lens["zfar"] = farthest * kGltfUnit;
        document_["cameras"].push_back({{"name", name}, {"type", "perspective"}, {"perspective", lens}});
        return document_["cameras"].size() - 1;
    }

    /// Without a camera a composition is seen from in front of its middle.
    void AddUsualCamera()
    {
        const float zoom =
            CameraLayer::CalculateLensZoom(CameraLayer::HorizontalFieldOfView(CameraLayer::Lens::Focal50),
                                           settings_.Width(), settings_.PixelAspectRatioValue());
        nodes_.push_back({{"name", "View"},
                          {"translation", {0, 0, zoom * kGltfUnit}},
                          {"camera", AddLens("View", zoom, 1, 0)}});
        Tell(options_, Severity::Warning, "there is no camera: one is put in front of the middle");
    }

    void TellLoss(const AbstractLayer &layer, const NarrowString &what) const
    {
        Tell(options_, Severity::Loss, ToUtf8(layer.Name()) + what, 0, {layer.ID()});
    }

    std::shared_ptr<Project> project_;
    std::shared_ptr<CompositionAsset> composition_;
    const AudioVideoSettings &settings_;
    const ExchangeOptions &options_;
    Json document_;
    Json nodes_ = Json::array();
    Json animation_ = Json::object();
    GltfBuffer buffer_;
};

} // namespace

NarrowString GltfOfProject(const std::shared_ptr<Project> &project, const ExchangeOptions &options)
{
    const auto composition = SelectedComposition(*project, options);
    const AudioVideoSettings &settings = composition->Settings();
    if (settings.Width() < 1 || settings.Height() < 1 || !(settings.FrameRate() > 0))
        throw OperationException("The composition has no frames");
    if (settings.FrameCount() > kMostSamples)
        throw OperationException("The composition is too long to be written frame by frame");
    const Layer camera = options.layer.empty() ? nullptr : SelectedLayer(*project, options);
    if (camera && camera->Type() != LayerType::Camera)
        throw OperationException("Layer \"" + ToUtf8(camera->Name()) + "\" is no camera");
    return GltfWriter(project, composition, options).Write(camera);
}

} // namespace marlet::project
