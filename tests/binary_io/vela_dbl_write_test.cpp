// What `vela_dbl_write` leaves on disk, and how it fails.
#include "binary_io/dbl_file_test.h"

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <limits>
#include <sys/resource.h>

using namespace vela_test;
using testing::ElementsAre;

namespace {

constexpr Lengths ones = {1, 1, 1, 1};
constexpr std::size_t block = 0x100000;

class DblWrite : public DblTest
{
protected:
    std::string file() const { return path("a.dbl"); }

    int write(const Dims& dims, const Lengths& lengths, const void* data, int single) const
    {
        return vela_dbl_write(file().c_str(), dims.data(), lengths.data(), data, single);
    }

    /// Bytes `begin` to `end` of the file.
    Bytes bytes(std::size_t begin, std::size_t end) const
    {
        const Bytes all = get_bytes(file());
        return all.size() < end ? Bytes() : Bytes(all.data() + begin, all.data() + end);
    }
    Bytes samples() const { return bytes(128, get_bytes(file()).size()); }

    /// Whether somebody holds the file open and locked.
    bool is_locked() const
    {
        try
        {
            VFile other(file_name(file()), VFile::read_mode);
            return false;
        }
        catch (const VelaError&)
        {
            return true;
        }
    }
};

/// While it lives, no file grows beyond `size_bytes`: the write that would fails.
class FilesEndAt
{
public:
    explicit FilesEndAt(rlim_t size_bytes) : handler_before(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit now = before;
        now.rlim_cur = size_bytes;
        setrlimit(RLIMIT_FSIZE, &now);
    }
    FilesEndAt(const FilesEndAt&) = delete;
    FilesEndAt& operator=(const FilesEndAt&) = delete;
    ~FilesEndAt()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler_before);
    }

private:
    rlimit before = {};
    void (*handler_before)(int);
};

TEST_F(DblWrite, DimensionsStandInTheOrderTwoOneNoughtThree)
{
    const Doubles data(6, 0.0);
    ASSERT_EQ(write({3, 2, 1, 1}, ones, data.data(), 0), 1);
    EXPECT_THAT(bytes(0, 8), ElementsAre(0x00, 0x01, 0x00, 0x02, 0x00, 0x03, 0x00, 0x01));
}

TEST_F(DblWrite, EveryByteOfTheHeaderHasItsPlace)
{
    const Doubles data(0x0102 * 3 * 2, 0.0);
    ASSERT_EQ(write({0x0102, 1, 3, 2}, {1.5F, -2.0F, 0.1F, 4.0F}, data.data(), 1), 1);
    EXPECT_THAT(bytes(0, 25), ElementsAre(0x00, 0x03, 0x00, 0x01, 0x01, 0x02, 0x00, 0x02, // dimensions 2, 1, 0, 3
                                          0xCD, 0xCC, 0xCC, 0x3D,                         // 0.1
                                          0x00, 0x00, 0x00, 0xC0,                         // -2
                                          0x00, 0x00, 0xC0, 0x3F,                         // 1.5
                                          0x00, 0x00, 0x80, 0x40,                         // 4
                                          0x01));
}

TEST_F(DblWrite, BytesThatAreNotDefinedTellNothingOfTheMemoryOfTheProcess)
{
    const double one = 1;
    ASSERT_EQ(write({1, 1, 1, 1}, ones, &one, 0), 1);
    EXPECT_EQ(bytes(25, 128), Bytes(103, 0));
}

TEST_F(DblWrite, LengthsAreTakenAsTheyAre)
{
    const double one = 1;
    const float infinity = std::numeric_limits<float>::infinity();
    ASSERT_EQ(write({1, 1, 1, 1}, {0.0F, -infinity, infinity, std::bit_cast<float>(0x7FC00001)}, &one, 0), 1);
    EXPECT_THAT(bytes(8, 24), ElementsAre(0x00, 0x00, 0x80, 0x7F, 0x00, 0x00, 0x80, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x01,
                                          0x00, 0xC0, 0x7F));
}

