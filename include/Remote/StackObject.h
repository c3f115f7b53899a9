/// A stack of this library behind the face for bindings.
#pragma once

#include <Remote/Stack.h>
#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <vector>

class VStackInterface;

namespace Remote {
VELA_ABI_NAMESPACE_BEGIN

/// A sample type id.
typedef vela_dt Type;

/// Shows a stack in memory as a `Stack`. Copies and moves share the stack: what one sets the others see.
///
/// Each operation does what the operation of like meaning of `VStackInfoInterface` or `VStackInterface` does, and fails
/// as it does. The most common ones:
/// @throws VelaError id -15 "Invalid axis specified!": an axis below 0 or not below the rank
/// @throws std::invalid_argument "Unsupported physical dimension": length or offset of the channel axis; it is set then
/// @throws VelaError id -1 "Cannot set values. Object locked!": from what sets something. No stack in memory is locked.
class VELA_API StackObject : public Stack
{
public:
    /// `stack` must not be null.
    explicit StackObject(boost::shared_ptr<VStackInterface> stack);
    StackObject(const StackObject& other);
    StackObject& operator=(const StackObject& other);
    ~StackObject() override;

    std::string name() const override;
    void set_name(const std::string& new_name) override;
    std::string description() const override;
    void set_description(const std::string& new_description) override;
    std::uint64_t number_of_elements() const override;
    int type() const override;
    std::uint64_t number_of_dimensions() const override;
    std::uint64_t size(int axis) const override;
    std::vector<std::uint64_t> sizes() const override;
    std::string label(int axis) const override;
    void set_label(int axis, const std::string& new_label) override;
    std::vector<std::string> labels() const override;
    void set_labels(const std::vector<std::string>& new_labels) override;
    double length(int axis) const override;
    void set_length(int axis, double new_length) override;
    std::vector<double> lengths() const override;
    void set_lengths(const std::vector<double>& new_lengths) override;
    double offset(int axis) const override;
    void set_offset(int axis, double new_offset) override;
    std::vector<double> offsets() const override;
    void set_offsets(const std::vector<double>& new_offsets) override;

    /// A copy of the record as it is; later changes of either do not show in the other.
    Json::Map<std::string, Json::Value> meta_data() const override;

    /// Moves the samples into shared memory for good, unless they are there: pointers to them are void after the first
    /// call. The samples are there as long as the stack is.
    /// @throws what `Vela::SharedMemory` throws
    std::string share() const override;

private:
    boost::shared_ptr<VStackInterface> stack;
};

/// A new stack of zeros in memory, which belongs to the caller.
///
/// @throws std::invalid_argument "Unsupported data type": OME does not have the type
/// @throws what the constructor of `VStackImp` throws for sizes
VELA_API Stack* get_stack(Type type, const std::vector<std::uint64_t>& sizes);

VELA_ABI_NAMESPACE_END
}
