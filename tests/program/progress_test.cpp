// What long work shows on a terminal.
#include "build_vbf.h"
#include "run_vbf.h"

#include <array>
#include <cstdlib>

using namespace vela_test;

namespace {

const std::string erase_line = "\r\x1b[K";

/// A terminal that only the test reads.
class Terminal
{
public:
    Terminal() : reading_end(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (reading_end < 0 || grantpt(reading_end) != 0 || unlockpt(reading_end) != 0)
            throw std::runtime_error("no terminal");
        name = ptsname(reading_end);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() { close(reading_end); }

    const std::string& path() const { return name; }

    /// What was written to it and fits; all programs have to be at their end.
    std::string text() const
    {
        std::string result;
        std::array<char, 4096> buffer = {};
        for (ssize_t count = 1; count > 0;)
        {
            count = read(reading_end, buffer.data(), buffer.size());
            result.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        return result;
    }

private:
    int reading_end;
    std::string name;
};

class ProgressTest : public ProgramTest
{
protected:
    /// The program with its standard error on a terminal, which holds more than a hundred short lines.
    std::string shown_by(const std::vector<std::string>& arguments) const
    {
        const Terminal terminal;
        const int descriptor = open("/dev/null", O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(run_vbf_into(arguments, descriptor, terminal.path()), 0);
        close(descriptor);
        return terminal.text();
    }

    /// A line that counts up and goes away.
    void expect_counting(const std::string& label, const std::vector<std::string>& arguments) const
    {
        const std::string shown = shown_by(arguments);
        EXPECT_THAT(shown, testing::HasSubstr(erase_line + label)) << arguments[0];
        EXPECT_THAT(shown, testing::EndsWith(" %" + erase_line)) << arguments[0];
        EXPECT_EQ(shown.find('\n'), std::string::npos) << arguments[0];
    }

    std::string golgi() const { return put(get_bytes(VELA_GOLGI_FILE)); }
};

} // namespace

TEST_F(ProgressTest, LongWorkCountsOnATerminal)
{
    const std::string file = golgi();
    expect_counting("verifying ", {"verify", file});
    expect_counting("reading 100 %", {"read", file, "0"});
    expect_counting("reading 100 %", {"read", file, "0", "--region", "3:5,,2"});
    expect_counting("reading 100 %", {"read", file, "0", "--type", "double", "--from", "1000"});
    expect_counting("reading 100 %", {"preview", file, "0", "--out", path("out.png")});
    expect_counting("copying 100 %", {"copy", file, path("out.vbf")});
    expect_counting("exporting 100 %", {"export", file, "0", path("out.tif")});

    ByteWriter not_closed{get_bytes(VELA_GOLGI_FILE)};
    not_closed.set<std::uint64_t>(61, 0);
    expect_counting("copying 100 %", {"repair", put(not_closed.bytes), "--out", path("mended.vbf")});
}

TEST_F(ProgressTest, VerifyingPassesEveryTenthPart)
{
    const std::string shown = shown_by({"verify", golgi()});
    for (const char* const ten : {" 1", " 2", " 3", " 4", " 5", " 6", " 7", " 8", " 9"})
        EXPECT_THAT(shown, testing::ContainsRegex("verifying" + std::string(ten) + "[0-9] %"));
}

TEST_F(ProgressTest, NothingIsShownElsewhere)
{
    EXPECT_EQ(run({"verify", golgi()}).err, "");
}
