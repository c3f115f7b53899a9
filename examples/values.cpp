// Reads JSON text that arrives in pieces, changes the values, and writes them in both forms.
#include <Json/Reader.h>
#include <Json/XmlReader.h>
#include <Json/write.h>

#include <iostream>
#include <sstream>
#include <string>

Json::Value read_settings()
{
    Json::Reader reader;
    for (const std::string piece : {R"({"laser": {"wavelength": 488, "pow)", R"(er": 2.5}, "filters": ["GFP"]})"})
    {
        const char* p = piece.data();
        if (reader.read(p, p + piece.size()))
            return reader.object();
    }
    return {};
}

int main()
{
    try
    {
        Json::Value settings = read_settings();
        settings.at("laser").at("power").as_decimal() *= 2;
        settings.at("filters").at(1) = "mCherry";
        std::cout << settings << "\n";

        Json::Value document;
        document.at("Settings").at("Version") = 1; // an attribute
        document.at("Settings").at("") = settings; // the content: elements
        std::stringstream text;
        Json::write_xml(document, text);
        std::cout << text.str() << "\n";

        Json::Value again;
        Json::XmlReader reader(again);
        std::cout << (reader.read(text) ? "complete" : "incomplete") << "\n";
        std::cout << again.at("Settings").at("").at("filters").count() << " filters\n";
        std::cout << (again == document ? "the same\n" : "not the same\n");

        std::istringstream damaged("<Settings><laser></Settings>");
        Json::XmlReader(again).read(damaged);
    }
    catch (const Json::XmlReader::Unexpected& error)
    {
        std::cout << error.what() << "\n";
    }
}
