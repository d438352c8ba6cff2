#include <marlet/exchange/edl/EdlWriter.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/edl/EdlEvents.h>
#include <marlet/foundation/TimeCode.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>

#include <cmath>
#include <set>
#include <unordered_map>

namespace marlet::project
{

namespace
{

using Severity = LoadEntry::Severity;

/// The file of an asset, or nothing.
WideString FileOf(const AbstractAsset &asset)
{
    if (const auto *media = dynamic_cast<const MediaAsset *>(&asset))
        return media->Filename();
    if (const auto *image = dynamic_cast<const ImageAsset *>(&asset))
        return image->Filename();
    return {};
}

/// On one line.
NarrowString OneLine(const WideString &text)
{
    NarrowString line = ToUtf8(text);
    for (char &c : line)
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    return line;
}

/// The names by which the sources of a list are told apart.
class ReelNames
{
public:
    NarrowString Of(const AbstractAsset &asset)
    {
        const WideString file = FileOf(asset);
        if (file.empty())
            return "AX";
        NarrowString &reel = reels_[asset.ID()];
        if (reel.empty())
            reel = Free(EdlReelName(ToUtf8(Stem(file))));
        return reel;
    }

private:
    static WideString Stem(const WideString &file)
    {
        const WideString name = file.substr(file.find_last_of(u'/') + 1);
        return name.substr(0, name.find_last_of(u'.'));
    }

    NarrowString Free(const NarrowString &wanted)
    {
        constexpr std::size_t kLength = 8;
        NarrowString reel = wanted;
        for (int number = 2; reel.empty() || !taken_.insert(reel).second; ++number) {
            const NarrowString digits = std::to_string(number);
            reel = wanted.substr(0, kLength - digits.size()) + digits;
        }
        return reel;
    }

    std::unordered_map<kytl::KyID, NarrowString> reels_;
    std::set<NarrowString> taken_{"AX", "BL", "BLACK"};
};

/// "V", "A", "A2", "AA", "B", "A2/V", "AA/V", or "NONE" where only the third and fourth channel are meant.
NarrowString ChannelText(const EdlChannels &channels)
{
    bool first = false;
    bool second = false;
    for (const int channel : channels.sound) {
        first = first || channel == 1;
        second = second || channel == 2;
    }
    const NarrowString sound = first && second ? "AA" : first ? "A" : second ? "A2" : "";
    if (!channels.picture)
        return sound.empty() ? "NONE" : sound;
    return sound.empty() ? "V" : sound == "A" ? "B" : sound + "/V";
}

class EdlWriter
{
public:
    EdlWriter(const Project &project, const EditorSequence &sequence, const ExchangeOptions &options)
        : project_(project),
          options_(options),
          time_(EdlTime::Of(sequence.Settings().FrameRate())),
          start_(TimeCode{1, 0, 0, 0, time_.CountingRate()}.ToFrame())
    {
        text_ = "TITLE: " + OneLine(sequence.Name()) + "\n";
        text_ += NarrowString("FCM: ") + (time_.isDrop ? "DROP FRAME" : "NON-DROP FRAME") + "\n";
    }

    NarrowString Write(const std::vector<EdlEvent> &events)
    {
        for (const EdlEvent &event : events) {
            ++number_;
            text_ += '\n';
            WriteEdits(event);
            WriteNotes(event);
        }
        if (number_ > 999)
            Tell(options_, Severity::Warning,
                 "the list has more than the 999 events that many machines take");
        return std::move(text_);
    }

private:
    std::shared_ptr<AbstractAsset> AssetOf(const AbstractSequenceObject &object)
    {
        return object.Asset(project_.Assets());
    }

    NarrowString ReelOf(const std::shared_ptr<AbstractSequenceObject> &object)
    {
        if (!object)
            return "BL";
        const auto asset = AssetOf(*object);
        return asset ? reels_.Of(*asset) : "AX";
    }

    void WriteEdits(const EdlEvent &event)
    {
        if (event.kind == EdlKind::Cut) {
            WriteEdit(event, event.object, "C", event.sourceIn, event.sourceOut, event.recordOut);
            return;
        }
        // The source that it comes from, for no frames at all, says where that is by then.
        WriteEdit(event, event.from, "C", event.fromSource, event.fromSource, event.recordIn);
        char kind[32];
        std::snprintf(kind, sizeof kind, "%-4s %03d", event.kind == EdlKind::Wipe ? "W001" : "D",
                      event.length);
        WriteEdit(event, event.object, kind, event.sourceIn, event.sourceOut, event.recordOut);
    }

