/// The VBF file.
#pragma once

#include <Json/Value.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFHeaders.h>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class VBFStackImp;

namespace Vela::detail {
class ReadAhead;
struct StackRecord;
}

/// Where it lives: VBFFileImp.cpp (life and state), VBFFileImp_settings.cpp (what a caller sets), VBFFileImp_open.cpp
/// (opening and the chain), VBFFileImp_dbl.cpp (DBL files), VBFFileImp_stacks.cpp (handing out stacks),
/// VBFFileImp_add.cpp (adding stacks), VBFFileImp_write.cpp (header, links and dictionary to disk). VBFFile.cpp has the
/// handle class.
class VBFFileImp : public VBFFileInterface, public VFile
{
public:
    VBFFileImp();

    void attach(void* handle, VFile::mode mode) override;
    void open(VPropstring path, VFile::mode mode) override;
    void close() override;
    void* detach() override;
    void finish() override;
    void set_creator(const std::string& creator) override;
    void set_uuid(const std::string& uuid) override;
    void set_chunk_size(std::uint32_t size_bytes) override;
    void set_file_desc(const std::string& text) override;
    void get_file_desc(std::string& out_text) const override;
    std::uint64_t number_of_stacks() const override;
    bool is_attached() const override;
    void set_progress_callback(vela_progress_callback callback, void* user) override;
    std::uint64_t seek_to_end_of_stack(std::uint64_t index) override;
    boost::shared_ptr<VBFStackInterface> add_stack(bool empty) override;
    boost::shared_ptr<VBFStackInterface> get_stack(std::uint64_t index) override;
    void write_stack(VStackInterface* stack, int flags) override;
    boost::shared_ptr<VStackInterface> read_stack(std::uint64_t index, int flags) override;
    void set_default_compression(int type, int level) override;
    VFile::mode get_mode() const override;
    bool is_open() const override;
    ~VBFFileImp() override;
    Ome::Document<Json::SignalingReference>& ome() override;

    /// @name For the stacks
    /// @{

    /// Writes the file header unless that is done. The first `write` of a stack calls it.
    void write_file_header();
    /// @throws VelaError id -1 "Invalid call to on_stack_finished()!": not the last stack
    void require_last(const VBFStackImp* stack) const;
    /// Links a stack whose footer is written into the chain. A failure leaves the chain as it was.
    /// @throws what `require_last` throws
    void on_stack_finished(const VBFStackImp* stack);
    bool has_progress_callback() const { return progress_callback != nullptr; }
    /// False when the caller cancels. The callback may have destroyed this.
    bool report_progress(std::uint64_t size_bytes) const;
    /// @}

private:
    /// A stack of the chain: what the file says of it, or the object that was or is being written.
    class Entry
    {
    public:
        explicit Entry(std::shared_ptr<const Vela::detail::StackRecord> in_record) : record(std::move(in_record)) {}
        explicit Entry(boost::shared_ptr<VBFStackImp> in_written) : written(std::move(in_written)) {}

        std::uint64_t end_pos() const;
        boost::shared_ptr<VBFStackImp> copy(VBFFileImp* file) const;
        /// Null for one that was read.
        VBFStackImp* object() const { return written.get(); }
        void lose_file() const;
        /// Keeps of an object that nobody else holds only what a file would say of it. `before`: the stack in front of
        /// it.
        void shrink(const Entry* before);

    private:
        std::shared_ptr<const Vela::detail::StackRecord> record; ///< one of the two is set
        boost::shared_ptr<VBFStackImp> written;
    };

    void attach_imp(VFile::mode mode);
    void forget_file();
    void read_file();
    VBFFileInfo read_front(Vela::detail::ReadAhead& stream);
    void read_chain(Vela::detail::ReadAhead& stream, std::uint64_t first_stack_pos);
    void shrink_finished_stacks();
    boost::shared_ptr<VBFStackImp> copy_of(std::uint64_t index);
    void remember_handle(const boost::shared_ptr<VBFStackImp>& copy);
    /// -1: not a path of such a file.
    int open_bf_dbl(const VPropstring& path);
    void close_imp();
    void write_file_dictionary();
    void release_stacks();

    /// Of the files that are written.
    static constexpr std::uint32_t newest_format_version = 2;

    std::uint64_t next_field_pos = 0; ///< of the field that gets the position of the next finished stack; 0: not known
    bool header_pending = false;
    std::int32_t default_compression_type = 0;
    std::int32_t default_compression_level = 1;
    bool writable = false;
    bool attached = false;                             ///< the handle is somebody else's
    bool has_handle = false;                           ///< while it is open, unless null was attached
    std::vector<Entry> stacks;                         ///< in the order of the chain
    std::vector<boost::weak_ptr<VBFStackImp>> handles; ///< copies that were handed out
    vela_progress_callback progress_callback = nullptr;
    void* progress_user = nullptr;
    std::string description;
    std::uint32_t format_version = newest_format_version;
    Json::Value ome_document;
    Json::SignalingReference ome_reference;
    Ome::Document<Json::SignalingReference> ome_root;
    VBFDictionary dictionary;
    std::uint64_t meta_data_pos = 0;
    std::uint64_t meta_end_pos = 0;
    std::uint64_t meta_field_pos = 0;
};
