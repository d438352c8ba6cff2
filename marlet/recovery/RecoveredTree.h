#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace marlet::project
{

/// An element of a damaged text, as far as it can be told. Its views are into the text, or into the tree for
/// what had to be made.
struct RecoveredElement {
    enum class End {
        Own,    ///< its end tag stood there
        Implied ///< it was closed by what follows, or by the end of the text
    };

    std::string_view name;
    std::string_view attributes; ///< with the blank in front
    std::string_view content;    ///< the text of one that has no children
    RecoveredElement *parent = nullptr;
    std::vector<RecoveredElement *> children;
    std::size_t start = 0; ///< of its bytes in the text
    std::size_t end = 0;
    End ending = End::Implied;
    bool isIntact = true; ///< its bytes can be taken as they are
    bool isMade = false;  ///< it stands in for one that is missing
    bool isCut = false;   ///< the text ended in it
    // Where it was written last.
    std::size_t writtenAt = 0;
    std::size_t writtenSize = 0;
    bool isSlice = false; ///< and all below it, as its bytes stand in the text

    RecoveredElement *Child(std::string_view tag) const;
    bool IsInside(std::string_view tag) const { return parent && parent->name == tag; }
};

/// The elements of a damaged text, below a root that is always there, and what was made for them.
class RecoveredTree
{
public:
    explicit RecoveredTree(std::string text);
    RecoveredTree(const RecoveredTree &) = delete;
    RecoveredTree &operator=(const RecoveredTree &) = delete;

    std::string_view Text() const { return text_; }
    RecoveredElement &Root() { return elements_.front(); }

    RecoveredElement &Make();
    /// Keeps a text for the views of elements.
    std::string_view Keep(std::string text);
    /// Its bytes, and those of all around it, cannot be taken as they are.
    static void Spoil(RecoveredElement *element);
    static void Append(RecoveredElement &parent, RecoveredElement &child);
    /// Takes an element out of its parent, which it still knows.
    static void Remove(RecoveredElement &element);

    /// Appends the text of an element. Without the layers and objects what is left is a fraction.
    void Write(RecoveredElement &element, std::string &to, bool withItems = true,
               std::size_t depth = 0) const;
    /// The element whose bytes begin at a place in what was written last, or the innermost around it.
    static RecoveredElement &At(RecoveredElement &written, std::size_t place);

private:
    std::string text_;
    std::deque<RecoveredElement> elements_;
    std::deque<std::string> kept_;
};

/// "Layers" and "Objects" hold most of a document.
bool HoldsItems(std::string_view tag);
/// Of an element whose children can go one by one.
bool IsList(std::string_view tag);
/// Its case does not count.
bool IsProjectTag(std::string_view tag);
/// A tag in brackets, for messages.
std::string Bracketed(std::string_view tag);

} // namespace marlet::project
