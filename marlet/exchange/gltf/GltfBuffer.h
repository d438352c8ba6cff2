#pragma once

#include <marlet/exchange/JsonText.h>

#include <cstdint>
#include <vector>

namespace marlet::project
{

/// The numbers of a glTF document: the accessors that name them, and the one buffer in which they stand, as a
/// text in base64.
class GltfBuffer
{
public:
    // The index of a new accessor.

    /// Numbers one by one, as times are.
    std::size_t AddScalars(const std::vector<float> &numbers);
    /// Vectors of three or four numbers.
    std::size_t AddVectors(const std::vector<float> &numbers, std::size_t dimension);
    /// Corners of triangles.
    std::size_t AddIndices(const std::vector<std::uint16_t> &indices);

    /// Puts "accessors", "bufferViews" and "buffers" into the document, where there are any.
    void Write(Json &document) const;

private:
    template <class Number>
    std::size_t Add(const std::vector<Number> &numbers, std::size_t dimension, int componentType,
                    const char *type);

    std::vector<unsigned char> bytes_;
    Json accessors_ = Json::array();
    Json views_ = Json::array();
};

} // namespace marlet::project
