#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace marlet::test
{

/// Puts an entry into a list, with an empty one on each side.
template <class List> void Surround(List &list, const typename List::value_type &entry)
{
    for (const auto &each : {typename List::value_type(), entry, typename List::value_type()})
        list.Add(each);
}

/// Whether the call is refused for an argument that is null, by its name.
template <class Call> testing::AssertionResult Refuses(const char *argument, Call &&call)
{
    try {
        call();
    } catch (const std::invalid_argument &failure) {
        return failure.what() == "The " + std::string(argument) + " must not be null"
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << failure.what();
    }
    return testing::AssertionFailure() << "nothing thrown";
}

} // namespace marlet::test