TEST_F(DblWrite, DoublesLieLittleEndianBehindTheHeader)
{
    const Doubles data = {1.0, -2.5};
    ASSERT_EQ(write({2, 1, 1, 1}, ones, data.data(), 0), 1);
    EXPECT_EQ(bytes(24, 25), Bytes{0});
    EXPECT_THAT(samples(), ElementsAre(0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0x04, 0xC0));
}

TEST_F(DblWrite, SinglesAreConvertedFromDoubles)
{
    const Doubles data = {1.0, -2.5, 0.1, 1e300};
    ASSERT_EQ(write({4, 1, 1, 1}, ones, data.data(), 1), 1);
    EXPECT_EQ(bytes(24, 25), Bytes{1});
    EXPECT_THAT(samples(), ElementsAre(0, 0, 0x80, 0x3F, 0, 0, 0x20, 0xC0, 0xCD, 0xCC, 0xCC, 0x3D, 0, 0, 0x80, 0x7F));
}

TEST_F(DblWrite, AnotherNonzeroSingleTakesFourBytesASampleAsTheyStand)
{
    for (const int single : {2, -1, 0x100, std::numeric_limits<int>::min()})
    {
        SCOPED_TRACE(single);
        const Doubles data = {1.0, -2.5};
        ASSERT_EQ(write({2, 1, 1, 1}, ones, data.data(), single), 1);
        EXPECT_EQ(bytes(24, 25), Bytes{1});
        EXPECT_THAT(samples(), ElementsAre(0, 0, 0, 0, 0, 0, 0xF0, 0x3F));
    }
}

TEST_F(DblWrite, DimensionKeepsItsLow16Bits)
{
    Doubles data(70000);
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<double>(i);
    ASSERT_EQ(write({70000, 1, 1, 1}, ones, data.data(), 1), 1);
    EXPECT_THAT(bytes(4, 6), ElementsAre(0x11, 0x70)); // 4464
    EXPECT_EQ(get_bytes(file()).size(), 128U + 70000 * 4);
    const Singles last = values_at<float>(samples().data() + 69999 * 4, 1);
    EXPECT_EQ(last[0], 69999.0F);
}

TEST_F(DblWrite, NegativeDimensionsWithAProductAboveNoughtAreWritten)
{
    const Doubles data = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(write({-3, -2, 1, 1}, ones, data.data(), 0), 1);
    EXPECT_THAT(bytes(0, 8), ElementsAre(0x00, 0x01, 0xFF, 0xFE, 0xFF, 0xFD, 0x00, 0x01));
    EXPECT_EQ(samples(), bytes_of(data));
}

TEST_F(DblWrite, NoSamplesAreAHeader)
{
    for (const int single : {0, 1, 2})
    {
        ASSERT_EQ(write({3, 0, 5, 1}, ones, nullptr, single), 1);
        EXPECT_EQ(get_bytes(file()).size(), 128U);
    }
}

TEST_F(DblWrite, ProductCountsInItsLow32Bits)
{
    ASSERT_EQ(write({65536, 65536, 1, 1}, ones, nullptr, 0), 1);
    EXPECT_EQ(get_bytes(file()).size(), 128U);
    const Doubles data = {1, 2, 3, 4};
    ASSERT_EQ(write({1300, 2501, 1321, 1}, ones, data.data(), 0), 1); // 2^32 + 4
    EXPECT_EQ(samples(), bytes_of(data));
}

