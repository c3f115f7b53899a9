/// SI prefixes of one byte. The parser and the printer have a table each, and the two differ.
#pragma once

#include <VelaBase/export.h>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// What a byte of a text means as a prefix.
struct prefix
{
    int exponent;  ///< 0: none
    double factor; ///< ten to the exponent
};

/// A byte that is no prefix has the exponent 0. There is deliberately no "a" and no "da".
prefix find_prefix(char byte);

/// The byte that the printer puts before a unit: 0x80 for an exponent without a prefix. Not for the exponent 0.
char prefix_byte(int exponent);

VELA_ABI_NAMESPACE_END
}
