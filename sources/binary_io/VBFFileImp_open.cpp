// Opening: the header of the file, its dictionary, and the chain of its stacks.
#include <VelaBase/VelaError.h>

#include "sources/binary_io/StackRecordReader.h"
#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/chain_walk.h"
#include "sources/binary_io/file_format.h"
#include "sources/file/ReadAhead.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

using Vela::detail::ReadAhead;
using Vela::detail::StackRecord;
using Vela::detail::StackRecordReader;

namespace {

/// Calls `read`; where a `VelaError` comes out of it, the file is moved to `position` first.
template <class Read>
void read_or_return_to(std::uint64_t position, VFile& file, Read read)
{
    try
    {
        read();
    }
    catch (const VelaError&)
    {
        file.seek(position);
        throw;
    }
}

} // namespace

void VBFFileImp::attach_imp(VFile::mode attach_mode)
{
    forget_file();
    switch (attach_mode)
    {
    case VFile::read_mode:
        return read_file();
    case VFile::write_mode:
        writable = true;
        header_pending = true;
        return;
    case VFile::append_mode:
        read_file();
        VFile::seek(all_ones);
        writable = true;
        return;
    }
    throw VelaError("VBFFileImp::attach_imp", __FILE__, __LINE__)("Invalid opening mode!")(-15);
}

/// The state of an object that has had no file yet, but for what callers set beforehand.
void VBFFileImp::forget_file()
{
    release_stacks();
    next_field_pos = 0;
    header_pending = writable = false;
    description.clear();
    format_version = newest_format_version;
    dictionary.clear();
    meta_data_pos = meta_end_pos = meta_field_pos = 0;
}

void VBFFileImp::read_file()
{
    const std::uint64_t start = VFile::tell();
    next_field_pos = start + offsetof(VBFFileHeader, first_stack_pos);
    ReadAhead stream(*this);
    VBFFileInfo info;
    read_or_return_to(start, *this, [&] { info = read_front(stream); });
    const std::uint64_t after_header = stream.tell();
    read_or_return_to(after_header, *this, [&] { read_chain(stream, info.header.first_stack_pos); });
    header_pending = false;
    VFile::seek(after_header);
}

/// A `meta_data_pos` that the system refuses is not left: what stands behind the header is tried.
VBFFileInfo VBFFileImp::read_front(ReadAhead& stream)
{
    VBFFileInfo info = read_file_header(stream);
    format_version = info.header.format_version;
    description = info.description;
    if (format_version <= Vela::detail::last_version_without_dictionary)
        return info;
    meta_data_pos = info.meta_data_pos;
    const std::uint64_t after_header = stream.tell();
    stream.seek(meta_data_pos);
    read_dictionary(stream, dictionary);
    meta_end_pos = stream.tell();
    stream.seek(after_header);
    return info;
}

void VBFFileImp::read_chain(ReadAhead& stream, std::uint64_t first_stack_pos)
{
    StackRecordReader reader(stream);
    std::vector<Entry> chain;
    std::uint64_t field_pos = next_field_pos;
    Vela::detail::walk_chain(stream, first_stack_pos,
                             [&](std::uint64_t position)
                             {
                                 const auto record = std::make_shared<const StackRecord>(reader.read(position));
                                 chain.emplace_back(record);
                                 field_pos = position + offsetof(VBFStackHeader, next_stack_pos);
                                 return std::uint64_t{record->header.next_stack_pos};
                             });
    stacks = std::move(chain);
    next_field_pos = field_pos;
}
