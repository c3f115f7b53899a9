/// The base of the OME records.
#pragma once

#include <Json/SignalingReference.h>
#include <Ome/Id.h>
#include <Ome/checks.h>
#include <VelaBase/export.h>

#include <cstddef>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// A typed view over one element of a value tree.
///
/// An element is an object: its attributes are the keys of that object, its content stands under the key "", and
/// child elements are keys of the content. A record binds a field to each of its slots, which makes the
/// slots that are missing, null; it holds no data of its own and must not outlive the tree. The owner of both
/// declares the tree first. Records are neither copied nor moved.
///
/// The line of a field says what it may hold (`checks.h`), where its slot is, and its default: reading is `get` or
/// conversion, writing is assignment, which throws `std::bad_cast` "bad cast" for what the field may not hold, and
/// leaves it as it was.
///
/// Making a record over a tree throws `std::bad_cast` "bad cast" where a slot holds what its field may not hold.
///
/// `Reference` is `Json::SignalingReference`, the one for which the library has the records.
template <class Reference>
struct VELA_API Element
{
    template <class T>
    using Field = typename Reference::template Field<T>;
    using Binding = typename Reference::Binding;

    /// Binds the slot, and assigns a default that is not null. `index` goes into the default of an ID; with 0
    /// there is none.
    Element(const Binding& slot, const Json::Value& default_value, std::size_t index);
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    Field<check::Structure> structure; ///< the element itself

protected:
    /// The slot of an attribute, or with "" of the content, of this element.
    Binding own(const char* key) const { return in(structure, key); }

    /// The slot under `key` of another object of the record.
    Binding in(const Field<check::Structure>& object, const char* key) const;

    Json::Value default_id(const char* name) const { return Id(name, settled() ? 0 : index_); }

    /// The slots were checked and given their defaults when the element was made; now they are only bound.
    bool settled() const { return index_ == settled_index; }

private:
    /// In place of an index where the slots are settled.
    static constexpr std::size_t settled_index = static_cast<std::size_t>(-1);

    std::size_t index_;
};

extern template struct Element<Json::SignalingReference>;

VELA_ABI_NAMESPACE_END
}
