// What a file itself writes: its header, the links of the chain, its dictionary with the OME document.
#include "binary_io/written_vbf.h"
#include "support/descriptor.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <fcntl.h>
#include <typeinfo>
#include <unistd.h>

using namespace vela_test;

namespace {

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
const std::string namespaces = " xmlns:ome=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\""
                               " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
                               " xsi:schemaLocation=\"http://www.openmicroscopy.org/Schemas/OME/2015-01"
                               " http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd\"";

class FileBytes : public WritingTest
{
protected:
    /// The only text in the dictionary of the closed file.
    std::string ome_xml()
    {
        const ByteMap map = closed();
        std::uint64_t at = map.u64(26);
        EXPECT_EQ(map.string(at), "ome_xml");
        const std::string text = map.string(at);
        EXPECT_EQ(map.u32(at), 0u);
        EXPECT_EQ(map.size(), at + 4);
        return text;
    }
};

TEST_F(FileBytes, NothingIsWrittenBeforeTheFirstStack)
{
    file->set_file_desc("not yet");
    EXPECT_EQ(on_disk().size(), 0u);
    file->add_stack(false);
    EXPECT_EQ(on_disk().size(), first_record_pos + 7);
}

TEST_F(FileBytes, AFileWithoutStacksOpensAgain)
{
    const ByteMap map = closed();
    EXPECT_EQ(map.u64(14), 0u);
    EXPECT_EQ(map.u64(26), first_record_pos);
    file.open(file_name(path("written.vbf")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 0u);
}

TEST_F(FileBytes, TheHeaderStandsInFrontWithItsDescription)
{
    file->set_file_desc("three");
    const ByteMap map = closed();
    EXPECT_EQ(map.text(0, 10), "VELA_BF\n\xff\xff");
    EXPECT_EQ(map.u32(10), 2u);
    EXPECT_EQ(map.u64(14), 0u);
    EXPECT_EQ(map.u32(22), 5u);
    EXPECT_EQ(map.text(26, 5), "three");
    EXPECT_EQ(map.u64(31), 39u);
    std::uint64_t at = 39;
    EXPECT_EQ(map.string(at), "ome_xml");
}

TEST_F(FileBytes, TheDocumentHasItsNamespacesAlone)
{
    EXPECT_EQ(ome_xml(), declaration + "<ome:OME" + namespaces + "></ome:OME>");
}

TEST_F(FileBytes, CreatorAndUuidStandFirst)
{
    file->set_creator("a<b & \"c\"");
    file->set_creator("a<b & 'c'");
    file->set_uuid("00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_EQ(ome_xml(), declaration +
                             "<ome:OME Creator=\"a&lt;b &amp; &apos;c&apos;\""
                             " UUID=\"urn:uuid:00112233-4455-6677-8899-aabbccddeeff\"" +
                             namespaces + "></ome:OME>");
}

TEST_F(FileBytes, AnEmptyCreatorIsWritten)
{
    file->set_creator("");
    EXPECT_EQ(ome_xml(), declaration + "<ome:OME Creator=\"\"" + namespaces + "></ome:OME>");
}

TEST_F(FileBytes, AUuidIsTakenInEachOfItsForms)
{
    const std::string digits = "6ba7b810-9dad-11d1-80b4-00c04fd430c8";
    for (const std::string& text : {digits, "{" + digits + "}", "urn:uuid:" + digits, "urn:uuid:{" + digits + "}"})
    {
        file->set_uuid("00112233-4455-6677-8899-aabbccddeeff");
        file->set_uuid(text);
        EXPECT_EQ(file->ome().uuid.get(), "urn:uuid:" + digits);
    }
}

TEST_F(FileBytes, WhatIsNoUuidIsRefused)
{
    const std::string digits = "6ba7b810-9dad-11d1-80b4-00c04fd430c8";
    file->set_uuid(digits);
    for (const std::string& text :
         {std::string(), std::string("00000000-0000-0000-0000-000000000000"), digits.substr(1), digits + "0",
          "{" + digits, digits + "}", "urn:" + digits, std::string("6ba7b810-9dad-11d1-80b4-00c04fd430cg"),
          std::string("6ba7b8109-dad-11d1-80b4-00c04fd430c8")})
    {
        SCOPED_TRACE(text);
        EXPECT_BAD_CAST(file->set_uuid(text));
        EXPECT_EQ(file->ome().uuid.get(), "urn:uuid:" + digits);
    }
}

TEST_F(FileBytes, StacksAreLinkedInTheirOrder)
{
    const Stack first = add_complete({4});
    const Stack second = add_complete({2, 2});
    const Stack third = add_complete({1});
    const ByteMap map = closed();
    const std::uint64_t first_pos = map.u64(14);
    const std::uint64_t second_pos = map.u64(first_pos + stack_next_at);
    const std::uint64_t third_pos = map.u64(second_pos + stack_next_at);
    EXPECT_EQ(first_pos, first_record_pos);
    EXPECT_EQ(map.u32(second_pos + stack_rank_at), 2u);
    EXPECT_EQ(map.u32(third_pos + stack_sizes_at), 1u);
    EXPECT_EQ(map.u64(third_pos + stack_next_at), 0u);
    // Without a gap: a record begins where the one before ends, and the dictionary behind the last.
    EXPECT_EQ(second_pos, map.u64(first_pos + stack_header_size + 4 + footer_stack_end_pos_at));
    EXPECT_EQ(third_pos, map.u64(second_pos + stack_header_size + 4 + footer_stack_end_pos_at));
    EXPECT_EQ(map.u64(26), map.u64(third_pos + stack_header_size + 1 + footer_stack_end_pos_at));
}

TEST_F(FileBytes, AStackIsLinkedWithItsLastSample)
{
    const Stack stack = add({2});
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_EQ(on_disk().u64(14), 0u);
    stack->write(vela_dt_uint8, "b", nullptr, 1);
    EXPECT_EQ(on_disk().u64(14), first_record_pos);
    EXPECT_EQ(on_disk().u64(26), 0u); // not closed
}

TEST_F(FileBytes, TheDescriptionCannotComeLate)
{
    file->set_file_desc("a");
    file->add_stack(true)->create({1}, vela_dt_uint8);
    EXPECT_VELA_ERROR_IN(file->set_file_desc("b"), "VBFFileImp::set_file_desc", vbf_sources, -1,
                         "Header already written. Cannot set file description!");
    file->close();
    EXPECT_VELA_ERROR_IN(file->set_file_desc("c"), "VBFFileImp::set_file_desc", vbf_sources, -9,
                         "Read-only handle specified in write function!");
    std::string text;
    file->get_file_desc(text);
    EXPECT_EQ(text, "a");
}

TEST_F(FileBytes, AFileInsideAnotherStreamHasAbsolutePositions)
{
    put_bytes(path("stream"), Bytes(100, 0xee));
    const Descriptor descriptor(path("stream"), O_RDWR);
    ::lseek(descriptor.get(), 40, SEEK_SET);
    VBFFile inner;
    inner->attach(descriptor.handle(), VFile::write_mode);
    const Stack stack = inner->add_stack(false);
    stack->create({3}, vela_dt_uint8);
    stack->write(vela_dt_uint8, "abc", nullptr, 3);
    EXPECT_VELA_ERROR(inner->close(), -1, "File not opened with open(), cannot close.");
    EXPECT_EQ(inner->detach(), descriptor.handle());

    const ByteMap map(get_bytes(path("stream")));
    EXPECT_EQ(map.text(0, 40), std::string(40, '\xee'));
    EXPECT_EQ(map.text(40, 8), "VELA_BF\n");
    EXPECT_EQ(map.u64(54), 74u);
    const std::uint64_t end = map.u64(74 + stack_header_size + 3 + footer_stack_end_pos_at);
    EXPECT_EQ(map.u64(66), end);
    // The stream goes on behind the dictionary.
    EXPECT_EQ(static_cast<std::uint64_t>(::lseek(descriptor.get(), 0, SEEK_CUR)), map.size());
}

}
