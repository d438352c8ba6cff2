#include <marlet/exchange/edl/EdlReader.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/edl/EdlSources.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/TimeCode.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

using Object = std::shared_ptr<AbstractSequenceObject>;
using Severity = LoadEntry::Severity;

constexpr int kMostTracks = 99;

/// An edit, and the one that its transition comes from if the list has it.
struct Event {
    const EdlEdit *edit;
    const EdlEdit *from = nullptr;
};

/// In the order of the record. What is recorded for no frames is not shown.
std::vector<Event> EventsOf(const EdlList &list)
{
    std::vector<Event> events;
    for (std::size_t i = 0; i < list.edits.size(); ++i) {
        const EdlEdit &edit = list.edits[i];
        if (edit.IsEmpty())
            continue;
        const EdlEdit *before = i > 0 ? &list.edits[i - 1] : nullptr;
        const bool isFrom =
            before && edit.kind != EdlKind::Cut && before->IsEmpty() && before->number == edit.number;
        events.push_back({&edit, isFrom ? before : nullptr});
    }
    std::ranges::stable_sort(events, {}, [](const Event &event) { return event.edit->recordIn; });
    return events;
}

class EdlReader
{
public:
    EdlReader(const EdlList &list, const ExchangeOptions &options)
        : list_(list),
          options_(options),
          project_(Project::Create(options.plugins, options.load.media)),
          sources_(project_, list, options)
    {
    }

