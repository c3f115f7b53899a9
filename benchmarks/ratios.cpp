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

/// Collects the time of every repetition beside the usual output.
class Collector : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
    }

    double median(const std::string& name)
    {
        std::vector<double>& list = times[name];
        if (list.empty())
            return 0;
        std::sort(list.begin(), list.end());
        return list[list.size() / 2];
    }

private:
    std::map<std::string, std::vector<double>> times;
};

} // namespace

void expect_ratio(const std::string& name, const std::string& subject, const std::string& peer, double limit)
{
    expectations().push_back({name, subject, peer, limit});
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
    return 0;
}

} // namespace vela_bench
