/// Numbers in texts, read as `std::istringstream` reads them in the classic locale, whatever the global locale is.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>
#include <string_view>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

/// What the stream leaves behind one `>>`.
template <class T>
struct StreamedNumber
{
    T value;     ///< after a failure: 0, or the nearest number where the text is out of range
    bool failed; ///< the stream's `fail()`
    bool at_end; ///< the stream's `eof()`
};

StreamedNumber<std::int64_t> read_integer(std::string_view text);
StreamedNumber<double> read_decimal(std::string_view text);

}
VELA_ABI_NAMESPACE_END
}
