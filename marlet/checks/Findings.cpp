#include <marlet/checks/Findings.h>

namespace marlet::project
{

NarrowString Place::OwnText() const
{
    if (name_)
        return NarrowString(kind_) + " \"" + ToUtf8(*name_) + "\"";
    return kind_ ? NarrowString(kind_) + " " + *plainName_ : *plainName_;
}

NarrowString Place::Text() const
{
    if (!around_)
        return OwnText();
    return join_ == Join::Of ? OwnText() + " of " + around_->Text() : around_->Text() + ", " + OwnText();
}

std::vector<kytl::KyID> Place::IDs() const
{
    std::vector<kytl::KyID> ids;
    for (const Place *place = this; place; place = place->around_)
        if (place->id_ && !place->id_->IsNull())
            ids.push_back(*place->id_);
    return ids;
}

NarrowString Place::Property() const
{
    return kind_ == kProperty ? *plainName_ : NarrowString();
}

void Findings::Add(Finding::Severity severity, FindingKind kind, const Place &place, NarrowString what,
                   Remedy remedy)
{
    remedies_.push_back(std::move(remedy.apply));
    findings_.push_back({severity,
                         kind,
                         place.Text(),
                         std::move(what),
                         place.IDs(),
                         {},
                         std::move(remedy.what),
                         place.Property()});
}

void Findings::Note(FindingKind kind, const Place &place, NarrowString what, Remedy remedy)
{
    Add(Finding::Severity::Note, kind, place, std::move(what), std::move(remedy));
}

void Findings::Warn(FindingKind kind, const Place &place, NarrowString what, Remedy remedy)
{
    Add(Finding::Severity::Warning, kind, place, std::move(what), std::move(remedy));
}

void Findings::Error(FindingKind kind, const Place &place, NarrowString what, Remedy remedy)
{
    Add(Finding::Severity::Error, kind, place, std::move(what), std::move(remedy));
}

void Findings::AddDangling(Finding::Severity severity, const Place &place, const NarrowString &role,
                           const kytl::KyID &named, const char *fault, Remedy remedy)
{
    if (kept_ && kept_->contains(named))
        return;
    Add(severity, FindingKind::DanglingID, place, role + " " + named.ToNarrowString() + " " + fault,
        std::move(remedy));
    findings_.back().named = named;
}

void Findings::CheckID(const Place &place, const kytl::KyID &id, IDSet &seen, Remedy renewal)
{
    if (id.IsNull())
        Warn(FindingKind::NullID, place, "it has no ID by which anything could name it");
    else if (!seen.insert(id).second)
        Warn(FindingKind::RepeatedID, place, "another one before it has its ID " + id.ToNarrowString(),
             std::move(renewal));
}

void Findings::CheckHolder(const Place &place, const kytl::KyID &named, const kytl::KyID &holder,
                           std::function<void(Project &)> nameIt)
{
    if (named.IsNull() || named == holder)
        return;
    AddDangling(Finding::Severity::Warning, place, "the holder", named, "that it names is another one",
                nameIt ? Remedy{"names its holder", std::move(nameIt)} : Remedy{});
}

NarrowString Counted(std::size_t count, const char *noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace marlet::project
