#include "PlacesInText.h"

#include <optional>
#include <stdexcept>

namespace marlet::tool
{

namespace
{

constexpr std::u16string_view kTag = u"<ID>";
constexpr std::size_t kIDLength = 36;

std::optional<kytl::KyID> IDAt(std::u16string_view text, std::size_t start)
{
    try {
        return kytl::KyID::FromString(text.substr(start, kIDLength));
    } catch (const std::runtime_error &) {
        return std::nullopt;
    }
}

/// Goes on through a text and counts.
class PlaceCounter
{
public:
    explicit PlaceCounter(std::u16string_view text) : text_(text) {}

    TextPlace GoTo(std::size_t offset)
    {
        for (; at_ < offset; ++at_) {
            const bool isBeforeFeed = at_ + 1 < text_.size() && text_[at_ + 1] == u'\n';
            if (text_[at_] == u'\n' || (text_[at_] == u'\r' && !isBeforeFeed))
                place_ = {place_.line + 1, 1};
            else if ((text_[at_] & 0xFC00) != 0xDC00) // the second half of a pair is no character of its own
                ++place_.column;
        }
        return place_;
    }

private:
    std::u16string_view text_;
    std::size_t at_ = 0;
    TextPlace place_{1, 1};
};

} // namespace

std::unordered_map<kytl::KyID, TextPlace> PlacesInText(const project::WideString &text,
                                                       const std::unordered_set<kytl::KyID> &ids)
{
    std::unordered_map<kytl::KyID, TextPlace> places;
    PlaceCounter counter(text);
    for (std::size_t at = text.find(kTag); at != text.npos && places.size() < ids.size();
         at = text.find(kTag, at + 1))
        if (const auto id = IDAt(text, at + kTag.size()); id && ids.contains(*id) && !places.contains(*id))
            places.emplace(*id, counter.GoTo(at));
    return places;
}

} // namespace marlet::tool
