#include "build_vbf.h"
#include "file_pairs.h"
#include "transfer_test.h"

#include <VelaBinaryIO/VBFFile.h>

using namespace vela_test;

namespace {

class CopyTest : public TransferTest
{
protected:
    std::string copy() const { return path("copy.vbf"); }

    /// A file with all that a stack can have.
    std::string rich_file() const
    {
        VBFFile file(file_name(path("rich.vbf")), VFile::write_mode);
        file->set_file_desc("a description");
        file->set_creator("somebody");
        const boost::shared_ptr<VBFStackInterface> stack = file->add_stack(false);
        stack->create({3, 2}, vela_dt_uint8);
        stack->set_name("rich");
        stack->set_description("of everything");
        stack->set_labels({"X", "lambda"});
        stack->set_len({3e-6, 2.0});
        stack->set_off({1.0, 2.0});
        stack->set_units(1, si::value("nm"));
        stack->set_data_units(si::value("V"));
        stack->set_col_labels(0, {"a", "b", "c"});
        stack->set_col_positions(1, {1.0, 5.0});
        VStackPosition position;
        position.create(stack.get(), 3);
        position.origin[2] = 7.5;
        stack->set_stack_position(position);
        stack->set_tag("key", "text");
        stack->set_compression(1, 4);
        const Bytes samples = {1, 2, 3, 4, 5, 6};
        stack->write(vela_dt_uint8, samples.data(), nullptr, 6);
        const boost::shared_ptr<VBFStackInterface> empty = file->add_stack(true);
        empty->create({4}, vela_dt_double);
        empty->set_name("empty");
        empty->commit(vela_dt_double);
        file->close();
        return path("rich.vbf");
    }

    static boost::shared_ptr<VBFStackInterface> first_stack(VBFFile& file, const std::string& name)
    {
        file.open(file_name(name), VFile::read_mode);
        return file->get_stack(0);
    }
};

} // namespace

