/// Reads JSON text with the library's reader, cut everywhere.
#pragma once

#include "json/cut_everywhere.h"
#include "json/value_text.h"

#include <Json/Reader.h>

#include <string>

namespace json_test {

inline Outcome read_pieces(const Pieces& pieces)
{
    Json::Reader reader;
    return feed<Json::Reader::Unexpected>(reader, pieces, [&] { return object_text(reader.object()); });
}

inline Outcome read_json(const std::string& document)
{
    return outcome_of_every_cut(document, read_pieces);
}

/// What the complete document `document` reads as.
inline std::string json_read(const std::string& document)
{
    const Outcome outcome = read_json(document);
    EXPECT_EQ(outcome.failure, "") << document;
    EXPECT_TRUE(outcome.complete) << document;
    EXPECT_EQ(outcome.consumed, document.size()) << document;
    return outcome.result;
}

/// The text of the failure that `document` ends in; nothing behind its last character is needed for it.
inline std::string json_failure(const std::string& document)
{
    const Outcome outcome = read_json(document);
    EXPECT_FALSE(outcome.complete) << document;
    EXPECT_NE(outcome.failure, "") << document;
    EXPECT_EQ(outcome.consumed, document.size() - 1) << document;
    return outcome.failure;
}

/// What `document`, which is not complete, has read so far.
inline std::string json_so_far(const std::string& document)
{
    const Outcome outcome = read_json(document);
    EXPECT_EQ(outcome.failure, "") << document;
    EXPECT_FALSE(outcome.complete) << document;
    EXPECT_EQ(outcome.consumed, document.size()) << document;
    return outcome.result;
}

}
