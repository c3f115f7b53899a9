// The walk along the chain of stacks: what is listed, and where a scan starts and ends.
#include <VelaFile/handle.h>

#include "binary_io/scan_chain_fixture.h"

#include <fcntl.h>
#include <unistd.h>

using namespace vela_test;

TEST_F(ScanChainTest, AnEmptyDescriptionPutsTheFirstStackAt34)
{
    VbfBytes built;
    built.file_header(2, "");
    built.stack({.name = "a", .description = "", .sizes = {4, 3}, .data_type = 1, .compression_type = 0});

    const VBFChain chain = scan(built);

    EXPECT_EQ(copied(chain.file.header.first_stack_pos), 34u);
    ASSERT_EQ(chain.stacks.size(), 1u);
    EXPECT_EQ(chain.stacks[0].position, 34u);
    EXPECT_EQ(chain.stacks[0].data_pos, 403u);
    EXPECT_EQ(copied(chain.stacks[0].header.data_length_on_disk), 12u);
    EXPECT_EQ(chain.stacks[0].data_pos + copied(chain.stacks[0].header.data_length_on_disk), 415u);
}

TEST_F(ScanChainTest, GivesTheFileHeaderAndEachStackInTheOrderOfTheChain)
{
    const ThreeStacks built;
    const VBFChain chain = scan(built);

    EXPECT_EQ(copied(chain.file.header.format_version), 2u);
    EXPECT_EQ(chain.file.description, "three stacks");
    EXPECT_EQ(chain.file.meta_data_pos, 0u);
    ASSERT_EQ(chain.stacks.size(), 3u);

    EXPECT_EQ(chain.stacks[0].position, 46u);
    EXPECT_EQ(chain.stacks[0].name, "one");
    EXPECT_EQ(chain.stacks[0].description, "the first");
    EXPECT_EQ(chain.stacks[0].data_pos, 46u + 368 + 12);
    EXPECT_EQ(copied(chain.stacks[0].header.rank), 2u);
    EXPECT_EQ(copied(chain.stacks[0].header.dimension_sizes[0]), 4u);
    EXPECT_EQ(copied(chain.stacks[0].header.dimension_sizes[1]), 3u);
    EXPECT_EQ(copied(chain.stacks[0].header.next_stack_pos), 438u);

    EXPECT_EQ(chain.stacks[1].position, 438u);
    EXPECT_EQ(chain.stacks[1].name, "");
    EXPECT_EQ(chain.stacks[1].data_pos, 438u + 368);
    EXPECT_EQ(copied(chain.stacks[1].header.lengths[0]), 0.5);
    EXPECT_EQ(copied(chain.stacks[1].header.data_type), 4);
    EXPECT_EQ(copied(chain.stacks[1].header.data_length_on_disk), 14u);

    EXPECT_EQ(chain.stacks[2].position, 820u);
    EXPECT_EQ(chain.stacks[2].name, "three");
    EXPECT_EQ(copied(chain.stacks[2].header.format_version), 3u);
    EXPECT_EQ(copied(chain.stacks[2].header.data_present), 0u);
    EXPECT_EQ(copied(chain.stacks[2].header.next_stack_pos), 0u);

    EXPECT_EQ(library_scan(reopen(built)), plain_scan(built.bytes()));
}

TEST_F(ScanChainTest, TheRecordsWriteWhatTheBuilderBuilds)
{
    VbfBytes built;
    built.file_header(2, "text");
    built.stack({.name = "name", .description = "more", .lengths = {8.0, 0.25}, .offsets = {-1.0, 3.0}});
    built.dictionary({{"k", "v"}});

    VFile out(file_name(path("out")), VFile::write_mode);
    const VBFChain chain = scan(built);
    out.write_value(chain.file.header);
    out.write_str(chain.file.description, false);
    out.write_value(chain.file.meta_data_pos);
    out.write_value(chain.stacks.at(0).header);
    out.write_str(chain.stacks[0].name, false);
    out.write_str(chain.stacks[0].description, false);
    out.write(Bytes(12, 0x5a).data(), 12);
    write_dictionary(out, {{"k", "v"}});
    out.close();

    EXPECT_EQ(get_bytes(path("out")), built.bytes());
}

