/// What a document holds, before the parser recurses into it.
#pragma once

#include <cstddef>
#include <vector>

namespace ticpp {

/// Bytes of a document.
struct Place
{
    std::size_t begin;
    std::size_t end;
};

struct ScanLimits
{
    std::size_t levels;     ///< of elements in elements
    std::size_t attributes; ///< of one element
    std::size_t text;       ///< a text with as many bytes is a long one
};

struct Scan
{
    bool is_too_deep = false;
    bool has_too_many_attributes = false;
    /// What the parser would make: elements, attributes, texts and whatever else stands in markup.
    std::size_t nodes = 0;
    /// Texts of elements that are long and plain: ASCII without "&", which the parser takes over as they stand.
    std::vector<Place> long_texts;
};

/// Goes through `text`, behind which four NULs stand, until a limit is passed.
///
/// What the parser takes for an element decides, not what XML says. Where the parser gives up, so does this.
Scan scan(const char* text, const ScanLimits& limits);

}
