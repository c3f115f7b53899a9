/// The manifests that describe the files in tests/data (see its README.md).
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace vela_test {

/// One file of tests/data and what its manifest says of it.
struct DataFile
{
    std::string folder;
    nlohmann::json entry;

    std::string name() const { return entry.at("file").get<std::string>(); }
    std::string path() const;
    std::uint64_t start() const { return entry.at("start").get<std::uint64_t>(); }
};

/// The files of one folder: "golden", "real" or "hostile".
std::vector<DataFile> data_files(const std::string& folder);

/// The good ones: golden and real.
std::vector<DataFile> good_files();

/// The value of a text, which stands as {"hex": ..} when it is not UTF-8.
std::string text_of(const nlohmann::json& value);

/// The value of a number that may be "NaN", "Inf" or "-Inf".
double number_of(const nlohmann::json& value);

/// The low 32 bits of a whole number, which the manifest may give with or without a sign.
std::uint32_t low_bits_of(const nlohmann::json& value);

/// What GoogleTest prints of a file.
std::ostream& operator<<(std::ostream& out, const DataFile& file);

/// A name that GoogleTest accepts for the test of one file.
std::string test_name(const DataFile& file);

} // namespace vela_test