TEST_F(ScanChainTest, AFirstPositionOfZeroListsNoStack)
{
    VbfBytes without_stack;
    without_stack.file_header(2, "none");
    expect_names(without_stack, {});

    VbfBytes version_1;
    version_1.file_header(1);
    ASSERT_EQ(version_1.size(), 26u);
    expect_names(version_1, {});

    ThreeStacks unlinked;
    unlinked.set_u64_at(unlinked.first_stack_pos_at(), 0);
    expect_names(unlinked, {});
}

TEST_F(ScanChainTest, VersionOneFilesHaveNoMetaDataPosition)
{
    VbfBytes built;
    built.file_header(1, "old");
    built.stack({.name = "s"});

    const VBFChain chain = scan(built);

    EXPECT_EQ(chain.file.meta_data_pos, 0u);
    EXPECT_EQ(chain.stacks.at(0).position, 29u);
    expect_names(built, {"s"});
}

TEST_F(ScanChainTest, AFileThatWasNotClosedIsListedAsFarAsItsChainReaches)
{
    ThreeStacks built;
    built.set_u64_at(built.meta_data_pos_at(), 0);
    expect_names(built, {"one", "", "three"});

    built.set_u64_at(built.second + stack_data_length_at, 0).set_u64_at(built.second + stack_next_at, 0);
    expect_names(built, {"one", ""});

    built.set_u64_at(built.first + stack_next_at, 0);
    expect_names(built, {"one"});
}

TEST_F(ScanChainTest, TheDictionaryIsNotLookedAt)
{
    for (const std::uint64_t position : {1ull, 5ull, 46ull, 100000ull, 0x8000000000000000ull, 0xffffffffffffffffull})
    {
        SCOPED_TRACE(position);
        ThreeStacks built;
        built.set_u64_at(built.meta_data_pos_at(), position);

        EXPECT_EQ(scan(built).file.meta_data_pos, position);
        expect_names(built, {"one", "", "three"});
    }
}

TEST_F(ScanChainTest, DataAndWhatFollowsThemAreNotLookedAt)
{
    VbfBytes built;
    built.file_header(2);
    const std::uint64_t only = built.stack({.name = "x", .data = Bytes(9)});
    built.cut_to(built.size() - 9).set_u64_at(only + stack_data_length_at, 0x7fffffffffffffff);

    expect_names(built, {"x"});
}

TEST_F(ScanChainTest, StacksMayStandInAnyOrderWithGapsBetweenThem)
{
    ThreeStacks built;
    built.gap(33);
    const std::uint64_t fourth = built.stack({.name = "four"});
    built.set_u64_at(built.first_stack_pos_at(), fourth)
        .set_u64_at(fourth + stack_next_at, built.third)
        .set_u64_at(built.third + stack_next_at, built.first)
        .set_u64_at(built.first + stack_next_at, built.second)
        .set_u64_at(built.second + stack_next_at, 0);

    expect_names(built, {"four", "three", "one", ""});
}

TEST_F(ScanChainTest, AStackThatTheChainSkipsIsNotListed)
{
    ThreeStacks built;
    built.set_u64_at(built.first + stack_next_at, built.third);

    expect_names(built, {"one", "three"});
}

TEST_F(ScanChainTest, RecordsMayOverlap)
{
    // The text of the first stack holds a whole second one.
    VbfBytes inner;
    inner.file_header(1);
    inner.stack({.name = "inner", .data = {}});
    VbfBytes built;
    built.file_header(1);
    const std::string text(inner.bytes().begin() + 26, inner.bytes().end());
    const std::uint64_t outer = built.stack({.name = "outer", .description = text});
    built.set_u64_at(outer + stack_next_at, outer + 368 + 5);

    expect_names(built, {"outer", "inner"});
}

