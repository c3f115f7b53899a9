// Whole stacks and single planes through files: VBF, HDF5 and libtiff, and the bare system where nothing is compressed.
// Five kinds of images, page cache warm. TMPDIR says where the files are; a disk that is behind with writing is not
// what is measured here, so a memory file system is a good place.

#include "benchmarks/image_data.h"
#include "benchmarks/peers.h"
#include "benchmarks/ratios.h"

#include <VelaBinaryIO/VBFFile.h>
#include <VelaStacks/VStack.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using vela_bench::ImageData;

typedef std::vector<unsigned char> Bytes;

constexpr int zlib_level = 1;

std::filesystem::path folder()
{
    return std::filesystem::temp_directory_path() / "vela_vbf_benchmark";
}

std::string path_of(const std::string& what, const ImageData& data, int level)
{
    return (folder() / (data.name + '_' + std::to_string(level) + '_' + what)).string();
}

void write_vbf(const std::string& path, const ImageData& data, int level)
{
    VBFFile file(VPropstring(path, VPropstring::enc_utf8), VFile::write_mode);
    file->set_default_compression(level > 0 ? 1 : 0, level);
    const boost::shared_ptr<VBFStackInterface> stack = file->add_stack(false);
    stack->create(data.sizes, data.dt);
    stack->write(data.dt, data.bytes.data(), nullptr, VBFStackInterface::all_samples);
    file->close();
}

void read_vbf(const std::string& path, const ImageData& shape, Bytes& bytes)
{
    VBFFile file(VPropstring(path, VPropstring::enc_utf8), VFile::read_mode);
    file->get_stack(0)->read(shape.dt, bytes.data(), nullptr);
    file->close();
}

/// Each image data with each level is written once before it is read.
void write_all()
{
    std::filesystem::create_directories(folder());
    for (const ImageData& data : vela_bench::image_data())
    {
        vela_bench::write_raw(path_of("raw", data, 0), data);
        for (const int level : {0, zlib_level})
        {
            write_vbf(path_of("vbf", data, level), data, level);
            vela_bench::write_hdf5(path_of("hdf5", data, level), data, level);
            vela_bench::write_tiff(path_of("tiff", data, level), data, level);
        }
    }
}

void add(const std::string& name, std::function<void()> work, const ImageData& data)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work = std::move(work), &data](benchmark::State& state)
                                 {
                                     for (auto _ : state)
                                         work();
                                     state.SetBytesProcessed(state.iterations() *
                                                             static_cast<std::int64_t>(data.bytes.size()));
                                 })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

void add_whole(const ImageData& data, int level)
{
    const std::string kind = '/' + data.name + '/' + std::to_string(level);
    add(
        "write" + kind + "/vbf", [&data, level] { write_vbf(path_of("vbf", data, level), data, level); }, data);
    add(
        "write" + kind + "/hdf5", [&data, level] { vela_bench::write_hdf5(path_of("hdf5", data, level), data, level); },
        data);
    add(
        "write" + kind + "/tiff", [&data, level] { vela_bench::write_tiff(path_of("tiff", data, level), data, level); },
        data);
    const auto buffer = std::make_shared<Bytes>(data.bytes.size(), static_cast<unsigned char>(1));
    add(
        "read" + kind + "/vbf", [&data, level, buffer] { read_vbf(path_of("vbf", data, level), data, *buffer); }, data);
    add(
        "read" + kind + "/hdf5",
        [&data, level, buffer] { vela_bench::read_hdf5(path_of("hdf5", data, level), data, *buffer); }, data);
    add(
        "read" + kind + "/tiff",
        [&data, level, buffer] { vela_bench::read_tiff(path_of("tiff", data, level), data, *buffer); }, data);
    if (level > 0)
        return;
    add(
        "write" + kind + "/raw", [&data] { vela_bench::write_raw(path_of("raw", data, 0), data); }, data);
    add(
        "read" + kind + "/raw", [&data, buffer] { vela_bench::read_raw(path_of("raw", data, 0), *buffer); }, data);
    add(
        "read_stack" + kind + "/vbf",
        [&data]
        {
            VBFFile file(VPropstring(path_of("vbf", data, 0), VPropstring::enc_utf8), VFile::read_mode);
            benchmark::DoNotOptimize(file->read_stack(0, 0)->get_data_ptr());
        },
        data);
}

std::vector<std::uint64_t> shuffled_planes(const ImageData& data)
{
    std::vector<std::uint64_t> planes(data.sizes[2]);
    std::iota(planes.begin(), planes.end(), 0u);
    std::shuffle(planes.begin(), planes.end(), std::mt19937(5));
    return planes;
}

