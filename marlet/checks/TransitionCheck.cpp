#include <marlet/checks/TransitionCheck.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/Transition.h>
#include <marlet/plugins/AbstractPlugin.h>

namespace marlet::project
{

namespace
{

using ObjectPointer = std::shared_ptr<AbstractSequenceObject>;
using TransitionPointer = std::shared_ptr<Transition>;

/// A transition as one of the two objects at its ends sees it.
struct End {
    const TransitionPointer &transition;
    bool isIncoming;

    const kytl::KyID &Here() const { return isIncoming ? transition->ToObject() : transition->FromObject(); }
    const kytl::KyID &Other() const { return isIncoming ? transition->FromObject() : transition->ToObject(); }
    NarrowString Name() const
    {
        return NarrowString("the ") + (isIncoming ? "incoming" : "outgoing") + " transition " +
               TransitionName(*transition);
    }
};

void NameHere(Transition &transition, bool isIncoming, const kytl::KyID &object)
{
    isIncoming ? transition.SetToObject(object) : transition.SetFromObject(object);
}

void ClearOther(Transition &transition, bool isIncoming)
{
    isIncoming ? transition.ClearFromObject() : transition.ClearToObject();
}

class TransitionChecker
{
public:
    TransitionChecker(CheckScope &scope, const Place &place, const ObjectPointer &object,
                      const ObjectMap &objects)
        : findings_(scope.findings), place_(place), object_(object), objects_(objects)
    {
    }

    void Check(const End &end)
    {
        if (end.Here() != object_->ID())
            CheckHere(end);
        if (end.transition->Length() < 1)
            findings_.Warn(FindingKind::Transition, place_,
                           end.Name() + " has " + std::to_string(end.transition->Length()) + " frames");
        if (!end.Other().IsNull())
            CheckOther(end);
    }

private:
    /// A transition that names nobody on this side cannot be meant for anybody else.
    void CheckHere(const End &end)
    {
        const auto named = objects_.find(end.Here());
        Remedy remedy;
        if (named == objects_.end())
            remedy = {"names the object in it",
                      [transition = end.transition, isIncoming = end.isIncoming,
                       id = object_->ID()](Project &) { NameHere(*transition, isIncoming, id); }};
        const NarrowString other = named == objects_.end() ? end.Here().ToNarrowString() + " (not there)"
                                                           : "\"" + ToUtf8(named->second->Name()) + "\"";
        findings_.Warn(FindingKind::Transition, place_, end.Name() + " names " + other + " in its place",
                       std::move(remedy));
    }

    void CheckOther(const End &end)
    {
        const auto found = objects_.find(end.Other());
        if (found == objects_.end()) {
            findings_.AddDangling(
                Finding::Severity::Warning, place_, end.Name() + ": the object", end.Other(),
                "does not exist",
                {"makes it one-sided", [transition = end.transition, isIncoming = end.isIncoming](Project &) {
                     ClearOther(*transition, isIncoming);
                 }});
            return;
        }
        const AbstractSequenceObject &other = *found->second;
        const TransitionPointer &back =
            end.isIncoming ? other.OutgoingTransition() : other.IncomingTransition();
        const bool meet = end.isIncoming ? other.EndFrame() == object_->StartFrame()
                                         : other.StartFrame() == object_->EndFrame();
        const NarrowString name = "\"" + ToUtf8(other.Name()) + "\"";
        if (back != end.transition)
            findings_.Warn(FindingKind::Transition, place_,
                           end.Name() + " is not that of " + name + ", which it names");
        else if (other.ParentTrackID() != object_->ParentTrackID() || !meet)
            findings_.Warn(FindingKind::Transition, place_,
                           end.Name() + " is shared with " + name + ", which does not meet it");
    }

    Findings &findings_;
    const Place &place_;
    const ObjectPointer &object_;
    const ObjectMap &objects_;
};

} // namespace

void CheckTransitions(CheckScope &scope, const Place &place, const ObjectPointer &object,
                      const ObjectMap &objects)
{
    TransitionChecker checker(scope, place, object, objects);
    if (object->IncomingTransition())
        checker.Check({object->IncomingTransition(), true});
    if (object->OutgoingTransition())
        checker.Check({object->OutgoingTransition(), false});
}

NarrowString TransitionName(const Transition &transition)
{
    const auto plugin = transition.Plugin();
    return plugin ? ToUtf8(plugin->Name()) : transition.PluginID().ToNarrowString();
}

} // namespace marlet::project
