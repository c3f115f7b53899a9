/// The root of an OME document.
#pragma once

#include <Ome/Collection.h>
#include <Ome/Element.h>
#include <Ome/Image.h>
#include <Ome/Instrument.h>
#include <VelaBase/export.h>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// The document, laid on the key "ome:OME" of `root`. The namespaces are those of the OME 2015-01 schema.
template <class Reference>
struct VELA_API Document : Element<Reference>
{
    template <class T>
    using Field = typename Element<Reference>::template Field<T>;

    /// The key of the document in its root: "ome:OME".
    static const char* element_key();

    explicit Document(const typename Element<Reference>::Binding& root);
    ~Document();

    Field<check::String> xmlns_ome{this->own("xmlns:ome"), "http://www.openmicroscopy.org/Schemas/OME/2015-01"};
    Field<check::String> xmlns_xsi{this->own("xmlns:xsi"), "http://www.w3.org/2001/XMLSchema-instance"};
    Field<check::String> xsi_schema_location{this->own("xsi:schemaLocation"),
                                             "http://www.openmicroscopy.org/Schemas/OME/2015-01 "
                                             "http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd"};
    Field<check::Uuid> uuid{this->own("UUID")};
    Field<check::String> creator{this->own("Creator")};
    Field<check::Structure> content{this->own("")};
    Collection<Instrument<Reference>> instruments{content};
    Collection<Image<Reference>> images{content};
};

extern template struct Document<Json::SignalingReference>;

VELA_ABI_NAMESPACE_END
}
