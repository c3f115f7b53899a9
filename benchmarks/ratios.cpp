#include "benchmarks/ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

namespace vela_bench {

namespace {

struct Expectation
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> pairs; ///< subject and peer
    double limit;
};

std::vector<Expectation>& expectations()
{
    static std::vector<Expectation> list;
    return list;
}

struct CounterExpectation
{
    std::string name;
    std::string subject;
    std::string counter;
    double limit;
};

std::vector<CounterExpectation>& counter_expectations()
{
    static std::vector<CounterExpectation> list;
    return list;
}

/// What a benchmark was registered under, with its arguments.
std::string name_of(const benchmark::BenchmarkName& name)
{
    return name.args.empty() ? name.function_name : name.function_name + '/' + name.args;
}

double median_of(std::vector<double> list)
{
    if (list.empty())
        return 0;
    std::sort(list.begin(), list.end());
    return list[list.size() / 2];
}

/// Collects the time of every repetition beside the usual output.
class Collector : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            if (run.run_type != Run::RT_Iteration || run.error_occurred)
                continue;
            times[name_of(run.run_name)].push_back(run.GetAdjustedRealTime());
            for (const auto& [counter, value] : run.counters)
                counters[name_of(run.run_name) + ' ' + counter].push_back(value.value);
        }
    }

    double median(const std::string& name) { return median_of(times[name]); }
    double median(const std::string& name, const std::string& counter)
    {
        return median_of(counters[name + ' ' + counter]);
    }

    /// The geometric mean, 0 when one of the pairs was filtered out.
    double ratio(const std::vector<std::pair<std::string, std::string>>& pairs)
    {
        double logarithms = 0;
        for (const auto& [subject, peer] : pairs)
        {
            if (median(subject) == 0 || median(peer) == 0)
                return 0;
            logarithms += std::log(median(peer) / median(subject));
        }
        return std::exp(logarithms / static_cast<double>(pairs.size()));
    }

private:
    std::map<std::string, std::vector<double>> times;
    std::map<std::string, std::vector<double>> counters;
};

} // namespace

void expect_ratio(const std::string& name, const std::string& subject, const std::string& peer, double limit)
{
    expectations().push_back({name, {{subject, peer}}, limit});
}

void expect_mean_ratio(const std::string& name, const std::vector<std::pair<std::string, std::string>>& pairs,
                       double limit)
{
    expectations().push_back({name, pairs, limit});
}

void expect_counter(const std::string& name, const std::string& subject, const std::string& counter, double limit)
{
    counter_expectations().push_back({name, subject, counter, limit});
}

int run(int argc, char** argv)
{
    std::vector<char*> arguments(argv, argv + argc);
    static char repetitions[] = "--benchmark_repetitions=9";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    static char shortest[] = "--benchmark_min_time=0.05";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaving, shortest});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    std::printf("%-44s %8s %8s\n", "speed as a ratio to the peer", "ratio", "limit");
    for (const Expectation& e : expectations())
    {
        const double ratio = collector.ratio(e.pairs);
        if (ratio == 0)
            continue; // filtered out
        std::printf("%-44s %8.2f %8.2f %s\n", e.name.c_str(), ratio, e.limit, ratio < e.limit ? "below" : "");
    }
    for (const CounterExpectation& e : counter_expectations())
    {
        const double figure = collector.median(e.subject, e.counter);
        if (figure == 0)
            continue;
        std::printf("%-44s %8.2f %8.2f %s\n", e.name.c_str(), figure, e.limit, figure > e.limit ? "above" : "");
    }
    return 0;
}

} // namespace vela_bench
