// What a file itself writes: its header, the links of the chain, its dictionary.
#include "sources/binary_io/VBFFileImp.h"

#include <Json/write.h>
#include <VelaBase/VelaError.h>

#include "sources/binary_io/FieldPatch.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/file_format.h"
#include "sources/file/WriteBehind.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <locale>
#include <sstream>

namespace {

/// Under which the OME document stands in the dictionary.
constexpr const char* ome_key = "ome_xml";

/// Writes what `compose` gives to a stream, in as few transfers as possible, and gives the position behind it. After a
/// failure the file stands where it stood before, so that the same can be tried again.
template <class Compose>
std::uint64_t write_at_once(VFile& file, Compose compose)
{
    const std::uint64_t start = file.tell();
    try
    {
        Vela::detail::WriteBehind stream(file);
        compose(stream);
        stream.flush();
        return stream.tell();
    }
    catch (...)
    {
        file.seek(start);
        throw;
    }
}

} // namespace

void VBFFileImp::write_file_header()
{
    if (!header_pending)
        return;
    const std::uint64_t start = tell();
    const bool has_dictionary = format_version > Vela::detail::last_version_without_dictionary;
    VBFFileHeader header = {};
    std::copy(std::begin(Vela::detail::file_magic), std::end(Vela::detail::file_magic), header.magic);
    header.format_version = format_version;
    header.description_length = static_cast<std::uint32_t>(description.size());
    write_at_once(*this,
                  [&](VFileAccess& stream)
                  {
                      stream.write_value(header);
                      stream.write_str(description, false);
                      if (has_dictionary)
                          stream.write_value(std::uint64_t{0});
                  });
    next_field_pos = start + offsetof(VBFFileHeader, first_stack_pos);
    if (has_dictionary)
        meta_field_pos = start + sizeof header + description.size();
    header_pending = false;
}

void VBFFileImp::finish()
{
    if (!writable)
        return;
    write_file_header();
    if (stacks.empty())
        return;
    VBFStackImp* const last = stacks.back().object();
    if (last != nullptr && last->get_state() != 0)
        last->commit(vela_dt_none);
}

void VBFFileImp::require_last(const VBFStackImp* stack) const
{
    if (stacks.empty() || stacks.back().object() != stack)
        throw VelaError("VBFFileImp::on_stack_finished", __FILE__,
                        __LINE__)("Invalid call to on_stack_finished()!")(-1);
}

void VBFFileImp::on_stack_finished(const VBFStackImp* stack)
{
    require_last(stack);
    if (next_field_pos != 0)
        Vela::detail::FieldPatch(*this, tell(), "VBFFileImp::on_stack_finished")
            .put(next_field_pos, stack->get_header_pos());
    next_field_pos = stack->get_header_pos() + offsetof(VBFStackHeader, next_stack_pos);
}

void VBFFileImp::close_imp()
{
    const bool has_dictionary = format_version > Vela::detail::last_version_without_dictionary;
    if (writable)
    {
        finish();
        if (has_dictionary)
            write_file_dictionary();
        writable = false;
    }
    else if (VFile::is_open() && has_dictionary && meta_end_pos != 0)
        seek(meta_end_pos); // a foreign stream goes on behind this file
    release_stacks();
}

/// The dictionary first and then the field that leads to it. In a file that was opened to append to, that field is not
/// known, and what is overwritten is the start of the file: see `VBFFileInterface::open`.
void VBFFileImp::write_file_dictionary()
{
    std::ostringstream document;
    document.imbue(std::locale::classic());
    Json::write_xml(ome_document, document);
    dictionary[ome_key] = document.str();

    const std::uint64_t start = tell();
    meta_end_pos = write_at_once(*this, [&](VFileAccess& stream) { write_dictionary(stream, dictionary); });
    meta_data_pos = start;
    Vela::detail::FieldPatch(*this, meta_end_pos, "VBFFileImp::close_imp").put(meta_field_pos, meta_data_pos);
}
