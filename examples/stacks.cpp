// Describes a small volume, fills it, cuts a region out of it, and walks over both.
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>
#include <si/value.h>

#include <cstdint>
#include <iostream>
#include <string>

void print_axes(const VStackInterface& stack)
{
    std::cout << stack.get_name() << ": " << vela_dt_get_name(stack.get_dt()) << ", " << stack.get_size(0)
              << " bytes\n";
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        const si::value length = stack.get_units(axis) * stack.get_length(axis);
        std::cout << "  " << stack.get_label(axis) << ": " << stack.get_dimension_size(axis) << " pixels, "
                  << length.format(3, si::value::with_blank | si::value::with_prefix);
        for (const std::string& column : stack.get_col_labels(axis))
            std::cout << " [" << column << "]";
        std::cout << "\n";
    }
}

/// X runs fastest in memory, then Y, then Z.
void fill(VStackImp& stack)
{
    auto* const samples = reinterpret_cast<std::uint16_t*>(stack.get_data_ptr());
    for (std::uint64_t i = 0; i < stack.get_number_of_elements(); ++i)
        samples[i] = static_cast<std::uint16_t>(100 + i);
}

int main()
{
    try
    {
        VStackImp volume(Ome::Type::uint16, {4, 3, 2}, Ome::DimensionOrder::XYZTC);
        volume.set_name("embryo");
        volume.set_labels({"X", "Y", "Z"});
        volume.set_len({0.004, 0.003, 6}); // of the whole axes, X and Y in metres
        volume.set_off(2, 3);              // the middle of the axis
        volume.set_units(2, si::value("mm"));
        volume.set_col_labels(2, {"bottom", "top"});
        fill(volume);
        print_axes(volume);

        VStackRegion region;
        region.create(&volume, vela_dt_double); // all of it, as another type
        region.begin[0] = 2;                    // X 2 and 3 ...
        region.end[1] = 4;                      // ... with one pixel more behind Y ...
        region.begin[2] = 1;                    // ... at Z 1
        region.permutation = {1, 0};            // Y first

        VStackImp plane;
        plane.copy(&volume, region);
        print_axes(plane);
        region.create(&plane, 0);
        const auto walk = plane.get_iterator(region); // whatever type the samples have
        for (float sample = 0; !walk->at_end(); walk->advance())
        {
            walk->get_value(sample);
            std::cout << " " << sample;
        }
        std::cout << "\n";

        // Of samples whose type is known, a walk of that type also gives pointers.
        region.create(&volume, 0);
        region.permutation = {2}; // along Z at the first pixel of X and Y
        for (VStackInterface::iterator<std::uint16_t> column(&volume, region); !column.at_end();)
            *column++ += 1000;
        std::cout << "along Z: " << *reinterpret_cast<const std::uint16_t*>(volume.get_data_ptr()) << "\n";

        region.end[2] = 3;
        volume.get_iterator(region);
    }
    catch (const VelaError& error)
    {
        std::cout << error.get_func() << ": " << error.get_msg() << "\n";
    }
}
