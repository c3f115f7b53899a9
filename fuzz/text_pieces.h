/// Feeds readers with a text in pieces, and holds what they answer against what they answer to the whole.
#pragma once

#include <Json/Value.h>
#include <Json/write.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace vela_fuzz {

inline void require(bool holds)
{
    if (!holds)
        __builtin_trap();
}

/// What a reader answered to a text.
struct Outcome
{
    std::vector<std::size_t> completed_at; ///< positions behind complete documents
    std::string error;
    std::size_t stopped_at = 0;
    std::vector<Json::Value> values; ///< what has been read

    friend bool operator==(const Outcome& left, const Outcome& right)
    {
        return left.completed_at == right.completed_at && left.error == right.error &&
               left.stopped_at == right.stopped_at && left.values == right.values;
    }
};

/// Lengths of pieces, which go round.
using Cuts = std::vector<std::size_t>;

/// Reads the text in such pieces, each in memory of its own, so that a look beyond its end is noticed. Documents
/// are read one after the other, until the end or a failure.
template <class Unexpected, class Reader>
void feed(Reader& reader, const std::string& text, const Cuts& cuts, Outcome& outcome)
{
    std::size_t cut = 0;
    for (std::size_t at = 0; at < text.size();)
    {
        const std::size_t size = std::min(std::max<std::size_t>(cuts[cut++ % cuts.size()], 1), text.size() - at);
        const auto piece = std::make_unique<char[]>(size);
        std::copy_n(text.data() + at, size, piece.get());
        const char* p = piece.get();
        const char* const end = p + size;
        while (p != end)
        {
            try
            {
                if (reader.read(p, end))
                    outcome.completed_at.push_back(at + static_cast<std::size_t>(p - piece.get()));
                else
                    require(p == end);
            }
            catch (const Unexpected& unexpected)
            {
                outcome.error = unexpected.what();
                outcome.stopped_at = at + static_cast<std::size_t>(p - piece.get());
                return;
            }
        }
        at += size;
    }
    outcome.stopped_at = text.size();
}

/// Pieces of one byte, of two, and of lengths that the text itself gives.
inline std::vector<Cuts> cuts_for(const std::string& text)
{
    Cuts by_text;
    for (const char c : text)
        by_text.push_back(static_cast<unsigned char>(c) % 8u + 1);
    return {{1}, {2}, by_text};
}

inline std::string json_text(const Json::Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

/// Copies are equal, as long as nobody changes them.
inline void check_copies(const Json::Value& value)
{
    Json::Value copy(value);
    require(copy == value);
    Json::Value assigned("something else");
    assigned = value;
    require(assigned == copy);
    copy.as_list().emplace_back(1);
    require(copy != value);
}

} // namespace vela_fuzz
