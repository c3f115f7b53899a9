// Handing out the stacks of a file.
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStack.h>

#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/file/file_errors.h"
#include "sources/stacks/StackFiller.h"

#include <boost/make_shared.hpp>

#include <cstdint>
#include <vector>

std::uint64_t VBFFileImp::Entry::end_pos() const
{
    return written != nullptr ? written->get_stack_end_pos() : record->stack_end_pos;
}

boost::shared_ptr<VBFStackImp> VBFFileImp::Entry::copy(VBFFileImp* file) const
{
    return written != nullptr ? boost::make_shared<VBFStackImp>(*written)
                              : boost::make_shared<VBFStackImp>(file, *record);
}

void VBFFileImp::Entry::lose_file() const
{
    if (written != nullptr)
        written->set_file(nullptr);
}

boost::shared_ptr<VBFStackInterface> VBFFileImp::get_stack(std::uint64_t index)
{
    return copy_of(index);
}

boost::shared_ptr<VBFStackImp> VBFFileImp::copy_of(std::uint64_t index)
{
    if (index >= stacks.size())
        throw VelaError("VBFFileImp::get_stack", __FILE__, __LINE__)("Invalid stack index %d!",
                                                                     Vela::detail::low_bits(index))(-4);
    boost::shared_ptr<VBFStackImp> copy = stacks[index].copy(this);
    remember_handle(copy);
    return copy;
}

/// Those that are gone leave when the list would grow, so it is never longer than twice the most that lived at once.
void VBFFileImp::remember_handle(const boost::shared_ptr<VBFStackImp>& copy)
{
    if (handles.size() == handles.capacity())
    {
        std::erase_if(handles, [](const boost::weak_ptr<VBFStackImp>& known) { return known.expired(); });
        handles.reserve(2 * handles.size() + 1);
    }
    handles.push_back(copy);
}

boost::shared_ptr<VStackInterface> VBFFileImp::read_stack(std::uint64_t index, int flags)
{
    const boost::shared_ptr<VBFStackImp> stored = copy_of(index);
    const auto stack = boost::make_shared<VStackImp>();
    if (stored->is_without_data())
    {
        // Zeros that nobody looks at take no memory: a small file may promise more of them than there is.
        stack->create(stored.get(), flags);
        return stack;
    }
    Vela::StackFiller::create(*stack, stored.get(), flags,
                              [&] { stored->read(stack->get_dt(), stack->get_data_ptr(), nullptr); });
    return stack;
}

std::uint64_t VBFFileImp::seek_to_end_of_stack(std::uint64_t index)
{
    if (writable || !VFile::is_open())
        throw VelaError("VBFFileImp::seek_to_end_of_stack", __FILE__,
                        __LINE__)("File must be open in read mode to allow seeking to end of file!")(-1);
    if (index >= stacks.size())
        throw VelaError("VBFFileImp::seek_to_end_of_stack", __FILE__, __LINE__)("Invalid stack number!")(-1);
    const std::uint64_t end = stacks[index].end_pos();
    VFile::seek(end);
    return end;
}
