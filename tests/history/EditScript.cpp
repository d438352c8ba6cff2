#include "EditScript.h"

#include <marlet/checks/Validate.h>
#include <marlet/project/MediaManager.h>

#include <algorithm>
#include <sstream>

namespace marlet::test
{

namespace
{

struct Dropped : std::exception {
};

} // namespace

struct EditScript::Observer : ChangeObserver {
    explicit Observer(EditScript &ofScript) : script(ofScript) {}

    void Changed(const ChangeNotice &notice) override
    {
        script.mirror_.Take(*script.document_.project, notice);
        for (const StaleFrames &stale : notice.Stale())
            if (stale.first >= stale.end)
                script.fault_("no frames are stale");
    }

    EditScript &script;
};

EditScript::EditScript(Numbers numbers, Fault fault)
    : numbers_(std::move(numbers)), fault_(std::move(fault)), observer_(std::make_shared<Observer>(*this))
{
    document_.sequence->VideoTracks().Add(VideoTrack::Create(document_.sequence, u"Second"));
    document_.AddAsset(image_);
    media_ = document_.AddAsset(document_.project->Media().CreateMediaAsset(u"/no/such/clip.mov"));
    document_.AddAsset(deep_);
    document_.Show(document_.solid, deep_);
    document_.Show(deep_, document_.inner);
    document_.Show(document_.inner);
    document_.Show(image_);
    mirror_ = Mirror(*document_.project);
    history_.emplace(document_.project);
    history_->AddObserver(observer_);
    Note();
    Look("the beginning");
}

EditScript::~EditScript() = default;

void EditScript::Run(int steps)
{
    for (int i = 0; i < steps; ++i) {
        switch (Below(9)) {
        case 0:
        case 1:
            Go(true);
            break;
        case 2:
            Go(false);
            break;
        case 3:
            Drag();
            break;
        default:
            OneEdit();
        }
        if (Chance(30))
            Forget();
    }
}

void EditScript::UndoAndRedoAll()
{
    while (history_->CanUndo())
        Go(true);
    if (TextNow() != states_.front().text)
        fault_("undoing all did not give the first text");
    while (history_->CanRedo())
        Go(false);
    if (TextNow() != states_.back().text)
        fault_("redoing all did not give the last text");
}

void EditScript::Go(bool back)
{
    const bool could = back ? history_->Undo() : history_->Redo();
    if (could)
        state_ += back ? -1 : 1;
    Look(back ? "an undo" : "a redo");
}

void EditScript::OneEdit()
{
    const std::size_t steps = history_->UndoCount();
    const bool drops = Chance(6);
    try {
        Edit edit(document_.project, u"Edit");
        SomeActions(edit);
        if (drops)
            throw Dropped();
        edit.Commit();
    } catch (const Dropped &) {
        Look("a dropped edit");
        return;
    }
    if (history_->UndoCount() != steps)
        Note();
    Look("an edit");
}

/// What is the case now comes behind the state that there was.
void EditScript::Note()
{
    states_.resize(states_.empty() ? 0 : state_ + 1);
    states_.push_back({TextNow(), FindingsNow()});
    state_ = states_.size() - 1;
}

/// Several edits of one gesture, which may come back to where it began.
void EditScript::Drag()
{
    const std::shared_ptr<AbstractSequenceTrack> track = AnyVideoTrack();
    history_->EndGesture();
    const std::size_t steps = history_->UndoCount();
    int shifted = 0;
    for (int i = 0; i < 3; ++i) {
        const std::size_t before = history_->UndoCount();
        Edit edit(document_.project, u"Drag", u"mouse");
        const int by = i == 2 && Chance(2) ? -shifted : static_cast<int>(Below(9));
        edit.ShiftFrom(track, 0, by);
        shifted += by;
        edit.Commit();
        const std::size_t now = history_->UndoCount();
        if (now > steps + 1)
            fault_("a gesture became two steps");
        // What joins its step makes that another one, or takes it back.
        if (before > steps)
            --state_;
        if (now > steps)
            Note();
        else if (now < before)
            states_.resize(state_ + 1);
        Look("a drag");
    }
    history_->EndGesture();
}

/// A history that is short of room lets the oldest steps go, then those that were undone first.
void EditScript::Forget()
{
    EditHistory::Limits limits = history_->GetLimits();
    Chance(2) ? limits.steps = Below(6) + 1 : limits.bytes = Below(20000);
    history_->SetLimits(limits);
    history_->SetLimits({});
    states_.resize(state_ + 1 + history_->RedoCount());
    states_.erase(states_.begin(),
                  states_.begin() + static_cast<std::ptrdiff_t>(state_ - history_->UndoCount()));
    state_ = history_->UndoCount();
    Look("forgetting");
}

/// Without the lists of instances, which forget what dies with a step that the history lets go of.
WideString EditScript::TextNow() const
{
    std::istringstream lines(ToUtf8(document_.project->Serialize()));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (line.find("<Instance ID=") == std::string::npos && line.find("Instances") == std::string::npos)
            text += line + '\n';
    return FromUtf8(text);
}

std::vector<std::string> EditScript::FindingsNow() const
{
    std::vector<std::string> findings;
    for (const Finding &finding : Validate(*document_.project))
        findings.push_back(finding.place + ": " + finding.what);
    return findings;
}

/// Inner edits are committed, dropped, or end by an exception that is caught.
void EditScript::SomeActions(Edit &edit)
{
    const unsigned int count = 1 + Below(4);
    for (unsigned int i = 0; i < count; ++i) {
        const Action action = Actions()[Below(static_cast<unsigned int>(Actions().size()))];
        if (!Chance(4)) {
            (this->*action)(edit);
            continue;
        }
        try {
            Edit inner(document_.project, u"Inner");
            (this->*action)(inner);
            if (Chance(3))
                throw Dropped();
            if (Chance(3))
                inner.Drop();
            else
                inner.Commit();
        } catch (const Dropped &) {
        }
    }
}

void EditScript::Look(const NarrowString &after)
{
    const WideString text = TextNow();
    if (const WideString &known = states_[state_].text; text != known) {
        const auto place = static_cast<std::size_t>(std::ranges::mismatch(text, known).in1 - text.begin());
        fault_("the text is another one after " + after + ": " +
               ToUtf8(text.substr(place - std::min<std::size_t>(place, 200), 300)) + "\n instead of\n" +
               ToUtf8(known.substr(place - std::min<std::size_t>(place, 200), 300)));
    }
    if (const std::string difference = mirror_.DifferenceTo(*document_.project); !difference.empty())
        fault_("after " + after + " the mirror was " + difference);
    LookAtAddresses(after);
    if (FindingsNow() != states_[state_].findings)
        fault_("other things are wrong after " + after);
}

void EditScript::LookAtAddresses(const NarrowString &after)
{
    for (const auto &[key, facts] : FactsOf(*document_.project)) {
        const auto known = addresses_.try_emplace(key, facts.address).first;
        if (known->second != facts.address)
            fault_("another object has the ID of " + key + " after " + after);
    }
}

const std::vector<EditScript::Action> &EditScript::Actions()
{
    static const std::vector<Action> actions{
        &EditScript::ChangeValue,      &EditScript::ChangeKeyFrames, &EditScript::ChangeOneKeyFrame,
        &EditScript::ChangeProperties, &EditScript::ChangeLayer,     &EditScript::ChangeLayerLists,
        &EditScript::AddLayer,         &EditScript::RemoveLayer,     &EditScript::MoveLayerInStack,
        &EditScript::ChangeText,       &EditScript::ChangeMask,      &EditScript::ChangeTracker,
        &EditScript::ChangeEffect,     &EditScript::ChangeAsset,     &EditScript::ChangeFolders,
        &EditScript::ChangeProject,    &EditScript::ChangeSequence,  &EditScript::ChangeTrack,
        &EditScript::ChangeObject,     &EditScript::AddObject,       &EditScript::MoveObject,
        &EditScript::MoveToOtherTrack, &EditScript::RemoveObject,    &EditScript::ShiftObjects,
        &EditScript::ChangeTransition, &EditScript::ChangePanels,    &EditScript::OperateOnLayers,
        &EditScript::OperateOnCurves,  &EditScript::OperateOnAssets, &EditScript::OperateOnSequence};
    return actions;
}

WideString EditScript::Word()
{
    return FromUtf8("word " + std::to_string(Below(1000)));
}

} // namespace marlet::test
