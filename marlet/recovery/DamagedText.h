#pragma once

#include <marlet/foundation/LoadReport.h>
#include <marlet/recovery/RecoveredTree.h>
#include <marlet/recovery/TagScan.h>

#include <string>
#include <vector>

namespace marlet::project
{

class KnownElements;

/// Something that is wrong with a text.
struct TextFault {
    LoadEntry::Severity severity;
    std::size_t place = 0; ///< in bytes
    const RecoveredElement *element = nullptr;
    std::string what;
};

/// Reads a text whose tags may be missing, wrong or broken, and finds out which elements it had. Where tags
/// do not fit, the next tags and what is known of elements decide whose tag is at fault.
class DamagedText
{
public:
    /// Fills the tree from its text. Without known elements only the tags count.
    DamagedText(RecoveredTree &tree, const KnownElements *known);

    void Read();
    const std::vector<TextFault> &Faults() const { return faults_; }

private:
    using Severity = LoadEntry::Severity;

    struct Open {
        RecoveredElement *element;
        std::size_t content; ///< where it begins
        bool hasSections = false;
    };

    static constexpr std::ptrdiff_t kNone = -1;

    void TakeText(const Tag &next);
    void TakeStart(const Tag &tag);
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
    std::vector<TextFault> faults_;
    std::size_t at_ = 0; ///< what is read next
    bool isRootSeen_ = false;
    std::size_t lookAhead_;                          ///< how many bytes may be looked at ahead
    const RecoveredElement *closedBefore_ = nullptr; ///< the element that NextClosed was asked for last
    std::ptrdiff_t closedNext_ = kNone;
};

} // namespace marlet::project
