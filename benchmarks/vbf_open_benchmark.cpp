// What a file costs before any sample is read: 10000 small stacks beside as many HDF5 datasets, a stack of a million planes
// beside one of ten; and what a write costs late in a stack that grows.

#include "benchmarks/peers.h"
#include "benchmarks/ratios.h"

#include <VelaBinaryIO/VBFFile.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <malloc.h>
#include <string>
#include <vector>

namespace {

constexpr int stack_count = 10000;
constexpr std::uint64_t side = 16;

std::filesystem::path folder()
{
    return std::filesystem::temp_directory_path() / "vela_vbf_open_benchmark";
}

VPropstring path(const char* name)
{
    return VPropstring((folder() / name).string(), VPropstring::enc_utf8);
}

void write_stack(VBFFile& file, const std::vector<std::uint64_t>& sizes)
{
    const boost::shared_ptr<VBFStackInterface> stack = file->add_stack(false);
    stack->create(sizes, vela_dt_uint8);
    const std::vector<unsigned char> samples(stack->get_number_of_elements(), 7);
    stack->write(vela_dt_uint8, samples.data(), nullptr, VBFStackInterface::all_samples);
}

void write_files()
{
    std::filesystem::create_directories(folder());
    VBFFile many(path("many.vbf"), VFile::write_mode);
    for (int i = 0; i < stack_count; ++i)
        write_stack(many, {side, side});
    many->close();
    vela_bench::write_hdf5_datasets((folder() / "many.h5").string(), stack_count, side);
    VBFFile ten(path("ten.vbf"), VFile::write_mode);
    write_stack(ten, {1, 1, 10});
    ten->close();
    VBFFile million(path("million.vbf"), VFile::write_mode);
    write_stack(million, {1, 1, 1000000});
    million->close();
}

void open_stacks_vbf(benchmark::State& state)
{
    for (auto _ : state)
    {
        VBFFile file(path("many.vbf"), VFile::read_mode);
        benchmark::DoNotOptimize(file->number_of_stacks());
    }
}
BENCHMARK(open_stacks_vbf)->Unit(benchmark::kMillisecond);

void open_stacks_hdf5(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(vela_bench::open_hdf5_datasets((folder() / "many.h5").string(), stack_count));
}
BENCHMARK(open_stacks_hdf5)->Unit(benchmark::kMillisecond);

/// Every stack is asked for its size.
void look_at_stacks_vbf(benchmark::State& state)
{
    for (auto _ : state)
    {
        VBFFile file(path("many.vbf"), VFile::read_mode);
        std::uint64_t elements = 0;
        for (std::uint64_t i = 0; i < file->number_of_stacks(); ++i)
            elements += file->get_stack(i)->get_number_of_elements();
        benchmark::DoNotOptimize(elements);
    }
}
BENCHMARK(look_at_stacks_vbf)->Unit(benchmark::kMillisecond);

std::size_t allocated()
{
    const struct mallinfo2 now = ::mallinfo2();
    return now.uordblks + now.hblkhd;
}

void memory_of_stacks(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state)
    {
        const std::size_t before = allocated();
        VBFFile file(path("many.vbf"), VFile::read_mode);
        bytes = static_cast<double>(allocated() - before) / stack_count;
    }
    state.counters["bytes_a_stack"] = bytes;
}
BENCHMARK(memory_of_stacks)->Unit(benchmark::kMillisecond);

double open_microseconds(const char* name)
{
    const auto start = std::chrono::steady_clock::now();
    VBFFile file(path(name), VFile::read_mode);
    benchmark::DoNotOptimize(file->get_stack(0)->get_number_of_elements());
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
    return took.count();
}

/// How much longer a stack of a million planes takes to open and to look at than one of ten.
void open_planes(benchmark::State& state)
{
    std::vector<double> longer;
    for (auto _ : state)
        longer.push_back(open_microseconds("million.vbf") - open_microseconds("ten.vbf"));
    const auto middle = longer.begin() + static_cast<std::ptrdiff_t>(longer.size() / 2);
    std::nth_element(longer.begin(), middle, longer.end());
    state.counters["longer_us"] = *middle;
}
BENCHMARK(open_planes)->Unit(benchmark::kMicrosecond);

/// Adds planes to a stack that grows; only the hundred from `first` on are timed.
void grow(benchmark::State& state, int first)
{
    constexpr int timed = 100;
    const std::vector<unsigned char> plane(64 * 64, 3);
    for (auto _ : state)
    {
        VBFFile file(path("growing.vbf"), VFile::write_mode);
        const boost::shared_ptr<VBFStackInterface> stack = file->add_stack(false);
        stack->create({64, 64, 0}, vela_dt_uint8);
        const auto write = [&](int count)
        {
            for (int i = 0; i < count; ++i)
                stack->write(vela_dt_uint8, plane.data(), nullptr, plane.size());
        };
        write(first);
        const auto start = std::chrono::steady_clock::now();
        write(timed);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(took.count() / timed);
        file->close();
    }
}
BENCHMARK_CAPTURE(grow, write_1000, 950)->UseManualTime()->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(grow, write_10000, 9950)->UseManualTime()->Iterations(20)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    vela_bench::expect_ratio("open stacks : HDF5 datasets", "open_stacks_vbf", "open_stacks_hdf5", 1);
    vela_bench::expect_ratio("open and look at stacks : HDF5 datasets", "look_at_stacks_vbf", "open_stacks_hdf5", 1);
    vela_bench::expect_counter("memory of an open stack", "memory_of_stacks", "bytes_a_stack", 8192);
    vela_bench::expect_counter("us longer to open a million planes than ten", "open_planes", "longer_us", 1000);
    vela_bench::expect_ratio("write 10000 of a growing stack : 1000", "grow/write_10000", "grow/write_1000", 1 / 1.5);
    write_files();
    const int status = vela_bench::run(argc, argv);
    std::filesystem::remove_all(folder());
    return status;
}
