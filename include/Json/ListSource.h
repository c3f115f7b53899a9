/// Where the elements of a list come from that nobody has looked at yet.
#pragma once

#include <VelaBase/export.h>

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <list>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

struct Value;

/// Makes the elements of a list when they are first looked at.
///
/// A list of a million elements that follow from a handful of numbers is held as those numbers: the
/// value knows its kind and its count, and fills itself from the front, as far as it is looked at. What a source
/// gives never changes; copies of the value share it, unless it has another for them.
class VELA_API ListSource
{
public:
    virtual ~ListSource();

    /// The count of all elements of the list.
    virtual std::size_t count() const = 0;

    /// Appends to `list`, which holds the elements before `list.size()`, those up to `end`, at most `count()`.
    /// A failure leaves those appended so far.
    virtual void fill(std::list<Value>& list, std::size_t end) const = 0;

    /// The source of a copy of the list, which gives the same elements; null: this one.
    virtual boost::shared_ptr<const ListSource> source_of_copy() const { return nullptr; }

protected:
    ListSource() = default;
    ListSource(const ListSource&) = default;
    ListSource& operator=(const ListSource&) = default;
};

VELA_ABI_NAMESPACE_END
}
