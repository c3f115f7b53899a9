/// A stack of a VBF file: its description, its tags, and its samples on disk.
#pragma once

#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>
#include <VelaStacks/VStackInfo.h>

#include <cstdint>
#include <string>
#include <vector>

/// A stack of a VBF file. `VBFFileInterface::add_stack` gives one to be written, `get_stack` one to be read.
///
/// **Life.** A stack that is written goes through the states of `get_state`: it gets its description by one of the
/// three `create`, is written by one or more calls of `write`, and is complete with its last sample or with `commit`.
/// From the first `write` on its description is locked. A stack whose last size is 0 when it is created by sizes is
/// *variable*: it takes whole steps of the other sizes until it is committed. A stack that is read is complete and
/// locked.
///
/// In addition to what `VStackInfoInterface` says, each `create` fails when there is a description already:
/// @throws VelaError id -1 "Cannot set data layout!"
///
/// What `VStackInfoInterface::create` throws leaves the state -1, in which `create` may be called again.
///
/// **File.** The stack does not own its file, and knows it until the file is closed. Afterwards the description and the
/// tags can still be looked at; reading and writing samples fail:
/// @throws VelaError id -1 "Cannot access VBFStack, file has been closed!"
///
/// **Samples** run in the order of the axes, axis 0 fastest, each `vela_dt_get_size(get_dt())` bytes. A buffer may have
/// any sample type: `vela_dt_convert` is called between them. Complex samples are in one buffer as pairs, with a
/// complex type of the buffer; or in two buffers, the real parts in one and the imaginary parts in the other, with a
/// real type for both.
///
/// For one thread at a time, together with its file. Virtual operations keep their order: other compiled code counts on
/// it.
class VELA_API VBFStackInterface : public virtual VStackInfoInterface
{
public:
    /// Reads and writes up to the end: all bits set.
    static constexpr std::uint64_t all_samples = ~static_cast<std::uint64_t>(0);
    /// The position behind the last sample, as `read` leaves it. It is not accepted as a position to read from.
    static constexpr std::uint64_t exhausted = ~static_cast<std::uint64_t>(0);
    /// The position where the last `read` of this object ended.
    static constexpr std::uint64_t continued = ~static_cast<std::uint64_t>(0) - 1;

    /// All keys of tags in ascending order of bytes.
    virtual std::vector<std::string> get_tag_keys() const = 0;

    /// Stores a typed tag as the property XML of its value, see `vela_export_xml`; the type is not stored.
    ///
    /// `value` points to one value of the sample type `type`, which is one of: 1, 2, 4, 8, 16, 32, 64, 128, 1024, 2048,
    /// 4096, 8192, 0x10000 (`bool`), those of 1 to 128, 4096 and 8192 with the complex bit 0x40000000 as
    /// `std::complex`; or to a `VProp` with 16384. 16 and 2048 share their type. A tag that is set after the footer was
    /// written stays in memory.
    /// @throws VelaError id -1 "Tag type not supported!"
    /// @throws what `vela_export_xml` throws, such as for 1024
    virtual void set_tag(const std::string& key, int type, const void* value) = 0;

    /// Stores a tag as it stands, in the place of one with the same key. On disk an empty key ends the tags for a
    /// reader: do not use it.
    virtual void set_tag(const std::string& key, const std::string& text) = 0;

    /// Reads a typed tag into the value that `value` points to; the types are those of `set_tag`. False, and
    /// `value` untouched, when there is no such tag.
    /// @throws VelaError id -1 "Tag type not supported!"
    /// @throws what `vela_import_xml` throws, and what `VProp::get` does: nothing is converted to another type
    virtual bool get_tag(const std::string& key, int type, void* value) const = 0;

    /// The text of a tag as it is stored.
    /// @throws VelaError id -1 "Tag with key '%s' not found!" on the key
    virtual std::string get_tag(const std::string& key) const = 0;

