// Segments against what they stand on: zlib with large buffers for compressed ones, plain system calls in 4 MiB
// blocks for stored ones. The peers move the same bytes of the same file, page cache warm.

#include "benchmarks/ratios.h"

#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t data_bytes = 16 * 1024 * 1024;
constexpr std::size_t stored_bytes = 64 * 1024 * 1024;
constexpr std::size_t large_piece = 4 * 1024 * 1024;
constexpr std::size_t row = 1024;
constexpr std::size_t plane = 512 * 1024;
constexpr int level = 1;

typedef std::vector<unsigned char> Bytes;

template <class Sample>
Bytes bytes_of(const std::vector<Sample>& samples)
{
    Bytes bytes(samples.size() * sizeof(Sample));
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

/// A bright camera image: an offset, a slow wave and shot noise.
Bytes noisy_data()
{
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, 20);
    std::vector<std::uint16_t> samples(data_bytes / 2);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::uint16_t>(400 + (i % 512) / 4 + static_cast<std::size_t>(60 + noise(random)));
    return bytes_of(samples);
}

/// Photon counts: one sample in fifty is not 0.
Bytes sparse_data()
{
    std::mt19937 random(2);
    std::vector<std::uint16_t> samples(data_bytes / 2);
    for (std::uint16_t& sample : samples)
        sample = static_cast<std::uint16_t>(random() % 50 == 0 ? random() % 4 + 1 : 0);
    return bytes_of(samples);
}

Bytes float_data()
{
    std::mt19937 random(3);
    std::normal_distribution<float> noise(100, 3);
    std::vector<float> samples(data_bytes / 4);
    for (float& sample : samples)
        sample = noise(random);
    return bytes_of(samples);
}

struct Case
{
    std::string name;
    Bytes data;
    std::string path;
    std::uint64_t length_on_disk = 0;
    std::vector<std::uint64_t> flush_positions;
    Bytes compressed;
};

std::string temporary_file(const std::string& name)
{
    return (std::filesystem::temp_directory_path() / ("vela_segment_benchmark_" + name)).string();
}

VPropstring file_name(const std::string& path)
{
    return VPropstring(path, VPropstring::enc_utf8);
}

/// Writes the segment that the readers read, with a flush point at every plane.
Case make_case(const std::string& name, Bytes data)
{
    Case one{name, std::move(data), temporary_file(name), 0, {}, {}};
    VFile file(file_name(one.path), VFile::write_mode);
    VZippedSegment segment;
    segment.init_w(file, level, one.data.size());
    segment.set_flush_block_size(plane);
    segment.write(one.data.data(), one.data.size());
    one.length_on_disk = segment.write_end();
    std::uint64_t block = 0;
    one.flush_positions = segment.get_flush_positions(block);
    one.compressed.resize(one.length_on_disk);
    file.seek(0);
    file.read(one.compressed.data(), one.length_on_disk);
    return one;
}

std::vector<Case>& cases()
{
    static std::vector<Case> list;
    return list;
}

Bytes& room()
{
    static Bytes bytes(stored_bytes, 1);
    return bytes;
}

/// Plain streaming inflate over large reads of the file.
void inflate_plainly(benchmark::State& state, const Case& one)
{
    Bytes input(large_piece);
    const int file = open(one.path.c_str(), O_RDONLY);
    for (auto step : state)
    {
        lseek(file, 0, SEEK_SET);
        z_stream stream = {};
        inflateInit(&stream);
        std::size_t at = 0;
        int code = Z_OK;
        while (code == Z_OK)
        {
            if (stream.avail_in == 0)
            {
                stream.avail_in = static_cast<uInt>(read(file, input.data(), input.size()));
                stream.next_in = input.data();
            }
            stream.next_out = room().data() + at;
            stream.avail_out = static_cast<uInt>(std::min(large_piece, one.data.size() + 1 - at));
            const auto before = stream.avail_out;
            code = inflate(&stream, Z_SYNC_FLUSH);
            at += before - stream.avail_out;
        }
        inflateEnd(&stream);
        if (code != Z_STREAM_END || at != one.data.size())
            state.SkipWithError("the peer did not read the data");
    }
    close(file);
}

