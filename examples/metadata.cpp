// Describes a time series of 1000 volumes of 1000 planes, and looks at a few of them.
#include <Json/write.h>
#include <Ome/Image.h>

#include <boost/shared_ptr.hpp>
#include <iostream>
#include <typeinfo>

using Reference = Json::SignalingReference;

/// Is told when the name of the image changes.
struct NameHandler : Json::ChangeHandler<std::string>
{
    void changed(const std::string& name) override { std::cout << "the image is called " << name << "\n"; }
};

int main()
{
    Json::Value tree; // outlives the record
    Ome::Image<Reference> image(tree);
    image.name.set_change_handler(boost::shared_ptr<NameHandler>(new NameHandler));

    image.name = "embryo";
    image.type = Ome::Type::uint16;
    image.dimension_order = Ome::DimensionOrder::XYZTC;
    image.set_sizes({512, 512, 1000, 1000}); // no plane is built by this
    image.set_len(0, 0.00025);               // m
    image.set_off(0, 0.001);
    image.planes[1]->exposure_time = 0.02;
    image.planes[1]->exposure_time_unit = "s";

    std::cout << image.planes.size() << " planes, " << image.channels.size() << " channel\n";
    std::cout << "plane 1001 is Z " << image.planes[1001]->the_z << ", T " << image.planes[1001]->the_t << "\n";
    try
    {
        image.size_x = 0;
    }
    catch (const std::bad_cast& error)
    {
        std::cout << "a size of 0: " << error.what() << "\n";
    }
    std::cout << "plane 1 in the tree: " << tree.at("").at("ome:Pixels").at("").at("ome:Plane").at(1) << "\n";
}
