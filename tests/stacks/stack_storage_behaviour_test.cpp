// The storage of a stack, private or shared.
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include "support/expect_vela_error.h"

#include <boost/interprocess/exceptions.hpp>

namespace {

constexpr const char* shared_text = "Cannot resize shared data";

std::string text_of(const VStackData& data)
{
    return data.data() == nullptr ? std::string()
                                  : std::string(reinterpret_cast<const char*>(data.data()), data.size());
}

void fill(VStackData& data, const std::string& text)
{
    data.resize(text.size());
    text.copy(reinterpret_cast<char*>(data.data()), text.size());
}

TEST(StackStorage, ANewOneIsPrivateAndEmpty)
{
    VStackData data;
    EXPECT_EQ(data.size(), 0U);
    EXPECT_EQ(data.data(), nullptr);
    EXPECT_EQ(static_cast<const VStackData&>(data).data(), nullptr);
    EXPECT_NE(data.private_block(), nullptr);
}

TEST(StackStorage, ResizeKeepsOldBytesAndZerosNewOnes)
{
    VStackData data;
    fill(data, "abc");
    data.resize(5);
    EXPECT_EQ(text_of(data), std::string("abc\0\0", 5));
    data.resize(1);
    EXPECT_EQ(text_of(data), "a");
    data.resize(3);
    EXPECT_EQ(text_of(data), std::string("a\0\0", 3));
    data.resize(0);
    EXPECT_EQ(data.data(), nullptr);
}

TEST(StackStorage, ClearEmptiesAPrivateBlockForAllWhoShareIt)
{
    VStackData data;
    fill(data, "abc");
    VStackData copy(data);
    EXPECT_EQ(copy.data(), data.data());
    copy.clear();
    EXPECT_EQ(data.size(), 0U);
    EXPECT_EQ(data.data(), nullptr);
    data.resize(2);
    EXPECT_EQ(text_of(copy), std::string(2, '\0'));
}

TEST(StackStorage, SharedDataCannotBeResizedNotEvenToItsOwnSize)
{
    VStackData data;
    fill(data, "abc");
    const char* const id = data.share();
    EXPECT_EQ(data.private_block(), nullptr);
    EXPECT_EQ(text_of(data), "abc");
    EXPECT_EQ(data.share(), id);
    for (const std::uint64_t size : {0U, 2U, 3U, 4U})
        EXPECT_THROW_TEXT(data.resize(size), std::runtime_error, shared_text);
    EXPECT_EQ(text_of(data), "abc");
}

TEST(StackStorage, ClearLeavesASharedBlockToTheOthers)
{
    VStackData data;
    fill(data, "abc");
    const std::string id = data.share();
    VStackData copy(data);
    data.clear();
    EXPECT_NE(data.private_block(), nullptr);
    EXPECT_EQ(data.size(), 0U);
    EXPECT_EQ(data.data(), nullptr);
    EXPECT_EQ(text_of(copy), "abc");
    EXPECT_EQ(copy.share(), id);
    data.resize(2);
    EXPECT_EQ(text_of(data), std::string(2, '\0'));
    copy.clear();
    EXPECT_THROW(Vela::SharedMemory{id}, boost::interprocess::interprocess_exception);
}

TEST(StackStorage, AttachingByIdSharesTheSegmentWithoutOwningIt)
{
    VStackData data;
    fill(data, "abc");
    const std::string id = data.share();
    {
        VStackData attached(id);
        EXPECT_EQ(attached.private_block(), nullptr);
        EXPECT_EQ(attached.share(), id);
        EXPECT_EQ(text_of(attached), "abc");
        attached.data()[0] = 'x';
        EXPECT_THROW_TEXT(attached.resize(3), std::runtime_error, shared_text);
    }
    EXPECT_EQ(text_of(data), "xbc");
    VStackData attached(id);
    data.clear();
    EXPECT_EQ(text_of(attached), "xbc");
    attached.clear();
    attached.resize(1);
    EXPECT_EQ(text_of(attached), std::string(1, '\0'));
}

TEST(StackStorage, AttachingToAnUnknownIdIsAnInterprocessException)
{
    EXPECT_THROW(VStackData("00000000-0000-4000-8000-000000000000"), boost::interprocess::interprocess_exception);
}

TEST(StackStorage, NothingIsSharedAsASegmentOfNoBytes)
{
    VStackData data;
    const std::string id = data.share();
    VStackData attached(id);
    EXPECT_EQ(attached.size(), 0U);
    EXPECT_EQ(attached.data(), nullptr);
    EXPECT_THROW_TEXT(attached.resize(0), std::runtime_error, shared_text);
}

} // namespace