/// All planes in any order, from a compressed file that stays open.
void add_planes(const ImageData& data)
{
    const auto buffer = std::make_shared<Bytes>(data.plane_bytes(), static_cast<unsigned char>(1));
    const auto planes = std::make_shared<std::vector<std::uint64_t>>(shuffled_planes(data));
    add(
        "planes/" + data.name + "/vbf",
        [&data, buffer, planes]
        {
            VBFFile file(VPropstring(path_of("vbf", data, zlib_level), VPropstring::enc_utf8), VFile::read_mode);
            const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(0);
            for (const std::uint64_t plane : *planes)
            {
                std::uint64_t pos = plane * data.plane_samples();
                stack->read(data.dt, buffer->data(), nullptr, data.plane_samples(), pos);
            }
        },
        data);
    add(
        "planes/" + data.name + "/hdf5",
        [&data, buffer, planes]
        {
            vela_bench::OpenHdf5 file(path_of("hdf5", data, zlib_level), data);
            for (const std::uint64_t plane : *planes)
                file.read_plane(plane, buffer->data());
        },
        data);
    add(
        "rows/" + data.name + "/vbf",
        [&data, buffer]
        {
            VBFFile file(VPropstring(path_of("vbf", data, zlib_level), VPropstring::enc_utf8), VFile::read_mode);
            const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(0);
            std::uint64_t pos = 0;
            while (pos != VBFStackInterface::exhausted)
                stack->read(data.dt, buffer->data(), nullptr, data.sizes[0], pos);
        },
        data);
}

typedef std::vector<std::pair<std::string, std::string>> Pairs;

/// For each image data `subject/NAME/LEVEL/vbf` beside `peer/NAME/LEVEL/PEER`.
Pairs pairs(const std::string& operation, int level, const std::string& peer)
{
    Pairs all;
    for (const ImageData& data : vela_bench::image_data())
    {
        const std::string kind = operation + '/' + data.name + '/' + std::to_string(level) + '/';
        all.emplace_back(kind + "vbf", kind + peer);
    }
    return all;
}

void expect_all(const std::string& name, const Pairs& list, double limit)
{
    for (const auto& [subject, peer] : list)
        vela_bench::expect_ratio(subject + " : " + peer.substr(peer.rfind('/') + 1), subject, peer, limit);
    vela_bench::expect_mean_ratio(name + ", mean", list, limit);
}

Pairs planes_pairs(const std::string& subject, const std::string& peer)
{
    Pairs all;
    for (const ImageData& data : vela_bench::image_data())
        all.emplace_back(subject + '/' + data.name + "/vbf", peer + '/' + data.name + "/hdf5");
    return all;
}

Pairs same_file_pairs(const std::string& subject, const std::string& peer, int level, const std::string& peer_kind)
{
    Pairs all;
    for (const ImageData& data : vela_bench::image_data())
        all.emplace_back(subject + '/' + data.name + (subject == "rows" ? "" : '/' + std::to_string(level)) + "/vbf",
                         peer + '/' + data.name + '/' + std::to_string(level) + '/' + peer_kind);
    return all;
}

void expect_everything()
{
    for (const std::string operation : {"write", "read"})
    {
        expect_all("plain " + operation + " to the system", pairs(operation, 0, "raw"), 0.95);
        expect_all("plain " + operation + " to HDF5", pairs(operation, 0, "hdf5"), 0.97);
        expect_all("plain " + operation + " to libtiff", pairs(operation, 0, "tiff"), 0.97);
    }
    expect_all("read_stack to reading", same_file_pairs("read_stack", "read", 0, "raw"), 1 / 2.4);
    expect_all("compressed write to HDF5", pairs("write", zlib_level, "hdf5"), 0.98);
    expect_all("compressed write to libtiff", pairs("write", zlib_level, "tiff"), 0.98);
    expect_all("compressed read to HDF5", pairs("read", zlib_level, "hdf5"), 0.95);
    expect_all("compressed read to libtiff", pairs("read", zlib_level, "tiff"), 0.95);
    expect_all("single planes to HDF5", planes_pairs("planes", "planes"), 1);
    expect_all("rows to the whole", same_file_pairs("rows", "read", zlib_level, "vbf"), 0.5);
}

} // namespace

int main(int argc, char** argv)
{
    write_all();
    for (const ImageData& data : vela_bench::image_data())
    {
        add_whole(data, 0);
        add_whole(data, zlib_level);
        add_planes(data);
    }
    expect_everything();
    const int status = vela_bench::run(argc, argv);
    std::filesystem::remove_all(folder());
    return status;
}
