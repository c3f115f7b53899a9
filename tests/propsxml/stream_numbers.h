/// Text of floating-point numbers as the streams of the standard library make it.
#pragma once

#include <cmath>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>

namespace xml_test {

/// Default flags and precision 20, and three words for what is not finite.
template <class T>
std::string stream_text(T value)
{
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value > 0 ? "Inf" : "-Inf";
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(20);
    out << value;
    return out.str();
}

template <class T>
bool same_bits(T a, T b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}
