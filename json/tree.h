/// Walks over value trees that do not recurse, so that no document can exhaust the stack.
#pragma once

#include <Json/Value.h>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

/// Makes the null `target` a copy of the list or object `source`.
void copy_tree(const Value& source, Value& target);

struct TreeDestroyer
{
    /// Leaves a list or an object without elements, as either of both.
    ///
    /// It neither recurses nor takes memory, for it runs in destructors. A container within containers is taken
    /// apart by rotation, as binary trees are: with P = (C, p2, ...) and C = (c1, ..., cn) the tree becomes
    /// C = (c1, ..., (cn, p2, ...)). Each rotation makes the chain of last elements longer by one container,
    /// so there are no more of them than containers.
    static void empty(Value& root) noexcept;

private:
    static bool is_empty(const Value& value) noexcept;
    static bool is_nested(const Value& child) noexcept;
    static void drop_elements(Value& container) noexcept;
    static Value* first_nested(Value& container) noexcept;
    static Value& last(Value& container) noexcept;
    static bool holds_one(const Value& container) noexcept;
};

}
VELA_ABI_NAMESPACE_END
}
