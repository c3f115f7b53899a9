#include "build_vbf.h"
#include "run_vbf.h"

using namespace vela_test;

namespace {

class InfoTextTest : public ProgramTest
{
protected:
    std::string info(const Bytes& file) const { return output_of({"info", put(file)}); }

    std::string info(const StackRecipe& stack) const { return info(build_vbf(stack)); }

    void expect_info_failure(const Bytes& file, const std::string& message) const
    {
        expect_failure({"info", put(file)}, 1, message);
        expect_failure({"info", put(file), "--json"}, 1, message);
    }
};

StackRecipe one_sample()
{
    return plain_stack<std::uint8_t>({1}, 1, {1});
}

} // namespace

TEST_F(InfoTextTest, ListsTheGolgiStack)
{
    EXPECT_EQ(output_of({"info", VELA_GOLGI_FILE}),
              std::string(VELA_GOLGI_FILE) +
                  "\n"
                  "  description  Confocal stack of a Golgi apparatus\n"
                  "  format       VBF version 2\n"
                  "  stacks       1\n"
                  "\n"
                  "stack 0\n"
                  "  name         Golgi\n"
                  "  size         147 x 137 x 25\n"
                  "  length       5.1661e-05 x 4.81466e-05 x 9.69e-06\n"
                  "  offset       2.58305e-05, 2.40733e-05, 4.845e-06\n"
                  "  type         uint16\n"
                  "  compression  zlib, level 1\n"
                  "  on disk      486477 bytes at 442\n"
                  "  header       version 5 at 69\n"
                  "  axes         X in m, Y in m, Z in m\n"
                  "  flush points 5, one each 201390 bytes\n"
                  "  tag          frame interval=<root idx=\"1\" type=\"double\" size=\"1 1\" "
                  "vprop_version=\"1\">59.859999999999999432</root>\\n\n"
                  "  tag          source=golgi_zyx_u16.tif\n");
}

TEST_F(InfoTextTest, NothingOfAHostileNameSteersTheTerminal)
{
    FileRecipe file;
    file.description = "\x1b]0;title\x07";
    file.stacks = {one_sample()};
    file.stacks[0].name = std::string("a\0b\n\r\t\x1b[31m\x7f", 12);
    file.stacks[0].description = "\xc2\x9b"
                                 "31m\x9b"
                                 "31m \xe2\x80\xae \xe2\x80\xa8 \xc2\xb5m";
    const std::string text = info(build_vbf(file));
    EXPECT_THAT(text, testing::HasSubstr("  description  \\x1b]0;title\\x07\n"));
    EXPECT_THAT(text, testing::HasSubstr("  name         a\\x00b\\n\\r\\t\\x1b[31m\\x7f\n"));
    EXPECT_THAT(text, testing::HasSubstr("  description  \\x9b31m\xef\xbf\xbd"
                                         "31m \\u202e \\u2028 \xc2\xb5m\n"));
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find('\0'), std::string::npos);
}

TEST_F(InfoTextTest, FileNameIsPrintedWithoutControlCharacters)
{
    put_bytes(path("a\x1b[31m.vbf"), build_vbf(one_sample()));
    const std::string text = output_of({"info", path("a\x1b[31m.vbf")});
    EXPECT_THAT(text, testing::StartsWith(path("a\\x1b[31m.vbf") + "\n"));
}

TEST_F(InfoTextTest, FileThatWasNotClosedSaysSo)
{
    FileRecipe file;
    file.closed = false;
    file.stacks = {one_sample()};
    const std::string text = info(build_vbf(file));
    EXPECT_THAT(text, testing::HasSubstr("  state        was not closed, does not open "
                                         "(Failed reading 1095517526 bytes from file!)\n"));
    EXPECT_THAT(text, testing::HasSubstr("\nstack 0\n"));
}

TEST_F(InfoTextTest, DamagedDictionaryIsNotCalledNotClosed)
{
    Bytes file = build_vbf(one_sample());
    file.pop_back();
    EXPECT_THAT(info(file), testing::HasSubstr("  state        does not open (Failed reading 4 bytes from file!)\n"));
}

TEST_F(InfoTextTest, OldVersionWithoutDictionaryIsNotCalledNotClosed)
{
    FileRecipe file;
    file.format_version = 1;
    const std::string text = info(build_vbf(file));
    EXPECT_THAT(text, testing::HasSubstr("  format       VBF version 1\n  stacks       0\n"));
}

