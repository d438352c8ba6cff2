#pragma once

#include <marlet/foundation/Strings.h>

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace marlet::project
{

class DocumentText;

/// An element of a document's text, or none: a stretch of it that is looked into when it is asked. As light
/// as a pointer; valid while the DocumentText lives. What it is asked for costs about one pass over the
/// element, without what is below its long children.
class TextElement
{
public:
    using Attributes = std::vector<std::pair<std::string_view, std::string_view>>;

    TextElement() = default;
    TextElement(const DocumentText *document, std::string_view source) : document_(document), source_(source)
    {
    }

    bool IsNull() const { return source_.empty(); }
    /// From its "<" on, as it stands in the text.
    std::string_view Source() const { return source_; }
    std::string_view Tag() const;
    /// Each with its value as it stands in the text, without the quotes.
    Attributes AllAttributes() const;
    /// What an attribute says; empty if there is none.
    NarrowString Attribute(std::string_view name) const;
    /// The elements in it; none if there is more beside them than blanks, which is for nobody to take apart.
    std::vector<TextElement> Children() const;
    bool HasChildren() const { return !Children().empty(); }
    /// Null if there is none.
    TextElement Child(std::string_view tag) const;
    /// What stands between its tags.
    std::string_view Content() const;
    /// What the text of an element without children says.
    NarrowString Text() const;
    NarrowString ChildText(std::string_view tag) const { return Child(tag).Text(); }
    /// Whether there is a text, be it an empty one, which an end tag shows: `<Name></Name>`.
    bool HasEndTag() const { return !source_.ends_with("/>"); }
    /// Whether the sources are the same.
    bool operator==(const TextElement &other) const { return source_ == other.source_; }

private:
    std::size_t EndOfStartTag() const;
    /// Takes the next child off the content. False at its end, and where anything else stands.
    bool TakeChild(std::string_view &content, TextElement &child) const;

    const DocumentText *document_ = nullptr;
    std::string_view source_;
};

/// A well-formed text in UTF-8, in the form in which the library writes it, with a note of where its long
/// elements end.
class DocumentText
{
public:
    explicit DocumentText(NarrowString text);
    DocumentText(const DocumentText &) = delete;
    DocumentText &operator=(const DocumentText &) = delete;

    const NarrowString &Text() const { return text_; }
    TextElement Root() const;

private:
    friend class TextElement;

    /// The place behind the element whose "<" stands at a place.
    std::size_t EndOf(std::size_t start) const;

    NarrowString text_;
    std::vector<std::pair<std::size_t, std::size_t>> longOnes_; ///< from where to where, in order
};

/// A piece of a text or of an attribute's value without its references.
NarrowString WithoutReferences(std::string_view escaped);

} // namespace marlet::project