TEST_F(CopyTest, EverythingIsKept)
{
    const std::string original = rich_file();
    output_of({"copy", original, copy()});
    EXPECT_TRUE(in_order(copy()));
    VBFFile file;
    const boost::shared_ptr<VBFStackInterface> stack = first_stack(file, copy());
    EXPECT_EQ(stack->get_name(), "rich");
    EXPECT_EQ(stack->get_description(), "of everything");
    EXPECT_EQ(stack->get_labels(), (std::vector<std::string>{"X", "lambda"}));
    EXPECT_EQ(stack->get_lengths(), (std::vector<double>{3e-6, 2.0}));
    EXPECT_EQ(stack->get_offsets(), (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(stack->get_units(1), si::value("nm"));
    EXPECT_EQ(stack->get_data_units(), si::value("V"));
    EXPECT_EQ(stack->get_col_labels(0), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_FALSE(stack->is_equidistant(1));
    EXPECT_EQ(stack->get_col_positions(1), (std::vector<double>{1.0, 5.0}));
    EXPECT_EQ(stack->get_stack_position().origin[2], 7.5);
    EXPECT_EQ(stack->get_tag("key"), "text");
    std::string description;
    file->get_file_desc(description);
    EXPECT_EQ(description, "a description");
    file->close();
    EXPECT_EQ(samples(copy()), (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_THAT(output_of({"ome", copy()}), testing::HasSubstr("Creator=\"somebody\""));
}

TEST_F(CopyTest, PairsOfAnotherWriterAreKeptButForTheUuid)
{
    const std::string original = vbf(ramp(1), "file.vbf");
    const std::string content = "<ome:Instrument ID='Instrument:0'/><ome:Image Name='007' UUID='a'/></ome:OME>";
    const std::string uuid = " UUID = 'urn:uuid:1b2c3d4e-0000-1111-2222-333344445555'";
    for (const std::string root : {"<?xml version='1.0'?>\n<ome:OME", "<ome:OME Creator='UUID=\"x\"'"})
    {
        put_pairs(original, {{"ome_xml", root + uuid + " xmlns:ome='x'>" + content}, {"z", "more"}});
        output_of({"copy", original, copy()});
        EXPECT_TRUE(in_order(copy()));
        EXPECT_EQ(run({"verify", copy()}).out.find("belong to nothing"), std::string::npos);
        EXPECT_EQ(pairs_of(copy()), (VBFDictionary{{"ome_xml", root + " xmlns:ome='x'>" + content}, {"z", "more"}}));
    }
    put_pairs(original, {{"ome_xml", "no document"}});
    output_of({"copy", original, copy()});
    EXPECT_EQ(pairs_of(copy()), (VBFDictionary{{"ome_xml", "no document"}}));
}

TEST_F(CopyTest, ListingsOfOriginalAndCopyAreEqual)
{
    const std::string original = rich_file();
    output_of({"copy", original, copy()});
    EXPECT_EQ(info(copy()), info(original));
    output_of({"copy", VELA_GOLGI_FILE, copy()});
    EXPECT_EQ(info(copy()), info(VELA_GOLGI_FILE));
    EXPECT_EQ(samples(copy()), golgi_samples());
}

TEST_F(CopyTest, UnitThatNobodySetIsNotMadeUp)
{
    output_of({"copy", rich_file(), copy()});
    EXPECT_EQ(info(copy())["stacks"][0]["axes"][0]["unit"], nullptr);
    EXPECT_EQ(info(copy())["stacks"][0]["axes"][1]["unit"], "nm");
}

TEST_F(CopyTest, StacksAreChosenInAnyOrder)
{
    output_of({"copy", rich_file(), copy(), "--stacks", "1,0,1"});
    const nlohmann::json stacks = info(copy())["stacks"];
    ASSERT_EQ(stacks.size(), 3u);
    EXPECT_EQ(stacks[0]["name"], "empty");
    EXPECT_EQ(stacks[0]["data_length_on_disk"], 0);
    EXPECT_EQ(stacks[1]["name"], "rich");
    EXPECT_EQ(samples(copy(), "2"), Bytes(32));
}

TEST_F(CopyTest, LevelRecompresses)
{
    output_of({"copy", VELA_GOLGI_FILE, copy(), "--level", "9"});
    EXPECT_EQ(info(copy())["stacks"][0]["compression_level"], 9);
    EXPECT_LT(info(copy())["stacks"][0]["data_length_on_disk"], 486477);
    EXPECT_EQ(samples(copy()), golgi_samples());
    output_of({"copy", VELA_GOLGI_FILE, copy(), "--level", "0"});
    EXPECT_EQ(info(copy())["stacks"][0]["compression_type"], 0);
    EXPECT_EQ(samples(copy()), golgi_samples());
}

TEST_F(CopyTest, WrongChoicesMakeNoFile)
{
    expect_failure({"copy", VELA_GOLGI_FILE, copy(), "--stacks", "1"}, 1, "Invalid stack index 1!");
    expect_failure({"copy", VELA_GOLGI_FILE, copy(), "--level", "10"}, 2,
                   "--level: 10 is none of zlib, they go from 0 to 9.");
    EXPECT_EQ(run({"copy", VELA_GOLGI_FILE, copy(), "--stacks", "x"}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(copy()));
    const std::string file = rich_file();
    const Bytes before = get_bytes(file);
    expect_failure({"copy", file, file}, 2, "The output would overwrite the input.");
    EXPECT_EQ(get_bytes(file), before);
}

TEST_F(CopyTest, DamagedSamplesMakeNoFile)
{
    Bytes damaged = get_bytes(VELA_GOLGI_FILE);
    damaged[442 + 486477 - 1] ^= 1; // the checksum of the samples
    EXPECT_EQ(run({"copy", put(damaged), copy()}).status, 1);
    EXPECT_FALSE(std::filesystem::exists(copy()));
}
