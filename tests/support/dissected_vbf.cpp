#include "support/dissected_vbf.h"

#include "support/zlib_stream.h"

#include <algorithm>
#include <bit>
#include <sstream>
#include <stdexcept>

namespace vela_test {

namespace {

constexpr std::uint64_t stack_header_size = 368;
constexpr std::uint32_t full_footer_size = 1444;
constexpr std::size_t most_axes = 15;

/// Its parts, one behind the other.
template <class... Parts>
std::string joined(const Parts&... parts)
{
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

/// Reads numbers and texts one after the other.
class Cursor
{
public:
    Cursor(const Bytes& all, std::uint64_t start) : bytes(all), pos(start)
    {
        if (start > bytes.size())
            fail("a position behind the end", 0);
    }

    std::uint64_t number(int width_bytes)
    {
        need(static_cast<std::uint64_t>(width_bytes), "number");
        std::uint64_t value = 0;
        for (int i = 0; i < width_bytes; ++i)
            value |= static_cast<std::uint64_t>(bytes[pos + static_cast<std::uint64_t>(i)]) << (8 * i);
        pos += static_cast<std::uint64_t>(width_bytes);
        return value;
    }

    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    std::uint64_t u64() { return number(8); }
    double f64() { return std::bit_cast<double>(number(8)); }

    std::string text(std::uint64_t size_bytes)
    {
        need(size_bytes, "text");
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(pos);
        pos += size_bytes;
        return std::string(begin, begin + static_cast<std::ptrdiff_t>(size_bytes));
    }

    std::string prefixed_text() { return text(u32()); }

    Bytes block(std::uint64_t size_bytes)
    {
        need(size_bytes, "block");
        pos += size_bytes;
        return slice(bytes, static_cast<std::size_t>(pos - size_bytes), static_cast<std::size_t>(pos));
    }

    void expect(const std::string& magic)
    {
        if (text(magic.size()) != magic)
            fail("no magic", magic.size());
    }

    WrittenUnit unit()
    {
        WrittenUnit result;
        for (auto& [numerator, denominator] : result.exponents)
        {
            numerator = i32();
            denominator = i32();
        }
        result.number = f64();
        return result;
    }

    /// Pairs up to an empty key.
    WrittenPairs pairs()
    {
        WrittenPairs result;
        for (std::string key = prefixed_text(); !key.empty(); key = prefixed_text())
        {
            const std::string value = prefixed_text();
            result.emplace_back(key, value);
        }
        return result;
    }

    std::uint64_t tell() const { return pos; }
    void seek(std::uint64_t target) { pos = target; }

    [[noreturn]] void fail(const std::string& what, std::uint64_t size_bytes) const
    {
        throw std::runtime_error(joined(what, " of ", size_bytes, " bytes at ", pos, " in a file of ", bytes.size()));
    }

private:
    void need(std::uint64_t size_bytes, const char* what) const
    {
        if (pos > bytes.size() || size_bytes > bytes.size() - pos)
            fail(joined("no room for a ", what), size_bytes);
    }

    const Bytes& bytes;
    std::uint64_t pos;
};

/// Reads 15 entries and keeps the first `rank`.
template <class T, class Read>
std::vector<T> first_of_fifteen(std::size_t rank, Read read)
{
    std::vector<T> entries;
    for (std::size_t i = 0; i < most_axes; ++i)
    {
        const T entry = read();
        if (i < rank)
            entries.push_back(entry);
    }
    return entries;
}

void read_header(Cursor& in, WrittenStack& stack)
{
    stack.pos = in.tell();
    in.expect("VELA_BF_STACK\n\xff\xff");
    stack.format_version = in.u32();
    const std::uint32_t rank = in.u32();
    if (rank > most_axes)
        in.fail(joined("a rank of ", rank), 4);
    stack.sizes = first_of_fifteen<std::uint32_t>(rank, [&] { return in.u32(); });
    stack.lengths = first_of_fifteen<double>(rank, [&] { return in.f64(); });
    stack.offsets = first_of_fifteen<double>(rank, [&] { return in.f64(); });
    stack.data_type = in.i32();
    stack.compression_type = in.i32();
    stack.compression_level = in.i32();
    const std::uint32_t name_length = in.u32();
    const std::uint32_t description_length = in.u32();
    stack.data_present = in.u64();
    stack.data_length_on_disk = in.u64();
    stack.next_stack_pos = in.u64();
    if (in.tell() != stack.pos + stack_header_size)
        in.fail("a header", in.tell() - stack.pos);
    stack.name = in.text(name_length);
    stack.description = in.text(description_length);
    stack.data_pos = in.tell();
    stack.data = in.block(stack.data_length_on_disk);
    stack.footer_pos = in.tell();
}

void read_footer(Cursor& in, WrittenStack& stack)
{
    stack.footer_size = in.u32();
    if (stack.footer_size != full_footer_size)
        in.fail("a footer", stack.footer_size);
    stack.has_col_positions = first_of_fifteen<std::uint32_t>(stack.rank(), [&] { return in.u32(); });
    stack.has_col_labels = first_of_fifteen<std::uint32_t>(stack.rank(), [&] { return in.u32(); });
    stack.metadata_length = in.u32();
    stack.data_units = in.unit();
    stack.dimension_units = first_of_fifteen<WrittenUnit>(stack.rank(), [&] { return in.unit(); });
    stack.flush_point_count = in.u64();
    stack.flush_block_size = in.u64();
    stack.tag_dictionary_length = in.u64();
    stack.stack_end_pos = in.u64();
    stack.required_reader_version = in.u32();
    if (in.tell() != stack.footer_pos + full_footer_size)
        in.fail("a footer", in.tell() - stack.footer_pos);
}

void read_columns(Cursor& in, WrittenStack& stack)
{
    for (std::size_t i = 0; i < stack.rank(); ++i)
        stack.labels.push_back(in.prefixed_text());
    for (std::size_t i = 0; i < stack.rank(); ++i)
        if (stack.has_col_positions[i] != 0)
            for (std::uint32_t column = 0; column < stack.sizes[i]; ++column)
                stack.col_positions[i].push_back(in.f64());
    for (std::size_t i = 0; i < stack.rank(); ++i)
        if (stack.has_col_labels[i] != 0)
            for (std::uint32_t column = 0; column < stack.sizes[i]; ++column)
                stack.col_labels[i].push_back(in.prefixed_text());
}

WrittenStack read_stack(Cursor& in)
{
    WrittenStack stack;
    read_header(in, stack);
    if (stack.format_version != 0)
    {
        read_footer(in, stack);
        read_columns(in, stack);
        stack.metadata = in.text(stack.metadata_length);
        for (std::uint64_t i = 0; i < stack.flush_point_count; ++i)
            stack.flush_positions.push_back(in.u64());
        stack.tags_pos = in.tell();
        stack.tags = in.pairs();
    }
    stack.end = in.tell();
    return stack;
}

/// Collects what is not as it has to be.
class Complaints
{
public:
    template <class A, class B>
    void unless_equal(const A& found, const B& expected, const std::string& what)
    {
        if (found != expected)
            out << what << " is " << found << ", not " << expected << '\n';
    }
    void unless(bool good, const std::string& what)
    {
        if (!good)
            out << what << '\n';
    }
    std::string text() const { return out.str(); }

private:
    std::ostringstream out;
};

/// Each entry starts a raw stream that yields what stands behind its block, and there is one for each whole block.
void check_flush_points(const WrittenStack& stack, const Bytes& samples, Complaints& complaints)
{
    const std::uint64_t blocks =
        stack.flush_block_size == 0 || !stack.is_compressed() ? 0 : samples.size() / stack.flush_block_size;
    complaints.unless_equal(stack.flush_point_count, blocks, "flush_point_count");
    std::uint64_t last = 0;
    for (std::size_t k = 0; k < std::min<std::uint64_t>(blocks, stack.flush_positions.size()); ++k)
    {
        const std::uint64_t position = stack.flush_positions[k];
        const std::string name = joined("flush position ", k);
        complaints.unless(position > last && position < stack.data.size(),
                          joined(name, " does not ascend, or is outside"));
        if (position >= stack.data.size())
            continue;
        last = position;
        const auto begin = static_cast<std::size_t>((k + 1) * stack.flush_block_size);
        const Inflated raw = inflate_from(stack.data, static_cast<std::size_t>(position), raw_window);
        complaints.unless(raw.code == Z_STREAM_END && raw.bytes == slice(samples, begin, samples.size()),
                          joined(name, " does not start what stands behind its block"));
    }
}

void zero(Bytes& bytes, std::uint64_t begin, std::uint64_t end)
{
    for (std::uint64_t i = begin; i < end; ++i)
        bytes.at(i) = 0;
}

} // namespace

Bytes WrittenStack::samples() const
{
    if (!is_compressed() || data.empty())
        return data;
    const Inflated whole = inflate_whole(data);
    if (whole.code != Z_STREAM_END || whole.used != data.size())
        throw std::runtime_error(joined("the data of \"", name, "\" is no single zlib stream"));
    return whole.bytes;
}

std::vector<std::string> WrittenFile::stack_names() const
{
    std::vector<std::string> names;
    for (const WrittenStack& stack : stacks)
        names.push_back(stack.name);
    return names;
}

WrittenFile read_written(const Bytes& bytes, std::uint64_t start)
{
    WrittenFile file = read_written_chain(bytes, start);
    if (file.meta_data_pos == 0)
        return file;
    Cursor in(bytes, file.meta_data_pos);
    file.dictionary = in.pairs();
    file.meta_end = in.tell();
    return file;
}

WrittenFile read_written_chain(const Bytes& bytes, std::uint64_t start)
{
    WrittenFile file;
    file.start = start;
    file.size_bytes = bytes.size();
    Cursor in(bytes, start);
    in.expect("VELA_BF\n\xff\xff");
    file.format_version = in.u32();
    file.first_stack_pos = in.u64();
    const std::uint32_t description_length = in.u32();
    file.description = in.text(description_length);
    if (file.format_version > 1)
        file.meta_data_pos = in.u64();
    file.header_end = in.tell();
    for (std::uint64_t pos = file.first_stack_pos; pos != 0; pos = file.stacks.back().next_stack_pos)
    {
        if (file.stacks.size() == 10000)
            in.fail("too long a chain", 0);
        in.seek(pos);
        file.stacks.push_back(read_stack(in));
    }
    return file;
}

std::string complaints_about(const WrittenStack& stack)
{
    Complaints complaints;
    complaints.unless_equal(stack.format_version, 5u, "format_version");
    complaints.unless_equal(stack.footer_size, full_footer_size, "footer_size");
    complaints.unless_equal(stack.required_reader_version, 0u, "required_reader_version");
    complaints.unless_equal(stack.end, stack.stack_end_pos, "the end of the tags");
    complaints.unless_equal(stack.tag_dictionary_length, stack.stack_end_pos - stack.tags_pos, "tag_dictionary_length");
    complaints.unless(std::is_sorted(stack.tags.begin(), stack.tags.end()), "the tags are not sorted");
    for (const std::vector<std::uint32_t>& flags : {stack.has_col_positions, stack.has_col_labels})
        for (const std::uint32_t flag : flags)
            complaints.unless(flag <= 1, "a flag is neither 0 nor 1");
    check_flush_points(stack, stack.samples(), complaints);
    return complaints.text();
}

std::string complaints_about(const WrittenFile& file)
{
    Complaints complaints;
    std::uint64_t expected_pos = file.header_end;
    for (const WrittenStack& stack : file.stacks)
    {
        complaints.unless_equal(stack.pos, expected_pos, joined("the position of \"", stack.name, '"'));
        const std::string of_stack = complaints_about(stack);
        complaints.unless(of_stack.empty(), joined("in \"", stack.name, "\": ", of_stack));
        expected_pos = stack.end;
    }
    if (file.format_version > 1)
    {
        complaints.unless_equal(file.meta_data_pos, expected_pos, "meta_data_pos");
        expected_pos = file.meta_end;
    }
    complaints.unless_equal(file.size_bytes, expected_pos, "the size of the file");
    return complaints.text();
}

void clear_undefined(Bytes& bytes, const WrittenStack& stack)
{
    const std::uint64_t rank = stack.rank();
    zero(bytes, stack.pos + 24 + 4 * rank, stack.pos + 84);
    zero(bytes, stack.pos + 84 + 8 * rank, stack.pos + 204);
    zero(bytes, stack.pos + 204 + 8 * rank, stack.pos + 324);
    if (stack.footer_size != full_footer_size)
        return;
    zero(bytes, stack.footer_pos + 4 + 4 * rank, stack.footer_pos + 64);
    zero(bytes, stack.footer_pos + 64 + 4 * rank, stack.footer_pos + 124);
    zero(bytes, stack.footer_pos + 208 + 80 * rank, stack.footer_pos + 1408);
}

} // namespace vela_test
