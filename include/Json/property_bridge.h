/// Between value trees and property trees: reading properties as values, writing values into properties, and finding
/// a property by its path.
///
/// | property | value |
/// |---|---|
/// | boolean | boolean |
/// | integer of 8 to 64 bits | integer |
/// | decimal of single or double precision | decimal |
/// | string | string, in the system's encoding |
/// | structure | object |
/// | array of these, or of properties | lists within lists |
///
/// Nothing else has a value: not the empty property, a colour, a complex number or an array of those.
///
/// An array is as many lists within each other as it has sizes other than 1. The outermost is as long as the first of
/// these sizes, and elements come in the order in which they lie: the sizes 2, 3 give two lists of three, 1, 3 give one
/// list of three. A single element is a list of one, whatever the sizes, and without elements the list is empty.
///
/// Trees may be of any depth: nothing here recurses by it.
#pragma once

#include <Json/Map.h>
#include <Json/Value.h>
#include <VelaBase/export.h>
#include <VelaProps/VProp.h>

#include <string>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// The value of a property, which stays as it is. Of two members with one name the last counts.
///
/// @throws std::invalid_argument "Property has %s type": there is no value for it, or for something in it
/// @throws std::bad_cast "bad cast": an unsigned number above the largest signed one
/// @throws VelaError id -1 "Invalid size vector in property array!": an array whose sizes do not fit its elements
VELA_API Value get_value(const VProp& property);

/// The object of a structure, as `get_value` gives it; an empty one for any other property.
VELA_API Map<std::string, Value> get_parameters(const VProp& property);

/// Writes a value into a property, which keeps its type. Containers that are shared are detached first, whether
/// something in them changes or not; attachments of their members stay with the other holders then. A boolean, number
/// or string is assigned: the property keeps its attachment, but no lock.
///
/// - A boolean goes into a boolean, a string into a string.
/// - An integer goes into any integer that can hold it, and into a decimal, which may round it.
/// - A decimal goes into a decimal, which may round it, and into any integer that can hold it, if it has no fraction.
/// - A list goes into an array of the same shape, element by element; into an array without elements any list goes, and
///   nothing is set.
/// - An object goes into a structure, each entry into the member with its name (the first one of two). Other members
///   stay.
///
/// True where the property is no array or structure and got another value. An equal value is not written. For arrays
/// and structures the answer is always false, whatever changed in them: this is wanted.
///
/// What failed in a member is told from the outside in, a line for each member:
///
///     Invalid argument for property 'camera'
///     Invalid argument for property 'gain'
///     Property has 32 bit signed integer type
///
/// What has been written when something fails stays.
///
/// @throws std::invalid_argument "Property has %s type": the property does not take a value of this kind, or not this
///         one
/// @throws std::invalid_argument "No property '%s'": an entry for which the structure has no member
/// @throws std::invalid_argument "Invalid argument for property '%s'\n%s": one of these two, in a member
/// @throws VelaError id -1 "Invalid size vector in property array!": an array whose sizes do not fit its elements
VELA_API bool set_value(const Value& value, VProp& property);

/// Copies the entries of `from` that `into` lacks, also in objects that both have under the same key. Nothing that is
/// there is overwritten, a null neither.
VELA_API void merge(const Map<std::string, Value>& from, Map<std::string, Value>& into);

/// The property at `path`, whose parts are separated by "/", and what of the path was not used; a null pointer and no
/// rest where there is none.
///
/// - A structure goes on in the member that the next part names.
/// - An array of properties goes on in the element that the next part counts, from 0, in decimal digits alone.
/// - An array of structures goes on in the element that the next part counts, and in the member that the one behind it
///   names. Where the path has one part left, the array itself is found, with that part as rest.
/// - Any other array is found itself, with the whole path as rest: it is for the caller to read it as an index.
/// - Nothing is found in any other property.
///
/// As the walks of `VPropstruct.h`, both forms detach every shared container that they go into: what they give belongs
/// to this tree alone.
/// @{
VELA_API std::pair<const VProp*, std::string> find_property(const VProp& property, const std::string& path);
VELA_API std::pair<VProp*, std::string> find_property(VProp& property, const std::string& path);
/// @}

VELA_ABI_NAMESPACE_END
}
