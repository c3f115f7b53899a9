// Any bytes decode to text in each encoding; what decoded encodes and decodes to the same text again.

#include <VelaProps/VPropstring.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    for (const auto encoding : {VPropstring::enc_utf8, VPropstring::enc_system, VPropstring::enc_windows1252})
    {
        const VPropstring text(bytes, encoding);
        const std::string narrow = text.to(encoding);
        if (!(VPropstring(narrow, encoding) == text))
            __builtin_trap();
        if (VPropstring::length_of(bytes.data(), encoding, bytes.size()) != text.size())
            __builtin_trap();
    }
    return 0;
}
