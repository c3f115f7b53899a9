// DBL files as VBF files of one stack.
#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/vela_dbl.h>

#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/size_of.h"
#include "sources/file/file_errors.h"

#include <boost/make_shared.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr int max_rank = 4;
constexpr std::uint64_t header_size = 128;
constexpr std::uintptr_t header_only = 0xA0;
constexpr int is_double = 1;

/// Whether this names a DBL file. A path that the system cannot take as it stands is left to `VFile::open`, which
/// refuses it.
bool is_path_of_dbl(const VPropstring& path, const std::string& narrow)
{
    return narrow.ends_with(".dbl") && narrow.find('\0') == std::string::npos &&
           VPropstring(narrow, VPropstring::enc_utf8) == path;
}

} // namespace

int VBFFileImp::open_bf_dbl(const VPropstring& path)
{
    const std::string narrow = path.to(VPropstring::enc_utf8);
    if (!is_path_of_dbl(path, narrow))
        return -1;
    if (VFile::is_open())
        Vela::detail::throw_already_open("VFile::open");
    forget_file();
    int dims[max_rank] = {};
    float lengths[max_rank] = {};
    void* what = reinterpret_cast<void*>(header_only);
    const int stored = vela_dbl_read(narrow.c_str(), dims, lengths, &what);
    if (stored < 1)
        throw VelaError("VBFFileImp::open_bf_dbl", __FILE__, __LINE__)("Error reading .dbl file!")(-4);

    const vela_dt dt = stored == is_double ? vela_dt_double : vela_dt_single;
    std::uint64_t data_length = Vela::detail::size_of(dt);
    std::vector<std::uint64_t> stack_sizes;
    std::vector<double> stack_lengths;
    // The first dimension below 2 ends the axes, whatever stands behind it.
    for (int i = 0; i < max_rank && dims[i] > 1; ++i)
    {
        stack_sizes.push_back(static_cast<std::uint64_t>(dims[i]));
        stack_lengths.push_back(static_cast<double>(lengths[i]));
        data_length *= stack_sizes.back();
    }
    const auto stack = boost::make_shared<VBFStackImp>(this);
    stack->set_plain_data(stack_sizes, stack_lengths, dt, header_size, data_length);
    VFile::open(path, VFile::read_mode);
    has_handle = true;
    attached = false;
    stacks.emplace_back(stack);
    return 0;
}
