#include "document/Document.h"
#include "encode/Encoder.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/ImageFile.h"
#include "output/Output.h"
#include "output/ProgressBar.h"
#include "output/TextFile.h"
#include "output/Warning.h"
#include "preview/FrameRenderer.h"
#include "preview/FramesAhead.h"

#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <cmath>
#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

bool NamesClip(const std::string &path)
{
    const std::string ending = std::filesystem::path(path).extension().string();
    return ending == ".mp4" || ending == ".mov" || ending == ".avi" || ending == ".mkv";
}

/// The rates of video are whole, or whole thousands by 1001.
Fraction RateOf(double rate)
{
    constexpr double kLeast = 0.001;
    constexpr double kMost = 10000;
    constexpr double kNear = 0.005;
    if (!(rate >= kLeast && rate <= kMost))
        throw Failure("No clip has " + NumberText(rate) + " frames a second");
    const double whole = std::round(rate);
    if (std::abs(rate - whole) < kNear)
        return {static_cast<int>(whole), 1};
    const double thousands = std::round(rate * 1.001);
    if (std::abs(rate * 1.001 - thousands) < kNear)
        return {static_cast<int>(thousands) * 1000, 1001};
    return {static_cast<int>(std::lround(rate * 1000)), 1000};
}

QSize SizeOf(const Arguments &arguments)
{
    if (!arguments.Has("--size"))
        return {};
    constexpr int kLongestSide = 8192;
    const PixelSize size = arguments.Size("--size", kLongestSide);
    return {size.width, size.height};
}

void RequireFrame(const CompositionAsset &composition, int frame)
{
    const int count = composition.Settings().FrameCount();
    if (frame < 0 || frame >= count)
        throw Failure("Frame " + std::to_string(frame) + " is not in composition " +
                      Quoted(composition.Name()) + ", which has " + std::to_string(count));
}

/// What a picture lacks is told of, and the others are drawn.
void TellOfLeftOut(const std::vector<LeftOutLayer> &layers, const std::string &file)
{
    for (const LeftOutLayer &layer : layers)
        Warn(file, layer.place + " is left out: " + layer.why);
}

/// What a range of frames becomes: files of a folder, or a clip.
class FrameSink
{
public:
    FrameSink(const std::string &path, const AudioVideoSettings &settings) : path_(path), settings_(settings)
    {
        std::error_code error;
        if (NamesClip(path))
            RequireWritable(path);
        else if (!std::filesystem::create_directories(path, error) && error)
            throw Failure(path, error.message());
    }

    /// What is made of a frame while others are drawn.
    static FramesAhead::Finish Preparing(const std::string &path)
    {
        if (NamesClip(path))
            return [](FramesAhead::Frame &frame) {
                frame.picture = frame.picture.convertToFormat(QImage::Format_RGB32);
            };
        return [](FramesAhead::Frame &frame) {
            frame.file = EncodePng(frame.picture);
            frame.picture = {};
        };
    }

    void Add(int number, const FramesAhead::Frame &frame)
    {
        if (!NamesClip(path_)) {
            std::string name = std::to_string(number);
            name.insert(0, name.size() < 5 ? 5 - name.size() : 0, '0');
            WriteFile((std::filesystem::path(path_) / ("frame_" + name + ".png")).string(), frame.file);
            return;
        }
        const QImage &picture = frame.picture;
        if (!encoder_) {
            EncoderOptions options;
            options.width = picture.width();
            options.height = picture.height();
            options.frameRate = RateOf(settings_.FrameRate());
            encoder_ = std::make_unique<Encoder>(path_, options);
        }
        encoder_->AddFrame(picture.constBits(), static_cast<int>(picture.bytesPerLine()));
    }

    void Finish()
    {
        if (encoder_)
            encoder_->Finish();
    }

private:
    std::string path_;
    const AudioVideoSettings &settings_;
    std::unique_ptr<Encoder> encoder_;
};

void RenderRange(const ProjectPointer &project, const CompositionPointer &composition,
                 const Arguments &arguments, Output &output)
{
    const int first = arguments.Has("--from") ? arguments.Integer("--from") : 0;
    const int last =
        arguments.Has("--to") ? arguments.Integer("--to") : composition->Settings().FrameCount() - 1;
    RequireFrame(*composition, first);
    RequireFrame(*composition, last);
    if (last < first)
        throw UsageError("--to is before --from");
    const QSize size = SizeOf(arguments);
    const std::string &path = arguments.NewPath("-o");
    const int count = last - first + 1;
    std::vector<LeftOutLayer> leftOut;
    {
        // A clip that is cut off leaves nothing behind; of a folder's files each is whole.
        const Interruption interruption;
        FrameSink sink(path, composition->Settings());
        ProgressBar progress(count, "frames");
        FramesAhead frames(project, composition, {first, last}, size, FrameSink::Preparing(path));
        for (int done = 0; done < count; ++done) {
            if (interruption.Requested())
                throw Failure(path, "Interrupted");
            sink.Add(first + done, frames.Next());
            progress.Show(done + 1);
        }
        sink.Finish();
        leftOut = frames.LeftOut();
    }
    TellOfLeftOut(leftOut, arguments.Operand(0));
    output.Line("wrote " + Counted(static_cast<std::size_t>(count), "frame") + " to " + OneLine(path));
}

void Run(const Arguments &arguments, Output &output)
{
    const bool isRange = arguments.Has("--from") || arguments.Has("--to");
    if (isRange == arguments.Has("--frame"))
        throw UsageError("either --frame or --from and --to are needed, not both");
    const std::string &path = arguments.NewPath("-o");
    const std::string &name = arguments.Text("--composition");
    if (!isRange && NamesClip(path))
        throw UsageError("-o: one frame becomes a PNG file, a clip needs --from or --to");
    if (isRange && std::filesystem::path(path).extension() == ".png")
        throw UsageError("-o: several frames become a folder or a clip, not one PNG file");

    const QSize size = SizeOf(arguments);
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*project, name);
    if (isRange)
        return RenderRange(project, composition, arguments, output);
    FrameRenderer renderer(project);
    const int frame = arguments.Integer("--frame");
    RequireFrame(*composition, frame);
    RequireWritable(path);
    const QImage picture = renderer.Render(composition, frame, size);
    WriteFile(path, EncodePng(picture));
    TellOfLeftOut(renderer.LeftOut(), arguments.Operand(0));
    output.Line("wrote " + std::to_string(picture.width()) + "x" + std::to_string(picture.height()) + " to " +
                OneLine(path));
}

} // namespace

const CommandSpec &FrameCommand()
{
    static const CommandSpec command{
        "frame",
        "a preview of a composition as a picture, pictures or a clip",
        "FILE --composition C (--frame N | --from A --to B) [--size WxH] -o OUT",
        1,
        1,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--frame", "N", "the frame of the composition that becomes a PNG file"},
         {"--from", "A", "the first frame of several, 0 if not given"},
         {"--to", "B", "the last of several, the composition's last if not given"},
         {"--size", "WxH", "scale the pictures to that size"},
         {"-o", "OUT", "the picture; of several a folder, or a clip: .mp4, .mov, .avi, .mkv"}},
        Run,
        "frame examples/titles.xml --composition Opening --frame 25 --size 640x360 -o frame.png"};
    return command;
}

} // namespace marlet::tool
