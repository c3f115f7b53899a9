// The memory that files take of a program.
#include <VelaBase/VelaError.h>

#include "binary_io/vbf_reading_test.h"
#include "support/allocation_watch.h"

#include <VelaStacks/VStack.h>

#include <filesystem>
#include <fstream>

using namespace vela_test;

namespace {

constexpr std::size_t mebibyte = 1 << 20;

class VBFFileMemory : public VbfReadingTest
{
protected:
    /// Memory that is taken from the opening of the file on.
    std::size_t taken_by_open(const VbfBytes& built)
    {
        file.reset();
        const VPropstring name = file_name(put(built));
        const AllocationWatch watch;
        file.open(name, VFile::read_mode);
        return watch.extra_bytes();
    }

    static VbfRecords file_of(std::size_t count, const RecordFields& fields)
    {
        VbfRecords built(1);
        for (std::size_t i = 0; i < count; ++i)
            built.add_stack_record(fields);
        return built;
    }
};

} // namespace

TEST_F(VBFFileMemory, LabelsThatTheFileCannotHoldTakeNone)
{
    for (const bool with_second_axis : {false, true})
    {
        RecordFields fields = bytes_record({});
        fields.header.sizes =
            with_second_axis ? std::vector<std::uint32_t>{1, 0x10000000} : std::vector<std::uint32_t>{0xffffffff};
        fields.col_labels = {{fields.header.sizes.size() - 1, {}}};
        put(file_of(1, fields));
        std::filesystem::resize_file(path("test.vbf"), 32 * mebibyte); // with a hole of zeros: empty labels
        const VPropstring name = file_name(path("test.vbf"));
        file.reset();
        const AllocationWatch watch;
        EXPECT_VELA_ERROR(file.open(name, VFile::read_mode), -3, "Failed reading 4 bytes from file!");
        EXPECT_LE(watch.peak_extra_bytes(), mebibyte);
    }
}

TEST_F(VBFFileMemory, LabelsThatAreThereTakeNoMoreThanTheyNeed)
{
    constexpr std::size_t count = 100000;
    RecordFields fields = bytes_record({});
    fields.header.sizes = {count};
    fields.col_labels = {{0, std::vector<std::string>(count, "label")}};
    put(file_of(1, fields));
    const VPropstring name = file_name(path("test.vbf"));
    const AllocationWatch watch;
    file.open(name, VFile::read_mode);
    EXPECT_LE(watch.peak_extra_bytes(), count * sizeof(std::string) + mebibyte / 2);
}

TEST_F(VBFFileMemory, MetadataOfNothingButElementsAreRefusedBeforeTheirTreeIsBuilt)
{
    const std::string native_root = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">";
    for (const std::string& element : {std::string("<a/>"), std::string("<a b=''/>"), std::string("<a/>x")})
        for (const std::string& root : {std::string("<root>"), native_root})
        {
            std::string xml = root;
            while (xml.size() < 8 * mebibyte)
                xml += element;
            RecordFields fields = bytes_record({1, 2});
            fields.metadata = xml + "</root>";
            put(file_of(1, fields));
            const VPropstring name = file_name(path("test.vbf"));
            file.reset();
            const AllocationWatch watch;
            try
            {
                file.open(name, VFile::read_mode);
                ADD_FAILURE() << "it opened";
            }
            catch (const VelaError& error)
            {
                EXPECT_EQ(error.get_id(), -1);
                EXPECT_EQ(error.get_msg().rfind("Invalid metadata found!\n", 0), 0U) << error.get_msg();
                EXPECT_NE(error.get_msg().find("Too many elements in metadata!"), std::string::npos);
            }
            EXPECT_LE(watch.peak_extra_bytes(), 64 * mebibyte);
        }
}

TEST_F(VBFFileMemory, MetadataOfManyPropertiesOpen)
{
    std::string xml = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">";
    constexpr int count = 180000; // six nodes each
    for (int i = 0; i < count; ++i)
        xml += "<value" + std::to_string(i) + " idx=\"1\" type=\"double\" size=\"1 1\">1.5</value" + std::to_string(i) +
               ">\n";
    RecordFields fields = bytes_record({1, 2});
    fields.header.format_version = 2; // before the position was among them
    fields.metadata = xml + "</root>";
    file.open(file_name(put(file_of(1, fields))), VFile::read_mode);
    EXPECT_EQ(file->get_stack(0)->get_meta_data_string(), xml + "</root>");
}

TEST_F(VBFFileMemory, StacksShareMetadataThatAreEqual)
{
    RecordFields fields = bytes_record({1, 2});
    fields.metadata = position_xml({"a", "b"}, "1 2", "2 1", "1 0") + std::string(20000, ' ');
    const std::size_t one = taken_by_open(file_of(1, fields));
    EXPECT_LE(taken_by_open(file_of(101, fields)), one + 100 * 3000);
}

TEST_F(VBFFileMemory, OpeningBuildsNoDescriptionWhereMetadataDiffer)
{
    constexpr std::size_t count = 50;
    VbfRecords built(1);
    for (std::size_t i = 0; i < count; ++i)
    {
        RecordFields fields = bytes_record({1, 2});
        fields.metadata = position_xml({"a", "b"}, std::to_string(i) + " 2", "2 1", "1 0");
        built.add_stack_record(fields);
    }
    const VPropstring name = file_name(put(built));
    const AllocationWatch opening;
    file.open(name, VFile::read_mode);
    const std::size_t of_opening = opening.count_allocations() / count;
    const AllocationWatch looking;
    file->get_stack(0);
    EXPECT_LT(of_opening, looking.count_allocations());
    EXPECT_EQ(file->get_stack(count - 1)->get_stack_position().origin[0], count - 1.0);
}

