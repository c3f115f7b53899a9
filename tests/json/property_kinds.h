/// One property of each type that there is, with the name that failures give to the type.
#pragma once

#include "support/property_makers.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vela_test {

struct PropertyKind
{
    const char* name;
    VProp sample; ///< 0, false, or empty; arrays have one such element
};

const std::vector<PropertyKind>& property_kinds();

inline std::string text_of_wrong_type(const std::string& name)
{
    return "Property has " + name + " type";
}

} // namespace vela_test
