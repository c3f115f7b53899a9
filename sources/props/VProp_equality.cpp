// Trees of any depth are compared with a stack of the containers that are still to be compared.

#include "sources/props/value_types.h"

#include <algorithm>
#include <vector>

namespace {

class Comparison
{
public:
    /// False: they differ. True: as far as is known now, they do not.
    bool compare(const VProp& left, const VProp& right)
    {
        const vela_dt id = right.get_id();
        if (left.get_id() != id)
            return false;
        if (left.empty())
            return true;
        bool result = false;
        const auto compare_as = [&]<class T>(vela_prop::Type<T>) { result = compare(left.get<T>(), right.get<T>()); };
        const auto compare_element = [&]<class T>(vela_prop::Type<T> type)
        {
            if ((id & vela_dt_array) != 0)
                compare_as(vela_prop::Type<VProparray<T>>());
            else
                compare_as(type);
        };
        const vela_dt element_id = id & ~vela_dt_array;
        if (!vela_prop::with_scalar_type(element_id, compare_element) &&
            !vela_prop::with_type_of<VPropstring, VPropstruct>(element_id, compare_element))
            vela_prop::with_type_of<_s_vela_RGB, VProparray<VProp>>(id, compare_as);
        return result;
    }

    bool finish()
    {
        while (!structs.empty() || !cells.empty())
        {
            if (!structs.empty())
            {
                const auto [left, right] = take(structs);
                if (!compare_members(*left, *right))
                    return false;
            }
            else
            {
                const auto [left, right] = take(cells);
                if (!std::equal(left->begin(), left->end(), right->begin(), right->end(),
                                [this](const VProp& a, const VProp& b) { return compare(a, b); }))
                    return false;
            }
        }
        return true;
    }

private:
    template <class T>
    using Pairs = std::vector<std::pair<const T*, const T*>>;

    template <class T>
    static std::pair<const T*, const T*> take(Pairs<T>& pairs)
    {
        const auto last = pairs.back();
        pairs.pop_back();
        return last;
    }

    template <class T>
    bool compare(const T& left, const T& right)
    {
        return left == right;
    }

    template <class T>
    bool compare(const VProparray<T>& left, const VProparray<T>& right)
    {
        return static_cast<const std::vector<T>&>(left) == static_cast<const std::vector<T>&>(right);
    }

    bool compare(const VPropstruct& left, const VPropstruct& right)
    {
        structs.emplace_back(&left, &right);
        return true;
    }

    bool compare(const VProparray<VProp>& left, const VProparray<VProp>& right)
    {
        cells.emplace_back(&left, &right);
        return true;
    }

    bool compare(const VProparray<VPropstruct>& left, const VProparray<VPropstruct>& right)
    {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [this](const VPropstruct& a, const VPropstruct& b) { return compare(a, b); });
    }

    bool compare_members(const VPropstruct& left, const VPropstruct& right)
    {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [this](const auto& a, const auto& b)
                          { return a.first == b.first && compare(a.second, b.second); });
    }

    Pairs<VPropstruct> structs;
    Pairs<VProparray<VProp>> cells;
};

}

bool VProp::operator==(const VProp& other) const
{
    Comparison comparison;
    return comparison.compare(*this, other) && comparison.finish();
}
