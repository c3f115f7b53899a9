// Property trees as XML: 10000 numbers in structs of 100 beside TinyXML alone with the same document, and a million
// numbers in one array beside streams, as plain text and as XML.

#include "benchmarks/ratios.h"
#include "sources/propsxml/VPropValueCodec.h"

#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <benchmark/benchmark.h>
#include <tinyxml.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int struct_count = 100;
constexpr int member_count = 100;
constexpr std::size_t number_count = 1'000'000;
constexpr int native = 2;
constexpr int precision = 20;

/// What measurements are like (three digits behind the point), and any bit pattern that is a finite number.
enum class Numbers
{
    measured,
    any,
};

const std::vector<double>& numbers(Numbers kind)
{
    static const auto make = [](Numbers wanted)
    {
        std::mt19937_64 random(1);
        std::uniform_int_distribution<int> thousandths(-10'000'000, 10'000'000);
        std::vector<double> made;
        made.reserve(number_count);
        while (made.size() < number_count)
        {
            const double number =
                wanted == Numbers::any ? std::bit_cast<double>(random()) : thousandths(random) / 1000.0;
            if (std::isfinite(number))
                made.push_back(number);
        }
        return made;
    };
    static const std::vector<double> measured = make(Numbers::measured);
    static const std::vector<double> any = make(Numbers::any);
    return kind == Numbers::measured ? measured : any;
}

VProp array_of(const std::vector<double>& list)
{
    VProparray<double> array;
    array.set_size({1, list.size()}, VProparrayBase::set_reset);
    for (std::size_t i = 0; i < list.size(); ++i)
        array[i] = list[i];
    return VProp(array);
}

VProp tree_of_structs()
{
    VProp tree;
    for (int i = 0; i < struct_count; ++i)
    {
        VProp& members = tree["struct_" + std::to_string(i)];
        for (int j = 0; j < member_count; ++j)
            members["member_" + std::to_string(j)] = numbers(Numbers::measured)[static_cast<std::size_t>(j)];
    }
    return tree;
}

std::string exported(const VProp& prop)
{
    std::string xml;
    vela_export_xml(xml, prop, native);
    return xml;
}

void parse_with_tinyxml(TiXmlDocument& document, const std::string& xml)
{
    TiXmlBase::SetCondenseWhiteSpace(false);
    document.Parse(xml.c_str(), nullptr, TIXML_ENCODING_UTF8);
}

std::string print_with_tinyxml(const TiXmlDocument& document)
{
    TiXmlPrinter printer;
    document.Accept(&printer);
    return printer.Str();
}

void export_structs(benchmark::State& state)
{
    const VProp tree = tree_of_structs();
    for (auto _ : state)
        benchmark::DoNotOptimize(exported(tree));
}

void print_structs(benchmark::State& state)
{
    TiXmlDocument document;
    parse_with_tinyxml(document, exported(tree_of_structs()));
    for (auto _ : state)
        benchmark::DoNotOptimize(print_with_tinyxml(document));
}

void import_structs(benchmark::State& state)
{
    const std::string xml = exported(tree_of_structs());
    for (auto _ : state)
    {
        VProp tree;
        vela_import_xml(xml, tree, 0);
        benchmark::DoNotOptimize(&tree);
    }
}

void parse_structs(benchmark::State& state)
{
    const std::string xml = exported(tree_of_structs());
    for (auto _ : state)
    {
        TiXmlDocument document;
        parse_with_tinyxml(document, xml);
        benchmark::DoNotOptimize(&document);
    }
}

std::string text_by_stream(const std::vector<double>& list)
{
    std::ostringstream out;
    out.precision(precision);
    for (std::size_t i = 0; i < list.size(); ++i)
        out << (i == 0 ? "" : " ") << list[i];
    return out.str();
}

std::vector<double> numbers_by_stream(const std::string& text)
{
    std::istringstream in(text);
    std::vector<double> list;
    for (double number = 0; in >> number;)
        list.push_back(number);
    return list;
}

void write_text(benchmark::State& state, Numbers kind)
{
    const VProp array = array_of(numbers(kind));
    for (auto _ : state)
        benchmark::DoNotOptimize(vela_val2string(array));
}

void write_text_by_stream(benchmark::State& state, Numbers kind)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(text_by_stream(numbers(kind)));
}

void read_text(benchmark::State& state, Numbers kind)
{
    const std::string text = text_by_stream(numbers(kind));
    const VPropValueCodec codec;
    for (auto _ : state)
    {
        VProparray<double> array;
        codec.read_elements(text, array);
        benchmark::DoNotOptimize(&array);
    }
}

void read_text_by_stream(benchmark::State& state, Numbers kind)
{
    const std::string text = text_by_stream(numbers(kind));
    for (auto _ : state)
        benchmark::DoNotOptimize(numbers_by_stream(text));
}

void export_numbers(benchmark::State& state, Numbers kind)
{
    const VProp array = array_of(numbers(kind));
    for (auto _ : state)
        benchmark::DoNotOptimize(exported(array));
}

void export_numbers_by_stream(benchmark::State& state, Numbers kind)
{
    for (auto _ : state)
    {
        TiXmlDocument document;
        auto* const root = new TiXmlElement("root");
        root->LinkEndChild(new TiXmlText(text_by_stream(numbers(kind))));
        document.LinkEndChild(root);
        benchmark::DoNotOptimize(print_with_tinyxml(document));
    }
}

void import_numbers(benchmark::State& state, Numbers kind)
{
    const std::string xml = exported(array_of(numbers(kind)));
    for (auto _ : state)
    {
        VProp array;
        vela_import_xml(xml, array, 0);
        benchmark::DoNotOptimize(&array);
    }
}

void import_numbers_by_stream(benchmark::State& state, Numbers kind)
{
    const std::string xml = exported(array_of(numbers(kind)));
    for (auto _ : state)
    {
        TiXmlDocument document;
        parse_with_tinyxml(document, xml);
        benchmark::DoNotOptimize(numbers_by_stream(document.RootElement()->GetText()));
    }
}

BENCHMARK(export_structs);
BENCHMARK(print_structs);
BENCHMARK(import_structs);
BENCHMARK(parse_structs);

using Run = void (*)(benchmark::State&, Numbers);

void compare(const std::string& task, Run ours, Run streams, double limit)
{
    for (const auto& [kind, name] : {std::pair{Numbers::measured, "measured"}, std::pair{Numbers::any, "any"}})
    {
        const std::string subject = task + "/" + name;
        const std::string peer = task + "_by_stream/" + name;
        benchmark::RegisterBenchmark(subject.c_str(), ours, kind)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(peer.c_str(), streams, kind)->Unit(benchmark::kMillisecond);
        vela_bench::expect_ratio(task + ", " + name + " numbers / streams", subject, peer, limit);
    }
}

}

int main(int argc, char** argv)
{
    vela_bench::expect_ratio("export structs / TinyXML prints", "export_structs", "print_structs", 0.5);
    vela_bench::expect_ratio("import structs / TinyXML parses", "import_structs", "parse_structs", 0.5);
    compare("write_text", write_text, write_text_by_stream, 5);
    compare("read_text", read_text, read_text_by_stream, 5);
    compare("export_numbers", export_numbers, export_numbers_by_stream, 2);
    compare("import_numbers", import_numbers, import_numbers_by_stream, 2);
    return vela_bench::run(argc, argv);
}
