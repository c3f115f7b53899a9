/// How the elements of an array lie in lists.
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VProparray.h>

#include <cstddef>
#include <vector>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

/// The lengths of the lists, from the outermost in; none for an array without elements. As no length is 1 unless it is
/// the only one, there are fewer than a `size_t` has bits: recursion by them is no danger.
/// @throws VelaError as `VProparrayBase::get_size`
std::vector<std::size_t> shape_of(const VProparrayBase& array);

}
VELA_ABI_NAMESPACE_END
}
