#include "MediaFacts.h"

#include "output/Json.h"
#include "output/Names.h"
#include "output/Output.h"

#include <marlet/platform/media/KyAbstractCodecInfo.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>

namespace marlet::tool
{

using namespace project;
using kyh::media::KyAbstractCodecInfo;

namespace
{

/// "MPEG4 (mpeg4, MPEG-4 part 2, Simple Profile)"
std::string CodecText(const std::string &name, const KyAbstractCodecInfo *info)
{
    if (!info)
        return name;
    const std::string profile = info->Profile();
    return name + " (" + OneLine(info->Name() + ", " + info->LongName()) +
           (profile.empty() ? "" : ", " + OneLine(profile)) + ")";
}

void WriteCodec(JsonWriter &json, const std::string &name, const KyAbstractCodecInfo *info)
{
    json.Key("codec").BeginObject().Member("kind", name);
    if (info)
        json.Member("name", info->Name())
            .Member("long_name", info->LongName())
            .Member("profile", info->Profile());
    json.EndObject();
}

std::string RateText(const MediaVideoStream &video)
{
    std::string text = NumberText(video.FrameRate()) + " frames per second";
    if (video.FrameRate() != video.OriginalFrameRate())
        text += " in place of " + NumberText(video.OriginalFrameRate());
    return text;
}

std::string VideoText(const MediaVideoStream &video)
{
    return std::to_string(video.Width()) + "x" + std::to_string(video.Height()) + " " +
           FieldsName(video.FieldsType()) + ", pixel aspect ratio " +
           NumberText(AudioVideoSettings::PARValue(video.AspectRatio())) + ", " + RateText(video) + ", " +
           std::to_string(video.FrameCount()) + " frames, " + std::to_string(video.PixelBitCount()) +
           " bits " + ChannelOrderName(video.PixelChannelOrder()) + ", " +
           CodecText(VideoCodecName(video.Codec()), video.CodecInfo().get());
}

std::string AudioText(const MediaAudioStream &audio)
{
    return std::to_string(audio.SampleRate()) + " Hz, " + Counted(audio.ChannelCount(), "channel") + ", " +
           std::to_string(audio.BitsPerSample()) + " bits, " + std::to_string(audio.SampleCount()) +
           " samples (" + audio.DurationTimeCode() + "), " + std::to_string(audio.FrameCount()) +
           " frames at " + NumberText(audio.FrameRate()) + ", " +
           CodecText(AudioCodecName(audio.Codec()), audio.CodecInfo().get());
}

void WriteVideo(JsonWriter &json, const MediaVideoStream &video)
{
    json.BeginObject()
        .Member("width", video.Width())
        .Member("height", video.Height())
        .Member("frames", video.FrameCount())
        .Member("frame_rate", video.FrameRate())
        .Member("original_frame_rate", video.OriginalFrameRate())
        .Member("pixel_aspect_ratio", AudioVideoSettings::PARValue(video.AspectRatio()))
        .Member("original_pixel_aspect_ratio", AudioVideoSettings::PARValue(video.OriginalAspectRatio()))
        .Member("fields", FieldsName(video.FieldsType()))
        .Member("original_fields", FieldsName(video.OriginalFieldsType()))
        .Member("bits", video.PixelBitCount())
        .Member("channels", ChannelOrderName(video.PixelChannelOrder()))
        .Member("frame_bytes", video.FrameBufferSize(kyh::media::KyImageChannels::Four));
    WriteCodec(json, VideoCodecName(video.Codec()), video.CodecInfo().get());
    json.EndObject();
}

void WriteAudio(JsonWriter &json, const MediaAudioStream &audio)
{
    json.BeginObject()
        .Member("sample_rate", audio.SampleRate())
        .Member("channels", static_cast<int>(audio.ChannelCount()))
        .Member("bits", static_cast<int>(audio.BitsPerSample()))
        .Member("samples", static_cast<unsigned long>(audio.SampleCount()))
        .Member("duration", audio.DurationTimeCode())
        .Member("milliseconds", audio.DurationMilliseconds())
        .Member("frame_rate", audio.FrameRate())
        .Member("frames", audio.FrameCount());
    WriteCodec(json, AudioCodecName(audio.Codec()), audio.CodecInfo().get());
    json.EndObject();
}

} // namespace

std::vector<std::string> MediaFactLines(const MediaAsset &media)
{
    std::vector<std::string> lines{"status   " + MediaStatusName(media.MediaFileStatus()) +
                                   (media.IsImageSequence() ? ", image sequence" : "")};
    if (const auto video = media.VideoStream())
        lines.push_back("video    " + VideoText(*video));
    if (const auto audio = media.AudioStream())
        lines.push_back("audio    " + AudioText(*audio));
    return lines;
}

void WriteMediaFacts(JsonWriter &json, const MediaAsset &media)
{
    json.Member("status", MediaStatusName(media.MediaFileStatus()))
        .Member("offline", media.IsOffline())
        .Member("sequence", media.IsImageSequence());
    json.Key("video");
    if (const auto video = media.VideoStream())
        WriteVideo(json, *video);
    else
        json.Null();
    json.Key("audio");
    if (const auto audio = media.AudioStream())
        WriteAudio(json, *audio);
    else
        json.Null();
}

} // namespace marlet::tool
