#include "build_vbf.h"
#include "run_vbf.h"

#include <nlohmann/json.hpp>

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

constexpr std::uint64_t header_pos = 34; // behind a file header without a description
constexpr std::uint64_t header_bytes = 368;

/// 3 x 2 samples; the footer of the stack stands at 408.
StackRecipe small_stack()
{
    return plain_stack<std::uint8_t>({3, 2}, 1, {1, 2, 3, 4, 5, 6});
}
constexpr std::uint64_t small_data_pos = header_pos + header_bytes;
constexpr std::uint64_t small_footer_pos = small_data_pos + 6;

class VerifyTest : public ProgramTest
{
protected:
    void expect_ok(const Bytes& bytes, const std::string& verdict) const
    {
        const std::string file = put(bytes);
        EXPECT_EQ(output_of({"verify", file}), file + ": ok, " + verdict + "\n");
    }

    /// These lines, and something is wrong.
    void expect_wrong(const Bytes& bytes, const std::string& lines) const
    {
        const RunResult result = run({"verify", put(bytes)});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out.substr(0, result.out.rfind(path(""))), lines);
    }

    /// Only this is wrong, whatever an attempt to open the file says.
    void expect_first(const Bytes& bytes, const std::string& line) const
    {
        const RunResult result = run({"verify", put(bytes)});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out.substr(0, result.out.find('\n')), line);
    }
};

/// Deflates with full flushes after each `block_bytes`; `positions` gets where they are.
Bytes deflated_with_flushes(const Bytes& bytes, std::size_t block_bytes, std::vector<std::uint64_t>& positions)
{
    z_stream stream = {};
    deflateInit(&stream, 6);
    Bytes result(bytes.size() + 1000);
    stream.next_out = result.data();
    stream.avail_out = static_cast<uInt>(result.size());
    for (std::size_t begin = 0; begin < bytes.size(); begin += block_bytes)
    {
        const std::size_t n = std::min(block_bytes, bytes.size() - begin);
        stream.next_in = const_cast<unsigned char*>(bytes.data()) + begin;
        stream.avail_in = static_cast<uInt>(n);
        deflate(&stream, n == block_bytes ? Z_FULL_FLUSH : Z_NO_FLUSH);
        if (n == block_bytes)
            positions.push_back(stream.total_out);
    }
    deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    return result;
}

/// A stack of `count` different bytes with flush points each 1000 bytes.
class FlushedStack
{
public:
    explicit FlushedStack(std::uint32_t count) : samples(count)
    {
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<unsigned char>(i * i / 7);
        stack.sizes = {count};
        stack.compression_type = 1;
        stack.compression_level = 6;
        stack.segment = deflated_with_flushes(samples, 1000, positions);
    }

    Bytes file() const
    {
        ByteWriter writer{build_vbf(stack)};
        const std::uint64_t footer_pos = header_pos + header_bytes + stack.segment.size();
        const std::uint64_t table_pos = footer_pos + 1444 + 4; // behind one label
        ByteWriter table;
        for (const std::uint64_t position : positions)
            table.put(position);
        writer.bytes.insert(writer.bytes.begin() + static_cast<std::ptrdiff_t>(table_pos), table.bytes.begin(),
                            table.bytes.end());
        writer.set<std::uint64_t>(footer_pos + 1408, positions.size());
        writer.set<std::uint64_t>(footer_pos + 1416, block_bytes);
        writer.set<std::uint64_t>(footer_pos + 1432, table_pos + table.bytes.size() + 4);
        writer.set<std::uint64_t>(26, table_pos + table.bytes.size() + 4);
        return writer.bytes;
    }
    std::uint64_t table_pos() const { return header_pos + header_bytes + stack.segment.size() + 1448; }

    Bytes samples;
    StackRecipe stack;
    std::vector<std::uint64_t> positions;
    std::uint64_t block_bytes = 1000;
};

