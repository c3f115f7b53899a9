// Bulk conversion against memcpy of the same traffic: a conversion that reads a bytes and writes b is held
// against a copy of (a + b) / 2. A chunk is 4 MiB of source samples, as the file
// layers convert them.

#include "benchmarks/ratios.h"

#include "sources/binary_io/types/convert_tables.h"

#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t chunk_bytes = 4 * 1024 * 1024;

/// Room for the largest traffic, at a place that shares no low address bits with the others: buffers a power of
/// two apart fall into the same sets of the caches and of the load and store predictors, which measures those.
class Buffer
{
public:
    explicit Buffer(std::size_t stagger) : bytes(10 * chunk_bytes + stagger), offset(stagger) {}
    unsigned char* data() { return bytes.data() + offset; }

private:
    std::vector<unsigned char> bytes;
    std::size_t offset;
};

struct Buffers
{
    Buffer source{0};
    Buffer target{5 * 4096 + 1024};
    Buffer imag{11 * 4096 + 2048};
};

Buffers& buffers()
{
    static Buffers instance;
    return instance;
}

std::size_t size_of(vela_dt id)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(id));
}

/// Puts camera-like values into the source buffer.
void fill_source(vela_dt id, std::size_t count)
{
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = static_cast<double>((i * 2654435761u) % 251);
    vela_dt_convert(vela_dt_double, static_cast<std::uint32_t>(id & ~vela_dt_complex), values.data(),
                    buffers().source.data(), count, nullptr, nullptr);
}

void add_copy(const std::string& name, std::size_t traffic)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [traffic](benchmark::State& state)
                                 {
                                     for (auto step : state)
                                     {
                                         for (std::size_t at = 0; at < traffic / 2; at += chunk_bytes)
                                             std::memcpy(buffers().target.data() + at, buffers().source.data() + at,
                                                         std::min(chunk_bytes, traffic / 2 - at));
                                         benchmark::ClobberMemory();
                                     }
                                 });
}

/// Index into the tables of the baseline loops.
std::size_t table_index(vela_dt id)
{
    switch (id)
    {
    case vela_dt_uint8:
        return 0;
    case vela_dt_uint16:
        return 2;
    case vela_dt_int16:
        return 3;
    case vela_dt_single:
        return 6;
    default:
        return 7;
    }
}

void add_pair(vela_dt from, vela_dt to)
{
    const std::size_t count = chunk_bytes / size_of(from);
    const std::size_t traffic = count * (size_of(from) + size_of(to));
    const std::string pair = std::string(vela_dt_get_name(from)) + " to " + vela_dt_get_name(to);
    add_copy("copy " + pair, traffic);
    benchmark::RegisterBenchmark(
        ("baseline " + pair).c_str(),
        [=](benchmark::State& state)
        {
            fill_source(from, count);
            const auto loop = Vela::detail::convert_tables_baseline.scalar[table_index(from)][table_index(to)];
            for (auto step : state)
            {
                loop(buffers().source.data(), buffers().target.data(), count);
                benchmark::ClobberMemory();
            }
        });
    benchmark::RegisterBenchmark(("chosen " + pair).c_str(),
                                 [=](benchmark::State& state)
                                 {
                                     fill_source(from, count);
                                     for (auto step : state)
                                     {
                                         vela_dt_convert(static_cast<std::uint32_t>(from),
                                                         static_cast<std::uint32_t>(to), buffers().source.data(),
                                                         buffers().target.data(), count, nullptr, nullptr);
                                         benchmark::ClobberMemory();
                                     }
                                 });
    const bool widens_to_double = to == vela_dt_double && from != vela_dt_double;
    vela_bench::expect_ratio("baseline " + pair, "baseline " + pair, "copy " + pair, 0.80);
    vela_bench::expect_ratio("chosen   " + pair, "chosen " + pair, "copy " + pair, widens_to_double ? 0.80 : 0.90);
}

/// Split of a complex run into scalars, and join of scalars to a complex run.
void add_complex(vela_dt from, vela_dt to)
{
    const std::size_t count = chunk_bytes / (2 * size_of(from));
    const std::size_t traffic = 2 * count * (size_of(from) + size_of(to));
    const std::string names = std::string(vela_dt_get_name(from)) + " to " + vela_dt_get_name(to);
    add_copy("copy split/join " + names, traffic);
    const auto from_id = static_cast<std::uint32_t>(from);
    const auto to_id = static_cast<std::uint32_t>(to);
    const auto flag = static_cast<std::uint32_t>(vela_dt_complex);
    for (const bool baseline : {true, false})
    {
        const std::string prefix = baseline ? "baseline " : "chosen ";
        benchmark::RegisterBenchmark(
            (prefix + "split " + names).c_str(),
            [=](benchmark::State& state)
            {
                fill_source(from, 2 * count);
                unsigned char* const source = buffers().source.data();
                unsigned char* const target = buffers().target.data();
                unsigned char* const imag = buffers().imag.data();
                for (auto step : state)
                {
                    if (baseline)
                        Vela::detail::convert_tables_baseline.split[table_index(from)][table_index(to)](source, target,
                                                                                                        imag, count);
                    else
                        vela_dt_convert(from_id | flag, to_id, source, target, count, nullptr, imag);
                    benchmark::ClobberMemory();
                }
            });
        benchmark::RegisterBenchmark(
            (prefix + "join " + names).c_str(),
            [=](benchmark::State& state)
            {
                fill_source(from, 2 * count);
                unsigned char* const source = buffers().source.data();
                unsigned char* const target = buffers().target.data();
                const unsigned char* const imag = source + chunk_bytes;
                for (auto step : state)
                {
                    if (baseline)
                        Vela::detail::convert_tables_baseline.join[table_index(from)][table_index(to)](source, imag,
                                                                                                       target, count);
                    else
                        vela_dt_convert(from_id, to_id | flag, source, target, count, imag, nullptr);
                    benchmark::ClobberMemory();
                }
            });
        const double limit = baseline || (to == vela_dt_double && from != to) ? 0.80 : 0.90;
        vela_bench::expect_ratio(prefix + "split " + names, prefix + "split " + names, "copy split/join " + names,
                                 limit);
        vela_bench::expect_ratio(prefix + "join " + names, prefix + "join " + names, "copy split/join " + names, limit);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const vela_dt types[] = {vela_dt_uint8, vela_dt_uint16, vela_dt_int16, vela_dt_single, vela_dt_double};
    for (const vela_dt from : types)
        for (const vela_dt to : types)
            if (from != to)
                add_pair(from, to);
    for (const vela_dt from : {vela_dt_single, vela_dt_double})
        for (const vela_dt to : {vela_dt_single, vela_dt_double})
            add_complex(from, to);
    return vela_bench::run(argc, argv);
}
