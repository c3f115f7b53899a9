// Opening and closing: states and failures.
#include "binary_io/vbf_opening_test.h"

using namespace vela_test;

namespace {

std::string description_of(const VBFFile& file)
{
    std::string text = "stale";
    file->get_file_desc(text);
    return text;
}

} // namespace

TEST_F(VbfOpening, ANewHandleHasAFileThatIsNotOpen)
{
    EXPECT_NE(file.shared(), nullptr);
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(file->get_mode(), no_mode);
    EXPECT_EQ(file->number_of_stacks(), 0u);
    EXPECT_EQ(description_of(file), "");
}

TEST_F(VbfOpening, AnOpenFileTellsItsModeItsDescriptionAndItsStacks)
{
    open(two_stacks());
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(file->get_mode(), VFile::read_mode);
    EXPECT_FALSE(file->is_attached());
    EXPECT_EQ(file->number_of_stacks(), 2u);
    EXPECT_EQ(description_of(file), "two stacks");
}

TEST_F(VbfOpening, TheConstructorOpensToo)
{
    const VBFFile other(file_name(put(two_stacks())), VFile::read_mode);
    EXPECT_TRUE(other->is_open());
    EXPECT_EQ(other->number_of_stacks(), 2u);
}

TEST_F(VbfOpening, AFileWithoutStacksHasNoneInEachFormatVersion)
{
    for (const std::uint32_t version : {0u, 1u, 2u, 3u, 0xffffffffu})
    {
        VbfRecords built(version, "none");
        if (version > 1)
            built.add_dictionary();
        open(built);
        EXPECT_EQ(file->number_of_stacks(), 0u) << version;
        EXPECT_EQ(description_of(file), "none") << version;
    }
}

TEST_F(VbfOpening, ADictionaryMayStandAnywhereAndBeEmpty)
{
    VbfRecords built(2);
    built.add_dictionary({});
    built.add_stack_record(bytes_record({1, 2, 3}));
    open(built);
    EXPECT_EQ(file->number_of_stacks(), 1u);
}

TEST_F(VbfOpening, AnEmptyKeyEndsTheDictionary)
{
    VbfRecords built(2);
    built.add_dictionary({{"a", "b"}, {"", "never read"}, {"c", "d"}});
    open(built);
    EXPECT_EQ(file->number_of_stacks(), 0u);
}

TEST_F(VbfOpening, StacksComeInTheOrderOfTheChain)
{
    VbfRecords built(1);
    const RecordPlaces a = built.add_stack_record(bytes_record({1}));
    const RecordPlaces b = built.add_stack_record(bytes_record({1, 2}));
    const RecordPlaces c = built.add_stack_record(bytes_record({1, 2, 3}));
    built.set_u64_at(built.first_stack_pos_at(), c.header);
    built.set_u64_at(c.header + stack_next_at, a.header);
    built.set_u64_at(a.header + stack_next_at, b.header);
    built.set_u64_at(b.header + stack_next_at, 0);
    open(built);
    ASSERT_EQ(file->number_of_stacks(), 3u);
    EXPECT_EQ(file->get_stack(0)->get_sizes(), std::vector<std::uint64_t>{3});
    EXPECT_EQ(file->get_stack(1)->get_sizes(), std::vector<std::uint64_t>{1});
    EXPECT_EQ(file->get_stack(2)->get_sizes(), std::vector<std::uint64_t>{2});
}

TEST_F(VbfOpening, AStackThatTheChainSkipsIsNotThere)
{
    VbfRecords built(1);
    built.add_stack_record(bytes_record({1}));
    const RecordPlaces second = built.add_stack_record(bytes_record({1, 2}));
    built.set_u64_at(built.first_stack_pos_at(), second.header);
    open(built);
    ASSERT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(file->get_stack(0)->get_sizes(), std::vector<std::uint64_t>{2});
}

TEST_F(VbfOpening, CloseForgetsTheStacksAndLetsTheFileGo)
{
    open(two_stacks());
    file->close();
    EXPECT_EQ(file->number_of_stacks(), 0u);
    expect_not_open();
}

TEST_F(VbfOpening, CloseIsQuietWhereNothingIsOpen)
{
    EXPECT_NO_THROW(file->close());
    open(two_stacks());
    file->close();
    EXPECT_NO_THROW(file->close());
}

