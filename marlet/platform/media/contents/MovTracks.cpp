#include <marlet/platform/media/contents/MovTracks.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <string_view>

namespace kyh::media
{

namespace
{

constexpr std::size_t kHeader = 8;
/// An hour takes a few megabytes.
constexpr std::int64_t kLargestMovie = std::int64_t{1} << 28;
constexpr std::size_t kMostSamples = std::size_t{1} << 26;

/// Thrown inside where a file is not as this reader knows it.
struct NotUnderstood {
};

void Require(bool condition)
{
    if (!condition)
        throw NotUnderstood();
}

/// Bytes that are read from front to back.
class Cursor
{
public:
    Cursor(const unsigned char *bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    std::size_t Left() const { return size_; }
    Cursor Take(std::size_t size)
    {
        Require(size <= size_);
        const Cursor taken(bytes_, size);
        bytes_ += size;
        size_ -= size;
        return taken;
    }
    std::uint32_t Number()
    {
        const unsigned char *bytes = Take(4).bytes_;
        return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
               bytes[3];
    }
    std::uint64_t LongNumber()
    {
        const std::uint64_t upper = Number();
        return upper << 32 | Number();
    }
    std::string_view Name() { return {reinterpret_cast<const char *>(Take(4).bytes_), 4}; }

private:
    const unsigned char *bytes_;
    std::size_t size_;
};

struct Box {
    std::string_view name;
    Cursor content;
};

Box TakeBox(Cursor &from)
{
    std::uint64_t size = from.Number();
    const std::string_view name = from.Name();
    std::uint64_t header = kHeader;
    if (size == 1) {
        size = from.LongNumber();
        header = 2 * kHeader;
    }
    if (size == 0)
        return {name, from.Take(from.Left())};
    Require(size >= header);
    return {name, from.Take(size - header)};
}

/// Calls `visit` with each box inside. Less than a header may follow the last.
template <class Visit> void ForEachBox(Cursor content, Visit &&visit)
{
    while (content.Left() >= kHeader) {
        const Box box = TakeBox(content);
        visit(box.name, box.content);
    }
}

void ReadHeader(Cursor header, MovTrack &track)
{
    const bool hasLongTimes = header.Number() >> 24 == 1;
    header.Take(hasLongTimes ? 16 : 8);
    track.id = header.Number();
}

void CheckDescriptions(Cursor descriptions)
{
    descriptions.Number();
    Require(descriptions.Number() == 1);
    constexpr std::string_view kEncrypted[] = {"encv", "enca", "drmi", "drms"};
    Require(std::ranges::count(kEncrypted, TakeBox(descriptions).name) == 0);
}

void ReadSizes(Cursor sizes, MovTrack &track)
{
    sizes.Number();
    const std::uint32_t shared = sizes.Number();
    const std::uint32_t count = sizes.Number();
    if (shared != 0)
        return;
    Require(count <= sizes.Left() / 4);
    track.sizes.resize(count);
    std::ranges::generate(track.sizes, [&] { return sizes.Number(); });
}

void ReadOffsets(Cursor offsets, MovTrack &track)
{
    // Larger ones are taken for damage.
    constexpr std::int32_t kLargest = 1 << 28;
    offsets.Number();
    for (std::uint32_t entries = offsets.Number(); entries > 0; --entries) {
        const std::uint32_t count = offsets.Number();
        const auto offset = static_cast<std::int32_t>(offsets.Number());
        Require(count > 0 && count <= kMostSamples - track.offsets.size());
        Require(offset > -kLargest && offset < kLargest);
        track.offsets.insert(track.offsets.end(), count, offset);
    }
}

/// Boxes that only hold others are gone into wherever they stand.
void ReadTrack(Cursor content, MovTrack &track)
{
    ForEachBox(content, [&track](std::string_view name, Cursor box) {
        if (name == "mdia" || name == "minf" || name == "stbl")
            ReadTrack(box, track);
        else if (name == "tkhd")
            ReadHeader(box, track);
        else if (name == "stsd")
            CheckDescriptions(box);
        else if (name == "stsz")
            ReadSizes(box, track);
        else if (name == "ctts")
            ReadOffsets(box, track);
        else
            Require(name != "stz2");
    });
}

std::vector<MovTrack> ReadMovie(Cursor movie)
{
    std::vector<MovTrack> tracks;
    ForEachBox(movie, [&tracks](std::string_view name, Cursor box) {
        Require(name != "mvex" && name != "cmov");
        if (name == "trak")
            ReadTrack(box, tracks.emplace_back());
    });
    return tracks;
}

/// Bytes that must all be there.
std::vector<unsigned char> ReadPart(const FileSource &source, std::int64_t position, std::int64_t size)
{
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
    Require(source.Read(position, bytes.data(), bytes.size()) == size);
    return bytes;
}

/// The content of the only box of that name at the top of the file.
std::vector<unsigned char> FindMovie(const FileSource &source)
{
    std::vector<unsigned char> movie;
    for (std::int64_t position = 0; source.Size() - position >= 2 * std::int64_t{kHeader};) {
        const std::vector<unsigned char> header = ReadPart(source, position, 2 * kHeader);
        Cursor cursor(header.data(), header.size());
        std::uint64_t size = cursor.Number();
        const std::string_view name = cursor.Name();
        const std::int64_t headerSize = size == 1 ? 2 * kHeader : kHeader;
        if (size == 1)
            size = cursor.LongNumber();
        const std::int64_t left = source.Size() - position;
        if (size == 0)
            size = static_cast<std::uint64_t>(left);
        Require(size >= static_cast<std::uint64_t>(headerSize) && size <= static_cast<std::uint64_t>(left));
        Require(name != "moof");
        if (name == "moov") {
            const std::int64_t contentSize = static_cast<std::int64_t>(size) - headerSize;
            Require(movie.empty() && contentSize > 0 && contentSize <= kLargestMovie);
            movie = ReadPart(source, position + headerSize, contentSize);
        }
        position += static_cast<std::int64_t>(size);
    }
    return movie;
}

} // namespace

std::optional<std::vector<MovTrack>> ReadMovTracks(const FileSource &source)
{
    try {
        const std::vector<unsigned char> movie = FindMovie(source);
        return ReadMovie(Cursor(movie.data(), movie.size()));
    } catch (const NotUnderstood &) {
        return std::nullopt;
    }
}

} // namespace kyh::media
