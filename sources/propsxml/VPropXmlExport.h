/// Walks through a property tree and makes an XML element of each value.
#pragma once

#include "sources/propsxml/VPropValueCodec.h"
#include "sources/propsxml/ticpp.h"

#include <VelaProps/VPropVisitor.h>

#include <string>
#include <vector>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // as that of the visitor
#endif

class VPropXmlExport final : public VPropVisitor
{
public:
    /// `format` as in `vela_export_xml`. `version` is that of the schema, always 1.
    VPropXmlExport(int format, int version);

    /// The element of the value that was walked through.
    /// @throws VelaError id -1 "Internal error!": there was none, or the walk did not come to its end
    ticpp::Element& get_top();

    int get_format() const { return format; }
    int get_version() const { return version; }

protected:
    using VPropVisitor::visit;
    using VPropVisitor::visit_exit;

    int visit(const VProp& prop) override;
    bool visit(const VPropstring& text) override;
    bool visit_exit(const VProp& prop) override;

private:
    ticpp::Element make_element() const;
    void check_depth() const;
    void set_text_of(ticpp::Element& element, const VProp& prop) const;

    std::vector<ticpp::Element> elements; ///< those that are open, the top one first
    VPropValueCodec codec;
    int format;
    int version;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
