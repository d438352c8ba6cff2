#pragma once

#include <marlet/checks/Finding.h>

#include <functional>
#include <unordered_set>
#include <vector>

namespace marlet::project
{

class Project;

/// Where a check is, as a chain from the inside out. The text is worked out for findings alone; names must
/// outlive the place, and so must the one around it.
class Place
{
public:
    enum class Join {
        In, ///< the place around first: layer "Moon", effect "Blur"
        Of  ///< the place around last: layer "Moon" of composition "Orbit"
    };

    Place(const char *kind, const WideString &name, const kytl::KyID &id, const Place *around = nullptr,
          Join join = Join::In)
        : kind_(kind), name_(&name), id_(&id), around_(around), join_(join)
    {
    }
    static constexpr char kProperty[] = "property";

    /// One whose name needs no quotation marks. The kind and the ID may be null.
    Place(const char *kind, const NarrowString &name, const Place *around = nullptr,
          const kytl::KyID *id = nullptr)
        : kind_(kind), plainName_(&name), id_(id), around_(around)
    {
    }

    NarrowString Text() const;
    std::vector<kytl::KyID> IDs() const;
    /// Its name, if the place is one; else empty.
    NarrowString Property() const;

private:
    NarrowString OwnText() const;

    const char *kind_;
    const WideString *name_ = nullptr;
    const NarrowString *plainName_ = nullptr;
    const kytl::KyID *id_ = nullptr;
    const Place *around_;
    Join join_ = Join::In;
};

/// What can be done about a finding. The operation may rely on the objects that it holds on to; lists may
/// have changed since.
struct Remedy {
    NarrowString what;
    std::function<void(Project &)> apply;
};

/// What the checks have found so far.
class Findings
{
public:
    using IDSet = std::unordered_set<kytl::KyID>;

    /// With the IDs of objects that are there without being known, which must outlive it.
    explicit Findings(const IDSet *kept = nullptr) : kept_(kept) {}

    void Add(Finding::Severity severity, FindingKind kind, const Place &place, NarrowString what,
             Remedy remedy = {});
    void Note(FindingKind kind, const Place &place, NarrowString what, Remedy remedy = {});
    void Warn(FindingKind kind, const Place &place, NarrowString what, Remedy remedy = {});
    void Error(FindingKind kind, const Place &place, NarrowString what, Remedy remedy = {});
    /// A reference that dangles, unless it leads to what is kept: the role, such as "the parent layer", the
    /// ID, and what is wrong with that.
    void AddDangling(Finding::Severity severity, const Place &place, const NarrowString &role,
                     const kytl::KyID &named, const char *fault, Remedy remedy = {});

    /// Looks for objects that nothing can name, or that share an ID with one that was there before.
    void CheckID(const Place &place, const kytl::KyID &id, IDSet &seen, Remedy renewal = {});
    /// What lies in a holder names it, or none. Without an operation there is no remedy.
    void CheckHolder(const Place &place, const kytl::KyID &named, const kytl::KyID &holder,
                     std::function<void(Project &)> nameIt = {});

    const std::vector<Finding> &All() const { return findings_; }
    std::vector<Finding> Take() { return std::move(findings_); }
    void Apply(std::size_t index, Project &project) const { remedies_[index](project); }

private:
    const IDSet *kept_;
    std::vector<Finding> findings_;
    std::vector<std::function<void(Project &)>> remedies_;
};

/// "1 key frame", "2 key frames"
NarrowString Counted(std::size_t count, const char *noun);

} // namespace marlet::project
