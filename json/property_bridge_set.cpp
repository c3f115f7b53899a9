// A tree is written with a stack of the open structures and arrays, in the order in which recursion would come to
// each value. A failure is told once, with the members that are open by then, as each level that told it anew would
// take time for the whole text.

#include "sources/props/value_types.h"
#include "json/WrongTypeError.h"
#include "json/property_bridge_convert.h"
#include "json/property_bridge_shape.h"

#include <Json/property_bridge.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <variant>
#include <vector>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

using vela_prop::Type;

/// The values in the innermost of lists within lists, which have to be as long as a shape says.
class ListElements
{
public:
    ListElements(const Value& list, std::vector<std::size_t> lengths) : shape(std::move(lengths))
    {
        if (!shape.empty())
            open_list(list);
    }

    /// Null at the end.
    /// @throws std::bad_cast: there is no list where one has to be, or one of another length
    const Value* next()
    {
        while (!open.empty())
        {
            auto& [element, end] = open.back();
            if (element == end)
            {
                open.pop_back();
                continue;
            }
            const Value& value = *element++;
            if (open.size() == shape.size())
                return &value;
            open_list(value);
        }
        return nullptr;
    }

private:
    struct OpenList
    {
        Value::List::const_iterator element;
        Value::List::const_iterator end;
    };

    void open_list(const Value& value)
    {
        if (!value.is_list() || value.count() != shape[open.size()]) // known without filling it
            detail::throw_bad_cast();
        const Value::List& list = *value.if_list();
        open.push_back({list.begin(), list.end()});
    }

    std::vector<std::size_t> shape;
    std::vector<OpenList> open;
};

/// Looks for members by their names.
class MemberFinder
{
public:
    MemberFinder(VPropstruct& struct_members, std::size_t search_count) : members(struct_members)
    {
        if (search_count < worth_sorting)
            return;
        sorted.reserve(members.size());
        for (auto& [key, member] : members)
            sorted.push_back({key, &member});
        std::ranges::stable_sort(sorted, {}, &Entry::key);
    }

    /// The first with this name, or null.
    VProp* find(const std::string& key) const
    {
        if (sorted.empty())
        {
            const auto found = members.find(key);
            return found == members.end() ? nullptr : &found->second;
        }
        const auto found = std::ranges::lower_bound(sorted, std::string_view(key), {}, &Entry::key);
        return found == sorted.end() || found->key != key ? nullptr : found->member;
    }

private:
    struct Entry
    {
        std::string_view key;
        VProp* member;
    };

    /// From this many searches on, so that the time for large structures does not grow with the square.
    static constexpr std::size_t worth_sorting = 32;

    VPropstruct& members;
    std::vector<Entry> sorted;
};

/// An object that is being written into a structure.
struct OpenObject
{
    OpenObject(const Value::Object& object, VPropstruct& members)
        : entry(object.begin()), end(object.end()), finder(members, object.size())
    {
    }

    Value::Object::const_iterator entry;
    Value::Object::const_iterator end;
    MemberFinder finder;
    const std::string* key = nullptr; ///< of the member that is being written
};

/// A list that is being written into an array of properties or of structures.
template <class T>
struct OpenArray
{
    ListElements elements;
    typename VProparray<T>::iterator target;
};

class Writer
{
public:
    /// Whether a scalar changed.
    bool write(const Value& value, VProp& property)
    {
        const bool has_changed = begin(value, property);
        const bool is_scalar = open.empty();
        while (!open.empty())
            if (!std::visit([this](auto& container) { return step(container); }, open.back()))
                open.pop_back();
        return is_scalar && has_changed;
    }

    /// A line for each member that is being written, from the outside in.
    std::string place() const
    {
        std::string text;
        for (const auto& container : open)
        {
            const auto* const object = std::get_if<OpenObject>(&container);
            if (object != nullptr && object->key != nullptr)
                text.append("Invalid argument for property '").append(*object->key).append("'\n");
        }
        return text;
    }

private:
    /// Writes a scalar, or an array of them, and tells whether it was a scalar that changed; opens anything else.
    bool begin(const Value& value, VProp& property)
    {
        const vela_dt id = property.get_id();
        try
        {
            bool has_changed = false;
            const auto write_scalar = [&]<class T>(Type<T>) { has_changed = set_scalar<T>(value, property); };
            if (vela_prop::with_number_type(id, write_scalar) ||
                vela_prop::with_type_of<bool, VPropstring>(id, write_scalar))
                return has_changed;
            if (id == vela_dt_struct)
                begin_object(value, property);
            else
                begin_array(value, property);
            return false;
        }
        catch (const std::bad_cast&)
        {
            throw WrongTypeError(id);
        }
    }

