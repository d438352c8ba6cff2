#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/ImageFile.h"
#include "output/Json.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"
#include "output/TextFile.h"

#include <marlet/project/ImageAsset.h>
#include <marlet/project/TextureImage.h>

#include <boost/smart_ptr/shared_array.hpp>

#include <cerrno>
#include <limits>
#include <optional>

namespace marlet::tool
{

using namespace project;

namespace
{

struct Pixels {
    boost::shared_array<unsigned char> bytes;
    int width = 0;
    int height = 0;
};

std::string SizeText(int width, int height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

/// Nothing if the file cannot be used.
std::optional<Pixels> ReadPixels(ImageAsset &image, const PixelSize &within)
{
    Pixels pixels;
    if (image.ReadPixelData(within.width, within.height, pixels.bytes, &pixels.width, &pixels.height) != 0)
        return std::nullopt;
    return pixels;
}

std::string AnswersText(const std::string &file, const ImageAsset &image, const TextureImage &texture,
                        const std::optional<Pixels> &pixels)
{
    std::string text = OneLine(file) + "\n  image    " + FileStatusName(image.Status());
    if (image.Status() == ImageAsset::FileStatus::Usable)
        text += ", " + SizeText(image.Width(), image.Height()) + ", " +
                std::to_string(image.PixelBitCount()) + " bits, " +
                ChannelOrderName(image.PixelChannelOrder()) + ", pixel aspect ratio " +
                NumberText(AudioVideoSettings::PARValue(image.PixelAspectRatio()));
    text += "\n  texture  ";
    text +=
        texture.LoadSuccessful() ? "loaded, " + SizeText(texture.Width(), texture.Height()) : "not loaded";
    if (pixels)
        text += "\n  pixels   " + SizeText(pixels->width, pixels->height);
    else if (image.Status() == ImageAsset::FileStatus::Usable)
        text += "\n  pixels   none";
    return text;
}

std::string AnswersJson(const std::string &file, const ImageAsset &image, const TextureImage &texture,
                        const std::optional<Pixels> &pixels)
{
    JsonWriter json;
    json.BeginObject().Member("file", file).Key("image").BeginObject();
    json.Member("name", image.Name())
        .Member("status", FileStatusName(image.Status()))
        .Member("offline", image.IsOffline())
        .Member("width", image.Width())
        .Member("height", image.Height())
        .Member("bits", image.PixelBitCount())
        .Member("channels", ChannelOrderName(image.PixelChannelOrder()))
        .Member("pixel_aspect_ratio", AudioVideoSettings::PARValue(image.PixelAspectRatio()))
        .EndObject();
    json.Key("texture").BeginObject();
    json.Member("loaded", texture.LoadSuccessful())
        .Member("width", texture.Width())
        .Member("height", texture.Height())
        .EndObject();
    if (pixels)
        json.Key("pixels")
            .BeginObject()
            .Member("width", pixels->width)
            .Member("height", pixels->height)
            .EndObject();
    else if (image.Status() == ImageAsset::FileStatus::Usable)
        json.Key("pixels").Null();
    return json.EndObject().Text();
}

void WritePicture(const std::string &path, const Pixels &pixels, bool hasAlpha)
{
    WriteFile(path, EncodePng({pixels.bytes.get(), static_cast<std::size_t>(pixels.width),
                               static_cast<std::size_t>(pixels.height), hasAlpha}));
}

void Run(const Arguments &arguments, Output &output)
{
    constexpr int kNoLimit = std::numeric_limits<int>::max();
    const bool writes = arguments.Has("-o");
    if (writes && arguments.Operands().size() != 1)
        throw UsageError("-o takes one FILE alone");
    const PixelSize within =
        arguments.Has("--size") ? arguments.Size("--size") : PixelSize{kNoLimit, kNoLimit};

    for (const std::string &file : arguments.Operands()) {
        const auto image = ImageAsset::Create(FromUtf8(file));
        std::optional<Pixels> pixels;
        std::string answers;
        {
            const QuietStandardError quiet;
            TextureImage texture;
            texture.Load(FromUtf8(file));
            pixels = ReadPixels(*image, within);
            answers = (arguments.Has("--json") ? AnswersJson : AnswersText)(file, *image, texture, pixels);
        }
        if (writes && !pixels)
            throw Failure(file, image->IsOffline() ? SystemMessage(ENOENT) : "Not an image that can be read");
        if (writes)
            WritePicture(arguments.NewPath("-o"), *pixels, image->PixelBitCount() == 32);
        output.Line(answers);
    }
}

} // namespace

const CommandSpec &ImageCommand()
{
    static const CommandSpec command{
        "image",
        "what the library sees in image files",
        "FILE... [-o OUT.png] [--size WxH] [--json]",
        1,
        std::numeric_limits<std::size_t>::max(),
        {{"-o", "OUT.png", "write the picture of the only FILE"},
         {"--size", "WxH", "read the picture, scaled down to fit into a size if it is larger"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "image photo.png --size 320x240 -o small.png"};
    return command;
}

} // namespace marlet::tool
