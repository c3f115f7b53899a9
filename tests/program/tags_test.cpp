#include "build_vbf.h"
#include "transfer_test.h"

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

class TagsTest : public TransferTest
{
protected:
    std::string tagged() const { return vbf(ramp(1), "tagged.vbf", {"--tag", "b=two\nlines", "--tag", "a=caf\xe9"}); }
};

class OmeTest : public TransferTest
{
};

} // namespace

TEST_F(TagsTest, AllAreListedByKey)
{
    EXPECT_EQ(output_of({"tags", tagged(), "0"}), "a=caf\xef\xbf\xbd\nb=two\\nlines\n");
    EXPECT_EQ(output_of({"tags", vbf(ramp(1), "none.vbf"), "0"}), "");
}

TEST_F(TagsTest, OneIsWrittenAsItIsStored)
{
    EXPECT_EQ(output_of({"tags", tagged(), "0", "b"}), "two\nlines");
    EXPECT_EQ(output_of({"tags", VELA_GOLGI_FILE, "0", "source"}), "golgi_zyx_u16.tif");
}

TEST_F(TagsTest, JsonIsAnObject)
{
    EXPECT_EQ(ParsedJson::parse(output_of({"tags", tagged(), "0", "--json"})),
              ParsedJson({{"a", "caf\xef\xbf\xbd"}, {"b", "two\nlines"}}));
    EXPECT_EQ(ParsedJson::parse(output_of({"tags", tagged(), "0", "b", "--json"})), ParsedJson({{"b", "two\nlines"}}));
}

TEST_F(TagsTest, MissingKeyAndStackFail)
{
    expect_failure({"tags", VELA_GOLGI_FILE, "0", "none"}, 1, "Tag with key 'none' not found!");
    expect_failure({"tags", VELA_GOLGI_FILE, "0", "none", "--json"}, 1, "Tag with key 'none' not found!");
    expect_failure({"tags", VELA_GOLGI_FILE, "1"}, 1, "Invalid stack index 1!");
}

TEST_F(OmeTest, DocumentOfTheFileIsWrittenAsItIsStored)
{
    const std::string document = output_of({"ome", VELA_GOLGI_FILE});
    EXPECT_THAT(document, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?><ome:OME xmlns:ome="));
    EXPECT_THAT(document, testing::EndsWith("</ome:OME>\n"));
}

TEST_F(OmeTest, RecordOfAStackHasItsSizesAndPlanes)
{
    const std::string record = output_of({"ome", vbf(ramp(2), "file.vbf"), "0"});
    EXPECT_THAT(record, testing::HasSubstr("<ome:Image Name=\"image\" "
                                           "xmlns:ome=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\">"));
    EXPECT_THAT(record, testing::HasSubstr("SizeC=\"1\" SizeT=\"1\" SizeX=\"4\" SizeY=\"2\" SizeZ=\"2\" "
                                           "Type=\"uint16\">"));
    EXPECT_THAT(record, testing::HasSubstr("TheC=\"0\" TheT=\"0\" TheZ=\"1\""));
}

TEST_F(OmeTest, FileWithoutDocumentFails)
{
    FileRecipe old;
    old.format_version = 1;
    old.stacks = {plain_stack<std::uint8_t>({2}, 1, {1, 2})};
    const std::string file = put(build_vbf(old));
    expect_failure({"ome", file}, 1, "The file has no OME document.");
    EXPECT_EQ(run({"ome", file, "0"}).status, 0);
    expect_failure({"ome", file, "1"}, 1, "Invalid stack index 1!");
}

TEST_F(OmeTest, MoreThanAHundredThousandPlanesAreNotWritten)
{
    StackRecipe many;
    many.sizes = {1, 1, 1000, 1000};
    expect_failure({"ome", put(build_vbf(many)), "0"}, 1, "The record has more than 100000 planes.");
}
