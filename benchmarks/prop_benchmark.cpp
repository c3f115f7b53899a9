// Property trees: copies of a value against copies of a shared pointer, and a struct of 1000 members built and looked
// up against a vector of pairs that is searched in the same way.

#include "benchmarks/ratios.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int member_count = 1000;

const std::vector<std::string>& names()
{
    static const std::vector<std::string> list = []
    {
        std::vector<std::string> made;
        for (int i = 0; i < member_count; ++i)
            made.push_back("member_" + std::to_string(i));
        return made;
    }();
    return list;
}

void copy_prop(benchmark::State& state)
{
    const VProp prop(1.5);
    for (auto _ : state)
    {
        const VProp copy(prop);
        benchmark::DoNotOptimize(&copy);
    }
}

void copy_shared_pointer(benchmark::State& state)
{
    const boost::shared_ptr<double> pointer = boost::make_shared<double>(1.5);
    for (auto _ : state)
    {
        const boost::shared_ptr<double> copy(pointer);
        benchmark::DoNotOptimize(&copy);
    }
}

void build_struct(benchmark::State& state)
{
    for (auto _ : state)
    {
        VPropstruct members;
        for (const std::string& name : names())
            members[name] = 1.5;
        benchmark::DoNotOptimize(&members);
    }
}

/// What the rules ask for: a linear search for every name, and growth by one.
void build_pairs(benchmark::State& state)
{
    using Pair = std::pair<std::string, boost::shared_ptr<double>>;
    for (auto _ : state)
    {
        std::vector<Pair> members;
        for (const std::string& name : names())
        {
            const auto found =
                std::find_if(members.begin(), members.end(), [&](const Pair& member) { return member.first == name; });
            if (found != members.end())
                continue;
            std::vector<Pair> grown;
            grown.reserve(members.size() + 1);
            std::move(members.begin(), members.end(), std::back_inserter(grown));
            grown.emplace_back(name, boost::make_shared<double>(1.5));
            members.swap(grown);
        }
        benchmark::DoNotOptimize(&members);
    }
}

void look_up_members(benchmark::State& state)
{
    VProp prop;
    for (const std::string& name : names())
        prop[name] = 1.5;
    for (auto _ : state)
        for (const std::string& name : names())
            benchmark::DoNotOptimize(prop.getp(name, false).get_id());
}

void look_up_pairs(benchmark::State& state)
{
    std::vector<std::pair<std::string, double>> members;
    for (const std::string& name : names())
        members.emplace_back(name, 1.5);
    for (auto _ : state)
        for (const std::string& name : names())
            benchmark::DoNotOptimize(
                std::find_if(members.begin(), members.end(), [&](const auto& member) { return member.first == name; }));
}

BENCHMARK(copy_prop);
BENCHMARK(copy_shared_pointer);
BENCHMARK(build_struct);
BENCHMARK(build_pairs);
BENCHMARK(look_up_members);
BENCHMARK(look_up_pairs);

}

int main(int argc, char** argv)
{
    vela_bench::expect_ratio("copy a value / a shared pointer", "copy_prop", "copy_shared_pointer", 1.0);
    vela_bench::expect_ratio("build a struct of 1000 / pairs", "build_struct", "build_pairs", 0.5);
    vela_bench::expect_ratio("look up 1000 members / pairs", "look_up_members", "look_up_pairs", 0.8);
    return vela_bench::run(argc, argv);
}
