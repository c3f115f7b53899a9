/// The fields of the library's records in the order of the tables, so that tests can go through them.
#pragma once

#include "ome/eager_model.h"

#include <Json/SignalingReference.h>
#include <Ome/Document.h>
#include <Ome/Image.h>

#include <functional>
#include <string>
#include <vector>

namespace vela_test {

using Reference = Json::SignalingReference;
using Image = Ome::Image<Reference>;
using Channel = Ome::Channel<Reference>;
using Plane = Ome::Plane<Reference>;
using Instrument = Ome::Instrument<Reference>;
using LightSource = Ome::LightSource<Reference>;
using LightSourceSettings = Ome::LightSourceSettings<Reference>;
using ManufacturerSpec = Ome::ManufacturerSpec<Reference>;
using Document = Ome::Document<Reference>;

/// One field, whatever its type. A collection has an empty one.
struct FieldView
{
    const Reference* reference = nullptr;
    std::function<void(const Value&)> assign;
    std::function<Value()> read; ///< enumerators as their numbers
    std::function<void(ChangeLog&, const std::string&)> watch;
};

/// @name One view for each row of the table. The record must outlive it.
/// @{
std::vector<FieldView> fields_of(Image& record);
std::vector<FieldView> fields_of(Channel& record);
std::vector<FieldView> fields_of(Plane& record);
std::vector<FieldView> fields_of(Instrument& record);
std::vector<FieldView> fields_of(ManufacturerSpec& record);
std::vector<FieldView> fields_of(LightSource& record);
std::vector<FieldView> fields_of(LightSourceSettings& record);
std::vector<FieldView> fields_of(Document& record);
/// @}

} // namespace vela_test
