// Any XML gives a tree over which a document can be laid, or which is refused with std::bad_cast. What was laid is
// described anew, and the tree stays one that a document can be laid over.

#include "fuzz/text_pieces.h"

#include <Json/XmlReader.h>
#include <Ome/Document.h>
#include <Ome/Image.h>

#include <memory>
#include <string>
#include <typeinfo>

namespace {

using Document = Ome::Document<Json::SignalingReference>;
using Image = Ome::Image<Json::SignalingReference>;
using Json::Value;
using vela_fuzz::require;

/// What was read before the reader failed counts too.
Value read(const std::uint8_t* data, std::size_t size)
{
    Value tree;
    Json::XmlReader reader(tree);
    const char* p = reinterpret_cast<const char*>(data);
    const char* const end = p + size;
    try
    {
        reader.read(p, end);
    }
    catch (const Json::XmlReader::Unexpected&)
    {
    }
    return tree;
}

std::unique_ptr<Document> lay_over(Value& tree)
{
    try
    {
        return std::make_unique<Document>(tree);
    }
    catch (const std::bad_cast&)
    {
        return nullptr;
    }
}

/// Everything that an image can be told.
void describe(Image& image, std::size_t count)
{
    image.dimension_order = "XYTCZ";
    image.set_sizes({4, 3, count % 3 + 1, count % 2 + 1, count % 4 + 1});
    image.set_len(0, 0.5);
    image.set_len(2, static_cast<double>(count));
    image.set_off(0, 2);
    image.set_off(4, 0.5);
    try
    {
        image.set_off(2, 1);
    }
    catch (const std::bad_cast&)
    {
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Value tree = read(data, size);
    const std::unique_ptr<Document> document = lay_over(tree);
    if (!document)
        return 0;
    const std::string text = vela_fuzz::json_text(tree);
    require(lay_over(tree) != nullptr);
    require(vela_fuzz::json_text(tree) == text);

    for (const auto& image : document->images)
        describe(*image, size);
    const auto added = document->images.add();
    describe(*added, size);
    require(document->images.size() == tree.at("ome:OME").at("").at("ome:Image").count());
    require(added->planes.size() == (size % 3 + 1) * (size % 2 + 1) * (size % 4 + 1));
    Value copy(tree);
    require(copy == tree);
    require(lay_over(copy) != nullptr);
    return 0;
}
