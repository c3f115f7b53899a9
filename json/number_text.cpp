#include "json/number_text.h"

#include "json/characters.h"

#include <charconv>
#include <locale>
#include <sstream>
#include <string>
#include <system_error>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

namespace {

/// The stream itself, for everything that is odd.
template <class T>
StreamedNumber<T> read_from_stream(std::string_view text)
{
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    T value{};
    stream >> value;
    return {value, stream.fail(), stream.eof()};
}

}

StreamedNumber<std::int64_t> read_integer(std::string_view text)
{
    const char* const end = text.data() + text.size();
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc())
        return read_from_stream<std::int64_t>(text);
    // Both stop at the first character that is no digit; the stream meets its end only if there is none.
    return {value, false, stop == end};
}

StreamedNumber<double> read_decimal(std::string_view text)
{
    const char* const end = text.data() + text.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    // "inf" and "nan", which no stream reads, end in a letter; a stream takes "1.5e" whole and fails.
    if (error != std::errc() || stop != end || !(is_digit(end[-1]) || end[-1] == '.'))
        return read_from_stream<double>(text);
    return {value, false, true};
}

}
VELA_ABI_NAMESPACE_END
}
