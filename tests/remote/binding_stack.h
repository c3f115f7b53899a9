/// A stack as a binding makes it: the values that crossed, and nothing behind them.
#pragma once

#include <Remote/Stack.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace vela_test {

/// What a binding may throw: no `std::exception`.
struct Refusal
{
    std::string at;
};

/// Answers what the constructors over a `Remote::Stack` may ask, and notes the order. All else fails.
struct BindingStack : Remote::Stack
{
    std::string name() const override { return asked("name", given_name); }
    std::string description() const override { return asked("description", given_description); }
    int type() const override { return asked("type", given_type); }
    std::vector<std::uint64_t> sizes() const override { return asked("sizes", given_sizes); }
    std::vector<std::string> labels() const override { return asked("labels", given_labels); }
    std::vector<double> lengths() const override { return asked("lengths", given_lengths); }
    std::vector<double> offsets() const override { return asked("offsets", given_offsets); }
    std::string share() const override { return asked("share", given_id); }

    void set_name(const std::string&) override { refuse(); }
    void set_description(const std::string&) override { refuse(); }
    std::uint64_t number_of_elements() const override { return refuse(); }
    std::uint64_t number_of_dimensions() const override { return refuse(); }
    std::uint64_t size(int) const override { return refuse(); }
    std::string label(int) const override { return std::to_string(refuse()); }
    void set_label(int, const std::string&) override { refuse(); }
    void set_labels(const std::vector<std::string>&) override { refuse(); }
    double length(int) const override { return static_cast<double>(refuse()); }
    void set_length(int, double) override { refuse(); }
    void set_lengths(const std::vector<double>&) override { refuse(); }
    double offset(int) const override { return static_cast<double>(refuse()); }
    void set_offset(int, double) override { refuse(); }
    void set_offsets(const std::vector<double>&) override { refuse(); }
    Json::Map<std::string, Json::Value> meta_data() const override
    {
        refuse();
        return {};
    }

    std::string given_name = "cells";
    std::string given_description = "two of them";
    int given_type = 1;
    std::vector<std::uint64_t> given_sizes = {2, 3};
    std::vector<std::string> given_labels = {"X", "Y"};
    std::vector<double> given_lengths = {20.0, 30.0};
    std::vector<double> given_offsets = {1.0, -2.0};
    std::string given_id;
    std::string refuses; ///< the question that gets a `Refusal`
    mutable std::vector<std::string> calls;

private:
    template <class T>
    const T& asked(const char* operation, const T& answer) const
    {
        calls.emplace_back(operation);
        if (refuses == operation)
            throw Refusal{operation};
        return answer;
    }
    static std::uint64_t refuse() { throw std::logic_error("nobody may ask this"); }
};

} // namespace vela_test
