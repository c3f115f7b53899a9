/// Other ways of writing and reading the same image data: the bare system, HDF5 and libtiff.
///
/// Every function opens the file, does its work and closes it. Level 0 is without compression. Failures end the program.
#pragma once

#include "benchmarks/image_data.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vela_bench {

/// In calls of 4 MiB.
void write_raw(const std::string& path, const ImageData& data);
void read_raw(const std::string& path, std::vector<unsigned char>& bytes);

/// One dataset: contiguous, or in chunks of one plane with gzip.
void write_hdf5(const std::string& path, const ImageData& data, int level);
void read_hdf5(const std::string& path, const ImageData& shape, std::vector<unsigned char>& bytes);

/// One directory of one strip for each plane.
void write_tiff(const std::string& path, const ImageData& data, int level);
void read_tiff(const std::string& path, const ImageData& shape, std::vector<unsigned char>& bytes);

/// A dataset that stays open, for single planes. Chunks are not kept.
class OpenHdf5
{
public:
    OpenHdf5(const std::string& path, const ImageData& shape);
    OpenHdf5(const OpenHdf5&) = delete;
    OpenHdf5& operator=(const OpenHdf5&) = delete;
    ~OpenHdf5();
    void read_plane(std::uint64_t plane, unsigned char* bytes);

private:
    const ImageData& shape;
    std::int64_t file;
    std::int64_t access;
    std::int64_t dataset;
    std::int64_t space;
};

/// `count` datasets of `side` x `side` bytes.
void write_hdf5_datasets(const std::string& path, int count, std::uint64_t side);
/// Opens and closes each, which stays open until all are; returns their number of elements.
std::uint64_t open_hdf5_datasets(const std::string& path, int count);

} // namespace vela_bench
