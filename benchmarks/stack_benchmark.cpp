// Copies of stacks of 512 x 512 x 128 samples of uint16: all of it, a box of it, and its axes in every order, each as it is
// and converted, beside memcpy, vela_dt_convert and the walk by two iterators.

#include "benchmarks/ratios.h"

#include <VelaBase/vela_dt_convert.h>
#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

const std::vector<std::uint64_t> sizes = {512, 512, 128};

const VStackImp& source()
{
    static const VStackImp stack = []
    {
        VStackImp made;
        made.create(sizes, vela_dt_uint16);
        auto* const samples = reinterpret_cast<std::uint16_t*>(made.get_data_ptr());
        for (std::uint64_t i = 0; i < made.get_number_of_elements(); ++i)
            samples[i] = static_cast<std::uint16_t>(i * 7919);
        return made;
    }();
    return stack;
}

/// One target for all: it grows to the largest and stays there.
VStackImp& target()
{
    static VStackImp stack(Ome::Type::float32, sizes, Ome::DimensionOrder::XYZTC);
    return stack;
}

VStackRegion whole()
{
    VStackRegion region;
    region.create(&source(), vela_dt_none);
    return region;
}

VStackRegion box()
{
    VStackRegion region = whole();
    region.begin = {100, 50, 10};
    region.end = {400, 450, 120};
    return region;
}

VStackRegion permuted(std::vector<std::uint64_t> permutation, vela_dt dt)
{
    VStackRegion region = whole();
    region.permutation = std::move(permutation);
    region.dt = dt;
    return region;
}

void copy_region(benchmark::State& state, const VStackRegion& region)
{
    target().copy(&source(), region); // the target has its size
    for (auto _ : state)
    {
        target().copy(&source(), region);
        benchmark::ClobberMemory();
    }
}

void memcpy_all(benchmark::State& state)
{
    target().copy(&source(), vela_dt_none);
    for (auto _ : state)
    {
        std::memcpy(target().get_data_ptr(), source().get_data_ptr(), source().get_size(vela_dt_none));
        benchmark::ClobberMemory();
    }
}

void convert_all(benchmark::State& state)
{
    target().copy(&source(), vela_dt_single);
    for (auto _ : state)
    {
        vela_dt_convert(vela_dt_uint16, vela_dt_single, source().get_data_ptr(), target().get_data_ptr(),
                        source().get_number_of_elements(), nullptr, nullptr);
        benchmark::ClobberMemory();
    }
}

void memcpy_rows(benchmark::State& state)
{
    const VStackRegion region = box();
    target().copy(&source(), region);
    const std::uint64_t row_bytes = static_cast<std::uint64_t>(region.end[0] - region.begin[0]) * 2;
    for (auto _ : state)
    {
        unsigned char* to = target().get_data_ptr();
        for (std::int64_t z = region.begin[2]; z < region.end[2]; ++z)
            for (std::int64_t y = region.begin[1]; y < region.end[1]; ++y, to += row_bytes)
                std::memcpy(to, source().get_data_ptr() + ((z * 512 + y) * 512 + region.begin[0]) * 2, row_bytes);
        benchmark::ClobberMemory();
    }
}

/// The same walk that the copy stands for, one virtual call for each sample and side.
void walk_permuted(benchmark::State& state)
{
    const VStackRegion region = permuted({1, 0, 2}, vela_dt_none);
    target().copy(&source(), region);
    VStackRegion transposed;
    transposed.create(&target(), vela_dt_none);
    for (auto _ : state)
    {
        VStackInterface::iterator<std::uint16_t> to(&target(), transposed);
        for (const auto from = source().get_iterator(region); !from->at_end(); from->advance())
            from->get_value(*to++);
        benchmark::ClobberMemory();
    }
}

void create_fresh(benchmark::State& state)
{
    for (auto _ : state)
    {
        VStackImp fresh;
        fresh.copy(&source(), vela_dt_none);
        benchmark::DoNotOptimize(fresh.get_data_ptr());
    }
}

void memcpy_fresh(benchmark::State& state)
{
    const std::uint64_t size_bytes = source().get_size(vela_dt_none);
    for (auto _ : state)
    {
        const std::unique_ptr<unsigned char[]> fresh(new unsigned char[size_bytes]);
        std::memcpy(fresh.get(), source().get_data_ptr(), size_bytes);
        benchmark::DoNotOptimize(fresh.get());
    }
}

std::string digits_of(const std::vector<std::uint64_t>& permutation)
{
    std::string digits;
    for (const std::uint64_t axis : permutation)
        digits += std::to_string(axis);
    return digits;
}

void register_permutations()
{
    std::vector<std::uint64_t> permutation = {0, 1, 2};
    while (std::next_permutation(permutation.begin(), permutation.end()))
    {
        const std::string digits = digits_of(permutation);
        const std::string plain = "permuted_" + digits;
        benchmark::RegisterBenchmark(plain.c_str(), copy_region, permuted(permutation, vela_dt_none));
        vela_bench::expect_ratio("order " + digits + " / memcpy", plain, "memcpy_all", 0.25);
        for (const vela_dt dt : {vela_dt_int16, vela_dt_single}) // of the same size, and of twice as many bytes
        {
            const std::string name = vela_dt_get_name(dt);
            const std::string converted = plain + "_to_" + name;
            benchmark::RegisterBenchmark(converted.c_str(), copy_region, permuted(permutation, dt));
            vela_bench::expect_ratio("order " + digits + " to " + name + " / as it is", converted, plain, 0.7);
        }
    }
}

BENCHMARK(memcpy_all);
BENCHMARK(convert_all);
BENCHMARK(memcpy_rows);
BENCHMARK(walk_permuted);
BENCHMARK(create_fresh);
BENCHMARK(memcpy_fresh);

}

int main(int argc, char** argv)
{
    benchmark::RegisterBenchmark("copy_all", copy_region, whole());
    benchmark::RegisterBenchmark("copy_all_converted", copy_region, permuted({0, 1, 2}, vela_dt_single));
    benchmark::RegisterBenchmark("copy_box", copy_region, box());
    vela_bench::expect_ratio("copy all / memcpy", "copy_all", "memcpy_all", 0.95);
    vela_bench::expect_ratio("copy all to a fresh stack / memcpy", "create_fresh", "memcpy_fresh", 0.95);
    vela_bench::expect_ratio("copy all to single / vela_dt_convert", "copy_all_converted", "convert_all", 0.95);
    vela_bench::expect_ratio("copy a box / memcpy row by row", "copy_box", "memcpy_rows", 0.8);
    register_permutations();
    vela_bench::expect_ratio("order 102 / the walk", "permuted_102", "walk_permuted", 5);
    return vela_bench::run(argc, argv);
}