void read_segment(benchmark::State& state, const Case& one, std::size_t piece)
{
    VFile file(file_name(one.path), VFile::read_mode);
    VZippedSegment segment;
    for (auto step : state)
    {
        segment.init_r(file, level, 0, one.length_on_disk, one.data.size());
        for (std::size_t at = 0; at < one.data.size(); at += piece)
            segment.read(room().data() + at, std::min(piece, one.data.size() - at));
    }
    if (std::memcmp(room().data(), one.data.data(), one.data.size()) != 0)
        state.SkipWithError("wrong data");
}

/// Seeks to planes in a scattered order and reads each: a plane's worth of inflate is the peer.
void read_planes(benchmark::State& state, const Case& one)
{
    VFile file(file_name(one.path), VFile::read_mode);
    VZippedSegment segment;
    segment.init_r(file, level, 0, one.length_on_disk, one.data.size());
    segment.set_flush_positions(one.flush_positions, plane);
    const std::size_t planes = one.data.size() / plane;
    for (auto step : state)
        for (std::size_t i = 0; i < planes; ++i)
        {
            const std::size_t index = i * 7 % planes;
            segment.seek(index * plane);
            segment.read(room().data() + index * plane, plane);
        }
    if (std::memcmp(room().data(), one.data.data(), one.data.size()) != 0)
        state.SkipWithError("wrong data");
}

/// Plain deflate of the same data with the same flushes, written in 4 MiB pieces.
void deflate_plainly(benchmark::State& state, const Case& one, bool flushes)
{
    Bytes output(large_piece);
    const std::string path = one.path + ".peer";
    for (auto step : state)
    {
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
        z_stream stream = {};
        deflateInit(&stream, level);
        const std::size_t block = flushes ? plane : large_piece;
        int code = Z_OK;
        for (std::size_t at = 0; code != Z_STREAM_END; at += block)
        {
            const bool last = at >= one.data.size();
            stream.next_in = const_cast<unsigned char*>(one.data.data()) + (last ? 0 : at);
            stream.avail_in = static_cast<uInt>(last ? 0 : std::min(block, one.data.size() - at));
            do
            {
                stream.next_out = output.data();
                stream.avail_out = static_cast<uInt>(output.size());
                code = deflate(&stream, last ? Z_FINISH : flushes ? Z_FULL_FLUSH : Z_NO_FLUSH);
                const std::size_t produced = output.size() - stream.avail_out;
                if (write(file, output.data(), produced) != static_cast<ssize_t>(produced))
                    state.SkipWithError("the peer cannot write");
            } while (stream.avail_out == 0);
        }
        deflateEnd(&stream);
        close(file);
    }
    unlink(path.c_str());
}

void write_segment(benchmark::State& state, const Case& one, bool flushes)
{
    const std::string path = one.path + ".written";
    for (auto step : state)
    {
        VFile file(file_name(path), VFile::write_mode);
        VZippedSegment segment;
        segment.init_w(file, level, one.data.size());
        if (flushes)
            segment.set_flush_block_size(plane);
        for (std::size_t at = 0; at < one.data.size(); at += large_piece)
            segment.write(one.data.data() + at, std::min(large_piece, one.data.size() - at));
        segment.write_end();
    }
    unlink(path.c_str());
}

