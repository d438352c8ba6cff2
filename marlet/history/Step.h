#pragma once

#include <marlet/history/EditedPart.h>

#include <memory>
#include <unordered_set>
#include <vector>

namespace marlet::project
{

/// Parts in the order of their beginning: what one edit keeps, and what a history keeps of it.
class Step
{
public:
    /// Whether it was of a place that has no part yet.
    bool Add(std::unique_ptr<EditedPart> part);
    /// Whether both have a part of one place, or one of them has none but places on tracks.
    bool Meets(const Step &other) const;
    const std::vector<std::unique_ptr<EditedPart>> &Parts() const { return parts_; }
    std::vector<std::unique_ptr<EditedPart>> TakeParts();

    /// Whether anything differs. A part in which nothing does may still be needed beside others: a key frame
    /// that came and went lies under what was kept of its property in between.
    /// To know of shifts that came back to where they began, it may undo and redo itself.
    bool IsChange();
    /// What differs in all of them.
    void Describe(ChangeList &changes) const;
    /// Puts back what was there before. If a part throws, those that were put back are done again.
    void Undo();
    void Redo();
    std::size_t Size() const;

private:
    bool MovesAnything();

    struct PlaceHash {
        std::size_t operator()(const EditedPart::Place &place) const
        {
            const std::size_t address = std::hash<const void *>()(place.object);
            return (address * 31 + std::hash<const void *>()(place.kind)) * 31 +
                   std::hash<NarrowString>()(place.name);
        }
    };

    std::vector<std::unique_ptr<EditedPart>> parts_;
    std::unordered_set<EditedPart::Place, PlaceHash> places_;
};

} // namespace marlet::project
