#include <tests/operations/TrackDrawing.h>
#include <tests/project/ClipFiles.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/SolidAsset.h>

#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <numbers>

namespace marlet::test
{

namespace
{

using testing::HasSubstr;
using Point = kytl::matl::KyPoint<2, float>;

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr int kFrames = 24;
constexpr int kGrey = 120;

const ExchangeFormat &Mlt()
{
    return *ExchangeFormat::ByName("mlt");
}

/// A red frame dissolves into a clip that is not as high as the frame; above them a blue bar moves, turns,
/// grows and gets fainter, and fades out.
struct MovingBar {
    static constexpr int kCut = 10;
    static constexpr int kMix = 4;
    static constexpr int kBarStart = 3;
    static constexpr int kBarEnd = 19;
    static constexpr int kFade = 5;
    static constexpr int kBarWidth = 24;
    static constexpr int kBarHeight = 12;

    MovingBar()
    {
        sequence->Settings().SetWidth(kWidth);
        sequence->Settings().SetHeight(kHeight);
        project->SetSequence(sequence);
        sequence->VideoTracks().Add(VideoTrack::Create(sequence, u"Video 2"));
        const auto red = SolidAsset::Create(u"Red", {1, 0, 0, 1}, kWidth, kHeight, PAR::Square);
        const auto blue = SolidAsset::Create(u"Blue", {0, 0, 1, 1}, kBarWidth, kBarHeight, PAR::Square);
        const auto clip = project->Media().CreateMediaAsset(files.Write("clip.mov", kGrey, 20));
        const auto from = Put(red, 0, 0, kCut, 0);
        const auto to = Put(clip, 0, kCut, 18, 4);
        Join(from, to, kMix, -kMix / 2);
        bar = Put(blue, 1, kBarStart, kBarEnd, 0);
        Join(bar, nullptr, kFade, -kFade);
        PropertyManager &properties = bar->Properties();
        properties.StaticValue("anchorPoint") = Point{4, -2};
        properties.KeyFrames("position").Set(0, Point{-10, 6});
        properties.KeyFrames("position").Set(400, Point{10, -6});
        properties.KeyFrames("rotationZ").Set(0, 0.f);
        properties.KeyFrames("rotationZ").Set(640, 64.f);
        properties.KeyFrames("opacity").Set(0, 100.f);
        properties.KeyFrames("opacity").Set(400, 50.f);
        properties.KeyFrames("scale").Set(0, Scale3D{100, 100, 100});
        properties.KeyFrames("scale").Set(400, Scale3D{150, 200, 100});
    }

    std::shared_ptr<VisualObject> Put(const std::shared_ptr<AbstractAsset> &asset, int track, int start,
                                      int end, int assetStart) const
    {
        AddAsset(project, asset);
        const auto object = VisualObject::Create(asset, sequence);
        const auto &on = sequence->VideoTracks()[static_cast<std::size_t>(track)];
        object->SetParentTrackID(on->ID());
        object->SetAssetInstanceStart(assetStart);
        object->SetEndFrame(end);
        on->Objects().Insert(object, start);
        return object;
    }

    static void Join(const std::shared_ptr<VisualObject> &from, const std::shared_ptr<VisualObject> &to,
                     int length, int start)
    {
        const auto transition = Transition::Create(DrawnProject::Plugin());
        transition->SetLength(length);
        transition->SetRelativeStartFrame(start);
        from->SetOutgoingTransition(transition);
        transition->SetFromObject(from->ID());
        if (!to)
            return;
        to->SetIncomingTransition(transition);
        transition->SetToObject(to->ID());
    }

    ClipFiles files;
    std::shared_ptr<Project> project = Project::Create(nullptr);
    std::shared_ptr<EditorSequence> sequence =
        EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, kFrames);
    std::shared_ptr<VisualObject> bar;
};

struct Color {
    double red = 0, green = 0, blue = 0;

