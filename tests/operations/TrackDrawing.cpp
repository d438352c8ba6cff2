#include <tests/operations/TrackDrawing.h>

#include <tests/support/TestPlugins.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/SolidAsset.h>

#include <cctype>
#include <sstream>

namespace marlet::test
{

namespace
{

constexpr int kAssetFrames = 10;
constexpr auto kPreset = AudioVideoSettings::Preset::Hd720At25;

WideString Wide(const std::string &text)
{
    return FromUtf8(text);
}

char LetterOf(const AbstractSequenceObject &object)
{
    return static_cast<char>(object.Name()[0]);
}

} // namespace

std::shared_ptr<AbstractPlugin> DrawnProject::Plugin()
{
    static const auto plugin = std::make_shared<TestPlugin>();
    return plugin;
}

DrawnProject::DrawnProject(const std::string &drawing) : project_(Project::Create(nullptr))
{
    const std::size_t width = drawing.find('|', drawing.find('|') + 1) - drawing.find('|') - 1;
    sequence_ = EditorSequence::Create(kPreset, static_cast<int>(width));
    sequence_->VideoTracks().Clear();
    sequence_->AudioTracks().Clear();
    project_->SetSequence(sequence_);
    std::istringstream lines(drawing);
    for (std::string line; std::getline(lines, line);)
        AddRow(line);
    LinkPartners();
}

std::shared_ptr<AbstractAsset> DrawnProject::Asset(char letter)
{
    std::shared_ptr<AbstractAsset> &asset = assets_[letter];
    if (!asset) {
        const WideString name(1, static_cast<char16_t>(letter));
        if (letter == 's')
            asset = SolidAsset::Create(name, {1, 0, 0, 1}, 64, 32, PAR::Square);
        else
            asset = CompositionAsset::Create(name, kPreset, kAssetFrames);
        project_->Assets().All().Add(asset);
        BinFolder &root = project_->Assets().Bin();
        root.Assets().Add(asset);
        asset->SetParentFolderID(root.ID());
    }
    return asset;
}

void DrawnProject::AddAssets()
{
    for (const char letter : {'a', 'b', 'c', 's'})
        Asset(letter);
}

void DrawnProject::AddRow(const std::string &line)
{
    const WideString name = Wide(line.substr(0, 2));
    if (line[0] == 'V')
        sequence_->VideoTracks().Add(VideoTrack::Create(sequence_, name));
    else
        sequence_->AudioTracks().Add(AudioTrack::Create(sequence_, name));
    const Track track = Row(line.substr(0, 2));
    const std::size_t first = line.find('|') + 1;
    const std::size_t end = line.find('|', first);
    for (std::size_t at = first; at < end;) {
        std::size_t next = at + 1;
        while (next < end && (std::isdigit(line[next]) || line[next] == '-'))
            ++next;
        if (line[at] != '.')
            AddObject(track, line.substr(at, next - at), static_cast<int>(at - first));
        at = next;
    }
    std::istringstream transitions(line.substr(end + 1));
    for (std::string text; transitions >> text;)
        AddTransition(track, text);
}

void DrawnProject::AddObject(const Track &track, const std::string &frames, int start)
{
    const auto asset = Asset(static_cast<char>(std::tolower(frames[0])));
    Object object;
    if (track->Type() == TrackType::Video)
        object = VisualObject::Create(asset, sequence_);
    else
        object = AudioObject::Create(asset, sequence_);
    object->SetParentTrackID(track->ID());
    object->SetEndFrame(start + static_cast<int>(frames.size()));
    if (frames.size() > 1 && frames[1] != '-')
        object->SetAssetInstanceStart(frames[1] - '1');
    track->Objects().Insert(object, start);
    asset->Instances().Add(object);
    if (std::isupper(frames[0]))
        toLink_.push_back(object);
}

void DrawnProject::AddTransition(const Track &track, const std::string &text)
{
    const std::size_t colon = text.find(':');
    const int cut = std::stoi(text.substr(1, colon - 1));
    const int length = std::stoi(text.substr(colon + 1));
    const auto transition = Transition::Create(Plugin());
    transition->SetLength(length);
    transition->SetRelativeStartFrame(text[0] == '<' ? 0 : text[0] == 'x' ? -(length / 2) : -length);
    if (text[0] != '<') {
        const Object from = track->Objects().FindOnFrame(cut - 1);
        from->SetOutgoingTransition(transition);
        transition->SetFromObject(from->ID());
    }
    if (text[0] != '>') {
        const Object to = track->Objects().FindOnFrame(cut);
        to->SetIncomingTransition(transition);
        transition->SetToObject(to->ID());
    }
}

void DrawnProject::LinkPartners()
{
    for (const Object &a : toLink_)
        for (const Object &b : toLink_)
            if (a != b && a->LinkedObjectID().IsNull() && b->LinkedObjectID().IsNull() &&
                a->AssetID() == b->AssetID() && a->StartFrame() == b->StartFrame()) {
                a->SetLinkedObjectID(b->ID());
                b->SetLinkedObjectID(a->ID());
            }
}

std::string DrawnProject::Text() const
{
    return ToUtf8(project_->Serialize());
}

Track DrawnProject::Row(const std::string &name) const
{
    for (const Track &track : TracksOf(*sequence_))
        if (track->Name() == Wide(name))
            return track;
    return nullptr;
}

Object DrawnProject::At(const std::string &track, int frame) const
{
    return Row(track)->Objects().FindOnFrame(frame);
}

TrackChoice DrawnProject::Tracks(const std::vector<std::string> &names) const
{
    std::vector<Track> tracks;
    for (const std::string &name : names)
        tracks.push_back(Row(name));
    return TrackChoice::Of(tracks);
}

std::string DrawnProject::DrawingOf(const EditorSequence &sequence)
{
    std::string text;
    for (const Track &track : TracksOf(sequence))
        text += (text.empty() ? "" : "\n") + RowDrawing(sequence, *track);
    return text;
}

std::string DrawnProject::RowDrawing(const EditorSequence &sequence, AbstractSequenceTrack &track)
{
    std::string frames(static_cast<std::size_t>(sequence.Settings().FrameCount()), '.');
    std::string transitions;
    const auto tell = [&](char mark, int cut, const Transition &transition, int start) {
        transitions += std::string(" ") + (transition.RelativeStartFrame() == start ? mark : '?') +
                       std::to_string(cut) + ":" + std::to_string(transition.Length());
    };
    for (const Object &object : ObjectsOf(track)) {
        for (int frame = object->StartFrame(); frame < object->EndFrame(); ++frame) {
            const int shown = object->AssetInstanceStart() +
                              static_cast<int>((frame - object->StartFrame()) * object->Speed());
            char &drawn = frames.at(static_cast<std::size_t>(frame));
            drawn = drawn != '.'               ? '?'
                    : LetterOf(*object) == 's' ? '-'
                                               : static_cast<char>('0' + shown % kAssetFrames);
        }
        const bool hasPartner = !object->LinkedObjectID().IsNull();
        char &head = frames.at(static_cast<std::size_t>(object->StartFrame()));
        head = head == '?' || (hasPartner && !PartnerOf(sequence, *object)) ? '?'
               : hasPartner ? static_cast<char>(std::toupper(LetterOf(*object)))
                            : LetterOf(*object);

        if (const auto &in = object->IncomingTransition(); in && in->FromObject().IsNull())
            tell('<', object->StartFrame(), *in, 0);
        else if (in)
            tell('x', object->StartFrame(), *in, -(in->Length() / 2));
        if (const auto &out = object->OutgoingTransition(); out && out->ToObject().IsNull())
            tell('>', object->EndFrame(), *out, -out->Length());
    }
    return ToUtf8(track.Name()) + " |" + frames + "|" + transitions;
}

} // namespace marlet::test
