/// Structs of the property tree, and the paths that walk through it.
///
/// A path is a text such as `scan.axes(2).label{1,3}`, of segments:
///
/// - a member: its name, behind a "." unless it comes first. A name begins with a letter or "_"; letters, digits, "_"
///   and "-" follow.
/// - `{i}` or `{i,j,...}`: the content of a cell array.
/// - `(i)` or `(i,j,...)`: a struct of a struct array. A member has to follow.
///
/// Indices count from 0. A single one is the place in a row, (0, i); several name every dimension. An index without
/// digits is 0. A "." at the end is ignored.
///
/// Walks that create make missing members, as empty values; the struct, cell array or struct array itself in a value
/// that is still empty; and elements, as `VProparrayBase::get_idx` grows. A value of another type is never replaced.
/// What a walk that fails has made, stays.
///
/// Walks detach (`VProp::own`) every shared container on their way, also those that only read and those through a
/// constant value: what they give must not reach into a container that is shared.
///
/// Failures; "..." and the text behind it stand for what is left of the path at that level:
///
/// - VelaError id -1 "Error parsing prop path: empty path!": where a member has to come
/// - VelaError id -1 "Error parsing prop path: '%s' starts with an empty segment!": the path begins with "."
/// - VelaError id -1 "Error parsing prop path: '%s' is not a valid name!": a member has another name
/// - VelaError id -1 "Brackets not matched in '%s'!": a segment does not end in its bracket
/// - VelaError id -1 "Invalid index '%s' specified in segment '%s'!": negative, or nothing that `int` can hold
/// - VelaError id -1 "Path ...'%s' references cell content from a non-cell array!": `{` in something else
/// - VelaError id -1 "Path ...'%s' references struct from a non-struct array!": `(` in something else
/// - VelaError id -1 "Path ...'%s' ends in struct array!": nothing behind `)`
/// - VelaError id -1 "Expected path ...'%s' to start with struct member!": a struct is given `{` or `(`
/// - VelaError id -1 "Struct member '%s' does not exist!": a missing member, without creating
/// - those of `VProp::get`, for a member of something that is no struct, and of `VProparrayBase::get_idx`
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VProp.h>

#include <string>
#include <utility>
#include <vector>

/// Named values, in the order in which they came.
///
/// A vector of key and value. Keys are compared byte for byte; the first of two equal ones, which only the interface of
/// the vector can make, hides the other. References to members are good until one is added. Looking for a key takes
/// time for every member before it. Never let the vector grow by itself: see `vela_prop_reserve`.
class VELA_API VPropstruct : public std::vector<std::pair<std::string, VProp>>
{
public:
    VPropstruct();
    VPropstruct(const VPropstruct& other);
    VPropstruct(VPropstruct&& other) noexcept;
    VPropstruct& operator=(const VPropstruct& other);
    VPropstruct& operator=(VPropstruct&& other) noexcept;
    ~VPropstruct();

    /// The value at `path`, which begins with a member. With `create`, what is missing is made on the way.
    /// @throws VelaError: see the top of this file
    VProp& getp(const std::string& path, bool create);
    const VProp& getp(const std::string& path) const;

    /// `getp(path, true)`.
    VProp& operator[](const std::string& path);
    /// `getp(path)`, which creates nothing.
    const VProp& operator[](const std::string& path) const;
    void operator[](std::nullptr_t) const = delete; ///< the number 0 is no path

    /// Whether there is a member with this key, which is no path.
    bool has_key(const std::string& key) const;

    /// Removes the first member with this key; the others keep their order. False where there is none.
    bool erase(const std::string& key);
    using std::vector<std::pair<std::string, VProp>>::erase;

    /// The first member with this key, or `end()`.
    iterator find(const std::string& key);
    const_iterator find(const std::string& key) const;
};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
extern template class VProparray<VPropstruct>;
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
extern template class VProp::holder<VPropstruct>;
extern template class VProp::holder<VProparray<VPropstruct>>;

/// Whether a member can be called so in a path: a letter or "_" first, then letters, digits, "_" and "-". ASCII alone.
VELA_API bool vela_prop_is_valid_name(const std::string& name);

/// Whether a walk along `path` that creates succeeds from an empty value, and ends in one that takes a number. The
/// memory that its indices ask for does not matter: nothing is made.
VELA_API bool vela_prop_is_valid_path(const std::string& path);
