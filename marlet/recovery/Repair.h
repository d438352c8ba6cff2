#pragma once

#include <marlet/recovery/RecoveredTree.h>
#include <marlet/recovery/TextFaults.h>

#include <optional>
#include <string>

namespace marlet::project
{

class KnownElements;

/// Why a text does not load.
struct LoadFailure {
    std::optional<std::size_t> place; ///< in the text, of the element at fault, if it is known
    std::string words;
    std::string missingChild;     ///< the tag, if that is it
    std::string missingAttribute; ///< the name, if that is it
};

/// Changes elements of a tree so that they load.
class Repair
{
public:
    Repair(RecoveredTree &tree, const KnownElements &known) : tree_(tree), known_(known) {}

    /// Puts in what is missing, or drops the element at fault with what cannot be without it; the root stays.
    /// Each call makes the tree smaller or completer, so that they come to an end.
    /// @param written the element that the text was written from
    /// @return false if nothing is left that could be changed
    bool Mend(RecoveredElement &written, const LoadFailure &failure);

    void Tell(LoadEntry::Severity severity, const RecoveredElement &element, std::string what);
    const TextFaults &Faults() const { return faults_; }

private:
    RecoveredElement *OwnerOf(RecoveredElement &from, const std::string &tag) const;
    bool PutIn(RecoveredElement &owner, const std::string &tag);
    bool PutInAttribute(RecoveredElement &element, const std::string &name);
    bool Drop(RecoveredElement &element, const std::string &words);
    static std::string RootFolder(const RecoveredElement &assetList);
    std::string IdFor(const RecoveredElement &owner, std::string_view tag) const;

    RecoveredTree &tree_;
    const KnownElements &known_;
    TextFaults faults_;
};

} // namespace marlet::project
