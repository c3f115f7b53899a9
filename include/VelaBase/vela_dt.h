/// Sample type ids, their names, sizes and run-time types.
///
/// An id is a set of bits: one bit for the scalar kind and two modifier bits. The numbers stand in
/// the stack headers of VBF files and the names in property XML, so neither ever changes.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>
#include <typeinfo>

/// A sample type id.
typedef std::int32_t vela_dt;

constexpr vela_dt vela_dt_none = 0;
constexpr vela_dt vela_dt_uint8 = 0x00001;
constexpr vela_dt vela_dt_int8 = 0x00002;
constexpr vela_dt vela_dt_uint16 = 0x00004;
constexpr vela_dt vela_dt_int16 = 0x00008;
constexpr vela_dt vela_dt_uint32 = 0x00010;
constexpr vela_dt vela_dt_int32 = 0x00020;
constexpr vela_dt vela_dt_single = 0x00040;
constexpr vela_dt vela_dt_double = 0x00080;
/// Three bytes, `_s_vela_RGB`; has no name of its own.
constexpr vela_dt vela_dt_rgb = 0x00400;
/// Packed colour word, unsigned 32-bit; has no name of its own.
constexpr vela_dt vela_dt_packed_color = 0x00800;
constexpr vela_dt vela_dt_uint64 = 0x01000;
constexpr vela_dt vela_dt_int64 = 0x02000;
constexpr vela_dt vela_dt_cell = 0x04000;
constexpr vela_dt vela_dt_struct = 0x08000;
constexpr vela_dt vela_dt_logical = 0x10000;
constexpr vela_dt vela_dt_char = 0x20000;

/// Set in the id of a complex type: a pair of two scalars, real part first, without padding.
constexpr vela_dt vela_dt_complex = 0x40000000;
/// Set in the id of an array property. It is the sign bit: array ids are the negative ones.
constexpr vela_dt vela_dt_array = INT32_MIN;

/// A colour of three bytes.
///
/// Packing and unpacking are not inverse to each other, and this is required: packing puts byte 0
/// into bits 0 to 7, unpacking puts bits 0 to 7 into byte 2. A round trip swaps bytes 0 and 2.
struct VELA_API _s_vela_RGB // exported, or clang hides what is instantiated for it
{
    /// All bytes 0.
    constexpr _s_vela_RGB() = default;

    constexpr _s_vela_RGB(std::uint8_t byte_0, std::uint8_t byte_1, std::uint8_t byte_2) : bytes{byte_0, byte_1, byte_2}
    {
    }

    /// Unpacks: bits 0 to 7 become byte 2, bits 8 to 15 byte 1, bits 16 to 23 byte 0.
    constexpr explicit _s_vela_RGB(std::uint32_t packed)
        : bytes{static_cast<std::uint8_t>((packed >> 16) & 0xff), static_cast<std::uint8_t>((packed >> 8) & 0xff),
                static_cast<std::uint8_t>(packed & 0xff)}
    {
    }

    /// Packs: byte 0 into bits 0 to 7, byte 1 into bits 8 to 15, byte 2 into bits 16 to 23; the rest is 0.
    constexpr operator std::uint32_t() const
    {
        return static_cast<std::uint32_t>(bytes[0]) | (static_cast<std::uint32_t>(bytes[1]) << 8) |
               (static_cast<std::uint32_t>(bytes[2]) << 16);
    }

    friend constexpr bool operator==(const _s_vela_RGB& a, const _s_vela_RGB& b)
    {
        return static_cast<std::uint32_t>(a) == static_cast<std::uint32_t>(b);
    }
    friend constexpr bool operator!=(const _s_vela_RGB& a, const _s_vela_RGB& b) { return !(a == b); }

    std::uint8_t bytes[3] = {0, 0, 0};
};
static_assert(sizeof(_s_vela_RGB) == 3, "a colour sample has three bytes and no padding");

extern "C" {

/// Size of one sample in bytes; 0 for 0, "cell", "struct", "char", "cplx_logical", for every id with
/// the array flag and for every unknown id. No flag is removed.
VELA_API std::uint64_t vela_dt_get_size(std::uint32_t id);

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage" // only the name is C's
#endif
/// Run-time type of one element, for a complex id that of `std::complex` of the scalar. "int8" is plain `char`,
/// which this library requires to be signed; the other integers are those of `<cstdint>`.
/// `VProp` for "cell", `VPropstruct` for "struct", `VPropstring` for "char". With the array flag `VProparray` of it.
/// The identity of `void` where there is none: for 0, "cplx_logical" and every unknown id.
VELA_API const std::type_info& vela_dt_get_type(vela_dt id);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

/// Name of the type; the array flag is ignored. "none" for every id without a name.
/// The text belongs to the library and lives as long as it.
VELA_API const char* vela_dt_get_name(vela_dt id);

/// Id of the type called `name`; 0 for "none", for an unknown name and for null. Case counts.
VELA_API vela_dt vela_dt_from_name(const char* name);
}
