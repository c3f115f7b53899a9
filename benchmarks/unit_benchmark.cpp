// Quantities against what they stand on: reading against strtod of the number, printing against snprintf of the
// number. The limit is a third of the peer's speed.

#include "benchmarks/ratios.h"

#include <si/value.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr double limit = 1.0 / 3;

/// A text and the number in it.
struct Text
{
    const char* text;
    const char* number;
};

void add_reading(const Text& one)
{
    const std::string name = std::string("read '") + one.text + "'";
    const std::string peer = std::string("strtod '") + one.number + "' beside '" + one.text + "'";
    benchmark::RegisterBenchmark(name.c_str(),
                                 [text = std::string(one.text)](benchmark::State& state)
                                 {
                                     for (auto step : state)
                                     {
                                         benchmark::DoNotOptimize(text.data());
                                         benchmark::DoNotOptimize(si::value(text).value_in_baseunits());
                                     }
                                     if (!si::value(text).is_valid())
                                         state.SkipWithError("no unit text");
                                 });
    benchmark::RegisterBenchmark(peer.c_str(),
                                 [number = one.number](benchmark::State& state)
                                 {
                                     for (auto step : state)
                                     {
                                         benchmark::DoNotOptimize(number);
                                         benchmark::ClobberMemory();
                                         benchmark::DoNotOptimize(std::strtod(number, nullptr));
                                     }
                                 });
    vela_bench::expect_ratio(name, name, peer, limit);
}

/// The number text of a printed quantity, as snprintf makes it.
struct Number
{
    int digits;
    double mantissa;
    int exponent; ///< 0: none is printed
};

void add_printing(const char* text, int flags, const Number& printed)
{
    const std::string name = std::string("print '") + text + "', flags " + std::to_string(flags);
    const std::string peer = "snprintf beside " + name;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [quantity = si::value(text), flags](benchmark::State& state)
                                 {
                                     for (auto step : state)
                                         benchmark::DoNotOptimize(quantity.format(4, flags).data());
                                 });
    benchmark::RegisterBenchmark(
        peer.c_str(),
        [printed](benchmark::State& state)
        {
            char buffer[64];
            for (auto step : state)
            {
                if (printed.exponent == 0)
                    std::snprintf(buffer, sizeof buffer, "%.*f", printed.digits, printed.mantissa);
                else
                    std::snprintf(buffer, sizeof buffer, "%.*fe%d", printed.digits, printed.mantissa, printed.exponent);
                benchmark::DoNotOptimize(buffer[0]);
            }
        });
    vela_bench::expect_ratio(name, name, peer, limit);
}

} // namespace

int main(int argc, char** argv)
{
    for (const Text& one : {Text{"1.5 mm", "1.5"}, Text{"1.5", "1.5"}, Text{"0.2125 \xB5m", "0.2125"},
                            Text{"1e3 m", "1e3"}, Text{"6.02214076e23", "6.02214076e23"}, Text{"2.5 kpc", "2.5"}})
        add_reading(one);
    add_printing("1.5 mm", si::value::with_blank | si::value::with_prefix, {3, 1.5, 0});
    add_printing("1.5 mm", 0, {3, 1.5, -3});
    add_printing("0.25", 0, {4, 0.25, 0});
    add_printing("12.5 Hz", si::value::with_blank, {2, 12.5, 0});
    add_printing("2.5*m*kg/s^3/K", si::value::with_blank, {3, 2.5, 0});
    return vela_bench::run(argc, argv);
}
