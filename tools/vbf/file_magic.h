/// The first bytes of a VBF file.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <string_view>

inline constexpr std::string_view file_magic("VELA_BF\n\xff\xff", sizeof VBFFileHeader::magic);
