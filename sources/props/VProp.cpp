#include "sources/props/value_types.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

using Container = VProp::placeholder;

/// Containers that are still to be destroyed, in a chain: the count of those who share is free by then. So destroying
/// a tree neither recurses by its depth nor takes memory.
class Destruction
{
public:
    static void destroy(Container* container) noexcept
    {
        container->refcount = reinterpret_cast<std::uintptr_t>(waiting);
        waiting = container;
        if (running)
            return;
        running = true;
        while (waiting)
        {
            Container* const next = waiting;
            waiting = reinterpret_cast<Container*>(static_cast<std::uintptr_t>(next->refcount));
            delete next;
        }
        running = false;
    }

private:
    static thread_local Container* waiting;
    static thread_local bool running;
};

thread_local Container* Destruction::waiting = nullptr;
thread_local bool Destruction::running = false;

static_assert(sizeof(std::uintptr_t) <= sizeof(std::uint64_t), "the chain lies in the counts");

}

namespace {

/// While a container is cloned: the copies of values that are locked, which share a container until it is their turn.
thread_local std::vector<VProp*>* copies_to_clone = nullptr;

/// Sets the above for as long as this lives.
class CopyList
{
public:
    CopyList() : outer_(std::exchange(copies_to_clone, &list)) {}
    CopyList(const CopyList&) = delete;
    CopyList& operator=(const CopyList&) = delete;
    ~CopyList() { copies_to_clone = outer_; }

    std::vector<VProp*> list;

private:
    std::vector<VProp*>* outer_;
};

}

/// Members that are locked are cloned too, but one after the other, so that the depth of a tree does not matter.
VProp::placeholder* VProp::clone(const placeholder& container)
{
    CopyList copies;
    std::unique_ptr<placeholder> made(container.clone());
    while (!copies.list.empty())
    {
        VProp& copy = *copies.list.back();
        copies.list.pop_back();
        placeholder* const shared = copy.content;
        copy.content = shared->clone();
        --shared->refcount;
    }
    return made.release();
}

VProp::placeholder::placeholder() = default;
VProp::placeholder::~placeholder() = default;

/// For a new copy of a value that is locked.
void VProp::share_locked()
{
    if (copies_to_clone == nullptr)
    {
        content = clone(*content);
        return;
    }
    copies_to_clone->push_back(this);
    ++content->refcount;
}

VProp::VProp(const std::string& text) : VProp(VPropstring(text, VPropstring::enc_system)) {}

VProp::VProp(const char* text) : VProp(VPropstring(text, VPropstring::enc_system)) {}

VProp::VProp(const std::wstring& text) : VProp(VPropstring(text)) {}

VProp::VProp(const wchar_t* text) : VProp(VPropstring(text)) {}

VProp& VProp::operator=(const VProp& other)
{
    VProp copy(other);
    return swap(copy);
}

void VProp::destroy(placeholder* container) noexcept
{
    Destruction::destroy(container);
}

void VProp::detach()
{
    placeholder* const shared = content;
    content = clone(*shared);
    --shared->refcount;
}

const void* VProp::value_ptr() const
{
    return static_cast<const placeholder*>(content)->value_ptr();
}

void* VProp::value_ptr()
{
    return content->value_ptr();
}

void VProp::throw_mismatch(vela_dt expected) const
{
    const auto brackets = [](vela_dt id) { return (id & vela_dt_array) != 0 ? "[]" : ""; };
    const vela_dt found = get_id();
    throw VelaError("VProp::get", __FILE__, __LINE__)("Type mismatch: found %s%s, expected %s%s",
                                                      vela_dt_get_name(found), brackets(found),
                                                      vela_dt_get_name(expected), brackets(expected))(-1);
}

VProparrayBase* VProp::get_arr(bool demand) const
{
    VProparrayBase* base = nullptr;
    vela_prop::with_array_type(get_id(),
                               [&]<class T>(vela_prop::Type<T>) { base = &static_cast<holder<T>*>(content)->value; });
    if (base == nullptr && demand)
        throw VelaError("VProp::get_arr", __FILE__, __LINE__)("Type mismatch: expected 'array' type!")(-1);
    return base;
}

bool VProp::lock() const noexcept
{
    if (content == nullptr)
        return true;
    if (content->refcount != 1)
        return false;
    content->locked = true;
    return true;
}

VProp& VProp::swap(VProp& other) noexcept
{
    info.swap(other.info);
    return swap_value(other);
}

VProp& VProp::swap_value(VProp& other) noexcept
{
    std::swap(content, other.content);
    return *this;
}

void VProp::clear() noexcept
{
    VProp old; // whose end may look at this value
    swap_value(old);
}

VProp& VProp::operator()(std::size_t a, std::size_t b, std::size_t c, std::size_t d)
{
    return ensure_array<VProp>(0).at(VProparrayBase::val2pos(a, b, c, d), true);
}

const VProp& VProp::operator()(std::size_t a, std::size_t b, std::size_t c, std::size_t d) const
{
    return get<VProparray<VProp>>().at(VProparrayBase::val2pos(a, b, c, d));
}

VPropstruct& VProp::s(std::size_t a, std::size_t b, std::size_t c, std::size_t d)
{
    return ensure_array<VPropstruct>(0).at(VProparrayBase::val2pos(a, b, c, d), true);
}

const VPropstruct& VProp::s(std::size_t a, std::size_t b, std::size_t c, std::size_t d) const
{
    return get<VProparray<VPropstruct>>().at(VProparrayBase::val2pos(a, b, c, d));
}