TEST_F(DblWrite, WritesBlocksAndTheRest)
{
    for (const std::size_t size : {block - 8, block, block + 8, 2 * block, 3 * block + 8})
    {
        SCOPED_TRACE(size);
        Doubles data(size / 8);
        for (std::size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<double>(i);
        const int dim = static_cast<int>(data.size());
        ASSERT_EQ(write({dim, 1, 1, 1}, ones, data.data(), 0), 1);
        EXPECT_EQ(std::filesystem::file_size(file()), 128 + size);
        EXPECT_TRUE(samples() == bytes_of(data));
    }
}

TEST_F(DblWrite, ReplacesAFileThatExists)
{
    put_bytes(file(), Bytes(1000, 0xEE));
    const double one = 1;
    ASSERT_EQ(write({1, 1, 1, 1}, ones, &one, 0), 1);
    EXPECT_EQ(get_bytes(file()).size(), 136U);
}

TEST_F(DblWrite, ClosesTheFile)
{
    const double one = 1;
    const int descriptor = next_descriptor();
    ASSERT_EQ(write({1, 1, 1, 1}, ones, &one, 1), 1);
    EXPECT_FALSE(is_open_descriptor(descriptor));
    EXPECT_FALSE(is_locked());
}

TEST_F(DblWrite, NamesAreUtf8)
{
    const double one = 1;
    const Dims dims = {1, 1, 1, 1};
    const std::string name = path("\xC3\xBC\xE2\x82\xAC.dbl");
    ASSERT_EQ(vela_dbl_write(name.c_str(), dims.data(), ones.data(), &one, 0), 1);
    VFile(VPropstring(name, VPropstring::enc_utf8), VFile::read_mode).close();
}

TEST_F(DblWrite, FileThatCannotBeCreatedGives0)
{
    const double one = 1;
    const Dims dims = {1, 1, 1, 1};
    for (const std::string& name : {path("no/folder.dbl"), path(""), std::string(), std::string("/dev/full")})
        EXPECT_EQ(vela_dbl_write(name.c_str(), dims.data(), ones.data(), &one, 0), 0) << name;
}

TEST_F(DblWrite, FileThatIsOpenElsewhereKeepsItsContent)
{
    put_bytes(file(), {1, 2, 3});
    const VFile holder(file_name(file()), VFile::read_mode);
    const double one = 1;
    EXPECT_EQ(write({1, 1, 1, 1}, ones, &one, 0), 0);
    EXPECT_THAT(get_bytes(file()), ElementsAre(1, 2, 3));
}

TEST_F(DblWrite, ProductBelow0IsRefusedBeforeTheOldFileIsTouched)
{
    put_bytes(file(), {1, 2, 3});
    const double one = 1;
    for (const int single : {0, 1, 2})
        for (const Dims& dims : {Dims{-1, 1, 1, 1}, Dims{65535, 65535, 1, 1}, Dims{1 << 30, 2, 1, 1}})
            EXPECT_EQ(write(dims, ones, &one, single), 0);
    EXPECT_THAT(get_bytes(file()), ElementsAre(1, 2, 3));
}

TEST_F(DblWrite, HeaderThatCannotBeWrittenClosesTheFile)
{
    const double one = 1;
    const int descriptor = next_descriptor();
    int result = -1;
    {
        const FilesEndAt limit(100);
        result = write({1, 1, 1, 1}, ones, &one, 0);
    }
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(is_open_descriptor(descriptor));
    EXPECT_EQ(get_bytes(file()).size(), 100U);
}

TEST_F(DblWrite, SamplesThatCannotBeWrittenCloseTheFile)
{
    const Doubles data(2 * block / 8, 1.0);
    const int descriptor = next_descriptor();
    for (const int single : {0, 2})
    {
        int result = -1;
        {
            const FilesEndAt limit(128 + block / 2);
            result = write({static_cast<int>(data.size()), 1, 1, 1}, ones, data.data(), single);
        }
        EXPECT_EQ(result, 0);
        EXPECT_FALSE(is_open_descriptor(descriptor));
        EXPECT_EQ(get_bytes(file()).size(), 128U + block / 2);
    }
}

/// In a process of its own, as the memory of the singles is kept.
TEST_F(DblWrite, SinglesThatCannotBeWrittenCloseTheFileToo)
{
    const Doubles data(2 * block / 4, 1.0);
    const auto work = [&]
    {
        const int descriptor = next_descriptor();
        const FilesEndAt limit(128 + block);
        const int result = write({static_cast<int>(data.size()), 1, 1, 1}, ones, data.data(), 1);
        return result * 2 + (is_open_descriptor(descriptor) ? 1 : 0);
    };
    EXPECT_EQ(in_another_process(work), 0);
    EXPECT_EQ(get_bytes(file()).size(), 128U + block);
    EXPECT_FALSE(is_locked());
}

}