TEST_F(VBFFileMemory, AWriterKeepsLittleOfFinishedStacks)
{
    file.open(file_name(path("written.vbf")), VFile::write_mode);
    const auto write_stacks = [this](int count)
    {
        boost::shared_ptr<VBFStackInterface> stack;
        for (int i = 0; i < count; ++i)
        {
            stack = file->add_stack(false); // the last one is held until here
            stack->create({2, 2}, vela_dt_uint8);
            stack->write(vela_dt_uint8, "abcd", nullptr, VBFStackInterface::all_samples);
        }
    };
    write_stacks(10);
    constexpr int count = 200;
    const AllocationWatch watch;
    write_stacks(count);
    EXPECT_LE(watch.extra_bytes() / count, 2000U);
    EXPECT_EQ(read_whole(*file->get_stack(100), vela_dt_uint8), (Bytes{'a', 'b', 'c', 'd'}));
}

namespace {

std::size_t resident_bytes()
{
    std::ifstream in("/proc/self/statm");
    std::size_t all_pages = 0;
    std::size_t resident_pages = 0;
    in >> all_pages >> resident_pages;
    return resident_pages * 4096;
}

} // namespace

TEST_F(VBFFileMemory, ZerosThatNobodyLooksAtTakeNone)
{
    RecordFields fields = bytes_record({});
    fields.header.sizes = {0x10000, 0x2000};
    file.open(file_name(put(file_of(1, fields))), VFile::read_mode);
    for (const vela_dt type : {vela_dt_none, vela_dt_uint16})
    {
        const std::size_t before = resident_bytes();
        const auto stack = file->read_stack(0, type);
        EXPECT_LT(resident_bytes(), before + 32 * mebibyte);
        ASSERT_EQ(stack->get_number_of_elements(), 512 * mebibyte);
        for (const std::size_t at : {std::size_t{0}, 300 * mebibyte, 512 * mebibyte - 1})
            EXPECT_EQ(stack->get_data_ptr()[at], 0);
    }
}

TEST_F(VBFFileMemory, AnEmptyStackThatIsNotCompleteIsNotRead)
{
    file.open(file_name(path("written.vbf")), VFile::write_mode);
    file->add_stack(true)->create({2, 2}, vela_dt_uint8);
    EXPECT_VELA_ERROR_IN(file->read_stack(0, 0), "VBFStackImp::read_imp", "sources/binary_io", -1,
                         "Stack not committed to disk. Cannot read!");
    file->finish();
    EXPECT_EQ(file->read_stack(0, 0)->get_data_ptr()[3], 0);
}

TEST_F(VBFFileMemory, AWholeStackTakesItsSamplesAndOneChunk)
{
    RecordFields fields = bytes_record(Bytes(2 * mebibyte, 1));
    file.open(file_name(put(file_of(1, fields))), VFile::read_mode);
    file->set_chunk_size(65536);
    for (const vela_dt type : {vela_dt_uint8, vela_dt_uint16})
    {
        const AllocationWatch watch; // which does not see the samples
        const auto stack = file->read_stack(0, type);
        EXPECT_LE(watch.peak_extra_bytes(), 128U * 1024);
    }
}

TEST_F(VBFFileMemory, LongerAndLongerReadsTakeABufferOnlyAFewTimes)
{
    file.open(file_name(put(file_of(1, bytes_record(counted_bytes(2000))))), VFile::read_mode);
    const auto stack = file->get_stack(0);
    Bytes buffer(4000);
    const AllocationWatch watch;
    for (std::uint64_t count = 1; count < 2000; ++count)
    {
        std::uint64_t pos = 0;
        stack->read(vela_dt_uint16, buffer.data(), nullptr, count, pos);
    }
    EXPECT_LE(watch.count_allocations(), 15U);
}

TEST_F(VBFFileMemory, LongerAndLongerWritesTakeABufferOnlyAFewTimes)
{
    file.open(file_name(path("written.vbf")), VFile::write_mode);
    const auto stack = file->add_stack(false);
    constexpr std::uint64_t calls = 1000;
    stack->create({calls * (calls + 1) / 2}, vela_dt_uint16);
    const Bytes samples = counted_bytes(calls);
    stack->write(vela_dt_uint8, samples.data(), nullptr, 1);
    const AllocationWatch watch;
    for (std::uint64_t count = 2; count < calls; ++count)
        stack->write(vela_dt_uint8, samples.data(), nullptr, count);
    EXPECT_LE(watch.count_allocations(), 15U);
}

TEST_F(VBFFileMemory, ATextForAnErrorTakesNone)
{
    VelaError(nullptr, nullptr, 0)("%s", std::string(3000, 'x').c_str())(-4).process();
    const AllocationWatch watch;
    const std::string_view text = vela_bf_get_errorstring(-1);
    EXPECT_EQ(watch.count_allocations(), 0U);
    EXPECT_EQ(text.size(), 2047U);
}
