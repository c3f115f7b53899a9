#include "json/tree.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

struct TreeCopier
{
    /// Copies the elements that own no values, and notes the others.
    void copy(const Value& source, Value& target)
    {
        if (const Value::Object* object = source.if_object())
        {
            target.as_object().clone_from(*object,
                                          [this](const Value& child, Value& copy) { copy_child(child, copy); });
            return;
        }
        target.set_list_source(source_of_copy(source.list_source()));
        Value::List& copies = target.list_.elements;
        for (const Value& child : source.list_.elements)
            copy_child(child, copies.emplace_back());
    }

    static boost::shared_ptr<const ListSource> source_of_copy(const boost::shared_ptr<const ListSource>& source)
    {
        const auto other = source ? source->source_of_copy() : nullptr;
        return other ? other : source;
    }

    void copy_child(const Value& child, Value& copy)
    {
        if (child.is_list() || child.is_object())
            pending.emplace_back(&child, &copy);
        else
            copy.copy_scalar(child);
    }

    std::vector<std::pair<const Value*, Value*>> pending;
};

void copy_tree(const Value& source, Value& target)
{
    TreeCopier copier;
    copier.copy(source, target);
    while (!copier.pending.empty())
    {
        const auto [child, copy] = copier.pending.back();
        copier.pending.pop_back();
        copier.copy(*child, *copy);
    }
}

void TreeDestroyer::empty(Value& root) noexcept
{
    while (Value* child = first_nested(root))
    {
        Value inner(std::move(*child));
        if (!holds_one(root))
        {
            Value& end = last(inner);
            *child = std::move(end);
            end = std::move(root);
        }
        else
            drop_elements(root);
        root = std::move(inner);
    }
    drop_elements(root);
}

/// The first element that is a container with containers in it. Elements before it are taken away.
Value* TreeDestroyer::first_nested(Value& container) noexcept
{
    if (container.is_list())
    {
        Value::List& elements = container.list_.elements;
        while (!elements.empty() && !is_nested(elements.front()))
            elements.pop_front();
        return elements.empty() ? nullptr : &elements.front();
    }
    Value::Object& entries = container.object_;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
    {
        if (!is_nested(entry->second))
            continue;
        entries.erase(entries.begin(), entry); // entries that stay are looked at again
        return &entry->second;
    }
    return nullptr;
}

bool TreeDestroyer::is_nested(const Value& child) noexcept
{
    if (child.is_list())
    {
        for (const Value& element : child.list_.elements)
            if (!is_empty(element))
                return true;
    }
    else if (child.is_object())
    {
        for (const auto& entry : child.object_)
            if (!is_empty(entry.second))
                return true;
    }
    return false;
}

/// No container, or one without elements.
bool TreeDestroyer::is_empty(const Value& value) noexcept
{
    if (value.is_list())
        return value.list_.elements.empty();
    return !value.is_object() || value.object_.empty();
}

bool TreeDestroyer::holds_one(const Value& container) noexcept
{
    return container.is_list() ? container.list_.elements.size() == 1 : container.object_.size() == 1;
}

Value& TreeDestroyer::last(Value& container) noexcept
{
    return container.is_list() ? container.list_.elements.back() : container.object_.rbegin()->second;
}

void TreeDestroyer::drop_elements(Value& container) noexcept
{
    if (container.is_list())
        container.list_.elements.clear();
    else
        container.object_.clear();
}

} // namespace detail

namespace {

/// Pairs of values that still have to be compared, but for those that own no values.
class Comparison
{
public:
    /// False: they differ. True: as far as is known now, they do not.
    bool compare(const Value& left, const Value& right)
    {
        if (left.kind() != right.kind())
            return false;
        switch (left.kind())
        {
        case Value::Kind::null:
            return true;
        case Value::Kind::boolean:
            return *left.if_boolean() == *right.if_boolean();
        case Value::Kind::integer:
            return *left.if_integer() == *right.if_integer();
        case Value::Kind::decimal:
            return *left.if_decimal() == *right.if_decimal();
        case Value::Kind::string:
            return *left.if_string() == *right.if_string();
        case Value::Kind::list:
            if (left.count() != right.count()) // known without filling them
                return false;
            [[fallthrough]];
        case Value::Kind::object:
            pending_.emplace_back(&left, &right);
            return true;
        }
        detail::throw_bad_cast();
    }

    bool finish()
    {
        while (!pending_.empty())
        {
            const auto [left, right] = pending_.back();
            pending_.pop_back();
            if (!(left->is_list() ? compare_lists(*left->if_list(), *right->if_list())
                                  : compare_objects(*left->if_object(), *right->if_object())))
                return false;
        }
        return true;
    }

private:
    bool compare_lists(const Value::List& left, const Value::List& right)
    {
        return left.size() == right.size() &&
               std::equal(left.begin(), left.end(), right.begin(),
                          [this](const Value& a, const Value& b) { return compare(a, b); });
    }

    bool compare_objects(const Value::Object& left, const Value::Object& right)
    {
        return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                         [this](const auto& a, const auto& b)
                                                         { return a.first == b.first && compare(a.second, b.second); });
    }

    std::vector<std::pair<const Value*, const Value*>> pending_;
};

}

bool operator==(const Value& left, const Value& right)
{
    Comparison comparison;
    return comparison.compare(left, right) && comparison.finish();
}

VELA_ABI_NAMESPACE_END
}
