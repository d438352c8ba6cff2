#pragma once

#include "Mirror.h"

#include <tests/checks/CheckedProject.h>

#include <marlet/history/EditHistory.h>

#include <marlet/project/MediaAsset.h>

#include <functional>
#include <map>
#include <optional>

namespace marlet::test
{

/// Edits a project that has one of everything as numbers say, with undo, redo, dropped and inner edits in
/// between, and looks after each step whether everything is as it has to be: the text, the addresses of all
/// objects, what is wrong, and a mirror that knows of changes by notices alone. Whoever runs it says where
/// numbers come from and what becomes of a fault.
class EditScript
{
public:
    using Numbers = std::function<unsigned int()>;
    using Fault = std::function<void(const NarrowString &what)>;

    EditScript(Numbers numbers, Fault fault);
    ~EditScript();

    void Run(int steps);
    /// Goes back to the beginning and to the end again.
    void UndoAndRedoAll();
    std::size_t States() const { return states_.size(); }

private:
    struct Observer;
    using Action = void (EditScript::*)(Edit &edit);

    static const std::vector<Action> &Actions();

    unsigned int Below(unsigned int limit) { return numbers_() % limit; }
    bool Chance(unsigned int oneIn) { return Below(oneIn) == 0; }
    int Frame() { return static_cast<int>(Below(120)) - 10; }
    WideString Word();
    template <class List> auto AnyOf(const List &list)
    {
        return *std::next(list.begin(), Below(static_cast<unsigned int>(list.size())));
    }

    /// A document as an edit left it.
    struct State {
        WideString text;
        std::vector<std::string> findings;
    };

    void OneEdit();
    void Drag();
    void Forget();
    void Note();
    WideString TextNow() const;
    std::vector<std::string> FindingsNow() const;
    void SomeActions(Edit &edit);
    void Go(bool back);
    void Look(const NarrowString &after);
    void LookAtAddresses(const NarrowString &after);

    void ChangeValue(Edit &edit);
    void ChangeKeyFrames(Edit &edit);
    void ChangeOneKeyFrame(Edit &edit);
    void ChangeProperties(Edit &edit);
    void ChangeLayer(Edit &edit);
    void ChangeLayerLists(Edit &edit);
    void AddLayer(Edit &edit);
    void RemoveLayer(Edit &edit);
    void MoveLayerInStack(Edit &edit);
    void ChangeText(Edit &edit);
    void ChangeMask(Edit &edit);
    void ChangeTracker(Edit &edit);
    void ChangeEffect(Edit &edit);
    void ChangeAsset(Edit &edit);
    void ChangeFolders(Edit &edit);
    void ChangeProject(Edit &edit);
    void ChangeSequence(Edit &edit);
    void ChangeTrack(Edit &edit);
    void ChangeObject(Edit &edit);
    void AddObject(Edit &edit);
    void MoveObject(Edit &edit);
    void MoveToOtherTrack(Edit &edit);
    void RemoveObject(Edit &edit);
    void ShiftObjects(Edit &edit);
    void ChangeTransition(Edit &edit);
    void ChangePanels(Edit &edit);
    void OperateOnLayers(Edit &edit);
    void OperateOnCurves(Edit &edit);
    void OperateOnAssets(Edit &edit);
    void OperateOnSequence(Edit &edit);

    std::shared_ptr<AbstractLayer> AnyLayer() { return AnyOf(document_.composition->Layers()); }
    std::shared_ptr<VideoTrack> AnyVideoTrack() { return AnyOf(document_.sequence->VideoTracks()); }
    std::shared_ptr<AbstractSequenceObject> AnyObject(const AbstractSequenceTrack &track);
    void ChangeCurve(KeyFrameList &keys);

    Numbers numbers_;
    Fault fault_;
    CheckedProject document_;
    std::shared_ptr<ImageAsset> image_ = ImageAsset::Create(u"/no/such.png");
    std::shared_ptr<MediaAsset> media_;
    /// Shown by the inner composition, which the first one shows.
    std::shared_ptr<CompositionAsset> deep_ =
        CompositionAsset::Create(u"Deep", AudioVideoSettings::Preset::Hd720At25, 100);
    std::optional<EditHistory> history_; ///< from when the document is filled
    Mirror mirror_{*document_.project};
    std::shared_ptr<Observer> observer_;
    std::vector<State> states_;
    std::size_t state_ = 0;
    std::map<std::string, const void *> addresses_;
};

} // namespace marlet::test
