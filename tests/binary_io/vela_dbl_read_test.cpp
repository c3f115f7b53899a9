// What `vela_dbl_read` makes of a file, mode by mode, and how it fails.
#include "binary_io/dbl_file_test.h"

#include <VelaFile/VFile.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>
#include <sys/stat.h>

using namespace vela_test;
using testing::Each;

namespace {

const Doubles some_doubles = {1.0, -2.5, 0.1, 1e300, -0.0, 7.0};
const Singles some_singles = {1.0F, -2.5F, 0.1F, 1e-40F, -0.0F, 7.0F};
constexpr Dims some_dims = {3, 2, 1, 1};

/// More than one piece of those in which samples are converted.
constexpr std::size_t many = 5000;

Singles narrowed(const Doubles& values)
{
    Singles result;
    for (const double value : values)
        result.push_back(static_cast<float>(value));
    return result;
}

Doubles expanded(const Singles& values)
{
    return Doubles(values.begin(), values.end());
}

/// A buffer of the caller, with something wrong in it and a guard behind.
class OwnBuffer
{
public:
    explicit OwnBuffer(std::size_t size_bytes) : bytes(size_bytes, 0x5A), guard_at(size_bytes)
    {
        bytes.resize(size_bytes + 16, 0xEE);
    }

    int read(const std::string& path, std::uintptr_t mode)
    {
        place = mode_word(mode);
        return vela_dbl_read(path.c_str(), bytes.data(), lengths.data(), &place);
    }

    template <class T>
    std::vector<T> values() const
    {
        return values_at<T>(bytes.data(), guard_at / sizeof(T));
    }
    void expect_guard() const
    {
        for (std::size_t i = guard_at; i < bytes.size(); ++i)
            EXPECT_EQ(bytes[i], 0xEE);
    }

