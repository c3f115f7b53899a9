/// The text forms of a value.
#pragma once

#include <Json/Value.h>
#include <VelaBase/export.h>

#include <iosfwd>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// JSON form, without white space. Numbers come out as the stream prints them: whole decimals with one digit
/// behind the point, others with up to ten digits; the stream's settings are restored. Strings escape backslash
/// and quote alone.
VELA_API std::ostream& operator<<(std::ostream& out, const Value& value);

/// The same for an object.
VELA_API std::ostream& operator<<(std::ostream& out, const Map<std::string, Value>& object);

/// XML form: the declaration, then the members of the object as elements, in the order of the keys.
///
/// Within an element the key "" is the content and every other key an attribute; without attributes the value
/// itself is the content. A list is one element for each entry. Null and the empty string write no element, and
/// a null attribute is left out. Null counts as the empty object. What has been written when something fails stays
/// in the stream.
///
/// @throws std::bad_cast "bad cast": neither an object nor null
/// @throws std::invalid_argument "No xml attribute": a list or an object as attribute
/// @throws std::invalid_argument "No xml content": a list as content
VELA_API void write_xml(const Value& value, std::ostream& out);

VELA_ABI_NAMESPACE_END
}
