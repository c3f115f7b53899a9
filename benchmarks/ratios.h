/// Benchmarks that are read as ratios: each subject stands beside its peer in the same run, and the
/// figure is the ratio of their median times.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vela_bench {

/// Asks for a line "name: peer time / subject time, limit" at the end of the run. `peer` and `subject` are
/// names of registered benchmarks; the ratio is the speed of the subject in units of the peer's.
void expect_ratio(const std::string& name, const std::string& subject, const std::string& peer, double limit);

/// The same for the geometric mean of the ratios of several pairs of a subject and its peer.
void expect_mean_ratio(const std::string& name, const std::vector<std::pair<std::string, std::string>>& pairs,
                       double limit);

/// Asks for a line "name: figure, limit" below the ratios: the median of a counter of `subject`, which is at best
/// below the limit.
void expect_counter(const std::string& name, const std::string& subject, const std::string& counter, double limit);

/// Parses the options of Google Benchmark, runs everything interleaved in random order and prints the ratios.
/// The exit status does not depend on them: a noisy machine must not fail a build.
int run(int argc, char** argv);

} // namespace vela_bench