    std::shared_ptr<Project> Read()
    {
        const std::vector<Event> events = EventsOf(list_);
        MakeSequence(events);
        for (const Event &event : events) {
            const Object picture =
                event.edit->channels.picture ? Record(event, TrackType::Video, 1) : nullptr;
            Object partner;
            for (const int channel : event.edit->channels.sound) {
                const Object sound = Record(event, TrackType::Audio, channel);
                if (!partner && picture && sound && picture->StartFrame() == sound->StartFrame() &&
                    picture->EndFrame() == sound->EndFrame())
                    partner = sound;
            }
            if (partner) {
                picture->SetLinkedObjectID(partner->ID());
                partner->SetLinkedObjectID(picture->ID());
            }
        }
        return project_;
    }

private:
    /// The sequence begins with the hour in which the record begins.
    void MakeSequence(const std::vector<Event> &events)
    {
        const int hour = TimeCode{1, 0, 0, 0, list_.time.CountingRate()}.ToFrame();
        int end = 0;
        if (!events.empty())
            start_ = events.front().edit->recordIn / hour * hour;
        for (const Event &event : events)
            end = std::max(end, event.edit->recordOut - start_);
        if (start_ > 0)
            Tell(options_, Severity::Note,
                 "the sequence begins at the time code " + list_.time.Text(start_) + " of the list");
        sequence_ = EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, end);
        sequence_->Settings().SetFrameRate(list_.time.frameRate);
        sequence_->VideoTracks().Clear();
        sequence_->AudioTracks().Clear();
        TrackAt(TrackType::Video, 1);
        TakeSize(events);
        project_->SetSequence(sequence_);
        const WideString name = FromUtf8(list_.title);
        if (!name.empty()) {
            sequence_->SetName(name);
            project_->SetName(name);
        }
    }

    /// That of the first picture, since a list has none.
    void TakeSize(const std::vector<Event> &events)
    {
        for (const Event &event : events) {
            const auto asset = sources_.AssetOf(*event.edit);
            if (!asset || asset->IsOffline() || asset->Width() < 1 || asset->Height() < 1)
                continue;
            sequence_->Settings().SetWidth(asset->Width());
            sequence_->Settings().SetHeight(asset->Height());
            return;
        }
        Tell(options_, Severity::Warning, "no picture says how large the sequence is: 1280 x 720 is taken");
    }

    /// The tracks up to it are made if they are not there. Numbers are from 1 on.
    std::shared_ptr<AbstractSequenceTrack> TrackAt(TrackType type, int number)
    {
        auto &video = sequence_->VideoTracks();
        auto &audio = sequence_->AudioTracks();
        const auto count = static_cast<std::size_t>(number);
        if (type == TrackType::Video) {
            while (video.size() < count)
                video.Add(VideoTrack::Create(sequence_, u"Video " + Digits(video.size() + 1)));
            return video[count - 1];
        }
        while (audio.size() < count)
            audio.Add(AudioTrack::Create(sequence_, u"Audio " + Digits(audio.size() + 1)));
        return audio[count - 1];
    }

    static WideString Digits(std::size_t number) { return FromUtf8(std::to_string(number)); }

    std::size_t CountOf(TrackType type) const
    {
        return type == TrackType::Video ? sequence_->VideoTracks().size() : sequence_->AudioTracks().size();
    }

    /// Null where nothing is shown.
    Object Record(const Event &event, TrackType type, int channel)
    {
        const EdlEdit &edit = *event.edit;
        const int start = edit.recordIn - start_;
        const int end = edit.recordOut - start_;
        const int length = edit.kind == EdlKind::Cut ? 0 : std::min(edit.length, end - start);
        if (length < edit.length)
            Tell(options_, Severity::Warning, "the transition is longer than what it leads to", edit.line);
        const bool isFromBlack = event.from && event.from->IsBlack();
        Object before = length > 0 && !isFromBlack ? EndingAt(type, channel, start) : nullptr;
        const int overlap = edit.IsBlack() ? length : length / 2;
        if (event.from && !isFromBlack && overlap > 0 &&
            (!before || before->AssetID() != sources_.AssetOf(*event.from)->ID()))
            before = Put(*event.from, type, channel, start, start + overlap, event.from->sourceIn);
        else if (before && !Extend(before, start + overlap, edit.line))
            before = nullptr;
        if (edit.IsBlack()) {
            if (before)
                Join(edit, before, nullptr, length, -length);
            return nullptr;
        }
        const int into = before ? overlap : 0;
        const auto skipped = Truncate<int>(into * SpeedOf(edit));
        const Object object =
            Put(edit, type, channel, start + into, end, Saturate(std::int64_t{edit.sourceIn} + skipped));
        if (object && length > 0)
            Join(edit, before, object, length, before ? -into : 0);
        return object;
    }

    Object EndingAt(TrackType type, int channel, int frame)
    {
        for (int number = channel; number <= static_cast<int>(CountOf(type)); ++number) {
            Object object = TrackAt(type, number)->Objects().FindOnFrame(frame - 1);
            if (object && object->EndFrame() == frame)
                return object;
        }
        return nullptr;
    }

    /// Shows an object up to a later frame, if its asset has the frames and nothing is in the way.
    bool Extend(const Object &object, int end, int line)
    {
        const SequenceObjectList &others =
            sequence_->FindSequenceTrackByID(object->ParentTrackID())->Objects();
        const EdlEdit &edit = *editsOfObjects_.at(object->ID());
        const double count = static_cast<double>(end - object->StartFrame()) * object->Speed();
        if (others.FindInRange(object->EndFrame(), end).empty() &&
            sources_.HasFrames(edit, object->AssetInstanceStart(), count)) {
            object->SetEndFrame(end);
            return true;
        }
        Tell(options_, Severity::Loss, "the transition finds no more frames of what it leads from", line,
             {object->ID()});
        return false;
    }

    static double SpeedOf(const EdlEdit &edit) { return edit.speed == 0 ? 1 : std::abs(edit.speed); }

    Object Put(const EdlEdit &edit, TrackType type, int channel, int start, int end, int sourceFrame)
    {
        const std::shared_ptr<AbstractAsset> asset = sources_.AssetOf(edit);
        if (!asset)
            return nullptr;
        const int first = sources_.AssetFrame(edit, sourceFrame);
        if (!IsUsable(edit, *asset, type, first, static_cast<double>(end - start) * SpeedOf(edit)))
            return nullptr;
        Object object;
        if (type == TrackType::Video)
            object = VisualObject::Create(asset, sequence_);
        else
            object = AudioObject::Create(asset, sequence_);
        object->SetAssetInstanceStart(first);
        if (!edit.clip.empty())
            object->SetName(FromUtf8(edit.clip));
        TakeSpeed(edit, *object);
        const auto track = FreeTrack(edit, type, channel, start, end);
        if (!track)
            return nullptr;
        object->SetParentTrackID(track->ID());
        object->SetEndFrame(end);
        track->Objects().Insert(object, start);
        asset->Instances().Add(object);
        editsOfObjects_.emplace(object->ID(), &edit);
        return object;
    }

    bool IsUsable(const EdlEdit &edit, const AbstractAsset &asset, TrackType type, int first, double count)
    {
        const bool hasKind =
            asset.IsOffline() || (type == TrackType::Video ? asset.HasVideo() : asset.HasAudio());
        if (hasKind && sources_.HasFrames(edit, first, count))
            return true;
        Tell(options_, Severity::Loss,
             ToUtf8(asset.Name()) + (hasKind                    ? " does not have all frames of the edit"
                                     : type == TrackType::Video ? " has no picture"
                                                                : " has no sound"),
             edit.line, {asset.ID()});
        return false;
    }

    void TakeSpeed(const EdlEdit &edit, AbstractSequenceObject &object)
    {
        if (SpeedOf(edit) != 1)
            object.SetSpeed(SpeedOf(edit));
        const int source = edit.sourceOut - edit.sourceIn;
        const int record = edit.recordOut - edit.recordIn;
        if (edit.speed < 0)
            Tell(options_, Severity::Loss, "what is played backwards is played forwards", edit.line);
        else if (edit.speed == 0)
            Tell(options_, Severity::Loss, "a frame that is held goes on", edit.line);
        else if (edit.speed == 1 && source != record && HasFrames(object.AssetType()))
            Tell(options_, Severity::Warning,
                 std::to_string(source) + " frames are recorded in " + std::to_string(record) +
                     " at a speed that is not given: it is taken as 1",
                 edit.line, {object.ID()});
    }

    static bool HasFrames(AssetType type) { return type != AssetType::Image; }

    /// What is in the way stays, under a picture that comes and beside a sound. Null if all are full.
    std::shared_ptr<AbstractSequenceTrack> FreeTrack(const EdlEdit &edit, TrackType type, int channel,
                                                     int start, int end)
    {
        int number = channel;
        while (number <= kMostTracks && !TrackAt(type, number)->Objects().FindInRange(start, end).empty())
            ++number;
        const bool isFree = number <= kMostTracks;
        if (!isFree)
            Tell(options_, Severity::Loss, "too many edits overlap here: this one is left out", edit.line);
        else if (number != channel)
            Tell(options_, Severity::Warning,
                 "the edit overlaps another one and comes on track " + std::to_string(number), edit.line);
        return isFree ? TrackAt(type, number) : nullptr;
    }

    /// One of the two may be missing.
    void Join(const EdlEdit &edit, const Object &from, const Object &to, int length, int relativeStart)
    {
        const auto &plugin = edit.kind == EdlKind::Wipe ? options_.wipe : options_.dissolve;
        if (!plugin || (from && to && from->ParentTrackID() != to->ParentTrackID())) {
            Tell(options_, Severity::Loss,
                 plugin                       ? "the transition would be between two tracks"
                 : edit.kind == EdlKind::Wipe ? "there is no plug-in for a wipe"
                                              : "there is no plug-in for a dissolve",
                 edit.line);
            return;
        }
        const auto transition = Transition::Create(plugin);
        transition->SetLength(length);
        transition->SetRelativeStartFrame(relativeStart);
        if (from) {
            from->SetOutgoingTransition(transition);
            transition->SetFromObject(from->ID());
        }
        if (to) {
            to->SetIncomingTransition(transition);
            transition->SetToObject(to->ID());
        }
    }

    const EdlList &list_;
    const ExchangeOptions &options_;
    std::shared_ptr<Project> project_;
    EdlSources sources_;
    std::shared_ptr<EditorSequence> sequence_;
    int start_ = 0; ///< the time code of the first frame
    std::unordered_map<kytl::KyID, const EdlEdit *> editsOfObjects_;
};

} // namespace

std::shared_ptr<Project> ProjectOfEdl(const EdlList &list, const ExchangeOptions &options)
{
    return EdlReader(list, options).Read();
}

} // namespace marlet::project
