/// Identifiers of the records.
#pragma once

#include <Json/Value.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// A name with an index, as in "Channel:1".
struct VELA_API Id
{
    /// `name` must outlive this.
    Id(const char* name, std::size_t index);

    /// The string of name, ":" and index; null where the index is 0, which leaves a slot as it is.
    operator Json::Value() const;

    const char* name;
    std::size_t index;
};

VELA_ABI_NAMESPACE_END
}