    /// Writes the next `count` samples from `data`, and from `imag` where the imaginary parts have their own buffer
    /// (else null). `type` is that of the buffers. A `count` of 0 commits; `all_samples` is all that are left, in the
    /// first call of a stack only. The last sample completes the stack, but for a variable one.
    ///
    /// The first call fixes the description, writes the headers of file and stack, and, where the type of the
    /// samples was left open, takes `type` for it, with the complex bit where there is `imag`. The progress
    /// callback of the file is asked behind each chunk. `all_samples` in the first call of a variable stack writes
    /// nothing and commits it.
    ///
    /// **Failures.** What is wrong before anything of the stack is written leaves it in state 1, as if there had been
    /// no call. Any other failure leaves it in state 2, without a footer and outside the chain of the file:
    /// - The system refused the header, for want of space for instance: the next call writes it.
    /// - The first call was refused before that, for its imaginary buffer, its count or a header that cannot be: the
    ///   stack has no header on disk and cannot be completed. What is written to it is "Trying to write to file in read
    ///   mode!", id -1, or one of the failures below. `add_stack` and `close` say the same, since they commit.
    /// - A compressed stack whose samples could not all be written cannot be completed either: "File not open!", id -1.
    /// - Footer and link: `commit` tries them again, and so do `add_stack` and `close`.
    ///
    /// Samples count chunk by chunk. **A chunk after which the callback cancelled or threw is on disk, but does not
    /// count**: do not write on. What is written next stands behind that chunk, so all samples from there on would be
    /// shifted, and a stack of known size be complete with the wrong ones. A variable stack can be committed: it has
    /// the samples that were counted.
    ///
    /// The callback may close or destroy the file, or complete the stack. The call then fails as one on such a stack
    /// does. It must not write to the stack.
    ///
    /// @throws VelaError id -1 "Stack not ready to be commited. Meta-information missing!": there is no description
    /// @throws VelaError id -1 "Stack is already complete. Invalid call to write()!"
    /// @throws VelaError id -1 "Trying to write to empty stack!": the stack was added as empty, and `count` is not 0;
    ///         before anything is written
    /// @throws VelaError id -1 "Stack data type not set. Cannot commit stack to file!": before anything is written
    /// @throws std::invalid_argument "Unsupported data type": the type was left open, and OME does not have that of
    ///         these samples; before anything is written, and the type stays open
    /// @throws VelaError id -1 "Imaginary block given but buffer is already complex!"
    /// @throws VelaError id -1 "Imaginary block given but stack is not complex!"
    /// @throws VelaError id -1 "Trying to write more samples than the stack is long!"
    /// @throws VelaError id -1 "Not on sample boundary!": a variable stack is committed inside a step; or its step has
    ///         no samples, and that before anything is written
    /// @throws VelaError id -1 "Not enough samples written!": committed too early
    /// @throws VelaError id -1 "Invalid compression type specified!": nothing of the stack is written, and it cannot be
    ///         completed any more
    /// @throws VelaError id -1 "Size of axis %d does not fit the file format!" on the axis: 2^32 columns or more.
    ///         Nothing of the stack is written, and it cannot be completed any more; a variable stack is as before the
    ///         call that would make it grow to that
    /// @throws VelaError id -1 "Rank %d does not fit the file format!": more than 15 axes. Nothing of the stack is
    ///         written, and it cannot be completed any more
    /// @throws VelaError id -1 "The size increases the maximum size": more bytes than 64 bits can count; before
    ///         anything is written
    /// @throws std::invalid_argument "Unsupported number of sizes": samples for a variable stack of more than five
    ///         axes; before anything is written
    /// @throws VelaError id -1 "String too long for its 4-byte length!": a text of 2^32 bytes or more
    /// @throws VelaError id -1 "Invalid on-the-fly conversion from '%s' to '%s'!" on the names of `type` and of the
    ///         type of the stack; also where one of them has no size, and then before anything is written
    /// @throws VelaError id -11 "Cancelled by user!"
    /// @throws VelaError id -1 "Invalid meta information! Could not export to xml.\n%s" on what `vela_export_xml` says
    /// @throws VelaError id -1 "Cannot access VBFStack, file has been closed!": also by the callback
    /// @throws what `VZippedSegment` and `VFile` throw, and what the callback throws
    virtual void write(int type, const void* data, const void* imag, std::uint64_t count) = 0;

    /// `write(type, nullptr, nullptr, 0)`.
    virtual void commit(int type) = 0;

    /// Reads the whole stack: the other form with `all_samples` from position 0.
    virtual void read(int type, void* data, void* imag) = 0;

    /// Reads `count` samples from `pos` on into `data`, and the imaginary parts into `imag` where it is not null.
    /// `type` is that of the buffers. `count` is cut to what is left. Returns the number of samples read.
    ///
    /// `pos` becomes the position behind them, or `exhausted` at the end of the stack. Given as `continued` it is where
    /// the last `read` of this object ended. The position of the file is put back. A stack without data on disk gives
    /// zeros and leaves `pos` alone. The progress callback of the file is asked before each chunk. It may close or
    /// destroy the file, which ends the read.
    ///
    /// A failure leaves `pos` and what `continued` stands for as they were.
    ///
    /// Reading on costs no seek. A jump costs reading from the last flush point on; see `set_flush_block_size`.
    ///
    /// @throws VelaError id -1 "Invalid position (-1) passed. Possible reason: Last read call exhausted data."
    /// @throws VelaError id -1 "Stack not committed to disk. Cannot read!"
    /// @throws VelaError id -1 "Imaginary buffer passed but buffer type is already complex!"
    /// @throws VelaError id -1 "Imaginary buffer passed but stack is not complex!"
    /// @throws VelaError id -1 "Invalid position in segment!": `pos` is not below the number of samples
    /// @throws VelaError id -1 "Invalid on-the-fly conversion from '%s' to '%s'!" on the names of the type of the stack
    ///         and of `type`; also where that of the stack has no size
    /// @throws VelaError id -4 "Invalid dimension_sizes in stack header!": the samples, in the type of the stack or
    ///         as they are asked for, have more bytes than can be counted
    /// @throws VelaError id -11 "Cancelled by user!"
    /// @throws VelaError id -1 "Cannot access VBFStack, file has been closed!": also by the callback
    /// @throws what `VZippedSegment` and `VFile` throw, and what the callback throws
    virtual std::uint64_t read(int type, void* data, void* imag, std::uint64_t count, std::uint64_t& pos) = 0;

    /// How the samples will be stored: `type` 0 as they are, 1 with zlib at `level` (0 is as they are, too). Not tested
    /// here; the first `write` refuses a type of 2 or above.
    /// @throws VelaError id -1 "Cannot change compression mode!": the state is neither -1 nor 1
    virtual void set_compression(int type, int level) = 0;

    virtual void get_compression(int& type, int& level) const = 0;

    /// The uncompressed bytes between two flush points, at which a reader can start; 0 for none. Without this call
    /// it is chosen: 64 to 256 KiB and whole rows where that is possible. A stack of less than 64 KiB has none, nor has
    /// a variable one.
    /// @throws VelaError id -1 "Flush block size can only be set before starting to write!": the state is not 1
    virtual void set_flush_block_size(std::uint64_t size_bytes) = 0;

    /// -1 no description yet, 1 described, 2 being written, 0 complete.
    virtual int get_state() const = 0;

    ~VBFStackInterface() override;
};
