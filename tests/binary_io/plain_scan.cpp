#include "binary_io/plain_scan.h"

#include <VelaBase/VelaError.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <sstream>

namespace vela_test {

namespace {

/// Ends a plain scan.
struct Failure
{
    int id;
    std::string message;
};

/// File systems take positions below this one; some refuse those from 2^44 on.
constexpr std::uint64_t largest_common_position = std::uint64_t{1} << 42;

/// Reads forward in the bytes of a file.
class Cursor
{
public:
    Cursor(const Bytes& all_bytes, std::uint64_t start) : bytes(all_bytes), pos(start) {}

    std::string text(std::uint64_t size_bytes)
    {
        if (size_bytes == 0)
            return "";
        if (pos > bytes.size() || size_bytes > bytes.size() - pos)
        {
            const auto shown = static_cast<std::int32_t>(static_cast<std::uint32_t>(size_bytes));
            throw Failure{-3, "Failed reading " + std::to_string(shown) + " bytes from file!"};
        }
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(pos);
        pos += size_bytes;
        return std::string(begin, begin + static_cast<std::ptrdiff_t>(size_bytes));
    }

    std::uint64_t tell() const { return pos; }

private:
    const Bytes& bytes;
    std::uint64_t pos;
};

std::uint64_t number_at(const std::string& record, std::size_t offset, std::size_t width_bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width_bytes; ++i)
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(record[offset + i])) << (8 * i);
    return value;
}

std::string digits(const std::string& text)
{
    return hexadecimal(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

/// All exponent bits set and a fraction: not a number. It becomes 1.0, 3FF0000000000000.
void repair_length(std::string& record, std::size_t offset)
{
    const std::uint64_t bits = number_at(record, offset, 8);
    if ((bits & 0x7ff0000000000000) == 0x7ff0000000000000 && (bits & 0x000fffffffffffff) != 0)
        record.replace(offset, 8, std::string("\0\0\0\0\0\0\xf0\x3f", 8));
}

std::string file_text(std::uint64_t format_version, std::uint64_t first_stack_pos, const std::string& description,
                      std::uint64_t meta_data_pos)
{
    std::ostringstream out;
    out << "file version " << format_version << " first " << first_stack_pos << " description " << digits(description)
        << " meta " << meta_data_pos << "\n";
    return out.str();
}

std::string stack_text(std::uint64_t position, const std::string& record, const std::string& name,
                       const std::string& description, std::uint64_t data_pos)
{
    std::ostringstream out;
    out << "stack at " << position << " header " << digits(record) << " name " << digits(name) << " description "
        << digits(description) << " data " << data_pos << "\n";
    return out.str();
}

std::string stacks_text(const Bytes& bytes, std::uint64_t first_stack_pos)
{
    std::string result;
    std::set<std::uint64_t> visited;
    for (std::uint64_t position = first_stack_pos; position != 0;)
    {
        const bool is_end = position == 0xffffffffffffffff;
        if ((position >= 0x8000000000000000 && !is_end) || !visited.insert(position).second)
            throw Failure{-4, "Invalid stack position specified in header!"};
        if (position >= largest_common_position && !is_end)
            throw Failure{0, "far position"};
        Cursor cursor(bytes, is_end ? bytes.size() : position);
        std::string record = cursor.text(368);
        const std::uint64_t rank = number_at(record, 20, 4);
        if (record.substr(0, 16) != "VELA_BF_STACK\n\xff\xff" || rank > 15)
            throw Failure{-4, "Stack header not in vbf format!"};
        for (std::size_t i = 0; i < rank; ++i)
            repair_length(record, 84 + 8 * i);
        const std::string name = cursor.text(number_at(record, 336, 4));
        const std::string description = cursor.text(number_at(record, 340, 4));
        result += stack_text(position, record, name, description, cursor.tell());
        position = number_at(record, 360, 8);
    }
    return result;
}

std::string error_text(int id, const std::string& message)
{
    return "error " + std::to_string(id) + " " + message;
}

} // namespace

const char* const far_position = "error 0 far position";

std::string plain_scan(const Bytes& bytes, std::uint64_t start)
{
    try
    {
        Cursor cursor(bytes, start);
        const std::string record = cursor.text(26);
        if (record.substr(0, 10) != "VELA_BF\n\xff\xff")
            throw Failure{-4, "No VBF file header found!"};
        const std::uint64_t format_version = number_at(record, 10, 4);
        const std::uint64_t first_stack_pos = number_at(record, 14, 8);
        const std::string description = cursor.text(number_at(record, 22, 4));
        const std::uint64_t meta_data_pos = format_version > 1 ? number_at(cursor.text(8), 0, 8) : 0;
        return file_text(format_version, first_stack_pos, description, meta_data_pos) +
               stacks_text(bytes, first_stack_pos);
    }
    catch (const Failure& failure)
    {
        return error_text(failure.id, failure.message);
    }
}

std::string library_scan(VFile& file)
{
    try
    {
        const VBFChain chain = scan_chain(file);
        const VBFFileHeader& header = chain.file.header;
        std::string result =
            file_text(header.format_version, header.first_stack_pos, chain.file.description, chain.file.meta_data_pos);
        for (const VBFChainEntry& stack : chain.stacks)
        {
            const Bytes record = bytes_of(stack.header);
            result += stack_text(stack.position, std::string(record.begin(), record.end()), stack.name,
                                 stack.description, stack.data_pos);
        }
        return result;
    }
    catch (const VelaError& error)
    {
        return error_text(error.get_id(), error.get_msg());
    }
    catch (const std::exception& error)
    {
        return std::string("exception ") + error.what();
    }
}

std::string library_scan(const std::string& path, std::uint64_t start)
{
    VFile file(file_name(path), VFile::read_mode);
    file.seek(start);
    return library_scan(file);
}

testing::AssertionResult agree(const std::string& of_library, const std::string& of_plain_reader)
{
    if (of_plain_reader == far_position ? of_library == "error -3 Failed reading 368 bytes from file!" ||
                                              of_library == "error -4 Invalid stack position specified in header!"
                                        : of_library == of_plain_reader)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "library:\n" << of_library << "\nplain reader:\n" << of_plain_reader;
}

Bytes bytes_of(const VBFStackHeader& header)
{
    Bytes bytes(sizeof header);
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

} // namespace vela_test
