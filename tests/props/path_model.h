/// A property tree as a map from texts to records, written from the rules of walks alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace prop_test {

/// One segment of a path.
struct Segment
{
    char kind = '.'; ///< '.', '{' or '('
    std::string name;
    std::vector<std::size_t> indices;
};

inline std::string text_of(const Segment& segment)
{
    if (segment.kind == '.')
        return segment.name;
    std::string text;
    for (const std::size_t index : segment.indices)
        text += (text.empty() ? "" : ",") + std::to_string(index);
    return segment.kind + text + (segment.kind == '{' ? '}' : ')');
}

/// What is left of a path from one of its segments on.
inline std::string text_of(const std::vector<Segment>& path, std::size_t from = 0)
{
    std::string text;
    for (std::size_t i = from; i < path.size(); ++i)
        text += (path[i].kind == '.' && i > from ? "." : "") + text_of(path[i]);
    return text;
}

struct PathFailure : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Keys of the map are those of the record around, and ".name", "{linear index}" or "(linear index)".
class PathModel
{
public:
    struct Node
    {
        char kind = '-'; ///< '-' empty, 'n' number, '.' struct, '{' cell array, '(' struct array
        int number = 0;
        std::vector<std::size_t> sizes;
        std::vector<std::string> members;
    };

    char kind_at(const std::string& key) const
    {
        const auto found = nodes.find(key);
        return found == nodes.end() ? '-' : found->second.kind;
    }

    const Node* find(const std::string& key) const
    {
        const auto found = nodes.find(key);
        return found == nodes.end() ? nullptr : &found->second;
    }

    /// The key of the value at the end; throws `PathFailure` with the text of the failure.
    std::string walk(const std::vector<Segment>& path, bool create)
    {
        std::string key;
        for (std::size_t i = 0; i < path.size(); ++i)
        {
            const Segment& segment = path[i];
            enter(key, segment.kind, text_of(path, i), create);
            if (segment.kind == '.')
            {
                key = member(key, segment.name, create);
                continue;
            }
            if (segment.kind == '(' && i + 1 == path.size())
                throw PathFailure("Path ...'" + text_of(path, i) + "' ends in struct array!");
            const std::size_t index = element(nodes[key].sizes, segment.indices, create);
            key += segment.kind + std::to_string(index) + (segment.kind == '{' ? '}' : ')');
            if (segment.kind == '{')
                continue;
            nodes[key].kind = '.';
            if (path[++i].kind != '.')
                throw PathFailure("Expected path ...'" + text_of(path, i) + "' to start with struct member!");
            key = member(key, path[i].name, create);
        }
        return key;
    }

    void clear(const std::string& key)
    {
        for (auto at = nodes.lower_bound(key); at != nodes.end() && at->first.compare(0, key.size(), key) == 0;)
        {
            const bool below = at->first.size() == key.size() || at->first[key.size()] == '.' ||
                               at->first[key.size()] == '{' || at->first[key.size()] == '(';
            at = below ? nodes.erase(at) : std::next(at);
        }
    }

    void set_number(const std::string& key, int number)
    {
        clear(key);
        nodes[key].kind = 'n';
        nodes[key].number = number;
    }

    /// `other` must be another model.
    void set_tree(const std::string& key, const PathModel& other)
    {
        clear(key);
        for (const auto& [other_key, node] : other.nodes)
            nodes[key + other_key] = node;
    }

    /// The value at a key, in the form of `dump` in the test.
    std::string dump(const std::string& key = "") const
    {
        const Node* const node = find(key);
        if (node == nullptr || node->kind == '-')
            return "-";
        if (node->kind == 'n')
            return std::to_string(node->number);
        std::string text;
        if (node->kind == '.')
        {
            for (const std::string& name : node->members)
                text.append(name).append("=").append(dump(key + "." + name)).append(";");
            return "<" + text + ">";
        }
        std::size_t count = node->sizes.empty() ? 0 : 1;
        for (const std::size_t size : node->sizes)
        {
            text += std::to_string(size) + ",";
            count *= size;
        }
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::string element_key = key + node->kind + std::to_string(i) + (node->kind == '{' ? '}' : ')');
            const bool is_new_struct = node->kind == '(' && kind_at(element_key) == '-';
            text += ":" + (is_new_struct ? "<>" : dump(element_key));
        }
        return node->kind + text;
    }

private:
    /// The value at `key` has to be of the kind that the segment walks into.
    void enter(const std::string& key, char wanted, const std::string& rest, bool create)
    {
        if (create && kind_at(key) == '-')
            nodes[key].kind = wanted;
        const char kind = kind_at(key);
        if (kind == wanted)
            return;
        if (wanted == '{')
            throw PathFailure("Path ...'" + rest + "' references cell content from a non-cell array!");
        if (wanted == '(')
            throw PathFailure("Path ...'" + rest + "' references struct from a non-struct array!");
        const char* const found = kind == '-' ? "none" : kind == 'n' ? "int32" : kind == '{' ? "cell[]" : "struct[]";
        throw PathFailure(std::string("Type mismatch: found ") + found + ", expected struct");
    }

    std::string member(const std::string& key, const std::string& name, bool create)
    {
        std::vector<std::string>& members = nodes[key].members;
        bool exists = false;
        for (const std::string& known : members)
            exists = exists || known == name;
        if (!exists && !create)
            throw PathFailure("Struct member '" + name + "' does not exist!");
        if (!exists)
            members.push_back(name);
        return key + "." + name;
    }

    static std::size_t element(std::vector<std::size_t>& sizes, std::vector<std::size_t> pos, bool create)
    {
        if (pos.size() == 1)
            pos.insert(pos.begin(), 0);
        std::vector<std::size_t> current = sizes.empty() ? std::vector<std::size_t>{0, 0} : sizes;
        const std::size_t rank = current.size();
        const std::string ranks = std::to_string(rank);
        if (pos.size() > rank && !create)
            throw PathFailure("Input rank '" + ranks + "' too high (> '" + std::to_string(pos.size()) + "')!");
        if (pos.size() < rank)
            throw PathFailure("Input rank '" + ranks + "' too low (< '" + std::to_string(pos.size()) + "')!");
        current.resize(pos.size(), 1);
        bool changed = false;
        for (std::size_t i = 0; i < pos.size(); ++i)
        {
            if (pos[i] < current[i])
                continue;
            if (!create || !(sizes.empty() || i + 1 == rank))
                throw PathFailure("Index " + std::to_string(i) + " out of bounds! (" + std::to_string(pos[i]) +
                                  " >= " + (i < sizes.size() ? std::to_string(sizes[i]) + ")!" : ""));
            current[i] = pos[i] + 1;
            changed = true;
        }
        if (changed)
            sizes = current;
        std::size_t index = 0;
        for (std::size_t i = pos.size(); i-- > 0;)
            index = index * current[i] + pos[i];
        return index;
    }

    std::map<std::string, Node> nodes;
};

}
