/// VBF files: stacks of image data with their descriptions, one after the other.
///
///     VBFFile file(VPropstring(L"cells.vbf"), VFile::write_mode);
///     boost::shared_ptr<VBFStackInterface> stack = file->add_stack(false);
///     stack->create({512, 512, 30}, vela_dt_uint16);
///     stack->write(vela_dt_uint16, samples, nullptr, VBFStackInterface::all_samples);
///     file->close();
///
/// The bytes of a file are explained in docs/format.md.
#pragma once

#include <Json/SignalingReference.h>
#include <Ome/Document.h>
#include <VelaBase/export.h>
#include <VelaBinaryIO/VBFStack.h>
#include <VelaFile/VFile.h>
#include <VelaProps/VPropstring.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>

class VStackInterface;

/// Asked while samples are moved: the bytes of the chunk, in the type of the stack, and the pointer that was given
/// along. 0 cancels; what it throws comes out of the call that moves the samples.
typedef int (*vela_progress_callback)(std::uint64_t size_bytes, void* user);

/// The operations of a VBF file. A file is closed, open for reading, or open for writing.
///
/// Whatever ends up in a file is reachable only when it is whole: a stack is linked into the chain behind its
/// footer, the dictionary behind all stacks. A file whose writer died is refused by `open`; its finished
/// stacks are all there, see `vbf repair`.
///
/// Each `open` and `attach` starts afresh: the description, the format version and whatever else a former file of the
/// same object said is gone. What was set for the object stays: the OME document with creator and UUID, the default
/// compression, the progress callback and the size of chunks.
///
/// For one thread at a time, together with its stacks. Virtual operations keep their order: other compiled code
/// counts on it.
class VELA_API VBFFileInterface
{
public:
    /// Works on an open handle at its current position, without owning it; see `VelaFile/handle.h`. A VBF file
    /// may so stand inside another stream. A `VelaError` while the file is read puts the position back: to the start of
    /// the VBF file while its header is read, behind the header while its stacks are. The handle stays attached after
    /// any failure but the first, and the file has no stacks: call `detach`.
    /// @throws VelaError id -1 "File already open or attached!"
    /// @throws VelaError id -15 "Invalid opening mode!"
    /// @throws VelaError id -1 "File not open!": the handle is null
    /// @throws what `open` throws for what a file holds
    virtual void attach(void* handle, VFile::mode mode) = 0;

    /// Opens a file. A failure leaves no file open, but for that of a file that is open already. `VBFFile::open` lets
    /// go of that one first.
    ///
    /// `read_mode` reads the descriptions of all stacks; samples stay on disk. A path that ends with ".dbl" is an older
    /// file with one stack, see `VelaBinaryIO/vela_dbl.h`; it is presented as a VBF file. `write_mode` empties the
    /// file; nothing is written until the first stack or `close`. `append_mode` adds stacks behind those that are
    /// there. Appending to a file of format version 2 destroys its first bytes when it is closed: this is so; use `vbf
    /// append`, or `vbf repair` afterwards.
    ///
    /// @throws VelaError id -1 "File already open or attached!": that file is as it was
    /// @throws VelaError id -1 "Invalid file mode when opening file."
    /// @throws VelaError id -1 "Could not open file!"
    /// @throws VelaError id -4 "No VBF file header found!"
    /// @throws VelaError id -4 "Invalid stack position specified in header!": also for a chain that comes back,
    ///         and for stacks that share bytes
    /// @throws VelaError id -4 "Stack header not in vbf format!": also for a rank above 15
    /// @throws VelaError id -4 "Cannot read stack with file format reader version %d. Need >= %d!" on 5 and the
    ///         version that is needed
    /// @throws VelaError id -4 "Invalid footer_size in stack footer!": below 4
    /// @throws VelaError id -4 "Invalid flush_point_count in stack footer!": more bytes than can be counted
    /// @throws VelaError id -1 "Invalid metadata found!\n%s" on what the import of the metadata says
    /// @throws VelaError id -4 "Error reading .dbl file!"
    /// @throws VelaError id -3 "Failed reading %d bytes from file!": also for a file whose writer did not close it
    /// @throws what `VFile::open` and, for a description that a stack cannot have, `VStackInfoInterface::create` throw,
    ///         std::invalid_argument "Unsupported data type" among them
    virtual void open(VPropstring path, VFile::mode mode) = 0;

    /// Finishes the file when it is open for writing, and closes it. Stacks of the file know it no more.
    /// Quiet when nothing is open, so also the second time.
    /// @throws VelaError id -1 "Not enough samples written!" and what else `VBFStackInterface::commit` throws: the
    ///         last stack is not complete. The file stays open then, and only its destructor closes it.
    /// @throws VelaError id -1 "File not opened with open(), cannot close.": use `detach`
    /// @throws what `VFile` throws
    virtual void close() = 0;

    /// As `close`, but gives the handle back that was attached, standing behind the VBF file: in one that was read,
    /// behind its dictionary if that could be read. Null when there is none.
    ///
    /// Where the last stack is not complete it fails each time and the handle stays attached. It is the caller's all
    /// the same: the destructor of the file lets go of it and does not close it.
    /// @throws what `close` throws for the last stack, and `VFile`
    virtual void* detach() = 0;

    /// Writes what is pending: the file header, and the footer of the last stack, which it commits. Does nothing unless
    /// open for writing.
    /// @throws what `VBFStackInterface::commit` throws
    virtual void finish() = 0;

