// What a file behind the face for bindings passes on, and what ends up on disk.

#include "remote/binding_stack.h"
#include "remote/segment_samples.h"
#include "support/expect_vela_error.h"
#include "support/temporary_folder.h"

#include <Remote/File.h>
#include <Remote/StackObject.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFStack.h>
#include <VelaStacks/VStack.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace vela_test;
using testing::_;
using testing::Return;
using testing::SetArgReferee;
using testing::StrictMock;
using testing::Throw;

namespace {

using Bytes8 = std::vector<std::uint8_t>;
using StackPointer = boost::shared_ptr<Remote::Stack>;

static_assert(std::is_constructible_v<Remote::File, const std::string&, Remote::File::Mode>);
static_assert(std::is_copy_constructible_v<Remote::File> && std::is_copy_assignable_v<Remote::File>);
static_assert(sizeof(Remote::File) == sizeof(VBFFile) && std::is_standard_layout_v<Remote::File>);
static_assert(sizeof(VBFFile) == sizeof(boost::shared_ptr<VBFFileInterface>) && std::is_standard_layout_v<VBFFile>);

class MockFile : public VBFFileInterface
{
public:
    MOCK_METHOD(void, attach, (void*, VFile::mode), (override));
    MOCK_METHOD(void, open, (VPropstring, VFile::mode), (override));
    MOCK_METHOD(void, close, (), (override));
    MOCK_METHOD(void*, detach, (), (override));
    MOCK_METHOD(void, finish, (), (override));
    MOCK_METHOD(void, set_creator, (const std::string&), (override));
    MOCK_METHOD(void, set_uuid, (const std::string&), (override));
    MOCK_METHOD(void, set_chunk_size, (std::uint32_t), (override));
    MOCK_METHOD(void, set_file_desc, (const std::string&), (override));
    MOCK_METHOD(void, get_file_desc, (std::string&), (const, override));
    MOCK_METHOD(std::uint64_t, number_of_stacks, (), (const, override));
    MOCK_METHOD(bool, is_attached, (), (const, override));
    MOCK_METHOD(void, set_progress_callback, (vela_progress_callback, void*), (override));
    MOCK_METHOD(std::uint64_t, seek_to_end_of_stack, (std::uint64_t), (override));
    MOCK_METHOD(boost::shared_ptr<VBFStackInterface>, add_stack, (bool), (override));
    MOCK_METHOD(boost::shared_ptr<VBFStackInterface>, get_stack, (std::uint64_t), (override));
    MOCK_METHOD(void, write_stack, (VStackInterface*, int), (override));
    MOCK_METHOD(boost::shared_ptr<VStackInterface>, read_stack, (std::uint64_t, int), (override));
    MOCK_METHOD(void, set_default_compression, (int, int), (override));
    MOCK_METHOD(VFile::mode, get_mode, (), (const, override));
    MOCK_METHOD(bool, is_open, (), (const, override));
    MOCK_METHOD(Ome::Document<Json::SignalingReference>&, ome, (), (override));
};

StackPointer made(vela_dt type, const std::vector<std::uint64_t>& sizes)
{
    return StackPointer(Remote::get_stack(type, sizes));
}

template <class T>
StackPointer filled(vela_dt type, const std::vector<std::uint64_t>& sizes, const std::vector<T>& samples)
{
    StackPointer stack = made(type, sizes);
    put_samples(stack->share(), samples);
    return stack;
}

/// A file of which another one is the inside: its first and only member is a `VBFFile`, and that one's is a pointer.
class FileOverMock : public FolderTest
{
protected:
    boost::shared_ptr<StrictMock<MockFile>> mock = boost::make_shared<StrictMock<MockFile>>();
    std::unique_ptr<Remote::File> file = std::make_unique<Remote::File>(path("unused.vbf"), VFile::write_mode);

