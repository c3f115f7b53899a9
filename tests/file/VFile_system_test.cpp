// What the operating system has to say: devices, pipes, descriptors, transfers near and above its limits.
#include "file/file_fixture.h"

#include <VelaFile/VFile.h>
#include <VelaFile/handle.h>

#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace vela_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A file that has a descriptor of the test's own attached.
class AttachedFile
{
public:
    AttachedFile(const Descriptor& descriptor, VFile::mode mode)
    {
        void* handle = descriptor.handle();
        file.attach(handle, mode);
    }
    VFile* operator->() { return &file; }

private:
    VFile file;
};

/// Both ends of a pipe, with some bytes in it.
struct FilledPipe
{
    explicit FilledPipe(const std::string& content)
    {
        int ends[2];
        if (::pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        out = std::make_unique<Descriptor>(ends[0]);
        in = std::make_unique<Descriptor>(ends[1]);
        if (::write(ends[1], content.data(), content.size()) != static_cast<ssize_t>(content.size()))
            throw std::runtime_error("no room in the pipe");
    }

    std::unique_ptr<Descriptor> out;
    std::unique_ptr<Descriptor> in;
};

using VFileSystem = VFileTest;

TEST_F(VFileSystem, WriteToAFullDeviceFailsWithTheSystemsText)
{
    const Descriptor full("/dev/full", O_RDWR);
    AttachedFile file(full, VFile::write_mode);
    EXPECT_VELA_ERROR_IN(file->write("abc", 3), "VFile::write", "sources/file", -3, "Failed writing 3 bytes to file!");
    try
    {
        file->write("abc", 3);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 28);
        EXPECT_EQ(error.get_oserr(), "No space left on device");
        EXPECT_THAT(error.what(), HasSubstr("os_error(28): No space left on device"));
    }
}

TEST_F(VFileSystem, ReadThatTheSystemRefusesFailsWithItsText)
{
    const Descriptor directory(std::filesystem::path(path("x")).parent_path().string(), O_RDONLY | O_DIRECTORY);
    AttachedFile file(directory, VFile::read_mode);
    char bytes[4];
    try
    {
        file->read(bytes, 4);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg(), "Failed reading 4 bytes from file!");
        EXPECT_EQ(error.get_oserr_id(), 21);
        EXPECT_EQ(error.get_oserr(), "Is a directory");
    }
}

TEST_F(VFileSystem, SystemErrorOfAnEarlierFailureDoesNotReachAShortRead)
{
    put_bytes(path("a"), {1});
    VFile file(name("a"), VFile::read_mode);
    Bytes bytes(2);
    EXPECT_VELA_ERROR(VFile::remove(name("missing")), -1, "Could not remove file.");
    try
    {
        file.read(bytes.data(), 2);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 0);
    }
}

TEST_F(VFileSystem, PipeReadsWhatIsInIt)
{
    FilledPipe pipe("abcd");
    AttachedFile file(*pipe.out, VFile::read_mode);
    char bytes[3] = {};
    file->read(bytes, 3);
    EXPECT_EQ(std::string(bytes, 3), "abc");
}

TEST_F(VFileSystem, ReadFromAPipeThatEndsIsShort)
{
    FilledPipe pipe("abc");
    pipe.in->close();
    AttachedFile file(*pipe.out, VFile::read_mode);
    char bytes[6] = "~~~~~";
    EXPECT_VELA_ERROR(file->read(bytes, 5), -3, "Failed reading 5 bytes from file!");
    EXPECT_STREQ(bytes, "abc~~");
}

TEST_F(VFileSystem, ReadFromAPipeThatHasTooLittleIsShortAndNotRetried)
{
    FilledPipe pipe("abc");
    // So that a second transfer would fail here instead of waiting for ever.
    ASSERT_EQ(::fcntl(pipe.out->get(), F_SETFL, O_NONBLOCK), 0);
    AttachedFile file(*pipe.out, VFile::read_mode);
    char bytes[6] = "~~~~~";
    EXPECT_VELA_ERROR(file->read(bytes, 5), -3, "Failed reading 5 bytes from file!");
    EXPECT_STREQ(bytes, "abc~~");
}

