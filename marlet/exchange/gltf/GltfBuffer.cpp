#include <marlet/exchange/gltf/GltfBuffer.h>

#include <algorithm>
#include <bit>

namespace marlet::project
{

namespace
{

static_assert(std::endian::native == std::endian::little, "the numbers of a buffer are little-endian");

constexpr int kFloat = 5126;
constexpr int kUnsignedShort = 5123;

NarrowString Base64(const std::vector<unsigned char> &bytes)
{
    static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    NarrowString text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t three = bytes[i] << 16u;
        if (i + 1 < bytes.size())
            three |= bytes[i + 1] << 8u;
        if (i + 2 < bytes.size())
            three |= bytes[i + 2];
        text += kDigits[three >> 18u];
        text += kDigits[three >> 12u & 63u];
        text += i + 1 < bytes.size() ? kDigits[three >> 6u & 63u] : '=';
        text += i + 2 < bytes.size() ? kDigits[three & 63u] : '=';
    }
    return text;
}

} // namespace

template <class Number>
std::size_t GltfBuffer::Add(const std::vector<Number> &numbers, std::size_t dimension, int componentType,
                            const char *type)
{
    // Numbers of four bytes must not stand across words.
    bytes_.resize((bytes_.size() + 3) / 4 * 4);
    const auto *const raw = reinterpret_cast<const unsigned char *>(numbers.data());
    const std::size_t size = numbers.size() * sizeof(Number);
    views_.push_back({{"buffer", 0}, {"byteOffset", bytes_.size()}, {"byteLength", size}});
    bytes_.insert(bytes_.end(), raw, raw + size);
    std::vector<Number> least(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(dimension));
    std::vector<Number> most = least;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        least[i % dimension] = std::min(least[i % dimension], numbers[i]);
        most[i % dimension] = std::max(most[i % dimension], numbers[i]);
    }
    accessors_.push_back({{"bufferView", views_.size() - 1},
                          {"componentType", componentType},
                          {"count", numbers.size() / dimension},
                          {"type", type},
                          {"min", least},
                          {"max", most}});
    return accessors_.size() - 1;
}

std::size_t GltfBuffer::AddScalars(const std::vector<float> &numbers)
{
    return Add(numbers, 1, kFloat, "SCALAR");
}

std::size_t GltfBuffer::AddVectors(const std::vector<float> &numbers, std::size_t dimension)
{
    return Add(numbers, dimension, kFloat, dimension == 3 ? "VEC3" : "VEC4");
}

std::size_t GltfBuffer::AddIndices(const std::vector<std::uint16_t> &indices)
{
    return Add(indices, 1, kUnsignedShort, "SCALAR");
}

void GltfBuffer::Write(Json &document) const
{
    if (bytes_.empty())
        return;
    document["accessors"] = accessors_;
    document["bufferViews"] = views_;
    document["buffers"] = Json::array(
        {{{"byteLength", bytes_.size()}, {"uri", "data:application/octet-stream;base64," + Base64(bytes_)}}});
}

} // namespace marlet::project
