// The OME document of a file, character by character.
#include "binary_io/vbf_writing.h"

#include "support/comma_locale.h"
#include "support/expect_bad_cast.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class FileDocumentWriting : public VbfWritingTest
{
protected:
    FileDocumentWriting() { begin_file(); }

    /// The document of the closed file, which is all of its dictionary.
    std::string document()
    {
        const WrittenFile written = close_file();
        EXPECT_EQ(written.dictionary.size(), 1u);
        if (written.dictionary.size() != 1)
            return "";
        EXPECT_EQ(written.dictionary[0].first, "ome_xml");
        return written.dictionary[0].second;
    }

    /// A document with attributes of its own before the namespaces.
    static std::string with_attributes(const std::string& attributes, const std::string& content = "")
    {
        std::string text = plain_document();
        text.insert(text.find("<ome:OME") + 8, attributes);
        text.insert(text.find("></ome:OME>") + 1, content);
        return text;
    }

    static constexpr const char* uuid = "01234567-89ab-cdef-0123-456789abcdef";
};

TEST_F(FileDocumentWriting, HasTheNamespacesAloneAtFirst)
{
    EXPECT_EQ(document(), plain_document());
}

TEST_F(FileDocumentWriting, TheCreatorStandsFirst)
{
    file->set_creator("libvela 1.0");
    EXPECT_EQ(document(), with_attributes(" Creator=\"libvela 1.0\""));
}

TEST_F(FileDocumentWriting, AnEmptyCreatorIsAnEmptyAttribute)
{
    file->set_creator("");
    EXPECT_EQ(document(), with_attributes(" Creator=\"\""));
}

TEST_F(FileDocumentWriting, TheCreatorIsEscapedByteByByte)
{
    file->set_creator("<a> & 'b' \"c\"\n\xc2\xb5\xff;&amp;");
    EXPECT_EQ(document(), with_attributes(" Creator=\"&lt;a&gt; &amp; &apos;b&apos; &quot;c&quot;\n\xc2\xb5\xff;"
                                          "&amp;amp;\""));
}

TEST_F(FileDocumentWriting, TheLastCreatorWins)
{
    file->set_creator("first");
    file->set_creator("second");
    file->set_creator("second");
    add_whole("a");
    file->set_creator("third");
    EXPECT_EQ(document(), with_attributes(" Creator=\"third\""));
}

TEST_F(FileDocumentWriting, TheUuidStandsBehindTheCreatorInItsUrnForm)
{
    file->set_uuid(uuid);
    file->set_creator("x");
    EXPECT_EQ(document(), with_attributes(std::string(" Creator=\"x\" UUID=\"urn:uuid:") + uuid + '"'));
}

TEST_F(FileDocumentWriting, EveryFormOfAUuidBecomesTheSameText)
{
    const std::string bare = uuid;
    for (const std::string& text :
         {bare, "{" + bare + "}", "urn:uuid:" + bare, "urn:uuid:{" + bare + "}",
          std::string("01234567-89AB-CDEF-0123-456789ABCDEF"), std::string("{01234567-89AB-CDEF-0123-456789ABCDEF}")})
    {
        SCOPED_TRACE(text);
        begin_file();
        file->set_uuid(text);
        EXPECT_EQ(file->ome().uuid.get(), "urn:uuid:" + bare);
        EXPECT_EQ(document(), with_attributes(" UUID=\"urn:uuid:" + bare + '"'));
    }
}

TEST_F(FileDocumentWriting, ANullUuidAndATextThatIsNoneAreRefused)
{
    file->set_uuid(uuid);
    const std::string bare = uuid;
    for (const std::string& text :
         {std::string("00000000-0000-0000-0000-000000000000"), std::string("{00000000-0000-0000-0000-000000000000}"),
          std::string("urn:uuid:00000000-0000-0000-0000-000000000000"), std::string(), std::string("no uuid"),
          std::string("urn:uuid:"), bare.substr(1), bare + "0", "{" + bare, bare + "}", "urn:" + bare,
          std::string("01234567-89ab-cdef-0123-456789abcdeg"), std::string("012345678-9ab-cdef-0123-456789abcdef")})
        EXPECT_BAD_CAST(file->set_uuid(text));
    EXPECT_EQ(document(), with_attributes(std::string(" UUID=\"urn:uuid:") + uuid + '"'));
}

TEST_F(FileDocumentWriting, ARefusedUuidLeavesNoAttribute)
{
    EXPECT_BAD_CAST(file->set_uuid("00000000-0000-0000-0000-000000000000"));
    EXPECT_EQ(document(), plain_document());
}

TEST_F(FileDocumentWriting, CreatorAndUuidAreFieldsOfTheDocument)
{
    file->set_creator("one way");
    EXPECT_EQ(file->ome().creator.get(), "one way");
    file->ome().creator = "the other way";
    file->ome().uuid = std::string("urn:uuid:") + uuid;
    EXPECT_EQ(document(), with_attributes(std::string(" Creator=\"the other way\" UUID=\"urn:uuid:") + uuid + '"'));
}

TEST_F(FileDocumentWriting, SayNothingOfTheStacks)
{
    const Stack stack = add({4, 3});
    stack->set_name("cells");
    stack->set_description("of an onion");
    stack->set_acquisition_date();
    write_bytes(stack, numbered_bytes(12));
    EXPECT_EQ(file->ome().images.size(), 0u);
    EXPECT_EQ(document(), plain_document());
}

