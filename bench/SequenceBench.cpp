// The editor timeline beside what a program would do that has nothing but a sorted array, or a hash map.
// Questions are put at random, so that hardly anything that they touch is in a cache.

#include <bench/support/BareParse.h>
#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/history/EditHistory.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>
#include <map>
#include <random>
#include <unordered_map>

using namespace marlet::project;

namespace
{

using Object = std::shared_ptr<AbstractSequenceObject>;

constexpr int kMost = 100'000;
constexpr int kDistance = 12; ///< frames from one start to the next
constexpr int kLength = 10;
constexpr int kTracks = 20;
constexpr int kObjectsPerTrack = 10'000;

std::vector<int> StartFrames(int count)
{
    std::vector<int> starts;
    for (int i = 0; i < count; ++i)
        starts.push_back(i * kDistance);
    return starts;
}

template <class Track> void Fill(const std::shared_ptr<EditorSequence> &sequence, Track &track, int count)
{
    using OnTrack = std::conditional_t<std::is_same_v<Track, VideoTrack>, VisualObject, AudioObject>;
    static const auto solid = SolidAsset::Create(u"Solid", {0, 0, 0, 1}, 1280, 720, PAR::Square);
    for (const int start : StartFrames(count)) {
        const auto object = OnTrack::Create(solid, sequence);
        object->SetParentTrackID(track.ID());
        object->SetEndFrame(start + kLength);
        track.Objects().Insert(object, start);
    }
}

std::shared_ptr<EditorSequence> MakeSequence(int trackCount, int objectsPerTrack)
{
    const auto sequence =
        EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, objectsPerTrack * kDistance);
    while (sequence->VideoTracks().Count() < static_cast<unsigned int>(trackCount))
        sequence->VideoTracks().Add(VideoTrack::Create(sequence, u"Video"));
    for (const auto &track : sequence->VideoTracks())
        Fill(sequence, *track, objectsPerTrack);
    return sequence;
}

const EditorSequence &LongSequence()
{
    static const auto sequence = MakeSequence(1, kMost);
    return *sequence;
}

const SequenceObjectList &LongList()
{
    return LongSequence().VideoTracks()[0]->Objects();
}

/// Something of each object of a track that starts there, in random order.
template <class Of> auto AtRandom(int count, Of &&of)
{
    std::vector<decltype(of(0))> all;
    for (int i = 0; i < count; ++i)
        all.push_back(of(i));
    std::shuffle(all.begin(), all.end(), std::mt19937(1));
    return all;
}

/// Puts the same questions in the same order again and again.
template <class Questions, class Ask>
void TimeAsking(benchmark::State &state, const Questions &all, Ask &&ask)
{
    auto question = all.begin();
    for (auto _ : state) {
        benchmark::DoNotOptimize(ask(*question));
        if (++question == all.end())
            question = all.begin();
    }
}

// Frames

std::vector<int> RandomFrames(int count)
{
    return AtRandom(count, [](int i) { return i * kDistance + i % kDistance; });
}

std::vector<int> RandomStarts()
{
    return AtRandom(kMost, [](int i) { return i * kDistance; });
}

void SearchInOneTrack(benchmark::State &state, const std::vector<int> &frames)
{
    const std::vector<int> starts = StartFrames(kMost);
    TimeAsking(state, frames,
               [&](int frame) { return std::lower_bound(starts.begin(), starts.end(), frame); });
}

void SearchFrame(benchmark::State &state)
{
    SearchInOneTrack(state, RandomFrames(kMost));
}

void FindOnFrame(benchmark::State &state)
{
    TimeAsking(state, RandomFrames(kMost), [](int frame) { return LongList().FindOnFrame(frame); });
}

void SearchStart(benchmark::State &state)
{
    SearchInOneTrack(state, RandomStarts());
}

void GetByStartFrame(benchmark::State &state)
{
    TimeAsking(state, RandomStarts(), [](int frame) { return LongList().GetByStartFrame(frame); });
}

void SearchTracks(benchmark::State &state)
{
    const std::vector<std::vector<int>> tracks(kTracks, StartFrames(kObjectsPerTrack));
    TimeAsking(state, RandomFrames(kObjectsPerTrack), [&](int frame) {
        int sum = 0;
        for (const std::vector<int> &starts : tracks)
            sum += static_cast<int>(std::lower_bound(starts.begin(), starts.end(), frame) - starts.begin());
        return sum;
    });
}

void NextEdit(benchmark::State &state)
{
    static const auto sequence = MakeSequence(kTracks, kObjectsPerTrack);
    TimeAsking(state, RandomFrames(kObjectsPerTrack), [](int frame) { return sequence->NextEdit(frame); });
}

BENCHMARK(SearchFrame);
BENCHMARK(FindOnFrame);
BENCHMARK(SearchStart);
BENCHMARK(GetByStartFrame);
BENCHMARK(SearchTracks);
BENCHMARK(NextEdit);

// IDs

std::vector<kytl::KyID> RandomIDs()
{
    return AtRandom(kMost, [](int i) { return LongList()[static_cast<unsigned int>(i)]->ID(); });
}

