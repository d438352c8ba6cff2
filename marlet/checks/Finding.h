#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/Strings.h>

#include <vector>

namespace marlet::project
{

/// What is wrong, whatever it is with.
enum class FindingKind : int {
    DanglingID,     ///< an ID that leads nowhere, or to another object than the one that holds it
    RepeatedID,     ///< of several objects of a kind with one ID only the first is found
    NullID,         ///< an object that nothing can name
    Twice,          ///< one object in two places
    ParentCircle,   ///< layers whose parents run in a circle, or lead into one
    Nesting,        ///< a composition or a folder inside of itself
    MissingFile,    ///< media and images that cannot be used
    OfflineUse,     ///< a layer or object that shows such a file
    MissingPlugin,  ///< an effect or transition whose plug-in is not there
    MissingPoint,   ///< a tracker without one of its points
    UnexpectedType, ///< a value of another alternative than the property's class gives it
    MixedTypes,     ///< key frames of several alternatives, between which there are no values
    NoNumber,       ///< NaN or an infinity
    NotAnimatable,  ///< key frames of a property that is meant to have none
    SameTime,       ///< key frames at one time
    Handle,         ///< a handle that reaches beyond the piece of the curve that it shapes
    Expression,     ///< an expression that nothing evaluates
    Frames,        ///< spans that end before they start, objects in one another's way, formats without frames
    BeyondAsset,   ///< an object that shows frames that its asset does not have
    OneSidedLink,  ///< a partner that has another partner
    Transition,    ///< a transition that is not that of both objects
    Folder,        ///< assets in no folder or in several, and sides of a folder that disagree
    Instances,     ///< a list of instances that is not that of the uses
    Outline,       ///< a mask with too few points
    Text,          ///< a text that is empty, or partly without a format
    NoDestination, ///< a tracker whose motion no layer takes over
};

/// "dangling ID", "parent circle". Does not change from version to version.
MARLET_EXPORT const char *FindingKindName(FindingKind kind);

/// Something about a project at rest that a person should look at. Plain data: what it is about may be gone.
struct Finding {
    using Severity = LoadEntry::Severity;

    /// A note of what may well be meant, a warning of what is hardly meant, or an error where the library
    /// cannot answer: a matrix, a value. Never a loss.
    Severity severity = Severity::Note;
    FindingKind kind = {};
    /// Of what it is, in UTF-8, from the outside in where it lies deeper than a layer or an object of the
    /// timeline: layer "Moon" of composition "Orbit", effect "Blur", property radius.
    NarrowString place;
    NarrowString what; ///< a sentence in UTF-8, without the full stop
    /// Of the object, and of those around it, from the inside out.
    std::vector<kytl::KyID> ids;
    kytl::KyID named;    ///< the ID that leads nowhere or elsewhere, for DanglingID
    NarrowString remedy; ///< what Repair does about it, such as "clears the parent layer"; empty for nothing
    NarrowString property = {}; ///< the name of the one that it is about, if it is about one
};

} // namespace marlet::project