TEST_F(VFileSystem, SeekOfAPipeGivesAllOnesAndThrowsNothing)
{
    FilledPipe pipe("abc");
    AttachedFile file(*pipe.out, VFile::read_mode);
    std::uint64_t result = 0;
    EXPECT_NO_THROW(result = file->seek(0));
    EXPECT_EQ(result, VFileAccess::all_ones);
    result = 0;
    EXPECT_NO_THROW(result = file->seek(VFileAccess::all_ones));
    EXPECT_EQ(result, VFileAccess::all_ones);
}

TEST_F(VFileSystem, ReadOfFourGibibytesOrMoreMovesTheLowBitsAndFailsOnThem)
{
    put_bytes(path("a"), {1, 2, 3, 4, 5, 6, 7, 8});
    VFile file(name("a"), VFile::read_mode);
    unsigned char bytes[5] = {9, 9, 9, 9, 9};
    EXPECT_VELA_ERROR(file.read(bytes, (1ull << 32) + 3), -3, "Failed reading 3 bytes from file!");
    EXPECT_THAT(bytes, ElementsAre(1, 2, 3, 9, 9));
    EXPECT_EQ(file.tell(), 3u);
    EXPECT_VELA_ERROR(file.read(bytes, 1ull << 32), -3, "Failed reading 0 bytes from file!");
    EXPECT_VELA_ERROR(file.read(bytes, (7ull << 40) + 1), -3, "Failed reading 1 bytes from file!");
    EXPECT_THAT(bytes, ElementsAre(4, 2, 3, 9, 9));
    EXPECT_EQ(file.tell(), 4u);
}

TEST_F(VFileSystem, WriteOfFourGibibytesOrMoreMovesTheLowBitsAndFailsOnThem)
{
    VFile file(name("a"), VFile::write_mode);
    const unsigned char bytes[3] = {1, 2, 3};
    EXPECT_VELA_ERROR(file.write(bytes, (1ull << 32) + 3), -3, "Failed writing 3 bytes to file!");
    EXPECT_EQ(file.tell(), 3u);
    EXPECT_VELA_ERROR(file.write(bytes, 1ull << 32), -3, "Failed writing 0 bytes to file!");
    EXPECT_VELA_ERROR(file.write(bytes, (7ull << 40) + 1), -3, "Failed writing 1 bytes to file!");
    file.close();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3, 1));
}

TEST_F(VFileSystem, SizeIsNamedByItsLow32BitsAsASignedNumber)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file(name("a"), VFile::read_mode);
    Bytes bytes(3);
    EXPECT_VELA_ERROR(file.read(bytes.data(), 0x7FFFFFFF), -3, "Failed reading 2147483647 bytes from file!");
    file.seek(0);
    EXPECT_VELA_ERROR(file.read(bytes.data(), 0x80000000), -3, "Failed reading -2147483648 bytes from file!");
    file.seek(0);
    EXPECT_VELA_ERROR(file.read(bytes.data(), 0xFFFFFFFF), -3, "Failed reading -1 bytes from file!");
    file.seek(3);
    EXPECT_VELA_ERROR(file.read(bytes.data(), VFileAccess::all_ones), -3, "Failed reading -1 bytes from file!");
}

/// Much address space over little memory: one small block, mapped again and again.
class WideBuffer
{
public:
    explicit WideBuffer(std::size_t size_bytes) : size(size_bytes)
    {
        const Descriptor memory(::memfd_create("wide", MFD_CLOEXEC));
        if (::ftruncate(memory.get(), block) != 0)
            throw std::runtime_error("no memory file");
        begin = ::mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (begin == MAP_FAILED)
            throw std::runtime_error("no address space");
        for (std::size_t offset = 0; offset < size; offset += block)
            if (::mmap(bytes() + offset, block, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, memory.get(), 0) ==
                MAP_FAILED)
                throw std::runtime_error("no mapping");
    }
    WideBuffer(const WideBuffer&) = delete;
    WideBuffer& operator=(const WideBuffer&) = delete;
    ~WideBuffer() { ::munmap(begin, size); }

