// A VBF file of any bytes is opened, looked at and read, or refused by one of the exceptions that `open` and `read`
// name.

#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaFile/handle.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <sys/mman.h>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::uint64_t samples_a_read = 512;

void read_at(VBFStackInterface& stack, int type, std::uint64_t pos)
{
    std::vector<unsigned char> samples(samples_a_read * 16);
    std::vector<unsigned char> imaginary(samples_a_read * 16);
    const bool is_complex = (stack.get_dt() & vela_dt_complex) != 0;
    const bool in_two = is_complex && (type & vela_dt_complex) == 0;
    const std::uint64_t before = pos;
    try
    {
        const std::uint64_t count =
            stack.read(type, samples.data(), in_two ? imaginary.data() : nullptr, samples_a_read, pos);
        if (count > samples_a_read || (pos != VBFStackInterface::exhausted && pos != before && pos != before + count))
            __builtin_trap();
    }
    catch (const VelaError&)
    {
    }
}

void look_at(VBFStackInterface& stack)
{
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        const std::uint64_t labels = stack.get_col_labels(axis).size();
        if (labels != 0 && labels != stack.get_dimension_size(axis))
            __builtin_trap();
        if (!stack.is_equidistant(axis))
            stack.get_col_position(axis, 0);
        stack.get_units(axis);
    }
    stack.get_stack_position();
    for (const std::string& key : stack.get_tag_keys())
        stack.get_tag(key);
    read_at(stack, stack.get_dt(), 0);
    read_at(stack, vela_dt_double, stack.get_number_of_elements() / 2);
    read_at(stack, stack.get_dt(), stack.get_number_of_elements() - 1);
    read_at(stack, stack.get_dt(), 1);
}

bool is_accepted(VBFFileInterface& file, void* handle)
{
    try
    {
        file.attach(handle, VFile::read_mode);
        return true;
    }
    catch (const VelaError&)
    {
    }
    catch (const std::invalid_argument&)
    {
    }
    catch (const std::bad_cast&)
    {
    }
    return false;
}

/// A file that opens gives all its stacks: nothing that their descriptions say may fail any more.
void open_and_look(void* handle)
{
    VBFFile file;
    if (is_accepted(*file.shared(), handle))
        for (std::uint64_t i = 0; i < file->number_of_stacks(); ++i)
            look_at(*file->get_stack(i));
    file->detach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int descriptor = memfd_create("fuzz", MFD_CLOEXEC);
    if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size) ||
        lseek(descriptor, 0, SEEK_SET) != 0)
        __builtin_trap();
    open_and_look(vela_handle_from_descriptor(descriptor));
    close(descriptor);
    return 0;
}
