#pragma once

#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/xml/ElementPath.h>
#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <cstdint>
#include <exception>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace marlet::project
{

using KeptIDs = std::unordered_set<kytl::KyID>;

/// What is said behind the name of an attribute that is not there.
constexpr char kIsMissing[] = " is missing; ";

/// What a load remembers of its text while it goes on: which elements and attributes were looked for, what
/// is to be told, and whether what nobody knows is kept. There is one at most in each thread, which the
/// readers of all classes find by Current(); without one they do nothing more than read.
class LoadContext
{
public:
    using Severity = LoadEntry::Severity;

    /// The text must outlive it. The report may be null.
    LoadContext(std::u16string_view text, LoadReport *report, bool keepsUnknown);
    LoadContext(const LoadContext &) = delete;
    LoadContext &operator=(const LoadContext &) = delete;
    ~LoadContext();

    /// Null if this thread does not load, or nobody wants to know.
    static LoadContext *Current() { return current_; }
    bool KeepsUnknown() const { return keepsUnknown_; }

    /// Takes over what is wrong with the text as such, before it is parsed.
    void TakeScan(const XmlScan &scan);
    /// Follows the reading of a tree that was parsed in place, in a buffer that outlives the context.
    void Follow(const NarrowString &buffer);

    // Marks. What is not in the tree that is followed is passed over.

    void MarkKnown(const XmlCursor &element);
    void MarkUnknown(const XmlCursor &element);
    /// All below an element, too: whoever has taken it knows better.
    void MarkAllKnown(const XmlCursor &element);
    /// Takes back what is not in another element, which is what a host writes for this one.
    void MarkUnknownBut(const XmlCursor &element, const XmlCursor &written);
    void MarkAttribute(const char *name);
    void MarkAttributes(const XmlCursor &element); ///< all of them
    void MarkText(const XmlCursor &element);
    /// The same for an element that is written as it came.
    void MarkWhole(const XmlCursor &element);
    /// What nobody knows below has found an owner.
    void MarkTaken(const XmlCursor &element);
    /// Leaves an element that refers to what is kept to be kept with it, and says nothing.
    void KeepReference(const XmlCursor &element);
    bool IsKnown(const XmlCursor &element) const;
    bool IsAttributeKnown(const char *name) const;
    bool HasUnknownAttribute(const XmlCursor &element) const;
    bool IsTextKnown(const XmlCursor &element) const;
    bool IsTaken(const XmlCursor &element) const;

    /// The bytes of an element, or of an attribute by its name, as they stand in the text.
    std::string_view SourceOf(const XmlCursor &element);
    std::string_view SourceOfAttribute(const char *name);

    /// Takes over the IDs of all objects in an element that is kept.
    void TakeIDs(const XmlCursor &kept);
    /// Those of the objects that are kept so far without being known.
    const KeptIDs &IDsKept() const { return keptIDs_; }

    /// A value that names a layer, which may not have been read yet.
    void AddLayerNamed(const XmlCursor &value) { layersNamed_.push_back(value); }
    const std::vector<XmlCursor> &LayersNamed() const { return layersNamed_; }

    /// Values of types that nobody knows, which were read as others.
    void CountLostValue() { ++lostValues_; }
    std::size_t LostValues() const { return lostValues_; }

    /// Tells of an element, with the ID of the object that it is of.
    void Add(Severity severity, const XmlCursor &element, NarrowString what,
             std::vector<kytl::KyID> ids = {});
    /// Tells of what nobody knows, and what becomes of it.
    void AddUnknown(const XmlCursor &element, NarrowString what);
    void AddUse(const UnresolvedPlugin &plugin);
    /// Where something fails, if it is known better than by the element that was looked at last.
    void FailAt(const XmlCursor &element) { failed_ = element; }

    /// Tells of all that was not looked for, once everything was read.
    void TellOfUnknown(const XmlCursor &root);
    /// Tells of the exception that ends the load.
    void AddError(const std::exception &error);
    /// Works out lines and columns. The report is whole then.
    void Finish();

private:
    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

    std::size_t OffsetOf(const XmlCursor &element) const;
    std::size_t OffsetOf(const char *inBuffer) const;
    std::size_t TagOf(const XmlCursor &element) const;
    bool Has(std::size_t bit) const;
    void Set(std::size_t bit, bool value);
    const NarrowString &Source();
    void AddAt(std::size_t offset, const XmlCursor &element, LoadEntry entry);
    void AddUnknownBelow(const XmlCursor &element);
    void AddSections(const XmlCursor &root);
    void AddSectionsOf(const XmlCursor &element);
    void AddDeclaration();

    static inline constinit thread_local LoadContext *current_ = nullptr;

    LoadContext *previous_ = current_;
    std::u16string_view text_;
    LoadReport *report_;
    bool keepsUnknown_;
    const char *buffer_ = nullptr;
    std::size_t size_ = 0;
    std::vector<bool> marks_; ///< by places in the buffer that belong to one element or attribute each
    std::optional<NarrowString> source_;
    std::optional<XmlFault> fault_;
    bool hasSections_ = false;
    std::size_t lostValues_ = 0;
    /// Comments and instructions by the element that they stand in: the first, and how many there are.
    std::unordered_map<std::size_t, std::pair<std::size_t, std::size_t>> sections_;
    std::unordered_set<std::size_t> whole_;      ///< elements that are written as they came
    std::unordered_set<std::size_t> references_; ///< that are kept with what they refer to
    KeptIDs keptIDs_;
    std::vector<XmlCursor> layersNamed_;
    ElementPaths paths_;
    XmlCursor last_; ///< that was looked at
    XmlCursor failed_;
};

/// Takes an element with all below it for known, since it only repeats what stands elsewhere.
void PassOver(const XmlCursor &element);

/// Takes back that an element is known, for whoever has looked for it by its tag and cannot read it.
void Disown(const XmlCursor &element);

/// Whether the load that goes on keeps an object that has the ID, without knowing it.
bool IsKept(const kytl::KyID &id);

/// Tells of a number that is read and kept, but is none of those that stand for something.
void TellOfChoice(const XmlCursor &element, const char *field, int number);

/// Tells the load that goes on, if one does and wants to know.
void TellLoad(LoadEntry::Severity severity, const XmlCursor &element, NarrowString what,
              std::vector<kytl::KyID> ids = {});

} // namespace marlet::project
