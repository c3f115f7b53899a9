/// Walks through property trees.
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <string>
#include <vector>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // the table of virtual operations is fixed
#endif

/// A place in a property tree: a key and an index for each level.
///
/// A level that is not an element of an array has an index with all bits set.
class VELA_API VPropPos
{
public:
    static constexpr std::size_t no_index = static_cast<std::size_t>(-1);

    VPropPos();
    VPropPos(const VPropPos& other);
    VPropPos(VPropPos&& other) noexcept;
    VPropPos& operator=(const VPropPos& other);
    VPropPos& operator=(VPropPos&& other) noexcept;
    ~VPropPos();

    /// Back to the top.
    virtual void reset();
    /// A level down, to a member. True.
    virtual bool decend(const std::string& key);
    /// A level down, to an element, without a key. True.
    virtual bool decend(std::size_t index);
    /// Gives the innermost level another key. False, and nothing else, at the top.
    virtual bool set_key(const std::string& key);
    /// A level up. Not at the top.
    virtual void ascend();

    /// Of the innermost level; `no_index` at the top.
    std::size_t get_cur_idx() const;
    /// Of the innermost level; empty at the top.
    std::string get_cur_key() const;

protected:
    std::vector<std::string> keys;
    std::vector<std::size_t> indices;
};

/// A walk through a property tree, depth first, that calls virtual operations for each value. For one walk on
/// one thread; the tree must not change meanwhile.
///
/// The walk does not recurse, whatever the depth of the tree.
class VELA_API VPropVisitor : public VPropPos
{
public:
    VPropVisitor();
    VPropVisitor(const VPropVisitor& other);
    VPropVisitor(VPropVisitor&& other) noexcept;
    VPropVisitor& operator=(const VPropVisitor& other);
    VPropVisitor& operator=(VPropVisitor&& other) noexcept;
    ~VPropVisitor();

    /// Walks through `prop`. False where a visit has stopped the walk; then the place stays where that was, and
    /// so it does when a visit throws.
    ///
    /// A level is gone down for each element of a cell array or struct array, and for the members of a struct, which
    /// have the keys of that level one after the other. The strings of an array have no level, only `string_idx`.
    ///
    /// @throws VelaError id -1 "Invalid return value from visit()!": a visit of a value gave something else than 0, 1,
    ///         2
    bool process(const VProp& prop);

    /// The place as a path, of at most `depth` levels, to show it: the members of a struct array's element are
    /// left out, so it does not always lead back to the value.
    std::string get_cur_path(std::size_t depth = no_index) const;

protected:
    /// A string of an array of strings. False stops the walk.
    virtual bool visit(const VPropstring& text);
    /// A struct of an array of structs: 0 stops the walk, 1 goes on into its members, all else leaves them out.
    virtual int visit(const VPropstruct& members);
    /// Any value: 0 stops the walk, 1 goes on into what it holds, 2 leaves that out.
    virtual int visit(const VProp& prop);
    /// Behind a struct of an array of structs. The answer does not count.
    virtual int visit_exit(const VPropstruct& members);
    /// Behind a value and what it holds. False stops the walk.
    virtual bool visit_exit(const VProp& prop);

    /// Walks through the members, on the level where the place is. False where a visit has stopped the walk.
    bool process(const VPropstruct& members);

    /// Cell arrays, struct arrays, string arrays and structs; arrays of numbers are not gone into.
    bool is_container(const VProp& prop) const;

    std::size_t string_idx = no_index;    ///< of the string that is visited
    std::vector<const VProp*> containers; ///< those that are walked through, outermost first

private:
    class Walk;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
