// A value from any text is what a stream in the classic locale reads, and its own text gives the same value again. The
// first byte of the input chooses the type.

#include <VelaBase/vela_dt.h>
#include <VelaProps/VProp.h>
#include <VelaProps/property_xml.h>

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

void require(bool holds)
{
    if (!holds)
        __builtin_trap();
}

template <class T>
bool read(std::istream& in, T& value)
{
    using Wide = std::conditional_t<sizeof(T) == 1 && !std::is_same_v<T, bool>, int, T>;
    const std::istream::pos_type start = in.tellg();
    Wide wide{};
    if (in >> wide)
    {
        value = static_cast<T>(wide);
        return true;
    }
    if (!std::is_floating_point_v<T>)
        return false;
    in.clear();
    in.seekg(start);
    char word[4] = {};
    in.read(word, 3);
    const std::string text(word);
    if (text == "Inf")
        value = std::numeric_limits<T>::infinity();
    else if (text == "NaN")
        value = std::numeric_limits<T>::quiet_NaN();
    else if (text == "-In" && in.get() == 'f')
        value = -std::numeric_limits<T>::infinity();
    else
        return false;
    return true;
}

bool reads(std::istream& in, char expected)
{
    char c = 0;
    return in >> c && c == expected;
}

template <class T>
bool read(std::istream& in, std::complex<T>& value)
{
    T real{};
    T imaginary{};
    if (!reads(in, '(') || !read(in, real) || !reads(in, ',') || !read(in, imaginary) || !reads(in, ')'))
        return false;
    value = {real, imaginary};
    return true;
}

template <class T>
T read_with_stream(const std::string& text)
{
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    T value{};
    return read(in, value) ? value : T{};
}

/// Two that are no numbers are the same.
template <class T>
bool is_same(T left, T right)
{
    if constexpr (std::is_floating_point_v<T>)
        return std::isnan(left) ? std::isnan(right) : left == right && std::signbit(left) == std::signbit(right);
    else
        return left == right;
}

template <class T>
bool is_same(const std::complex<T>& left, const std::complex<T>& right)
{
    return is_same(left.real(), right.real()) && is_same(left.imag(), right.imag());
}

template <class T>
void check(const std::string& text)
{
    const int id = VProp::type_id<T>;
    const T value = vela_string2val(text, id).get<T>();
    require(is_same(value, read_with_stream<T>(text)));
    const std::string written = vela_val2string(VProp(value));
    require(is_same(vela_string2val(written, id).get<T>(), value));
}

template <class T>
void check_with_complex(const std::string& text)
{
    check<T>(text);
    check<std::complex<T>>(text);
}

void check_string(const std::string& text)
{
    const std::string written = vela_val2string(vela_string2val(text, vela_dt_char));
    require(vela_val2string(vela_string2val(written, vela_dt_char)) == written);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using Check = void (*)(const std::string&);
    constexpr Check checks[] = {check<bool>,
                                check_with_complex<std::uint8_t>,
                                check_with_complex<char>,
                                check_with_complex<std::uint16_t>,
                                check_with_complex<std::int16_t>,
                                check_with_complex<std::uint32_t>,
                                check_with_complex<std::int32_t>,
                                check_with_complex<std::uint64_t>,
                                check_with_complex<std::int64_t>,
                                check_with_complex<float>,
                                check_with_complex<double>,
                                check_string};
    if (size == 0)
        return 0;
    checks[data[0] % std::size(checks)](std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    return 0;
}
