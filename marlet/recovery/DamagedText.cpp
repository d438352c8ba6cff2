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

constexpr char kCharactersLeftOut[] = "characters that XML cannot hold are left out of a text";
constexpr char kTextDropped[] = "a text between elements is dropped";

std::string Quoted(std::string_view name)
{
    return "<" + std::string(name) + ">";
}

/// Its case does not count.
bool IsProject(std::string_view tag)
{
    const auto lower = [](char c) { return static_cast<char>(c | 0x20); };
    return std::ranges::equal(tag, std::string_view("project"), {}, lower);
}

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
    Tag tag;
    while (!open_.empty()) {
        tag = NextTag(Text(), at_);
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
    for (Tag tag = NextTag(Text(), at_); at_ < Text().size(); tag = NextTag(Text(), at_)) {
        const std::string_view between = Text().substr(at_, tag.at - at_);
        const bool mayStay =
            tag.kind == Tag::Kind::None || (tag.kind == Tag::Kind::Section && IsCleanSection(tag));
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

void DamagedText::TakeStart(const Tag &tag)
{
    const bool isRoot = !isRootSeen_ && IsProject(tag.name);
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
    if (!AreCleanAttributes(tag.attributes)) {
        element->attributes = tree_.Keep(CleanAttributes(tag.attributes));
        tree_.Spoil(element);
        Add(Severity::Warning, tag.at, element,
            "the attributes of " + Quoted(tag.name) + " are damaged; those that can be told are kept");
    }
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

/// Drops an element with all that is in it.
void DamagedText::PassOver(const Tag &start)
{
    RecoveredElement &top = *Top().element;
    tree_.Spoil(&top);
    Add(Severity::Loss, start.at, &top, Quoted(start.name) + " is nested too deep; it is dropped");
    at_ = start.behind;
    for (std::size_t depth = start.kind == Tag::Kind::Start ? 1 : 0; depth > 0;) {
        const Tag tag = NextTag(Text(), at_);
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
        Add(Severity::Warning, tag.at, &top, "the end tag of " + Quoted(top.name) + " is missing");
        CloseTop(RecoveredElement::End::Implied, tag.at, tag.at);
    }
}

void DamagedText::TakeEnd(const Tag &tag)
{
    const auto top = static_cast<std::ptrdiff_t>(open_.size()) - 1;
    const bool closesRoot = top == 0 && IsProject(tag.name);
    if (Top().element->name == tag.name || closesRoot) {
        CloseTop(RecoveredElement::End::Own, tag.at, tag.behind);
        return;
    }
    const std::ptrdiff_t own = IndexOf(tag.name);
    const std::ptrdiff_t next = NextClosed(tag.behind);
    const bool fits =
        own != kNone && (next < own || (own > 0 && open_[static_cast<std::size_t>(own) - 1].element->name ==
                                                       open_[static_cast<std::size_t>(next)].element->name));
    if (!fits) {
        TakeStrayEnd(tag, next);
        return;
    }
    for (std::ptrdiff_t index = top; index > own; --index)
        Add(Severity::Warning, tag.at, open_[static_cast<std::size_t>(index)].element,
            "the end tag of " + Quoted(open_[static_cast<std::size_t>(index)].element->name) + " is missing");
    CloseDownTo(own, tag.at);
    CloseTop(RecoveredElement::End::Own, tag.at, tag.behind);
}

/// An end tag that is none of the open elements', or that of an element which goes on.
void DamagedText::TakeStrayEnd(const Tag &tag, std::ptrdiff_t next)
{
    RecoveredElement &top = *Top().element;
    tree_.Spoil(&top);
    const auto index = static_cast<std::ptrdiff_t>(open_.size()) - 1;
    const bool isValue = known_ && known_->IsKnown(top) && !known_->IsContainer(top);
    if (index > 0 && (isValue || (next != kNone && next < index))) {
        Add(Severity::Warning, tag.at, &top,
            "another end tag stands in place of that of " + Quoted(top.name));
        CloseTop(RecoveredElement::End::Own, tag.at, tag.behind);
    } else if (!WrapOrphans(tag)) {
        Add(Severity::Warning, tag.at, &top, "an end tag that belongs to no element is passed over");
    }
}

/// Puts what stands in front of an end tag into the element that has lost its start tag.
bool DamagedText::WrapOrphans(const Tag &tag)
{
    RecoveredElement &top = *Top().element;
    const bool isProperty = top.name == "PropertyManager" && !tag.name.empty();
    if (!known_ || tag.name.empty() || !(isProperty || known_->HasChild(top, tag.name)))
        return false;
    const auto isOrphan = [&](const RecoveredElement *child) {
        return isProperty ? child->name == "Default" || child->name == "Static" ||
                                child->name == "Animation" || child->name == "Expression"
                          : !known_->HasChild(top, child->name);
    };
    const auto first = std::find_if_not(top.children.rbegin(), top.children.rend(), isOrphan).base();
    RecoveredElement &made = tree_.Make();
    made.parent = &top;
    made.name = tag.name;
    made.isIntact = false;
    made.ending = RecoveredElement::End::Own;
    made.end = tag.behind;
    if (first == top.children.end()) {
        const std::size_t from = Text().rfind('>', tag.at) + 1; // npos + 1 is the beginning
        made.start = from;
        made.content = tree_.Keep(CleanText(Trimmed(Text().substr(from, tag.at - from))));
        if (made.content.empty() || known_->IsContainer(made))
            return false;
    } else {
        made.start = (*first)->start;
        made.children.assign(first, top.children.end());
        top.children.erase(first, top.children.end());
        for (RecoveredElement *child : made.children)
            child->parent = &made;
    }
    const RecoveredElement *const model = known_->ModelOf(made);
    made.attributes =
        model ? model->attributes : std::string_view(isProperty ? " Type=\"0\" Spatial=\"0\"" : "");
    top.children.push_back(&made);
    Add(Severity::Warning, made.start, &made, "the start tag of " + Quoted(tag.name) + " is missing");
    return true;
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
                   .attributes = {}});
        tree_.Spoil(Top().element);
    }
}

