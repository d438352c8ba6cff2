#pragma once

#include <marlet/foundation/Strings.h>

#include <optional>
#include <string_view>
#include <vector>

namespace marlet::project
{

struct EdlEdit;
struct EdlTime;

// Lists are written by machines of many makers, so words are what stands between blanks and tabs, whatever
// the column, and letters are of any case.

inline bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

inline bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool EqualWords(std::string_view a, std::string_view b);
bool StartsWithWord(std::string_view text, std::string_view word);
/// What follows it, without the blanks around; one that it does not start with is none of its own.
std::string_view AfterWord(std::string_view text, std::string_view word);
NarrowString ValidUtf8(std::string_view text);

/// Calls `take` with the number and the content of each line, without the blanks around, until it gives
/// false. A byte order mark is left out.
template <class Take> void ForEachEdlLine(std::string_view text, Take &&take)
{
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(text.substr(end).starts_with("\r\n") ? end + 2 : std::min(end + 1, text.size()));
        if (!take(number, AfterWord(line, "")))
            return;
    }
}

/// The words of a line.
class EdlLine
{
public:
    explicit EdlLine(std::string_view line);

    /// Whether it has the form of an edit: four time codes behind a number, a reel, channels and a kind.
    bool IsEdit() const { return TimeCodes().has_value() && KindPlace().has_value(); }
    std::optional<std::string_view> FirstTimeCode() const;
    /// @throws ExchangeException
    void Read(const EdlTime &time, int line, EdlEdit &edit, bool &isKey) const;
    /// The place of the last word that is a number with a point or without.
    std::optional<std::size_t> LastNumber(double &number) const;
    NarrowString Joined(std::size_t first, std::size_t end) const;

private:
    /// The place of the first of four in a row.
    std::optional<std::size_t> TimeCodes() const;
    /// The place of the word that says how the edit begins.
    std::optional<std::size_t> KindPlace() const;
    int Frame(const EdlTime &time, int line, std::size_t place) const;

    std::vector<std::string_view> words_;
};

} // namespace marlet::project
