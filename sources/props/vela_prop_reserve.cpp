#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

namespace {

template <class Element, class Move>
void reserve_exactly(std::vector<Element>& v, std::size_t n, Move move)
{
    if (n < v.capacity())
        return;
    std::vector<Element> grown;
    grown.reserve(n);
    grown.resize(v.size());
    for (std::size_t i = 0; i < v.size(); ++i)
        move(v[i], grown[i]);
    v.swap(grown);
}

}

void vela_prop_reserve(std::vector<VProp>& v, std::size_t n)
{
    reserve_exactly(v, n, [](VProp& from, VProp& to) { to.swap(from); });
}

void vela_prop_reserve(std::vector<std::pair<std::string, VProp>>& v, std::size_t n)
{
    reserve_exactly(v, n,
                    [](auto& from, auto& to)
                    {
                        to.first.swap(from.first);
                        to.second.swap(from.second);
                    });
}
