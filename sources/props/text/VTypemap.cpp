#include <VelaBase/VTypemap.h>

void Vela::throw_typemap_entry_not_found()
{
    // Callers know this function name; it is that of the one table in the library.
    throw VelaError("VTypemap<class std::basic_string<char,struct std::char_traits<char>,"
                    "class std::allocator<char> > >::get",
                    __FILE__, __LINE__)("Map entry not found and no default specified!");
}
