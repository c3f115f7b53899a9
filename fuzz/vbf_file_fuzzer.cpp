// A VBF file of any bytes is opened, looked at and read, or refused by one of the exceptions that `open` and `read`
// name.

#include "fuzz/text_pieces.h"

#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaFile/handle.h>
#include <VelaStacks/VStack.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace {

using vela_fuzz::require;

constexpr std::uint64_t samples_a_read = 512;
/// No more samples than this are read as a whole, so that a run stays quick.
constexpr std::uint64_t most_samples = 1 << 14;

/// What `read` gave: the samples, or the text of its failure.
struct Run
{
    std::vector<unsigned char> samples;
    std::string failure;
    bool operator==(const Run&) const = default;
};

Run read_at(VBFStackInterface& stack, int type, std::uint64_t pos)
{
    Run run;
    run.samples.resize(samples_a_read * 16);
    std::vector<unsigned char> imaginary(samples_a_read * 16);
    const bool is_complex = (stack.get_dt() & vela_dt_complex) != 0;
    const bool in_two = is_complex && (type & vela_dt_complex) == 0;
    const std::uint64_t before = pos;
    try
    {
        const std::uint64_t count =
            stack.read(type, run.samples.data(), in_two ? imaginary.data() : nullptr, samples_a_read, pos);
        require(count <= samples_a_read);
        require(pos == VBFStackInterface::exhausted || pos == before || pos == before + count);
    }
    catch (const VelaError& error)
    {
        run.failure = error.what();
        run.samples.clear();
    }
    return run;
}

void look_at_tags(VBFStackInterface& stack)
{
    for (const std::string& key : stack.get_tag_keys())
    {
        stack.get_tag(key);
        double number = 0;
        try
        {
            require(stack.get_tag(key, vela_dt_double, &number));
        }
        catch (const VelaError&)
        {
        }
    }
}

void look_at(VBFStackInterface& stack)
{
    require(stack.get_state() == 0 && stack.get_rank() <= 15);
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        const std::uint64_t labels = stack.get_col_labels(axis).size();
        require(labels == 0 || labels == stack.get_dimension_size(axis));
        if (!stack.is_equidistant(axis))
            stack.get_col_position(axis, 0);
        stack.get_units(axis);
    }
    stack.get_stack_position();
    look_at_tags(stack);
}

/// Two copies of a stack read the same, whatever one of them has read before.
void read(VBFStackInterface& stack, VBFStackInterface& fresh)
{
    const std::uint64_t count = stack.get_number_of_elements();
    const Run begin = read_at(stack, stack.get_dt(), 0);
    read_at(stack, vela_dt_double, count / 2);
    read_at(stack, stack.get_dt(), count - 1);
    read_at(stack, stack.get_dt(), 1);
    require(read_at(fresh, stack.get_dt(), 0) == begin);
}

/// A stack of few samples goes into memory as a whole, or fails as its samples do.
void read_into_memory(VBFFileInterface& file, std::uint64_t index, const VBFStackInterface& stack)
{
    if (stack.get_number_of_elements() > most_samples)
        return;
    try
    {
        require(file.read_stack(index, 0)->get_number_of_elements() == stack.get_number_of_elements());
    }
    catch (const VelaError&)
    {
    }
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

/// A file that opens gives all its stacks: nothing that their descriptions say may fail any more. One that does not
/// open has none. Either way the handle comes back.
void open_and_look(void* handle)
{
    VBFFile file;
    if (!is_accepted(*file.shared(), handle))
        require(file->number_of_stacks() == 0);
    for (std::uint64_t i = 0; i < file->number_of_stacks(); ++i)
    {
        const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(i);
        look_at(*stack);
        read(*stack, *file->get_stack(i));
        read_into_memory(*file.shared(), i, *stack);
        file->seek_to_end_of_stack(i);
    }
    require(file->detach() == handle);
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
