/// The records as tables of their own, held against the ones of the library: which key lies where, what it may
/// hold, and what an empty slot is given.
#pragma once

#include "ome/trees.h"

#include <Json/Value.h>

#include <cstddef>
#include <string>
#include <vector>

namespace vela_test {

/// What a field may hold.
enum class Check
{
    structure,
    string,
    boolean,
    integer,
    non_negative_int,
    positive_int,
    number,
    positive_float,
    percent_fraction,
    timestamp,
    uuid,
    length_unit,
    power_unit,
    time_unit,
    acquisition_mode,
    contrast_method,
    dimension_order,
    illumination_type,
    pixel_type,
};

/// Whether the check lets the value pass. Of dates and UUIDs it knows the two samples alone.
bool passes(Check check, const Value& value);

inline const char* const sample_timestamp = "2026-11-20T09:30:00+01:00";
inline const char* const sample_uuid = "urn:uuid:6f9619ff-8b86-d011-b42d-00c04fc964ff";

/// The texts of an enumeration, by number; of any other check none.
const std::vector<std::string>& enumeration_texts(Check check);

/// The units, made from prefixes.
const std::vector<std::string>& length_units();
const std::vector<std::string>& power_units();
const std::vector<std::string>& time_units();

/// In which object of the record a key lies.
enum class In
{
    own,
    content,
    pixels,
    pixels_content,
};

struct RecordTable;

/// A field, or a collection where it has a table of elements. In the order in which they are bound.
struct Row
{
    Row(In object, const char* name, Check what, Value fallback = Value())
        : in(object), key(name), check(what), default_value(std::move(fallback))
    {
    }

    In in;
    std::string key;
    Check check;
    Value default_value;
    const char* id_name = nullptr; ///< the name in the default of an ID
    const RecordTable* elements = nullptr;
};

struct RecordTable
{
    std::string element_key;
    std::vector<Row> rows;

    /// The number of the row; the test ends where there is none.
    std::size_t row(In in, const std::string& key) const;
};

const RecordTable& image_table();
const RecordTable& channel_table();
const RecordTable& plane_table();
const RecordTable& instrument_table();
const RecordTable& manufacturer_table();
const RecordTable& light_source_table();
const RecordTable& light_source_settings_table();
const RecordTable& document_table();

/// Values of every kind, among them for each check some that pass and some that do not.
const std::vector<Value>& probe_values();

} // namespace vela_test
