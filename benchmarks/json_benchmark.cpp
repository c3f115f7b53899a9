// Reading JSON text against nlohmann::json, and XML text against TinyXML. Both sides read the whole text from
// memory into a tree and destroy it again.

#include "benchmarks/ratios.h"

#include <Json/Reader.h>
#include <Json/XmlReader.h>
#include <Json/write.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <tinyxml.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <sstream>
#include <string>

namespace {

using Json::Value;

std::string json_text(const Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

std::string xml_text(const Value& value)
{
    std::ostringstream out;
    Json::write_xml(value, out);
    return out.str();
}

/// The same with a line break behind each tag and blanks before it, as people write it.
std::string indented_xml_text(const Value& value)
{
    const std::string plain = xml_text(value);
    std::string text;
    std::size_t depth = 0;
    for (std::size_t i = 0; i < plain.size(); ++i)
    {
        const bool between_tags = i > 0 && plain[i] == '<' && plain[i - 1] == '>';
        const bool end_tag = plain.compare(i, 2, "</") == 0;
        if (end_tag)
            --depth;
        if (between_tags)
            text += "\n" + std::string(2 * depth, ' ');
        if (plain[i] == '<' && !end_tag && plain[i + 1] != '?')
            ++depth;
        if (plain.compare(i, 2, "/>") == 0)
            --depth;
        text += plain[i];
    }
    return text;
}

std::string indented_json_text(const Value& value)
{
    return nlohmann::json::parse(json_text(value)).dump(2);
}

std::string words(std::mt19937& random, std::size_t count)
{
    static const char* const dictionary[] = {"laser",    "of",     "488 nm", "objective \"oil\"", "in", "a", "dish",
                                             "C:\\data", "filter", "plane"};
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text.append(i == 0 ? "" : " ").append(dictionary[random() % 10]);
    return text;
}

double measured(std::mt19937& random)
{
    return static_cast<double>(random() % 10000000) / 4096;
}

/// Records of every kind of value, as settings are.
Value mixed_document()
{
    std::mt19937 random(1);
    Value document;
    for (std::size_t i = 0; i < 2000; ++i)
    {
        Value& record = document.at("records").at(i);
        record.at("active") = i % 3 == 0;
        record.at("comment") = words(random, random() % 12);
        record.at("id") = i;
        record.at("name") = "Detector:" + std::to_string(i % 7);
        record.at("parent") = Value();
        for (std::size_t j = 0; j < 3; ++j)
            record.at("position").at(j) = measured(random);
        record.at("range").at("from") = random() % 1000;
        record.at("range").at("to") = -static_cast<std::int64_t>(random() % 1000);
    }
    return document;
}

Value integers()
{
    std::mt19937 random(2);
    Value document;
    Value::List& list = document.at("histogram").as_list();
    for (std::size_t i = 0; i < 50000; ++i)
        list.emplace_back(random() >> (random() % 24));
    return document;
}

Value decimals()
{
    std::mt19937 random(3);
    Value document;
    Value::List& list = document.at("positions").as_list();
    for (std::size_t i = 0; i < 50000; ++i)
        list.emplace_back(measured(random));
    return document;
}

Value long_strings()
{
    std::mt19937 random(4);
    Value document;
    for (std::size_t i = 0; i < 100; ++i)
        document.at("log").at(i) = words(random, 1500);
    return document;
}

/// The metadata of an image of three channels with a record for each plane.
Value ome_document()
{
    std::mt19937 random(5);
    Value document;
    Value& ome = document.at("OME");
    ome.at("xmlns") = "http://www.openmicroscopy.org/Schemas/OME/2015-01";
    Value& image = ome.at("").at("Image");
    image.at("ID") = "Image:0";
    image.at("Name") = "Confocal stack";
    image.at("").at("AcquisitionDate") = "2015-06-01T12:00:00";
    Value& pixels = image.at("").at("Pixels");
    pixels.at("DimensionOrder") = "XYZCT";
    pixels.at("ID") = "Pixels:0";
    pixels.at("PhysicalSizeX") = 0.065;
    pixels.at("SizeX") = 1024;
    pixels.at("SizeY") = 1024;
    pixels.at("SizeZ") = 100;
    pixels.at("SizeC") = 3;
    pixels.at("SizeT") = 1;
    pixels.at("Type") = "uint16";
    for (std::size_t c = 0; c < 3; ++c)
    {
        Value& channel = pixels.at("").at("Channel").at(c);
        channel.at("Color") = random() % 0x7fffffff;
        channel.at("EmissionWavelength") = 450 + 60 * c;
        channel.at("ID") = "Channel:0:" + std::to_string(c);
        channel.at("Name") = "Channel " + std::to_string(c);
        channel.at("SamplesPerPixel") = 1;
    }
    for (std::size_t i = 0; i < 300; ++i)
    {
        Value& plane = pixels.at("").at("Plane").at(i);
        plane.at("DeltaT") = measured(random);
        plane.at("ExposureTime") = 0.125;
        plane.at("PositionX") = measured(random);
        plane.at("PositionY") = -measured(random);
        plane.at("PositionZ") = measured(random);
        plane.at("TheC") = i % 3;
        plane.at("TheT") = 0;
        plane.at("TheZ") = i / 3;
        Value& data = pixels.at("").at("TiffData").at(i);
        data.at("FirstC") = i % 3;
        data.at("FirstT") = 0;
        data.at("FirstZ") = i / 3;
        data.at("IFD") = i;
        data.at("PlaneCount") = 1;
        data.at("").at("UUID").at("FileName") = "stack.ome.tiff";
        data.at("").at("UUID").at("") = "urn:uuid:5fd1d7fb-9c8c-4a0c-8c7f-6fb1c5c6fd14";
    }
    return document;
}

template <class Read>
void add(const std::string& name, const std::string& text, Read read)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [text, read](benchmark::State& state)
                                 {
                                     for (auto step : state)
                                         read(text, state);
                                     state.SetBytesProcessed(state.iterations() *
                                                             static_cast<std::int64_t>(text.size()));
                                 });
}

