/// A second reader of VBF chains, which shares no code with the library, and the texts in which its
/// outcome and the library's are compared.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include "support/sha256.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace vela_test {

/// What a scan of `bytes` from `start` on has to give, as text: "error ID MESSAGE", or the file
/// header and each stack, the 368 bytes of its header in hexadecimal digits.
std::string plain_scan(const Bytes& bytes, std::uint64_t start = 0);

/// The outcome of a position that some file systems refuse and others take for one behind the end.
extern const char* const far_position;

/// What `scan_chain` gives, in the same form. An exception that is no `VelaError` stands as
/// "exception TEXT".
std::string library_scan(VFile& file);

/// The same for the file at `path`, with the header at `start`.
std::string library_scan(const std::string& path, std::uint64_t start = 0);

/// The two outcomes are equal; a far position may be refused or fail at the stack header there.
testing::AssertionResult agree(const std::string& of_library, const std::string& of_plain_reader);

/// The 368 bytes of a stack header.
Bytes bytes_of(const VBFStackHeader& header);

} // namespace vela_test
