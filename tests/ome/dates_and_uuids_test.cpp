#include <Json/Value.h>
#include <Ome/checks.h>

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <gtest/gtest.h>

#include <string>

namespace {

using Ome::check::Timestamp;
using Ome::check::Uuid;

const std::string uuid = "6f9619ff-8b86-d011-b42d-00c04fc964ff";

/// All at noon, which exists in every time zone.
const char* const dates[] = {
    "2024-02-29T12:34:56",
    "2024-02-29T12:34:56Z",
    "2024-02-29T12:34:56+01:00",
    "2024-02-29T12:34:56-14:00",
    "2024-02-29T12:34:56+0100",
    "2024-02-29T12:34:56.789",
    "2024-02-29T12:34:56.789Z",
    "2024-02-29T12:34:56,7",
    "2024-02-29T12:34",
    "2024-02-29T12:34Z",
    "2024-02-29",
    "2024-02-29 12:34:56",
    "2024-02-29t12:34:56",
    "0001-01-01T12:00:00Z",
    "9999-12-31T12:00:00Z",
};

const char* const no_dates[] = {
    "",
    "yesterday",
    "2023-02-29T12:00:00Z",
    "2024-02-30T12:00:00Z",
    "2024-13-01T12:00:00Z",
    "2024-00-01T12:00:00Z",
    "2024-02-29T25:00:00Z",
    "2024-02-29T12:60:00Z",
    "2024-02-29T12:00:61Z",
    "2024-02-29T12:34:56+25:00",
    "2024-02-29T12:34:56x",
    "2024-02-29T",
    "2024-2-29T12:00:00",
    "20240229T123456",
    "29.02.2024",
    "Thu Feb 29 12:34:56 2024",
    " 2024-02-29T12:00:00",
    "2024-02-29T12:00:00 ",
    "2024-02-29\n12:00:00",
    "2024-060",
    "10000-01-01T12:00:00Z",
    "1709210096",
};

bool qt_reads_date(const std::string& text)
{
    return QDateTime::fromString(QString::fromStdString(text), Qt::ISODate).isValid();
}

bool qt_reads_uuid(const std::string& text)
{
    return !QUuid(QString::fromStdString(text).mid(9)).isNull();
}

TEST(OmeTimestamp, IsADateAndTimeOfIso8601)
{
    for (const char* const text : dates)
        EXPECT_TRUE(Timestamp::check(text)) << text;
}

TEST(OmeTimestamp, IsNothingElse)
{
    for (const char* const text : no_dates)
        EXPECT_FALSE(Timestamp::check(text)) << text;
    EXPECT_FALSE(Timestamp::check(std::string("2024-02-29T12:00:00Z\0", 21)));
    EXPECT_FALSE(Timestamp::check(1709210096));
    EXPECT_FALSE(Timestamp::check(2024.0));
    EXPECT_FALSE(Timestamp::check(true));
    EXPECT_FALSE(Timestamp::check(Json::Value::Object()));
}

TEST(OmeTimestamp, TakesWhatQtReadsCutAtEveryLengthAndWithEveryCharacterReplaced)
{
    for (const std::string text : dates)
        for (std::size_t at = 0; at < text.size(); ++at)
        {
            const std::string cut = text.substr(0, at);
            EXPECT_EQ(Timestamp::check(cut), qt_reads_date(cut)) << cut;
            for (const char other : {' ', '0', '1', '9', '-', ':', '.', 'T', 'Z', '+', 'x', '\0'})
            {
                std::string changed = text;
                changed[at] = other;
                if (changed.find("T12:") == std::string::npos)
                    continue; // another hour may be one that a time zone leaves out
                EXPECT_EQ(Timestamp::check(changed), qt_reads_date(changed)) << changed;
            }
        }
}

TEST(OmeUuid, StandsBehindNineCharacters)
{
    EXPECT_TRUE(Uuid::check("urn:uuid:" + uuid));
    EXPECT_TRUE(Uuid::check("urn:uuid:6F9619FF-8B86-D011-B42D-00C04FC964FF"));
    EXPECT_TRUE(Uuid::check("urn:uuid:{" + uuid + "}"));
    EXPECT_TRUE(Uuid::check("urn:uuid:00000000-0000-0000-0000-000000000001"));
}

TEST(OmeUuid, WhichNineCharactersStandBeforeItIsNotLookedAt)
{
    EXPECT_TRUE(Uuid::check("123456789" + uuid));
    EXPECT_TRUE(Uuid::check("URN:UUID:" + uuid));
    EXPECT_TRUE(Uuid::check("         " + uuid));
}

TEST(OmeUuid, TheNullUuidIsNone)
{
    EXPECT_FALSE(Uuid::check("urn:uuid:00000000-0000-0000-0000-000000000000"));
    EXPECT_FALSE(Uuid::check("urn:uuid:{00000000-0000-0000-0000-000000000000}"));
}

TEST(OmeUuid, WithoutThePrefixOrShortOrWrongItIsNone)
{
    EXPECT_FALSE(Uuid::check(uuid));
    EXPECT_FALSE(Uuid::check("urn:uuid" + uuid));
    EXPECT_FALSE(Uuid::check("urn:uuid::" + uuid));
    EXPECT_FALSE(Uuid::check("urn:uuid:urn:uuid:" + uuid));
    EXPECT_FALSE(Uuid::check("urn:uuid:6f9619ff-8b86-d011-b42d-00c04fc964fg"));
    EXPECT_FALSE(Uuid::check("urn:uuid:6f9619ff8b86d011b42d00c04fc964ff"));
    EXPECT_FALSE(Uuid::check("urn:uuid:hello"));
    const std::string whole = "urn:uuid:" + uuid;
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(Uuid::check(whole.substr(0, length))) << length;
}

TEST(OmeUuid, OtherKindsAreNone)
{
    for (const Json::Value& value : {Json::Value(0), Json::Value(1.0), Json::Value(true),
                                     Json::Value(Json::Value::List()), Json::Value(Json::Value::Object())})
        EXPECT_FALSE(Uuid::check(value));
    EXPECT_FALSE(Uuid::check(Json::Value::List{"urn:uuid:" + uuid}));
}

TEST(OmeUuid, TakesWhatQtReadsWithEveryCharacterReplaced)
{
    for (const std::string& text : {"urn:uuid:" + uuid, "urn:uuid:{" + uuid + "}", "urn:uuid:" + uuid + " more"})
        for (std::size_t at = 0; at < text.size(); ++at)
            for (const char other : {' ', '0', 'f', 'F', 'g', '-', '{', '}', '\0'})
            {
                std::string changed = text;
                changed[at] = other;
                EXPECT_EQ(Uuid::check(changed), qt_reads_uuid(changed)) << changed;
            }
}

} // namespace
