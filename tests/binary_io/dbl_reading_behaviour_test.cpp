// Files of the older format, known by the end of their name, as files with one stack.
#include "binary_io/vbf_reading_test.h"

#include <VelaStacks/VStack.h>

#include <bit>
#include <cmath>
#include <limits>

using namespace vela_test;

namespace {

typedef std::vector<std::uint64_t> Sizes;
typedef std::vector<double> Doubles;

/// What the 128 bytes say, in the order of the axes.
struct DblFields
{
    std::vector<std::uint32_t> dims = {3, 2, 1, 1};
    std::vector<float> lengths = {1.5f, 2.5f, 1.0f, 1.0f};
    unsigned char single = 0;
    unsigned char filler = 0;
};

Bytes dbl_bytes(const DblFields& fields, const Bytes& samples)
{
    constexpr std::size_t order[] = {2, 1, 0, 3};
    Bytes bytes;
    for (const std::size_t axis : order)
    {
        bytes.push_back(static_cast<unsigned char>(fields.dims[axis] >> 8 & 0xff));
        bytes.push_back(static_cast<unsigned char>(fields.dims[axis] & 0xff));
    }
    for (const std::size_t axis : order)
        append_u32(bytes, std::bit_cast<std::uint32_t>(fields.lengths[axis]));
    bytes.push_back(fields.single);
    bytes.resize(128, fields.filler);
    append_bytes(bytes, samples);
    return bytes;
}

template <class T>
Bytes as_bytes(const std::vector<T>& values)
{
    Bytes bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

class DblReading : public VbfReadingTest
{
protected:
    StackPointer open_dbl(const Bytes& bytes, const std::string& name = "test.dbl")
    {
        file.reset();
        put_bytes(path(name), bytes);
        file.open(file_name(path(name)), VFile::read_mode);
        EXPECT_EQ(file->number_of_stacks(), 1u);
        return file->get_stack(0);
    }

    void expect_refused(const std::string& name)
    {
        EXPECT_VELA_ERROR_IN(file->open(file_name(path(name)), VFile::read_mode), "VBFFileImp::open_bf_dbl",
                             binary_io_folder, -4, "Error reading .dbl file!");
        EXPECT_FALSE(file->is_open());
    }
};

} // namespace

TEST_F(DblReading, DoublesAreAStackOfDoubles)
{
    const std::vector<double> values{0.5, 1.5, 2.5, 3.5, 4.5, 5.5};
    const StackPointer stack = open_dbl(dbl_bytes({}, as_bytes(values)));
    EXPECT_EQ(stack->get_rank(), 2u);
    EXPECT_EQ(stack->get_sizes(), (Sizes{3, 2}));
    EXPECT_EQ(stack->get_lengths(), (Doubles{1.5, 2.5}));
    EXPECT_EQ(stack->get_offsets(), (Doubles{0.0, 0.0}));
    EXPECT_EQ(stack->get_dt(), vela_dt_double);
    EXPECT_EQ(read_whole(*stack, vela_dt_double), as_bytes(values));
}

TEST_F(DblReading, SinglesAreAStackOfSingles)
{
    const std::vector<float> values{0.5f, 1.5f, 2.5f, 3.5f, 4.5f, 5.5f};
    DblFields fields;
    fields.single = 1;
    const StackPointer stack = open_dbl(dbl_bytes(fields, as_bytes(values)));
    EXPECT_EQ(stack->get_dt(), vela_dt_single);
    EXPECT_EQ(read_whole(*stack, vela_dt_single), as_bytes(values));
}

TEST_F(DblReading, DetachReleasesTheStack)
{
    const StackPointer stack = open_dbl(dbl_bytes({}, Bytes(48, 0)));
    const Descriptor descriptor(vela_descriptor_from_handle(file->detach()));
    EXPECT_EQ(file->number_of_stacks(), 0u);
    EXPECT_VELA_ERROR(read_whole(*stack, vela_dt_double), -1, closed_text);
}

TEST_F(DblReading, AnyOtherFlagMeansDoubles)
{
    const std::vector<double> values{0.5, 1.5, 2.5, 3.5, 4.5, 5.5};
    for (const int flag : {0, 2, 3, 255})
    {
        DblFields fields;
        fields.single = static_cast<unsigned char>(flag);
        const StackPointer stack = open_dbl(dbl_bytes(fields, as_bytes(values)));
        EXPECT_EQ(stack->get_dt(), vela_dt_double) << flag;
        EXPECT_EQ(read_whole(*stack, vela_dt_double), as_bytes(values)) << flag;
    }
}

TEST_F(DblReading, UndefinedBytesOfTheHeaderDoNotMatter)
{
    DblFields fields;
    fields.filler = 0xff;
    const StackPointer stack = open_dbl(dbl_bytes(fields, Bytes(48, 0)));
    EXPECT_EQ(stack->get_sizes(), (Sizes{3, 2}));
}

TEST_F(DblReading, FourAxesComeInTheirOrder)
{
    DblFields fields;
    fields.dims = {5, 4, 3, 2};
    fields.lengths = {0.1f, 0.2f, 0.3f, 4.0f};
    std::vector<double> values(120);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>(i);
    const StackPointer stack = open_dbl(dbl_bytes(fields, as_bytes(values)));
    EXPECT_EQ(stack->get_sizes(), (Sizes{5, 4, 3, 2}));
    // As singles have it.
    EXPECT_EQ(stack->get_lengths(), (Doubles{double(0.1f), double(0.2f), double(0.3f), 4.0}));
    EXPECT_EQ(read_whole(*stack, vela_dt_double), as_bytes(values));
    EXPECT_EQ(read_at(*stack, vela_dt_double, 2, 60), as_bytes(std::vector<double>{60.0, 61.0}));
}

TEST_F(DblReading, SizesHaveTheirHighByteFirst)
{
    DblFields fields;
    fields.dims = {0x0102, 1, 1, 1};
    fields.single = 1;
    EXPECT_EQ(open_dbl(dbl_bytes(fields, Bytes(0x0102 * 4, 0)))->get_sizes(), Sizes{258});
    fields.dims = {0xffff, 1, 1, 1};
    EXPECT_EQ(open_dbl(dbl_bytes(fields, Bytes(0xffff * 4, 0)))->get_sizes(), Sizes{65535});
}

TEST_F(DblReading, ASizeOfOneEndsTheAxes)
{
    DblFields fields;
    fields.dims = {3, 1, 5, 1};
    const std::vector<double> values(15, 2.5);
    const StackPointer stack = open_dbl(dbl_bytes(fields, as_bytes(values)));
    EXPECT_EQ(stack->get_sizes(), Sizes{3});
    EXPECT_EQ(stack->get_lengths(), Doubles{1.5});
    EXPECT_EQ(read_whole(*stack, vela_dt_double), as_bytes(std::vector<double>(3, 2.5)));
    std::uint64_t pos = 3;
    double value = 0.0;
    EXPECT_VELA_ERROR(stack->read(vela_dt_double, &value, nullptr, 1, pos), -1, "Invalid position in segment!");
}

TEST_F(DblReading, WithASizeBelowTwoInFrontThereIsOneElement)
{
    for (const std::vector<std::uint32_t>& dims :
         {std::vector<std::uint32_t>{1, 4, 1, 1}, {0, 4, 1, 1}, {1, 1, 1, 1}, {0, 0, 0, 0}})
    {
        DblFields fields;
        fields.dims = dims;
        const StackPointer stack = open_dbl(dbl_bytes(fields, as_bytes(std::vector<double>{7.5, 1.0, 2.0, 3.0})));
        EXPECT_EQ(stack->get_rank(), 0u);
        EXPECT_EQ(stack->get_number_of_elements(), 1u);
        EXPECT_EQ(read_whole(*stack, vela_dt_double), as_bytes(std::vector<double>{7.5}));
    }
}

TEST_F(DblReading, LengthsAreTakenAsTheyAre)
{
    DblFields fields;
    fields.lengths = {0.0f, -std::numeric_limits<float>::infinity(), 1.0f, 1.0f};
    EXPECT_EQ(open_dbl(dbl_bytes(fields, Bytes(48, 0)))->get_lengths(),
              (Doubles{0.0, -std::numeric_limits<double>::infinity()}));
    fields.lengths[0] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(std::isnan(open_dbl(dbl_bytes(fields, Bytes(48, 0)))->get_length(0)));
}

TEST_F(DblReading, TheFileIsOpenForReading)
{
    open_dbl(dbl_bytes({}, Bytes(48, 0)));
    EXPECT_TRUE(file->is_open());
    EXPECT_FALSE(file->is_attached());
    EXPECT_EQ(file->get_mode(), VFile::read_mode);
    EXPECT_VELA_ERROR(file->add_stack(false), -1, "File not open for writing!");
    EXPECT_VELA_ERROR(file->get_stack(1), -4, "Invalid stack index 1!");
}

TEST_F(DblReading, TheStackIsCompleteAndLockedAndSaysNothingElse)
{
    const StackPointer stack = open_dbl(dbl_bytes({}, Bytes(48, 0)));
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_VELA_ERROR(stack->set_name("new"), -1, "Cannot set values. Object locked!");
    EXPECT_VELA_ERROR(stack->set_compression(1, 6), -1, "Cannot change compression mode!");
    int type = 5;
    int level = 5;
    stack->get_compression(type, level);
    EXPECT_EQ(type, 0);
    EXPECT_EQ(stack->get_name(), "");
    EXPECT_EQ(stack->get_description(), "");
    EXPECT_EQ(stack->get_labels(), (std::vector<std::string>{"", ""}));
    EXPECT_TRUE(stack->get_tag_keys().empty());
    EXPECT_TRUE(stack->is_equidistant(0));
    EXPECT_EQ(stack->get_meta_data_string(), "");
}

TEST_F(DblReading, SamplesAreConvertedAsThoseOfOtherFiles)
{
    const std::vector<double> values{0.5, 1.5, 2.5, 3.5, 4.5, 300.0};
    const StackPointer stack = open_dbl(dbl_bytes({}, as_bytes(values)));
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), (Bytes{0, 1, 2, 3, 4, 44}));
    Bytes bytes(6, stale);
    EXPECT_VELA_ERROR(stack->read(vela_dt_cell, bytes.data(), nullptr), -1,
                      "Invalid on-the-fly conversion from 'double' to 'cell'!");
    const boost::shared_ptr<VStackInterface> memory = file->read_stack(0, vela_dt_single);
    EXPECT_EQ(memory->get_dt(), vela_dt_single);
    EXPECT_EQ(memory->get_sizes(), (Sizes{3, 2}));
}