void add_json(const std::string& name, const std::string& text)
{
    add("Json::Reader " + name, text,
        [](const std::string& input, benchmark::State& state)
        {
            Json::Reader reader;
            const char* p = input.data();
            if (!reader.read(p, input.data() + input.size()))
                state.SkipWithError("not complete");
        });
    add("nlohmann " + name, text,
        [](const std::string& input, benchmark::State& state)
        {
            const nlohmann::json document = nlohmann::json::parse(input);
            if (!document.is_object())
                state.SkipWithError("no object");
        });
    vela_bench::expect_ratio("json, " + name, "Json::Reader " + name, "nlohmann " + name, 1);
}

void add_xml(const std::string& name, const std::string& text)
{
    add("Json::XmlReader " + name, text,
        [](const std::string& input, benchmark::State& state)
        {
            Value document;
            Json::XmlReader reader(document);
            const char* p = input.data();
            if (!reader.read(p, input.data() + input.size()))
                state.SkipWithError("not complete");
        });
    add("TinyXML " + name, text,
        [](const std::string& input, benchmark::State& state)
        {
            TiXmlDocument document;
            document.Parse(input.c_str());
            if (document.Error())
                state.SkipWithError(document.ErrorDesc());
        });
    vela_bench::expect_ratio("xml, " + name, "Json::XmlReader " + name, "TinyXML " + name, 1);
}

/// A list of texts or numbers as elements of a root.
Value elements(const Value& document)
{
    Value result;
    for (const auto& [key, value] : *document.if_object())
        result.at("root").at("").at(key) = value;
    return result;
}

/// The records of the mixed document as elements: without lists in lists.
Value mixed_elements()
{
    Value document = mixed_document();
    Value result;
    std::size_t index = 0;
    for (Value& record : document.at("records").as_list())
    {
        Value& element = result.at("root").at("").at("record").at(index++);
        element.at("id") = record.at("id");
        element.at("name") = record.at("name");
        element.at("active") = record.at("active");
        element.at("").at("comment") = record.at("comment");
        element.at("").at("position") = record.at("position");
        element.at("").at("from") = record.at("range").at("from");
        element.at("").at("to") = record.at("range").at("to");
    }
    return result;
}

}

int main(int argc, char** argv)
{
    const Value mixed = mixed_document();
    const Value ome = ome_document();
    add_json("mixed", json_text(mixed));
    add_json("mixed, indented", indented_json_text(mixed));
    add_json("integers", json_text(integers()));
    add_json("decimals", json_text(decimals()));
    add_json("long strings", json_text(long_strings()));
    add_json("OME", json_text(ome));
    add_xml("mixed", xml_text(mixed_elements()));
    add_xml("mixed, indented", indented_xml_text(mixed_elements()));
    add_xml("integers", xml_text(elements(integers())));
    add_xml("decimals", xml_text(elements(decimals())));
    add_xml("long texts", xml_text(elements(long_strings())));
    add_xml("OME", xml_text(ome));
    add_xml("OME, indented", indented_xml_text(ome));
    return vela_bench::run(argc, argv);
}
