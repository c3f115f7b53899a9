// The failure of callers that miss a key.
#include "support/expect_vela_error.h"

#include <Json/NoParameterError.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using Json::NoParameterError;

static_assert(std::is_base_of_v<std::invalid_argument, NoParameterError>);
static_assert(std::has_virtual_destructor_v<NoParameterError>);
static_assert(std::is_copy_constructible_v<NoParameterError>);
static_assert(std::is_move_constructible_v<NoParameterError>);
static_assert(std::is_copy_assignable_v<NoParameterError>);
static_assert(std::is_move_assignable_v<NoParameterError>);

TEST(NoParameterError, NamesTheParameter)
{
    EXPECT_THROW_TEXT(throw NoParameterError("exposure"), NoParameterError, "No parameter 'exposure'");
    EXPECT_THROW_TEXT(throw NoParameterError(""), NoParameterError, "No parameter ''");
    EXPECT_THROW_TEXT(throw NoParameterError("it's % s"), NoParameterError, "No parameter 'it's % s'");
}

TEST(NoParameterError, IsCaughtAsAnInvalidArgument)
{
    EXPECT_THROW(throw NoParameterError("a"), std::invalid_argument);
}

TEST(NoParameterError, KeepsItsTextWhenCopiedAndMoved)
{
    NoParameterError original(std::string(100, 'n'));
    const std::string text = "No parameter '" + std::string(100, 'n') + "'";
    const NoParameterError copy(original);
    EXPECT_EQ(copy.what(), text);
    EXPECT_EQ(original.what(), text);
    NoParameterError assigned("other");
    assigned = copy;
    EXPECT_EQ(assigned.what(), text);
    const NoParameterError moved(std::move(original));
    EXPECT_EQ(moved.what(), text);
    NoParameterError move_assigned("other");
    move_assigned = std::move(assigned);
    EXPECT_EQ(move_assigned.what(), text);
}

}
