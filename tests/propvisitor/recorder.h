/// A visitor that writes down all that is called on it.
#pragma once

#include "support/property_makers.h"

#include <VelaProps/VPropVisitor.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace visitor_test {

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The answers can be replaced; they get the path at which they are asked.
class Recorder : public VPropVisitor
{
public:
    using VPropVisitor::process;

    std::vector<std::string> calls;
    std::function<int(const std::string&, const VProp&)> on_value;
    std::function<int(const std::string&)> on_element;
    std::function<bool(std::size_t)> on_string;
    std::function<bool(const std::string&)> on_value_exit;
    std::function<int(const std::string&)> on_element_exit;
    bool record_moves = false;

    const std::vector<std::string>& level_keys() const { return keys; }
    const std::vector<std::size_t>& level_indices() const { return indices; }
    const std::vector<const VProp*>& level_containers() const { return containers; }
    std::size_t cur_string() const { return string_idx; }

    bool goes_into(const VProp& prop) const { return is_container(prop); }
    bool process_members(const VPropstruct& members) { return process(members); }

    bool decend(const std::string& key) override
    {
        moved("decend '" + key + "'");
        return VPropVisitor::decend(key);
    }
    bool decend(std::size_t index) override
    {
        moved(index == no_index ? "decend none" : "decend " + std::to_string(index));
        return VPropVisitor::decend(index);
    }
    bool set_key(const std::string& key) override
    {
        moved("key " + key);
        return VPropVisitor::set_key(key);
    }
    void ascend() override
    {
        moved("ascend");
        VPropVisitor::ascend();
    }
    void reset() override
    {
        moved("reset");
        VPropVisitor::reset();
    }

protected:
    int visit(const VProp& prop) override
    {
        calls.push_back("value " + get_cur_path());
        return on_value ? on_value(get_cur_path(), prop) : VPropVisitor::visit(prop);
    }
    int visit(const VPropstruct& members) override
    {
        calls.push_back("element " + get_cur_path());
        return on_element ? on_element(get_cur_path()) : VPropVisitor::visit(members);
    }
    bool visit(const VPropstring& text) override
    {
        calls.push_back("string " + std::to_string(string_idx) + " at " + get_cur_path() + ": " + std::string(text));
        return on_string ? on_string(string_idx) : VPropVisitor::visit(text);
    }
    bool visit_exit(const VProp& prop) override
    {
        calls.push_back("exit " + get_cur_path());
        return on_value_exit ? on_value_exit(get_cur_path()) : VPropVisitor::visit_exit(prop);
    }
    int visit_exit(const VPropstruct& members) override
    {
        calls.push_back("element exit " + get_cur_path());
        return on_element_exit ? on_element_exit(get_cur_path()) : VPropVisitor::visit_exit(members);
    }

private:
    void moved(const std::string& how)
    {
        if (record_moves)
            calls.push_back(how);
    }
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

using vela_test::array_of;
using vela_test::structure;

inline std::vector<VProp> numbers(std::size_t count)
{
    std::vector<VProp> made;
    made.reserve(count + 1);
    for (std::size_t i = 0; i < count; ++i)
        made.push_back(VProp(static_cast<double>(i)));
    return made;
}

} // namespace visitor_test
