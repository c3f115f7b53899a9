/// How deep the elements of a text are nested, before the parser recurses into them.
#pragma once

#include <cstddef>

namespace ticpp {

/// Whether the parser, given this text, would meet elements on more than `levels` levels. The text ends with four NULs.
///
/// What the parser takes for an element decides, not what XML says. Where the parser gives up, so does this.
bool is_nested_deeper(const char* text, std::size_t levels);

}