std::string at(std::uint64_t position)
{
    return "wrong  stack 0, byte " + std::to_string(position) + ": ";
}

} // namespace

TEST_F(VerifyTest, GolgiStackIsInOrder)
{
    EXPECT_EQ(output_of({"verify", VELA_GOLGI_FILE}),
              std::string(VELA_GOLGI_FILE) + ": ok, 1 stack, 1006950 bytes of samples, 5 flush points\n");
}

TEST_F(VerifyTest, SmallFilesAreInOrder)
{
    expect_ok(build_vbf(small_stack()), "1 stack, 6 bytes of samples, 0 flush points");
    expect_ok(build_vbf(FileRecipe{}), "0 stacks, 0 bytes of samples, 0 flush points");
    FileRecipe old;
    old.format_version = 1;
    old.stacks = {small_stack(), plain_stack<float>({}, 0x40, {1.5f})};
    expect_ok(build_vbf(old), "2 stacks, 10 bytes of samples, 0 flush points");
}

TEST_F(VerifyTest, JsonOfAFileInOrder)
{
    EXPECT_EQ(ParsedJson::parse(output_of({"verify", VELA_GOLGI_FILE, "--json"})),
              ParsedJson::parse(R"({"ok": true, "stacks": 1, "size_samples": 1006950, "flush_points": 5, "findings": [],
                              "not_listed": 0})"));
}

TEST_F(VerifyTest, JsonSaysWhereSomethingIsWrong)
{
    ByteWriter writer{build_vbf(small_stack())};
    writer.set<std::uint64_t>(small_footer_pos + 1432, 77);
    const RunResult result = run({"verify", put(writer.bytes), "--json"});
    EXPECT_EQ(result.status, 1);
    const ParsedJson report = ParsedJson::parse(result.out);
    EXPECT_EQ(report["ok"], false);
    EXPECT_EQ(report["findings"][0], ParsedJson({{"severity", "wrong"},
                                                 {"stack", 0},
                                                 {"position", small_footer_pos + 1432},
                                                 {"text", "stack_end_pos is 77, the stack ends at 1864"}}));
}

TEST_F(VerifyTest, FileThatIsNoVbfFileIsWrong)
{
    expect_first(Bytes(100, 'x'), "wrong  byte 0: No VBF file header found!");
    expect_first(Bytes(), "wrong  byte 0: Failed reading 26 bytes from file!");
}

TEST_F(VerifyTest, MissingFileIsAFailure)
{
    expect_failure({"verify", path("missing.vbf")}, 1,
                   "'" + path("missing.vbf") + "': Could not open file! (No such file or directory)");
}

TEST_F(VerifyTest, FileThatWasNotClosedIsWrong)
{
    FileRecipe file;
    file.stacks = {small_stack()};
    file.closed = false;
    expect_first(build_vbf(file), "wrong  byte 26: the file was not closed: meta_data_pos is 0. vbf repair mends this");
}

TEST_F(VerifyTest, ChainIsFollowedAsFarAsItGoes)
{
    ByteWriter writer{build_vbf(small_stack())};
    writer.set<std::uint64_t>(header_pos + 360, 100000);
    expect_first(writer.bytes, at(header_pos + 360) + "the next stack is said to be at 100000, the file has " +
                                   std::to_string(writer.bytes.size()) + " bytes");
    writer.set<std::uint64_t>(header_pos + 360, header_pos);
    expect_first(writer.bytes, at(header_pos + 360) + "the chain comes back to a stack at 34");
    writer.set<std::uint64_t>(header_pos + 360, 1);
    expect_first(writer.bytes, "odd    stack 0, byte 394: the next stack lies before this one");
    writer.set<std::uint64_t>(header_pos + 16 + 4, std::uint32_t{16});
    expect_first(writer.bytes, at(header_pos) + "Stack header not in vbf format!");
}

