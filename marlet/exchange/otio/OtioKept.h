#pragma once

#include <marlet/exchange/JsonText.h>
#include <marlet/foundation/KyID.h>

#include <initializer_list>
#include <map>

namespace marlet::project
{

class Project;

/// What the objects of a text had beside what a project can hold, such as the metadata of other programs:
/// for the sequence, its tracks, objects and transitions by their IDs. A project keeps it as one text among
/// its metadata, so that it is there when the project is written to such a text again.
class OtioKept
{
public:
    /// Nothing yet.
    OtioKept() = default;
    /// What a project keeps.
    explicit OtioKept(const Project &project);
    /// The text itself; empty if the project keeps nothing.
    static NarrowString TextIn(const Project &project);

    /// Null for nothing.
    const Json &Of(const kytl::KyID &id, const char *what) const;
    void Keep(const kytl::KyID &id, const char *what, Json json);
    /// In place of what the project keeps.
    void Store(Project &project) const;

private:
    std::map<NarrowString, Json> items_;
};

// What is kept of the object itself, of the media of a clip, and of what stands between clips.

inline constexpr char kKeptItem[] = "item";
inline constexpr char kKeptStack[] = "stack";
inline constexpr char kKeptMedia[] = "media";
inline constexpr char kKeptGaps[] = "gaps";
inline constexpr char kKeptTransition[] = "transition";

/// What an object has beside the members of these names, what is empty, and this library's own metadata.
Json ForeignPartOf(const Json &object, std::initializer_list<const char *> known);
/// Adds what was kept to an object that is written; lists are joined, other members that are there stay.
void AddForeignPart(Json &object, const Json &kept);

} // namespace marlet::project
