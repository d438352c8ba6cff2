#pragma once

#include <marlet/recovery/RecoveredTree.h>
#include <marlet/recovery/TagScan.h>
#include <marlet/recovery/TextFaults.h>

#include <string>
#include <vector>

namespace marlet::project
{

class KnownElements;

/// Reads a text whose tags may be missing, wrong or broken, and finds out which elements it had. Where tags
/// do not fit, the next tags and what is known of elements decide whose tag is at fault.
class DamagedText
{
public:
    /// Fills the tree from its text. Without known elements only the tags count.
    DamagedText(RecoveredTree &tree, const KnownElements *known);

    void Read();
    /// Whether the start of a project or of a part of one was read, with its version.
    bool HasProject() const { return hasProject_; }
    const TextFaults &Faults() const { return faults_; }

private:
    using Severity = LoadEntry::Severity;

    struct Open {
        RecoveredElement *element;
        std::size_t content; ///< where it begins
        bool hasSections = false;
    };

    static constexpr std::ptrdiff_t kNone = -1;

    void TakeText(const Tag &next);
    void TakeSection(const Tag &section);
    void TakeRest();
    void PassOver(const Tag &start);
    bool IsCleanSection(const Tag &section) const;
    bool IsBrokenEnd(const Tag &tag);
    void TakeStart(const Tag &tag);
    void TakeAttributes(const Tag &tag, RecoveredElement &element);
    bool Takes(const RecoveredElement &element, const Tag &tag) const;
    RecoveredElement *Reopen(RecoveredElement &around, const Tag &tag);
    void AddEarlyEnd(const RecoveredElement &element);
    bool GoesOn();
    void TakeEnd(const Tag &tag);
    void TakeBroken(const Tag &tag);
    void TakeStrayEnd(const Tag &tag, std::ptrdiff_t next);
    bool WrapOrphans(const Tag &tag);
    void CloseMissing(const Tag &tag);
    void CloseDownTo(std::ptrdiff_t index, std::size_t place);
    void CloseTop(RecoveredElement::End ending, std::size_t contentEnd, std::size_t behind);
    void EndText(bool endsInTag);
    std::ptrdiff_t IndexOf(std::string_view name) const;
    std::ptrdiff_t NextClosed(std::size_t from);
    Open &Top() { return open_.back(); }
    std::string_view Text() const { return tree_.Text(); }
    void Add(Severity severity, std::size_t place, const RecoveredElement *element, std::string what);

    RecoveredTree &tree_;
    const KnownElements *known_;
    std::vector<Open> open_;
    TextFaults faults_;
    std::size_t at_ = 0; ///< what is read next
    SectionEnds ends_;
    bool isRootSeen_ = false;
    bool hasProject_ = false;
    std::size_t lookAhead_;                          ///< how many bytes may be looked at ahead
    const RecoveredElement *closedBefore_ = nullptr; ///< the element that NextClosed was asked for last
    std::ptrdiff_t closedNext_ = kNone;
};

} // namespace marlet::project
