#include "ome.h"

#include "open_file.h"
#include "output.h"
#include "scanned_file.h"

#include <Json/write.h>
#include <VelaBinaryIO/VBFFile.h>

#include <sstream>
#include <stdexcept>

namespace {

constexpr std::uint64_t max_planes = 100000;

std::string document_of(const std::string& path)
{
    ScannedFile input(path);
    const VBFDictionary dictionary = input.read_file_dictionary();
    const auto found = dictionary.find("ome_xml");
    if (found == dictionary.end())
        throw std::runtime_error("The file has no OME document.");
    return found->second;
}

/// A file can say four milliards of planes in a few bytes.
void check_planes(const VStackInfoInterface& stack)
{
    const std::vector<std::uint64_t>& sizes = stack.get_sizes();
    std::uint64_t count = 1;
    for (std::size_t axis = 2; axis < sizes.size() && count <= max_planes; ++axis)
        count *= sizes[axis];
    if (count > max_planes)
        throw std::runtime_error("The record has more than " + std::to_string(max_planes) + " planes.");
}

std::string record_of(const std::string& path, std::uint64_t index)
{
    VBFFile file = open_vbf(path, VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(index);
    check_planes(*stack);
    Json::Value root;
    Json::Value& image = root.at("ome:Image") = stack->meta_data().structure.value();
    image.at("xmlns:ome") = "http://www.openmicroscopy.org/Schemas/OME/2015-01";
    std::ostringstream xml;
    Json::write_xml(root, xml);
    return xml.str();
}

} // namespace

void print_ome(const OmeOptions& options)
{
    Output output("", options.path);
    const std::string xml =
        (options.index ? record_of(options.path, *options.index) : document_of(options.path)) + "\n";
    output.write(xml.data(), xml.size());
    output.finish();
}
