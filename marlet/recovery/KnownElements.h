#pragma once

#include <marlet/recovery/RecoveredTree.h>

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace marlet::project
{

/// What the elements of a project are like: which of them stand in which, and what a new one has.
class KnownElements
{
public:
    /// Made once, by the classes of the library themselves.
    static const KnownElements &Get();

    /// Whether a tag is that of an object: a project, an asset, a layer, a track and so on.
    static bool IsObject(std::string_view tag);
    /// Whether it is known what stands in an element.
    bool IsKnown(const RecoveredElement &element) const;
    /// Whether other elements stand in it, or could, in place of a value.
    bool IsContainer(const RecoveredElement &element) const;
    bool HasChild(const RecoveredElement &element, std::string_view tag) const;

    /// Of a new object of the same kind, what stands where the element stands in its own; null if that is not
    /// known.
    const RecoveredElement *ModelOf(const RecoveredElement &element) const;
    std::string_view ModelText(const RecoveredElement &model) const;

    /// What stands before and behind a layer or an object in a project that has nothing else.
    struct Surroundings {
        std::string before;
        std::string behind;
    };
    /// Null for what is neither.
    const Surroundings *Around(std::string_view itemTag) const;

private:
    KnownElements();
    void Learn(const RecoveredElement &element);
    Surroundings MakeSurroundings(const RecoveredElement &list) const;
    std::string_view KindOf(const RecoveredElement &element) const;

    std::map<std::string_view, std::set<std::string_view>> children_;
    RecoveredTree model_;
    std::map<std::string_view, const RecoveredElement *> models_; ///< by the tags of objects
    std::map<std::string_view, Surroundings> surroundings_;       ///< by the tags of layers and objects
};

/// A project with one object of each kind, as its text.
std::string ModelProjectText();

} // namespace marlet::project