TEST_F(DblReading, SamplesThatTheFileHasNotAreAFailedRead)
{
    DblFields fields;
    fields.dims = {3, 4, 1, 1};
    const StackPointer stack = open_dbl(dbl_bytes(fields, Bytes(95, 1)));
    Bytes bytes(96, stale);
    EXPECT_VELA_ERROR(stack->read(vela_dt_double, bytes.data(), nullptr), -3, "Failed reading 96 bytes from file!");
    EXPECT_EQ(read_at(*stack, vela_dt_double, 11, 0), Bytes(88, 1));
}

TEST_F(DblReading, AFileOfLessThanItsHeaderIsRefused)
{
    for (const std::size_t size : {0u, 1u, 127u})
    {
        put_bytes(path("short.dbl"), Bytes(size, 0));
        expect_refused("short.dbl");
    }
    put_bytes(path("header.dbl"), Bytes(128, 0));
    EXPECT_NO_THROW(file->open(file_name(path("header.dbl")), VFile::read_mode));
}

TEST_F(DblReading, AFileThatIsNotThereIsRefused)
{
    expect_refused("none.dbl");
}

TEST_F(DblReading, AVbfFileOfThisNameIsTakenForSamples)
{
    VbfRecords built(1);
    built.add_stack_record(bytes_record(counted_bytes(100)));
    put(built, "really.dbl");
    file.open(file_name(path("really.dbl")), VFile::read_mode);
    ASSERT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(file->get_stack(0)->get_dt(), vela_dt_double);
}

