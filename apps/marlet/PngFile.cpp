#include "PngFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace marlet::tool
{

namespace
{

void AppendBigEndian(std::string &bytes, std::uint32_t number)
{
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(number >> shift & 0xFF);
}

std::uint32_t Crc32(std::string_view bytes)
{
    static const auto table = [] {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t i = 0; i < entries.size(); ++i) {
            entries[i] = i;
            for (int bit = 0; bit < 8; ++bit)
                entries[i] = (entries[i] >> 1) ^ (entries[i] & 1 ? 0xEDB88320u : 0);
        }
        return entries;
    }();
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes)
        crc = (crc >> 8) ^ table[(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
    return ~crc;
}

std::uint32_t Adler32(std::string_view bytes)
{
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const char byte : bytes) {
        low = (low + static_cast<unsigned char>(byte)) % 65521;
        high = (high + low) % 65521;
    }
    return high << 16 | low;
}

void AppendChunk(std::string &file, std::string_view type, std::string_view content)
{
    AppendBigEndian(file, static_cast<std::uint32_t>(content.size()));
    const std::size_t start = file.size();
    file.append(type).append(content);
    AppendBigEndian(file, Crc32(std::string_view(file).substr(start)));
}

/// A zlib stream of stored blocks.
std::string StoredStream(std::string_view bytes)
{
    constexpr std::size_t kLargestBlock = 0xFFFF;
    const std::uint32_t checksum = Adler32(bytes);
    std::string stream = "\x78\x01";
    do {
        const std::size_t size = std::min(bytes.size(), kLargestBlock);
        stream += static_cast<char>(size == bytes.size());
        for (const std::size_t length : {size, ~size & kLargestBlock}) {
            stream += static_cast<char>(length & 0xFF);
            stream += static_cast<char>(length >> 8);
        }
        stream += bytes.substr(0, size);
        bytes.remove_prefix(size);
    } while (!bytes.empty());
    AppendBigEndian(stream, checksum);
    return stream;
}

/// The rows in PNG's order of channels, each behind the number of its filter, which is none.
std::string FilteredRows(const Picture &picture)
{
    std::string rows;
    rows.reserve(picture.height * (1 + picture.width * picture.BytesPerPixel()));
    for (std::size_t y = 0; y < picture.height; ++y) {
        const unsigned char *pixel = picture.pixels + y * picture.BytesPerRow();
        rows += '\0';
        for (std::size_t x = 0; x < picture.width; ++x, pixel += picture.BytesPerPixel()) {
            if (picture.hasAlpha)
                for (const int channel : {2, 1, 0, 3})
                    rows += static_cast<char>(pixel[channel]);
            else
                rows.append(reinterpret_cast<const char *>(pixel), 3);
        }
    }
    return rows;
}

} // namespace

std::string EncodePng(const Picture &picture)
{
    constexpr char kBitDepth = 8;
    constexpr char kTrueColour = 2;
    constexpr char kTrueColourWithAlpha = 6;

    std::string header;
    AppendBigEndian(header, static_cast<std::uint32_t>(picture.width));
    AppendBigEndian(header, static_cast<std::uint32_t>(picture.height));
    header += kBitDepth;
    header += picture.hasAlpha ? kTrueColourWithAlpha : kTrueColour;
    header.append(3, '\0'); // the only compression and filter methods, not interlaced

    std::string file = "\x89PNG\r\n\x1A\n";
    AppendChunk(file, "IHDR", header);
    AppendChunk(file, "IDAT", StoredStream(FilteredRows(picture)));
    AppendChunk(file, "IEND", {});
    return file;
}

} // namespace marlet::tool
