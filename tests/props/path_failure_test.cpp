// The failures of walks, with function, id and text.
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>

namespace {

#define EXPECT_PATH_ERROR(statement, function, text)                                                                   \
    EXPECT_VELA_ERROR_IN(statement, function, "sources/props", -1, text)

struct Failure
{
    const char* path;
    const char* text;
};

class SplitFailure : public testing::TestWithParam<Failure>
{
};

TEST_P(SplitFailure, IsThatOfEveryWalk)
{
    VProp p;
    p["a"] = 1;
    VPropstruct tree;
    EXPECT_PATH_ERROR(p[GetParam().path], "_s_split", GetParam().text);
    EXPECT_PATH_ERROR(p.getp(GetParam().path, false), "_s_split", GetParam().text);
    EXPECT_PATH_ERROR(static_cast<const VProp&>(p).getp(GetParam().path), "_s_split", GetParam().text);
    EXPECT_PATH_ERROR(tree[GetParam().path], "_s_split", GetParam().text);
    EXPECT_PATH_ERROR(VProp()[GetParam().path], "_s_split", GetParam().text);
    EXPECT_TRUE(tree.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Of, SplitFailure,
    testing::Values(Failure{".a", "Error parsing prop path: '.a' starts with an empty segment!"},
                    Failure{".", "Error parsing prop path: '.' starts with an empty segment!"},
                    Failure{"..", "Error parsing prop path: '..' starts with an empty segment!"},
                    Failure{".a.b{1}", "Error parsing prop path: '.a.b{1}' starts with an empty segment!"},
                    Failure{"1a", "Error parsing prop path: '1a' is not a valid name!"},
                    Failure{"1a.b{2}", "Error parsing prop path: '1a' is not a valid name!"},
                    Failure{"-a", "Error parsing prop path: '-a' is not a valid name!"},
                    Failure{"a b.c", "Error parsing prop path: 'a b' is not a valid name!"},
                    Failure{" a", "Error parsing prop path: ' a' is not a valid name!"},
                    Failure{"a}", "Error parsing prop path: 'a}' is not a valid name!"},
                    Failure{"}", "Error parsing prop path: '}' is not a valid name!"},
                    Failure{"a,b", "Error parsing prop path: 'a,b' is not a valid name!"},
                    Failure{"%s%n", "Error parsing prop path: '%s%n' is not a valid name!"},
                    Failure{"\xc3\xa4", "Error parsing prop path: '\xc3\xa4' is not a valid name!"},
                    Failure{"a\xe4", "Error parsing prop path: 'a\xe4' is not a valid name!"}));

class BracketFailure : public testing::TestWithParam<Failure>
{
};

TEST_P(BracketFailure, IsThatOfEveryWalk)
{
    VProp p;
    p["{0}"] = 1;
    VPropstruct tree;
    EXPECT_PATH_ERROR(p[GetParam().path], "_s_getpos", GetParam().text);
    EXPECT_PATH_ERROR(p.getp(GetParam().path, false), "_s_getpos", GetParam().text);
    EXPECT_PATH_ERROR(tree[GetParam().path], "_s_getpos", GetParam().text);
    EXPECT_PATH_ERROR(VProp(1)[GetParam().path], "_s_getpos", GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Of, BracketFailure,
    testing::Values(Failure{"{1", "Brackets not matched in '{1'!"}, Failure{"(1", "Brackets not matched in '(1'!"},
                    Failure{"{", "Brackets not matched in '{'!"}, Failure{"(", "Brackets not matched in '('!"},
                    Failure{"{1)", "Brackets not matched in '{1)'!"}, Failure{"(1}", "Brackets not matched in '(1}'!"},
                    Failure{"{1}a", "Brackets not matched in '{1}a'!"},
                    Failure{"{1}a.b", "Brackets not matched in '{1}a'!"},
                    Failure{"{1.5}", "Brackets not matched in '{1'!"},
                    Failure{"(1.5)", "Brackets not matched in '(1'!"}, Failure{"{{1}}", "Brackets not matched in '{'!"},
                    Failure{"((1)).a", "Brackets not matched in '('!"}, Failure{"{.}", "Brackets not matched in '{'!"},
                    Failure{"{1} ", "Brackets not matched in '{1} '!"},
                    Failure{"(-1)", "Invalid index '-1' specified in segment '(-1)'!"},
                    Failure{"{-1}", "Invalid index '-1' specified in segment '{-1}'!"},
                    Failure{"(-1).a", "Invalid index '-1' specified in segment '(-1)'!"},
                    Failure{"{ -7x}", "Invalid index ' -7x' specified in segment '{ -7x}'!"},
                    Failure{"{-5,3}", "Invalid index '-5' specified in segment '{-5,3}'!"}));

// The token ends as many characters behind its start as its end is from the start of the segment, less one.
INSTANTIATE_TEST_SUITE_P(
    OfALaterIndex, BracketFailure,
    testing::Values(Failure{"{1,-2}", "Invalid index '-2}' specified in segment '{1,-2}'!"},
                    Failure{"{1,-2,3}", "Invalid index '-2,3' specified in segment '{1,-2,3}'!"},
                    Failure{"{1,-2,3,4}", "Invalid index '-2,3' specified in segment '{1,-2,3,4}'!"},
                    Failure{"{1,2,-3}", "Invalid index '-3}' specified in segment '{1,2,-3}'!"},
                    Failure{"(10,20,-3,40,50).a", "Invalid index '-3,40,50' specified in segment '(10,20,-3,40,50)'!"},
                    Failure{"{1,,-1,7,7,7,7}", "Invalid index '-1,7,' specified in segment '{1,,-1,7,7,7,7}'!"}));

INSTANTIATE_TEST_SUITE_P(
    OfANumberThatIntCannotHold, BracketFailure,
    testing::Values(
        Failure{"{2147483648}", "Invalid index '2147483648' specified in segment '{2147483648}'!"},
        Failure{"(4294967296).a", "Invalid index '4294967296' specified in segment '(4294967296)'!"},
        Failure{"{4294967297}", "Invalid index '4294967297' specified in segment '{4294967297}'!"},
        Failure{"{-2147483649}", "Invalid index '-2147483649' specified in segment '{-2147483649}'!"},
        Failure{"{-4294967295}", "Invalid index '-4294967295' specified in segment '{-4294967295}'!"},
        Failure{"{18446744073709551616}",
                "Invalid index '18446744073709551616' specified in segment '{18446744073709551616}'!"},
        Failure{"{99999999999999999999999999}",
                "Invalid index '99999999999999999999999999' specified in segment '{99999999999999999999999999}'!"}));

TEST(PathFailure, OfTheLargestIndexIsThatOfTheArray)
{
    VProp p;
    p["{1}"] = 1;
    EXPECT_VELA_ERROR_IN(p.getp("{2147483647}"), "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 1 out of bounds! (2147483647 >= 2)!");
}

TEST(PathFailure, NamesWhatIsLeftOfThePath)
{
    VProp p;
    p["a.b"] = 1;
    EXPECT_PATH_ERROR(p["a..b"], "_s_split", "Error parsing prop path: '.b' starts with an empty segment!");
    EXPECT_PATH_ERROR(p["a.1"], "_s_split", "Error parsing prop path: '1' is not a valid name!");
    EXPECT_PATH_ERROR(p["a.b{1}c"], "_s_getpos", "Brackets not matched in '{1}c'!");
    EXPECT_PATH_ERROR(p["a.b{1}.c"], "VProp::getp", "Path ...'{1}.c' references cell content from a non-cell array!");
    EXPECT_PATH_ERROR(p["a{1}"], "VProp::getp", "Path ...'{1}' references cell content from a non-cell array!");
    EXPECT_PATH_ERROR(p["a.b(2).c.d"], "VProp::getp", "Path ...'(2).c.d' references struct from a non-struct array!");
}

TEST(PathFailure, OfAMissingMemberNamesIt)
{
    VProp p;
    p["x.y"] = 1;
    EXPECT_PATH_ERROR(p.getp("a.b"), "VPropstruct::getp", "Struct member 'a' does not exist!");
    EXPECT_PATH_ERROR(p.getp("a.b", false), "VPropstruct::getp", "Struct member 'a' does not exist!");
    EXPECT_PATH_ERROR(p.getp("x.z{1}"), "VPropstruct::getp", "Struct member 'z' does not exist!");
    EXPECT_PATH_ERROR(p.getp("X"), "VPropstruct::getp", "Struct member 'X' does not exist!");
}

TEST(PathFailure, OfAnEmptyValueWithoutCreatingIsATypeMismatch)
{
    VProp p;
    EXPECT_PATH_ERROR(p.getp("x", false), "VProp::get", "Type mismatch: found none, expected struct");
    EXPECT_PATH_ERROR(static_cast<const VProp&>(p).getp("x"), "VProp::get",
                      "Type mismatch: found none, expected struct");
    EXPECT_PATH_ERROR(p.getp("{0}", false), "VProp::getp",
                      "Path ...'{0}' references cell content from a non-cell array!");
    EXPECT_PATH_ERROR(p.getp("(0).a", false), "VProp::getp",
                      "Path ...'(0).a' references struct from a non-struct array!");
    EXPECT_TRUE(p.empty());
}

TEST(PathFailure, OfAMemberOfSomethingElseIsATypeMismatch)
{
    EXPECT_PATH_ERROR(VProp(1.5)["x"], "VProp::get", "Type mismatch: found double, expected struct");
    EXPECT_PATH_ERROR(VProp(L"text")["x.y"], "VProp::get", "Type mismatch: found char, expected struct");
    VProp structs;
    structs.s(1);
    EXPECT_PATH_ERROR(structs["x"], "VProp::get", "Type mismatch: found struct[], expected struct");
    VProp cells;
    cells(1);
    EXPECT_PATH_ERROR(cells["x"], "VProp::get", "Type mismatch: found cell[], expected struct");
}

TEST(PathFailure, OfAnArrayOfTheWrongKind)
{
    VProp structs;
    structs.s(1);
    EXPECT_PATH_ERROR(structs["{0}"], "VProp::getp", "Path ...'{0}' references cell content from a non-cell array!");
    VProp cells;
    cells(1);
    EXPECT_PATH_ERROR(cells["(0).a"], "VProp::getp", "Path ...'(0).a' references struct from a non-struct array!");
    VProp numbers{VProparray<double>()};
    EXPECT_PATH_ERROR(numbers["{0}"], "VProp::getp", "Path ...'{0}' references cell content from a non-cell array!");
    VProp one{VPropstruct()};
    EXPECT_PATH_ERROR(one["(0).a"], "VProp::getp", "Path ...'(0).a' references struct from a non-struct array!");
}

TEST(PathFailure, OfAPathThatEndsInAStructArray)
{
    VProp p;
    p["a(1).b"] = 1;
    EXPECT_PATH_ERROR(p["a(1)"], "VProp::getp", "Path ...'(1)' ends in struct array!");
    EXPECT_PATH_ERROR(p["a(1)."], "VProp::getp", "Path ...'(1).' ends in struct array!");
    EXPECT_PATH_ERROR(p.getp("a(0,1)", false), "VProp::getp", "Path ...'(0,1)' ends in struct array!");
    EXPECT_PATH_ERROR(p["a(77)"], "VProp::getp", "Path ...'(77)' ends in struct array!");
    EXPECT_EQ(p.getp("a").get_arr(true)->count(), 2u) << "it did not grow";
}

TEST(PathFailure, OfTheKindComesBeforeThatOfTheEnd)
{
    EXPECT_PATH_ERROR(VProp(1)["(1)"], "VProp::getp", "Path ...'(1)' references struct from a non-struct array!");
}

TEST(PathFailure, OfAStructThatIsGivenAnArraySegment)
{
    VProp p;
    EXPECT_PATH_ERROR(p["a(1){2}"], "VPropstruct::getp", "Expected path ...'{2}' to start with struct member!");
    EXPECT_PATH_ERROR(p["a(1)(2).b"], "VPropstruct::getp", "Expected path ...'(2).b' to start with struct member!");
    EXPECT_PATH_ERROR(p["a(1){2"], "_s_getpos", "Brackets not matched in '{2'!");
    EXPECT_PATH_ERROR(p["a(1)..b"], "_s_split", "Error parsing prop path: '.b' starts with an empty segment!");
}

TEST(PathFailure, OfAnIndexIsThatOfTheArray)
{
    VProp p;
    p["a{1,1}"] = 1;
    p["b(1).x"] = 1;
    EXPECT_VELA_ERROR_IN(p.getp("a{0,2}"), "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 1 out of bounds! (2 >= 2)!");
    EXPECT_VELA_ERROR_IN(p.getp("b(2).x"), "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 1 out of bounds! (2 >= 2)!");
    EXPECT_VELA_ERROR_IN(p["b(1,0).x"], "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 0 out of bounds! (1 >= 1)!");
    EXPECT_VELA_ERROR_IN(p["b(1,0,0).x"], "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 0 out of bounds! (1 >= 1)!");
}

}
