// What docs/guide-program.md says is what is so.
#include "run_vbf.h"

#include <sstream>

using namespace vela_test;

namespace {

std::vector<std::string> lines_of_guide()
{
    const Bytes bytes = get_bytes(VELA_SOURCE_ROOT "/docs/guide-program.md");
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// The words of a command; those in quotes are one.
std::vector<std::string> words_of(const std::string& line)
{
    std::vector<std::string> words(1);
    bool quoted = false;
    for (const char c : line)
    {
        if (c == '"')
            quoted = !quoted;
        else if (c == ' ' && !quoted)
            words.emplace_back();
        else
            words.back() += c;
    }
    return words;
}

class GuideTest : public ProgramTest
{
protected:
    /// Files of the tree are there, all others in the folder of the test.
    std::string place(const std::string& word) const
    {
        if (word.rfind("examples/", 0) == 0)
            return VELA_SOURCE_ROOT "/" + word;
        const bool is_file = word.find('.') != std::string::npos;
        return is_file ? path(word) : word;
    }
};

} // namespace

TEST_F(GuideTest, ItsCommandsRun)
{
    int count = 0;
    for (const std::string& line : lines_of_guide())
    {
        if (line.rfind("vbf ", 0) != 0)
            continue;
        std::vector<std::string> arguments;
        for (const std::string& word : words_of(line.substr(4)))
            arguments.push_back(place(word));
        EXPECT_EQ(run(arguments).status, 0) << line << "\n" << messages();
        ++count;
    }
    EXPECT_EQ(count, 5);
    EXPECT_EQ(get_bytes(path("plane.raw")).size(), 147u * 137 * 2);
}

TEST_F(GuideTest, ItsTableHasEveryCommand)
{
    std::string table;
    for (const std::string& line : lines_of_guide())
    {
        if (line.rfind("| `vbf ", 0) == 0)
            table += line + "\n";
    }
    const std::string help = output_of({"--help"});
    std::istringstream in(help.substr(help.find("Subcommands:")));
    std::string line;
    std::getline(in, line);
    int count = 0;
    for (std::string name; std::getline(in, line) && std::istringstream(line) >> name; ++count)
        EXPECT_THAT(table, testing::HasSubstr("`vbf " + name + " "));
    EXPECT_EQ(count, 12);
}
