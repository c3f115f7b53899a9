#include "benchmarks/ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace vela_bench {

namespace {

struct Expectation
{
    std::string name;
    std::string subject;
    std::string peer;
    double limit;
};

std::vector<Expectation>& expectations()
{
    static std::vector<Expectation> list;
    return list;
}

/// The same for counters; the peer is the name of the counter.
std::vector<Expectation>& counter_expectations()
{
    static std::vector<Expectation> list;
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

private:
    std::map<std::string, std::vector<double>> times;
    std::map<std::string, std::vector<double>> counters;
};

} // namespace

void expect_ratio(const std::string& name, const std::string& subject, const std::string& peer, double limit)
{
    expectations().push_back({name, subject, peer, limit});
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
        const double subject = collector.median(e.subject);
        const double peer = collector.median(e.peer);
        if (subject == 0 || peer == 0)
            continue; // filtered out
        const double ratio = peer / subject;
        std::printf("%-44s %8.2f %8.2f %s\n", e.name.c_str(), ratio, e.limit, ratio < e.limit ? "below" : "");
    }
    for (const Expectation& e : counter_expectations())
    {
        const double figure = collector.median(e.subject, e.peer);
        if (figure == 0)
            continue;
        std::printf("%-44s %8.2f %8.2f %s\n", e.name.c_str(), figure, e.limit, figure > e.limit ? "above" : "");
    }
    return 0;
}

} // namespace vela_bench
