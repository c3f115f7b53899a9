/// The face that a stack shows to a binding: plain values only.
#pragma once

#include <Json/Map.h>
#include <Json/Value.h>
#include <VelaBase/export.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace Remote {
VELA_ABI_NAMESPACE_BEGIN

/// A stack in strings, vectors of numbers and a JSON object. Everything is given as a copy: no reference into the stack
/// crosses this interface, so a binding for another language needs to know no other class.
///
/// `StackObject` shows a stack of this library by it. A binding may derive from it too, for a stack of its own or one
/// that lives in another process: `VStackImp` has a constructor that attaches to the samples of any such stack. It asks
/// for `labels`, `type`, `sizes`, `lengths`, `offsets`, `name`, `description` and `share`, and for nothing else; these are
/// what has to be carried from one process to the other. Axis units, column labels and positions, the position in global
/// axes and the metadata do not cross.
///
/// Axes count from 0. One thread at a time; nothing is caught here, so a binding catches at its own boundary.
///
/// Virtual operations keep their order: other compiled code counts on it.
struct VELA_API Stack
{
    Stack() = default;
    Stack(const Stack&) = default;
    Stack& operator=(const Stack&) = default;
    virtual ~Stack();

    virtual std::string name() const = 0;
    virtual void set_name(const std::string& new_name) = 0;
    virtual std::string description() const = 0;
    virtual void set_description(const std::string& new_description) = 0;

    /// The product of the sizes, 1 without axes.
    virtual std::uint64_t number_of_elements() const = 0;
    /// The sample type id (`VelaBase/vela_dt.h`), 0 where none is set.
    virtual int type() const = 0;
    virtual std::uint64_t number_of_dimensions() const = 0;
    virtual std::uint64_t size(int axis) const = 0;
    virtual std::vector<std::uint64_t> sizes() const = 0;

    virtual std::string label(int axis) const = 0;
    virtual void set_label(int axis, const std::string& new_label) = 0;
    virtual std::vector<std::string> labels() const = 0;
    virtual void set_labels(const std::vector<std::string>& new_labels) = 0;

    /// The physical length of an axis.
    virtual double length(int axis) const = 0;
    virtual void set_length(int axis, double new_length) = 0;
    virtual std::vector<double> lengths() const = 0;
    virtual void set_lengths(const std::vector<double>& new_lengths) = 0;

    /// The physical position of the middle of an axis.
    virtual double offset(int axis) const = 0;
    virtual void set_offset(int axis, double new_offset) = 0;
    virtual std::vector<double> offsets() const = 0;
    virtual void set_offsets(const std::vector<double>& new_offsets) = 0;

    /// The OME record of the stack (`Ome/Image.h`).
    virtual Json::Map<std::string, Json::Value> meta_data() const = 0;

    /// Sees to it that the samples are in shared memory, and gives the id by which another process attaches to them: see
    /// `Vela::SharedMemory`.
    virtual std::string share() const = 0;

    /// For whoever derives from this; nobody reads it here.
    boost::shared_ptr<void> owner;
};

VELA_ABI_NAMESPACE_END
}
