/// Checks of failures as a whole: type, id and text.
#pragma once

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

#include <string>

/// `statement` throws a `VelaError` with this id and message.
#define EXPECT_VELA_ERROR(statement, expected_id, expected_text)                                                       \
    try                                                                                                                \
    {                                                                                                                  \
        statement;                                                                                                     \
        ADD_FAILURE() << #statement " threw nothing, expected: " << (expected_text);                                   \
    }                                                                                                                  \
    catch (const VelaError& error)                                                                                     \
    {                                                                                                                  \
        EXPECT_EQ(error.get_id(), (expected_id));                                                                      \
        EXPECT_EQ(error.get_msg(), std::string(expected_text));                                                        \
    }                                                                                                                  \
    catch (const std::exception& error)                                                                                \
    {                                                                                                                  \
        ADD_FAILURE() << #statement " threw no VelaError but: " << error.what();                                       \
    }

/// The same, and the function name and the folder of the source path that the error names.
#define EXPECT_VELA_ERROR_IN(statement, expected_function, expected_folder, expected_id, expected_text)                \
    try                                                                                                                \
    {                                                                                                                  \
        statement;                                                                                                     \
        ADD_FAILURE() << #statement " threw nothing, expected: " << (expected_text);                                   \
    }                                                                                                                  \
    catch (const VelaError& error)                                                                                     \
    {                                                                                                                  \
        EXPECT_EQ(error.get_id(), (expected_id));                                                                      \
        EXPECT_EQ(error.get_msg(), std::string(expected_text));                                                        \
        EXPECT_STREQ(error.get_func(), (expected_function));                                                           \
        const std::string source_path = error.get_file() == nullptr ? "" : error.get_file();                           \
        EXPECT_EQ(source_path.rfind(std::string(expected_folder) + "/", 0), 0u) << source_path;                        \
        EXPECT_GT(error.get_line(), 0);                                                                                \
    }                                                                                                                  \
    catch (const std::exception& error)                                                                                \
    {                                                                                                                  \
        ADD_FAILURE() << #statement " threw no VelaError but: " << error.what();                                       \
    }

/// `statement` throws a `Type`, and exactly that, with this text.
#define EXPECT_THROW_TEXT(statement, Type, expected_text)                                                              \
    try                                                                                                                \
    {                                                                                                                  \
        statement;                                                                                                     \
        ADD_FAILURE() << #statement " threw nothing, expected: " << (expected_text);                                   \
    }                                                                                                                  \
    catch (const std::exception& error)                                                                                \
    {                                                                                                                  \
        EXPECT_EQ(typeid(error), typeid(Type));                                                                        \
        EXPECT_EQ(std::string(error.what()), std::string(expected_text));                                              \
    }
