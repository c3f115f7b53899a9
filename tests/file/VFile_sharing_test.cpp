// A file is open once only: in this process, in another one, and beside a lock that somebody else holds.
#include "file/file_fixture.h"

#include <VelaFile/VFile.h>
#include <VelaFile/handle.h>

#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace vela_test;
using testing::ElementsAre;

namespace {

class VFileSharing : public VFileTest
{
protected:
    void expect_in_use(const std::string& file)
    {
        const Bytes content = get_bytes(path(file));
        for (const VFile::mode mode : all_modes)
        {
            VFile second;
            EXPECT_VELA_ERROR_IN(second.open(name(file), mode), "VFile::open", "sources/file", -1,
                                 "Could not open file!");
            EXPECT_FALSE(second.is_open());
        }
        EXPECT_EQ(get_bytes(path(file)), content);
    }

    /// Runs `work` in another process and gives its result.
    static int in_another_process(const std::function<int()>& work)
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(work());
        int status = -1;
        if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
            return -1;
        return WEXITSTATUS(status);
    }

    /// 0: it opened; 1: the failure that is expected; 2: another one.
    int try_to_open(const std::string& file, VFile::mode mode) const
    {
        try
        {
            VFile second(name(file), mode);
            return 0;
        }
        catch (const VelaError& error)
        {
            return error.get_id() == -1 && error.get_msg() == "Could not open file!" ? 1 : 2;
        }
        catch (...)
        {
            return 2;
        }
    }
};

TEST_F(VFileSharing, SecondOpenFailsInEveryPairOfModesAndKeepsTheContent)
{
    put_bytes(path("a"), {1, 2, 3});
    for (const VFile::mode mode : {VFile::read_mode, VFile::append_mode})
    {
        VFile first(name("a"), mode);
        expect_in_use("a");
        EXPECT_THAT(read_bytes(first, 3), ElementsAre(1, 2, 3));
    }
    VFile first(name("a"), VFile::write_mode);
    write_bytes(first, {4, 5});
    expect_in_use("a");
    write_bytes(first, {6});
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(4, 5, 6));
}

TEST_F(VFileSharing, SecondOpenThroughAnotherNameFailsToo)
{
    put_bytes(path("a"), {1, 2, 3});
    std::filesystem::create_hard_link(path("a"), path("hard"));
    std::filesystem::create_symlink(path("a"), path("symbolic"));
    const VFile first(name("a"), VFile::append_mode);
    expect_in_use("hard");
    expect_in_use("symbolic");
}

TEST_F(VFileSharing, CloseLetsTheFileGo)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile first(name("a"), VFile::append_mode);
    VFile second;
    EXPECT_THROW(second.open(name("a"), VFile::append_mode), VelaError);
    first.close();
    second.open(name("a"), VFile::append_mode);
    EXPECT_THAT(read_bytes(second, 3), ElementsAre(1, 2, 3));
    EXPECT_VELA_ERROR(first.open(name("a"), VFile::read_mode), -1, "Could not open file!");
}

TEST_F(VFileSharing, DestructorLetsTheFileGo)
{
    put_bytes(path("a"), {1, 2, 3});
    auto first = std::make_unique<VFile>(name("a"), VFile::append_mode);
    expect_in_use("a");
    first.reset();
    EXPECT_EQ(try_to_open("a", VFile::append_mode), 0);
}

TEST_F(VFileSharing, DetachedHandleKeepsTheFileUntilItIsClosed)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile first(name("a"), VFile::append_mode);
    Descriptor descriptor(vela_descriptor_from_handle(first.detach()));
    expect_in_use("a");
    descriptor.close();
    EXPECT_EQ(try_to_open("a", VFile::append_mode), 0);
}

TEST_F(VFileSharing, OtherFilesAreFree)
{
    const VFile first(name("a"), VFile::write_mode);
    EXPECT_EQ(try_to_open("b", VFile::write_mode), 0);
}

TEST_F(VFileSharing, AttachTakesNoLock)
{
    put_bytes(path("a"), {1, 2, 3});
    const Descriptor one(path("a"), O_RDONLY);
    void* handle = one.handle();
    VFile attached;
    attached.attach(handle, VFile::read_mode);
    EXPECT_EQ(try_to_open("a", VFile::append_mode), 0);
    const VFile holder(name("a"), VFile::append_mode);
    EXPECT_THAT(read_bytes(attached, 3), ElementsAre(1, 2, 3));
}

TEST_F(VFileSharing, AnyLockOfAnotherDescriptorKeepsTheFileClosedAndWhole)
{
    put_bytes(path("a"), {1, 2, 3});
    for (const int lock : {LOCK_EX, LOCK_SH})
    {
        const Descriptor holder(path("a"), O_RDONLY);
        ASSERT_EQ(::flock(holder.get(), lock | LOCK_NB), 0);
        expect_in_use("a");
        EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3));
    }
    EXPECT_EQ(try_to_open("a", VFile::write_mode), 0);
    EXPECT_TRUE(get_bytes(path("a")).empty());
}

TEST_F(VFileSharing, OpenFileHoldsAnExclusiveLock)
{
    put_bytes(path("a"), {1, 2, 3});
    for (const VFile::mode mode : all_modes)
    {
        const VFile file(name("a"), mode);
        const Descriptor other(path("a"), O_RDONLY);
        EXPECT_EQ(::flock(other.get(), LOCK_SH | LOCK_NB), -1);
    }
    const Descriptor other(path("a"), O_RDONLY);
    EXPECT_EQ(::flock(other.get(), LOCK_EX | LOCK_NB), 0);
}

TEST_F(VFileSharing, AnotherProcessCannotOpenAFileThatIsOpenHere)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile first(name("a"), VFile::append_mode);
    for (const VFile::mode mode : all_modes)
        EXPECT_EQ(in_another_process([&] { return try_to_open("a", mode); }), 1);
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3));
    first.close();
    EXPECT_EQ(in_another_process([&] { return try_to_open("a", VFile::append_mode); }), 0);
}

TEST_F(VFileSharing, FileThatIsOpenInAnotherProcessDoesNotOpenHere)
{
    put_bytes(path("a"), {1, 2, 3});
    int to_child[2];
    int to_parent[2];
    ASSERT_EQ(::pipe(to_child), 0);
    ASSERT_EQ(::pipe(to_parent), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        ::close(to_child[1]);
        VFile file(name("a"), VFile::append_mode);
        char byte = 'o';
        const bool told = ::write(to_parent[1], &byte, 1) == 1;
        const ssize_t ignored = ::read(to_child[0], &byte, 1); // Until the parent has looked, or has ended.
        ::_exit(told && ignored >= 0 ? 0 : 1);
    }
    ::close(to_parent[1]);
    ::close(to_child[0]);
    char byte = 0;
    EXPECT_EQ(::read(to_parent[0], &byte, 1), 1);
    expect_in_use("a");
    ::close(to_child[1]);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    ::close(to_parent[0]);
    // The lock went with the process, which did not close its file.
    EXPECT_EQ(try_to_open("a", VFile::append_mode), 0);
}

} // namespace
