/// The command `vbf export`.
#pragma once

#include <cstdint>
#include <string>

struct ExportOptions
{
    std::string path;
    std::uint64_t index = 0;
    std::string out;
};

/// Writes a stack as a TIFF file with an OME document, a page for each plane, compressed with deflate. One of 4 GB and more
/// becomes a BigTIFF. Shows how far it is.
///
/// @throws UsageFailure: the output is the input.
/// @throws VelaError as `VBFFile` does
/// @throws std::runtime_error as `OmePlanes` and `ome_document` do, or with libtiff's message. An older file stays then.
void export_stack(const ExportOptions& options);
