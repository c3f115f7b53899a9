/// A file of tests/data, open for reading.
#pragma once

#include <VelaBinaryIO/VBFFile.h>

#include "binary_io/manifest.h"
#include "support/descriptor.h"
#include "support/temporary_folder.h"

#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace vela_test {

/// Opens the file by its name; one that stands inside another stream is attached.
class OpenedFile
{
public:
    explicit OpenedFile(const DataFile& data_file)
    {
        if (data_file.start() == 0)
        {
            file.open(file_name(data_file.path()), VFile::read_mode);
            return;
        }
        descriptor = std::make_unique<Descriptor>(data_file.path(), O_RDONLY);
        ::lseek(descriptor->get(), static_cast<off_t>(data_file.start()), SEEK_SET);
        file->attach(descriptor->handle(), VFile::read_mode);
    }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;
    ~OpenedFile()
    {
        if (file->is_attached())
            file->detach();
    }

    VBFFileInterface* operator->() { return file; }

private:
    std::unique_ptr<Descriptor> descriptor;
    VBFFile file;
};

inline std::uint64_t size_of_sample(const VStackInfoInterface& stack)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(stack.get_dt()));
}

/// `count` samples from `pos` on, in their own type, into a buffer that held something else.
inline Bytes read_samples(VBFStackInterface& stack, std::uint64_t count, std::uint64_t& pos)
{
    Bytes samples(count * size_of_sample(stack), 0xcd);
    EXPECT_EQ(stack.read(stack.get_dt(), samples.data(), nullptr, count, pos), count);
    return samples;
}

} // namespace vela_test
