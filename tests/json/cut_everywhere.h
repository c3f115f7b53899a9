/// Feeds a parser the same document whole, in two pieces cut at every byte, and byte by byte.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace json_test {

/// What came of a document.
struct Outcome
{
    bool complete = false;
    std::size_t consumed = 0; ///< bytes, of all pieces
    std::string result;       ///< what has been read, as text
    std::string failure;      ///< the text of the exception

    bool operator==(const Outcome& other) const
    {
        return complete == other.complete && consumed == other.consumed && result == other.result &&
               failure == other.failure;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& outcome)
{
    return out << (outcome.complete ? "complete" : "incomplete") << " after " << outcome.consumed << " bytes, read "
               << outcome.result << (outcome.failure.empty() ? "" : ", failed: ") << outcome.failure;
}

typedef std::vector<std::string> Pieces;

/// Feeds one parser all pieces, each in memory that ends where the piece ends, until the document is
/// complete or an exception of type `Unexpected` comes.
template <class Unexpected, class Parser, class Result>
Outcome feed(Parser& parser, const Pieces& pieces, Result result)
{
    Outcome outcome;
    for (const std::string& piece : pieces)
    {
        const std::vector<char> memory(piece.begin(), piece.end());
        const char* p = memory.data();
        const char* const end = memory.data() + memory.size();
        try
        {
            outcome.complete = parser.read(p, end);
        }
        catch (const Unexpected& failure)
        {
            outcome.failure = failure.what();
        }
        outcome.consumed += static_cast<std::size_t>(p - memory.data());
        if (outcome.complete || !outcome.failure.empty())
            break;
        EXPECT_EQ(p, end) << "neither complete nor at the end of the piece";
    }
    outcome.result = result();
    return outcome;
}

inline Pieces bytes_of(const std::string& document)
{
    Pieces pieces;
    for (const char byte : document)
        pieces.emplace_back(1, byte);
    return pieces;
}

/// The outcome of the whole document, after every other way to feed it has been found to give the same.
inline Outcome outcome_of_every_cut(const std::string& document, const std::function<Outcome(const Pieces&)>& read)
{
    const Outcome whole = read({document});
    for (std::size_t cut = 0; cut <= document.size(); ++cut)
        EXPECT_EQ(read({document.substr(0, cut), document.substr(cut)}), whole)
            << "cut at " << cut << ": " << document.substr(0, cut) << " | " << document.substr(cut);
    EXPECT_EQ(read(bytes_of(document)), whole) << "byte by byte: " << document;
    for (std::size_t size = 2; size <= 5; ++size)
    {
        Pieces pieces(1); // an empty piece first, and between all others
        for (std::size_t begin = 0; begin < document.size(); begin += size)
        {
            pieces.push_back(document.substr(begin, size));
            pieces.emplace_back();
        }
        EXPECT_EQ(read(pieces), whole) << "in pieces of " << size << ": " << document;
    }
    return whole;
}

/// The text that `what` gives of an exception made with `text`: it ends at the first zero byte.
inline std::string as_thrown(const std::string& text)
{
    return text.c_str();
}

}
