/// The names of shared memory that this program has made and not removed.
///
/// A program that uses it has shared_names.cpp among its sources. That defines the system's two calls and passes them
/// on; at the end of the run it fails the program when a name is left behind.
#pragma once

#include <set>
#include <string>

namespace vela_test {

/// As the system writes them, with a slash in front.
const std::set<std::string>& shared_names_left();

} // namespace vela_test
