// How it works: a text is cut at its rightmost operator outside parentheses, and so are its parts. Two things keep
// time and memory in proportion to the length of a text of any depth. Parts wait on a stack of their own instead of
// that of the process. And operators are found before the cutting, with links from each to the one before it in the
// same parentheses; to look for them anew in every part takes the square of the time, minutes for a hostile text.
#include "value_text.h"

#include "fraction_text.h"
#include "plain_value.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory_resource>
#include <vector>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

namespace {

bool is_structure(char c)
{
    return c == '(' || c == ')' || c == '*' || c == '/' || c == '^';
}

/// An operator, a parenthesis, or one of the ends of the text.
struct mark
{
    char character; ///< 0: an end
    std::size_t position;
    /// How many parentheses are open before it; negative where more were closed than opened.
    std::ptrdiff_t depth;
    /// The last "*" or "/", and the last "^", before it at its depth. 0: none, as that mark is the start of the text.
    std::size_t product, power;

    std::size_t position_behind() const { return position + (character == 0 ? 0 : 1); }
    std::ptrdiff_t depth_behind() const { return depth + (character == '(' ? 1 : character == ')' ? -1 : 0); }
};

/// What stands between two marks, which are named by their index.
struct part
{
    std::size_t first, last;
};

/// A part that has to be read, or an operator that has to be applied to what was read.
struct step
{
    char action; ///< 0: read
    part text;   ///< of "^" the exponent
};

class composed_text
{
public:
    explicit composed_text(std::string_view in_text) : text(in_text) {}
    composed_text(const composed_text&) = delete;
    composed_text& operator=(const composed_text&) = delete;

    bool parse(value& result)
    {
        find_marks();
        steps.reserve(marks.size());
        values.reserve(3);
        steps.push_back({0, {0, marks.size() - 1}});
        while (!steps.empty())
        {
            const step next = steps.back();
            steps.pop_back();
            if (!(next.action == 0 ? read(next.text) : apply(next)))
                return false;
        }
        result = values.back();
        return true;
    }

private:
    void find_marks();
    part without_parentheses(part whole) const;
    bool read(part whole);
    bool apply(const step& next);

    std::string_view text_of(part some) const
    {
        const std::size_t begin = marks[some.first].position_behind();
        return text.substr(begin, marks[some.last].position - begin);
    }

    const std::string_view text;
    /// Enough for a unit such as "m*kg/s^2", which then takes no other memory.
    alignas(std::max_align_t) std::array<std::byte, 2048> buffer;
    std::pmr::monotonic_buffer_resource memory{buffer.data(), buffer.size()};
    std::pmr::vector<mark> marks{&memory};
    std::pmr::vector<step> steps{&memory};
    std::pmr::vector<value> values{&memory};
};

void composed_text::find_marks()
{
    const auto count = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is_structure));
    const auto deepest = static_cast<std::size_t>(std::count(text.begin(), text.end(), ')'));
    marks.reserve(count + 2);
    // The last operators of each depth, from the lowest that these parentheses can reach.
    std::pmr::vector<std::size_t> last_product(count + 1, 0, &memory);
    std::pmr::vector<std::size_t> last_power(count + 1, 0, &memory);

    std::ptrdiff_t depth = 0;
    const auto add = [&](char character, std::size_t position)
    {
        const std::size_t slot = deepest + static_cast<std::size_t>(depth);
        marks.push_back({character, position, depth, last_product[slot], last_power[slot]});
        if (character == '*' || character == '/')
            last_product[slot] = marks.size() - 1;
        if (character == '^')
            last_power[slot] = marks.size() - 1;
        depth = marks.back().depth_behind();
    };
    add(0, 0);
    for (std::size_t i = 0; i < text.size(); ++i)
        if (is_structure(text[i]))
            add(text[i], i);
    add(0, text.size());
}

/// Takes parentheses off as long as the part begins and ends with one, whether they belong together or not.
part composed_text::without_parentheses(part whole) const
{
    while (whole.first + 1 < whole.last)
    {
        const mark& open = marks[whole.first + 1];
        const mark& close = marks[whole.last - 1];
        const bool is_open = open.character == '(' && open.position == marks[whole.first].position_behind();
        const bool is_close = close.character == ')' && close.position_behind() == marks[whole.last].position;
        if (!is_open || !is_close)
            break;
        whole = {whole.first + 1, whole.last - 1};
    }
    return whole;
}

bool composed_text::read(part whole)
{
    whole = without_parentheses(whole);
    const mark& end = marks[whole.last];
    if (end.product > whole.first)
    {
        steps.push_back({marks[end.product].character, {}});
        steps.push_back({0, {end.product, whole.last}});
        steps.push_back({0, {whole.first, end.product}});
        return true;
    }
    if (marks[whole.first].depth_behind() != end.depth)
        return false;
    if (end.power > whole.first)
    {
        steps.push_back({'^', {end.power, whole.last}});
        steps.push_back({0, {whole.first, end.power}});
        return true;
    }
    values.emplace_back();
    return parse_plain_value(text_of(whole), values.back());
}

bool composed_text::apply(const step& next)
{
    if (next.action == '^')
    {
        fraction power;
        if (!parse_fraction(text_of(next.text), power))
            return false;
        values.back() ^= power;
        return true;
    }
    const value right = values.back();
    values.pop_back();
    if (next.action == '*')
        values.back() *= right;
    else
        values.back() /= right;
    return true;
}

} // namespace

bool parse_value(std::string_view text, value& result)
{
    if (std::none_of(text.begin(), text.end(), is_structure))
        return parse_plain_value(text, result);
    return composed_text(text).parse(result);
}

VELA_ABI_NAMESPACE_END
}