TEST_F(ScanChainTest, PositionsInAForeignStreamAreAbsolute)
{
    const ThreeStacks built(1000);

    const VBFChain chain = scan(built);

    EXPECT_EQ(copied(chain.file.header.first_stack_pos), 1046u);
    EXPECT_EQ(chain.stacks.at(0).position, 1046u);
    EXPECT_EQ(chain.stacks.at(0).data_pos, 1046u + 368 + 12);
    EXPECT_EQ(chain.stacks.at(2).position, 1820u);
    expect_names(built, {"one", "", "three"});
}

TEST_F(ScanChainTest, PositionsThatCountFromTheStartOfTheHeaderDoNotWork)
{
    ThreeStacks built(64);
    built.set_u64_at(built.first_stack_pos_at(), built.first - 64);

    EXPECT_VELA_ERROR(scan(built), -4, "Stack header not in vbf format!");
}

TEST_F(ScanChainTest, AnAttachedHandleIsScannedFromWhereItStands)
{
    const ThreeStacks built(77);
    put_bytes(path("foreign"), built.bytes());
    const int descriptor = ::open(path("foreign").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    ASSERT_EQ(::lseek(descriptor, 77, SEEK_SET), 77);
    void* handle = vela_handle_from_descriptor(descriptor);
    VFile attached;
    attached.attach(handle, VFile::read_mode);

    EXPECT_EQ(library_scan(attached), plain_scan(built.bytes(), 77));
    EXPECT_EQ(scan_chain(reopen(built)).stacks.size(), 3u);

    attached.detach();
    ::close(descriptor);
}

TEST_F(ScanChainTest, AFileThatStandsBehindItsHeaderIsNoVbfFile)
{
    const ThreeStacks built;

    EXPECT_VELA_ERROR_IN(scan_chain(reopen(built.bytes(), 1)), "VBFFileImp::attach_imp", "sources/binary_io", -4,
                         "No VBF file header found!");
    EXPECT_VELA_ERROR(scan_chain(reopen(built.bytes(), built.size() - 25)), -3, "Failed reading 26 bytes from file!");
    EXPECT_VELA_ERROR(scan_chain(reopen(built.bytes(), built.size())), -3, "Failed reading 26 bytes from file!");
    EXPECT_VELA_ERROR(scan_chain(reopen(built.bytes(), 1u << 20)), -3, "Failed reading 26 bytes from file!");
}

TEST_F(ScanChainTest, AClosedFileIsRefused)
{
    VFile closed;

    EXPECT_VELA_ERROR(scan_chain(closed), -1, "File not open!");
}

TEST_F(ScanChainTest, TheFileStandsBehindTheLastThingRead)
{
    ThreeStacks built;
    built.gap(9).dictionary({{"key", "value"}});
    scan(built);
    EXPECT_EQ(file.tell(), built.third + 368 + 5);

    VbfBytes without_stack;
    without_stack.file_header(2, "none").gap(100);
    scan(without_stack);
    EXPECT_EQ(file.tell(), 26u + 4 + 8);
}

TEST_F(ScanChainTest, ASecondScanGivesTheSame)
{
    const ThreeStacks built;
    const std::string first = library_scan(reopen(built));
    file.seek(0);

    EXPECT_EQ(library_scan(file), first);
    EXPECT_EQ(first, plain_scan(built.bytes()));
}

TEST_F(ScanChainTest, AFileOpenForAppendingIsScannedAndNotChanged)
{
    const ThreeStacks built;
    put_bytes(path("both"), built.bytes());
    VFile both(file_name(path("both")), VFile::append_mode);

    EXPECT_EQ(library_scan(both), plain_scan(built.bytes()));

    both.close();
    EXPECT_EQ(get_bytes(path("both")), built.bytes());
}

TEST_F(ScanChainTest, TheChunkSizeDoesNotMatter)
{
    const ThreeStacks built;
    for (const std::uint32_t chunk_size : {1u, 7u, 368u, 0x400000u})
    {
        SCOPED_TRACE(chunk_size);
        VFile& small = reopen(built);
        small.set_chunk_size(chunk_size);

        EXPECT_EQ(library_scan(small), plain_scan(built.bytes()));
    }
    file.set_chunk_size(0x400000);
}
