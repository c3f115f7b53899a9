// DBL files that are opened as VBF files.
#include <VelaBinaryIO/VBFFile.h>
#include <VelaStacks/VStack.h>

#include "binary_io/dbl_file_test.h"
#include "support/expect_vela_error.h"
#include "support/temporary_folder.h"

#include <numeric>

using namespace vela_test;

namespace {

using Stack = boost::shared_ptr<VBFStackInterface>;
using Sizes = std::vector<std::uint64_t>;

class OpenDblTest : public FolderTest
{
protected:
    VPropstring name() const { return file_name(path("test.dbl")); }

    /// Doubles 0, 1, 2 and so on, as many as `dims` say.
    Stack open(const Dims& dims, const Lengths& lengths = {1, 2, 3, 4})
    {
        Doubles samples(static_cast<std::size_t>(dims[0] * dims[1] * dims[2] * dims[3]));
        std::iota(samples.begin(), samples.end(), 0.0);
        return open_bytes(dbl_header(dims, lengths, 0), bytes_of(samples));
    }

    Stack open_bytes(Bytes header, const Bytes& samples)
    {
        append_bytes(header, samples);
        put_bytes(path("test.dbl"), header);
        file.open(name(), VFile::read_mode);
        return file->get_stack(0);
    }

    VBFFile file;
};

} // namespace

TEST_F(OpenDblTest, IsAFileOfOneStackThatIsCompleteAndLocked)
{
    const Stack stack = open({3, 2, 1, 1});
    EXPECT_EQ(file->number_of_stacks(), 1U);
    EXPECT_TRUE(file->is_open());
    EXPECT_FALSE(file->is_attached());
    EXPECT_EQ(file->get_mode(), VFile::read_mode);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_VELA_ERROR(stack->set_name("a"), -1, "Cannot set values. Object locked!");
    EXPECT_VELA_ERROR(file->add_stack(false), -1, "File not open for writing!");
    EXPECT_NO_THROW(file->close());
}

TEST_F(OpenDblTest, DoublesWithTheirSizesAndLengths)
{
    const Stack stack = open({5, 4, 3, 2}, {0.1F, 2, 0, 4});
    EXPECT_EQ(stack->get_dt(), vela_dt_double);
    EXPECT_EQ(stack->get_sizes(), Sizes({5, 4, 3, 2}));
    EXPECT_EQ(stack->get_lengths(), std::vector<double>({static_cast<double>(0.1F), 2, 0, 4}));
    Doubles samples(120);
    stack->read(vela_dt_double, samples.data(), nullptr);
    EXPECT_EQ(samples[119], 119.0);
}

TEST_F(OpenDblTest, SinglesAreReadAsAnyType)
{
    const Stack stack = open_bytes(dbl_header({3, 1, 1, 1}, {1, 1, 1, 1}, 1), bytes_of(Singles({1.5F, 2.5F, -1})));
    EXPECT_EQ(stack->get_dt(), vela_dt_single);
    Doubles samples(3);
    stack->read(vela_dt_double, samples.data(), nullptr);
    EXPECT_EQ(samples, Doubles({1.5, 2.5, -1}));
}

TEST_F(OpenDblTest, AFlagOf2IsThatOfDoubles)
{
    const Stack stack = open_bytes(dbl_header({2, 1, 1, 1}, {1, 1, 1, 1}, 2), bytes_of(Doubles({1, 2})));
    EXPECT_EQ(stack->get_dt(), vela_dt_double);
}

TEST_F(OpenDblTest, TheFirstDimensionBelow2EndsTheAxes)
{
    EXPECT_EQ(open({3, 2, 1, 1})->get_sizes(), Sizes({3, 2}));
    EXPECT_EQ(open({3, 1, 5, 1})->get_sizes(), Sizes({3}));
    EXPECT_EQ(open({3, 0, 5, 1})->get_sizes(), Sizes({3}));
    const Stack stack = open({1, 4, 1, 1});
    EXPECT_EQ(stack->get_rank(), 0U);
    EXPECT_EQ(stack->get_number_of_elements(), 1U);
    double sample = -1;
    stack->read(vela_dt_double, &sample, nullptr);
    EXPECT_EQ(sample, 0.0);
}

TEST_F(OpenDblTest, SamplesThatTheFileDoesNotHave)
{
    const Stack stack = open_bytes(dbl_header({3, 1, 1, 1}, {1, 1, 1, 1}, 0), bytes_of(Doubles({7, 8})));
    Doubles samples(3);
    std::uint64_t pos = 0;
    EXPECT_EQ(stack->read(vela_dt_double, samples.data(), nullptr, 2, pos), 2U);
    EXPECT_EQ(samples, Doubles({7, 8, 0}));
    EXPECT_VELA_ERROR(stack->read(vela_dt_double, samples.data(), nullptr), -3, "Failed reading 24 bytes from file!");
}

TEST_F(OpenDblTest, AShortFileIsRefused)
{
    put_bytes(path("test.dbl"), Bytes(127));
    EXPECT_VELA_ERROR_IN(file.open(name(), VFile::read_mode), "VBFFileImp::open_bf_dbl", "sources/binary_io", -4,
                         "Error reading .dbl file!");
    EXPECT_FALSE(file->is_open());
}

TEST_F(OpenDblTest, OnlyTheEndingCountsAndItsCase)
{
    put_bytes(path("test.DBL"), dbl_header({1, 1, 1, 1}, {1, 1, 1, 1}, 0));
    EXPECT_VELA_ERROR(file.open(file_name(path("test.DBL")), VFile::read_mode), -4, "No VBF file header found!");
    EXPECT_VELA_ERROR(file.open(file_name(path("missing.dbl")), VFile::read_mode), -4, "Error reading .dbl file!");
}

TEST_F(OpenDblTest, APathThatTheSystemWouldCutIsRefused)
{
    put_bytes(path("test.dbl"), dbl_header({1, 1, 1, 1}, {1, 1, 1, 1}, 0));
    const std::string cut = path("test.dbl") + std::string(1, '\0') + ".dbl";
    const VPropstring two_in_one(cut, VPropstring::enc_utf8);
    EXPECT_VELA_ERROR_IN(file.open(two_in_one, VFile::read_mode), "VFile::open", "sources/file", -1,
                         "Could not open file!");
}

TEST_F(OpenDblTest, AFileWithThatNameIsWrittenAsAVbfFile)
{
    file.open(name(), VFile::write_mode);
    file->close();
    const Bytes bytes = get_bytes(path("test.dbl"));
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 8), "VELA_BF\n");
}

TEST_F(OpenDblTest, IntoAStackInMemory)
{
    open({3, 2, 1, 1});
    const auto stack = file->read_stack(0, vela_dt_uint8);
    EXPECT_EQ(Bytes(stack->get_data_ptr(), stack->get_data_ptr() + 6), Bytes({0, 1, 2, 3, 4, 5}));
}
