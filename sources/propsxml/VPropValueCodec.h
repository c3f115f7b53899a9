/// The text form of values, in both directions.
#pragma once

#include "sources/propsxml/number_text.h"

#include <VelaProps/VProp.h>

#include <string>
#include <string_view>

/// Writes and reads numbers, booleans and strings, and arrays of them.
class VPropValueCodec
{
public:
    /// Puts the text of a number, complex number, boolean, string or array of them behind `text`. False, without a
    /// change, for anything else.
    bool append_value(std::string& text, const VProp& prop) const;

    /// Reads elements up to the first that is none, and puts them behind those of `elements`. False if there is
    /// something left that was not read.
    template <class Elements>
    bool read_elements(std::string_view text, Elements& elements) const
    {
        const char* p = text.data();
        const char* const end = p + text.size();
        bool is_separated = true;
        while (p != end)
        {
            typename Elements::value_type element{};
            const char* const stop = is_separated ? vela_prop::read_number(p, end, element) : nullptr;
            if (stop == nullptr)
                return false;
            elements.push_back(element);
            p = skip_separators(stop, end);
            is_separated = p != stop;
        }
        return true;
    }

    /// Reads one number. False, without a change, where there is none.
    template <class T>
    bool read_value(std::string_view text, T& value) const
    {
        return vela_prop::read_number(text.data(), text.data() + text.size(), value) != nullptr;
    }

private:
    const char* skip_separators(const char* text, const char* end) const
    {
        while (text != end && (*text == separator.front() || separator.find(*text) != std::string::npos))
            ++text;
        return text;
    }

    std::string separator = " "; ///< any of its characters stands between elements
};
