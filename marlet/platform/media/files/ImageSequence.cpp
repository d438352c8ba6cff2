#include <marlet/platform/media/files/ImageSequence.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace kyh::media
{

namespace fs = std::filesystem;

namespace
{

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// A file's name around its number.
struct NumberedName {
    std::string before;
    std::size_t digits = 0;
    std::string behind;

    explicit NumberedName(const std::string &name)
    {
        const std::size_t end = EndOfNumber(name);
        std::size_t begin = end;
        while (begin > 0 && IsDigit(name[begin - 1]))
            --begin;
        before = name.substr(0, begin);
        digits = end - begin;
        behind = name.substr(end);
    }

    /// The number that another name has in the same place.
    std::optional<long long> NumberOf(const std::string &name) const
    {
        if (name.size() != before.size() + digits + behind.size() || !name.starts_with(before) ||
            !name.ends_with(behind))
            return std::nullopt;
        long long number = 0;
        const char *begin = name.data() + before.size();
        const char *end = begin + digits;
        const auto [read, error] = std::from_chars(begin, end, number);
        if (!std::all_of(begin, end, IsDigit) || read != end || error != std::errc())
            return std::nullopt;
        return number;
    }

private:
    /// 0 if there is no number. An ending of digits alone is no ending, as in "shot.0001".
    static std::size_t EndOfNumber(const std::string &name)
    {
        const std::size_t dot = name.rfind('.');
        const bool hasEnding =
            dot != std::string::npos && !std::all_of(name.begin() + dot + 1, name.end(), IsDigit);
        const auto behind = std::find_if(name.rend() - (hasEnding ? dot : name.size()), name.rend(), IsDigit);
        return static_cast<std::size_t>(name.rend() - behind);
    }
};

std::map<long long, std::string> FindMembers(const fs::path &path, const NumberedName &name)
{
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    std::map<long long, std::string> members;
    std::error_code error;
    std::error_code isFile; // a file that cannot be looked at is none
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        if (const auto number = name.NumberOf(entry->path().filename().string());
            number && entry->is_regular_file(isFile))
            members.emplace(*number, (path.parent_path() / entry->path().filename()).string());
    return members;
}

} // namespace

const ImageSequence::Member &ImageSequence::MemberAt(int frame) const
{
    const auto behind =
        std::upper_bound(members.begin(), members.end(), frame,
                         [](int number, const Member &member) { return number < member.frame; });
    return *std::prev(behind);
}

ImageSequence SinglePicture(std::string path)
{
    ImageSequence sequence;
    sequence.members.push_back({0, std::move(path)});
    sequence.count = 1;
    return sequence;
}

ImageSequence FindImageSequence(const std::string &path)
{
    const fs::path place(path);
    const NumberedName name(place.filename().string());
    if (name.digits == 0)
        return SinglePicture(path);
    const std::map<long long, std::string> members = FindMembers(place, name);
    // A folder may let its files be opened and yet not be listed.
    if (members.empty())
        return SinglePicture(path);
    ImageSequence sequence;
    const long long first = members.begin()->first;
    const long long last = members.rbegin()->first;
    if (last - first >= std::numeric_limits<int>::max())
        throw MediaFailure{kFailed};
    for (const auto &[number, member] : members)
        sequence.members.push_back({static_cast<int>(number - first), member});
    sequence.count = static_cast<int>(last - first + 1);
    return sequence;
}

} // namespace kyh::media
