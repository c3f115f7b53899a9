#include "prefix.h"

namespace si {
VELA_ABI_NAMESPACE_BEGIN

prefix find_prefix(char byte)
{
    // The factors equal std::pow(10, exponent), which takes longer than everything else about a prefix.
    switch (byte)
    {
    case 'Y':
        return {24, 1e24};
    case 'Z':
        return {21, 1e21};
    case 'E':
        return {18, 1e18};
    case 'P':
        return {15, 1e15};
    case 'T':
        return {12, 1e12};
    case 'G':
        return {9, 1e9};
    case 'M':
        return {6, 1e6};
    case 'k':
        return {3, 1e3};
    case 'h':
        return {2, 1e2};
    case 'd':
        return {-1, 1e-1};
    case 'c':
        return {-2, 1e-2};
    case 'm':
        return {-3, 1e-3};
    case 'u':
    case '\xB5':
        return {-6, 1e-6};
    case 'n':
        return {-9, 1e-9};
    case 'p':
        return {-12, 1e-12};
    case 'f':
        return {-15, 1e-15};
    case 'z':
        return {-21, 1e-21};
    case 'y':
        return {-24, 1e-24};
    default:
        return {0, 1};
    }
}

char prefix_byte(int exponent)
{
    switch (exponent)
    {
    case -24:
        return 'y';
    case -21:
        return 'z';
    case -18:
        return 'a'; // which the parser does not know
    case -15:
        return 'f';
    case -12:
        return 'p';
    case -9:
        return 'n';
    case -6:
        return '\xB5';
    case -3:
        return 'm';
    case -2:
        return 'c';
    case -1:
        return 'd';
    case 2:
        return 'h';
    case 3:
        return 'k';
    case 6:
        return 'M';
    case 9:
        return 'G';
    case 12:
        return 'T';
    case 15:
        return 'P';
    case 18:
        return 'E';
    case 21:
        return 'Z';
    case 24:
        return 'Y';
    default:
        return '\x80';
    }
}

VELA_ABI_NAMESPACE_END
}
