#include "file_document.h"

#include <Json/SignalingReference.h>
#include <Json/Value.h>
#include <Json/XmlReader.h>
#include <Ome/Document.h>

FileDocument read_document(const VBFDictionary& dictionary)
{
    FileDocument result;
    const auto found = dictionary.find("ome_xml");
    if (found == dictionary.end())
        return result;
    try
    {
        Json::Value root;
        Json::XmlReader xml(root);
        const char* begin = found->second.data();
        xml.read(begin, begin + found->second.size());
        const Ome::Document<Json::SignalingReference> document{Json::SignalingReference(root)};
        if (!document.creator.is_null())
            result.creator = document.creator.get();
        if (!document.uuid.is_null())
            result.uuid = document.uuid.get();
    }
    catch (const std::exception&)
    {
    }
    return result;
}
