/// Lists whose places only the library has changed.
#pragma once

#include <Json/Value.h>

#include <cstddef>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

/// For those who remember where the elements of a list are.
///
/// A list that somebody has got from the value as such, by `as_list` and its like, can be rearranged by him whenever he
/// wants, as it lives as long as the value holds it.
struct ListKeeper
{
    /// `Value::fill_list`, for callers who leave the elements in their places.
    static Value::List& fill(Value& value, std::size_t end)
    {
        Value::SourcedList& list = value.as_sourced_list();
        value.fill_to(end);
        return list.elements;
    }

    /// Keeps the list, unless somebody has got it already.
    static void keep(Value& list) noexcept
    {
        if (list.list_holder_ == Value::ListHolder::none)
            list.list_holder_ = Value::ListHolder::keeper;
    }

    /// Whether it is the list that was kept, and nobody else can have taken an element away or changed the order.
    static bool is_kept(const Value& list) noexcept { return list.list_holder_ == Value::ListHolder::keeper; }
};

}
VELA_ABI_NAMESPACE_END
}
