/// A VBF file behind a face of plain values, for bindings.
#pragma once

#include <Remote/Stack.h>
#include <VelaBase/export.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaFile/VFile.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>

namespace Remote {
VELA_ABI_NAMESPACE_BEGIN

/// Whole stacks from and into a VBF file. Copies share the file, so the first one that is destroyed closes it for all:
/// this is wanted.
///
/// Nothing is caught here: each operation fails as the operation of `VBFFileInterface` that it calls.
class VELA_API File
{
public:
    /// `VFile::read_mode`, `VFile::write_mode`, `VFile::append_mode`.
    typedef VFile::mode Mode;

    /// Opens a file, named in the system's encoding, which is UTF-8 on POSIX.
    /// @throws what `VBFFileInterface::open` throws
    File(const std::string& path, Mode mode);
    File(const File& other);
    File& operator=(const File& other);

    /// As `close`, but what goes wrong is lost.
    ~File();

    /// The description of the file.
    std::string description() const;

    /// Before the first stack is written only.
    /// @throws what `VBFFileInterface::set_file_desc` throws
    void set_description(const std::string& new_description);

    /// The low 32 bits of the number count, as a signed number whose sign is kept: 2^31 stacks are 2^64 - 2^31. This is
    /// a limit of the interface.
    std::uint64_t number_of_stacks() const;

    /// Reads a stack into the memory of this process. `flags` is its sample type there, 0 for the one of the file.
    /// @throws what `VBFFileInterface::read_stack` throws
    boost::shared_ptr<Stack> read(std::uint64_t index, int flags) const;

    /// Writes a stack, whoever implements it: takes its description, and its samples from the segment that
    /// `stack->share()` names. So it may live in another process; one of this process goes to shared memory for good.
    /// `flags` is the sample type in the file, 0 for the stack's own. `stack` must not be null.
    /// @throws what the constructor of `VStackImp` over a `Stack` and `VBFFileInterface::write_stack` throw
    void write(boost::shared_ptr<Stack> stack, int flags);

    /// Finishes and closes the file, also for its copies.
    /// @throws what `VBFFileInterface::close` throws
    void close();

private:
    VBFFile file;
};

VELA_ABI_NAMESPACE_END
}
