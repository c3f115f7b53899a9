/// Stacks with everything that a file can hold, drawn at random, to be written and compared with what is read.
#pragma once

#include <VelaBinaryIO/VBFFile.h>

#include "binary_io/written_vbf.h"

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace vela_test {

/// Draws from a seed, in the same way on every machine.
class Draw
{
public:
    explicit Draw(unsigned seed) : random(seed) {}

    std::uint64_t below(std::uint64_t limit) { return random() % limit; }
    bool one_in(std::uint64_t count) { return below(count) == 0; }
    double number() { return (static_cast<double>(below(2000001)) - 1000000.0) / 1024.0; }
    Bytes bytes(std::uint64_t count);
    /// Any bytes.
    std::string text(std::uint64_t longest);

private:
    std::mt19937 random;
};

struct RandomStack
{
    /// Takes a drawn stack.
    explicit RandomStack(Draw& draw);

    /// Bytes that are moved at once: a few at a time only where they are not many, which would take long.
    std::uint32_t draw_chunk_size(Draw& draw) const;

    /// In pieces, of samples in another type at times.
    void write(VBFFileInterface& file, Draw& draw) const;
    /// Expects all of it, reading the samples as a whole and in pieces.
    void expect_in(VBFFileInterface& file, std::uint64_t index, Draw& draw) const;

    Sizes sizes;
    int dt = 0;
    bool grows = false;
    bool empty = false;
    int compression_type = 0;
    int compression_level = 0;
    std::optional<std::uint64_t> flush_block_size;
    std::string name;
    std::string description;
    std::vector<double> lengths;
    std::vector<double> offsets;
    std::vector<std::string> labels;
    std::vector<si::value> units;
    si::value data_units;
    std::map<std::uint64_t, std::vector<double>> col_positions;
    std::map<std::uint64_t, std::vector<std::string>> col_labels;
    std::optional<VStackPosition> position;
    std::map<std::string, std::string> tags;
    Bytes samples; ///< zeros where it is empty

private:
    void describe(VBFStackInterface& stack) const;
    void write_samples(VBFStackInterface& stack, Draw& draw) const;
    void expect_description(VBFStackInterface& stack) const;
    void expect_samples(VBFStackInterface& stack, Draw& draw) const;
    std::uint64_t count() const;
    std::uint64_t sample_size() const;
};

} // namespace vela_test