    template <class T>
    static bool set_scalar(const Value& value, VProp& property)
    {
        const T converted = detail::convert<T>(value);
        if (std::as_const(property).get<T>() == converted)
            return false;
        property = converted;
        return true;
    }

    void begin_object(const Value& value, VProp& property)
    {
        const Value::Object* const object = value.if_object();
        if (object == nullptr)
            detail::throw_bad_cast();
        open.emplace_back(std::in_place_type<OpenObject>, *object, property.get<VPropstruct>());
    }

    void begin_array(const Value& value, VProp& property)
    {
        const vela_dt id = property.get_id();
        const auto write_array = [&]<class T>(Type<T>) { set_array<T>(value, property); };
        const vela_dt element = id & ~vela_dt_array;
        if (id == element || !value.is_list())
            detail::throw_bad_cast();
        if (id == VProp::type_id<VProparray<VProp>>)
            open_array<VProp>(value, property);
        else if (element == vela_dt_struct)
            open_array<VPropstruct>(value, property);
        else if (!vela_prop::with_number_type(element, write_array) &&
                 !vela_prop::with_type_of<bool, VPropstring>(element, write_array))
            detail::throw_bad_cast();
    }

    template <class T>
    static ListElements elements_for(const Value& value, const VProp& array)
    {
        return ListElements(value, detail::shape_of(array.get<VProparray<T>>()));
    }

    template <class T>
    static void set_array(const Value& value, VProp& property)
    {
        ListElements elements = elements_for<T>(value, property);
        auto target = property.get<VProparray<T>>().begin();
        while (const Value* const element = elements.next())
            *target++ = detail::convert<T>(*element);
    }

    template <class T>
    void open_array(const Value& value, VProp& property)
    {
        ListElements elements = elements_for<T>(value, property);
        open.emplace_back(OpenArray<T>{std::move(elements), property.get<VProparray<T>>().begin()});
    }

    /// These go on with an open container, until they answer false.
    bool step(OpenObject& object)
    {
        object.key = nullptr;
        if (object.entry == object.end)
            return false;
        const auto& [key, value] = *object.entry++;
        VProp* const member = object.finder.find(key);
        if (member == nullptr)
            throw std::invalid_argument("No property '" + key + "'");
        object.key = &key;
        begin(value, *member);
        return true;
    }

    bool step(OpenArray<VProp>& array)
    {
        const Value* const value = next_element(array);
        if (value == nullptr)
            return false;
        begin(*value, *array.target++);
        return true;
    }

    bool step(OpenArray<VPropstruct>& array)
    {
        const Value* const value = next_element(array);
        if (value == nullptr)
            return false;
        const Value::Object* const object = value->if_object();
        if (object == nullptr)
            throw WrongTypeError(VProp::type_id<VProparray<VPropstruct>>);
        open.emplace_back(std::in_place_type<OpenObject>, *object, *array.target++);
        return true;
    }

    template <class T>
    static const Value* next_element(OpenArray<T>& array)
    {
        try
        {
            return array.elements.next();
        }
        catch (const std::bad_cast&)
        {
            throw WrongTypeError(VProp::type_id<VProparray<T>>);
        }
    }

    std::vector<std::variant<OpenObject, OpenArray<VProp>, OpenArray<VPropstruct>>> open;
};

}

bool set_value(const Value& value, VProp& property)
{
    Writer writer;
    try
    {
        return writer.write(value, property);
    }
    catch (const std::invalid_argument& error)
    {
        const std::string place = writer.place();
        if (place.empty())
            throw;
        throw std::invalid_argument(place + error.what());
    }
}

VELA_ABI_NAMESPACE_END
}
