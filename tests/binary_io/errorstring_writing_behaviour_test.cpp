// The texts of the failures of the file layer.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

std::string text_of(int id)
{
    return vela_bf_get_errorstring(id);
}

void report(int id, const std::string& message)
{
    VelaError(message, "somebody", "sources/somewhere.cpp", 7)(id).process();
}

TEST(ErrorString, OfZeroIsEmpty)
{
    EXPECT_EQ(text_of(0), "");
}

TEST(ErrorString, OfAPositiveIdIsTheGeneralText)
{
    report(-11, "not looked at");
    for (const int id : {1, 3, 11, 4711})
        EXPECT_EQ(text_of(id), "Error in vbf module: Error in vbf routine");
}

TEST(ErrorString, OfANegativeIdIsThatOfTheLastError)
{
    const std::vector<std::pair<int, std::string>> texts = {{-11, "Operation cancelled by caller"},
                                                            {-10, "Error in vbf filter queue"},
                                                            {-9, "Problem with vbf handle"},
                                                            {-8, "Invalid string buffer supplied"},
                                                            {-6, "Stack index error"},
                                                            {-5, "Error during type conversion"},
                                                            {-4, "Error in file format"},
                                                            {-3, "Filesystem error"},
                                                            {-15, "Error in vbf routine"},
                                                            {-7, "Error in vbf routine"},
                                                            {-2, "Error in vbf routine"},
                                                            {-1, "Error in vbf routine"},
                                                            {12, "Error in vbf routine"}};
    for (const auto& [id, text] : texts)
    {
        report(id, "what went wrong");
        const std::string expected = "Error in vbf module: " + text + "\n" + vela_get_last_error_string();
        EXPECT_EQ(text_of(-1), expected) << id;
        EXPECT_EQ(text_of(-4), expected) << id;
        EXPECT_NE(expected.find("what went wrong"), std::string::npos);
    }
}

TEST(ErrorString, IsEmptyWhereTheLastErrorHasTheIdZero)
{
    report(0, "no id");
    EXPECT_EQ(text_of(-1), "");
}

TEST(ErrorString, IsCutTo2047Characters)
{
    report(-3, std::string(3000, 'x'));
    const std::string expected = std::string("Error in vbf module: Filesystem error\n") + vela_get_last_error_string();
    EXPECT_EQ(text_of(-1), expected.substr(0, 2047));
}

TEST(ErrorString, StandsInOneBuffer)
{
    EXPECT_EQ(vela_bf_get_errorstring(5), vela_bf_get_errorstring(6));
}

class ErrorStringOfWriting : public VbfWritingTest
{
};

TEST_F(ErrorStringOfWriting, TellsOfACancelledWrite)
{
    begin_file();
    file->set_progress_callback([](std::uint64_t, void*) { return 0; }, nullptr);
    const Stack stack = add({4, 3});
    try
    {
        write_bytes(stack, counted_bytes(12));
        ADD_FAILURE() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.process(), -11);
    }
    const std::string text = text_of(-1);
    EXPECT_EQ(text.rfind("Error in vbf module: Operation cancelled by caller\n", 0), 0u) << text;
    EXPECT_NE(text.find("in function 'VBFStackImp::write':"), std::string::npos) << text;
    EXPECT_NE(text.find("Cancelled by user!"), std::string::npos) << text;
}

} // namespace
