/// The map of the value tree.
#pragma once

#include <VelaBase/export.h>

#include <map>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// `std::map` under a name of its own: unique keys, and iteration in ascending order of the key, which for
/// strings is the order of their bytes. That order is the order of attributes, elements and members in
/// everything that is written. Inserting and erasing leave all other entries where they are in memory.
template <class K, class V>
struct Map : std::map<K, V>
{
    using std::map<K, V>::map;
};

VELA_ABI_NAMESPACE_END
}
