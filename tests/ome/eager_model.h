/// The records once more, as plainly as can be: everything is made at once and element by element.
#pragma once

#include "ome/record_tables.h"

#include <Json/Value.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vela_test {

/// What a change handler was called with.
struct Change
{
    std::string field;
    Value value;
};
using ChangeLog = std::vector<Change>;

class EagerRecord;

class EagerCollection
{
public:
    EagerCollection(Value& content, const RecordTable& elements);

    std::size_t size() const { return records_.size(); }
    const std::shared_ptr<EagerRecord>& operator[](std::size_t index) const { return records_[index]; }
    std::shared_ptr<EagerRecord> add(const Value& default_value = Value());
    void clear() { records_.clear(); }

private:
    Value* content_;
    const RecordTable* elements_;
    std::vector<std::shared_ptr<EagerRecord>> records_;
};

class EagerRecord
{
public:
    EagerRecord(Value& slot, const RecordTable& table, const Value& default_value = Value(), std::size_t index = 0);

    const RecordTable& table() const { return *table_; }
    Value& slot(std::size_t row) const { return *fields_[row].slot; }
    void assign(std::size_t row, const Value& value);
    /// What reading the field gives; enumerators as their numbers.
    Value read(std::size_t row);
    void watch(std::size_t row, ChangeLog& log, const std::string& name);
    EagerCollection& collection(const std::string& key) { return *collections_.at(key); }

private:
    struct Field
    {
        Value* slot = nullptr;
        ChangeLog* log = nullptr;
        std::string name;
    };

    Value& object(In in);
    void remember_object(const Row& row, Value& slot);
    void bind(const Row& row, std::size_t index);

    const RecordTable* table_;
    Value* slot_;
    Value* content_ = nullptr;
    Value* pixels_ = nullptr;
    Value* pixels_content_ = nullptr;
    std::vector<Field> fields_;
    std::map<std::string, std::unique_ptr<EagerCollection>> collections_;
};

class EagerImage : public EagerRecord
{
public:
    explicit EagerImage(Value& slot, const Value& default_value = Value(), std::size_t index = 0)
        : EagerRecord(slot, image_table(), default_value, index), channels(collection("ome:Channel")),
          planes(collection("ome:Plane"))
    {
    }

    void set_sizes(std::vector<std::size_t> sizes);
    void set_len(std::size_t d, double len);
    void set_off(std::size_t d, double off);

    EagerCollection& channels;
    EagerCollection& planes;

private:
    std::size_t pixels_row(const std::string& key) const { return table().row(In::pixels, key); }
    std::int64_t size_of(char axis);
    double decimal_of(const std::string& key);
    std::string order();
    char axis_of(std::size_t d);
    void set_positions(char axis, double off);
    void set_depths(double off);
    void set_times(double off);
};

} // namespace vela_test