    /// The program that wrote the file, in the OME document of the file.
    virtual void set_creator(const std::string& creator) = 0;

    /// The UUID of the file, in its OME document: a text with or without braces, with or without "urn:uuid:".
    /// @throws std::bad_cast "bad cast": no UUID, or all zeros
    virtual void set_uuid(const std::string& uuid) = 0;

    /// The most bytes that are read, converted and written in one piece, 4 MiB at first. A chunk has at least one
    /// sample.
    virtual void set_chunk_size(std::uint32_t size_bytes) = 0;

    /// The description of the file.
    /// @throws VelaError id -9 "Read-only handle specified in write function!": not open for writing
    /// @throws VelaError id -1 "Header already written. Cannot set file description!": before the first `add_stack`
    ///         only
    /// @throws VelaError id -1 "String too long for its 4-byte length!": 2^32 bytes or more
    virtual void set_file_desc(const std::string& text) = 0;
    virtual void get_file_desc(std::string& out_text) const = 0;

    virtual std::uint64_t number_of_stacks() const = 0;

    /// Whether the handle is somebody else's.
    virtual bool is_attached() const = 0;

    /// Null for none, the state at first.
    virtual void set_progress_callback(vela_progress_callback callback, void* user) = 0;

    /// Moves to the position behind a stack, which is returned.
    /// @throws VelaError id -1 "File must be open in read mode to allow seeking to end of file!"
    /// @throws VelaError id -1 "Invalid stack number!"
    virtual std::uint64_t seek_to_end_of_stack(std::uint64_t index) = 0;

    /// Begins a new stack behind the others, with the default compression, and commits the one before. One that is
    /// declared `empty` has a description and no samples on disk; it reads as zeros.
    ///
    /// Of a complete stack that nobody holds when another is added, the file keeps no more than it would read of it:
    /// hold the pointer that is returned as long as the stack is used.
    ///
    /// The stack is in the file from now on. One that cannot be completed, since its `create` failed, makes
    /// `close` fail; check a description on a `VStackInfo` of its own first.
    /// @throws VelaError id -1 "File not open for writing!"
    /// @throws what `finish` throws
    virtual boost::shared_ptr<VBFStackInterface> add_stack(bool empty) = 0;

    /// A copy of a stack for reading, with a position of its own. That of a stack which is not complete can be looked
    /// at only: writing to it is not for it, and what it wrote would never be part of the file.
    /// @throws VelaError id -4 "Invalid stack index %d!" on the index
    virtual boost::shared_ptr<VBFStackInterface> get_stack(std::uint64_t index) = 0;

    /// Adds a stack in memory with its samples. `flags` is the sample type on disk, 0 for the stack's own.
    /// @throws what `add_stack`, `create` and `write` throw
    virtual void write_stack(VStackInterface* stack, int flags) = 0;

    /// Reads a stack with its samples. `flags` is the sample type in memory, 0 for the stack's own. The zeros of a
    /// stack without samples on disk take memory only where somebody writes to them.
    /// @throws what `get_stack`, `create` and `read` throw
    virtual boost::shared_ptr<VStackInterface> read_stack(std::uint64_t index, int flags) = 0;

    /// What `set_compression` of each new stack gets: 0 and 1 at first, which is no compression.
    virtual void set_default_compression(int type, int level) = 0;

    virtual VFile::mode get_mode() const = 0;
    virtual bool is_open() const = 0;

    virtual ~VBFFileInterface();

    /// The OME document of the file. `close` writes it; it is not read from a file.
    virtual Ome::Document<Json::SignalingReference>& ome() = 0;

    VBFFileInterface(const VBFFileInterface&) = delete;
    VBFFileInterface& operator=(const VBFFileInterface&) = delete;

protected:
    VBFFileInterface() = default;
};

/// A handle of a VBF file: copies share it. The file is closed with its last handle; what goes wrong then is lost, so
/// call `close` where that matters.
class VELA_API VBFFile
{
public:
    /// A file that is not open.
    VBFFile();
    /// @throws what `VBFFileInterface::open` throws
    VBFFile(const VPropstring& path, VFile::mode mode);
    VBFFile(const VBFFile& other);
    VBFFile& operator=(const VBFFile& other);
    ~VBFFile();

    /// Opens another file; the one before stays with its other handles. It is released first, so that the same path can
    /// be opened again.
    /// @throws what `VBFFileInterface::open` throws; the handle then has a file that is not open
    void open(const VPropstring& path, VFile::mode mode);

    /// Lets go of the file. The handle is empty then: only `open`, assignment, `reset` and `shared` may follow.
    void reset();

    boost::shared_ptr<VBFFileInterface> shared() const;

    VBFFileInterface* operator->();
    const VBFFileInterface* operator->() const;
    operator VBFFileInterface*();
    operator const VBFFileInterface*() const;

private:
    boost::shared_ptr<VBFFileInterface> file;
};

extern "C" {

/// A text for an id of the file layer, in one buffer of 2048 bytes for all callers and threads. 0 gives the empty text.
/// A negative `id` stands for the last error that was reported: its id, and behind the text a line break and its
/// report. Any other id: "Error in vbf module: " and the text of the id, such as "Error in vbf routine".
VELA_API const char* vela_bf_get_errorstring(int id);
}