TEST_F(VbfOpening, TheSameObjectOpensAgainAfterItsClose)
{
    open(two_stacks());
    file->close();
    VbfRecords one(1, "one");
    one.add_stack_record(bytes_record({9}));
    file->open(file_name(put(one, "other.vbf")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(description_of(file), "one");
}

TEST_F(VbfOpening, AnObjectThatIsOpenRefusesAnotherFileAndKeepsItsStacks)
{
    open(two_stacks());
    VbfRecords one(1);
    one.add_stack_record(bytes_record({9}));
    put(one, "other.vbf");
    EXPECT_VELA_ERROR(file->open(file_name(path("other.vbf")), VFile::read_mode), -1, "File already open or attached!");
    ASSERT_EQ(file->number_of_stacks(), 2u);
    EXPECT_EQ(read_whole(*file->get_stack(1), vela_dt_uint8), (Bytes{4, 5, 6, 7}));
}

TEST_F(VbfOpening, AnOpenHandleOpensTheSamePathAgain)
{
    open(two_stacks());
    file.open(file_name(path("test.vbf")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 2u);
}

TEST_F(VbfOpening, AHandleThatOpensAnotherFileMakesANewObject)
{
    open(two_stacks());
    const VBFFile first = file;
    VbfRecords one(1);
    one.add_stack_record(bytes_record({9}));
    file.open(file_name(put(one, "other.vbf")), VFile::read_mode);
    EXPECT_NE(first.shared(), file.shared());
    EXPECT_EQ(first->number_of_stacks(), 2u);
    EXPECT_TRUE(first->is_open());
    EXPECT_EQ(file->number_of_stacks(), 1u);
}

TEST_F(VbfOpening, CopiesOfAHandleShareTheFile)
{
    open(two_stacks());
    VBFFile other;
    other = file;
    const VBFFile third(file);
    EXPECT_EQ(other.shared(), file.shared());
    EXPECT_EQ(third.shared(), file.shared());
    other->close();
    EXPECT_FALSE(file->is_open());
}

TEST_F(VbfOpening, ResetLeavesTheFileToTheOtherHandles)
{
    open(two_stacks());
    VBFFile other = file;
    file.reset();
    EXPECT_EQ(file.shared(), nullptr);
    EXPECT_TRUE(other->is_open());
    other.reset();
    expect_free();
}

TEST_F(VbfOpening, AHandleConvertsToTheFile)
{
    open(two_stacks());
    VBFFileInterface* const plain = file;
    const VBFFile& constant = file;
    const VBFFileInterface* const constant_plain = constant;
    EXPECT_EQ(plain, file.shared().get());
    EXPECT_EQ(constant_plain, file.shared().get());
    EXPECT_EQ(constant.operator->(), file.shared().get());
}

TEST_F(VbfOpening, AFileThatIsNotThereDoesNotOpen)
{
    EXPECT_VELA_ERROR(file->open(file_name(path("none.vbf")), VFile::read_mode), -1, "Could not open file!");
    EXPECT_FALSE(file->is_open());
}

TEST_F(VbfOpening, AFileIsOpenForOneAtATime)
{
    open(two_stacks());
    VBFFile other;
    EXPECT_VELA_ERROR(other->open(file_name(path("test.vbf")), VFile::read_mode), -1, "Could not open file!");
    EXPECT_EQ(read_whole(*file->get_stack(0), vela_dt_uint8), (Bytes{1, 2, 3}));
}

TEST_F(VbfOpening, TheWrongMagicIsNamed)
{
    for (std::size_t i = 0; i < 10; ++i)
    {
        VbfRecords built = two_stacks();
        built.set_byte_at(i, 0x20);
        put(built);
        EXPECT_VELA_ERROR_IN(file->open(file_name(path("test.vbf")), VFile::read_mode), function_attach,
                             binary_io_folder, -4, no_header);
        expect_not_open();
    }
}

TEST_F(VbfOpening, AFileThatWasNotClosedReadsADictionaryFromItsVeryStart)
{
    VbfRecords built = two_stacks();
    built.set_u64_at(built.meta_data_pos_at(), 0);
    put(built);
    // "VELA" as a length.
    EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::read_mode), -3,
                      "Failed reading 1095517526 bytes from file!");
    expect_not_open();
}

TEST_F(VbfOpening, InFormatVersionOneTheStacksOfAFileThatWasNotClosedAreThere)
{
    VbfRecords built(1);
    built.add_stack_record(bytes_record({1, 2, 3}));
    built.append(Bytes(100, 0x77)); // of a record whose footer never came
    open(built);
    EXPECT_EQ(file->number_of_stacks(), 1u);
}

TEST_F(VbfOpening, AStackPositionThatTheSystemRefusesIsNamed)
{
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(bytes_record({1}));
    for (const std::uint64_t at : {built.first_stack_pos_at(), places.header + stack_next_at})
    {
        VbfRecords damaged = built;
        damaged.set_u64_at(at, 0x8000000000000000);
        put(damaged);
        EXPECT_VELA_ERROR_IN(file->open(file_name(path("test.vbf")), VFile::read_mode), function_attach,
                             binary_io_folder, -4, bad_position);
        expect_not_open();
    }
}

TEST_F(VbfOpening, AStackPositionBeyondTheEndIsAFailedRead)
{
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(bytes_record({1}));
    for (const std::uint64_t position : {built.size(), built.size() - 367, built.size() + 12345})
    {
        VbfRecords damaged = built;
        damaged.set_u64_at(places.header + stack_next_at, position);
        put(damaged);
        EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::read_mode), -3,
                          "Failed reading 368 bytes from file!");
        expect_not_open();
    }
}

