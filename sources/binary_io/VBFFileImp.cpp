// The state of a file, and the operations that are a few lines.
#include "sources/binary_io/VBFFileImp.h"

#include <VelaBase/VelaError.h>

#include "sources/binary_io/VBFStackImp.h"

VBFFileInterface::~VBFFileInterface() = default;

VBFFileImp::VBFFileImp() : ome_reference(ome_document), ome_root(ome_reference) {}

VBFFileImp::~VBFFileImp()
{
    try
    {
        close_imp();
    }
    catch (...)
    {
        // Nobody is there to tell. Stacks that outlive the file must not go on to use it.
        release_stacks();
    }
}

void VBFFileImp::attach(void* new_handle, VFile::mode attach_mode)
{
    VFile::attach(new_handle, attach_mode);
    attached = true;
    has_handle = new_handle != nullptr;
    attach_imp(attach_mode);
}

void VBFFileImp::open(VPropstring path, VFile::mode open_mode)
{
    if (open_mode == VFile::read_mode && open_bf_dbl(path) == 0)
        return;
    VFile::open(path, open_mode);
    attached = false;
    has_handle = true;
    try
    {
        attach_imp(open_mode);
    }
    catch (...)
    {
        VFile::close();
        has_handle = false;
        throw;
    }
}

void VBFFileImp::close()
{
    if (VFile::is_open())
        close_imp();
    VFile::close();
    has_handle = false;
}

void* VBFFileImp::detach()
{
    if (has_handle)
        close_imp();
    attached = has_handle = writable = false;
    return VFile::detach();
}

void VBFFileImp::release_stacks()
{
    for (const Entry& entry : stacks)
        entry.lose_file();
    for (const boost::weak_ptr<VBFStackImp>& copy : handles)
        if (const boost::shared_ptr<VBFStackImp> stack = copy.lock())
            stack->set_file(nullptr);
    stacks.clear();
    handles.clear();
}

void VBFFileImp::set_chunk_size(std::uint32_t size_bytes)
{
    VFile::set_chunk_size(size_bytes);
}

std::uint64_t VBFFileImp::number_of_stacks() const
{
    return stacks.size();
}

bool VBFFileImp::is_attached() const
{
    return attached;
}

VFile::mode VBFFileImp::get_mode() const
{
    return VFile::get_mode();
}

bool VBFFileImp::is_open() const
{
    return VFile::is_open();
}

Ome::Document<Json::SignalingReference>& VBFFileImp::ome()
{
    return ome_root;
}
