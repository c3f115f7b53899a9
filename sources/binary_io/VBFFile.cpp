#include <VelaBinaryIO/VBFFile.h>

#include "sources/binary_io/VBFFileImp.h"

#include <boost/make_shared.hpp>

VBFFile::VBFFile() : file(boost::make_shared<VBFFileImp>()) {}

VBFFile::VBFFile(const VPropstring& path, VFile::mode mode) : VBFFile()
{
    file->open(path, mode);
}

VBFFile::VBFFile(const VBFFile& other) = default;

VBFFile& VBFFile::operator=(const VBFFile& other) = default;

VBFFile::~VBFFile() = default;

void VBFFile::open(const VPropstring& path, VFile::mode mode)
{
    // The old file goes before the new one is opened: its lock would be in the way of opening the same path again.
    file = boost::make_shared<VBFFileImp>();
    file->open(path, mode);
}

void VBFFile::reset()
{
    file.reset();
}

boost::shared_ptr<VBFFileInterface> VBFFile::shared() const
{
    return file;
}

VBFFileInterface* VBFFile::operator->()
{
    return file.get();
}

const VBFFileInterface* VBFFile::operator->() const
{
    return file.get();
}

VBFFile::operator VBFFileInterface*()
{
    return file.get();
}

VBFFile::operator const VBFFileInterface*() const
{
    return file.get();
}