void LookUpID(benchmark::State &state)
{
    std::unordered_map<kytl::KyID, Object> objects;
    LongList().ForEach([&](const auto &object) {
        objects.emplace(object->ID(), std::const_pointer_cast<AbstractSequenceObject>(object));
    });
    TimeAsking(state, RandomIDs(), [&](const kytl::KyID &id) { return Object(objects.find(id)->second); });
}

void GetByID(benchmark::State &state)
{
    TimeAsking(state, RandomIDs(), [](const kytl::KyID &id) { return LongList().GetByID(id); });
}

BENCHMARK(LookUpID);
BENCHMARK(GetByID);

// Inserting objects that know their start frames, into so many lists that each time it comes to as many
// objects in all

struct Unordered {
    std::shared_ptr<EditorSequence> sequence;
    std::vector<Object> objects;
};

Unordered TakeObjects(int count)
{
    Unordered made{MakeSequence(1, count), {}};
    SequenceObjectList &list = made.sequence->VideoTracks()[0]->Objects();
    list.ForEach([&made](const Object &object) { made.objects.push_back(object); });
    list.Clear();
    return made;
}

void InsertInOrder(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    std::vector<Unordered> all;
    for (int i = 0; i < kMost; i += count)
        all.push_back(TakeObjects(count));
    for (auto _ : state) {
        const auto start = bench::Clock::now();
        for (const Unordered &one : all)
            for (const Object &object : one.objects)
                one.sequence->VideoTracks()[0]->Objects().Insert(object, object->StartFrame());
        state.SetIterationTime(bench::SecondsSince(start) / static_cast<double>(all.size()));
        for (const Unordered &one : all)
            one.sequence->VideoTracks()[0]->Objects().Clear();
    }
}

Unordered TakeShuffledObjects(benchmark::State &state)
{
    Unordered made = TakeObjects(static_cast<int>(state.range(0)));
    std::shuffle(made.objects.begin(), made.objects.end(), std::mt19937(1));
    return made;
}

void InsertAtRandom(benchmark::State &state)
{
    const Unordered made = TakeShuffledObjects(state);
    bench::TimeMaking(state, [&made] {
        const auto track = VideoTrack::Create(made.sequence, u"Video");
        for (const Object &object : made.objects)
            track->Objects().Insert(object, object->StartFrame());
        return track;
    });
}

void InsertIntoVector(benchmark::State &state)
{
    const Unordered made = TakeShuffledObjects(state);
    const auto isBefore = [](const Object &a, const Object &b) { return a->StartFrame() < b->StartFrame(); };
    bench::TimeMaking(state, [&] {
        std::vector<Object> sorted;
        for (const Object &object : made.objects)
            sorted.insert(std::upper_bound(sorted.begin(), sorted.end(), object, isBefore), object);
        return sorted;
    });
}

BENCHMARK(InsertInOrder)->Arg(kMost / 10)->Arg(kMost)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(InsertAtRandom)->Arg(kMost)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(InsertIntoVector)->Arg(kMost)->UseManualTime()->Unit(benchmark::kMillisecond);

// Loading a project with one track

const WideString &TextOfTrack(int count)
{
    static std::map<int, WideString> texts;
    WideString &text = texts[count];
    if (text.empty()) {
        const auto project = Project::Create(nullptr);
        project->SetSequence(MakeSequence(1, 0));
        Fill(project->Sequence(), *project->Sequence()->AudioTracks()[0], count);
        text = project->Serialize();
    }
    return text;
}

void LoadTrack(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    const WideString &text = TextOfTrack(count);
    bench::TimeMakingEach(state, kMost / count, [&](int) { return bench::Load(text); });
}

void ParseTrack(benchmark::State &state)
{
    const WideString &text = TextOfTrack(static_cast<int>(state.range(0)));
    bench::TimeMaking(state, [&] { return bench::ParseAndWalk(text); });
}

BENCHMARK(LoadTrack)->Arg(kMost / 10)->Arg(kMost)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ParseTrack)->Arg(kMost)->UseManualTime()->Unit(benchmark::kMillisecond);

// An operation with all that it announces to a history

void InsertWithRipple(benchmark::State &state)
{
    const auto project = Project::Create(nullptr);
    const auto sequence = MakeSequence(1, kMost);
    project->SetSequence(sequence);
    SequenceObjectList &objects = sequence->VideoTracks()[0]->Objects();
    const auto asset = objects.FirstByTime()->Asset(project->Assets());
    project->Assets().All().Add(asset);
    objects.ForEach([&asset](const Object &object) { asset->Instances().Add(object); });
    const Placement placement{
        .asset = asset, .track = sequence->VideoTracks()[0], .length = kDistance - kLength};
    EditHistory history(project);
    for (auto _ : state) {
        const auto start = bench::Clock::now();
        PlaceAsset(project, placement, PlaceMode::Insert, TrackChoice::All());
        state.SetIterationTime(bench::SecondsSince(start));
        history.Undo();
    }
    asset->Instances().Clear();
}

BENCHMARK(InsertWithRipple)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
