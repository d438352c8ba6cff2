#pragma once

#include <marlet/foundation/Strings.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace kytl
{

/// A 128-bit identifier with a GUID's layout. All zeros is the null ID, which means no reference.
///
/// Its text form has 36 characters: groups of 8, 4, 4, 4 and 12 lower-case hexadecimal digits joined by "-".
/// A plain value; nothing is synchronised. Generate may be called from any thread.
struct MARLET_EXPORT KyID {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::uint8_t Data4[8] = {};

    /// A new random ID (version 4 of RFC 4122), from a generator of the calling thread, which a
    /// child process seeds anew.
    static KyID Generate();

    /// Reads the text form; upper-case digits are taken too.
    /// @throws std::runtime_error "Cannot construct KyID from string" on any other text.
    static KyID FromString(std::string_view text);
    static KyID FromString(std::u16string_view text);

    WideString ToWideString() const;
    NarrowString ToNarrowString() const;
    /// The text form without an allocation.
    std::array<char, 36> ToCharacters() const;

    bool IsNull() const { return *this == KyID{}; }

    /// The 32-bit hash by which files key values of this ID; its value is part of the file format.
    std::uint32_t Hash() const;

    bool operator==(const KyID &other) const = default;
};

} // namespace kytl

template <> struct std::hash<kytl::KyID> {
    std::size_t operator()(const kytl::KyID &id) const noexcept { return id.Hash(); }
};
