#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace marlet::test
{

/// Expects that a setter stores a value that the object did not have, and that the getter tells it.
template <class Object, class Get, class Set, class Value>
void ExpectStored(const char *name, Object &object, Get get, Set set, const Value &value)
{
    SCOPED_TRACE(name);
    EXPECT_NE(std::invoke(get, std::as_const(object)), value);
    std::invoke(set, object, value);
    EXPECT_EQ(std::invoke(get, std::as_const(object)), value);
}

} // namespace marlet::test
