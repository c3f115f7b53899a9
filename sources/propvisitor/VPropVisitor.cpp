#include <VelaBase/VelaError.h>
#include <VelaProps/VPropVisitor.h>

#include <algorithm>
#include <utility>

VPropPos::VPropPos() = default;
VPropPos::VPropPos(const VPropPos& other) = default;
VPropPos::VPropPos(VPropPos&& other) noexcept = default;
VPropPos& VPropPos::operator=(const VPropPos& other) = default;
VPropPos& VPropPos::operator=(VPropPos&& other) noexcept = default;
VPropPos::~VPropPos() = default;

void VPropPos::reset()
{
    indices.clear();
    keys.clear();
}

bool VPropPos::decend(const std::string& key)
{
    indices.push_back(no_index);
    keys.push_back(key);
    return true;
}

bool VPropPos::decend(std::size_t index)
{
    indices.push_back(index);
    keys.emplace_back();
    return true;
}

bool VPropPos::set_key(const std::string& key)
{
    if (keys.empty())
        return false;
    keys.back() = key;
    return true;
}

void VPropPos::ascend()
{
    indices.pop_back();
    keys.pop_back();
}

std::size_t VPropPos::get_cur_idx() const
{
    return indices.empty() ? no_index : indices.back();
}

std::string VPropPos::get_cur_key() const
{
    return keys.empty() ? std::string() : keys.back();
}

/// The walk as a stack of what is open, in place of recursion.
class VPropVisitor::Walk
{
public:
    explicit Walk(VPropVisitor& walked_by) : visitor(walked_by) {}

    bool run(const VProp& prop) { return enter(prop) && finish(); }

    bool run(const VPropstruct& members)
    {
        open.push_back({nullptr, &members, 0, 0});
        return finish();
    }

private:
    /// A value that is walked through, and how far. The members are those of the struct, or of the element `index`.
    struct Open
    {
        const VProp* value; ///< null: only the members
        const VPropstruct* members;
        std::size_t member;
        std::size_t index;
    };

    /// Steps until everything that is open is closed. False: stopped.
    bool finish()
    {
        while (!open.empty())
        {
            Open& innermost = open.back();
            if (!(innermost.members ? step_members(innermost) : step_elements(innermost)))
                return false;
        }
        return true;
    }

    /// Visits a value; what it holds is open afterwards, if it is to be walked through. False: stopped.
    bool enter(const VProp& prop)
    {
        const int answer = visitor.visit(prop);
        if (answer == 0)
            return false;
        if (answer != 1 && answer != 2)
            throw VelaError("VPropVisitor::process", __FILE__, __LINE__)("Invalid return value from visit()!")(-1);
        if (answer == 2 || !visitor.is_container(prop))
            return visitor.visit_exit(prop) && leave_child();
        visitor.containers.push_back(&prop);
        open.push_back({&prop, nullptr, 0, 0});
        if (prop.get_id() != VProp::type_id<VPropstruct>)
            return true;
        visitor.decend(no_index);
        open.back().members = &prop.get<VPropstruct>();
        return true;
    }

    bool step_members(Open& level)
    {
        if (level.member < level.members->size())
        {
            const auto& [key, value] = *(level.members->begin() + static_cast<std::ptrdiff_t>(level.member));
            visitor.set_key(key);
            return enter(value);
        }
        if (level.value == nullptr)
        {
            open.pop_back();
            return true;
        }
        if (level.value->get_id() == VProp::type_id<VPropstruct>)
        {
            visitor.ascend();
            return close(level);
        }
        visitor.visit_exit(*std::exchange(level.members, nullptr));
        visitor.ascend();
        ++level.index;
        return true;
    }

    bool step_elements(Open& level)
    {
        const vela_dt id = level.value->get_id();
        if (id == VProp::type_id<VProparray<VPropstring>>)
            return visit_strings(level.value->get<VProparray<VPropstring>>()) && close(level);
        if (id == VProp::type_id<VProparray<VProp>>)
        {
            const auto& cells = level.value->get<VProparray<VProp>>();
            if (level.index == cells.size())
                return close(level);
            visitor.decend(level.index);
            return enter(cells[level.index]);
        }
        const auto& structs = level.value->get<VProparray<VPropstruct>>();
        if (level.index == structs.size())
            return close(level);
        return enter_struct(level, structs[level.index]);
    }

