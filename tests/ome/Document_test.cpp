#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"

#include <gtest/gtest.h>

namespace {

using vela_test::Document;
using vela_test::EagerImage;
using vela_test::EagerRecord;
using vela_test::RecordTable;
using vela_test::Row;
using vela_test::show;
using vela_test::Value;
using Object = Value::Object;
using List = Value::List;

const Value null;

TEST(OmeDocument, OverAnEmptyTreeHasItsNamespaces)
{
    Value root;
    const Document document(root);
    EXPECT_TREE(
        root,
        (Object{{"ome:OME", Object{{"xmlns:ome", "http://www.openmicroscopy.org/Schemas/OME/2015-01"},
                                   {"xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance"},
                                   {"xsi:schemaLocation", "http://www.openmicroscopy.org/Schemas/OME/2015-01 "
                                                          "http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd"},
                                   {"UUID", null},
                                   {"Creator", null},
                                   {"", Object{{"ome:Instrument", null}, {"ome:Image", null}}}}}}));
}

TEST(OmeDocument, LiesOnItsKeyBesideOthers)
{
    EXPECT_STREQ(Document::element_key(), "ome:OME");
    Value root = Object{{"other", 1}};
    const Document document(root);
    EXPECT_EQ(&document.structure.slot(), &root.at("ome:OME"));
    EXPECT_TREE(root.at("other"), 1);
}

TEST(OmeDocument, NamespacesThatAreThereStay)
{
    Value root;
    root.at("ome:OME").at("xmlns:ome") = "urn:mine";
    root.at("ome:OME").at("xsi:schemaLocation") = "";
    const Document document(root);
    EXPECT_TREE(root.at("ome:OME").at("xmlns:ome"), "urn:mine");
    EXPECT_TREE(root.at("ome:OME").at("xmlns:xsi"), "http://www.w3.org/2001/XMLSchema-instance");
    EXPECT_TREE(root.at("ome:OME").at("xsi:schemaLocation"), "");
}

TEST(OmeDocument, IsRefusedOverARootThatIsNoObject)
{
    for (const Value& wrong : {Value(0), Value("text"), Value(true), Value(List())})
    {
        Value root = wrong;
        EXPECT_BAD_CAST(Document{root});
        EXPECT_TREE(root, wrong);
        Value below = Object{{"ome:OME", wrong}};
        EXPECT_BAD_CAST(Document{below});
        EXPECT_TREE(below, (Object{{"ome:OME", wrong}}));
    }
}

TEST(OmeDocument, AWrongUuidLeavesTheNamespacesBeforeIt)
{
    Value root;
    root.at("ome:OME").at("UUID") = "urn:uuid:00000000-0000-0000-0000-000000000000";
    EXPECT_BAD_CAST(Document{root});
    const Object& element = *root.at("ome:OME").if_object();
    EXPECT_EQ(element.size(), 4u);
    EXPECT_EQ(element.count("xsi:schemaLocation"), 1u);
    EXPECT_EQ(element.count("Creator"), 0u);
}

TEST(OmeDocument, EveryFieldLiesOnItsKeyAndTakesWhatItsCheckLetsPass)
{
    const RecordTable& table = vela_test::document_table();
    for (std::size_t row = 0; row < table.rows.size(); ++row)
        for (const Value& probe : vela_test::probe_values())
        {
            if (table.rows[row].elements != nullptr)
                continue;
            SCOPED_TRACE("\"" + table.rows[row].key + "\" = " + show(probe));
            Value root;
            Document document(root);
            const auto field = vela_test::fields_of(document)[row];
            EXPECT_EQ(&field.reference->slot(), &root.at("ome:OME").at(table.rows[row].key));
            const Value before = field.reference->value();
            const bool is_taken = vela_test::passes(table.rows[row].check, probe);
            if (is_taken)
            {
                EXPECT_NO_THROW(field.assign(probe));
            }
            else
            {
                EXPECT_BAD_CAST(field.assign(probe));
            }
            EXPECT_TREE(field.reference->value(), is_taken ? probe : before);
        }
}

/// Lays a document over a tree with one slot filled; says what became of both.
void expect_as_the_table_says(const Row& row, const Value& probe)
{
    SCOPED_TRACE("\"" + row.key + "\" = " + show(probe));
    Value root;
    Value& element = root.at("ome:OME");
    (row.in == vela_test::In::own ? element.at(row.key) : element.at("").at(row.key)) = probe;
    Value expected = root;
    bool is_refused = false;
    try
    {
        const EagerRecord record(expected.at("ome:OME"), vela_test::document_table());
    }
    catch (const std::bad_cast&)
    {
        is_refused = true;
    }
    if (is_refused)
    {
        EXPECT_BAD_CAST(Document{root});
    }
    else
    {
        EXPECT_NO_THROW(Document{root});
    }
    EXPECT_TREE(root, expected);
}

TEST(OmeDocument, ALoadedSlotStaysOrIsRefusedAndThenTheKeysBeforeItAreMade)
{
    for (const Row& row : vela_test::document_table().rows)
        for (const Value& probe : vela_test::probe_values())
            expect_as_the_table_says(row, probe);
}

TEST(OmeDocument, AddedImagesAreNumberedFromOne)
{
    Value root;
    Document document(root);
    document.images.add();
    const auto second = document.images.add();
    EXPECT_EQ(document.images.size(), 2u);
    EXPECT_EQ(second->id.get(), "Image:2");
    EXPECT_EQ(second->pixels_id.get(), "Pixels:2");
    Value expected;
    const EagerImage first_image(expected.at(0), Value(), 1);
    const EagerImage second_image(expected.at(1), Value(), 2);
    EXPECT_TREE(root.at("ome:OME").at("").at("ome:Image"), expected);
}

TEST(OmeDocument, LoadedImagesGetTheirDefaultsButNoIds)
{
    Value root;
    root.at("ome:OME").at("").at("ome:Image") = Object{{"Name", "cells"}};
    const Document document(root);
    Value expected = Object{{"Name", "cells"}};
    const EagerImage image(expected);
    EXPECT_TREE(root.at("ome:OME").at("").at("ome:Image"), List{expected});
    EXPECT_EQ(document.images.size(), 1u);
    EXPECT_TREE(document.images[0]->id.value(), null);
    EXPECT_TREE(document.images[0]->physical_size_x.value(), 1.0);
}

TEST(OmeDocument, ImagesOfADocumentHaveSizesLengthsAndOffsets)
{
    Value root;
    Value expected;
    {
        Document document(root);
        const auto image = document.images.add();
        EagerImage model(expected, Value(), 1);
        image->dimension_order = "XYCTZ";
        model.assign(vela_test::image_table().row(vela_test::In::pixels, "DimensionOrder"), "XYCTZ");
        image->set_sizes({8, 9, 2, 3, 4});
        model.set_sizes({8, 9, 2, 3, 4});
        image->set_len(4, 6.0);
        model.set_len(4, 6.0);
        image->set_off(4, 2.5);
        model.set_off(4, 2.5);
    }
    Value copy = root;
    Value laid_over = copy;
    const Document other(laid_over);
    EXPECT_EQ(other.images[0]->planes.size(), 24u);
    EXPECT_EQ(other.images[0]->planes[23]->position_z.get(), 4.75);
    EXPECT_TREE(laid_over.at("ome:OME").at("").at("ome:Image").at(0), expected);
    EXPECT_TREE(copy.at("ome:OME").at("").at("ome:Image").at(0), expected);
}

} // namespace
