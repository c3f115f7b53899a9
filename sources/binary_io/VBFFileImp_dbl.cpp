// DBL files as VBF files of one stack.
#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/vela_dbl.h>

#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/VBFStackImp.h"

#include <boost/make_shared.hpp>
#include <string>
#include <string_view>

namespace {

constexpr int max_rank = 4;
constexpr std::uint64_t header_size = 128;
constexpr std::uintptr_t header_only = 0xA0;
constexpr int is_double = 1;

bool has_ending(const std::string& path)
{
    return std::string_view(path).ends_with(".dbl");
}

} // namespace

int VBFFileImp::open_bf_dbl(const VPropstring& path)
{
    const std::string narrow = path.to(VPropstring::enc_utf8);
    if (!has_ending(narrow))
        return -1;
    release_stacks();
    int dims[max_rank] = {};
    float lengths[max_rank] = {};
    void* what = reinterpret_cast<void*>(header_only);
    const int stored = vela_dbl_read(narrow.c_str(), dims, lengths, &what);
    if (stored < 1)
        throw VelaError("VBFFileImp::open_bf_dbl", __FILE__, __LINE__)("Error reading .dbl file!")(-4);

    const vela_dt dt = stored == is_double ? vela_dt_double : vela_dt_single;
    std::uint64_t data_length = vela_dt_get_size(static_cast<std::uint32_t>(dt));
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
    attached = writable = header_pending = false;
    stacks.push_back({nullptr, stack});
    return 0;
}
