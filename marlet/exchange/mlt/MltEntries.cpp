#include <marlet/exchange/mlt/MltEntries.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/mlt/MltAnimation.h>
#include <marlet/exchange/mlt/MltXml.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

using Severity = LoadEntry::Severity;

double PaceOf(const AbstractSequenceObject &object)
{
    const double speed = object.Speed();
    return HasFrames(object.AssetType()) && std::isfinite(speed) && speed > 0 ? speed : 1;
}

NarrowString ColorText(const kytl::KyColorRGBA_32f &color)
{
    NarrowString text = "#";
    for (const float channel : {color.A, color.R, color.G, color.B}) {
        char digits[8];
        std::snprintf(digits, sizeof digits, "%02x",
                      Truncate<int>(std::clamp(channel, 0.f, 1.f) * 255 + 0.5f));
        text += digits;
    }
    return text;
}

} // namespace

MltEntries::MltEntries(XmlWriter &writer, const Project &project, const AudioVideoSettings &settings,
                       const ExchangeOptions &options)
    : writer_(writer), project_(project), settings_(settings), options_(options)
{
}

std::shared_ptr<AbstractAsset> MltEntries::AssetOf(const AbstractSequenceObject &object) const
{
    return object.Asset(project_.Assets());
}

bool MltEntries::CanShow(const AbstractSequenceObject &object) const
{
    const auto asset = AssetOf(object);
    const bool isShown = asset && asset->Type() != AssetType::Composition;
    if (!isShown)
        Tell(options_, Severity::Loss,
             ToUtf8(object.Name()) +
                 (asset ? " is left out: it shows a composition" : " is left out: it shows nothing"),
             0, {object.ID(), object.AssetID()});
    else if (!object.Effects().empty())
        Tell(options_, Severity::Loss, "the effects of " + ToUtf8(object.Name()) + " are left out", 0,
             {object.ID()});
    if (isShown && !object.Properties().IsStatic("speed"))
        Tell(options_, Severity::Loss, "the speed of " + ToUtf8(object.Name()) + " changes no more", 0,
             {object.ID()});
    if (const auto *media = dynamic_cast<const MediaAsset *>(asset.get()); media && media->IsImageSequence())
        Tell(options_, Severity::Loss,
             ToUtf8(object.Name()) + " is an image sequence, of which only the first image is named", 0,
             {object.ID(), object.AssetID()});
    return isShown;
}

NarrowString MltEntries::ResourceOf(const AbstractSequenceObject &object, const AbstractAsset &asset) const
{
    if (const auto *solid = dynamic_cast<const SolidAsset *>(&asset))
        return ColorText(solid->Color());
    WideString file;
    if (const auto *media = dynamic_cast<const MediaAsset *>(&asset))
        file = media->Filename();
    if (const auto *image = dynamic_cast<const ImageAsset *>(&asset))
        file = image->Filename();
    const NarrowString path = ToUtf8(WrittenPath(options_, file));
    return PaceOf(object) == 1 ? path : MltNumber(PaceOf(object)) + ":" + path;
}

void MltEntries::WriteSource(const AbstractSequenceObject &object, const AbstractAsset &asset)
{
    if (asset.Type() == AssetType::Solid)
        MltProperty(writer_, "mlt_service", "color");
    else if (PaceOf(object) != 1)
        MltProperty(writer_, "mlt_service", "timewarp");
    else if (asset.Type() == AssetType::Media)
        MltProperty(writer_, "mlt_service", "avformat");
    MltProperty(writer_, "resource", ResourceOf(object, asset));
    if (asset.Type() == AssetType::Media)
        MltProperty(writer_, object.Type() == ObjectType::Visual ? "audio_index" : "video_index", "-1");
}

void MltEntries::WriteProducer(const AbstractSequenceObject &object, const MltFrames &frames)
{
    const auto asset = AssetOf(object);
    Source source{"source" + std::to_string(sources_.size()), -frames.first};
    long long length = frames.count;
    if (HasFrames(object.AssetType())) {
        source.start = std::llround(object.AssetInstanceStart() / PaceOf(object));
        length = source.start + frames.first + frames.count;
        if (const auto whole = AssetLength(*asset, settings_.FrameRate()))
            length = std::max<long long>(length, std::llround(*whole / PaceOf(object)));
    }
    if (source.start + frames.first < 0) {
        Tell(options_, Severity::Warning,
             "a transition shows frames before the first of " + ToUtf8(object.Name()) +
                 ", which comes later instead",
             0, {object.ID()});
        source.start = -frames.first;
    }
    const XmlElement element(writer_, "producer");
    writer_.Attribute("id", source.id);
    writer_.Attribute("in", 0);
    writer_.Attribute("out", std::int64_t{std::max(length, 1LL) - 1});
    MltProperty(writer_, "length", std::to_string(std::max(length, 1LL)));
    WriteSource(object, *asset);
    sources_[&object] = source;
}

void MltEntries::WriteEntry(const AbstractSequenceObject &object, const MltFrames &frames)
{
    const Source &source = sources_.at(&object);
    const long long in = source.start + frames.first;
    const XmlElement element(writer_, "entry");
    writer_.Attribute("producer", source.id);
    writer_.Attribute("in", std::int64_t{in});
    writer_.Attribute("out", std::int64_t{in + frames.count - 1});
    WriteFilters(object, frames, in);
}

void MltEntries::WriteFilters(const AbstractSequenceObject &object, const MltFrames &frames, long long in)
{
    if (object.Type() == ObjectType::Audio) {
        if (dynamic_cast<const AudioObject &>(object).IsMuted())
            WriteFilter("volume", in, frames, {{"gain", "0"}});
        else if (const auto level = MltLevelOf(object, settings_, frames))
            WriteFilter("volume", in, frames, {{"level", *level}});
        return;
    }
    const auto asset = AssetOf(object);
    const double aspect = AbstractAsset::AspectRatio(asset);
    const MltPlacement placement =
        MltPlacementOf(object, *asset, settings_, frames, aspect > 0 ? aspect : 1, options_);
    if (placement.rectangle)
        WriteFilter("affine", in, frames,
                    {{"background", "color:0"},
                     {"transition.distort", "1"},
                     {"transition.repeat_off", "1"},
                     {"transition.mirror_off", "1"},
                     {"transition.rect", *placement.rectangle},
                     {"transition.fix_rotate_x", placement.rotation.value_or("0")}});
    // The filter above does nothing about opacity.
    if (placement.opacity)
        WriteFilter("brightness", in, frames, {{"level", "1"}, {"alpha", *placement.opacity}});
}

void MltEntries::WriteFilter(std::string_view service, long long in, const MltFrames &frames,
                             std::initializer_list<std::pair<std::string_view, std::string_view>> properties)
{
    const XmlElement element(writer_, "filter");
    // Key frames count from here.
    writer_.Attribute("in", std::int64_t{in});
    writer_.Attribute("out", std::int64_t{in + frames.count - 1});
    MltProperty(writer_, "mlt_service", service);
    for (const auto &[name, value] : properties)
        MltProperty(writer_, name, value);
}

} // namespace marlet::project
