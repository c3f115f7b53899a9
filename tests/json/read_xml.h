/// Reads XML text with the library's reader, cut everywhere and from a stream.
#pragma once

#include "json/cut_everywhere.h"
#include "json/value_text.h"

#include <Json/XmlReader.h>

#include <sstream>
#include <string>

namespace json_test {

/// The outcome over `Reader`, with the target and, where it is not empty, the map of the declaration. Where a
/// failure leaves `p` is not promised, so it is not told.
template <class Reader>
Outcome read_xml_pieces_with(const Pieces& pieces)
{
    Json::Value target("what was there before");
    Reader reader(target);
    Outcome outcome =
        feed<typename Reader::Unexpected>(reader, pieces,
                                          [&]
                                          {
                                              const std::string own =
                                                  reader.object().empty() ? "" : object_text(reader.object()) + " ";
                                              return own + value_text(target);
                                          });
    if (!outcome.failure.empty())
        outcome.consumed = 0;
    return outcome;
}

inline Outcome read_xml_pieces(const Pieces& pieces)
{
    return read_xml_pieces_with<Json::XmlReader>(pieces);
}

inline Outcome read_xml_stream(const std::string& document)
{
    Json::Value target("what was there before");
    Json::XmlReader reader(target);
    std::istringstream stream(document);
    Outcome outcome;
    try
    {
        outcome.complete = reader.read(stream);
        EXPECT_EQ(stream.good(), outcome.complete) << document;
        outcome.consumed = outcome.complete ? static_cast<std::size_t>(stream.tellg()) : document.size();
    }
    catch (const Json::XmlReader::Unexpected& failure)
    {
        outcome.failure = failure.what();
    }
    const std::string own = reader.object().empty() ? "" : object_text(reader.object()) + " ";
    outcome.result = own + value_text(target);
    return outcome;
}

inline Outcome read_xml(const std::string& document)
{
    const Outcome outcome = outcome_of_every_cut(document, read_xml_pieces);
    EXPECT_EQ(read_xml_stream(document), outcome) << "from a stream: " << document;
    return outcome;
}

/// What the complete document `document` reads as.
inline std::string xml_read(const std::string& document)
{
    const Outcome outcome = read_xml(document);
    EXPECT_EQ(outcome.failure, "") << document;
    EXPECT_TRUE(outcome.complete) << document;
    EXPECT_EQ(outcome.consumed, document.size()) << document;
    return outcome.result;
}

/// The failure that the last character of `document` brings, and no one before.
inline std::string xml_failure(const std::string& document)
{
    const Outcome outcome = read_xml(document);
    EXPECT_FALSE(outcome.complete) << document;
    EXPECT_NE(outcome.failure, "") << document;
    EXPECT_EQ(read_xml_pieces({document.substr(0, document.size() - 1)}).failure, "") << document;
    return outcome.failure;
}

/// What `document`, which is not complete, has read so far.
inline std::string xml_so_far(const std::string& document)
{
    const Outcome outcome = read_xml(document);
    EXPECT_EQ(outcome.failure, "") << document;
    EXPECT_FALSE(outcome.complete) << document;
    EXPECT_EQ(outcome.consumed, document.size()) << document;
    return outcome.result;
}

}
