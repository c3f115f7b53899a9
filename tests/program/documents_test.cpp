// What docs/guide-reading.md shows is what the examples are.
#include "document.h"

using namespace vela_test;

// A block behind a line "<!-- path -->" is the content of that file.
TEST(ReadingGuide, ItsCodeAndOutputAreThoseOfTheExamples)
{
    std::vector<std::string> quoted;
    for (const Block& block : blocks_of(text_of("docs/guide-reading.md")))
    {
        ASSERT_THAT(block.line_before, testing::MatchesRegex("<!-- [a-z_./]+ -->"));
        const std::string path = block.line_before.substr(5, block.line_before.size() - 9);
        EXPECT_EQ(block.text, text_of(path)) << path;
        quoted.push_back(path);
    }
    EXPECT_THAT(quoted, testing::IsSupersetOf(
                            {"examples/list_stacks.cpp", "examples/read_plane.cpp", "examples/write_segment.cpp"}));
}
