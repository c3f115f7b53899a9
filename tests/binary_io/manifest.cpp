#include "binary_io/manifest.h"

#include <cctype>
#include <fstream>
#include <limits>
#include <stdexcept>

namespace vela_test {

std::string DataFile::path() const
{
    return std::string(VELA_TEST_DATA) + "/" + folder + "/" + name();
}

std::vector<DataFile> data_files(const std::string& folder)
{
    const std::string path = std::string(VELA_TEST_DATA) + "/" + folder + "/manifest.json";
    std::ifstream in(path);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    const nlohmann::json manifest = nlohmann::json::parse(in);
    std::vector<DataFile> files;
    for (const nlohmann::json& entry : manifest.at("files"))
        files.push_back({folder, entry});
    return files;
}

std::vector<DataFile> good_files()
{
    std::vector<DataFile> files = data_files("golden");
    for (const DataFile& file : data_files("real"))
        files.push_back(file);
    return files;
}

std::string text_of(const nlohmann::json& value)
{
    if (value.is_string())
        return value.get<std::string>();
    const std::string hex = value.at("hex").get<std::string>();
    std::string text;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        text += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return text;
}

double number_of(const nlohmann::json& value)
{
    if (value.is_number())
        return value.get<double>();
    const std::string text = value.get<std::string>();
    if (text == "NaN")
        return std::numeric_limits<double>::quiet_NaN();
    if (text == "Inf")
        return std::numeric_limits<double>::infinity();
    if (text == "-Inf")
        return -std::numeric_limits<double>::infinity();
    throw std::runtime_error("not a number of a manifest: " + text);
}

std::uint32_t low_bits_of(const nlohmann::json& value)
{
    return static_cast<std::uint32_t>(value.get<std::int64_t>());
}

std::ostream& operator<<(std::ostream& out, const DataFile& file)
{
    return out << file.folder << "/" << file.name() << ": " << file.entry.value("purpose", "");
}

std::string test_name(const DataFile& file)
{
    std::string name = file.folder + "_" + file.name();
    for (char& c : name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0)
            c = '_';
    return name;
}

} // namespace vela_test