void DamagedText::CloseDownTo(std::ptrdiff_t index, std::size_t place)
{
    while (static_cast<std::ptrdiff_t>(open_.size()) - 1 > index)
        CloseTop(RecoveredElement::End::Implied, place, place);
}

void DamagedText::CloseTop(RecoveredElement::End ending, std::size_t contentEnd, std::size_t behind)
{
    const Open open = open_.back();
    open_.pop_back();
    closedBefore_ = nullptr;
    RecoveredElement &element = *open.element;
    element.end = behind;
    element.ending = ending;
    if (ending == RecoveredElement::End::Implied)
        tree_.Spoil(&element);
    if (!element.children.empty() || (known_ && known_->IsContainer(element)) || contentEnd < open.content)
        return;
    std::string_view content = Text().substr(open.content, contentEnd - open.content);
    if (ending == RecoveredElement::End::Implied)
        content = Trimmed(content);
    element.content = open.hasSections || !element.isIntact ? tree_.Keep(CleanText(content)) : content;
}

/// What is open where the text ends is closed there. A value that may have gone on is none.
void DamagedText::EndText(bool endsInTag)
{
    const std::size_t end = Text().size();
    std::string names;
    for (const Open &open : open_)
        ((names += names.empty() ? "" : ", ") += open.element->name);
    Add(Severity::Loss, end, Top().element, "the text is cut off here; open are " + names);
    for (const Open &open : open_)
        open.element->isCut = true;
    while (!open_.empty()) {
        RecoveredElement &element = *Top().element;
        const bool isValue = element.children.empty() && !(known_ && known_->IsContainer(element));
        const bool isTop = element.children.empty() && !endsInTag;
        CloseTop(RecoveredElement::End::Implied, endsInTag ? Text().rfind('<') : end, end);
        if (isValue && isTop && element.parent) {
            Add(Severity::Loss, element.start, &element, Quoted(element.name) + " is cut off; it is dropped");
            tree_.Remove(element);
        }
        endsInTag = false;
    }
}

std::ptrdiff_t DamagedText::IndexOf(std::string_view name) const
{
    for (std::size_t index = open_.size(); index > 0; --index)
        if (open_[index - 1].element->name == name)
            return static_cast<std::ptrdiff_t>(index) - 1;
    return kNone;
}

/// Which of the open elements the tags from a place on close first.
std::ptrdiff_t DamagedText::NextClosed(std::size_t from)
{
    std::vector<std::string_view> inner;
    for (Tag tag = NextTag(Text(), from); tag.kind != Tag::Kind::None; tag = NextTag(Text(), tag.behind)) {
        const std::size_t size = tag.behind - std::min(from, tag.behind);
        from = tag.behind;
        if (size > lookAhead_)
            return kNone;
        lookAhead_ -= size;
        if (tag.kind == Tag::Kind::Start)
            inner.push_back(tag.name);
        if (tag.kind != Tag::Kind::End)
            continue;
        const auto own = std::find(inner.rbegin(), inner.rend(), tag.name);
        lookAhead_ -= std::min(lookAhead_, static_cast<std::size_t>(own - inner.rbegin()));
        if (own != inner.rend())
            inner.erase(own.base() - 1, inner.end());
        else if (const std::ptrdiff_t index = IndexOf(tag.name); index != kNone)
            return index;
    }
    return kNone;
}

} // namespace marlet::project
