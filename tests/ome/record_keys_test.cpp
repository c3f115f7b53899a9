// Goes through every field of every record: where it lies, what it may hold, what an empty slot is given.
#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using vela_test::EagerRecord;
using vela_test::In;
using vela_test::probe_values;
using vela_test::RecordTable;
using vela_test::Row;
using vela_test::show;
using vela_test::Value;

template <class Record>
const RecordTable& table_of();

#define TABLE_OF(record, function)                                                                                     \
    template <>                                                                                                        \
    const RecordTable& table_of<vela_test::record>()                                                                   \
    {                                                                                                                  \
        return vela_test::function();                                                                                  \
    }
TABLE_OF(Image, image_table)
TABLE_OF(Channel, channel_table)
TABLE_OF(Plane, plane_table)
TABLE_OF(Instrument, instrument_table)
TABLE_OF(ManufacturerSpec, manufacturer_table)
TABLE_OF(LightSource, light_source_table)
TABLE_OF(LightSourceSettings, light_source_settings_table)

template <class Record>
class OmeRecordKeys : public testing::Test
{
};

using Records = testing::Types<vela_test::Image, vela_test::Channel, vela_test::Plane, vela_test::Instrument,
                               vela_test::ManufacturerSpec, vela_test::LightSource, vela_test::LightSourceSettings>;
TYPED_TEST_SUITE(OmeRecordKeys, Records);

/// The slot of a row in the tree of a record, made where it is missing.
Value& slot_of(Value& tree, In in, const std::string& key)
{
    switch (in)
    {
    case In::own:
        return tree.at(key);
    case In::content:
        return tree.at("").at(key);
    case In::pixels:
        return tree.at("").at("ome:Pixels").at(key);
    case In::pixels_content:
        return tree.at("").at("ome:Pixels").at("").at(key);
    }
    throw std::logic_error("no such object");
}

std::string name_of(const Row& row)
{
    return "\"" + row.key + "\" of object " + std::to_string(static_cast<int>(row.in));
}

/// What becomes of the tree, and whether the record was made.
template <class Record>
bool lay(Value& tree)
{
    try
    {
        Record record(tree);
        return true;
    }
    catch (const std::bad_cast& error)
    {
        EXPECT_STREQ(error.what(), "bad cast");
        return false;
    }
}

bool lay_eagerly(Value& tree, const RecordTable& table)
{
    try
    {
        const EagerRecord record(tree, table);
        return true;
    }
    catch (const std::bad_cast&)
    {
        return false;
    }
}

TYPED_TEST(OmeRecordKeys, AnEmptyTreeGetsTheKeysOfTheTableAndNoMore)
{
    const RecordTable& table = table_of<TypeParam>();
    Value tree;
    TypeParam record(tree);
    Value expected;
    for (const Row& row : table.rows)
    {
        Value& slot = slot_of(expected, row.in, row.key);
        if (slot.is_null())
            slot = row.default_value;
    }
    EXPECT_TREE(tree, expected);
}

TYPED_TEST(OmeRecordKeys, EveryFieldLiesOnItsKey)
{
    const RecordTable& table = table_of<TypeParam>();
    Value tree;
    TypeParam record(tree);
    const auto fields = vela_test::fields_of(record);
    ASSERT_EQ(fields.size(), table.rows.size());
    for (std::size_t row = 0; row < fields.size(); ++row)
    {
        const Row& expected = table.rows[row];
        if (expected.elements != nullptr)
            continue;
        EXPECT_EQ(&fields[row].reference->slot(), &slot_of(tree, expected.in, expected.key)) << name_of(expected);
    }
}

