#include "benchmarks/peers.h"

#include <hdf5.h>

#include <cstdio>
#include <cstdlib>

namespace vela_bench {

namespace {

template <class Result>
Result checked(Result result)
{
    if (result < 0)
    {
        std::fprintf(stderr, "HDF5 failed\n");
        std::abort();
    }
    return result;
}

hid_t type_of(vela_dt dt)
{
    switch (dt)
    {
    case vela_dt_uint8:
        return H5T_NATIVE_UINT8;
    case vela_dt_uint16:
        return H5T_NATIVE_UINT16;
    case vela_dt_single:
        return H5T_NATIVE_FLOAT;
    default:
        std::fprintf(stderr, "no HDF5 type for sample type %d\n", dt);
        std::abort();
    }
}

std::string name_of(int index)
{
    return "stack" + std::to_string(index);
}

} // namespace

void write_hdf5(const std::string& path, const ImageData& data, int level)
{
    const hsize_t dims[3] = {data.sizes[2], data.sizes[1], data.sizes[0]};
    const hsize_t chunk[3] = {1, dims[1], dims[2]};
    const hid_t file = checked(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
    const hid_t space = checked(H5Screate_simple(3, dims, nullptr));
    const hid_t creation = checked(H5Pcreate(H5P_DATASET_CREATE));
    if (level > 0)
    {
        checked(H5Pset_chunk(creation, 3, chunk));
        checked(H5Pset_deflate(creation, static_cast<unsigned>(level)));
    }
    const hid_t dataset =
        checked(H5Dcreate2(file, "stack", type_of(data.dt), space, H5P_DEFAULT, creation, H5P_DEFAULT));
    checked(H5Dwrite(dataset, type_of(data.dt), H5S_ALL, H5S_ALL, H5P_DEFAULT, data.bytes.data()));
    checked(H5Dclose(dataset));
    checked(H5Pclose(creation));
    checked(H5Sclose(space));
    checked(H5Fclose(file));
}

void read_hdf5(const std::string& path, const ImageData& shape, std::vector<unsigned char>& bytes)
{
    const hid_t file = checked(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    const hid_t dataset = checked(H5Dopen2(file, "stack", H5P_DEFAULT));
    checked(H5Dread(dataset, type_of(shape.dt), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()));
    checked(H5Dclose(dataset));
    checked(H5Fclose(file));
}

OpenHdf5::OpenHdf5(const std::string& path, const ImageData& in_shape)
    : shape(in_shape), file(checked(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT))),
      access(checked(H5Pcreate(H5P_DATASET_ACCESS)))
{
    checked(H5Pset_chunk_cache(access, 0, 0, 0));
    dataset = checked(H5Dopen2(file, "stack", access));
    space = checked(H5Dget_space(dataset));
}

OpenHdf5::~OpenHdf5()
{
    checked(H5Sclose(space));
    checked(H5Dclose(dataset));
    checked(H5Pclose(access));
    checked(H5Fclose(file));
}

void OpenHdf5::read_plane(std::uint64_t plane, unsigned char* bytes)
{
    const hsize_t start[3] = {plane, 0, 0};
    const hsize_t count[3] = {1, shape.sizes[1], shape.sizes[0]};
    checked(H5Sselect_hyperslab(space, H5S_SELECT_SET, start, nullptr, count, nullptr));
    const hid_t memory = checked(H5Screate_simple(3, count, nullptr));
    checked(H5Dread(dataset, type_of(shape.dt), memory, space, H5P_DEFAULT, bytes));
    checked(H5Sclose(memory));
}

void write_hdf5_datasets(const std::string& path, int count, std::uint64_t side)
{
    const hsize_t dims[2] = {side, side};
    const std::vector<unsigned char> bytes(side * side, 7);
    const hid_t file = checked(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
    const hid_t space = checked(H5Screate_simple(2, dims, nullptr));
    for (int i = 0; i < count; ++i)
    {
        const hid_t dataset = checked(
            H5Dcreate2(file, name_of(i).c_str(), H5T_NATIVE_UINT8, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        checked(H5Dwrite(dataset, H5T_NATIVE_UINT8, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()));
        checked(H5Dclose(dataset));
    }
    checked(H5Sclose(space));
    checked(H5Fclose(file));
}

std::uint64_t open_hdf5_datasets(const std::string& path, int count)
{
    const hid_t file = checked(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    std::uint64_t elements = 0;
    std::vector<hid_t> datasets;
    for (int i = 0; i < count; ++i)
    {
        datasets.push_back(checked(H5Dopen2(file, name_of(i).c_str(), H5P_DEFAULT)));
        const hid_t space = checked(H5Dget_space(datasets.back()));
        elements += static_cast<std::uint64_t>(checked(H5Sget_simple_extent_npoints(space)));
        checked(H5Sclose(space));
    }
    for (const hid_t dataset : datasets)
        checked(H5Dclose(dataset));
    checked(H5Fclose(file));
    return elements;
}

} // namespace vela_bench
