// Builds a tree of properties by paths, copies it, walks through it, and casts a number.
#include <VelaProps/VProp.h>
#include <VelaProps/VPropVisitor.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/vela_prop_cast.h>

#include <iostream>

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // visitors have no virtual destructor
#endif

class Lister final : public VPropVisitor
{
    using VPropVisitor::visit;
    int visit(const VProp& prop) override
    {
        std::cout << "  " << get_cur_path() << ": " << vela_dt_get_name(prop.get_id()) << "\n";
        return 1;
    }
};

int main()
{
    try
    {
        VProp settings;
        settings["scan.speed"] = 400;
        settings["scan.axes(1).label"] = "Y";
        settings["scan.offsets{0}"] = 2.5;

        VProp before = settings; // shares everything with the original
        settings["scan.speed"] = 800;
        std::cout << "speed " << before["scan.speed"].get<int>() << ", then " << settings["scan.speed"].get<int>()
                  << "\n";

        Lister().process(settings);

        double speed = 0;
        vela_prop_cast(settings["scan.speed"], &speed, vela_dt_double);
        std::cout << "as a double " << speed / 3 << "\n";
        before["scan.speed.unit"] = "Hz";
    }
    catch (const VelaError& error)
    {
        std::cout << error.get_func() << ": " << error.get_msg() << "\n";
    }
}
