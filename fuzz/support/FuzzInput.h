#pragma once

#include <marlet/foundation/Strings.h>

#include <boost/variant/get.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace marlet::project
{

/// The text that the bytes stand for. The last byte says how: odd for UTF-16 as it is, even for UTF-8, so
/// that a plain text file with a line feed at its end is an input.
inline WideString TextOfInput(const std::uint8_t *bytes, std::size_t size)
{
    if (size == 0)
        return {};
    const std::size_t length = size - 1;
    if (bytes[length] % 2 == 0)
        return FromUtf8({reinterpret_cast<const char *>(bytes), length});
    WideString text(length / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes, text.size() * sizeof(char16_t));
    return text;
}

/// Asks a loaded document something that it may refuse, in the ways that its interface names.
template <class Question> void MayRefuse(Question &&question)
{
    try {
        question();
    } catch (const std::logic_error &) {
    } catch (const std::runtime_error &) {
    } catch (const boost::bad_get &) {
    }
}

/// Ends the run: a document is not as it must be.
[[noreturn]] inline void Fail(const char *words)
{
    std::fprintf(stderr, "%s\n", words);
    std::abort();
}

/// Ends the run if what was saved, loaded and saved again differs.
inline void RequireSame(const WideString &first, const WideString &second)
{
    if (first == second)
        return;
    std::fprintf(stderr, "saved first:\n%s\nsaved again:\n%s\n", ToUtf8(first).c_str(),
                 ToUtf8(second).c_str());
    std::abort();
}

/// Times around a layer's start, and as far from it as an int goes.
constexpr int kFarTimes[] = {-2147483647 - 1, -40, 0, 33, 1000, 2147483647};

} // namespace marlet::project
