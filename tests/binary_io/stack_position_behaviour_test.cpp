// The metadata of a record, and the position that stands in it.
#include "binary_io/vbf_reading_test.h"

#include <VelaProps/property_xml.h>

using namespace vela_test;

namespace {

typedef std::vector<double> Doubles;

/// How the library reports that this text is no property tree.
std::string import_report(const std::string& xml)
{
    VProp prop;
    try
    {
        vela_import_xml(xml, prop, 0);
    }
    catch (const VelaError& error)
    {
        return error.what();
    }
    return "no failure";
}

class VbfStackPosition : public VbfReadingTest
{
protected:
    static RecordFields record_with(const std::string& metadata, std::uint32_t format_version = 5)
    {
        RecordFields fields = bytes_record(counted_bytes(6));
        fields.header.sizes = {3, 2};
        fields.header.lengths = {1.0, 1.0};
        fields.header.offsets = {0.0, 0.0};
        fields.header.format_version = format_version;
        fields.labels = {"A", "B"};
        fields.metadata = metadata;
        return fields;
    }

    /// Opening fails, and says what `reason` says behind the name of the failure.
    void expect_invalid(const std::string& metadata, const std::string& reason, std::uint32_t format_version = 5)
    {
        SCOPED_TRACE(metadata.substr(0, 300));
        EXPECT_VELA_ERROR_IN(only_stack(record_with(metadata, format_version)), "VBFStackImp::read_info",
                             binary_io_folder, -1, "Invalid metadata found!\n" + reason);
        EXPECT_FALSE(file->is_open());
    }

