/// Where a stack lies in global coordinates.
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VProparray.h>
#include <VelaProps/VPropstring.h>

#include <cstdint>
#include <vector>

class VStackInfoInterface;

/// Global axes with labels and an origin, and a matrix that maps the axes of the stack to them.
///
/// A value: copies are independent. The fields belong to everybody; `is_valid_for` tells whether they fit together.
class VELA_API VStackPosition
{
public:
    /// No axes: all arrays are empty, `labels` and `origin` of rank 1, `matrix` of rank 2.
    VStackPosition();

    /// Makes `n` global axes for a stack of these sizes, of which only the count matters; `n` 0 is as many as the stack
    /// has axes. Labels become empty, the origin 0, and the matrix 0 with 1 at (i, i) for each axis i of the stack.
    /// A failure leaves the position as it was.
    /// @throws VelaError id -1 "Rank cannot be larger than the number of global axes!": the stack has more than `n` axes
    /// @throws VelaError id -1 "Invalid size set!": a matrix with more elements than can be counted
    /// @throws std::length_error or std::bad_alloc: more than memory holds
    void create(const std::vector<std::uint64_t>& sizes, std::uint64_t n);

    /// The same for the sizes of `info`, which must not be null; the labels of its axes become the first labels here,
    /// read in the system's encoding.
    /// @throws as the other form
    void create(const VStackInfoInterface* info, std::uint64_t n);

    /// Whether labels and origin have rank 1 and one length, and the matrix has two sizes: that length, and
    /// the rank of `info`. No for arrays whose sizes do not fit their elements.
    bool is_valid_for(const VStackInfoInterface* info) const;

    VProparray<VPropstring> labels; ///< one for each global axis, rank 1
    VProparray<double> origin;      ///< one for each global axis, rank 1
    VProparray<double> matrix;      ///< global axes by stack axes, rank 2; the global axis runs fastest
};