TEST_F(InfoTextTest, RankZeroIsASingleSample)
{
    const std::string text = info(plain_stack<std::uint8_t>({}, 1, {1}));
    EXPECT_THAT(text, testing::HasSubstr("  size         a single sample\n  type         uint8\n"));
}

TEST_F(InfoTextTest, CompressionIsNamed)
{
    StackRecipe stack = one_sample();
    EXPECT_THAT(info(stack), testing::HasSubstr("  compression  none\n"));
    stack.compression_type = 1;
    EXPECT_THAT(info(stack), testing::HasSubstr("  compression  none (zlib, level 0)\n"));
    stack.compression_type = 2;
    EXPECT_THAT(info(stack), testing::HasSubstr("  compression  type 2, unknown\n"));
}

TEST_F(InfoTextTest, TypesWithoutANameAreToldInWords)
{
    EXPECT_THAT(info(plain_stack<std::uint8_t>({1}, 0x400, {1, 2, 3})), testing::HasSubstr("  colour of 3 bytes\n"));
    EXPECT_THAT(info(plain_stack<std::uint32_t>({1}, 0x800, {1})), testing::HasSubstr("  packed colour\n"));
    EXPECT_THAT(info(plain_stack<std::uint8_t>({1}, 0x4000, {1})),
                testing::HasSubstr("  cell (0x4000, not a type of samples)\n"));
}

TEST_F(InfoTextTest, StackWithoutBytesOnDiskSaysSo)
{
    EXPECT_THAT(info(plain_stack<std::uint8_t>({3}, 1, {})),
                testing::HasSubstr("  on disk      no bytes: all samples are zero\n"));
}

TEST_F(InfoTextTest, MissingFileFails)
{
    expect_failure({"info", path("missing.vbf")}, 1,
                   "'" + path("missing.vbf") + "': Could not open file! (No such file or directory)");
}

TEST_F(InfoTextTest, FolderFails)
{
    expect_failure({"info", folder.path("")}, 1, "'" + folder.path("") + "': Could not open file! (Is a directory)");
}

TEST_F(InfoTextTest, EmptyFileFails)
{
    expect_info_failure({}, "Failed reading 26 bytes from file!");
}

TEST_F(InfoTextTest, EachByteOfTheFileMagicCounts)
{
    const Bytes good = build_vbf(one_sample());
    for (std::size_t i = 0; i < 10; ++i)
    {
        Bytes bad = good;
        bad[i] ^= 1;
        expect_failure({"info", put(bad)}, 1, "No VBF file header found!");
    }
}

TEST_F(InfoTextTest, CutStackHeaderFails)
{
    Bytes file = build_vbf(one_sample());
    file.resize(34 + 367);
    expect_info_failure(file, "Failed reading 368 bytes from file!");
}

TEST_F(InfoTextTest, WrongStackMagicFails)
{
    Bytes file = build_vbf(one_sample());
    file[34] = 'v';
    expect_info_failure(file, "Stack header not in vbf format!");
}

TEST_F(InfoTextTest, RankAboveFifteenFails)
{
    ByteWriter writer{build_vbf(one_sample())};
    writer.set<std::uint32_t>(34 + 20, 16);
    expect_info_failure(writer.bytes, "Stack header not in vbf format!");
}

TEST_F(InfoTextTest, ChainThatComesBackFails)
{
    ByteWriter writer{build_vbf(one_sample())};
    writer.set<std::uint64_t>(34 + 360, 34);
    expect_info_failure(writer.bytes, "Invalid stack position specified in header!");
}

TEST_F(InfoTextTest, LengthsThatTheFileDoesNotHaveFail)
{
    ByteWriter writer{build_vbf(one_sample())};
    writer.set<std::uint32_t>(34 + 336, 0x7fffffff);
    expect_info_failure(writer.bytes, "Failed reading 2147483647 bytes from file!");
}

TEST_F(InfoTextTest, FileNameThatIsNoUtf8NamesNoOtherFile)
{
    put_bytes(path("a.vbf"), build_vbf(one_sample()));
    const RunResult result = run({"info", path("a\xff.vbf")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "vbf: The file name is no UTF-8: '" + path("a\xef\xbf\xbd.vbf") + "'\n");
}
