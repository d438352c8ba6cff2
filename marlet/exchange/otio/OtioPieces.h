#pragma once

#include <marlet/compare/DocumentText.h>
#include <marlet/foundation/KyID.h>

#include <vector>

namespace marlet::project
{

class Project;

// The text of a project in pieces, each of which is the text of an element without those that are pieces of
// their own. They travel in the metadata of the objects that they belong to, and make the same text when they
// are put together again.

/// Another text in place of a part of a text.
struct Change {
    std::string_view old;
    NarrowString text;
};

/// The text of an element with changes of parts. Of those that overlap the first counts.
NarrowString TextWith(const TextElement &element, std::vector<Change> changes);

/// A project's text, with a way to its tracks.
class ProjectPieces
{
public:
    /// Paths of media that were relative when the project was read are so again, to the folder.
    ProjectPieces(const Project &project, const WideString &folder);

    /// The elements of the tracks of a list, "Video" or "Audio", in their order.
    std::vector<TextElement> Tracks(const char *list) const;
    static std::vector<TextElement> ObjectsOf(const TextElement &track);
    /// The transition that stands in a slot of an object; null for none, and for one that stands elsewhere.
    static TextElement TransitionIn(const TextElement &object, const char *slot);

    /// The text without its tracks, and without one text among the metadata.
    NarrowString TextWithoutTracks(const NarrowString &metadata) const;
    static NarrowString TextWithoutObjects(const TextElement &track);
    /// Slots whose transitions are taken out stay, as empty ones.
    static NarrowString TextWithoutTransitions(const TextElement &object,
                                               const std::vector<const char *> &slots);

private:
    DocumentText text_;
};

/// A piece that came from somewhere, by itself.
class LoosePiece
{
public:
    /// @throws ExchangeException if the text is not one well-formed element with the tag
    LoosePiece(const NarrowString &text, std::string_view tag);
    LoosePiece(const LoosePiece &) = delete;
    LoosePiece &operator=(const LoosePiece &) = delete;

    TextElement Root() const { return text_.Root(); }
    TextElement Child(std::string_view tag) const { return Root().Child(tag); }
    /// The null ID if it is none.
    kytl::KyID IDIn(std::string_view tag) const;
    /// Whether there is a slot whose transition was taken out.
    bool HasEmptySlot(const char *slot) const;

    /// What a child says from now on. Nothing if there is no such child.
    void SetText(std::string_view tag, const NarrowString &text);
    /// What stands in place of a child. Nothing if there is no such child.
    void Replace(std::string_view tag, const NarrowString &elements);
    /// The text with all of that.
    NarrowString Text() const { return TextWith(Root(), changes_); }

private:
    DocumentText text_;
    std::vector<Change> changes_;
};

} // namespace marlet::project