    /// The same, where the reason is not known word by word.
    void expect_invalid_somehow(const std::string& metadata, const std::string& part)
    {
        SCOPED_TRACE(metadata.substr(0, 300));
        try
        {
            only_stack(record_with(metadata));
            ADD_FAILURE() << "opened";
        }
        catch (const VelaError& error)
        {
            EXPECT_EQ(error.get_id(), -1);
            EXPECT_EQ(error.get_msg().rfind("Invalid metadata found!\n", 0), 0u) << error.get_msg();
            EXPECT_NE(error.get_msg().find(part), std::string::npos) << error.get_msg();
            EXPECT_STREQ(error.get_func(), "VBFStackImp::read_info");
        }
        EXPECT_FALSE(file->is_open());
    }
};

const std::string good = position_xml({"x", "y", "z"}, "1.5 -2 100", "3 2", "1 0 0 0 0.5 0.25");
const std::string empty_tree = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\"></root>";

std::vector<std::string> labels_of(const VStackPosition& position)
{
    std::vector<std::string> labels;
    for (const VPropstring& label : position.labels)
        labels.push_back(label.to(VPropstring::enc_utf8));
    return labels;
}

void expect_good(const VStackPosition& position)
{
    EXPECT_EQ(labels_of(position), (std::vector<std::string>{"x", "y", "z"}));
    EXPECT_EQ(static_cast<const Doubles&>(position.origin), (Doubles{1.5, -2.0, 100.0}));
    EXPECT_EQ(static_cast<const Doubles&>(position.matrix), (Doubles{1.0, 0.0, 0.0, 0.0, 0.5, 0.25}));
    EXPECT_EQ(position.matrix.get_size(true), (std::vector<std::size_t>{3, 2}));
}

void expect_default(const VStackPosition& position)
{
    EXPECT_EQ(labels_of(position), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(static_cast<const Doubles&>(position.origin), (Doubles{0.0, 0.0}));
    EXPECT_EQ(static_cast<const Doubles&>(position.matrix), (Doubles{1.0, 0.0, 0.0, 1.0}));
    EXPECT_EQ(position.matrix.get_size(true), (std::vector<std::size_t>{2, 2}));
}

} // namespace

TEST_F(VbfStackPosition, StandsInTheMetadata)
{
    const StackPointer stack = only_stack(record_with(good));
    expect_good(stack->get_stack_position());
}

TEST_F(VbfStackPosition, TheMetadataAreToldAsTheyStand)
{
    EXPECT_EQ(only_stack(record_with(good))->get_meta_data_string(), good);
    const std::string spaced = "\n  " + good + "\n\n";
    EXPECT_EQ(only_stack(record_with(spaced))->get_meta_data_string(), spaced);
}

TEST_F(VbfStackPosition, OtherMembersOfTheTreeDoNotMatter)
{
    std::string more = good;
    const std::string begin = "<global_pos ";
    more.insert(more.find(begin), "<gain idx=\"1\" type=\"double\" size=\"1 1\">2.5</gain>");
    const StackPointer stack = only_stack(record_with(more));
    expect_good(stack->get_stack_position());
    EXPECT_EQ(stack->get_meta_data_string(), more);
}

TEST_F(VbfStackPosition, WithoutMetadataItIsTheDefault)
{
    const StackPointer stack = only_stack(record_with(""));
    expect_default(stack->get_stack_position());
    EXPECT_EQ(stack->get_meta_data_string(), "");
}

TEST_F(VbfStackPosition, RecordsOfVersionOneAndTwoIgnoreIt)
{
    for (const std::uint32_t version : {1u, 2u})
    {
        const StackPointer stack = only_stack(record_with(good, version));
        expect_default(stack->get_stack_position());
        EXPECT_EQ(stack->get_meta_data_string(), good);
    }
}

TEST_F(VbfStackPosition, RecordsFromVersionThreeOnHaveIt)
{
    for (const std::uint32_t version : {3u, 4u, 5u, 6u})
        expect_good(only_stack(record_with(good, version))->get_stack_position());
}

TEST_F(VbfStackPosition, RecordsOfVersionOneAndTwoNeedNotBringIt)
{
    for (const std::uint32_t version : {1u, 2u})
        EXPECT_EQ(only_stack(record_with(empty_tree, version))->get_meta_data_string(), empty_tree);
}

TEST_F(VbfStackPosition, RecordsFromVersionThreeOnHaveToBringAllOfIt)
{
    expect_invalid_somehow(empty_tree, "");
    for (const std::string& member : {std::string("axes"), std::string("offset"), std::string("projection")})
    {
        std::string without = good;
        const std::size_t begin = without.find("<" + member + " ");
        const std::string end = "</" + member + ">";
        without.erase(begin, without.find(end) + end.size() - begin);
        expect_invalid_somehow(without, "");
    }
}

TEST_F(VbfStackPosition, TextThatIsNoPropertyTreeIsInvalidInEachVersionWithAFooter)
{
    for (const std::string& text : {std::string("no XML"), std::string(" "), std::string("<root><open></root>"),
                                    std::string("<a/>"), good.substr(0, good.size() - 1),
                                    std::string("<root idx=\"1\" type=\"nonsense\" size=\"1 1\" vprop_version=\"1\"/>"),
                                    std::string("<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"2\"/>")})
        for (const std::uint32_t version : {1u, 2u, 3u, 5u})
        {
            ASSERT_NE(import_report(text), "no failure");
            expect_invalid(text, import_report(text), version);
        }
}

TEST_F(VbfStackPosition, MembersOfOtherTypesAreInvalid)
{
    std::string singles = good;
    const std::string from = "type=\"double\" size=\"3\"";
    singles.replace(singles.find(from), from.size(), "type=\"single\" size=\"3\"");
    expect_invalid_somehow(singles, "");
    std::string no_array = good;
    const std::string offset = "size=\"3\">1.5 -2 100<";
    no_array.replace(no_array.find(offset), offset.size(), "size=\"1 1\">1.5<");
    no_array.erase(no_array.find("userbits=\"0\" type=\"double\" size=\"1 1\""), std::string("userbits=\"0\" ").size());
    expect_invalid_somehow(no_array, "");
}

TEST_F(VbfStackPosition, OneThatDoesNotFitTheStackIsInvalid)
{
    const std::string reason = "Invalid global stack position!";
    expect_invalid_somehow(position_xml({"x", "y"}, "0 0", "2 3", "1 0 0 1 0 0"), reason);
    expect_invalid_somehow(position_xml({"x", "y", "z"}, "0 0 0", "2 2", "1 0 0 1"), reason);
}

/// That a text was right for the stack before says nothing where the rank or the version is another.
TEST_F(VbfStackPosition, TheSameTextAsInTheStackBeforeIsTriedAgain)
{
    RecordFields row = bytes_record({1, 2});
    row.metadata = good;
    VbfRecords other_rank(1);
    other_rank.add_stack_record(record_with(good));
    other_rank.add_stack_record(row);
    VbfRecords other_version(1);
    other_version.add_stack_record(record_with(empty_tree, 2));
    other_version.add_stack_record(record_with(empty_tree, 5));
    for (const VbfRecords& built : {other_rank, other_version})
    {
        try
        {
            open(built);
            ADD_FAILURE() << "nothing was thrown";
        }
        catch (const VelaError& error)
        {
            EXPECT_EQ(error.get_id(), -1);
            EXPECT_EQ(error.get_msg().rfind("Invalid metadata found!\n", 0), 0u) << error.get_msg();
        }
    }
}

TEST_F(VbfStackPosition, MetadataThatTheFileHasNotAreAFailedReadAndNotInvalid)
{
    VbfRecords built(1);
    RecordFields fields = record_with(good);
    fields.has_tag_dictionary = false;
    const RecordPlaces places = built.add_stack_record(fields);
    built.set_u32_at(places.footer + footer_metadata_length_at, static_cast<std::uint32_t>(good.size() + 1));
    EXPECT_VELA_ERROR(open(built), -3, "Failed reading " + std::to_string(good.size() + 1) + " bytes from file!");
}

TEST_F(VbfStackPosition, CanBeSetThoughTheDescriptionIsLocked)
{
    const StackPointer stack = only_stack(record_with(""));
    VStackPosition position;
    position.create(stack.get(), 2);
    position.origin[1] = 5.0;
    stack->set_stack_position(position);
    EXPECT_EQ(stack->get_stack_position().origin[1], 5.0);
}