    Bytes bytes;
    Lengths lengths = {-7, -7, -7, -7};
    void* place = nullptr;

private:
    std::size_t guard_at;
};

class DblRead : public DblTest
{
};

TEST_F(DblRead, HeaderModesGiveTheHeaderAndWhatTheFileStores)
{
    for (const std::uintptr_t mode : {0xA0U, 0xADU})
    {
        SCOPED_TRACE(mode);
        const DblContent doubles(make_doubles({3, 2, 5, 4}, some_doubles), mode);
        EXPECT_EQ(doubles.result, 1);
        EXPECT_EQ(doubles.dims, (Dims{3, 2, 5, 4}));
        EXPECT_EQ(doubles.lengths, (Lengths{1, 2, 3, 4}));
        EXPECT_EQ(doubles.buffer, mode_word(mode));
        EXPECT_EQ(DblContent(make_singles(some_dims, some_singles), mode).result, 2);
    }
}

TEST_F(DblRead, HeaderModesNeedNoSamples)
{
    EXPECT_EQ(DblContent(make_doubles({65535, 65535, 65535, 65535}, {}), 0xA0).result, 1);
    EXPECT_EQ(DblContent(make_singles({0, 0, 0, 0}, {}), 0xAD).result, 2);
}

TEST_F(DblRead, DimensionsAreUnsigned)
{
    const DblContent content(make_doubles({0x8001, 0xFFFF, 0x1234, 0x00FF}, {}), 0xA0);
    EXPECT_EQ(content.dims, (Dims{0x8001, 0xFFFF, 0x1234, 0x00FF}));
}

TEST_F(DblRead, MarkOfSinglesIsTheNumber1)
{
    for (int flag = 0; flag < 256; ++flag)
        EXPECT_EQ(DblContent(make(some_dims, some_doubles, static_cast<unsigned char>(flag)), 0xA0).result,
                  flag == 1 ? 2 : 1)
            << flag;
}

TEST_F(DblRead, ModeAEAllocatesSingles)
{
    const DblContent stored(make_singles(some_dims, some_singles), 0xAE);
    EXPECT_EQ(stored.result, 2);
    EXPECT_EQ(stored.dims, some_dims);
    EXPECT_EQ(stored.lengths, (Lengths{1, 2, 3, 4}));
    EXPECT_EQ(values_at<float>(stored.buffer, 6), some_singles);
    const DblContent converted(make_doubles(some_dims, some_doubles), 0xAE);
    EXPECT_EQ(converted.result, 2);
    EXPECT_EQ(converted.dims, some_dims);
    EXPECT_EQ(values_at<float>(converted.buffer, 6), narrowed(some_doubles));
}

TEST_F(DblRead, ModeAFAllocatesWhatIsStored)
{
    const DblContent singles(make_singles(some_dims, some_singles), 0xAF);
    EXPECT_EQ(singles.result, 2);
    EXPECT_EQ(singles.dims, some_dims);
    EXPECT_EQ(values_at<float>(singles.buffer, 6), some_singles);
    const DblContent doubles(make_doubles(some_dims, some_doubles), 0xAF);
    EXPECT_EQ(doubles.result, 1);
    EXPECT_EQ(doubles.dims, some_dims);
    EXPECT_EQ(values_at<double>(doubles.buffer, 6), some_doubles);
}

TEST_F(DblRead, AnyOtherModeAllocatesDoubles)
{
    constexpr std::uintptr_t largest = std::numeric_limits<std::uintptr_t>::max();
    for (const std::uintptr_t mode : {std::uintptr_t{0}, std::uintptr_t{1}, std::uintptr_t{0xA1}, std::uintptr_t{0xA9},
                                      std::uintptr_t{0xB0}, std::uintptr_t{0x1AE}, largest - 0x51, largest})
    {
        SCOPED_TRACE(mode);
        const DblContent singles(make_singles(some_dims, some_singles), mode);
        EXPECT_EQ(singles.result, 1);
        EXPECT_EQ(singles.dims, some_dims);
        EXPECT_EQ(singles.lengths, (Lengths{1, 2, 3, 4}));
        EXPECT_EQ(values_at<double>(singles.buffer, 6), expanded(some_singles));
        const DblContent doubles(make_doubles(some_dims, some_doubles), mode);
        EXPECT_EQ(doubles.result, 1);
        EXPECT_EQ(values_at<double>(doubles.buffer, 6), some_doubles);
    }
}

TEST_F(DblRead, ModeAAFillsTheCallersBufferWithSingles)
{
    OwnBuffer stored(6 * 4);
    EXPECT_EQ(stored.read(make_singles(some_dims, some_singles), 0xAA), 2);
    EXPECT_EQ(stored.values<float>(), some_singles);
    EXPECT_EQ(stored.lengths, (Lengths{1, 2, 3, 4}));
    EXPECT_EQ(stored.place, stored.bytes.data());
    stored.expect_guard();
    OwnBuffer converted(6 * 8);
    EXPECT_EQ(converted.read(make_doubles(some_dims, some_doubles), 0xAA), 2);
    EXPECT_EQ(values_at<float>(converted.bytes.data(), 6), narrowed(some_doubles));
    EXPECT_EQ(converted.place, converted.bytes.data());
    converted.expect_guard();
}

TEST_F(DblRead, ModeABFillsTheCallersBufferWithWhatIsStored)
{
    OwnBuffer singles(6 * 4);
    EXPECT_EQ(singles.read(make_singles(some_dims, some_singles), 0xAB), 2);
    EXPECT_EQ(singles.values<float>(), some_singles);
    EXPECT_EQ(singles.place, singles.bytes.data());
    singles.expect_guard();
    OwnBuffer doubles(6 * 8);
    EXPECT_EQ(doubles.read(make_doubles(some_dims, some_doubles), 0xAB), 1);
    EXPECT_EQ(doubles.values<double>(), some_doubles);
    doubles.expect_guard();
}

TEST_F(DblRead, ModeACFillsTheCallersBufferWithDoubles)
{
    OwnBuffer converted(6 * 8);
    EXPECT_EQ(converted.read(make_singles(some_dims, some_singles), 0xAC), 1);
    EXPECT_EQ(converted.values<double>(), expanded(some_singles));
    EXPECT_EQ(converted.lengths, (Lengths{1, 2, 3, 4}));
    EXPECT_EQ(converted.place, converted.bytes.data());
    converted.expect_guard();
    OwnBuffer stored(6 * 8);
    EXPECT_EQ(stored.read(make_doubles(some_dims, some_doubles), 0xAC), 1);
    EXPECT_EQ(stored.values<double>(), some_doubles);
    stored.expect_guard();
}

TEST_F(DblRead, ManySamplesAreConvertedInPlace)
{
    Singles singles;
    Doubles doubles;
    for (std::size_t i = 0; i < many; ++i)
    {
        singles.push_back(static_cast<float>(i) + 0.5F);
        doubles.push_back(static_cast<double>(i) / 3);
    }
    for (const std::size_t count : {std::size_t{1023}, std::size_t{1024}, std::size_t{1025}, many})
    {
        SCOPED_TRACE(count);
        singles.resize(count);
        doubles.resize(count);
        const Dims dims = {static_cast<int>(count), 1, 1, 1};
        const DblContent large(make_singles(dims, singles), 0);
        EXPECT_EQ(values_at<double>(large.buffer, count), expanded(singles));
        OwnBuffer own(count * 8);
        EXPECT_EQ(own.read(make_doubles(dims, doubles), 0xAA), 2);
        EXPECT_EQ(values_at<float>(own.bytes.data(), count), narrowed(doubles));
        own.expect_guard();
    }
}

TEST_F(DblRead, BufferOfTheCallerNeedsNoAlignment)
{
    Bytes buffer(1 + 6 * 8, 0x5A);
    Lengths lengths = {};
    for (const std::uintptr_t mode : {0xACU, 0xABU, 0xAAU})
    {
        void* place = mode_word(mode);
        EXPECT_EQ(
            vela_dbl_read(make_doubles(some_dims, some_doubles).c_str(), buffer.data() + 1, lengths.data(), &place),
            mode == 0xAA ? 2 : 1);
    }
    EXPECT_EQ(values_at<float>(buffer.data() + 1, 6), narrowed(some_doubles));
}

TEST_F(DblRead, FileWithoutSamplesGivesABufferThatCanBeReleased)
{
    for (const std::uintptr_t mode : {0U, 0xAEU, 0xAFU})
    {
        const DblContent content(make_singles({3, 0, 5, 1}, {}), mode);
        EXPECT_EQ(content.result, mode == 0 ? 1 : 2);
        EXPECT_TRUE(content.is_allocated);
    }
}

TEST_F(DblRead, WhatFollowsTheSamplesIsNotRead)
{
    OwnBuffer own(6 * 8);
    Doubles more = some_doubles;
    more.resize(20, 9.0);
    EXPECT_EQ(own.read(make_doubles(some_dims, more), 0xAB), 1);
    EXPECT_EQ(own.values<double>(), some_doubles);
    own.expect_guard();
}

TEST_F(DblRead, ProductCountsInItsLow32Bits)
{
    OwnBuffer own(4 * 8);
    EXPECT_EQ(own.read(make_doubles({1300, 2501, 1321, 1}, some_doubles), 0xAC), 1); // 2^32 + 4
    EXPECT_EQ(own.values<double>(), Doubles(some_doubles.begin(), some_doubles.begin() + 4));
    own.expect_guard();
    const DblContent none(make_doubles({256, 256, 256, 256}, some_doubles), 0);
    EXPECT_EQ(none.result, 1);
    EXPECT_TRUE(none.is_allocated);
}

TEST_F(DblRead, ProductBelow0IsRefusedWhereSamplesAreRead)
{
    const Dims dims = {65535, 65535, 1, 1};
    const std::string file = make_doubles(dims, some_doubles);
    const int descriptor = next_descriptor();
    for (const std::uintptr_t mode : {0U, 0xAEU, 0xAFU})
    {
        const DblContent content(file, mode);
        EXPECT_EQ(content.result, 0);
        EXPECT_FALSE(content.is_allocated);
        EXPECT_EQ(content.dims, dims);
        EXPECT_EQ(content.lengths, (Lengths{1, 2, 3, 4}));
    }
    for (const std::uintptr_t mode : {0xAAU, 0xABU, 0xACU})
    {
        OwnBuffer own(16);
        EXPECT_EQ(own.read(file, mode), 0);
        EXPECT_EQ(own.place, mode_word(mode));
        EXPECT_EQ(own.values<unsigned char>(), Bytes(16, 0x5A));
    }
    EXPECT_EQ(DblContent(file, 0xA0).result, 1);
    EXPECT_FALSE(is_open_descriptor(descriptor));
}

TEST_F(DblRead, SamplesThatTheFileDoesNotBringAre0InAnAllocatedBuffer)
{
    for (std::size_t cut = 0; cut <= 6 * 8; ++cut)
    {
        SCOPED_TRACE(cut);
        const std::string file = make_doubles(some_dims, some_doubles);
        std::filesystem::resize_file(file, 128 + cut);
        Bytes expected = bytes_of(some_doubles);
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(cut), expected.end(), 0);
        const DblContent doubles(file, 0xAF);
        EXPECT_EQ(doubles.result, 1);
        EXPECT_EQ(values_at<unsigned char>(doubles.buffer, 48), expected);
        const DblContent singles(file, 0xAE);
        EXPECT_EQ(singles.result, 2);
        EXPECT_EQ(values_at<float>(singles.buffer, 6), narrowed(values_at<double>(expected.data(), 6)));
    }
    for (std::size_t cut = 0; cut <= 6 * 4; ++cut)
    {
        SCOPED_TRACE(cut);
        const std::string file = make_singles(some_dims, some_singles);
        std::filesystem::resize_file(file, 128 + cut);
        Bytes expected = bytes_of(some_singles);
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(cut), expected.end(), 0);
        const DblContent doubles(file, 0);
        EXPECT_EQ(doubles.result, 1);
        EXPECT_EQ(values_at<double>(doubles.buffer, 6), expanded(values_at<float>(expected.data(), 6)));
    }
}