TEST_F(VerifyTest, StacksThatShareBytesAreWrong)
{
    StackRecipe outer = small_stack();
    const Bytes inner = build_vbf(small_stack());
    outer.segment.insert(outer.segment.end(), inner.begin() + header_pos, inner.end());
    ByteWriter writer{build_vbf(outer)};
    writer.set<std::uint64_t>(header_pos + 360, small_footer_pos);
    const RunResult result = run({"verify", put(writer.bytes)});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out,
                testing::HasSubstr("wrong  stack 1, byte 408: the header of the stack lies within stack 0\n"));
}

TEST_F(VerifyTest, FieldsOfTheFooterAreHeldAgainstTheFile)
{
    const Bytes good = build_vbf(small_stack());
    const auto with = [&](std::uint64_t offset, auto number)
    {
        ByteWriter writer{good};
        writer.set(small_footer_pos + offset, number);
        return writer.bytes;
    };
    const std::string left = std::to_string(good.size() - small_footer_pos - 1448);
    expect_first(with(0, std::uint32_t{3}), at(small_footer_pos) + "footer_size is 3, less than its own 4 bytes");
    expect_first(with(0, std::uint32_t{100000}), at(small_footer_pos + 1444) +
                                                     "footer of a newer writer: 98556 bytes are said to be here, the "
                                                     "file has " +
                                                     std::to_string(good.size() - small_footer_pos - 1444));
    expect_first(with(1440, std::uint32_t{6}), at(small_footer_pos + 1440) + "the stack needs a reader of version 6");
    expect_first(with(1444, std::uint32_t{50}),
                 at(small_footer_pos + 1448) + "label of axis 0: 50 bytes are said to be here, the file has " + left);
    expect_first(with(1408, std::uint64_t{1} << 61), at(small_footer_pos + 1452) +
                                                         "flush positions: 2305843009213693952 are said to be here, "
                                                         "the file has 8 bytes");
    expect_first(with(1424, std::uint64_t{5}),
                 at(small_footer_pos + 1424) + "tag_dictionary_length is 5, the tags have 4 bytes");
    expect_first(with(4, std::uint32_t{1}), at(small_footer_pos + 1452) +
                                                "column positions of axis 0: 3 entries of 8 bytes are said to be "
                                                "here, the file has 8 bytes");
    expect_first(with(124, std::uint32_t{4}), at(small_footer_pos + 1452) +
                                                  "the metadata cannot be read: Error parsing XML properties:\\n"
                                                  "Error document empty.");
}

TEST_F(VerifyTest, WhatReadersCopeWithIsOddAndNotWrong)
{
    ByteWriter writer{build_vbf(small_stack())};
    writer.set<std::uint64_t>(small_footer_pos + 1432, 0);
    writer.set<std::uint32_t>(small_footer_pos + 208 + 4, 0);
    writer.set<std::uint32_t>(small_footer_pos + 4 + 14 * 4, 7);
    writer.set<std::uint64_t>(header_pos + 344, 3);
    writer.put_text("behind");
    const std::string file = put(writer.bytes);
    EXPECT_EQ(output_of({"verify", file}), "odd    stack 0, byte 378: data_present is neither 0 nor 1\n"
                                           "odd    stack 0, byte 408: a flag of columns of axis 14 is neither 0 nor 1\n"
                                           "odd    stack 0, byte 616: the unit of axis 0 is none\n"
                                           "odd    stack 0, byte 1840: stack_end_pos is not filled in\n"
                                           "odd    byte 1868: 6 bytes belong to nothing\n" +
                                               file + ": ok, 1 stack, 6 bytes of samples, 0 flush points\n");
}

TEST_F(VerifyTest, SegmentOfPlainSamplesHasTheirBytes)
{
    StackRecipe stack = small_stack();
    stack.segment.pop_back();
    expect_first(build_vbf(stack), at(small_data_pos) + "the segment has 5 of 6 bytes");
    stack.sizes = {70000, 70000, 70000, 70000, 70000};
    expect_first(build_vbf(stack), at(header_pos + 24) + "the stack has more samples than can be counted");
    stack.sizes = {5};
    stack.data_type = 3;
    expect_first(build_vbf(stack), at(header_pos + 324) + "data_type 3 is no type of samples");
}

