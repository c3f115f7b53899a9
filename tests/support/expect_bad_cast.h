/// Checks of refused values.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <typeinfo>

/// `statement` throws a `std::bad_cast`, or something derived from it, with the text "bad cast".
#define EXPECT_BAD_CAST(statement)                                                                                     \
    try                                                                                                                \
    {                                                                                                                  \
        statement;                                                                                                     \
        ADD_FAILURE() << #statement " threw nothing, expected: bad cast";                                              \
    }                                                                                                                  \
    catch (const std::bad_cast& error)                                                                                 \
    {                                                                                                                  \
        EXPECT_STREQ(error.what(), "bad cast");                                                                        \
    }                                                                                                                  \
    catch (const std::exception& error)                                                                                \
    {                                                                                                                  \
        ADD_FAILURE() << #statement " threw no std::bad_cast but: " << error.what();                                   \
    }
