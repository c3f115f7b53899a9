/// The OME document of a TIFF file.
#pragma once

#include "footer.h"

#include <VelaStacks/VStackInfo.h>

#include <array>
#include <cstdint>
#include <string>

/// A stack as planes of X and Y along three further axes.
struct OmePlanes
{
    /// Readers count the pages of a TIFF file in 16 bits.
    static constexpr std::uint64_t max_planes = 65535;

    /// Axes with the labels Z, T and C are these; others take what is left, in that order.
    ///
    /// @throws std::runtime_error: the stack has no samples, more than five axes or too many planes.
    explicit OmePlanes(const VStackInfoInterface& stack);

    std::uint64_t get_count() const { return sizes[2] * sizes[3] * sizes[4]; }

    std::array<std::uint64_t, 5> sizes = {1, 1, 1, 1, 1}; ///< in the order of the stack
    std::string order = "XY";                             ///< letters of the axes, such as "XYZTC"
};

/// A document that the OME 2015-01 schema accepts: one image, whose planes are the pages in the order of the stack. `footer`
/// tells units that were set from those that the library answers; axes of length 1 without unit were never measured.
///
/// @throws std::runtime_error: OME has no such type of samples.
std::string ome_document(const VStackInfoInterface& stack, const FooterParts& footer, const OmePlanes& planes);