    Color Mixed(const Color &other, double part) const
    {
        return {red + (other.red - red) * part, green + (other.green - green) * part,
                blue + (other.blue - blue) * part};
    }
};

/// What a pixel shows of the tracks, from the numbers above; nothing near to edges.
std::optional<Color> ExpectedAt(int frame, double x, double y)
{
    using Bar = MovingBar;
    const Color red{255, 0, 0};
    const double clipEdge = std::abs(std::abs(y - kHeight / 2.0) - ClipFiles::kHeight / 2.0);
    const bool isOnClip = std::abs(y - kHeight / 2.0) < ClipFiles::kHeight / 2.0;
    const Color clip = isOnClip ? Color{kGrey, kGrey, kGrey} : Color{};
    const double part = std::clamp(double(frame - (Bar::kCut - Bar::kMix / 2)) / Bar::kMix, 0.0, 1.0);
    Color below = frame < 18 ? red.Mixed(clip, part) : Color{};
    if (part > 0 && frame < 18 && clipEdge < 1.5)
        return std::nullopt;
    if (frame < Bar::kBarStart || frame >= Bar::kBarEnd)
        return below;

    const double passed = std::min((frame - Bar::kBarStart) / 10.0, 1.0);
    const double turn = (frame - Bar::kBarStart) * 4 * std::numbers::pi / 180;
    // Back from the frame to the bar, with Y up: away from the position, turned back, and shrunk.
    const double dx = x - kWidth / 2.0 - (-10 + 20 * passed);
    const double dy = kHeight / 2.0 - y - (6 - 12 * passed);
    const double barX = (dx * std::cos(turn) - dy * std::sin(turn)) / (1 + 0.5 * passed) + 4;
    const double barY = (dx * std::sin(turn) + dy * std::cos(turn)) / (1 + passed) - 2;
    const double outX = std::abs(barX) - Bar::kBarWidth / 2.0;
    const double outY = std::abs(barY) - Bar::kBarHeight / 2.0;
    // The bar is enlarged, so that its edge is soft over a pixel of it to each side, and more at its corners.
    const bool isNearCorner = std::min(outX, outY) > -2.5 && std::max(outX, outY) < 2.5;
    if (std::abs(std::max(outX, outY)) < 2 || isNearCorner)
        return std::nullopt;
    const double fade = std::clamp(double(Bar::kBarEnd - frame) / Bar::kFade, 0.0, 1.0);
    const double opacity = (1 - 0.5 * passed) * fade;
    return std::max(outX, outY) < 0 ? below.Mixed({0, 0, 255}, opacity) : below;
}

/// The program plays the sequence into files of the folder.
void Render(const ClipFiles &files, const NarrowString &text, const char *result,
            const QStringList &properties)
{
    QFile file(QString::fromStdU16String(files.Path("sequence.mlt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.data(), static_cast<qint64>(text.size()));
    file.close();
    QProcess melt;
    melt.setProcessChannelMode(QProcess::MergedChannels);
    melt.start(MELT, QStringList{file.fileName(), "-consumer",
                                 "avformat:" + QString::fromStdU16String(files.Path(result)), "real_time=-1",
                                 "terminate_on_pause=1"} +
                         properties);
    ASSERT_TRUE(melt.waitForFinished(60'000));
    ASSERT_EQ(melt.exitCode(), 0) << melt.readAll().toStdString();
}

TEST(MltTest, IsDrawnByMeltAsItIsMeant)
{
    const MovingBar bar;
    LoadReport report;
    ExchangeOptions options;
    options.folder = bar.files.Path("") + u"/";
    options.load.report = &report;
    options.dissolve = DrawnProject::Plugin();
    const NarrowString text = Mlt().Write(bar.project, options);
    EXPECT_EQ(report.Count(), 0u) << report.Entries().front().what;
    Render(bar.files, text, "%03d.ppm", {"f=image2", "vcodec=ppm", "an=1"});
    for (int frame = 0; frame < kFrames; ++frame) {
        char name[16];
        std::snprintf(name, sizeof name, "%03d.ppm", frame + 1);
        const QImage picture(QString::fromStdU16String(bar.files.Path(name)));
        ASSERT_EQ(picture.size(), QSize(kWidth, kHeight)) << name;
        int wrong = 0;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const auto expected = ExpectedAt(frame, x + 0.5, y + 0.5);
                const QColor color = picture.pixelColor(x, y);
                constexpr double kTolerance = 6;
                if (expected &&
                    (std::abs(expected->red - color.red()) > kTolerance ||
                     std::abs(expected->green - color.green()) > kTolerance ||
                     std::abs(expected->blue - color.blue()) > kTolerance) &&
                    ++wrong == 1)
                    ADD_FAILURE() << "frame " << frame << " at " << x << ", " << y << ": "
                                  << color.name().toStdString() << " in place of " << expected->red << ", "
                                  << expected->green << ", " << expected->blue;
            }
        EXPECT_EQ(wrong, 0) << "frame " << frame;
    }
}

constexpr int kSamples = 48000 / 25; ///< of a frame

/// A WAV file of one channel with a tone that has whole waves in each frame, at a tenth of the full range.
void WriteTone(const NarrowString &path, int frames)
{
    const auto bytes = static_cast<std::uint32_t>(frames * kSamples * 2);
    std::ofstream file(path, std::ios::binary);
    const auto write = [&file](auto number) {
        file.write(reinterpret_cast<const char *>(&number), sizeof number);
    };
    file << "RIFF";
    write(36 + bytes);
    file << "WAVEfmt ";
    for (const std::uint32_t number : {16u, 0x10001u, 48000u, 96000u, 0x100002u})
        write(number);
    file << "data";
    write(bytes);
    for (int i = 0; i < frames * kSamples; ++i)
        write(static_cast<std::int16_t>(std::lround(3276.8 * std::sin(2 * std::numbers::pi * i / 48))));
}

/// The amplitude of each frame, of a WAV file of one channel, in decibels of that of the tone.
std::vector<double> LevelsOf(const NarrowString &path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::size_t start = bytes.find("data") + 8;
    std::vector<double> levels;
    for (std::size_t at = start; at + 2 * kSamples <= bytes.size(); at += 2 * kSamples) {
        std::int16_t samples[kSamples];
        std::memcpy(samples, bytes.data() + at, sizeof samples);
        const auto largest =
            std::ranges::max_element(samples, {}, [](std::int16_t s) { return std::abs(s); });
        levels.push_back(20 * std::log10(std::max(std::abs(*largest) / 3276.8, 1e-5)));
    }
    return levels;
}

/// Of a sound that gets fainter, goes over into a faint one, and is muted, on a track that is fainter itself.
TEST(MltTest, IsHeardFromMeltAsItIsMeant)
{
    const ClipFiles files;
    WriteTone(ToUtf8(files.Path("tone.wav")), 40);
    const auto project = Project::Create(nullptr);
    const auto sequence = EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, 30);
    project->SetSequence(sequence);
    const auto tone = project->Media().CreateMediaAsset(files.Path("tone.wav"));
    AddAsset(project, tone);
    const auto &track = sequence->AudioTracks()[0];
    track->SetLevel(-6);
    const auto put = [&](int start, int end) {
        const auto object = AudioObject::Create(tone, sequence);
        object->SetParentTrackID(track->ID());
        object->SetAssetInstanceStart(5);
        object->SetEndFrame(end);
        track->Objects().Insert(object, start);
        return object;
    };
    const auto first = put(0, 12);
    first->Properties().KeyFrames("audioLevel").Set(0, 0.f);
    first->Properties().KeyFrames("audioLevel").Set(400, -20.f);
    const auto second = put(12, 20);
    second->SetLevels(-10);
    put(20, 25)->SetMuted(true);
    const auto transition = Transition::Create(DrawnProject::Plugin());
    transition->SetLength(4);
    transition->SetRelativeStartFrame(-2);
    transition->SetFromObject(first->ID());
    transition->SetToObject(second->ID());
    first->SetOutgoingTransition(transition);
    second->SetIncomingTransition(transition);

    Render(files, Mlt().Write(project, {}), "sound.wav", {"vn=1", "acodec=pcm_s16le", "ar=48000", "ac=1"});
    const std::vector<double> levels = LevelsOf(ToUtf8(files.Path("sound.wav")));
    ASSERT_GE(levels.size(), 29u);
    // The program goes to a new level over the frame, so that a peak is that of the frame before, at most.
    for (int frame = 2; frame < 10; ++frame)
        EXPECT_NEAR(levels[static_cast<std::size_t>(frame)], -6 - 2.0 * frame, 2.2) << frame;
    EXPECT_NEAR(levels[12], -6 + 20 * std::log10(0.5 * 0.1 + 0.5 * std::sqrt(0.1)), 2.2);
    for (int frame = 15; frame < 20; ++frame)
        EXPECT_NEAR(levels[static_cast<std::size_t>(frame)], -16, 0.3) << frame;
    for (int frame = 21; frame < 29; ++frame)
        EXPECT_LT(levels[static_cast<std::size_t>(frame)], -60) << frame;
}

TEST(MltTest, TellsWhatItLeavesOut)
{
    DrawnProject drawn("V1 |s---a123....|\n"
                       "A1 |....a123....|");
    LoadReport report;
    ExchangeOptions options;
    options.load.report = &report;
    const NarrowString text = Mlt().Write(drawn.Document(), options);
    EXPECT_THAT(text, HasSubstr("<entry producer=\"source0\" in=\"0\" out=\"3\""));
    ASSERT_EQ(report.Count(), 2u);
    EXPECT_EQ(report.FirstLoss()->what, "a is left out: it shows a composition");

    // Years are written if nothing changes in them.
    const DrawnProject years("V1 |s---........|");
    const auto object = years.At("V1", 0);
    object->SetEndFrame(2'000'000'000);
    EXPECT_THAT(Mlt().Write(years.Document(), {}), HasSubstr("out=\"1999999999\""));
    object->Properties().KeyFrames("opacity").Set(0, 100.f);
    object->Properties().KeyFrames("opacity").Set(1000, 50.f);
    EXPECT_THROW(Mlt().Write(years.Document(), {}), OperationException);

    drawn.Sequence()->Settings().SetFrameCount(0);
    EXPECT_THROW(Mlt().Write(drawn.Document(), {}), OperationException);
}

} // namespace

} // namespace marlet::test
