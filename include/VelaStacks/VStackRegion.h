/// Boxes of a stack.
#pragma once

#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>
#include <VelaProps/VProparray.h>

#include <cstdint>
#include <vector>

class VStackInfoInterface;

/// A box in pixels, the order of its axes, and the sample type in which it is wanted.
///
/// A value: copies are independent, and the fields belong to everybody. The box may reach beyond the stack: `validate`
/// resolves it into what there is to read and where that lands.
///
///     VStackRegion region;
///     region.create(stack, 0);    // all of it
///     region.begin[2] = 7;        // the plane Z = 7 ...
///     region.permutation = {1, 0}; // ... with X and Y exchanged
class VELA_API VStackRegion
{
public:
    /// In `end`: up to the end of the stack.
    static constexpr std::int64_t unspecified = INT64_MAX;

    /// No axes, type 0.
    VStackRegion();

    /// All of a stack of these sizes, with its axes in their order. A size that `end` cannot hold becomes `unspecified`.
    void create(std::vector<std::uint64_t> sizes, vela_dt new_dt);

    /// All of the stack `info`, which must not be null; `new_dt` 0 is the type of the stack.
    void create(const VStackInfoInterface* info, vela_dt new_dt);

    /// Whether an axis has its begin at or behind its end. No for a region without axes. Looks at as many axes as
    /// `begin` and `end` both have.
    bool is_empty() const;

    /// The product of `end` - `begin`; 1 for a region without axes. Looks at the same axes as `is_empty`.
    /// @throws VelaError id -1 "Invalid region!": a begin lies behind its end
    /// @throws VelaError id -1 "The product exceeds the maximum size.": more pixels than can be counted
    std::uint64_t get_num_pixels() const;

    /// The sizes of what the region gives of the stack `info`, one for each entry of `permutation`. `exact` says whether
    /// all of it lies in the stack; what lies outside, the stack has no samples for.
    ///
    /// An axis of the region that the stack does not have behaves as one of size 1, and is not exact; an unspecified end
    /// is one behind the begin there. An axis of the stack that `permutation` does not name is cut to one slice at its
    /// `begin`, or at pixel 0 where `begin` does not reach it. A slice outside the stack does not change `exact`: this
    /// is wanted.
    ///
    /// @throws VelaError id -1 "Called on invalid region!": `begin` and `end` have different lengths, an end lies before its
    ///         begin, or an axis has more pixels than `std::int64_t` counts
    /// @throws VelaError id -15 "Invalid permutation!": an axis that `begin` does not have, or the same twice
    std::vector<std::uint64_t> validate(const VStackInfoInterface* info, bool& exact) const;

    /// The same, and the two boxes that meet: `source`, the part of the stack that there is to read, with an axis for
    /// each of the stack, and `target`, the part of the output that it fills, with an axis for each of the output.
    ///
    /// Unless one of them is empty by `is_empty`, which it is where there is nothing to read, both have as many samples, and
    /// they meet one by one when both are walked in the order of their permutations: first the axes that both have,
    /// ascending in the stack, then the others, ascending. `source.dt` is the type of the stack.
    ///
    /// `source` and `target` may be this region. A failure does not change them.
    /// @throws VelaError as the other form
    std::vector<std::uint64_t> validate(const VStackInfoInterface* info, bool& exact, VStackRegion& source,
                                        VStackRegion& target) const;

    vela_dt dt = vela_dt_none;              ///< 0 keeps the type of the stack
    std::vector<std::int64_t> begin;        ///< the first pixel along each axis of the stack; may be negative
    std::vector<std::int64_t> end;          ///< one behind the last, or `unspecified`
    std::vector<std::uint64_t> permutation; ///< for each axis of the output the axis of the stack that feeds it
};

/// A box in physical coordinates. The library only carries it.
class VELA_API VStackPhysicalRegion
{
public:
    /// Bounds of 0 and the identity, for `rank` axes.
    /// @throws VelaError id -1 "Invalid size set!": a matrix with more elements than can be counted
    /// @throws std::length_error or std::bad_alloc: more than memory holds
    explicit VStackPhysicalRegion(std::uint64_t rank);

    vela_dt dt = vela_dt_none;
    std::vector<double> lower;
    std::vector<double> upper;
    VProparray<double> matrix; ///< rank by rank
};
