#include <marlet/recovery/DamagedText.h>

#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/recovery/CleanText.h>
#include <marlet/recovery/KnownElements.h>
#include <marlet/recovery/TagScan.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

/// More than a document can have; deeper elements are not taken.
constexpr std::size_t kDeepest = 900;

constexpr char kStrayEnd[] = "an end tag that belongs to no element is passed over";
constexpr char kCharactersLeftOut[] = "characters that XML cannot hold are left out of a text";
constexpr char kTextDropped[] = "a text between elements is dropped";

} // namespace

DamagedText::DamagedText(RecoveredTree &tree, const KnownElements *known)
    : tree_(tree), known_(known), open_{{&tree.Root(), 0}}, lookAhead_(64 * tree.Text().size())
{
}

void DamagedText::Add(Severity severity, std::size_t place, const RecoveredElement *element, std::string what)
{
    faults_.Add({severity, place, element, std::move(what)});
}

void DamagedText::Read()
{
    while (!open_.empty() || GoesOn()) {
        const Tag tag = NextTag(Text(), at_, ends_);
        TakeText(tag);
        switch (tag.kind) {
        case Tag::Kind::Start:
        case Tag::Kind::Empty:
            TakeStart(tag);
            break;
        case Tag::Kind::End:
            TakeEnd(tag);
            break;
        case Tag::Kind::Broken:
            TakeBroken(tag);
            break;
        case Tag::Kind::Section:
            TakeSection(tag);
            break;
        case Tag::Kind::None:
            EndText(false);
            return;
        }
        at_ = std::max(at_, tag.behind);
        if (tag.isCut && !open_.empty()) {
            EndText(true);
            return;
        }
    }
    TakeRest();
}

/// Behind the end of the project comments and instructions may stand.
void DamagedText::TakeRest()
{
    for (Tag tag = NextTag(Text(), at_, ends_); at_ < Text().size(); tag = NextTag(Text(), at_, ends_)) {
        const std::string_view between = Text().substr(at_, tag.at - at_);
        const bool isEnd = tag.kind == Tag::Kind::End;
        const bool mayStay =
            tag.kind == Tag::Kind::None || isEnd || (tag.kind == Tag::Kind::Section && IsCleanSection(tag));
        if (isEnd)
            Add(Severity::Warning, tag.at, nullptr, kStrayEnd);
        if (!mayStay || !IsBlank(between)) {
            const std::size_t place = IsBlank(between) ? tag.at : Text().find(Trimmed(between), at_);
            Add(Severity::Loss, place, nullptr, "what stands behind the end of the project is dropped");
            return;
        }
        at_ = tag.behind;
    }
}

void DamagedText::TakeSection(const Tag &section)
{
    Top().hasSections = true;
    if (IsCleanSection(section))
        return;
    RecoveredElement &top = *Top().element;
    tree_.Spoil(&top);
    const bool isData = Text().substr(section.at).starts_with("<![");
    Add(Severity::Loss, section.at, &top,
        !isData       ? "a comment or an instruction that XML cannot hold there is left out"
        : isRootSeen_ ? kCharactersLeftOut
                      : kTextDropped);
}

/// Whether XML takes a section where it stands: in an element, or in front of the project or behind it.
bool DamagedText::IsCleanSection(const Tag &section) const
{
    const std::string text(Text().substr(section.at, section.behind - section.at));
    if (open_.empty())
        return !FindXmlFault("<a/>" + text);
    if (isRootSeen_)
        return !FindXmlFault("<a>" + text + "</a>");
    // A declaration has to be the first of all.
    return !FindXmlFault((section.at > 0 ? " " : "") + text + "<a/>");
}

/// What stands between the last tag and the next one.
void DamagedText::TakeText(const Tag &next)
{
    const std::string_view run = Text().substr(at_, next.at - at_);
    if (IsBlank(run))
        return;
    RecoveredElement &element = *Top().element;
    if (!IsCleanText(run)) {
        tree_.Spoil(&element);
        if (HasForbiddenCharacter(run))
            Add(Severity::Loss, at_, &element, kCharactersLeftOut);
        else
            Add(Severity::Warning, at_, &element,
                "a character of markup that stands for itself is written as a reference");
    }
    if (!known_ || !known_->IsContainer(element))
        return;
    tree_.Spoil(&element);
    // It may be the value of an element whose start tag is broken.
    if (next.kind != Tag::Kind::End || !known_->HasChild(element, next.name))
        Add(Severity::Loss, at_, &element, kTextDropped);
}