void add_stored()
{
    static const std::string path = temporary_file("stored");
    {
        VFile file(file_name(path), VFile::write_mode);
        file.write(room().data(), stored_bytes);
    }
    benchmark::RegisterBenchmark("stored read, system calls",
                                 [](benchmark::State& state)
                                 {
                                     const int file = open(path.c_str(), O_RDONLY);
                                     for (auto step : state)
                                     {
                                         lseek(file, 0, SEEK_SET);
                                         for (std::size_t at = 0; at < stored_bytes; at += large_piece)
                                             if (read(file, room().data() + at, large_piece) !=
                                                 static_cast<ssize_t>(large_piece))
                                                 state.SkipWithError("short read");
                                     }
                                     close(file);
                                 });
    benchmark::RegisterBenchmark("stored read, segment",
                                 [](benchmark::State& state)
                                 {
                                     VFile file(file_name(path), VFile::read_mode);
                                     VZippedSegment segment;
                                     for (auto step : state)
                                     {
                                         segment.init_r(file, 0, 0, stored_bytes, stored_bytes);
                                         for (std::size_t at = 0; at < stored_bytes; at += large_piece)
                                             segment.read(room().data() + at, large_piece);
                                     }
                                 });
    // Both write over a file that is there already: making its pages would be most of the time.
    benchmark::RegisterBenchmark("stored write, system calls",
                                 [](benchmark::State& state)
                                 {
                                     const int file = open(path.c_str(), O_RDWR);
                                     for (auto step : state)
                                     {
                                         lseek(file, 0, SEEK_SET);
                                         for (std::size_t at = 0; at < stored_bytes; at += large_piece)
                                             if (write(file, room().data() + at, large_piece) !=
                                                 static_cast<ssize_t>(large_piece))
                                                 state.SkipWithError("short write");
                                     }
                                     close(file);
                                 });
    benchmark::RegisterBenchmark("stored write, segment",
                                 [](benchmark::State& state)
                                 {
                                     VFile file(file_name(path), VFile::append_mode);
                                     VZippedSegment segment;
                                     for (auto step : state)
                                     {
                                         file.seek(0);
                                         segment.init_w(file, 0, stored_bytes);
                                         for (std::size_t at = 0; at < stored_bytes; at += large_piece)
                                             segment.write(room().data() + at, large_piece);
                                     }
                                 });
    vela_bench::expect_ratio("stored, read", "stored read, segment", "stored read, system calls", 0.95);
    vela_bench::expect_ratio("stored, write", "stored write, segment", "stored write, system calls", 0.95);
}

void add_case(const Case& one)
{
    const auto add = [&one](const std::string& what, auto function)
    {
        const std::string name = one.name + " " + what;
        benchmark::RegisterBenchmark(name.c_str(), [function, &one](benchmark::State& state) { function(state, one); });
        return name;
    };
    const std::string plain = add("plain inflate", inflate_plainly);
    const std::string large =
        add("large pieces", [](auto& state, const Case& c) { read_segment(state, c, large_piece); });
    const std::string rows = add("rows", [](auto& state, const Case& c) { read_segment(state, c, row); });
    const std::string planes = add("scattered planes", read_planes);
    const std::string deflated =
        add("plain deflate", [](auto& state, const Case& c) { deflate_plainly(state, c, false); });
    const std::string written = add("write", [](auto& state, const Case& c) { write_segment(state, c, false); });
    const std::string deflated_flushes =
        add("plain deflate, flushes", [](auto& state, const Case& c) { deflate_plainly(state, c, true); });
    const std::string written_flushes =
        add("write, flushes", [](auto& state, const Case& c) { write_segment(state, c, true); });
    vela_bench::expect_ratio(one.name + ", front to back", large, plain, 0.95);
    vela_bench::expect_ratio(one.name + ", rows of 1 KiB", rows, large, 0.50);
    vela_bench::expect_ratio(one.name + ", scattered planes", planes, plain, 0.90);
    vela_bench::expect_ratio(one.name + ", write", written, deflated, 0.95);
    vela_bench::expect_ratio(one.name + ", write with flush points", written_flushes, deflated_flushes, 0.95);
}

} // namespace

int main(int argc, char** argv)
{
    cases().push_back(make_case("noisy", noisy_data()));
    cases().push_back(make_case("sparse", sparse_data()));
    cases().push_back(make_case("float", float_data()));
    for (const Case& one : cases())
        add_case(one);
    add_stored();
    const int status = vela_bench::run(argc, argv);
    for (const Case& one : cases())
        unlink(one.path.c_str());
    unlink(temporary_file("stored").c_str());
    return status;
}
