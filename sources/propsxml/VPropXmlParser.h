/// Reads the elements of property XML into a property tree.
#pragma once

#include "sources/propsxml/VPropValueCodec.h"
#include "sources/propsxml/ticpp.h"

#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class MemberIndex;

class VPropXmlParser : public VPropValueCodec
{
public:
    /// `format` and `version` are those of the document, of `bytes` bytes.
    explicit VPropXmlParser(int format = 2, int version = 1, std::size_t bytes = 0);

    /// @throws VelaError and others: see `vela_import_xml`. `location` tells where then.
    void import_xml(const ticpp::Node& node, VProp& out);

    /// The older form of complex numbers: two children of the same kind of number.
    void import_complex(const ticpp::Node& node, VProp& out);

    template <class T>
    void convert_complex(const VProp& re, const VProp& im, VProp& out, bool is_array);

    /// The names that lead to the element that was begun last, with "." between them; "<unknown-location>" before
    /// the first.
    std::string location() const;

    int get_format() const { return format; }
    int get_version() const { return version; }

private:
    using Sizes = std::vector<std::size_t>;

    Sizes read_sizes(const ticpp::Node& node) const;
    std::uint64_t read_index(const ticpp::Node& node) const;
    template <class T>
    T attribute_or(const ticpp::Node& node, const char* name, T value) const;
    bool read_scalar(const ticpp::Node& node, vela_dt id, const Sizes& sizes, VProp& out);
    bool read_array(const ticpp::Node& node, vela_dt id, const Sizes& sizes, VProp& out);
    void read_string(const ticpp::Node& node, const Sizes& sizes, VPropstring& string);
    void read_members(const ticpp::Node& node, VPropstruct& members);
    void read_strings(const ticpp::Node& node, VProparray<VPropstring>& strings);
    void read_cells(const ticpp::Node& node, VProparray<VProp>& cells);
    void read_structs(const ticpp::Node& node, const Sizes& sizes, VProparray<VPropstruct>& structs);
    ticpp::Node read_struct(ticpp::Node child, std::size_t index, std::size_t count_members, MemberIndex& first,
                            VPropstruct& members);
    VProp& get_member(MemberIndex& members, const std::string& name);
    void believe(std::size_t promised);

    ticpp::Node cur_node; ///< the element that was begun last
    int format;
    int version;
    std::size_t most_promised_by_one; ///< entries that an element says it has, without bringing them
    std::size_t promises_left;        ///< for all of them
    std::size_t paths_left;           ///< for all names of members
};