TYPED_TEST(OmeRecordKeys, EveryFieldTakesWhatItsCheckLetsPass)
{
    const RecordTable& table = table_of<TypeParam>();
    for (std::size_t row = 0; row < table.rows.size(); ++row)
    {
        if (table.rows[row].elements != nullptr)
            continue;
        for (const Value& probe : probe_values())
        {
            SCOPED_TRACE(name_of(table.rows[row]) + " = " + show(probe));
            Value tree;
            TypeParam record(tree);
            const auto field = vela_test::fields_of(record)[row];
            const Value before = field.reference->value();
            if (vela_test::passes(table.rows[row].check, probe))
            {
                EXPECT_NO_THROW(field.assign(probe));
                EXPECT_TREE(field.reference->value(), probe);
            }
            else
            {
                EXPECT_BAD_CAST(field.assign(probe));
                EXPECT_TREE(field.reference->value(), before);
            }
        }
    }
}

TYPED_TEST(OmeRecordKeys, ALoadedSlotStaysOrIsRefusedAndThenTheKeysBeforeItAreMade)
{
    const RecordTable& table = table_of<TypeParam>();
    for (const Row& row : table.rows)
        for (const Value& probe : probe_values())
        {
            SCOPED_TRACE(name_of(row) + " = " + show(probe));
            Value tree;
            slot_of(tree, row.in, row.key) = probe;
            Value expected = tree;
            const bool is_made = lay<TypeParam>(tree);
            EXPECT_EQ(is_made, lay_eagerly(expected, table));
            EXPECT_TREE(tree, expected);
            const bool has_stayed = is_made && row.elements == nullptr && !probe.is_null() && !probe.is_object();
            EXPECT_TRUE(!has_stayed || vela_test::same_tree(slot_of(tree, row.in, row.key), probe));
        }
}

TYPED_TEST(OmeRecordKeys, LayingARecordAgainChangesNothing)
{
    Value tree;
    EXPECT_TRUE(lay<TypeParam>(tree));
    const Value before = tree;
    EXPECT_TRUE(lay<TypeParam>(tree));
    EXPECT_TREE(tree, before);
}

TYPED_TEST(OmeRecordKeys, EveryFieldReadsByItsType)
{
    const RecordTable& table = table_of<TypeParam>();
    for (std::size_t row = 0; row < table.rows.size(); ++row)
    {
        if (table.rows[row].elements != nullptr)
            continue;
        for (const Value& probe : probe_values())
        {
            if (!vela_test::passes(table.rows[row].check, probe))
                continue;
            SCOPED_TRACE(name_of(table.rows[row]) + " = " + show(probe));
            Value tree;
            TypeParam record(tree);
            Value copy;
            EagerRecord model(copy, table);
            auto field = vela_test::fields_of(record)[row];
            field.assign(probe);
            model.assign(row, probe);
            Value expected;
            try
            {
                expected = model.read(row);
            }
            catch (const std::bad_cast&)
            {
                EXPECT_BAD_CAST(field.read());
                continue;
            }
            EXPECT_TREE(field.read(), expected);
            EXPECT_TREE(tree, copy);
        }
    }
}

TYPED_TEST(OmeRecordKeys, EveryFieldTellsItsHandlerOfChangesAlone)
{
    const RecordTable& table = table_of<TypeParam>();
    for (std::size_t row = 0; row < table.rows.size(); ++row)
    {
        if (table.rows[row].elements != nullptr)
            continue;
        SCOPED_TRACE(name_of(table.rows[row]));
        Value tree;
        TypeParam record(tree);
        Value copy;
        EagerRecord model(copy, table);
        vela_test::ChangeLog log;
        vela_test::ChangeLog expected;
        auto field = vela_test::fields_of(record)[row];
        field.watch(log, "field");
        model.watch(row, expected, "field");
        for (const Value& probe : probe_values())
        {
            if (!vela_test::passes(table.rows[row].check, probe))
                continue;
            field.assign(probe);
            field.assign(probe);
            model.assign(row, probe);
        }
        ASSERT_EQ(log.size(), expected.size());
        for (std::size_t change = 0; change < log.size(); ++change)
            EXPECT_TREE(log[change].value, expected[change].value);
        EXPECT_GT(log.size(), 0u);
    }
}

} // namespace
