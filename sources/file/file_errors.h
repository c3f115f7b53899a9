/// Failures that more than one stream raises.
#pragma once

#include <VelaBase/VelaError.h>

#include <cstdint>

namespace Vela::detail {

/// How `%d` prints a 64-bit number: its low 32 bits as a signed number.
inline int low_bits(std::uint64_t number)
{
    return static_cast<int>(static_cast<std::uint32_t>(number));
}

/// "File already open or attached!", id -1.
[[noreturn]] void throw_already_open(const char* function);

/// "Failed reading %d bytes from file!", id -3. With the last system error, which is 0 where the file just ended.
[[noreturn]] void throw_read_failure(std::uint64_t size_bytes);

/// The same where no system call was made: the file is known to end before `size_bytes` bytes.
[[noreturn]] void throw_file_too_short(std::uint64_t size_bytes);

} // namespace Vela::detail