TEST_F(VerifyTest, CompressedSamplesAreInflatedToTheirTrailer)
{
    const FlushedStack good(2500);
    StackRecipe stack = good.stack;
    const auto expect_stack = [&](const std::string& text)
    {
        const RunResult result = run({"verify", put(build_vbf(stack))});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.out, testing::HasSubstr(": " + text + "\n"));
    };
    stack.segment.back() ^= 1;
    expect_stack("the compressed samples are damaged (incorrect data check) behind 2500 of 2500 bytes");
    stack.segment.pop_back();
    expect_stack("the compressed samples lack their end");
    stack.segment.resize(4);
    expect_stack("the compressed samples end behind 0 of 2500 bytes");
    stack.segment = good.stack.segment;
    stack.segment.push_back(0);
    expect_stack("1 bytes of the segment lie behind the compressed samples");
    stack.segment = deflated(Bytes(2501));
    expect_stack("there are more samples than the 2500 bytes of the stack");
    stack.segment = deflated(Bytes(2499));
    expect_stack("the compressed samples end behind 2499 of 2500 bytes");
}

TEST_F(VerifyTest, FlushPointsAreTried)
{
    expect_ok(FlushedStack(2500).file(), "1 stack, 2500 bytes of samples, 2 flush points");
    expect_ok(FlushedStack(3000).file(), "1 stack, 3000 bytes of samples, 3 flush points");

    FlushedStack wrong(2500);
    const std::uint64_t second = wrong.positions[1];
    wrong.positions[1] = second - 1;
    expect_wrong(wrong.file(), at(wrong.table_pos() + 8) + "flush point 1 does not lead to byte 2000 of the samples\n");
    wrong.positions[1] = wrong.positions[0];
    expect_first(wrong.file(), at(wrong.table_pos()) + "the flush positions do not ascend");
    wrong.positions[1] = 100000;
    expect_first(wrong.file(), at(wrong.table_pos()) + "a flush position leaves the segment");
    wrong.positions[1] = second;
    wrong.block_bytes = 0;
    expect_first(wrong.file(), at(wrong.table_pos()) + "there are flush points, and flush_block_size is 0");
    wrong.block_bytes = 1500;
    expect_first(wrong.file(), at(wrong.table_pos()) + "there are more flush points than blocks");

    FlushedStack last(3000);
    last.positions[2] += 1;
    expect_wrong(last.file(), at(last.table_pos() + 16) + "flush point 2 does not lead to byte 3000 of the samples\n");
}

TEST_F(VerifyTest, ZipBombIsNotInflated)
{
    StackRecipe stack;
    stack.sizes = {10};
    stack.compression_type = 1;
    stack.compression_level = 9;
    stack.segment = deflated(Bytes(std::size_t{64} * 1024 * 1024));
    const RunResult result = run({"verify", put(build_vbf(stack))});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, testing::HasSubstr("there are more samples than the 10 bytes of the stack"));
}

TEST_F(VerifyTest, DictionaryOfTheFileIsInspected)
{
    FileRecipe file;
    ByteWriter writer{build_vbf(file)};
    writer.set<std::uint32_t>(34, 100);
    expect_first(writer.bytes, "wrong  byte 38: key of the file dictionary: 100 bytes are said to be here, the file "
                               "has 0");
    writer.set<std::uint64_t>(26, 10000);
    expect_first(writer.bytes, "wrong  byte 10000: the file dictionary lies behind the end of the file");
    writer.set<std::uint64_t>(26, 14);
    expect_first(writer.bytes, "wrong  byte 26: the file dictionary lies within the file header");
}