/// A start tag in a value, which nothing ends, was the end tag of that.
bool DamagedText::IsBrokenEnd(const Tag &tag)
{
    const RecoveredElement &top = *Top().element;
    return known_ && tag.kind == Tag::Kind::Start && known_->IsKnown(top) && !known_->IsContainer(top) &&
           Text().find("</" + std::string(tag.name) + ">", tag.behind) == std::string_view::npos;
}

void DamagedText::TakeStart(const Tag &tag)
{
    if (isRootSeen_ && open_.size() > 1 && IsBrokenEnd(tag)) {
        Add(Severity::Warning, tag.at, Top().element,
            "a start tag stands in place of the end tag of " + Bracketed(Top().element->name));
        tree_.Spoil(Top().element);
        CloseTop(RecoveredElement::End::Own, tag.at, tag.behind);
        return;
    }
    const bool isRoot = !isRootSeen_ && IsProjectTag(tag.name);
    hasProject_ |= (isRoot || KnownElements::IsObject(tag.name)) &&
                   tag.attributes.find(" Version=") != std::string_view::npos;
    RecoveredElement &root = tree_.Root();
    RecoveredElement *element = &root;
    if (isRoot) {
        isRootSeen_ = true;
        root.isMade = false;
        // The first tag of a whole text: its bytes can be taken as they are.
        root.isIntact = root.children.empty() && root.name == tag.name;
    } else {
        if (!isRootSeen_ && root.children.empty())
            Add(Severity::Warning, tag.at, nullptr, "the start tag of the project is missing");
        if (const RecoveredElement *const early = Reopen(*Top().element, tag))
            AddEarlyEnd(*early);
        else
            CloseMissing(tag);
        if (open_.size() >= kDeepest) {
            PassOver(tag);
            return;
        }
        element = &tree_.Make();
        element->name = tag.name;
        tree_.Append(*Top().element, *element);
    }
    element->start = tag.at;
    element->attributes = tag.attributes;
    TakeAttributes(tag, *element);
    if (isRoot) {
        Top().content = tag.behind;
        if (tag.kind == Tag::Kind::Empty)
            CloseTop(RecoveredElement::End::Own, tag.behind, tag.behind);
        return;
    }
    open_.push_back({element, tag.behind});
    if (tag.kind == Tag::Kind::Empty)
        CloseTop(RecoveredElement::End::Own, tag.behind, tag.behind);
}

void DamagedText::TakeAttributes(const Tag &tag, RecoveredElement &element)
{
    if (AreCleanAttributes(tag.attributes))
        return;
    const CleanedAttributes cleaned = CleanAttributes(tag.attributes);
    element.attributes = tree_.Keep(cleaned.text);
    tree_.Spoil(&element);
    Add(Severity::Warning, tag.at, &element,
        "the attributes of " + Bracketed(tag.name) + " are damaged; those that can be told are kept");
    for (const std::string &gone : cleaned.gone)
        Add(Severity::Loss, tag.at, &element,
            "\"" + gone + "\" in " + Bracketed(tag.name) +
                " is no attribute, or one that stands there already; it "
                "is dropped");
    for (const std::string &cut : cleaned.cut)
        Add(Severity::Loss, tag.at, &element,
            "the value of the attribute " + cut + " in " + Bracketed(tag.name) + " may be cut");
}

/// Whether an element has a place for another one, which not every child has twice.
bool DamagedText::Takes(const RecoveredElement &element, const Tag &tag) const
{
    if (element.name == "PropertyManager")
        return tag.attributes.find(" Spatial=") != tag.attributes.npos && !element.Child(tag.name);
    return known_->HasChild(element, tag.name) && (IsList(element.name) || !element.Child(tag.name));
}

