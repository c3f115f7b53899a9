#include "file_dictionary.h"

using namespace vela_test;

namespace {

/// The document that a file without a creator has.
const std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><ome:OME "
                             "xmlns:ome=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\" "
                             "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                             "xsi:schemaLocation=\"http://www.openmicroscopy.org/Schemas/OME/2015-01 "
                             "http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd\"></ome:OME>";

FileRecipe two_stacks()
{
    FileRecipe file;
    file.description = "Two";
    file.stacks = {plain_stack<std::uint8_t>({3}, 1, {1, 2, 3}), plain_stack<std::uint8_t>({2}, 1, {4, 5})};
    return file;
}

constexpr std::uint64_t meta_field_pos = 29; // behind 26 bytes and the description

Bytes not_closed()
{
    FileRecipe file = two_stacks();
    file.closed = false;
    return build_vbf(file);
}

/// What an append leaves: an old dictionary with one pair, a new one with another pair at the end, and its position in the
/// first 8 bytes. Without the new dictionary the writer was killed in between.
Bytes appended(bool with_new_dictionary)
{
    ByteWriter writer{not_closed()};
    const std::uint64_t old_pos = writer.position();
    put_counted(writer, "old");
    put_counted(writer, "1");
    writer.put<std::uint32_t>(0);
    writer.set(meta_field_pos, old_pos);
    const std::uint64_t new_pos = writer.position();
    writer.set(0, new_pos);
    if (with_new_dictionary)
    {
        put_counted(writer, "new");
        put_counted(writer, "2");
        writer.put<std::uint32_t>(0);
    }
    return writer.bytes;
}

class RepairTest : public ProgramTest
{
protected:
    std::string copy() const { return path("copy.vbf"); }

    void expect_in_order(const std::string& file, const std::string& verdict) const
    {
        EXPECT_THAT(output_of({"verify", file}), testing::HasSubstr(file + ": ok, " + verdict));
    }
};

} // namespace

TEST_F(RepairTest, FileThatWasNotClosedGetsADictionary)
{
    const Bytes before = not_closed();
    const std::string end = std::to_string(before.size());
    EXPECT_EQ(output_of({"repair", put(before), "--out", copy()}),
              copy() + "\n  A new dictionary is at the end of the file, at " + end + ".\n  meta_data_pos is " + end +
                  ", it was 0.\n");
    EXPECT_EQ(get_bytes(path("test.vbf")), before);
    EXPECT_EQ(dictionary_of(copy()), (VBFDictionary{{"ome_xml", document}}));
    expect_in_order(copy(), "2 stacks, 5 bytes of samples");

    Bytes after = get_bytes(copy());
    after.resize(before.size());
    std::fill(after.begin() + meta_field_pos, after.begin() + meta_field_pos + 8, std::uint8_t{0});
    EXPECT_EQ(after, before);
}

TEST_F(RepairTest, BytesOfAnUnfinishedStackStay)
{
    ByteWriter writer{not_closed()};
    writer.put_text("VELA_BF_STACK\n\xff\xff of a writer that died");
    output_of({"repair", put(writer.bytes), "--out", copy()});
    Bytes after = get_bytes(copy());
    EXPECT_EQ(Bytes(after.begin() + 37, after.begin() + static_cast<std::ptrdiff_t>(writer.position())),
              Bytes(writer.bytes.begin() + 37, writer.bytes.end()));
    expect_in_order(copy(), "2 stacks");
}

TEST_F(RepairTest, InPlaceMendsTheFileItself)
{
    const std::string file = put(not_closed());
    EXPECT_THAT(output_of({"repair", file, "--in-place"}), testing::StartsWith(file + "\n  A new dictionary"));
    expect_in_order(file, "2 stacks");
}

TEST_F(RepairTest, DictionaryThatIsCutOffIsReplaced)
{
    Bytes bytes = build_vbf(two_stacks());
    bytes.resize(bytes.size() - 2);
    output_of({"repair", put(bytes), "--out", copy()});
    EXPECT_EQ(dictionary_of(copy()), (VBFDictionary{{"ome_xml", document}}));
}

