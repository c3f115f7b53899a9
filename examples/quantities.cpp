// Reads physical quantities from texts, computes with them and prints them.
#include <si/value.h>

#include <iostream>

int main()
{
    const si::value pixel("0.65 um");
    const si::value width = pixel * 2048;
    std::cout << "width: " << width.format(4, si::value::with_blank | si::value::with_prefix) << "\n";
    std::cout << "in mm: " << width.in("mm") << ", in s: " << width.in("s") << "\n";

    // Dimensions follow the computation, and the printer finds a name for them.
    const si::value pressure = si::value("3 kN") / (si::value("20 cm") ^ 2);
    std::cout << "pressure: " << pressure.format(3, si::value::with_blank | si::value::with_prefix) << "\n";
    const si::value noise("8*nV/Hz^(1/2)");
    std::cout << "noise: " << noise.format(3, si::value::with_blank) << "\n";

    // Texts that are no quantity, and sums of different dimensions, are not valid.
    std::cout << std::boolalpha << "3 inch: " << si::value("3 inch").is_valid() << "\n";
    std::cout << "1 m + 1 s: " << (si::value("1 m") + si::value("1 s")).is_valid() << "\n";
    std::cout << "1 h == 3600 s: " << (si::value("1 h") == si::value("3600 s")) << "\n";
}
