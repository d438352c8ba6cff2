#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlet::project
{

/// Something that a load has to tell.
struct LoadEntry {
    enum class Severity {
        Note,    ///< nothing is wrong
        Warning, ///< something was guessed or put in place of another, or is missing beside the document
        Loss,    ///< something in the text is not in the document; unless it is kept, the next save drops it
        Error    ///< the load ended there
    };
    static constexpr std::size_t kSeverities = 4;

    Severity severity = Severity::Note;
    NarrowString what; ///< a sentence in UTF-8, without the full stop
    /// The element and those around it from the root down, with their names in quotes, or their places among
    /// elements of their tag from 1 on, where there is one: Project/AssetList/Assets/CompositionAsset
    /// "Opening"/Layers/TextLayer "Title"/LayerBase. Empty if there is no element.
    NarrowString path = {};
    // Where it stands in the text, or 0 if it stands nowhere.
    int line = 0;             ///< from 1 on
    int column = 0;           ///< in characters, from 1 on
    std::uint64_t offset = 0; ///< in bytes of the text in UTF-8, from 0 on
    /// Those of the objects that it is about.
    std::vector<kytl::KyID> ids = {};
    bool isKept = false;    ///< a loss that is written again as it came
    bool isDropped = false; ///< a note of what the next save leaves out, such as a comment
};

/// A plug-in that a project uses and the host does not have, or only in an older version.
struct UnresolvedPlugin {
    kytl::KyID id;
    WideString name;
    NarrowString version; ///< of the text: major, minor, revision and build, with points between them
    bool isOlder = false; ///< the host has it, in an older version
    int uses = 0;
};

/// What a load found on its way: all that it passed over, dropped, replaced or guessed, and the place where
/// it failed. Belongs to one thread at a time.
class MARLET_EXPORT LoadReport
{
public:
    /// What goes beyond is counted only.
    static constexpr std::size_t kMostEntries = 10'000;

    /// In the order of the text; what stands nowhere comes last.
    const std::vector<LoadEntry> &Entries() const { return entries_; }
    /// How many there were of a severity, with those that are not among the entries.
    std::size_t Count(LoadEntry::Severity severity) const { return counts_[static_cast<int>(severity)]; }
    std::size_t Count() const;
    /// How much of the text the next save drops: losses that are not kept, comments and the like.
    std::size_t CountDropped() const { return dropped_; }
    /// The first entry that is a loss or an error, or null.
    const LoadEntry *FirstLoss() const;
    /// What ended the load, or null.
    const LoadEntry *FirstError() const;
    /// Each once, in the order in which the text uses them.
    const std::vector<UnresolvedPlugin> &UnresolvedPlugins() const { return plugins_; }

    void Add(LoadEntry entry);
    void AddUse(const UnresolvedPlugin &plugin);
    /// Puts the entries in order.
    void Sort();
    void Clear();

private:
    friend class LoadContext;

    const LoadEntry *First(LoadEntry::Severity least) const;

    std::vector<LoadEntry> entries_;
    std::array<std::size_t, LoadEntry::kSeverities> counts_{};
    std::size_t dropped_ = 0;
    std::vector<UnresolvedPlugin> plugins_;
};

/// "note", "warning", "loss" or "error".
MARLET_EXPORT const char *SeverityName(LoadEntry::Severity severity);

} // namespace marlet::project