TEST_F(RepairTest, AppendedFileGetsItsMagicAndItsDictionary)
{
    const Bytes bytes = appended(true);
    const std::string new_pos = std::to_string(bytes.size() - 16);
    const std::string old_pos = std::to_string(bytes.size() - 16 - 16);
    EXPECT_THAT(run({"verify", put(bytes)}).out,
                testing::StartsWith("wrong  byte 0: No VBF file header found! vbf repair mends this\n"));
    EXPECT_EQ(output_of({"repair", put(bytes), "--out", copy()}),
              copy() + "\n  meta_data_pos is " + new_pos + ", it was " + old_pos +
                  ".\n  The start of the file was overwritten when stacks were appended. It is as it was.\n");
    EXPECT_EQ(dictionary_of(copy()), (VBFDictionary{{"new", "2"}}));
    EXPECT_EQ(get_bytes(copy()).size(), bytes.size());
    expect_in_order(copy(), "2 stacks");
}

TEST_F(RepairTest, AppendThatWasKilledBeforeItsDictionaryKeepsTheOldPairs)
{
    const std::string file = put(appended(false));
    output_of({"repair", file, "--in-place"});
    EXPECT_EQ(dictionary_of(file), (VBFDictionary{{"old", "1"}}));
    expect_in_order(file, "2 stacks");
}

TEST_F(RepairTest, RepairThatWasKilledIsRepaired)
{
    ByteWriter writer{appended(true)};
    writer.set<std::uint64_t>(meta_field_pos, writer.position() - 16); // the last patch is missing
    const std::string file = put(writer.bytes);
    EXPECT_EQ(output_of({"repair", file, "--in-place"}),
              file + "\n  The start of the file was overwritten when stacks were appended. It is as it was.\n");
    EXPECT_EQ(dictionary_of(file), (VBFDictionary{{"new", "2"}}));
}

TEST_F(RepairTest, NothingIsDoneToAFileInOrder)
{
    const Bytes bytes = build_vbf(two_stacks());
    const std::string file = put(bytes);
    EXPECT_EQ(output_of({"repair", file, "--out", copy()}), file + "\n  Nothing has to be done. There is no copy.\n");
    EXPECT_FALSE(std::filesystem::exists(copy()));
    EXPECT_EQ(output_of({"repair", file, "--in-place"}), file + "\n  Nothing has to be done.\n");
    EXPECT_EQ(get_bytes(file), bytes);

    FileRecipe old = two_stacks();
    old.format_version = 1;
    EXPECT_THAT(output_of({"repair", put(build_vbf(old)), "--in-place"}), testing::HasSubstr("Nothing has to be done"));
}

TEST_F(RepairTest, OtherDamageIsRefused)
{
    ByteWriter writer{not_closed()};
    writer.set<std::uint64_t>(14, writer.position());
    expect_failure({"repair", put(writer.bytes), "--out", copy()}, 1, "Failed reading 368 bytes from file!");
    writer.set<std::uint64_t>(14, 37);
    writer.set<std::uint64_t>(37 + 360, 37);
    expect_failure({"repair", put(writer.bytes), "--out", copy()}, 1, "Invalid stack position specified in header!");
    expect_failure({"repair", put(Bytes(100, 'x')), "--out", copy()}, 1, "No VBF file header found!");
    expect_failure({"repair", put(Bytes(25, 'x')), "--out", copy()}, 1, "Failed reading 26 bytes from file!");
    EXPECT_FALSE(std::filesystem::exists(copy()));

    Bytes damaged = build_vbf(two_stacks());
    damaged[3] ^= 1; // no append does this
    expect_failure({"repair", put(damaged), "--in-place"}, 1, "No VBF file header found!");
    EXPECT_EQ(get_bytes(path("test.vbf")), damaged);
}

TEST_F(RepairTest, OneTargetIsNeeded)
{
    const std::string file = put(not_closed());
    expect_failure({"repair", file}, 2, "Either --out or --in-place is needed.");
    expect_failure({"repair", file, "--in-place", "--out", copy()}, 2, "Either --out or --in-place is needed.");
    expect_failure({"repair", file, "--out", file}, 2, "The output would overwrite the input.");
    EXPECT_EQ(get_bytes(file), not_closed());
}
