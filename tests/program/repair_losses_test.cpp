// What vbf repair does where something is lost.
#include "file_dictionary.h"

using namespace vela_test;

namespace {

constexpr std::uint64_t meta_field_pos = 26;
constexpr std::uint64_t stack_pos = 34;
constexpr std::uint64_t data_pos = stack_pos + 368;

FileRecipe one_stack(bool closed)
{
    FileRecipe file;
    file.closed = closed;
    file.stacks = {plain_stack<std::uint8_t>({4}, 1, {10, 20, 30, 40})};
    return file;
}

class RepairLossesTest : public ProgramTest
{
protected:
    /// Neither way writes anything.
    void expect_refused(const Bytes& bytes, const std::string& message) const
    {
        const std::string file = put(bytes);
        expect_failure({"repair", file, "--in-place"}, 1, message);
        EXPECT_EQ(get_bytes(file), bytes);
        expect_failure({"repair", file, "--out", path("out.vbf")}, 1, message);
        EXPECT_FALSE(std::filesystem::exists(path("out.vbf")));
    }

    std::string repaired(const Bytes& bytes) const { return output_of({"repair", put(bytes), "--in-place"}); }
};

} // namespace

TEST_F(RepairLossesTest, FileThatIsCutOffStaysAsItIs)
{
    Bytes bytes = get_bytes(VELA_GOLGI_FILE);
    bytes.resize(300000);
    expect_refused(bytes, "The file is cut off or damaged, stack 0 is not whole: byte 442, data segment: 486477 bytes "
                          "are said to be here, the file has 299558");
}

TEST_F(RepairLossesTest, DictionaryNeverTakesThePlaceOfSamples)
{
    ByteWriter writer{build_vbf(one_stack(false))};
    writer.set<std::uint32_t>(stack_pos + 16, 0); // version 0 has no footer
    writer.bytes.resize(data_pos + 2);
    expect_refused(writer.bytes,
                   "The file is cut off or damaged, stack 0 is not whole: byte 402, data segment: 4 bytes "
                   "are said to be here, the file has 2");

    writer.put_text("\x1e\x28");
    repaired(writer.bytes);
    EXPECT_EQ(output_of({"read", path("test.vbf"), "0"}), "\x0a\x14\x1e\x28");
}

TEST_F(RepairLossesTest, FooterThatIsCutOffIsRefused)
{
    Bytes bytes = build_vbf(one_stack(false));
    bytes.resize(data_pos + 4 + 1000);
    expect_refused(bytes, "The file is cut off or damaged, stack 0 is not whole: byte 410, footer: 1440 bytes are said "
                          "to be here, the file has 996");
}

TEST_F(RepairLossesTest, StackWithinAnotherIsRefused)
{
    FileRecipe file = one_stack(false);
    file.stacks.push_back(file.stacks[0]);
    ByteWriter writer{build_vbf(file)};
    writer.set<std::uint32_t>(stack_pos + 16, 0);
    writer.set<std::uint64_t>(stack_pos + 352, writer.position() - data_pos);
    expect_refused(writer.bytes, "The file is damaged, stack 1 lies within stack 0");
}

TEST_F(RepairLossesTest, DictionaryBehindTheStacksIsTaken)
{
    ByteWriter writer{build_vbf(one_stack(false))};
    const std::uint64_t end = writer.position();
    put_counted(writer, "who");
    put_counted(writer, "me");
    writer.put<std::uint32_t>(0);
    EXPECT_EQ(repaired(writer.bytes),
              path("test.vbf") + "\n  meta_data_pos is " + std::to_string(end) + ", it was 0.\n");
    EXPECT_EQ(dictionary_of(path("test.vbf")), (VBFDictionary{{"who", "me"}}));
    EXPECT_EQ(get_bytes(path("test.vbf")).size(), writer.bytes.size());
    EXPECT_EQ(output_of({"verify", path("test.vbf")}).find("odd"), std::string::npos);
}

TEST_F(RepairLossesTest, PairsBeforeTheDamageAreKept)
{
    for (const bool is_led_to : {true, false})
    {
        ByteWriter writer{build_vbf(one_stack(false))};
        if (is_led_to)
            writer.set<std::uint64_t>(meta_field_pos, writer.position());
        put_counted(writer, "a");
        put_counted(writer, "1");
        put_counted(writer, "b");
        writer.put<std::uint32_t>(100);
        EXPECT_THAT(repaired(writer.bytes),
                    testing::HasSubstr("\n  It has the 1 pair of the old one that could be read; others are lost.\n"));
        EXPECT_EQ(dictionary_of(path("test.vbf")), (VBFDictionary{{"a", "1"}}));
    }
}

TEST_F(RepairLossesTest, LossOfAllPairsIsSaid)
{
    ByteWriter writer{build_vbf(one_stack(false))};
    writer.set<std::uint64_t>(meta_field_pos, writer.position() + 100);
    EXPECT_THAT(repaired(writer.bytes),
                testing::HasSubstr("\n  What the old one said could not be read and is lost.\n"));
    EXPECT_EQ(dictionary_of(path("test.vbf")).count("ome_xml"), 1u);
}

TEST_F(RepairLossesTest, NothingIsSaidToBeLostOfAnUnfinishedStack)
{
    ByteWriter writer{build_vbf(one_stack(false))};
    writer.put_text("VELA_BF_STACK\n\xff\xff of a writer that died");
    EXPECT_EQ(repaired(writer.bytes).find("lost"), std::string::npos);
}

TEST_F(RepairLossesTest, BytesOfAStackAreNoPairs)
{
    FileRecipe file = one_stack(false);
    ByteWriter samples;
    put_counted(samples, "a");
    put_counted(samples, "1");
    samples.put<std::uint32_t>(0x7fffffff);
    file.stacks[0].sizes = {static_cast<std::uint32_t>(samples.position())};
    file.stacks[0].segment = samples.bytes;
    ByteWriter writer{build_vbf(file)};
    writer.set<std::uint64_t>(meta_field_pos, data_pos);
    EXPECT_THAT(repaired(writer.bytes), testing::HasSubstr("is lost"));
    EXPECT_EQ(dictionary_of(path("test.vbf")).count("a"), 0u);
}