TEST_F(VbfOpening, AChainThatComesBackIsRefused)
{
    VbfRecords built(1);
    const RecordPlaces a = built.add_stack_record(bytes_record({1}));
    const RecordPlaces b = built.add_stack_record(bytes_record({2}));
    const RecordPlaces c = built.add_stack_record(bytes_record({3}));
    for (const std::uint64_t target : {a.header, b.header, c.header})
    {
        VbfRecords damaged = built;
        damaged.set_u64_at(c.header + stack_next_at, target);
        put(damaged);
        EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::read_mode), -4, bad_position);
        expect_not_open();
    }
    built.set_u64_at(a.header + stack_next_at, a.header);
    put(built);
    EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::read_mode), -4, bad_position);
}

TEST_F(VbfOpening, OneBadRecordMakesTheWholeFileUnreadable)
{
    VbfRecords built = two_stacks();
    const RecordPlaces third = built.add_stack_record(bytes_record({8}));
    built.set_u32_at(third.footer + footer_required_reader_version_at, 6);
    put(built);
    EXPECT_ANY_THROW(file->open(file_name(path("test.vbf")), VFile::read_mode));
    expect_not_open();
}

TEST_F(VbfOpening, OtherExceptionsCloseTheFileToo)
{
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(bytes_record({1}));
    built.set_u32_at(places.header + stack_data_type_at, 3);
    put(built);
    EXPECT_THROW_TEXT(file->open(file_name(path("test.vbf")), VFile::read_mode), std::invalid_argument,
                      "Unsupported data type");
    expect_not_open();
}

TEST_F(VbfOpening, AHandleWhoseOpenFailsHasAFileThatIsNotOpen)
{
    open(two_stacks());
    EXPECT_ANY_THROW(file.open(file_name(path("none.vbf")), VFile::read_mode));
    EXPECT_NE(file.shared(), nullptr);
    expect_not_open();
    file.open(file_name(path("test.vbf")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 2u);
}

TEST_F(VbfOpening, AnUnknownModeDoesNotOpen)
{
    put(two_stacks());
    EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), unknown_mode), -1,
                      "Invalid file mode when opening file.");
    EXPECT_FALSE(file->is_open());
    expect_free();
}

TEST_F(VbfOpening, AppendingReadsTheStacksThatAreThere)
{
    VbfRecords built(1, "grows");
    built.add_stack_record(bytes_record({1, 2, 3}));
    put(built);
    file.open(file_name(path("test.vbf")), VFile::append_mode);
    EXPECT_EQ(file->get_mode(), VFile::append_mode);
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(description_of(file), "grows");
    EXPECT_EQ(read_whole(*file->get_stack(0), vela_dt_uint8), (Bytes{1, 2, 3}));
    file->close();
    EXPECT_EQ(get_bytes(path("test.vbf")), built.bytes());
}

TEST_F(VbfOpening, AppendingToADamagedFileFailsAsReadingDoes)
{
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(bytes_record({1, 2, 3}));
    built.set_byte_at(places.header, 0);
    put(built);
    EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::append_mode), -4, bad_stack_header);
    expect_not_open();
    EXPECT_EQ(get_bytes(path("test.vbf")), built.bytes());
}

TEST_F(VbfOpening, AFileThatIsReadTakesNothingNew)
{
    const VbfRecords built = two_stacks();
    open(built);
    EXPECT_VELA_ERROR_IN(file->add_stack(false), "VBFFileImp::add_stack", binary_io_folder, -1,
                         "File not open for writing!");
    EXPECT_VELA_ERROR_IN(file->set_file_desc("new"), "VBFFileImp::set_file_desc", binary_io_folder, -9,
                         "Read-only handle specified in write function!");
    file->finish();
    EXPECT_EQ(file->number_of_stacks(), 2u);
    EXPECT_EQ(description_of(file), "two stacks");
    file->close();
    EXPECT_EQ(get_bytes(path("test.vbf")), built.bytes());
}

TEST_F(VbfOpening, TheDocumentOfAFileIsNotReadFromIt)
{
    VbfRecords built(2);
    built.add_dictionary({{"ome_xml", "<?xml version=\"1.0\"?><ome:OME Creator=\"somebody\"></ome:OME>"}});
    open(built);
    EXPECT_EQ(static_cast<std::string>(file->ome().creator), "");
}

TEST_F(VbfOpening, AFileThatIsNotOpenTakesNothingNew)
{
    EXPECT_VELA_ERROR(file->add_stack(true), -1, "File not open for writing!");
    EXPECT_VELA_ERROR(file->set_file_desc("new"), -9, "Read-only handle specified in write function!");
    EXPECT_NO_THROW(file->finish());
}
