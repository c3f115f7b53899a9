#include <Ome/enums.h>
#include <Remote/StackObject.h>
#include <VelaStacks/VStack.h>

#include <utility>

namespace Remote {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// A negative axis becomes one that no stack has.
std::uint64_t widened(int axis)
{
    return static_cast<std::uint64_t>(axis);
}

}

StackObject::StackObject(boost::shared_ptr<VStackInterface> wrapped) : stack(std::move(wrapped)) {}

StackObject::StackObject(const StackObject& other) = default;

StackObject& StackObject::operator=(const StackObject& other) = default;

StackObject::~StackObject() = default;

std::string StackObject::name() const
{
    return stack->get_name();
}

void StackObject::set_name(const std::string& new_name)
{
    stack->set_name(new_name);
}

std::string StackObject::description() const
{
    return stack->get_description();
}

void StackObject::set_description(const std::string& new_description)
{
    stack->set_description(new_description);
}

std::uint64_t StackObject::number_of_elements() const
{
    return stack->get_number_of_elements();
}

int StackObject::type() const
{
    return stack->get_dt();
}

std::uint64_t StackObject::number_of_dimensions() const
{
    return stack->get_rank();
}

std::uint64_t StackObject::size(int axis) const
{
    return stack->get_dimension_size(widened(axis));
}

std::vector<std::uint64_t> StackObject::sizes() const
{
    return stack->get_sizes();
}

std::string StackObject::label(int axis) const
{
    return stack->get_label(widened(axis));
}

void StackObject::set_label(int axis, const std::string& new_label)
{
    stack->set_label(widened(axis), new_label);
}

std::vector<std::string> StackObject::labels() const
{
    return stack->get_labels();
}

void StackObject::set_labels(const std::vector<std::string>& new_labels)
{
    stack->set_labels(new_labels);
}

double StackObject::length(int axis) const
{
    return stack->get_length(widened(axis));
}

void StackObject::set_length(int axis, double new_length)
{
    stack->set_len(widened(axis), new_length);
}

std::vector<double> StackObject::lengths() const
{
    return stack->get_lengths();
}

void StackObject::set_lengths(const std::vector<double>& new_lengths)
{
    stack->set_len(new_lengths);
}

double StackObject::offset(int axis) const
{
    return stack->get_offset(widened(axis));
}

void StackObject::set_offset(int axis, double new_offset)
{
    stack->set_off(widened(axis), new_offset);
}

std::vector<double> StackObject::offsets() const
{
    return stack->get_offsets();
}

void StackObject::set_offsets(const std::vector<double>& new_offsets)
{
    stack->set_off(new_offsets);
}

Json::Map<std::string, Json::Value> StackObject::meta_data() const
{
    return stack->meta_data().structure.get();
}

std::string StackObject::share() const
{
    return stack->share();
}

Stack* get_stack(Type type, const std::vector<std::uint64_t>& sizes)
{
    const boost::shared_ptr<VStackInterface> stack(
        new VStackImp(Ome::get_type(type), sizes, Ome::DimensionOrder::XYZTC));
    return new StackObject(stack);
}

VELA_ABI_NAMESPACE_END
}
