// How the elements of a damaged text end.

#include <marlet/recovery/DamagedText.h>

#include <marlet/recovery/CleanText.h>
#include <marlet/recovery/KnownElements.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

/// Those from one on.
void MoveChildren(RecoveredElement &from, std::vector<RecoveredElement *>::iterator first,
                  RecoveredElement &to)
{
    to.children.assign(first, from.children.end());
    from.children.erase(first, from.children.end());
    for (RecoveredElement *child : to.children)
        child->parent = &to;
    RecoveredTree::Spoil(&to);
}

} // namespace

void DamagedText::TakeEnd(const Tag &tag)
{
    const auto top = static_cast<std::ptrdiff_t>(open_.size()) - 1;
    const bool closesRoot = top == 0 && IsProjectTag(tag.name);
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
            "the end tag of " + Bracketed(open_[static_cast<std::size_t>(index)].element->name) +
                " is missing");
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
            "another end tag stands in place of that of " + Bracketed(top.name));
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
    if (RecoveredElement *const emptied = top.Child(tag.name);
        emptied && emptied->children.empty() && IsBlank(emptied->content) && first != top.children.end()) {
        // Its end tag came twice.
        MoveChildren(top, first, *emptied);
        emptied->end = tag.behind;
        Add(Severity::Warning, tag.at, emptied,
            "the end tag of " + Bracketed(tag.name) + " comes too early; the element goes on behind it");
        return true;
    }
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
        MoveChildren(top, first, made);
    }
    const RecoveredElement *const model = known_->ModelOf(made);
    made.attributes =
        model ? model->attributes : std::string_view(isProperty ? " Type=\"0\" Spatial=\"0\"" : "");
    top.children.push_back(&made);
    Add(Severity::Warning, made.start, &made, "the start tag of " + Bracketed(tag.name) + " is missing");
    return true;
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
            Add(Severity::Loss, element.start, &element,
                Bracketed(element.name) + " is cut off; it is dropped");
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
    for (Tag tag = NextTag(Text(), from, ends_); tag.kind != Tag::Kind::None;
         tag = NextTag(Text(), tag.behind, ends_)) {
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
        if (own != inner.rend()) {
            inner.erase(own.base() - 1, inner.end());
            continue;
        }
        const std::ptrdiff_t index = IndexOf(tag.name);
        if (index != kNone)
            return index;
        lookAhead_ -= std::min(lookAhead_, open_.size());
    }
    return kNone;
}

} // namespace marlet::project