    void WriteEdit(const EdlEvent &event, const std::shared_ptr<AbstractSequenceObject> &object,
                   const char *kind, long long sourceIn, long long sourceOut, long long recordOut)
    {
        char head[96];
        std::snprintf(head, sizeof head, "%03d  %-8s %-5s %-8s ", number_, ReelOf(object).c_str(),
                      ChannelText(event.channels).c_str(), kind);
        text_ += head + TimeText(sourceIn) + ' ' + TimeText(sourceOut) + ' ' +
                 TimeText(start_ + event.recordIn) + ' ' + TimeText(start_ + recordOut) + '\n';
    }

    /// Drop-frame numbers begin again after a day; others have two digits for the hours.
    NarrowString TimeText(long long frame) const
    {
        const long long end = time_.isDrop ? std::llround(time_.CountingRate() * 3600) * 24
                                           : time_.FramesPerSecond() * 3600LL * 100;
        if (frame < 0 || frame >= end)
            throw OperationException("Frame " + std::to_string(frame) + " has no time code");
        return time_.Text(frame);
    }

    void WriteNotes(const EdlEvent &event)
    {
        if (event.from)
            WriteSpeed(event.from, event.fromSource);
        if (event.object)
            WriteSpeed(event.object, event.sourceIn);
        bool third = false;
        bool fourth = false;
        for (const int channel : event.channels.sound) {
            third = third || channel == 3;
            fourth = fourth || channel == 4;
        }
        if (third || fourth)
            text_ += NarrowString("AUD ") + (third ? "  3" : "") + (fourth ? "  4" : "") + "\n";
        if (!event.effect.empty())
            text_ += "* EFFECT NAME: " + OneLine(FromUtf8(event.effect)) + "\n";
        if (event.from)
            text_ += "* FROM CLIP NAME: " + OneLine(event.from->Name()) + "\n";
        if (event.object)
            text_ += (event.kind == EdlKind::Cut ? "* FROM CLIP NAME: " : "* TO CLIP NAME: ") +
                     OneLine(event.object->Name()) + "\n";
        if (event.from)
            WriteFile(*event.from);
        if (event.object)
            WriteFile(*event.object);
    }

    /// In frames a second, with one digit behind the point, as lists have it.
    void WriteSpeed(const std::shared_ptr<AbstractSequenceObject> &object, long long source)
    {
        const double speed = object->Speed();
        if (speed == 1)
            return;
        if (!(std::abs(speed) < 1000)) {
            Tell(options_, Severity::Loss, "a list has no word for the speed of " + ToUtf8(object->Name()), 0,
                 {object->ID()});
            return;
        }
        const double frames = speed * time_.FramesPerSecond();
        char line[96];
        std::snprintf(line, sizeof line, "M2   %-8s %05.1f                %s\n", ReelOf(object).c_str(),
                      frames, TimeText(source).c_str());
        text_ += line;
        if (std::abs(std::round(frames * 10) - frames * 10) > 1e-6)
            Tell(options_, Severity::Warning,
                 "the speed of " + ToUtf8(object->Name()) + " is written with one digit behind the point", 0,
                 {object->ID()});
    }

    void WriteFile(const AbstractSequenceObject &object)
    {
        const auto asset = AssetOf(object);
        const WideString file = asset ? FileOf(*asset) : WideString();
        if (!file.empty())
            text_ += "* SOURCE FILE: " + OneLine(WrittenPath(options_, file)) + "\n";
        if (const auto *media = dynamic_cast<const MediaAsset *>(asset.get());
            media && media->IsImageSequence())
            Tell(options_, Severity::Loss,
                 "a list has only the first image of the image sequence of " + ToUtf8(object.Name()), 0,
                 {object.ID(), object.AssetID()});
        if (file.empty())
            Tell(options_, Severity::Loss,
                 "a list has only the name of " + ToUtf8(object.Name()) + ", which is no file", 0,
                 {object.ID(), object.AssetID()});
    }

    const Project &project_;
    const ExchangeOptions &options_;
    EdlTime time_;
    int start_;
    ReelNames reels_;
    NarrowString text_;
    int number_ = 0;
};

} // namespace

NarrowString EdlOfProject(const Project &project, const ExchangeOptions &options)
{
    const std::shared_ptr<EditorSequence> sequence = project.Sequence();
    if (!sequence)
        throw OperationException("The project has no sequence");
    const double rate = sequence->Settings().FrameRate();
    if (!(rate >= 1 && rate <= kMostEdlRate))
        throw OperationException("Time codes cannot count the frames of the sequence");
    return EdlWriter(project, *sequence, options).Write(EdlEventsOf(*sequence, options));
}

} // namespace marlet::project
