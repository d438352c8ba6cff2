#include "Scene.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>

#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr double kPi = 3.14159265358979323846;

/// To thousandths of a pixel, which leaves a file that people can read.
float Rounded(double length)
{
    return static_cast<float>(std::round(length * 1000) / 1000);
}

/// Handles of a third of the way to the neighbours make a piece whose ends are flat.
void EaseBetween(KeyFrame &first, KeyFrame &second)
{
    const float third = static_cast<float>(second.Time() - first.Time()) / 3;
    first.SetType(KeyFrameType::Bezier);
    first.SetOutgoingPoint({third, 0});
    second.SetIncomingPoint({-third, 0});
}

} // namespace

void Scene::Add(const LayerPointer &layer, const LayerPointer &parent, double start)
{
    const int frameCount = composition_->Settings().FrameCount();
    layer->SetStartFrame(static_cast<int>(std::lround(start * frameCount)));
    layer->SetEndFrame(frameCount);
    layer->SetParentComposition(composition_);
    if (parent)
        layer->SetParentLayer(parent);
    composition_->Layers().Add(layer);
}

int Scene::Time(const AbstractLayer &layer, double at) const
{
    const long frame = std::lround(at * composition_->Settings().FrameCount());
    return layer.GlobalFrameToRelativeTime(static_cast<int>(frame), composition_);
}

/// In a very short composition moments fall together; the first of them then stands for all.
KeyFrameList Scene::Keys(const LayerPointer &layer, const std::vector<Moment> &moments,
                         KeyFrameType type) const
{
    KeyFrameList keys;
    for (const Moment &moment : moments) {
        KeyFrame key(Time(*layer, moment.at), moment.value);
        key.SetType(type);
        if (!keys.Exists(key.Time()))
            keys.Add(key);
    }
    return keys;
}

void Scene::Animate(const LayerPointer &layer, const char *property, const std::vector<Moment> &moments) const
{
    Keys(layer, moments, KeyFrameType::Linear).ForEach([&](const KeyFrame &key) {
        layer->Animation().KeyFrames(property).Add(key);
    });
}

void Scene::AnimateInSteps(const LayerPointer &layer, const char *property,
                           const std::vector<Moment> &moments) const
{
    Keys(layer, moments, KeyFrameType::Hold).ForEach([&](const KeyFrame &key) {
        layer->Animation().KeyFrames(property).Add(key);
    });
}

void Scene::AnimateEased(const LayerPointer &layer, const char *property,
                         const std::vector<Moment> &moments) const
{
    KeyFrameList &keys = layer->Animation().KeyFrames(property);
    Animate(layer, property, moments);
    const std::vector<int> times = keys.Locations();
    for (std::size_t i = 1; i < times.size(); ++i)
        EaseBetween(keys.At(times[i - 1]), keys.At(times[i]));
}

void Scene::AnimateOrbit(const LayerPointer &layer, float radiusX, float radiusY, int turns,
                         int keyFramesPerTurn) const
{
    const int pieces = turns * keyFramesPerTurn;
    const int frameCount = composition_->Settings().FrameCount();
    const double start = static_cast<double>(layer->StartFrame()) / std::max(1, frameCount);
    std::vector<Moment> moments;
    for (int i = 0; i <= pieces; ++i) {
        const double angle = 2 * kPi * i / keyFramesPerTurn;
        const kytl::matl::KyPoint<3, float> point{Rounded(radiusX * std::cos(angle)),
                                                  Rounded(radiusY * std::sin(angle)), 0};
        moments.push_back({start + (1 - start) * i / pieces, point});
    }
    Animate(layer, "position", moments);

    KeyFrameList &keys = layer->Animation().KeyFrames("position");
    const std::vector<int> times = keys.Locations();
    if (times.size() < 3)
        return;
    KeyFrame &first = keys.At(times.front());
    first.SetType(KeyFrameType::Bezier);
    first.SetOutgoingPoint({static_cast<float>(times[1] - times[0]) / 3, 0});
    keys.At(times[times.size() - 2]).SetType(KeyFrameType::Bezier);
    const int lastPiece = times[times.size() - 1] - times[times.size() - 2];
    keys.At(times.back()).SetIncomingPoint({-static_cast<float>(lastPiece) / 3, 0});
}

} // namespace marlet::tool
