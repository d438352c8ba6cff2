#pragma once

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/operations/sequence/SequenceOptions.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/Project.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace marlet::test
{

using namespace marlet::project;

using Object = std::shared_ptr<AbstractSequenceObject>;
using Track = std::shared_ptr<AbstractSequenceTrack>;

/// A project whose sequence is given, and comes back, as a drawing of its tracks, one a line:
///
///     V1 |A123b567....s---| x4:2 >16:1
///     A1 |A123............|
///
/// A letter is the first frame of an object and names its asset: one of ten frames, but for "s", a still. It
/// is a capital if the object has a partner, which in the drawing is the next of the letter that starts
/// there. The last digits of the asset's frames follow. Behind stand the transitions with the frame of their
/// cut and their length: "x" for one that two objects share, "<" at a head, ">" at a tail. "?" is what
/// overlaps, a partner that does not name the object, and a transition that starts elsewhere.
class DrawnProject
{
public:
    explicit DrawnProject(const std::string &drawing);

    std::string Drawing() const { return DrawingOf(*sequence_); }
    static std::string DrawingOf(const EditorSequence &sequence);
    std::string Text() const;
    const std::shared_ptr<Project> &Document() const { return project_; }
    const std::shared_ptr<EditorSequence> &Sequence() const { return sequence_; }
    /// Which is added if it is not there.
    std::shared_ptr<AbstractAsset> Asset(char letter);
    /// Those that operations may ask for.
    void AddAssets();
    Track Row(const std::string &name) const;
    /// The object on a frame.
    Object At(const std::string &track, int frame) const;
    TrackChoice Tracks(const std::vector<std::string> &names) const;
    static std::shared_ptr<AbstractPlugin> Plugin();

private:
    void AddRow(const std::string &line);
    void AddObject(const Track &track, const std::string &frames, int start);
    void AddTransition(const Track &track, const std::string &text);
    void LinkPartners();
    static std::string RowDrawing(const EditorSequence &sequence, AbstractSequenceTrack &track);

    std::shared_ptr<Project> project_;
    std::shared_ptr<EditorSequence> sequence_;
    std::map<char, std::shared_ptr<AbstractAsset>> assets_;
    std::vector<Object> toLink_;
};

} // namespace marlet::test