/// Goes on with elements whose end tags came too early, if that shows by the element that begins: the last
/// ones in an element that cannot have it. Returns the first of them, where it went wrong, or null.
RecoveredElement *DamagedText::Reopen(RecoveredElement &around, const Tag &tag)
{
    if (!known_ || !known_->IsKnown(around) || Takes(around, tag))
        return nullptr;
    std::vector<RecoveredElement *> path;
    RecoveredElement *at = &around;
    do {
        if (at->children.empty() || at->children.back()->isMade)
            return nullptr;
        at = at->children.back();
        path.push_back(at);
    } while (!Takes(*at, tag));
    for (RecoveredElement *element : path) {
        tree_.Spoil(element);
        open_.push_back({element, tag.at});
    }
    return path.front();
}

void DamagedText::AddEarlyEnd(const RecoveredElement &element)
{
    Add(Severity::Warning, Text().rfind('<', element.end - 1), &element,
        "the end tag of " + Bracketed(element.name) + " comes too early; the element goes on behind it");
}

/// Whether behind the end of the project something stands that belongs into it.
bool DamagedText::GoesOn()
{
    Tag tag = NextTag(Text(), at_, ends_);
    while (tag.kind == Tag::Kind::Section)
        tag = NextTag(Text(), tag.behind, ends_);
    RecoveredElement &root = tree_.Root();
    if (!known_ || (tag.kind != Tag::Kind::Start && tag.kind != Tag::Kind::Empty))
        return false;
    if (Takes(root, tag)) {
        AddEarlyEnd(root);
    } else {
        const bool belongs = Reopen(root, tag) != nullptr;
        open_.clear();
        if (!belongs)
            return false;
        AddEarlyEnd(root);
    }
    tree_.Spoil(&root);
    open_.push_back({&root, at_});
    return true;
}

/// Drops an element with all that is in it.
void DamagedText::PassOver(const Tag &start)
{
    RecoveredElement &top = *Top().element;
    tree_.Spoil(&top);
    Add(Severity::Loss, start.at, &top, Bracketed(start.name) + " is nested too deep; it is dropped");
    at_ = start.behind;
    for (std::size_t depth = start.kind == Tag::Kind::Start ? 1 : 0; depth > 0;) {
        const Tag tag = NextTag(Text(), at_, ends_);
        at_ = tag.behind;
        if (tag.kind == Tag::Kind::Start)
            ++depth;
        else if (tag.kind == Tag::Kind::End)
            --depth;
        else if (tag.kind == Tag::Kind::None)
            return;
    }
}

/// Closes elements whose end tags are missing, if that shows by the element that begins.
void DamagedText::CloseMissing(const Tag &tag)
{
    while (known_ && open_.size() > 1) {
        const RecoveredElement &top = *Top().element;
        if (!known_->IsKnown(top) || known_->HasChild(top, tag.name))
            return;
        auto home = static_cast<std::ptrdiff_t>(open_.size()) - 2;
        while (home >= 0 && !known_->HasChild(*open_[static_cast<std::size_t>(home)].element, tag.name))
            --home;
        if (home < 0)
            return;
        if (closedBefore_ != &top) {
            closedNext_ = NextClosed(tag.at);
            closedBefore_ = &top;
        }
        // Where the text ends before, there is nothing that speaks against it.
        if (closedNext_ == static_cast<std::ptrdiff_t>(open_.size()) - 1)
            return;
        Add(Severity::Warning, tag.at, &top, "the end tag of " + Bracketed(top.name) + " is missing");
        CloseTop(RecoveredElement::End::Implied, tag.at, tag.at);
    }
}

void DamagedText::TakeBroken(const Tag &tag)
{
    RecoveredElement &top = *Top().element;
    tree_.Spoil(&top);
    if (tag.isCut)
        return;
    if (tag.isEnd && tag.name != top.name) {
        TakeStrayEnd({.kind = Tag::Kind::End, .at = tag.at, .behind = tag.behind}, NextClosed(tag.behind));
        return;
    }
    Add(Severity::Warning, tag.at, &top, "a tag is damaged");
    if (tag.isEnd) {
        CloseTop(RecoveredElement::End::Own, tag.at, tag.behind);
    } else if (known_ && known_->HasChild(top, tag.name)) {
        TakeStart({.kind = Tag::Kind::Start,
                   .at = tag.at,
                   .behind = tag.behind,
                   .name = tag.name,
                   .attributes = tag.attributes});
        tree_.Spoil(Top().element);
    }
}

} // namespace marlet::project
