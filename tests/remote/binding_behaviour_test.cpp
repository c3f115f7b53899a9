// Stacks of bindings: what a file takes of them, whatever they answer, and how long their samples live.

#include "remote/binding_stack.h"
#include "remote/segment_samples.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"
#include "support/temporary_folder.h"

#include <Remote/File.h>
#include <Remote/StackObject.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFStack.h>
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackPosition.h>

#include <boost/interprocess/exceptions.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace vela_test;
using boost::interprocess::interprocess_exception;
using testing::IsEmpty;

namespace {

using Samples = std::vector<std::uint8_t>;
using Texts = std::vector<std::string>;
using Doubles = std::vector<double>;
using Sizes = std::vector<std::uint64_t>;

/// Of a forked process, which does nothing behind `body`.
int exit_status_of(const std::function<int()>& body)
{
    const pid_t child = fork();
    if (child == 0)
    {
        try
        {
            _exit(body());
        }
        catch (...)
        {
            _exit(99);
        }
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// A file, and a binding with six bytes in a segment of its own.
class BindingTest : public FolderTest
{
protected:
    Vela::SharedMemory memory{6};
    boost::shared_ptr<BindingStack> told = boost::make_shared<BindingStack>();
    Remote::File file{path("a.vbf"), VFile::write_mode};

    BindingTest()
    {
        told->given_id = memory.id();
        put_samples<std::uint8_t>(memory.id(), {1, 2, 3, 4, 5, 6});
    }

    void expect_nothing_written(const Texts& asked)
    {
        EXPECT_EQ(told->calls, asked);
        EXPECT_EQ(file.number_of_stacks(), 0u);
        *told = BindingStack();
        told->given_id = memory.id();
        file.write(told, 0);
        EXPECT_EQ(reopened().number_of_stacks(), 1u);
    }

    Remote::File reopened()
    {
        file.close();
        return Remote::File(path("a.vbf"), VFile::read_mode);
    }
};

const Texts all_questions = {"labels", "type", "sizes", "lengths", "offsets", "name", "description", "share"};

TEST_F(BindingTest, WritesTheTextsOfABindingByteForByte)
{
    const std::string bytes("\xff\0\xc3(", 4);
    told->given_name = bytes;
    told->given_description = bytes + "d";
    told->given_labels = {bytes + "x", ""};
    file.write(told, 0);
    const boost::shared_ptr<Remote::Stack> stack = reopened().read(0, 0);
    EXPECT_EQ(stack->name(), bytes);
    EXPECT_EQ(stack->description(), bytes + "d");
    EXPECT_EQ(stack->labels(), (Texts{bytes + "x", ""}));
}

TEST_F(BindingTest, PassesOnWhatABindingThrowsAndWritesNothing)
{
    Texts asked;
    for (const std::string& question : all_questions)
    {
        asked.push_back(question);
        told->calls.clear();
        told->refuses = question;
        try
        {
            file.write(told, 0);
            ADD_FAILURE() << question;
        }
        catch (const Refusal& refusal)
        {
            EXPECT_EQ(refusal.at, question);
        }
        EXPECT_EQ(told->calls, asked);
        EXPECT_TRUE(told.unique());
    }
    expect_nothing_written(all_questions);
}

TEST_F(BindingTest, RefusesSizesBeforeItAsksForMore)
{
    told->given_sizes = {0xffffffffffffffff, 2};
    EXPECT_VELA_ERROR_IN(file.write(told, 0), "`anonymous-namespace'::get_product", "sources/stacks", -1,
                         "The product exceeds the maximum size.");
    told->given_sizes = {0xffffffffffffffff}; // -1 as it comes from a binding
    EXPECT_BAD_CAST(file.write(told, 0));
    told->calls.clear();
    told->given_sizes = {1, 1, 1, 1, 1, 6};
    EXPECT_THROW_TEXT(file.write(told, 0), std::invalid_argument, "Unsupported number of sizes");
    expect_nothing_written({"labels", "type", "sizes"});
}

TEST_F(BindingTest, RefusesAnIdThatNoSegmentHas)
{
    for (const std::string& id : {std::string(), std::string("no such segment"), std::string(36, '0')})
    {
        told->calls.clear();
        told->given_id = id;
        EXPECT_THROW(file.write(told, 0), interprocess_exception) << id;
    }
    expect_nothing_written(all_questions);
}

TEST_F(BindingTest, WritesTheFirstSamplesOfALargerSegment)
{
    told->given_sizes = {4};
    file.write(told, 0);
    EXPECT_EQ(samples_in<std::uint8_t>(reopened().read(0, 0)->share()), (Samples{1, 2, 3, 4}));
}

TEST_F(BindingTest, RefusesAStackWithoutType)
{
    told->given_type = 0;
    EXPECT_EQ(VStackImp(*told).get_dt(), 0);
    EXPECT_VELA_ERROR_IN(file.write(told, 0), "VBFStackImp::write", "sources/binary_io", -1,
                         "Stack data type not set. Cannot commit stack to file!");
    Remote::File other(path("b.vbf"), VFile::write_mode);
    EXPECT_VELA_ERROR(other.write(told, vela_dt_uint8), -1, "Invalid on-the-fly conversion from 'none' to 'uint8'!");
    EXPECT_EQ(told->calls.back(), "share");
}

TEST_F(BindingTest, RefusesTypesThatTheRecordDoesNotHaveUnlessTheyAreConverted)
{
    for (const int type : {3, -1, vela_dt_uint64, vela_dt_char})
    {
        told->given_type = type;
        told->given_sizes = {0};
        Remote::File other(path("b.vbf"), VFile::write_mode);
        EXPECT_THROW_TEXT(other.write(told, 0), std::invalid_argument, "Unsupported data type");
        EXPECT_VELA_ERROR(other.close(), -1, "Stack not ready to be commited. Meta-information missing!");
    }
    const Vela::SharedMemory numbers(16);
    put_samples<std::uint64_t>(numbers.id(), {1ull << 40, 3});
    told->given_id = numbers.id();
    told->given_type = vela_dt_uint64;
    told->given_sizes = {2};
    file.write(told, vela_dt_double);
    EXPECT_EQ(samples_in<double>(reopened().read(0, 0)->share()), (Doubles{1099511627776.0, 3.0}));
}

TEST_F(BindingTest, WritesStacksWithoutAxesAndWithoutSamples)
{
    told->given_sizes = {};
    file.write(told, 0);
    const boost::shared_ptr<Remote::Stack> none(Remote::get_stack(vela_dt_uint8, {3, 0}));
    file.write(none, 0);
    EXPECT_EQ(Vela::SharedMemory(none->share()).size(), 0u);
    const Remote::File read = reopened();
    ASSERT_EQ(read.number_of_stacks(), 2u);
    EXPECT_EQ(read.read(0, 0)->number_of_dimensions(), 0u);
    EXPECT_EQ(samples_in<std::uint8_t>(read.read(0, 0)->share()), (Samples{1}));
    EXPECT_EQ(read.read(1, 0)->sizes(), (Sizes{3, 0}));
    EXPECT_EQ(read.read(1, 0)->number_of_elements(), 0u);
}

TEST_F(BindingTest, RefusesAnAxisThatTheFileCannotHold)
{
    const boost::shared_ptr<Remote::Stack> wide(Remote::get_stack(vela_dt_uint8, {0, 1ull << 33}));
    EXPECT_EQ(wide->size(1), 1ull << 33);
    EXPECT_VELA_ERROR(file.write(wide, 0), -1, "Size of axis 1 does not fit the file format!");
}

TEST_F(BindingTest, TakesNoUnitsColumnsPositionOrRecordAlongToTheFile)
{
    const auto rich = boost::make_shared<VStackImp>(Ome::Type::uint8, Sizes{2, 3}, Ome::DimensionOrder::XYCTZ);
    rich->set_labels({"one", "two"});
    rich->set_units(0, si::value("s"));
    rich->set_data_units(si::value("V"));
    rich->set_col_labels(0, {"a", "b"});
    rich->set_col_positions(1, {0.0, 1.0, 5.0});
    VStackPosition position;
    position.create(rich.get(), 3);
    rich->set_stack_position(position);
    rich->meta_data().significant_bits = 12;
    file.write(boost::make_shared<Remote::StackObject>(rich), 0);
    file.close();
    VBFFile opened(file_name(path("a.vbf")), VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = opened->get_stack(0);
    EXPECT_EQ(stack->get_labels(), (Texts{"one", "two"}));
    EXPECT_EQ(stack->get_units(0), VStackInfoImp(1).get_units(0));
    EXPECT_EQ(stack->get_data_units(), VStackInfoImp(1).get_data_units());
    EXPECT_THAT(stack->get_col_labels(0), IsEmpty());
    EXPECT_TRUE(stack->is_equidistant(1));
    EXPECT_EQ(stack->get_stack_position().origin.count(), 2u);
    EXPECT_THAT(stack->get_tag_keys(), IsEmpty());
    EXPECT_TRUE(stack->meta_data().significant_bits.value().is_null());
}

TEST_F(BindingTest, ReleasesAStackThatNobodyElseHolds)
{
    boost::shared_ptr<Remote::Stack> stack(Remote::get_stack(vela_dt_uint8, {2}));
    const std::string id = stack->share();
    file.write(std::move(stack), 0);
    EXPECT_THROW(samples_in<std::uint8_t>(id), interprocess_exception);
}

TEST_F(BindingTest, CannotWriteAnAttachedStackOnceItsOwnerIsGone)
{
    boost::shared_ptr<Remote::Stack> owner(Remote::get_stack(vela_dt_uint8, {2}));
    put_samples<std::uint8_t>(owner->share(), {5, 6});
    const auto attached = boost::make_shared<VStackImp>(*owner);
    const auto face = boost::make_shared<Remote::StackObject>(attached);
    EXPECT_EQ(face->share(), owner->share());
    owner.reset();
    EXPECT_EQ(attached->get_data_ptr()[1], 6);
    EXPECT_THROW(file.write(face, 0), interprocess_exception);
    EXPECT_EQ(file.number_of_stacks(), 0u);
}

TEST(RemoteStackInTwoProcesses, StaysWhereItIsWhenAForkedProcessDestroysItsCopy)
{
    boost::shared_ptr<Remote::Stack> stack(Remote::get_stack(vela_dt_uint8, {2}));
    const std::string id = stack->share();
    EXPECT_EQ(exit_status_of(
                  [&stack]
                  {
                      stack.reset();
                      return 0;
                  }),
              0);
    EXPECT_EQ(samples_in<std::uint8_t>(id), (Samples{0, 0}));
}

/// Another process that owns a stack of three bytes until this object goes.
class Owner
{
public:
    Owner()
    {
        if (pipe2(ids.data(), O_CLOEXEC) != 0 || pipe2(end.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipes");
        child = fork();
        if (child == 0)
            own();
        close(ids[1]);
        close(end[0]);
        id.resize(36);
        if (read(ids[0], id.data(), id.size()) != 36)
            throw std::runtime_error("no id");
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner()
    {
        close(end[1]);
        close(ids[0]);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }

    std::string id;

private:
    [[noreturn]] void own() const
    {
        close(end[1]);
        std::unique_ptr<Remote::Stack> stack(Remote::get_stack(vela_dt_uint8, {3}));
        const std::string own_id = stack->share();
        put_samples<std::uint8_t>(own_id, {7, 8, 9});
        char nothing = 0;
        const bool told = write(ids[1], own_id.data(), own_id.size()) == 36 && read(end[0], &nothing, 1) == 0;
        stack.reset();
        _exit(told ? 0 : 1);
    }

    std::array<int, 2> ids = {};
    std::array<int, 2> end = {};
    pid_t child = -1;
};

TEST(RemoteStackInTwoProcesses, IsWrittenFromTheOtherOneAndOutlivedByWhoAttached)
{
    const TemporaryFolder folder;
    auto owner = std::make_unique<Owner>();
    const auto told = boost::make_shared<BindingStack>();
    told->given_id = owner->id;
    told->given_sizes = {3};
    Remote::File file(folder.path("a.vbf"), VFile::write_mode);
    file.write(told, 0);
    const VStackImp attached(*told);
    owner.reset();
    EXPECT_EQ(attached.get_data_ptr()[2], 9);
    EXPECT_THROW(VStackImp late(*told), interprocess_exception);
    EXPECT_THROW(file.write(told, 0), interprocess_exception);
    file.close();
    const Remote::File read(folder.path("a.vbf"), VFile::read_mode);
    ASSERT_EQ(read.number_of_stacks(), 1u);
    EXPECT_EQ(samples_in<std::uint8_t>(read.read(0, 0)->share()), (Samples{7, 8, 9}));
}

} // namespace