TEST_F(DblRead, SamplesThatTheFileDoesNotBringStayInTheCallersBufferAndAreConverted)
{
    const std::string file = make_singles(some_dims, {1.0F, 2.0F});
    OwnBuffer stored(6 * 4);
    EXPECT_EQ(stored.read(file, 0xAB), 2);
    const float old = std::bit_cast<float>(0x5A5A5A5A);
    EXPECT_EQ(stored.values<float>(), (Singles{1.0F, 2.0F, old, old, old, old}));
    OwnBuffer converted(6 * 8);
    EXPECT_EQ(converted.read(file, 0xAC), 1);
    EXPECT_EQ(converted.values<double>(), expanded({1.0F, 2.0F, old, old, old, old}));
    converted.expect_guard();
}

TEST_F(DblRead, HugePromiseOfASmallFileTouchesNoMemory)
{
    // 8 MiB in pages of the system would be seen; 2 GiB of zeros that nobody looks at are not.
    const std::string file = make_singles({16384, 16384, 1, 1}, some_singles);
    const auto resident_pages = []
    {
        std::ifstream in("/proc/self/statm");
        std::size_t all = 0;
        std::size_t resident = 0;
        in >> all >> resident;
        return resident;
    };
    const std::size_t before = resident_pages();
    const DblContent content(file, 0);
    ASSERT_EQ(content.result, 1);
    EXPECT_LT(resident_pages(), before + (8U << 20) / 4096);
    EXPECT_EQ(values_at<double>(content.buffer, 6), expanded(some_singles));
    const Doubles behind = values_at<double>(static_cast<const char*>(content.buffer) + 6 * 8, 100);
    EXPECT_THAT(behind, Each(0.0));
}

