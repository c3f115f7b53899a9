#include "sources/props/value_types.h"
#include "json/WrongTypeError.h"
#include "json/property_bridge_shape.h"

#include <Json/property_bridge.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

using vela_prop::Type;

Value scalar_value(const VPropstring& text)
{
    return Value(static_cast<std::string>(text));
}

template <class T>
Value scalar_value(T number)
{
    return Value(number);
}

/// Makes lists of the lengths from `depth` on, with what `next()` gives as their elements.
template <class Next>
void fill_lists(Value::List& list, const std::vector<std::size_t>& shape, std::size_t depth, Next& next)
{
    for (std::size_t i = 0; i < shape[depth]; ++i)
    {
        if (depth + 1 == shape.size())
            next(list.emplace_back());
        else
            fill_lists(list.emplace_back().as_list(), shape, depth + 1, next);
    }
}

/// Calls `next` with each element of the lists that `target` becomes.
template <class Next>
void make_lists(const VProparrayBase& array, Value& target, Next next)
{
    const std::vector<std::size_t> shape = detail::shape_of(array);
    target = Value::List();
    if (!shape.empty())
        fill_lists(target.as_list(), shape, 0, next);
}

/// Reads a tree with a stack of what is still to be read, in the order in which recursion would come to it.
class ValueMaker
{
public:
    void make(const VProp& property, Value& target)
    {
        pending.push_back({&property, nullptr, &target});
        while (!pending.empty())
        {
            const Task task = pending.back();
            pending.pop_back();
            if (task.property != nullptr)
                read(*task.property, *task.target);
            else
                read(*task.members, *task.target);
        }
    }

private:
    struct Task
    {
        const VProp* property; ///< null where `members` are to be read, which lie in an array of structures
        const VPropstruct* members;
        Value* target;
    };

    void read(const VProp& property, Value& target)
    {
        const vela_dt id = property.get_id();
        const auto read_scalar = [&]<class T>(Type<T>) { target = scalar_value(property.get<T>()); };
        const auto read_array = [&]<class T>(Type<T>) { read(property.get<VProparray<T>>(), target); };
        if (vela_prop::with_number_type(id, read_scalar) || vela_prop::with_type_of<bool, VPropstring>(id, read_scalar))
            return;
        if (id == vela_dt_struct)
            return read(property.get<VPropstruct>(), target);
        if (id == VProp::type_id<VProparray<VProp>>)
            return read(property.get<VProparray<VProp>>(), target);
        const vela_dt element = id & ~vela_dt_array;
        if (id == element || !(vela_prop::with_number_type(element, read_array) ||
                               vela_prop::with_type_of<bool, VPropstring, VPropstruct>(element, read_array)))
            throw WrongTypeError(id);
    }

    void read(const VPropstruct& members, Value& target)
    {
        target = Value::Object();
        const std::size_t first = pending.size();
        for (const auto& [key, member] : members)
            pending.push_back({&member, nullptr, &target.at(key)});
        turn_round(first);
    }

    template <class T>
    void read(const VProparray<T>& array, Value& target)
    {
        auto element = array.begin();
        make_lists(array, target, [&](Value& made) { made = scalar_value<T>(*element++); });
    }

    void read(const VProparray<VPropstring>& array, Value& target)
    {
        auto element = array.begin();
        make_lists(array, target, [&](Value& made) { made = scalar_value(*element++); });
    }

    void read(const VProparray<VProp>& array, Value& target)
    {
        const std::size_t first = pending.size();
        auto element = array.begin();
        make_lists(array, target, [&](Value& made) { pending.push_back({&*element++, nullptr, &made}); });
        turn_round(first);
    }

    void read(const VProparray<VPropstruct>& array, Value& target)
    {
        const std::size_t first = pending.size();
        auto element = array.begin();
        make_lists(array, target, [&](Value& made) { pending.push_back({nullptr, &*element++, &made}); });
        turn_round(first);
    }

    /// What was added first is read first.
    void turn_round(std::size_t first)
    {
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(first), pending.end());
    }

    std::vector<Task> pending;
};

}

Value get_value(const VProp& property)
{
    Value value;
    ValueMaker().make(property, value);
    return value;
}

Map<std::string, Value> get_parameters(const VProp& property)
{
    if (property.get_id() != vela_dt_struct)
        return {};
    return std::move(get_value(property).as_object());
}

VELA_ABI_NAMESPACE_END
}
