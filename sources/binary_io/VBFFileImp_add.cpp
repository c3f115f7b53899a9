// Stacks that are added to a file.
#include "sources/binary_io/VBFFileImp.h"

#include <VelaBase/VelaError.h>
#include <VelaStacks/VStack.h>

#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/size_of.h"
#include "sources/stacks/block_size.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

/// Writes samples that the block of a stack does not have as zeros.
void write_zeros(VBFStackInterface& stack, vela_dt dt, std::uint64_t count)
{
    constexpr std::uint64_t samples_at_once = 0x10000;
    const std::uint64_t most = std::min(count, samples_at_once);
    const std::vector<unsigned char> zeros(most * Vela::detail::size_of(dt));
    for (std::uint64_t left = count; left != 0; left -= std::min(left, most))
        stack.write(dt, zeros.data(), nullptr, std::min(left, most));
}

} // namespace

boost::shared_ptr<VBFStackInterface> VBFFileImp::add_stack(bool empty)
{
    if (!VFile::is_open() || !writable)
        throw VelaError("VBFFileImp::add_stack", __FILE__, __LINE__)("File not open for writing!")(-1);
    finish();
    shrink_finished_stacks();
    const auto stack = boost::make_shared<VBFStackImp>(this);
    stack->set_compression(default_compression_type, default_compression_level);
    stack->set_empty(empty);
    stacks.emplace_back(stack);
    return stack;
}

/// A caller may hold the last stack until the new one takes its place, so the one before it is tried again.
void VBFFileImp::shrink_finished_stacks()
{
    for (std::size_t back = std::min<std::size_t>(stacks.size(), 2); back > 0; --back)
    {
        const std::size_t index = stacks.size() - back;
        stacks[index].shrink(index > 0 ? &stacks[index - 1] : nullptr);
    }
}

void VBFFileImp::Entry::shrink(const Entry* before)
{
    if (written == nullptr || written.use_count() != 1 || !written->fits_record())
        return;
    const Vela::detail::StackRecord* const like = before != nullptr ? before->record.get() : nullptr;
    record = std::make_shared<const Vela::detail::StackRecord>(written->to_record(like));
    written.reset();
}

void VBFFileImp::write_stack(VStackInterface* stack, int flags)
{
    const boost::shared_ptr<VBFStackInterface> added = add_stack(false);
    added->create(stack, flags);
    const vela_dt dt = stack->get_dt();
    const std::uint64_t sample_size = Vela::detail::size_of(dt);
    const std::uint64_t count = added->get_number_of_elements();
    const unsigned char* const samples = static_cast<const VStackInterface*>(stack)->get_data_ptr();
    // Somebody who shares the samples may have made the block smaller than the description says.
    const std::uint64_t there =
        sample_size == 0 ? count : std::min(count, Vela::detail::block_size(*stack) / sample_size);
    if (there == count)
        return added->write(dt, samples, nullptr, VBFStackInterface::all_samples);
    if (there != 0)
        added->write(dt, samples, nullptr, there);
    write_zeros(*added, dt, count - there);
}