/// A file is left open by this, so the test closes it.
TEST_F(DblRead, FileOfFewerThan128BytesGives0AndStaysOpen)
{
    for (std::size_t size = 0; size < 128; ++size)
    {
        SCOPED_TRACE(size);
        Bytes header = dbl_header(some_dims, {1, 2, 3, 4}, 0);
        header.resize(size);
        put_bytes(path("short.dbl"), header);
        const int descriptor = next_descriptor();
        const DblContent content(path("short.dbl"), size % 2 == 0 ? 0xA0 : 0);
        const bool stayed_open = is_open_descriptor(descriptor);
        if (stayed_open)
            ::close(descriptor);
        EXPECT_TRUE(stayed_open);
        EXPECT_EQ(content.result, 0);
        EXPECT_FALSE(content.is_allocated);
        EXPECT_EQ(content.dims, (Dims{-7, -7, -7, -7}));
        EXPECT_EQ(content.lengths, (Lengths{-7, -7, -7, -7}));
    }
}

TEST_F(DblRead, FileThatCannotBeOpenedGives0)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    for (const std::string& name : {path("none.dbl"), path(""), path("pipe"), std::string(), std::string("/dev/zero")})
    {
        SCOPED_TRACE(name);
        const int descriptor = next_descriptor();
        const DblContent content(name, 0xA0);
        EXPECT_EQ(content.result, 0);
        EXPECT_EQ(content.dims, (Dims{-7, -7, -7, -7}));
        EXPECT_FALSE(is_open_descriptor(descriptor));
    }
}

TEST_F(DblRead, ClosesTheFile)
{
    const std::string file = make_doubles(some_dims, some_doubles);
    const int descriptor = next_descriptor();
    for (const std::uintptr_t mode : {0U, 0xA0U, 0xADU, 0xAEU, 0xAFU})
    {
        EXPECT_NE(DblContent(file, mode).result, 0);
        EXPECT_FALSE(is_open_descriptor(descriptor)) << mode;
    }
}

TEST_F(DblRead, ReadsAFileThatIsOpenElsewhere)
{
    const std::string file = make_doubles(some_dims, some_doubles);
    const VFile holder(file_name(file), VFile::append_mode);
    const DblContent content(file, 0);
    EXPECT_EQ(content.result, 1);
    EXPECT_EQ(values_at<double>(content.buffer, 6), some_doubles);
}

TEST_F(DblRead, FileThatMayOnlyBeReadIsEnough)
{
    const std::string file = make_doubles(some_dims, some_doubles);
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    EXPECT_EQ(DblContent(file, 0xA0).result, 1);
}

}
