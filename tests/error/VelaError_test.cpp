// What an error is made of: constructors, message, id, flags, accessors, and the laws of the type.
#include <VelaBase/VelaError.h>

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace {

static_assert(std::is_base_of_v<std::exception, VelaError>);
static_assert(std::is_convertible_v<VelaError*, std::exception*>, "the base is public");
static_assert(std::is_polymorphic_v<VelaError>);
static_assert(std::has_virtual_destructor_v<VelaError>);
static_assert(std::is_nothrow_destructible_v<VelaError>);
static_assert(std::is_default_constructible_v<VelaError>);
static_assert(std::is_copy_constructible_v<VelaError>);
static_assert(std::is_copy_assignable_v<VelaError>);
static_assert(std::is_constructible_v<VelaError, const char*, const char*, int>);
static_assert(std::is_constructible_v<VelaError, const std::string&, const char*, const char*, int>);
static_assert(std::is_convertible_v<const VelaError&, int>);
static_assert(!std::is_convertible_v<const char*, VelaError>, "no error by accident");

static_assert(noexcept(std::declval<const VelaError&>().what()));
static_assert(std::is_same_v<decltype(std::declval<const VelaError&>().what()), const char*>);
static_assert(std::is_same_v<decltype(std::declval<const VelaError&>().clone()), VelaError*>);
static_assert(std::is_same_v<decltype(std::declval<const VelaError&>().process()), int>);
static_assert(std::is_same_v<decltype(std::declval<VelaError&>()("%d", 1)), VelaError&>);
static_assert(std::is_same_v<decltype(std::declval<VelaError&>()(1)), VelaError&>);
static_assert(std::is_same_v<decltype(std::declval<VelaError&>().do_warn()), VelaError&>);
static_assert(std::is_same_v<decltype(std::declval<VelaError&>().do_process()), VelaError&>);
static_assert(std::is_same_v<decltype(std::declval<VelaError&>().do_oserr()), VelaError&>);

TEST(VelaError, TheDefaultHasNoPlace)
{
    const VelaError error;
    EXPECT_EQ(error.get_func(), nullptr);
    EXPECT_EQ(error.get_file(), nullptr);
    EXPECT_EQ(error.get_line(), 0);
}

TEST(VelaError, ANewErrorHasIdMinusOneAndNothingElse)
{
    const VelaError error("Reader::open", "sources/reader.cpp", 17);
    EXPECT_EQ(error.get_id(), -1);
    EXPECT_EQ(error.get_msg(), "");
    EXPECT_EQ(error.get_oserr(), "");
    EXPECT_EQ(error.get_oserr_id(), 0);
}

TEST(VelaError, FunctionComesFirstThenFileThenLine)
{
    const VelaError error("Reader::open", "sources/reader.cpp", 17);
    EXPECT_STREQ(error.get_func(), "Reader::open");
    EXPECT_STREQ(error.get_file(), "sources/reader.cpp");
    EXPECT_EQ(error.get_line(), 17);
}

TEST(VelaError, FunctionAndFileAreNotCopied)
{
    const char function[] = "Reader::open";
    const char file[] = "sources/reader.cpp";
    const VelaError plain(function, file, 17);
    EXPECT_EQ(plain.get_func(), function);
    EXPECT_EQ(plain.get_file(), file);
    const VelaError with_message(std::string("text"), function, file, 17);
    EXPECT_EQ(with_message.get_func(), function);
    EXPECT_EQ(with_message.get_file(), file);
}

TEST(VelaError, TheLineKeepsAll32Bits)
{
    for (const int line : {1, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_EQ(VelaError("f", "a.cpp", line).get_line(), line);
}

TEST(VelaError, TheMessageOfTheConstructorIsTakenAsItStands)
{
    const std::string message("100% of \"%s\" %n\0and more", 24);
    const VelaError error(message, "f", "a.cpp", 3);
    EXPECT_EQ(error.get_msg(), message);
    EXPECT_STREQ(error.get_func(), "f");
    EXPECT_STREQ(error.get_file(), "a.cpp");
    EXPECT_EQ(error.get_line(), 3);
    EXPECT_EQ(error.get_id(), -1);
    EXPECT_EQ(error.get_oserr_id(), 0);
}

TEST(VelaError, TheMessageOfTheConstructorIsNotCut)
{
    const std::string message(100000, 'm');
    EXPECT_EQ(VelaError(message, "f", "a.cpp", 3).get_msg(), message);
}

TEST(VelaError, TheMessageIsFormatted)
{
    VelaError error("f", "a.cpp", 3);
    error("%s has %d of %lld bytes, %5.2f%%, 0x%04x '%c'", "pollen.vbf", -7, 12345678901LL, 12.345, 0xabu, 'x');
    EXPECT_EQ(error.get_msg(), "pollen.vbf has -7 of 12345678901 bytes, 12.35%, 0x00ab 'x'");
}

TEST(VelaError, ANewMessageReplacesTheOldOne)
{
    VelaError error(std::string("the first and longer one"), "f", "a.cpp", 3);
    error("second %d", 2);
    EXPECT_EQ(error.get_msg(), "second 2");
    error("%s", "");
    EXPECT_EQ(error.get_msg(), "");
}

TEST(VelaError, TheMessageMayBeFormattedFromItself)
{
    VelaError error("f", "a.cpp", 3);
    error("inner");
    error("outer: %s", error.get_msg().c_str());
    EXPECT_EQ(error.get_msg(), "outer: inner");
}

TEST(VelaError, AFormattedMessageIsCutAt4095Characters)
{
    for (const std::size_t length :
         {std::size_t(4094), std::size_t(4095), std::size_t(4096), std::size_t(4097), std::size_t(20000)})
    {
        std::string text;
        for (std::size_t i = 0; i < length; ++i)
            text += static_cast<char>('a' + i % 26);
        VelaError error("f", "a.cpp", 3);
        error("%s", text.c_str());
        EXPECT_EQ(error.get_msg(), text.substr(0, 4095)) << length;
    }
}

TEST(VelaError, TheCutCountsTheResultAndNotTheFormat)
{
    VelaError error("f", "a.cpp", 3);
    error("%5000d", 1);
    EXPECT_EQ(error.get_msg(), std::string(4095, ' '));
    error("<%4095s>", "y");
    EXPECT_EQ(error.get_msg(), "<" + std::string(4094, ' '));
}

TEST(VelaError, TheIdIsSetByTheCallWithANumber)
{
    VelaError error("f", "a.cpp", 3);
    for (const int id : {-3, 1, 0, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
    {
        error(id);
        EXPECT_EQ(error.get_id(), id);
    }
    error(0);
    EXPECT_EQ(error.get_id(), 0) << "a literal 0 is a number and not a null format";
}

TEST(VelaError, AsAnIntItIsItsId)
{
    const VelaError error = VelaError("f", "a.cpp", 3)(-15);
    const int as_number = error;
    EXPECT_EQ(as_number, -15);
    EXPECT_EQ(static_cast<int>(VelaError()), -1);
}

TEST(VelaError, MessageAndIdDoNotTouchEachOther)
{
    VelaError error("f", "a.cpp", 3);
    error("text")(-4)("other text");
    EXPECT_EQ(error.get_id(), -4);
    error(-5);
    EXPECT_EQ(error.get_msg(), "other text");
    EXPECT_STREQ(error.get_func(), "f");
    EXPECT_STREQ(error.get_file(), "a.cpp");
    EXPECT_EQ(error.get_line(), 3);
}

TEST(VelaError, EveryStepReturnsTheErrorItself)
{
    VelaError error("f", "a.cpp", 3);
    EXPECT_EQ(&error("text"), &error);
    EXPECT_EQ(&error("%d", 1), &error);
    EXPECT_EQ(&error(-4), &error);
    EXPECT_EQ(&error.do_oserr(), &error);
    EXPECT_EQ(&error.do_process(), &error);
    testing::internal::CaptureStderr();
    {
        VelaError warning;
        EXPECT_EQ(&warning.do_warn(), &warning);
    }
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST(VelaError, AThrowReadsAsOneExpression)
{
    EXPECT_VELA_ERROR_IN(
        throw VelaError("Reader::open", "sources/file/reader.cpp", 42)("Cannot open '%s'", "a.vbf")(-3), "Reader::open",
        "sources/file", -3, "Cannot open 'a.vbf'");
    EXPECT_VELA_ERROR(throw VelaError("Reader::open", "sources/file/reader.cpp", 42)("No id"), -1, "No id");
}

TEST(VelaError, IsCaughtAsAStandardException)
{
    try
    {
        throw VelaError("f", "a.cpp", 3)("text")(-6);
    }
    catch (const std::exception& error)
    {
        EXPECT_STREQ(error.what(), "a.cpp(3): ERROR\n    in function 'f':\n    text");
        EXPECT_EQ(dynamic_cast<const VelaError&>(error).get_id(), -6);
    }
}

TEST(VelaError, TravelsFromAnotherThread)
{
    std::exception_ptr caught;
    std::thread thrower(
        [&caught]
        {
            try
            {
                throw VelaError("f", "a.cpp", 3)("from a thread")(-9);
            }
            catch (...)
            {
                caught = std::current_exception();
            }
        });
    thrower.join();
    EXPECT_VELA_ERROR(std::rethrow_exception(caught), -9, "from a thread");
}

#if defined(__x86_64__) && defined(__GXX_ABI_VERSION)
/// Index of a virtual member function in its table, as this ABI keeps it in a pointer to member.
template <class Member>
std::size_t slot_of(Member member)
{
    std::uintptr_t words[2];
    static_assert(sizeof words == sizeof member);
    std::memcpy(words, &member, sizeof words);
    EXPECT_EQ(words[0] % sizeof(void*), 1u) << "not a virtual function";
    return words[0] / sizeof(void*);
}

TEST(VelaError, VirtualFunctionsKeepTheirOrder)
{
    EXPECT_EQ(slot_of(&VelaError::what), 2u) << "behind the two entries of the destructor";
    EXPECT_EQ(slot_of(&VelaError::clone), 3u);
}
#endif

} // namespace