    bool enter_struct(Open& level, const VPropstruct& element)
    {
        visitor.decend(level.index);
        const int answer = visitor.visit(element);
        if (answer == 0)
            return false;
        level.member = answer == 1 ? 0 : element.size();
        level.members = &element;
        return true;
    }

    bool visit_strings(const VProparray<VPropstring>& strings)
    {
        for (std::size_t i = 0; i < strings.size(); ++i)
        {
            visitor.string_idx = i;
            if (!visitor.visit(strings[i]))
                return false;
            visitor.string_idx = no_index;
        }
        return true;
    }

    bool close(Open& level)
    {
        const VProp& value = *level.value;
        visitor.containers.pop_back();
        open.pop_back();
        return visitor.visit_exit(value) && leave_child();
    }

    /// A child of the innermost level is done.
    bool leave_child()
    {
        if (open.empty())
            return true;
        Open& level = open.back();
        if (level.members)
            ++level.member;
        else
        {
            visitor.ascend();
            ++level.index;
        }
        return true;
    }

    VPropVisitor& visitor;
    std::vector<Open> open;
};

VPropVisitor::VPropVisitor() = default;
VPropVisitor::VPropVisitor(const VPropVisitor& other) = default;
VPropVisitor::VPropVisitor(VPropVisitor&& other) noexcept = default;
VPropVisitor& VPropVisitor::operator=(const VPropVisitor& other) = default;
VPropVisitor& VPropVisitor::operator=(VPropVisitor&& other) noexcept = default;
VPropVisitor::~VPropVisitor() = default;

bool VPropVisitor::process(const VProp& prop)
{
    return Walk(*this).run(prop);
}

bool VPropVisitor::process(const VPropstruct& members)
{
    return Walk(*this).run(members);
}

bool VPropVisitor::is_container(const VProp& prop) const
{
    const vela_dt id = prop.get_id();
    return id == VProp::type_id<VProparray<VProp>> || id == VProp::type_id<VProparray<VPropstruct>> ||
           id == VProp::type_id<VProparray<VPropstring>> || id == VProp::type_id<VPropstruct>;
}

bool VPropVisitor::visit(const VPropstring&)
{
    return true;
}

int VPropVisitor::visit(const VPropstruct&)
{
    return 1;
}

int VPropVisitor::visit(const VProp&)
{
    return 1;
}

int VPropVisitor::visit_exit(const VPropstruct&)
{
    return 1;
}

bool VPropVisitor::visit_exit(const VProp&)
{
    return true;
}

namespace {

/// "{i}" or "(i,j)".
std::string element_text(const VProp& container, std::size_t index)
{
    const VProparrayBase* const array = container.get_arr(false);
    if (array == nullptr)
        return "";
    const std::vector<std::size_t> pos = array->get_pos(index);
    const std::vector<std::size_t> sizes = array->get_size(false);
    const bool is_cell = (container.get_id() & vela_dt_cell) != 0;
    const bool is_row = sizes.size() == 2 && sizes[0] == 1;
    std::string text(1, is_cell ? '{' : '(');
    for (std::size_t i = is_row ? 1 : 0; i < pos.size(); ++i)
    {
        if (text.size() > 1)
            text += ',';
        text += std::to_string(pos[i]);
    }
    return text + (is_cell ? '}' : ')');
}

}

std::string VPropVisitor::get_cur_path(std::size_t depth) const
{
    std::string path;
    const std::size_t levels = std::min(indices.size(), depth);
    for (std::size_t i = 0; i < levels; ++i)
    {
        if (indices[i] != no_index)
        {
            if (i < containers.size())
                path += element_text(*containers[i], indices[i]);
            continue;
        }
        if (!path.empty())
            path += '.';
        path += keys[i];
    }
    return path;
}
