/// Small trees for the tests of the records: making, comparing and showing them.
#pragma once

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <string>

namespace vela_test {

using Json::Value;

inline const Value null_value;

/// A list of these elements.
Value list_of(Value::List elements);

/// The value as text, kinds told apart: 1 is an integer, 1.0 a decimal. Fills lists.
std::string show(const Value& value);

/// Same kinds and same payloads to the bit, so that NaN is the same as NaN, and 0.0 is not -0.0. Fills lists.
/// A failure names the first place where they differ.
testing::AssertionResult same_tree(const Value& got, const Value& expected);

} // namespace vela_test

#define EXPECT_TREE(got, expected) EXPECT_TRUE(::vela_test::same_tree((got), (expected)))
#define ASSERT_TREE(got, expected) ASSERT_TRUE(::vela_test::same_tree((got), (expected)))
