#include "Names.h"

#include <initializer_list>

namespace marlet::tool
{

using namespace project;

namespace
{

/// The names are those of the values from 0 up.
template <class Enum> std::string NameOf(Enum value, std::initializer_list<const char *> names)
{
    const int number = static_cast<int>(value);
    if (number < 0 || number >= static_cast<int>(names.size()))
        return std::to_string(number);
    return names.begin()[number];
}

} // namespace

std::string AssetTypeName(AssetType type)
{
    return NameOf(type, {"media", "image", "solid", "composition"});
}

std::string ControlTypeName(AbstractPluginUITreeNode::NodeType type)
{
    return NameOf(type, {"root", "group", "integer slider", "slider", "check box", "menu", "point", "angle",
                         "colour", "layer picker", "colour wheels", "histogram"});
}

std::string LayerTypeName(LayerType type)
{
    return NameOf(type, {"asset", "effect3d", "camera", "light", "grade", "point", "text"});
}

std::string DimensionsName(LayerDimensions dimensions)
{
    return NameOf(dimensions, {"2d", "3d", "3d-content"});
}

std::string FieldsName(VideoFields fields)
{
    return NameOf(fields, {"progressive", "interlaced-sd", "interlaced-hd"});
}

std::string FileStatusName(ImageAsset::FileStatus status)
{
    return NameOf(status, {"usable", "missing", "unreadable"});
}

std::string MediaStatusName(MediaAsset::Status status)
{
    return NameOf(status, {"usable", "missing", "unreadable", "failed"});
}

std::string VideoCodecName(kyh::media::KyVideoCodec codec)
{
    return NameOf(codec, {"unknown", "MPEG2", "MPEG4", "H264", "shapeless", "HEVC", "VP8", "VP9", "AV1",
                          "Theora", "MotionJPEG", "ProRes", "DNxHD", "DV", "still", "raw"});
}

std::string AudioCodecName(kyh::media::KyAudioCodec codec)
{
    return NameOf(codec, {"unknown", "PCM", "AAC", "MP3", "AC3", "Vorbis", "Opus", "FLAC"});
}

std::string TrackerTypeName(Tracker::TrackerType type)
{
    return NameOf(type, {"single-point", "two-points"});
}

std::string TrackerMethodName(Tracker::TrackerMethod method)
{
    return NameOf(method, {"flow", "template"});
}

std::string ChannelOrderName(KyChannelOrder order)
{
    return NameOf(order, {"none", "RGB", "BGRA"});
}

std::string VersionText(const AbstractPlugin::VersionInfo &version)
{
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.revision) + "." + std::to_string(version.build);
}

} // namespace marlet::tool
