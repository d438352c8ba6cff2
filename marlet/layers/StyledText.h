#pragma once

#include <marlet/layers/TextLayer.h>

#include <cstddef>
#include <iterator>
#include <unordered_set>

namespace marlet::project
{

/// The text of a layer: the chain of tokens, and the table of the formats that they share.
struct StyledText {
    using Token = TextLayer::Token;
    using Format = TextLayer::Format;

    StyledText() = default;
    /// Tokens and formats of a copy have new IDs; formats in no use are left out.
    /// @throws std::logic_error if the chain runs in a circle
    StyledText(const StyledText &other);
    StyledText &operator=(const StyledText &) = delete;

    /// The entry of the table that looks the same, whatever its ID is, or null. Nothing looks like NaN.
    const std::shared_ptr<Format> *FindFormat(const Format &format) const;
    void DropUnusedFormats();

    TextLayer::TokenList tokens;
    TextLayer::FormatList formats;
};

/// A chain of tokens from one of them on, to be walked in a loop. Hosts change the links, so that a walk that
/// comes to run in a circle throws std::logic_error.
class TokenChain
{
public:
    class Iterator
    {
    public:
        explicit Iterator(const TextLayer::Token *token) : token_(token), mark_(token) {}

        const TextLayer::Token &operator*() const { return *token_; }
        Iterator &operator++()
        {
            token_ = token_->next.get();
            if (token_)
                LookForCircle();
            return *this;
        }
        bool operator==(std::default_sentinel_t) const { return !token_; }

    private:
        void LookForCircle();

        const TextLayer::Token *token_;
        // Brent's search: a mark that is moved up each time the distance to it has doubled.
        const TextLayer::Token *mark_;
        std::size_t stepsToMark_ = 0;
        std::size_t stepsAllowed_ = 2;
    };

    explicit TokenChain(const std::shared_ptr<TextLayer::Token> &first) : first_(first.get()) {}

    Iterator begin() const { return Iterator(first_); }
    std::default_sentinel_t end() const { return {}; }

private:
    const TextLayer::Token *first_;
};

using FormatIDs = std::unordered_set<kytl::KyID>;

/// The formats that the tokens of a chain use.
FormatIDs UsedFormats(const TokenChain &tokens);

// In the file the tokens stand before the formats that they name, so that the formats are read first.

/// Writes the tokens from one on, up to the one with that ID or to the end of the chain, and the formats of
/// the table that these use.
void WriteStyledText(XmlWriter &writer, const TokenChain &tokens, const kytl::KyID *last,
                     const TextLayer::FormatList &formats);
/// Replaces what is in the two lists by what the element holds.
/// @throws XmlParseException, std::runtime_error
void ReadStyledText(const XmlCursor &parent, TextLayer::TokenList &tokens, TextLayer::FormatList &formats);

} // namespace marlet::project
