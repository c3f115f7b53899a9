/// A fixture for tests of chain scans, and the file that most of them start from.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include "binary_io/plain_scan.h"
#include "binary_io/vbf_file_test.h"
#include "support/expect_vela_error.h"

#include <string>
#include <vector>

namespace vela_test {

class ScanChainTest : public VbfFileTest
{
protected:
    VBFChain scan(const VbfBytes& built) { return scan_chain(reopen(built)); }

    void expect_invalid_position(const VbfBytes& built)
    {
        EXPECT_VELA_ERROR_IN(scan(built), "VBFFileImp::attach_imp", "sources/binary_io", -4,
                             "Invalid stack position specified in header!");
    }

    /// The library and the plain reader agree, and the names are these.
    void expect_names(const VbfBytes& built, const std::vector<std::string>& names)
    {
        const VBFChain chain = scan(built);
        std::vector<std::string> found;
        for (const VBFChainEntry& stack : chain.stacks)
            found.push_back(stack.name);
        EXPECT_EQ(found, names);
        EXPECT_EQ(library_scan(reopen(built)), plain_scan(built.bytes(), built.start_pos()));
    }
};

/// A version 2 file with three stacks of different kinds.
struct ThreeStacks : VbfBytes
{
    explicit ThreeStacks(std::size_t foreign_bytes = 0) : VbfBytes(foreign_bytes)
    {
        file_header(2, "three stacks");
        first = stack({.name = "one", .description = "the first"});
        second = stack({.name = "", .sizes = {7}, .lengths = {0.5}, .data_type = 4, .data = Bytes(14, 2)});
        third = stack({.name = "three", .sizes = {2, 2, 2}, .format_version = 3, .data_present = 0, .data = {}});
    }

    std::uint64_t first;
    std::uint64_t second;
    std::uint64_t third;
};

} // namespace vela_test