TEST_F(FileDocumentWriting, AnImageThatACallerAddsIsWritten)
{
    const auto image = file->ome().images.add();
    image->name = "cells";
    EXPECT_EQ(document(),
              with_attributes("", "<ome:Image ID=\"Image:1\" Name=\"cells\">"
                                  "<ome:Pixels ID=\"Pixels:1\" PhysicalSizeX=\"1.0\" PhysicalSizeXUnit=\"pixel\""
                                  " PhysicalSizeY=\"1.0\" PhysicalSizeYUnit=\"pixel\""
                                  " PhysicalSizeZ=\"1.0\" PhysicalSizeZUnit=\"pixel\">"
                                  "<ome:MetadataOnly/></ome:Pixels></ome:Image>"));
}

TEST_F(FileDocumentWriting, ElementsAndAttributesStandInTheOrderOfTheirBytes)
{
    const auto light = file->ome().instruments.add()->light_sources.add();
    light->id = "Light:1";
    light->power_unit = "mW";
    light->power = 2.5;
    light->model = "m";
    light->manufacturer = "f";
    light->serial_number = "s";
    light->lot_number = "l";
    light->laser = Json::Value::Object();
    light->arc = Json::Value::Object();
    const auto image = file->ome().images.add();
    image->description = "d < e";
    image->acquisition_date = "2026-11-20T09:30:00+01:00";
    image->type = Ome::Type::uint16;
    image->dimension_order = Ome::DimensionOrder::XYCTZ;
    image->big_endian = false;
    image->interleaved = true;
    image->significant_bits = 12;
    image->set_sizes({4, 3, 1, 2, 1});
    image->channels[0]->color = -1;
    image->channels[0]->nd_filter = 0.25;
    image->channels[0]->name = "green";
    image->channels[0]->fluor = "";
    image->planes[1]->exposure_time = 3;
    EXPECT_EQ(document(),
              with_attributes(
                  "", "<ome:Image ID=\"Image:1\">"
                      "<ome:AcquisitionDate>2026-11-20T09:30:00+01:00</ome:AcquisitionDate>"
                      "<ome:Description>d &lt; e</ome:Description>"
                      "<ome:Pixels BigEndian=\"false\" DimensionOrder=\"XYCTZ\" ID=\"Pixels:1\" Interleaved=\"true\""
                      " PhysicalSizeX=\"1.0\" PhysicalSizeXUnit=\"pixel\""
                      " PhysicalSizeY=\"1.0\" PhysicalSizeYUnit=\"pixel\""
                      " PhysicalSizeZ=\"1.0\" PhysicalSizeZUnit=\"pixel\" SignificantBits=\"12\""
                      " SizeC=\"1\" SizeT=\"2\" SizeX=\"4\" SizeY=\"3\" SizeZ=\"1\" Type=\"uint16\">"
                      "<ome:Channel Color=\"-1\" Fluor=\"\" ID=\"Channel:1\" NDFilter=\"0.25\" Name=\"green\">"
                      "</ome:Channel>"
                      "<ome:MetadataOnly/>"
                      "<ome:Plane TheC=\"0\" TheT=\"0\" TheZ=\"0\"/>"
                      "<ome:Plane ExposureTime=\"3\" TheC=\"0\" TheT=\"1\" TheZ=\"0\"/>"
                      "</ome:Pixels></ome:Image>"
                      "<ome:Instrument><ome:LightSource ID=\"Light:1\" LotNumber=\"l\" Manufacturer=\"f\""
                      " Model=\"m\" Power=\"2.5\" PowerUnit=\"mW\" SerialNumber=\"s\">"
                      "<ome:Arc/><ome:Laser/></ome:LightSource></ome:Instrument>"));
}

TEST_F(FileDocumentWriting, NumbersDoNotGoByTheGlobalLocale)
{
    const auto light = file->ome().instruments.add()->light_sources.add();
    light->power = 12345.5;
    const vela_test::CommaLocale locale;
    EXPECT_NE(document().find(" Power=\"12345.5\""), std::string::npos);
}

TEST_F(FileDocumentWriting, AListAsAnAttributeFailsTheCloseAndNothingGoesToTheDictionary)
{
    add_whole("a");
    const std::size_t size_before = content().size();
    file->ome().structure.slot().as_object()["Broken"] = Json::Value(Json::Value::List{Json::Value(1)});
    EXPECT_THROW_TEXT(file->close(), std::invalid_argument, "No xml attribute");
    EXPECT_EQ(content().size(), size_before);
    file->ome().structure.slot().as_object()["Broken"] = Json::Value();
    EXPECT_EQ(document(), plain_document());
}

TEST_F(FileDocumentWriting, AListAsContentFailsTheClose)
{
    Json::Value& instrument = file->ome().content.slot().as_object()["ome:Instrument"];
    Json::Value::Object element;
    element[""] = Json::Value(Json::Value::List{Json::Value(1)});
    instrument = Json::Value(element);
    EXPECT_THROW_TEXT(file->close(), std::invalid_argument, "No xml content");
}

TEST_F(FileDocumentWriting, OfTwoFilesDoNotMix)
{
    VBFFile other(file_name(path("other.vbf")), VFile::write_mode);
    file->set_creator("this");
    other->set_creator("that");
    other->close();
    EXPECT_EQ(document(), with_attributes(" Creator=\"this\""));
    EXPECT_EQ(read_written(get_bytes(path("other.vbf"))).dictionary.at(0).second, with_attributes(" Creator=\"that\""));
}

} // namespace
