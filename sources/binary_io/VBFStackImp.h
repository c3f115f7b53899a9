/// The stack of a VBF file.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaBinaryIO/VBFStack.h>
#include <VelaFile/VZippedSegment.h>
#include <VelaStacks/VStackInfo.h>

#include "sources/binary_io/NotCopied.h"
#include "sources/binary_io/ScratchBuffer.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class VBFFileImp;

namespace Vela::detail {
struct StackRecord;
}

/// Where it lives: VBFStackImp.cpp (making, compression), VBFStackImp_tags.cpp (tags),
/// VBFStackImp_record.cpp (from a record), VBFStackImp_keep.cpp (to one), VBFStackImp_read.cpp, VBFStackImp_write.cpp,
/// VBFStackImp_footer.cpp (header and footer to disk), flush_block.cpp (the choice of the flush block).
class VBFStackImp : public VBFStackInterface, public VStackInfoImp
{
public:
    /// A stack to be written.
    explicit VBFStackImp(VBFFileImp* in_file);
    /// A stack of a file: locked and complete.
    /// @throws what `StackRecordReader::read` throws for a description that a stack cannot have
    VBFStackImp(VBFFileImp* in_file, const Vela::detail::StackRecord& record);
    /// A stack of its own on the same file. The segment of `other` must not have been started to write; that of the
    /// copy is started by its first `read`.
    VBFStackImp(const VBFStackImp& other);
    VBFStackImp& operator=(const VBFStackImp&) = delete;

    void set_acquisition_date() override;
    void set_len(const std::vector<double>& lens) override;
    void set_off(const std::vector<double>& offs) override;
    Ome::Image<Json::SignalingReference>& meta_data() override;
    using VStackInfoImp::set_len;
    using VStackInfoImp::set_off;

    void create(const std::vector<std::uint64_t>& sizes, vela_dt dt) override;
    void create(const VStackInfoInterface* info, vela_dt dt) override;
    void create(const VStackInfoInterface* info, const VStackRegion& region) override;

    std::vector<std::string> get_tag_keys() const override;
    void set_tag(const std::string& key, int type, const void* value) override;
    void set_tag(const std::string& key, const std::string& text) override;
    bool get_tag(const std::string& key, int type, void* value) const override;
    std::string get_tag(const std::string& key) const override;
    void write(int type, const void* data, const void* imag, std::uint64_t count) override;
    void commit(int type) override;
    void read(int type, void* data, void* imag) override;
    std::uint64_t read(int type, void* data, void* imag, std::uint64_t count, std::uint64_t& pos) override;
    void set_compression(int type, int level) override;
    void get_compression(int& type, int& level) const override;
    void set_flush_block_size(std::uint64_t size_bytes) override;
    int get_state() const override;
    ~VBFStackImp() override;

    /// @name For the file
    /// @{
    void set_file(VBFFileImp* in_file) { file = in_file; }
    void set_empty(bool is_empty) { empty = is_empty; }
    /// Makes this the stack of a DBL file: complete and locked, `in_data_length` bytes of samples as they are.
    void set_plain_data(const std::vector<std::uint64_t>& in_sizes, const std::vector<double>& in_lengths,
                        vela_dt in_dt, std::uint64_t in_data_pos, std::uint64_t in_data_length);
    std::uint64_t get_header_pos() const { return header_pos; }
    /// Complete, and all samples are zeros that are not on disk.
    bool is_without_data() const { return state == 0 && empty; }
    /// Whether a stack made from `to_record()` is the same for everybody who looks at it.
    bool fits_record() const;
    /// `like`, where not null, is the record of another stack, with which what is equal is shared.
    Vela::detail::StackRecord to_record(const Vela::detail::StackRecord* like) const;
    /// 0 in a stack that was written here.
    std::uint64_t get_stack_end_pos() const { return stack_end_pos; }
    /// @}

private:
    struct ReadTarget;
    class FilePosition;

    void require_no_description() const;
    template <class CreateBase>
    void create_fixed(CreateBase create_base);
    void describe(const Vela::detail::StackRecord& record);
    std::uint64_t read_imp(int type, void* data, void* imag, std::uint64_t count, std::uint64_t& pos);
    void require_readable(std::uint64_t first) const;
    void require_imaginary_parts(vela_dt type) const;
    void require_countable_bytes(vela_dt type) const;
    void read_chunks(std::uint64_t first, std::uint64_t count, ReadTarget target, FilePosition& file_position);
    void move_to(std::uint64_t sample);
    void read_chunk(std::uint64_t count, const ReadTarget& target);

    // The steps of `write`.
    void require_writable() const;
    std::uint64_t begin_writing(int type, const void* imag, std::uint64_t count);
    void take_type(int type);
    void require_countable_samples(int type, std::uint64_t count) const;
    void require_steps(std::uint64_t count) const;
    void require_imaginary_place(int type, const void* imag) const;
    void require_room(std::uint64_t count) const;
    void require_complete() const;
    void start_record();
    void write_samples(int type, const void* data, const void* imag, std::uint64_t count);
    void require_still_open(std::uint64_t count) const;
    void take_steps();
    const unsigned char* in_stack_type(int type, const unsigned char* data, const unsigned char* imag,
                                       std::uint64_t count);
    template <class Operation>
    void with_stream(Operation operation);
    std::uint64_t end_stream();
    void finish_record();
    void require_place_in_chain();
    unsigned char* get_scratch(std::uint64_t count);

    // Header and footer on disk.
    VBFStackHeader make_header() const;
    void write_header(const VBFStackHeader& header);
    void write_footer();
    void compose_metadata();
    void write_behind_footer(VFileAccess& stream) const;
    void patch_record(std::uint64_t footer_pos, std::uint64_t end_pos) const;

    /// What `VZippedSegment::is_initialized` says.
    static constexpr int segment_reads = 1;
    static constexpr int segment_writes = 2;

    std::map<std::string, std::string> tags;
    VBFFileImp* file;
    bool empty = false;
    std::int32_t compression_type = 0;
    std::int32_t compression_level = 1;
    std::int32_t state = -1;
    bool lacks_header = false;       ///< the system refused it; the next call writes it
    bool has_own_ome_record = false; ///< somebody may have put more into it than the description says
    std::uint64_t data_pos = 0;
    std::uint64_t data_length = 0; ///< bytes on disk
    std::uint64_t header_pos = 0;
    std::uint64_t stack_end_pos = 0;
    std::uint64_t samples_per_step = 1;
    std::uint64_t samples_left = 0;
    std::uint64_t samples_written = 0;
    std::uint64_t read_pos = 0;                                   ///< in samples
    Vela::detail::NotCopied<Vela::detail::ScratchBuffer> scratch; ///< one chunk at most, for conversion
    Vela::detail::NotCopied<VZippedSegment> segment;
    bool variable = false;                                  ///< the last axis grows while samples are written
    std::uint64_t flush_block_size = VFileAccess::all_ones; ///< bytes; all ones: not chosen yet
    std::vector<std::uint64_t> flush_positions;
};
