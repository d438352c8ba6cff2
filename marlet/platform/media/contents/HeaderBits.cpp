#include <marlet/platform/media/contents/HeaderBits.h>

namespace kyh::media
{

namespace
{

constexpr std::size_t kStartCode = 3;

/// Where the next start code stands, or the end.
std::size_t FindStartCode(Bytes bytes, std::size_t from)
{
    for (std::size_t i = from + kStartCode - 1; i < bytes.size();) {
        if (bytes[i] > 1)
            i += kStartCode;
        else if (bytes[i] == 1 && bytes[i - 1] == 0 && bytes[i - 2] == 0)
            return i - 2;
        else
            ++i;
    }
    return bytes.size();
}

} // namespace

std::vector<Bytes> SplitAtStartCodes(Bytes bytes)
{
    std::vector<Bytes> units;
    for (std::size_t begin = FindStartCode(bytes, 0); begin < bytes.size();) {
        begin += kStartCode;
        const std::size_t end = FindStartCode(bytes, begin);
        units.push_back(bytes.subspan(begin, end - begin));
        begin = end;
    }
    return units;
}

} // namespace kyh::media
