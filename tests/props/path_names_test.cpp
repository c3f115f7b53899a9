// Which names and paths are valid.
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(PropName, BeginsWithALetterOrAnUnderscore)
{
    for (const char* const name : {"a", "Z", "_", "__", "_1", "a1", "a-b", "a_b", "a-", "azAZ09_-", "z0"})
        EXPECT_TRUE(vela_prop_is_valid_name(name)) << name;
    for (const char* const name : {"", "1", "1a", "-", "-a", " ", " a", ".", "{", "%"})
        EXPECT_FALSE(vela_prop_is_valid_name(name)) << name;
}

TEST(PropName, GoesOnWithLettersDigitsUnderscoresAndHyphens)
{
    for (const char* const name : {"a b", "a ", "a.b", "a.", "a{1}", "a(1)", "a,b", "a+b", "a\n", "a:b", "a/b"})
        EXPECT_FALSE(vela_prop_is_valid_name(name)) << name;
    EXPECT_FALSE(vela_prop_is_valid_name(std::string("a\0", 2)));
    EXPECT_FALSE(vela_prop_is_valid_name(std::string("\0a", 2)));
}

TEST(PropName, HoldsAsciiAlone)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const char c = static_cast<char>(byte);
        const bool letter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        const bool digit = byte >= '0' && byte <= '9';
        EXPECT_EQ(vela_prop_is_valid_name(std::string(1, c)), letter || c == '_') << byte;
        EXPECT_EQ(vela_prop_is_valid_name(std::string("a") + c), letter || digit || c == '_' || c == '-') << byte;
    }
}

TEST(PropPath, IsValidIfItLeadsToAValue)
{
    for (const char* const path : {"",
                                   "a",
                                   "a.b",
                                   "a.",
                                   "a-b",
                                   "_",
                                   "a{1}",
                                   "a{}",
                                   "a{1,2,3}",
                                   "a{1}.",
                                   "{1}",
                                   "{1}{2}",
                                   "{0}.a",
                                   "a(1).b",
                                   "(1).b",
                                   "(1).b{2}",
                                   "a().b",
                                   "a{x}",
                                   "a{ 1}",
                                   "scan.axes(2).label{1,3}",
                                   "a{0}{1,2}.b(1,1).c"})
        EXPECT_TRUE(vela_prop_is_valid_path(path)) << path;
}

TEST(PropPath, IsInvalidIfItDoesNot)
{
    for (const char* const path : {".",
                                   ".a",
                                   "a..b",
                                   "a..",
                                   "1a",
                                   "a.1",
                                   "a b",
                                   "{1",
                                   "a{1",
                                   "a{1)",
                                   "{1.5}",
                                   "a{1}b",
                                   "a(1",
                                   "(-1).a",
                                   "a{-1}",
                                   "a{0,-1}",
                                   "a{2147483648}",
                                   "a(99999999999).b",
                                   "a}",
                                   "-a",
                                   "a.-b",
                                   "\xc3\xa4"})
        EXPECT_FALSE(vela_prop_is_valid_path(path)) << path;
}

TEST(PropPath, IsInvalidIfItEndsInAStructArray)
{
    for (const char* const path : {"a(1)", "(1)", "a(1).", "a()", "a{1}(2)", "a(1).b(2)"})
        EXPECT_FALSE(vela_prop_is_valid_path(path)) << path;
}

TEST(PropPath, IsInvalidIfAStructIsTakenForAnArray)
{
    EXPECT_FALSE(vela_prop_is_valid_path("a(1){2}"));
    EXPECT_FALSE(vela_prop_is_valid_path("a(1)(2).b"));
    EXPECT_FALSE(vela_prop_is_valid_path("a(1)b"));
}

TEST(PropPath, MayHaveEveryHyphenAndDigit)
{
    EXPECT_TRUE(vela_prop_is_valid_path("a-1.b-2.c_3"));
    EXPECT_FALSE(vela_prop_is_valid_path(std::string("a\0b", 3)));
}

}
