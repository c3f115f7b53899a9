#include "record_reader.h"

#include <VelaFile/VFile.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint64_t buffer_bytes = std::uint64_t{64} * 1024;
constexpr std::uint64_t readings_of_a_byte = 4;

} // namespace

RecordReader::RecordReader(VFile& in_file)
    : file(in_file), file_size(in_file.seek(VFileAccess::all_ones)),
      budget_bytes(readings_of_a_byte * file_size + buffer_bytes)
{
}

void RecordReader::seek(std::uint64_t target, const std::string& what)
{
    if (target > file_size)
        throw Damage(target, what + " lies behind the end of the file");
    pos = target;
}

void RecordReader::require(std::uint64_t size_bytes, const std::string& what) const
{
    if (size_bytes > left())
        throw Damage(pos, what + ": " + std::to_string(size_bytes) + " bytes are said to be here, the file has " +
                              std::to_string(left()));
}

void RecordReader::refill()
{
    buffer.resize(std::min(buffer_bytes, left()));
    buffer_pos = pos;
    file.seek(pos);
    file.read(buffer.data(), buffer.size());
}

void RecordReader::read(void* target, std::uint64_t size_bytes, const std::string& what)
{
    require(size_bytes, what);
    if (size_bytes > budget_bytes)
        throw Damage(pos, what + ": the records of the file share most of their bytes");
    budget_bytes -= size_bytes;
    unsigned char* out = static_cast<unsigned char*>(target);
    for (std::uint64_t wanted = size_bytes; wanted != 0;)
    {
        if (pos < buffer_pos || pos >= buffer_pos + buffer.size())
            refill();
        const std::uint64_t n = std::min(wanted, buffer_pos + buffer.size() - pos);
        std::memcpy(out, buffer.data() + (pos - buffer_pos), n);
        out += n;
        pos += n;
        wanted -= n;
    }
}

void RecordReader::skip(std::uint64_t size_bytes, const std::string& what)
{
    require(size_bytes, what);
    pos += size_bytes;
}

void RecordReader::skip_entries(std::uint64_t count, std::uint64_t entry_bytes, const std::string& what)
{
    if (count > left() / entry_bytes)
        throw Damage(pos, what + ": " + std::to_string(count) + " entries of " + std::to_string(entry_bytes) +
                              " bytes are said to be here, the file has " + std::to_string(left()) + " bytes");
    pos += count * entry_bytes;
}

std::string RecordReader::text(std::uint64_t length_bytes, const std::string& what)
{
    require(length_bytes, what);
    std::string result(length_bytes, '\0');
    read(result.data(), length_bytes, what);
    return result;
}

std::string RecordReader::counted_text(const std::string& what)
{
    const auto length_bytes = number<std::uint32_t>("length of " + what);
    return text(length_bytes, what);
}

void RecordReader::skip_counted_text(const std::string& what)
{
    const auto length_bytes = number<std::uint32_t>("length of " + what);
    skip(length_bytes, what);
}
