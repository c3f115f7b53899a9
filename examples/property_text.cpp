// Writes a tree of properties as XML, reads it into another, changes it through JSON, and finds one by its path.
#include <Json/Reader.h>
#include <Json/property_bridge.h>
#include <Json/write.h>
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <iostream>
#include <stdexcept>
#include <string>

int main()
{
    try
    {
        VProp camera;
        camera["gain"] = 2.5;
        camera["lasers(1).power"] = 10;
        camera["lasers(0).power"] = 20;

        std::string xml;
        vela_export_xml(xml, camera, 2);
        std::cout << xml;

        VProp read;
        vela_import_xml(xml, read, 0); // whatever form it is
        std::cout << (read == camera ? "the same" : "not the same") << "\n";

        const std::string json = R"({"gain": 3, "lasers": [{"power": 5}, {}]})";
        Json::Reader reader;
        const char* p = json.data();
        reader.read(p, p + json.size());
        Json::set_value(reader.object(), read);
        std::cout << Json::get_value(read) << "\n";
        std::cout << vela_val2string(*Json::find_property(read, "lasers/0/power").first) << "\n";

        Json::set_value(Json::get_value(camera), read); // back again
        Json::Value wrong;
        wrong.at("lasers").as_list() = {Json::Value(), Json::Value()};
        Json::set_value(wrong, read);
    }
    catch (const std::invalid_argument& error)
    {
        std::cout << error.what() << "\n";
    }
}
