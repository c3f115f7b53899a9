// Any bytes are property XML or end with a VelaError; what was read is written, reads again, and then stays as it is.

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

constexpr int native = 2;

void require(bool holds)
{
    if (!holds)
        __builtin_trap();
}

bool reads(const std::string& xml, int format, VProp& prop)
{
    try
    {
        vela_import_xml(xml, prop, format);
        return true;
    }
    catch (const VelaError& error)
    {
        require(error.get_id() == -1 && std::string(error.get_func()) == "vela_import_xml");
        return false;
    }
}

std::string written(const VProp& prop)
{
    std::string xml;
    vela_export_xml(xml, prop, native);
    return xml;
}

/// The first writing may change what no document can say: arrays of one struct, strings of blanks. The second must not.
void check_written(const VProp& prop)
{
    constexpr std::size_t longest = 1 << 20; // beyond that one input takes too long
    const std::string first = written(prop);
    VProp again;
    // What a long document may promise is too much for a short one.
    if (first.size() > longest || !reads(first, 0, again))
        return;
    const std::string second = written(again);
    VProp third;
    require(reads(second, native, third));
    require(written(third) == second);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string xml(reinterpret_cast<const char*>(data), size);
    VProp prop;
    if (reads(xml, native, prop))
        check_written(prop);
    VProp same_type(prop);
    reads(xml, native, same_type); // into what is there
    VProp detected;
    if (reads(xml, 0, detected))
        check_written(detected);
    return 0;
}