    unsigned char* bytes() { return static_cast<unsigned char*>(begin); }

    static constexpr std::size_t block = 32u << 20;

private:
    void* begin = nullptr;
    std::size_t size;
};

constexpr std::size_t above_one_system_call = 0x88000000; // Linux moves at most 0x7FFFF000 bytes in one call.

TEST_F(VFileSystem, ReadOfMoreThanTwoGibibytesIsWhole)
{
    const Descriptor zero("/dev/zero", O_RDONLY);
    AttachedFile file(zero, VFile::read_mode);
    WideBuffer buffer(above_one_system_call);
    std::memset(buffer.bytes(), 0xA5, WideBuffer::block);
    EXPECT_NO_THROW(file->read(buffer.bytes(), above_one_system_call));
    EXPECT_EQ(std::count(buffer.bytes(), buffer.bytes() + WideBuffer::block, 0),
              static_cast<std::ptrdiff_t>(WideBuffer::block));
}

TEST_F(VFileSystem, WriteOfMoreThanTwoGibibytesIsWhole)
{
    const Descriptor null("/dev/null", O_RDWR);
    AttachedFile file(null, VFile::write_mode);
    WideBuffer buffer(above_one_system_call);
    EXPECT_NO_THROW(file->write(buffer.bytes(), above_one_system_call));
}

TEST_F(VFileSystem, DescriptorsAreNotInheritedByOtherPrograms)
{
    put_bytes(path("a"), {1});
    for (const VFile::mode mode : all_modes)
    {
        VFile file(name("a"), mode);
        const Descriptor descriptor(vela_descriptor_from_handle(file.detach()));
        EXPECT_NE(::fcntl(descriptor.get(), F_GETFD) & FD_CLOEXEC, 0);
    }
}

TEST_F(VFileSystem, DevicesDoNotOpen)
{
    for (const char* device : {"/dev/null", "/dev/full", "/dev/zero"})
        for (const VFile::mode mode : all_modes)
        {
            VFile file;
            EXPECT_VELA_ERROR(file.open(file_name(device), mode), -1, "Could not open file!");
            EXPECT_FALSE(file.is_open());
        }
}

TEST_F(VFileSystem, DirectoriesDoNotOpen)
{
    std::filesystem::create_directory(path("folder"));
    for (const VFile::mode mode : all_modes)
    {
        VFile file;
        EXPECT_VELA_ERROR_IN(file.open(name("folder"), mode), "VFile::open", "sources/file", -1,
                             "Could not open file!");
        EXPECT_VELA_ERROR(file.open(name("folder/"), mode), -1, "Could not open file!");
        EXPECT_FALSE(file.is_open());
    }
}

TEST_F(VFileSystem, PipesWithANameDoNotOpenAndDoNotBlock)
{
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    ::alarm(30); // An open that waits for the other end would wait for ever.
    for (const VFile::mode mode : all_modes)
    {
        VFile file;
        EXPECT_VELA_ERROR(file.open(name("fifo"), mode), -1, "Could not open file!");
        EXPECT_FALSE(file.is_open());
    }
    ::alarm(0);
}

TEST_F(VFileSystem, SocketsDoNotOpen)
{
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string text = path("socket");
    ASSERT_LT(text.size(), sizeof address.sun_path);
    std::copy(text.begin(), text.end(), address.sun_path);
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    for (const VFile::mode mode : all_modes)
    {
        VFile file;
        EXPECT_VELA_ERROR(file.open(name("socket"), mode), -1, "Could not open file!");
    }
}

TEST_F(VFileSystem, FailedOpenLeaksNoDescriptor)
{
    std::filesystem::create_directory(path("folder"));
    const VFile holder(name("held"), VFile::write_mode);
    const auto lowest_free = []
    {
        const Descriptor probe("/dev/null", O_RDONLY);
        return probe.get();
    };
    const int before = lowest_free();
    for (const char* file : {"folder", "held", "missing/a"})
        for (const VFile::mode mode : all_modes)
            EXPECT_THROW(VFile(name(file), mode), VelaError);
    EXPECT_EQ(lowest_free(), before);
}

} // namespace
