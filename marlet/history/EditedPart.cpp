#include <marlet/history/EditedPart.h>

#include <unordered_map>

namespace marlet::project
{

struct ChangeList::Data {
    std::vector<ObjectChange> changes;
    std::vector<FormerFrames> former;
    /// IDs are of their kind's own.
    std::unordered_map<kytl::KyID, std::vector<std::size_t>> byID;
};

ChangeList::ChangeList() : data_(std::make_unique<Data>())
{
}

ChangeList::~ChangeList() = default;

ObjectChange &ChangeList::Of(ObjectKind kind, const kytl::KyID &id)
{
    std::vector<std::size_t> &known = data_->byID[id];
    for (const std::size_t index : known)
        if (data_->changes[index].kind == kind)
            return data_->changes[index];
    known.push_back(data_->changes.size());
    ObjectChange &change = data_->changes.emplace_back();
    change.kind = kind;
    change.id = id;
    return change;
}

void ChangeList::AddFormerFrames(const kytl::KyID &timeline, const kytl::KyID &object, int first, int end)
{
    data_->former.push_back({{timeline, first, end}, object});
}

const std::vector<ObjectChange> &ChangeList::Changes() const
{
    return data_->changes;
}

const std::vector<ChangeList::FormerFrames> &ChangeList::Former() const
{
    return data_->former;
}

bool ChangeList::IsEmpty() const
{
    return data_->changes.empty();
}

EditedPart::~EditedPart() = default;

} // namespace marlet::project
