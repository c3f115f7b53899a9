// Writes an image that grows plane by plane, and reads one plane of it: write_file FILE
#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFFile.h>

#include <iostream>
#include <numeric>
#include <vector>

namespace {

const std::uint64_t side = 256;

/// What the camera gives for a moment.
std::vector<std::uint16_t> expose(std::uint64_t moment)
{
    std::vector<std::uint16_t> plane(side * side);
    for (std::uint64_t i = 0; i < plane.size(); ++i)
        plane[i] = static_cast<std::uint16_t>(100 + i % side + moment);
    return plane;
}

void record(const VPropstring& path)
{
    VBFFile file(path, VFile::write_mode);
    file->set_file_desc("A short time series");
    file->set_default_compression(1, 1); // zlib, level 1

    const boost::shared_ptr<VBFStackInterface> stack = file->add_stack(false);
    stack->create({side, side, 0}, vela_dt_uint16); // the last axis grows
    stack->set_name("beads");
    stack->set_labels({"X", "Y", "T"});
    const si::value micrometre("um");
    stack->set_units(0, micrometre);
    stack->set_units(1, micrometre);
    stack->set_len({51.2, 51.2});
    stack->set_tag("exposure", "5 ms");

    for (std::uint64_t moment = 0; moment < 40; ++moment)
    {
        const std::vector<std::uint16_t> plane = expose(moment);
        stack->write(vela_dt_uint16, plane.data(), nullptr, plane.size());
    }
    stack->commit(vela_dt_uint16);
    file->close(); // what goes wrong in the destructor is lost
}

void look(const VPropstring& path)
{
    VBFFile file(path, VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(0);
    std::cout << stack->get_name() << ": " << stack->get_dimension_size(2) << " planes, exposure "
              << stack->get_tag("exposure") << "\n";

    std::vector<double> plane(side * side);
    std::uint64_t pos = 30 * plane.size();
    stack->read(vela_dt_double, plane.data(), nullptr, plane.size(), pos);
    std::cout << "mean of plane 30: " << std::accumulate(plane.begin(), plane.end(), 0.0) / double(plane.size())
              << "\n";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try
    {
        const VPropstring path(argv[1], VPropstring::enc_utf8);
        record(path);
        look(path);
    }
    catch (const VelaError& error)
    {
        std::cerr << error.get_msg() << "\n";
        return 1;
    }
}