TEST_F(DblReading, OnlyTheExactEndOfTheNameCounts)
{
    for (const std::string& name :
         {std::string("a.DBL"), std::string("a.dbl.vbf"), std::string("adbl"), std::string("a.dbl ")})
    {
        put_bytes(path(name), dbl_bytes({}, Bytes(48, 0)));
        EXPECT_VELA_ERROR(file->open(file_name(path(name)), VFile::read_mode), -4, "No VBF file header found!");
    }
    EXPECT_EQ(open_dbl(dbl_bytes({}, Bytes(48, 0)), ".dbl")->get_sizes(), (Sizes{3, 2}));
    EXPECT_EQ(open_dbl(dbl_bytes({}, Bytes(48, 0)), "a.vbf.dbl")->get_sizes(), (Sizes{3, 2}));
    EXPECT_EQ(open_dbl(dbl_bytes({}, Bytes(48, 0)), "\xce\xbcm.dbl")->get_sizes(), (Sizes{3, 2}));
}

TEST_F(DblReading, AnyOtherModeTakesTheNameForAVbfFile)
{
    put_bytes(path("a.dbl"), dbl_bytes({}, Bytes(48, 0)));
    EXPECT_VELA_ERROR(file->open(file_name(path("a.dbl")), VFile::append_mode), -4, "No VBF file header found!");
    file->open(file_name(path("new.dbl")), VFile::write_mode);
    file->close();
    EXPECT_EQ(slice(get_bytes(path("new.dbl")), 0, 4), (Bytes{'V', 'E', 'L', 'A'}));
}

TEST_F(DblReading, AHandleIsNeverTakenForSamples)
{
    put_bytes(path("a.dbl"), dbl_bytes({}, Bytes(48, 0)));
    AttachedFile attached(path("a.dbl"));
    EXPECT_VELA_ERROR(attached.attach(), -4, "No VBF file header found!");
}

TEST_F(DblReading, ItsStacksLoseTheFileWhenItIsClosed)
{
    const StackPointer stack = open_dbl(dbl_bytes({}, Bytes(48, 0)));
    file->close();
    EXPECT_EQ(file->number_of_stacks(), 0u);
    Bytes bytes(48, stale);
    EXPECT_VELA_ERROR(stack->read(vela_dt_double, bytes.data(), nullptr), -1, closed_text);
    EXPECT_EQ(stack->get_sizes(), (Sizes{3, 2}));
}

TEST_F(DblReading, AVbfFileOpensAfterwardsInTheSameObject)
{
    open_dbl(dbl_bytes({}, Bytes(48, 0)));
    file->close();
    VbfRecords built(2);
    built.add_stack_record(bytes_record({1}));
    built.add_stack_record(bytes_record({2}));
    built.add_dictionary();
    put(built);
    file->open(file_name(path("test.vbf")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 2u);
    file->close();
    file->open(file_name(path("test.dbl")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 1u);
}