    FileOverMock()
    {
        reinterpret_cast<boost::shared_ptr<VBFFileInterface>&>(*file) = mock;
        EXPECT_CALL(*mock, close()).Times(testing::AnyNumber());
    }
};

TEST_F(FileOverMock, CountsStacksByTheLow32BitsWithTheirSign)
{
    const std::vector<std::pair<std::uint64_t, std::uint64_t>> counts = {{0, 0},
                                                                         {5, 5},
                                                                         {0x7fffffff, 0x7fffffff},
                                                                         {0x80000000, 0xffffffff80000000},
                                                                         {0xffffffff, 0xffffffffffffffff},
                                                                         {0x100000000, 0},
                                                                         {0x7000000180000001, 0xffffffff80000001},
                                                                         {0xffffffff00000007, 7},
                                                                         {0xffffffffffffffff, 0xffffffffffffffff}};
    for (const auto& [held, given] : counts)
    {
        EXPECT_CALL(*mock, number_of_stacks()).WillOnce(Return(held));
        EXPECT_EQ(file->number_of_stacks(), given) << held;
    }
}

TEST_F(FileOverMock, ClosesOnceWhenAskedAndOnceMoreWhenItIsDestroyed)
{
    EXPECT_CALL(*mock, close()).Times(1);
    file->close();
    testing::Mock::VerifyAndClearExpectations(mock.get());
    EXPECT_CALL(*mock, close()).Times(1);
    file.reset();
    testing::Mock::VerifyAndClearExpectations(mock.get());
}

TEST_F(FileOverMock, IsDestroyedQuietlyWhateverClosingThrows)
{
    const boost::weak_ptr<MockFile> watched = mock;
    EXPECT_CALL(*mock, close()).WillOnce(Throw(Refusal{"close"}));
    mock.reset();
    file.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(FileOverMock, PassesTheDescriptionOn)
{
    const std::string bytes("\xff\0a", 3);
    EXPECT_CALL(*mock, get_file_desc(_)).WillOnce(SetArgReferee<0>(bytes));
    EXPECT_EQ(file->description(), bytes);
    EXPECT_CALL(*mock, set_file_desc(bytes));
    file->set_description(bytes);
}

TEST_F(FileOverMock, WrapsTheVeryStackThatItReads)
{
    const auto inner =
        boost::make_shared<VStackImp>(Ome::Type::uint8, std::vector<std::uint64_t>{2, 3}, Ome::DimensionOrder::XYZTC);
    EXPECT_CALL(*mock, read_stack(0x8000000000000005, -7)).WillOnce(Return(inner));
    const StackPointer stack = file->read(0x8000000000000005, -7);
    EXPECT_NE(dynamic_cast<Remote::StackObject*>(stack.get()), nullptr);
    stack->set_name("outside");
    EXPECT_EQ(inner->get_name(), "outside");
}

TEST_F(FileOverMock, WritesAnotherStackOverTheSameSamples)
{
    const auto inner =
        boost::make_shared<VStackImp>(Ome::Type::uint16, std::vector<std::uint64_t>{2}, Ome::DimensionOrder::XYZTC);
    inner->set_name("named");
    EXPECT_CALL(*mock, write_stack(_, -9))
        .WillOnce(
            [&](VStackInterface* stack, int)
            {
                EXPECT_NE(stack, inner.get());
                EXPECT_EQ(stack->get_name(), "named");
                stack->get_data_ptr()[3] = 42;
                stack->set_name("the other's alone");
            });
    file->write(boost::make_shared<Remote::StackObject>(inner), -9);
    EXPECT_EQ(inner->get_data_ptr()[3], 42);
    EXPECT_EQ(inner->get_name(), "named");
}

TEST_F(FileOverMock, CatchesNothingButInTheDestructor)
{
    EXPECT_CALL(*mock, read_stack(_, _)).WillOnce(Throw(Refusal{"read"}));
    EXPECT_THROW(file->read(0, 0), Refusal);
    EXPECT_CALL(*mock, write_stack(_, _)).WillOnce(Throw(Refusal{"write"}));
    StackPointer stack = made(vela_dt_uint8, {1});
    EXPECT_THROW(file->write(stack, 0), Refusal);
    EXPECT_TRUE(stack.unique());
    EXPECT_CALL(*mock, set_file_desc(_)).WillOnce(Throw(Refusal{"describe"}));
    EXPECT_THROW(file->set_description(""), Refusal);
    EXPECT_CALL(*mock, close()).WillOnce(Throw(Refusal{"close"})).WillRepeatedly(Return());
    EXPECT_THROW(file->close(), Refusal);
}

class RemoteFile : public FolderTest
{
protected:
    std::string one_stack_on_disk()
    {
        Remote::File file(path("one.vbf"), VFile::write_mode);
        file.write(filled<std::uint8_t>(vela_dt_uint8, {3}, {1, 2, 3}), 0);
        return path("one.vbf");
    }
};

TEST_F(RemoteFile, FailsToOpenAsTheFileDoes)
{
    EXPECT_VELA_ERROR_IN(Remote::File(path("missing.vbf"), VFile::read_mode), "VFile::open", "sources/file", -1,
                         "Could not open file!");
    put_bytes(path("text"), Bytes(100, 'a'));
    EXPECT_VELA_ERROR_IN(Remote::File(path("text"), VFile::read_mode), "VBFFileImp::attach_imp", "sources/binary_io",
                         -4, "No VBF file header found!");
    put_bytes(path("uint64.vbf"), get_bytes(VELA_TEST_DATA "/golden/type_uint64.vbf"));
    EXPECT_THROW_TEXT(Remote::File(path("uint64.vbf"), VFile::read_mode), std::invalid_argument,
                      "Unsupported data type");
}

TEST_F(RemoteFile, ReadsNoStackThatItDoesNotHave)
{
    const Remote::File file(one_stack_on_disk(), VFile::read_mode);
    const auto expect_refused = [&file](std::uint64_t index, const std::string& text)
    {
        EXPECT_VELA_ERROR_IN(file.read(index, 0), "VBFFileImp::get_stack", "sources/binary_io", -4,
                             "Invalid stack index " + text + "!");
    };
    expect_refused(1, "1");
    expect_refused(0x100000000, "0"); // the low 32 bits of the number
    expect_refused(0xffffffffffffffff, "-1");
}

TEST_F(RemoteFile, TakesItsDescriptionBeforeTheFirstStackOnly)
{
    const std::string bytes("\xff\0\xc3(", 4);
    {
        Remote::File file(path("a.vbf"), VFile::write_mode);
        file.set_description("first");
        file.set_description(bytes);
        EXPECT_EQ(file.description(), bytes);
        file.write(made(vela_dt_uint8, {1}), 0);
        EXPECT_VELA_ERROR(file.set_description("late"), -1, "Header already written. Cannot set file description!");
        EXPECT_EQ(file.description(), bytes);
    }
    EXPECT_EQ(Remote::File(path("a.vbf"), VFile::read_mode).description(), bytes);
}

TEST_F(RemoteFile, HasNothingMoreOnceItIsClosed)
{
    Remote::File file(one_stack_on_disk(), VFile::read_mode);
    const StackPointer stack = file.read(0, 0);
    file.close();
    file.close();
    EXPECT_EQ(file.number_of_stacks(), 0u);
    EXPECT_VELA_ERROR(file.read(0, 0), -4, "Invalid stack index 0!");
    EXPECT_VELA_ERROR(file.write(stack, 0), -1, "File not open for writing!");
    EXPECT_EQ(samples_in<std::uint8_t>(stack->share()), (Bytes8{1, 2, 3})) << "memory of this process";
}

TEST_F(RemoteFile, FinishesTheFileThatAnAssignmentLetsGoOf)
{
    Remote::File file(path("former.vbf"), VFile::write_mode);
    file.write(made(vela_dt_uint8, {1}), 0);
    const Remote::File other(path("other.vbf"), VFile::write_mode);
    file = other;
    file.write(made(vela_dt_uint8, {1}), 0);
    file.write(made(vela_dt_uint8, {1}), 0);
    EXPECT_EQ(other.number_of_stacks(), 2u);
    EXPECT_EQ(Remote::File(path("former.vbf"), VFile::read_mode).number_of_stacks(), 1u);
}

TEST_F(RemoteFile, AppendsInTheModeThatItIsGiven)
{
    put_bytes(path("1.vbf"), get_bytes(VELA_TEST_DATA "/golden/version1.vbf"));
    std::uint64_t before = 0;
    {
        Remote::File file(path("1.vbf"), VFile::append_mode);
        before = file.number_of_stacks();
        file.write(filled<std::uint8_t>(vela_dt_uint8, {2}, {8, 9}), 0);
    }
    const Remote::File file(path("1.vbf"), VFile::read_mode);
    ASSERT_EQ(file.number_of_stacks(), before + 1);
    EXPECT_EQ(samples_in<std::uint8_t>(file.read(before, 0)->share()), (Bytes8{8, 9}));
}

TEST_F(RemoteFile, ConvertsToTheTypeThatFlagsName)
{
    const StackPointer source = filled<std::uint16_t>(vela_dt_uint16, {3}, {1, 200, 7});
    {
        Remote::File file(path("a.vbf"), VFile::write_mode);
        file.write(source, vela_dt_single);
        file.write(source, 0);
        EXPECT_EQ(source->type(), vela_dt_uint16);
    }
    const Remote::File file(path("a.vbf"), VFile::read_mode);
    EXPECT_EQ(file.read(0, 0)->type(), vela_dt_single);
    EXPECT_EQ(samples_in<float>(file.read(0, 0)->share()), (std::vector<float>{1, 200, 7}));
    EXPECT_EQ(file.read(1, 0)->type(), vela_dt_uint16);
    const StackPointer narrow = file.read(0, vela_dt_uint8);
    EXPECT_EQ(narrow->type(), vela_dt_uint8);
    EXPECT_EQ(samples_in<std::uint8_t>(narrow->share()), (Bytes8{1, 200, 7}));
    EXPECT_THROW_TEXT(file.read(0, vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_THROW_TEXT(file.read(0, 3), std::invalid_argument, "Unsupported data type");
}

TEST_F(RemoteFile, FailsToCloseBehindAStackThatCouldNotBeWrittenButIsDestroyedQuietly)
{
    Remote::File file(path("a.vbf"), VFile::write_mode);
    const StackPointer complex = made(vela_dt_single | vela_dt_complex, {2});
    EXPECT_VELA_ERROR_IN(file.write(complex, vela_dt_uint8), "VBFStackImp::write", "sources/binary_io", -1,
                         "Invalid on-the-fly conversion from 'cplx_single' to 'uint8'!");
    EXPECT_VELA_ERROR(file.close(), -1, "Not enough samples written!");
    Remote::File other(path("b.vbf"), VFile::write_mode);
    EXPECT_THROW_TEXT(other.write(complex, vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_VELA_ERROR(other.close(), -1, "Stack not ready to be commited. Meta-information missing!");
}

} // namespace
