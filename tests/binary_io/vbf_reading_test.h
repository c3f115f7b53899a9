/// A fixture for tests that read VBF files which they build themselves, without the library's writer.
#pragma once

#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFStack.h>

#include "support/descriptor.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"
#include "support/temporary_folder.h"
#include "support/vbf_records.h"

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace vela_test {

typedef boost::shared_ptr<VBFStackInterface> StackPointer;

constexpr const char* binary_io_folder = "sources/binary_io";
constexpr const char* closed_text = "Cannot access VBFStack, file has been closed!";
constexpr const char* exhausted_text = "Invalid position (-1) passed. Possible reason: Last read call exhausted data.";

class VbfReadingTest : public FolderTest
{
protected:
    /// Writes a file and gives its path. A new file, because some file systems wait for the disk when an old one is cut.
    std::string put(const VbfBytes& built, const std::string& name = "test.vbf")
    {
        std::filesystem::remove(path(name));
        put_bytes(path(name), built.bytes());
        return path(name);
    }

    /// Writes a file and opens it.
    VBFFile& open(const VbfBytes& built, const std::string& name = "test.vbf")
    {
        file.reset();
        put(built, name);
        file.open(file_name(path(name)), VFile::read_mode);
        return file;
    }

    /// Writes a file of format version 1 with this one record, opens it and gives the stack.
    StackPointer only_stack(const RecordFields& fields)
    {
        VbfRecords built(1);
        built.add_stack_record(fields);
        return open(built)->get_stack(0);
    }

    VBFFile file;
};

/// A VBF file on a descriptor of the test, whose position the test sees.
class AttachedFile
{
public:
    explicit AttachedFile(const std::string& path, std::uint64_t start = 0) : descriptor(path, O_RDONLY)
    {
        move_to(start);
    }

    void attach(VFile::mode mode = VFile::read_mode) { file->attach(descriptor.handle(), mode); }

    std::uint64_t position() const { return static_cast<std::uint64_t>(::lseek(descriptor.get(), 0, SEEK_CUR)); }
    void move_to(std::uint64_t to) const { ::lseek(descriptor.get(), static_cast<off_t>(to), SEEK_SET); }

    Descriptor descriptor;
    VBFFile file;
};

/// A record of one row of bytes as they are.
inline RecordFields bytes_record(const Bytes& data)
{
    RecordFields fields;
    fields.header.sizes = {static_cast<std::uint32_t>(data.size())};
    fields.header.lengths = {1.0};
    fields.header.offsets = {0.0};
    fields.header.data = data;
    return fields;
}

/// A record of this sample type with the values as its bytes.
template <class T>
RecordFields values_record(vela_dt type, const std::vector<T>& values)
{
    Bytes data(values.size() * sizeof(T));
    std::memcpy(data.data(), values.data(), data.size());
    RecordFields fields = bytes_record(data);
    fields.header.sizes = {static_cast<std::uint32_t>(values.size())};
    fields.header.data_type = static_cast<std::uint32_t>(type);
    return fields;
}

/// A record of `size` samples of which nothing is on disk.
inline RecordFields without_samples(std::uint32_t size, vela_dt type)
{
    RecordFields fields = bytes_record({});
    fields.header.sizes = {size};
    fields.header.data_type = static_cast<std::uint32_t>(type);
    return fields;
}

/// 0, 1, 2 and so on.
inline Bytes counted_bytes(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i % 251);
    return bytes;
}

constexpr unsigned char stale = 0xcd;

/// `count` samples from `pos` on, read into bytes that held something else.
inline Bytes read_run(VBFStackInterface& stack, vela_dt type, std::uint64_t count, std::uint64_t& pos)
{
    Bytes bytes(count * vela_dt_get_size(static_cast<std::uint32_t>(type)), stale);
    EXPECT_EQ(stack.read(type, bytes.data(), nullptr, count, pos), count);
    return bytes;
}

inline Bytes read_at(VBFStackInterface& stack, vela_dt type, std::uint64_t count, std::uint64_t first)
{
    return read_run(stack, type, count, first);
}

/// All samples, by the form of `read` without a position.
inline Bytes read_whole(VBFStackInterface& stack, vela_dt type)
{
    Bytes bytes(stack.get_size(type), stale);
    stack.read(type, bytes.data(), nullptr);
    return bytes;
}

/// The XML of a position: the labels of the global axes, the origin, and the matrix with its two sizes. More than one
/// axis, as an array of one number has another form.
inline std::string position_xml(const std::vector<std::string>& axes, const std::string& origin,
                                const std::string& matrix_sizes, const std::string& matrix)
{
    const std::string count = std::to_string(axes.size());
    std::string xml = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">"
                      "<global_pos idx=\"1\" type=\"struct\" size=\"1 1\">"
                      "<axes idx=\"1\" userbits=\"1\" type=\"cell\" size=\"" +
                      count + "\">";
    for (std::size_t i = 0; i < axes.size(); ++i)
        xml += "<item idx=\"" + std::to_string(i) + "\" type=\"char\" size=\"1 " + std::to_string(axes[i].size()) +
               "\">" + axes[i] + "</item>";
    xml += "</axes><offset idx=\"1\" userbits=\"0\" type=\"double\" size=\"" + count + "\">" + origin +
           "</offset><projection idx=\"1\" userbits=\"0\" type=\"double\" size=\"" + matrix_sizes + "\">" + matrix +
           "</projection></global_pos></root>";
    return xml;
}

} // namespace vela_test
