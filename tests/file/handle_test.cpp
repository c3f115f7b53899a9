#include <VelaFile/VFile.h>
#include <VelaFile/handle.h>

#include "support/descriptor.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

using namespace vela_test;

namespace {

const int descriptors[] = {0, 1, 2, 3, 4, 255, 1000, 65536, std::numeric_limits<int>::max()};

TEST(Handle, OfADescriptorGivesTheDescriptorBack)
{
    for (const int descriptor : descriptors)
        EXPECT_EQ(vela_descriptor_from_handle(vela_handle_from_descriptor(descriptor)), descriptor);
}

TEST(Handle, OfADescriptorIsNotNullEvenForZero)
{
    for (const int descriptor : descriptors)
        EXPECT_NE(vela_handle_from_descriptor(descriptor), nullptr) << descriptor;
}

TEST(Handle, OfDifferentDescriptorsDiffers)
{
    std::set<void*> handles;
    for (const int descriptor : descriptors)
        handles.insert(vela_handle_from_descriptor(descriptor));
    EXPECT_EQ(handles.size(), std::size(descriptors));
}

TEST(Handle, OfANegativeNumberIsNull)
{
    EXPECT_EQ(vela_handle_from_descriptor(-1), nullptr);
    EXPECT_EQ(vela_handle_from_descriptor(-7), nullptr);
    EXPECT_EQ(vela_handle_from_descriptor(std::numeric_limits<int>::min()), nullptr);
}

TEST(Handle, NullHasTheDescriptorMinusOne)
{
    EXPECT_EQ(vela_descriptor_from_handle(nullptr), -1);
}

using HandleOfFile = FolderTest;

TEST_F(HandleOfFile, DetachedFromAFileNamesItsOpenDescriptor)
{
    put_bytes(path("a"), {10, 20, 30});
    VFile file(file_name(path("a")), VFile::read_mode);
    const Descriptor descriptor(vela_descriptor_from_handle(file.detach()));
    unsigned char bytes[3] = {99, 99, 99};
    ASSERT_EQ(::pread(descriptor.get(), bytes, 3, 0), 3);
    EXPECT_EQ(bytes[0], 10);
    EXPECT_EQ(bytes[1], 20);
    EXPECT_EQ(bytes[2], 30);
}

TEST_F(HandleOfFile, ComesBackFromDetachAsItWasAttached)
{
    put_bytes(path("a"), {1});
    const Descriptor descriptor(path("a"), O_RDONLY);
    void* handle = descriptor.handle();
    void* const attached = handle;
    VFile file;
    file.attach(handle, VFile::read_mode);
    EXPECT_EQ(file.detach(), attached);
    EXPECT_EQ(vela_descriptor_from_handle(attached), descriptor.get());
}

} // namespace
