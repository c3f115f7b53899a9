// Images of ten and of a million planes: describing them, which must not depend on how many there are, and looking
// at their planes, which takes the time and the memory that the counters give for each.

#include "benchmarks/ratios.h"

#include <Ome/Image.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstdint>
#include <vector>

namespace {

using Image = Ome::Image<Json::SignalingReference>;

std::vector<std::size_t> sizes_of(std::int64_t planes)
{
    return planes == 10 ? std::vector<std::size_t>{512, 512, 5, 2} : std::vector<std::size_t>{512, 512, 1000, 1000};
}

void describe(Image& image, std::int64_t planes)
{
    image.set_sizes(sizes_of(planes));
    image.set_len(0, 0.02);
    image.set_len(2, 0.05);
    image.set_len(3, 10);
    image.set_off(0, 1.5);
    image.set_off(2, 0.25);
    image.set_off(3, 100);
}

double taken_bytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// `bytes` for all planes together; the time is that of the iterations.
void set_counters(benchmark::State& state, double bytes)
{
    const auto microplanes = static_cast<double>(state.range(0)) * 1e-6;
    state.counters["us_per_plane"] =
        benchmark::Counter(microplanes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["bytes_per_plane"] = bytes / static_cast<double>(state.range(0));
}

void describe_image(benchmark::State& state)
{
    for (auto _ : state)
    {
        Json::Value tree;
        Image image(tree);
        describe(image, state.range(0));
        benchmark::DoNotOptimize(tree);
    }
}

/// The same image described over and over.
void describe_again(benchmark::State& state)
{
    Json::Value tree;
    Image image(tree);
    for (auto _ : state)
        describe(image, state.range(0));
}

std::int64_t look_through_record(const Image& image)
{
    std::int64_t sum = 0;
    for (const auto& plane : image.planes)
        sum += plane->the_z;
    return sum;
}

void look_at_records(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        {
            Json::Value tree;
            Image image(tree);
            describe(image, state.range(0));
            const double before = taken_bytes();
            state.ResumeTiming();
            benchmark::DoNotOptimize(look_through_record(image));
            state.PauseTiming();
            bytes = taken_bytes() - before;
        }
        state.ResumeTiming();
    }
    set_counters(state, bytes);
}

void look_at_tree(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        {
            Json::Value tree;
            Image image(tree);
            describe(image, state.range(0));
            const double before = taken_bytes();
            state.ResumeTiming();
            benchmark::DoNotOptimize(tree.at("").at("ome:Pixels").at("").at("ome:Plane").as_list());
            state.PauseTiming();
            bytes = taken_bytes() - before;
        }
        state.ResumeTiming();
    }
    set_counters(state, bytes);
}

/// All that a first `set_sizes` and a look cost, and then what the second `set_sizes` costs when all planes are there.
void first_sizes_and_look(benchmark::State& state)
{
    for (auto _ : state)
    {
        Json::Value tree;
        Image image(tree);
        image.set_sizes(sizes_of(state.range(0)));
        benchmark::DoNotOptimize(look_through_record(image));
        state.PauseTiming();
        image.channels.clear();
        image.planes.clear();
        tree = Json::Value();
        state.ResumeTiming();
    }
    set_counters(state, 0);
}

void second_sizes_after_look(benchmark::State& state)
{
    Json::Value tree;
    Image image(tree);
    image.set_sizes(sizes_of(state.range(0)));
    benchmark::DoNotOptimize(look_through_record(image));
    for (auto _ : state)
        image.set_sizes(sizes_of(state.range(0)));
    set_counters(state, 0);
}

BENCHMARK(describe_image)->Arg(10)->Arg(1000000);
BENCHMARK(describe_again)->Arg(10)->Arg(1000000);
BENCHMARK(look_at_records)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(look_at_tree)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(first_sizes_and_look)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(second_sizes_after_look)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    vela_bench::expect_ratio("describe a million planes / ten", "describe_image/1000000", "describe_image/10", 0.33);
    vela_bench::expect_ratio("describe a million planes again / ten", "describe_again/1000000", "describe_again/10",
                             0.33);
    vela_bench::expect_ratio("second sizes after a look / first and look", "second_sizes_after_look/1000000",
                             "first_sizes_and_look/1000000", 1.0);
    for (const std::string benchmark : {"look_at_records", "look_at_tree"})
    {
        vela_bench::expect_counter(benchmark + ", us a plane", benchmark + "/1000000", "us_per_plane", 2);
        vela_bench::expect_counter(benchmark + ", bytes a plane", benchmark + "/1000000", "bytes_per_plane", 2253);
    }
    return vela_bench::run(argc, argv);
}
