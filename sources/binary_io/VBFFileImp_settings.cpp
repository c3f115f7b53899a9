// What a caller sets for a file before stacks are written.
#include "sources/binary_io/VBFFileImp.h"

#include <VelaBase/VelaError.h>

#include "ome/qt_checks.h"

#include <limits>

void VBFFileImp::set_creator(const std::string& creator)
{
    ome_root.creator = creator;
}

void VBFFileImp::set_uuid(const std::string& uuid)
{
    ome_root.uuid = Ome::detail::uuid_urn(uuid);
}

void VBFFileImp::set_file_desc(const std::string& text)
{
    if (!writable)
        throw VelaError("VBFFileImp::set_file_desc", __FILE__,
                        __LINE__)("Read-only handle specified in write function!")(-9);
    if (!header_pending)
        throw VelaError("VBFFileImp::set_file_desc", __FILE__,
                        __LINE__)("Header already written. Cannot set file description!")(-1);
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        throw VelaError("VBFFileImp::set_file_desc", __FILE__, __LINE__)("String too long for its 4-byte length!")(-1);
    description = text;
}

void VBFFileImp::get_file_desc(std::string& out_text) const
{
    out_text = description;
}

void VBFFileImp::set_default_compression(int type, int level)
{
    default_compression_type = type;
    default_compression_level = level;
}

void VBFFileImp::set_progress_callback(vela_progress_callback callback, void* user)
{
    progress_callback = callback;
    progress_user = user;
}

bool VBFFileImp::report_progress(std::uint64_t size_bytes) const
{
    return progress_callback == nullptr || progress_callback(size_bytes, progress_user) != 0;
}
