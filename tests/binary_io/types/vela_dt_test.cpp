#include <VelaBase/vela_dt.h>
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstring.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace {

constexpr std::uint32_t array_flag = 0x80000000;
constexpr std::uint32_t complex_flag = 0x40000000;

vela_dt as_dt(std::uint32_t id)
{
    return static_cast<vela_dt>(id);
}

/// One type, with numbers and names written out: they stand in files.
struct KnownType
{
    std::uint32_t id;
    const char* name;
    std::uint64_t size_bytes;
    const std::type_info* element; ///< null: the type of the property tree, not asked for here
};

const KnownType known_types[] = {
    {0x00000000, "none", 0, &typeid(void)},
    {0x00000001, "uint8", 1, &typeid(std::uint8_t)},
    {0x00000002, "int8", 1, &typeid(char)},
    {0x00000004, "uint16", 2, &typeid(std::uint16_t)},
    {0x00000008, "int16", 2, &typeid(std::int16_t)},
    {0x00000010, "uint32", 4, &typeid(std::uint32_t)},
    {0x00000020, "int32", 4, &typeid(std::int32_t)},
    {0x00000040, "single", 4, &typeid(float)},
    {0x00000080, "double", 8, &typeid(double)},
    {0x00000400, "none", 3, &typeid(_s_vela_RGB)},
    {0x00000800, "none", 4, &typeid(std::uint32_t)},
    {0x00001000, "uint64", 8, &typeid(std::uint64_t)},
    {0x00002000, "int64", 8, &typeid(std::int64_t)},
    {0x00004000, "cell", 0, nullptr},
    {0x00008000, "struct", 0, nullptr},
    {0x00010000, "logical", 1, &typeid(bool)},
    {0x00020000, "char", 0, &typeid(VPropstring)},
    {0x40000001, "cplx_uint8", 2, &typeid(std::complex<std::uint8_t>)},
    {0x40000002, "cplx_int8", 2, &typeid(std::complex<char>)},
    {0x40000004, "cplx_uint16", 4, &typeid(std::complex<std::uint16_t>)},
    {0x40000008, "cplx_int16", 4, &typeid(std::complex<std::int16_t>)},
    {0x40000010, "cplx_uint32", 8, &typeid(std::complex<std::uint32_t>)},
    {0x40000020, "cplx_int32", 8, &typeid(std::complex<std::int32_t>)},
    {0x40000040, "cplx_single", 8, &typeid(std::complex<float>)},
    {0x40000080, "cplx_double", 16, &typeid(std::complex<double>)},
    {0x40001000, "cplx_uint64", 16, &typeid(std::complex<std::uint64_t>)},
    {0x40002000, "cplx_int64", 16, &typeid(std::complex<std::int64_t>)},
    {0x40010000, "cplx_logical", 0, &typeid(void)},
};

const KnownType* find_known(std::uint32_t id)
{
    for (const KnownType& type : known_types)
        if (type.id == id)
            return &type;
    return nullptr;
}

/// Everything that the lookups answer for one id, known or not.
void expect_answers(std::uint32_t id)
{
    SCOPED_TRACE(testing::Message() << "id 0x" << std::hex << id);
    const KnownType* exact = find_known(id);
    EXPECT_EQ(vela_dt_get_size(id), exact == nullptr ? 0u : exact->size_bytes);

    const KnownType* element = find_known(id & ~array_flag);
    EXPECT_STREQ(vela_dt_get_name(as_dt(id)), element == nullptr ? "none" : element->name);

    if (exact == nullptr && element == nullptr)
    {
        EXPECT_EQ(vela_dt_get_type(as_dt(id)), typeid(void));
    }
    else if (exact != nullptr && exact->element != nullptr)
    {
        EXPECT_EQ(vela_dt_get_type(as_dt(id)), *exact->element);
    }
}

TEST(SampleTypeIds, ConstantsHaveTheNumbersOfTheFiles)
{
    static_assert(std::is_same_v<vela_dt, std::int32_t>);
    static_assert(vela_dt_none == 0);
    static_assert(vela_dt_uint8 == 0x1);
    static_assert(vela_dt_int8 == 0x2);
    static_assert(vela_dt_uint16 == 0x4);
    static_assert(vela_dt_int16 == 0x8);
    static_assert(vela_dt_uint32 == 0x10);
    static_assert(vela_dt_int32 == 0x20);
    static_assert(vela_dt_single == 0x40);
    static_assert(vela_dt_double == 0x80);
    static_assert(vela_dt_rgb == 0x400);
    static_assert(vela_dt_packed_color == 0x800);
    static_assert(vela_dt_uint64 == 0x1000);
    static_assert(vela_dt_int64 == 0x2000);
    static_assert(vela_dt_cell == 0x4000);
    static_assert(vela_dt_struct == 0x8000);
    static_assert(vela_dt_logical == 0x10000);
    static_assert(vela_dt_char == 0x20000);
    static_assert(vela_dt_complex == 0x40000000);
    static_assert(static_cast<std::uint32_t>(vela_dt_array) == 0x80000000u);
    static_assert((vela_dt_array | vela_dt_uint8) < 0, "an array id is a negative id");
    SUCCEED();
}

TEST(SampleTypeLookups, EveryKnownIdHasItsSizeNameAndType)
{
    for (const KnownType& type : known_types)
        expect_answers(type.id);
}

TEST(SampleTypeLookups, EveryKnownIdWithTheArrayFlagHasSizeZeroAndTheNameOfItsElement)
{
    for (const KnownType& type : known_types)
    {
        SCOPED_TRACE(testing::Message() << "element 0x" << std::hex << type.id);
        EXPECT_EQ(vela_dt_get_size(type.id | array_flag), 0u);
        EXPECT_STREQ(vela_dt_get_name(as_dt(type.id | array_flag)), type.name);
    }
}

TEST(SampleTypeLookups, EverySingleBitIsAnsweredByTheTable)
{
    for (unsigned bit = 0; bit < 32; ++bit)
        expect_answers(std::uint32_t{1} << bit);
}

TEST(SampleTypeLookups, EveryPairOfBitsIsAnsweredByTheTable)
{
    for (unsigned high = 1; high < 32; ++high)
        for (unsigned low = 0; low < high; ++low)
            expect_answers((std::uint32_t{1} << high) | (std::uint32_t{1} << low));
}

TEST(SampleTypeLookups, BothFlagsWithEveryBitAreAnsweredByTheTable)
{
    for (unsigned bit = 0; bit < 30; ++bit)
        expect_answers(array_flag | complex_flag | (std::uint32_t{1} << bit));
}

TEST(SampleTypeLookups, EveryKnownIdWithOneMoreBitIsAnsweredByTheTable)
{
    for (const KnownType& type : known_types)
        for (unsigned bit = 0; bit < 30; ++bit)
            expect_answers(type.id | (std::uint32_t{1} << bit));
}

TEST(SampleTypeLookups, MixedBitPatternsAreAnsweredByTheTable)
{
    for (const std::uint32_t id : {0x00000003u, 0x000000ffu, 0x00000300u, 0x00000c00u, 0x0003ffffu, 0x3fffffffu,
                                   0x7fffffffu, 0x80000000u, 0xc0000000u, 0xfffffffeu, 0xffffffffu})
        expect_answers(id);
}

TEST(SampleTypeSize, IsZeroForAnArrayOfUint8)
{
    EXPECT_EQ(vela_dt_get_size(0x80000001u), 0u);
}

TEST(SampleTypeSize, IsThreeAndFourForTheColours)
{
    EXPECT_EQ(vela_dt_get_size(0x400), 3u);
    EXPECT_EQ(vela_dt_get_size(0x800), 4u);
}

TEST(SampleTypeSize, IsZeroForComplexColours)
{
    EXPECT_EQ(vela_dt_get_size(0x40000400u), 0u);
    EXPECT_EQ(vela_dt_get_size(0x40000800u), 0u);
}

TEST(SampleTypeSize, IsAnUnsigned64BitNumber)
{
    static_assert(std::is_same_v<decltype(vela_dt_get_size(0u)), std::uint64_t>);
    EXPECT_EQ(vela_dt_get_size(0x40000080u), 16u);
}

TEST(SampleTypeIdentity, OfThePackedColourIsThatOfUint32)
{
    EXPECT_EQ(vela_dt_get_type(0x800), vela_dt_get_type(0x10));
    EXPECT_EQ(vela_dt_get_type(0x800), typeid(std::uint32_t));
}

TEST(SampleTypeIdentity, OfInt8IsPlainChar)
{
    // The values of the property tree are plain char, which the library requires to be signed.
    EXPECT_EQ(vela_dt_get_type(0x2), typeid(char));
    EXPECT_EQ(vela_dt_get_type(0x40000002), typeid(std::complex<char>));
    EXPECT_NE(vela_dt_get_type(0x2), typeid(std::int8_t));
}

TEST(SampleTypeIdentity, OfCellsAndStructsIsThatOfTheProperty)
{
    EXPECT_EQ(vela_dt_get_type(0x4000), typeid(VProp));
    EXPECT_EQ(vela_dt_get_type(0x8000), typeid(VPropstruct));
}

TEST(SampleTypeIdentity, WithTheArrayFlagIsThatOfTheArrayOfIt)
{
    const auto with_flag = [](std::uint32_t id) -> const std::type_info&
    { return vela_dt_get_type(as_dt(id | array_flag)); };
    EXPECT_EQ(with_flag(0x1), typeid(VProparray<std::uint8_t>));
    EXPECT_EQ(with_flag(0x2), typeid(VProparray<char>));
    EXPECT_EQ(with_flag(0x4), typeid(VProparray<std::uint16_t>));
    EXPECT_EQ(with_flag(0x8), typeid(VProparray<std::int16_t>));
    EXPECT_EQ(with_flag(0x10), typeid(VProparray<std::uint32_t>));
    EXPECT_EQ(with_flag(0x20), typeid(VProparray<std::int32_t>));
    EXPECT_EQ(with_flag(0x40), typeid(VProparray<float>));
    EXPECT_EQ(with_flag(0x80), typeid(VProparray<double>));
    EXPECT_EQ(with_flag(0x400), typeid(VProparray<_s_vela_RGB>));
    EXPECT_EQ(with_flag(0x800), typeid(VProparray<std::uint32_t>));
    EXPECT_EQ(with_flag(0x1000), typeid(VProparray<std::uint64_t>));
    EXPECT_EQ(with_flag(0x2000), typeid(VProparray<std::int64_t>));
    EXPECT_EQ(with_flag(0x4000), typeid(VProparray<VProp>));
    EXPECT_EQ(with_flag(0x8000), typeid(VProparray<VPropstruct>));
    EXPECT_EQ(with_flag(0x10000), typeid(VProparray<bool>));
    EXPECT_EQ(with_flag(0x20000), typeid(VProparray<VPropstring>));
    EXPECT_EQ(with_flag(0x40000008), typeid(VProparray<std::complex<std::int16_t>>));
    EXPECT_EQ(with_flag(0x40000080), typeid(VProparray<std::complex<double>>));
    EXPECT_EQ(with_flag(0), typeid(void));
}

TEST(SampleTypeIdentity, OfCharIsThePropertyString)
{
    EXPECT_EQ(vela_dt_get_type(0x20000), typeid(VPropstring));
}

TEST(SampleTypeIdentity, OfComplexLogicalIsThatOfNoType)
{
    EXPECT_EQ(vela_dt_get_type(0x40010000), typeid(void));
}

TEST(SampleTypeIdentity, OfUnusedBitsIsThatOfNoTypeWithAndWithoutTheArrayFlag)
{
    for (const std::uint32_t id : {0x100u, 0x200u, 0x40000u, 0x20000000u, 0x40000000u, 0x40004000u, 0x40008000u,
                                   0x40010000u, 0x40020000u, 0x40000400u, 0x40000800u})
    {
        SCOPED_TRACE(testing::Message() << "id 0x" << std::hex << id);
        EXPECT_EQ(vela_dt_get_type(as_dt(id)), typeid(void));
        EXPECT_EQ(vela_dt_get_type(as_dt(id | array_flag)), typeid(void));
    }
}

TEST(SampleTypeName, OfAnArrayIsThatOfItsElement)
{
    EXPECT_STREQ(vela_dt_get_name(as_dt(0x80000001u)), "uint8");
    EXPECT_STREQ(vela_dt_get_name(as_dt(0xc0000040u)), "cplx_single");
}

TEST(SampleTypeName, OfTheColoursIsNone)
{
    EXPECT_STREQ(vela_dt_get_name(0x400), "none");
    EXPECT_STREQ(vela_dt_get_name(0x800), "none");
}

TEST(SampleTypeName, BelongsToTheTable)
{
    for (const KnownType& type : known_types)
    {
        const char* first = vela_dt_get_name(as_dt(type.id));
        EXPECT_EQ(first, vela_dt_get_name(as_dt(type.id)));
        EXPECT_EQ(first, vela_dt_get_name(as_dt(type.id | array_flag)));
    }
}

TEST(SampleTypeFromName, FindsTheIdOfEveryName)
{
    for (const KnownType& type : known_types)
    {
        const std::uint32_t expected = std::strcmp(type.name, "none") == 0 ? 0 : type.id;
        EXPECT_EQ(vela_dt_from_name(type.name), as_dt(expected)) << type.name;
    }
}

TEST(SampleTypeFromName, DoesNotDependOnTheAddressOfTheText)
{
    std::string text = "cplx_";
    text += "int16";
    EXPECT_EQ(vela_dt_from_name(text.c_str()), 0x40000008);
}

TEST(SampleTypeFromName, IsZeroForNone)
{
    EXPECT_EQ(vela_dt_from_name("none"), 0);
}

TEST(SampleTypeFromName, IsZeroForUnknownNames)
{
    const char* const unknown[] = {"",          " ",        "uint",        "uint88",      "uint9",    "int128",
                                   "uint8 ",    " uint8",   "uint8\n",     "float",       "complex",  "double-complex",
                                   "bit",       "bool",     "logical8",    "rgb",         "cplx_",    "cplx_cell",
                                   "cplx_char", "cplx_RGB", "cplx_struct", "cplx_uint24", "cplx_none"};
    for (const char* name : unknown)
        EXPECT_EQ(vela_dt_from_name(name), 0) << name;
}

TEST(SampleTypeFromName, CountsCase)
{
    for (const char* name : {"UINT8", "Uint8", "uInt8", "Single", "DOUBLE", "Cplx_uint8", "cplx_Uint8", "None"})
        EXPECT_EQ(vela_dt_from_name(name), 0) << name;
}

TEST(SampleTypeFromName, IsZeroForNull)
{
    EXPECT_EQ(vela_dt_from_name(nullptr), 0);
}

TEST(SampleTypeFromName, FindsComplexLogicalWhoseSizeIsZero)
{
    EXPECT_EQ(vela_dt_from_name("cplx_logical"), 0x40010000);
    EXPECT_EQ(vela_dt_get_size(0x40010000u), 0u);
}

// Laws of the colour of three bytes.
constexpr std::array<std::uint8_t, 3> bytes_of(const _s_vela_RGB& colour)
{
    return {colour.bytes[0], colour.bytes[1], colour.bytes[2]};
}
constexpr bool has_bytes(const _s_vela_RGB& colour, std::uint8_t byte_0, std::uint8_t byte_1, std::uint8_t byte_2)
{
    return colour.bytes[0] == byte_0 && colour.bytes[1] == byte_1 && colour.bytes[2] == byte_2;
}
constexpr std::uint32_t packed(const _s_vela_RGB& colour)
{
    return static_cast<std::uint32_t>(colour);
}

static_assert(sizeof(_s_vela_RGB) == 3);
static_assert(alignof(_s_vela_RGB) == 1);
static_assert(sizeof(_s_vela_RGB[5]) == 15);
static_assert(std::is_trivially_copyable_v<_s_vela_RGB>);
static_assert(std::is_standard_layout_v<_s_vela_RGB>);
static_assert(has_bytes(_s_vela_RGB(), 0, 0, 0));
static_assert(packed(_s_vela_RGB(1, 2, 3)) == 0x00030201);
static_assert(packed(_s_vela_RGB(0xff, 0xff, 0xff)) == 0x00ffffff, "the top byte is zero");
static_assert(packed(_s_vela_RGB(0x80, 0, 0)) == 0x00000080);
static_assert(packed(_s_vela_RGB(0, 0x80, 0)) == 0x00008000);
static_assert(packed(_s_vela_RGB(0, 0, 0x80)) == 0x00800000);
static_assert(has_bytes(_s_vela_RGB(std::uint32_t{0x00030201}), 3, 2, 1));
static_assert(has_bytes(_s_vela_RGB(std::uint32_t{0xaabbccdd}), 0xbb, 0xcc, 0xdd), "the top byte is dropped");
static_assert(packed(_s_vela_RGB(packed(_s_vela_RGB(1, 2, 3)))) == 0x00010203, "a round trip swaps bytes 0 and 2");
static_assert(_s_vela_RGB(1, 2, 3) == _s_vela_RGB(1, 2, 3));
static_assert(!(_s_vela_RGB(1, 2, 3) != _s_vela_RGB(1, 2, 3)));
static_assert(_s_vela_RGB(1, 2, 3) != _s_vela_RGB(3, 2, 1));
static_assert(_s_vela_RGB(1, 2, 3) != _s_vela_RGB(1, 2, 4));
static_assert(_s_vela_RGB(1, 2, 3) != _s_vela_RGB(1, 0, 3));
static_assert(_s_vela_RGB(1, 2, 3) != _s_vela_RGB(0, 2, 3));
static_assert(_s_vela_RGB(std::uint32_t{0x11000000}) == _s_vela_RGB(std::uint32_t{0x22000000}));

TEST(ColourOfThreeBytes, PackingPutsByteZeroIntoTheLowBits)
{
    const _s_vela_RGB colour(1, 2, 3);
    const std::uint32_t word = colour;
    EXPECT_EQ(word & 0xff, 1u);
    EXPECT_EQ((word >> 8) & 0xff, 2u);
    EXPECT_EQ((word >> 16) & 0xff, 3u);
    EXPECT_EQ(word >> 24, 0u);
}

TEST(ColourOfThreeBytes, RebuildingFromThePackedWordReversesTheBytes)
{
    const _s_vela_RGB rebuilt(packed(_s_vela_RGB(1, 2, 3)));
    EXPECT_EQ(bytes_of(rebuilt), (std::array<std::uint8_t, 3>{3, 2, 1}));
}

TEST(ColourOfThreeBytes, EveryByteKeepsItsValueOnBothWays)
{
    for (unsigned value = 0; value < 256; ++value)
    {
        const auto byte = static_cast<std::uint8_t>(value);
        const auto other = static_cast<std::uint8_t>(value * 7 + 1);
        const auto third = static_cast<std::uint8_t>(255 - value);
        const _s_vela_RGB colour(byte, other, third);
        EXPECT_EQ(packed(colour), value | (std::uint32_t{other} << 8) | (std::uint32_t{third} << 16));
        EXPECT_EQ(bytes_of(_s_vela_RGB(packed(colour))), (std::array<std::uint8_t, 3>{third, other, byte}));
    }
}

} // namespace
