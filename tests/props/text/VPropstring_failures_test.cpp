// An encoding that is none of the three: the failure, and what it leaves.
#include "props/text/texts.h"
#include "support/expect_vela_error.h"

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

using vela_test::wide;

struct UnknownEncoding
{
    std::int32_t number;
    const char* text;
};

const UnknownEncoding unknown_encodings[] = {
    {3, "Unknown encoding '3' found"},
    {-1, "Unknown encoding '-1' found"},
    {65001, "Unknown encoding '65001' found"},
    {std::numeric_limits<std::int32_t>::max(), "Unknown encoding '2147483647' found"},
    {std::numeric_limits<std::int32_t>::min(), "Unknown encoding '-2147483648' found"},
};

TEST(UnknownEncoding, FailsInFromAndLeavesTheText)
{
    for (const UnknownEncoding& unknown : unknown_encodings)
    {
        const auto enc = static_cast<VPropstring::encoding>(unknown.number);
        VPropstring text(std::wstring(L"old\0text", 8));
        EXPECT_THROW_TEXT(text.from("abc", enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(text.from("abc", enc, 2), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(text.from(std::string("abc"), enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(text.from("", enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(text.from("abc", enc, 0), std::invalid_argument, unknown.text);
        EXPECT_EQ(wide(text), std::wstring(L"old\0text", 8));
    }
}

TEST(UnknownEncoding, FailsInToAndLeavesTheTextAndTheOutput)
{
    for (const UnknownEncoding& unknown : unknown_encodings)
    {
        const auto enc = static_cast<VPropstring::encoding>(unknown.number);
        const VPropstring text(L"text");
        std::string out = "old";
        char buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
        std::size_t size = sizeof buffer;
        EXPECT_THROW_TEXT(text.to(enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(text.to(out, enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(text.to(buffer, size, enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(VPropstring().to(enc), std::invalid_argument, unknown.text);
        EXPECT_EQ(wide(text), L"text");
        EXPECT_EQ(out, "old");
        EXPECT_EQ(size, 8u);
        EXPECT_EQ(std::string(buffer, 8), "########");
    }
}

TEST(UnknownEncoding, FailsInMeasuring)
{
    for (const UnknownEncoding& unknown : unknown_encodings)
    {
        const auto enc = static_cast<VPropstring::encoding>(unknown.number);
        EXPECT_THROW_TEXT(VPropstring(L"text").size_in(enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(VPropstring::size_in(L"text", enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(VPropstring::size_in(L"text", enc, 2), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(VPropstring::length_of("text", enc), std::invalid_argument, unknown.text);
        EXPECT_THROW_TEXT(VPropstring::length_of("text", enc, 0), std::invalid_argument, unknown.text);
    }
}

} // namespace
