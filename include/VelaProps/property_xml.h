/// Property trees as XML text, and single values as plain text.
///
/// Each value is one element; what it is stands in the attributes, in this order:
///
/// | attribute | stands there | value |
/// |---|---|---|
/// | `idx` | always | place among its kind, from 1; that of a string in an array of strings from 0 |
/// | `isempty` | for an empty value | 1 |
/// | `isarr` | for an array of exactly one number | 1 |
/// | `userbits` | for arrays | the flags of the array |
/// | `type` | always | the name of the type of one element, as `vela_dt_get_name` gives it |
/// | `size` | always | the sizes with blanks between them: "1 1" of a scalar, "0 0" of an empty value or string |
/// | `vprop_version` | at the top of the native form | 1 |
///
/// | value | `type` | content |
/// |---|---|---|
/// | empty | "cell" | none |
/// | number, complex, boolean, or an array of them | its name | text, elements with a blank between them |
/// | string | "char" | the text in UTF-8; `size` is 1 and the count of wide units |
/// | array of strings | "cell", bit 0 of `userbits` set | an element "item" of `type` "char" for each |
/// | struct | "struct" | an element for each member, named by its key |
/// | cell array | "cell" | an element for each value, named "item" |
/// | struct array | "struct" | the members of all structs side by side; `idx` says whose they are |
///
/// Text of a value: integers and booleans are decimal. Floating-point numbers are as a stream with precision 20 prints
/// them:
/// 1.5 is "1.5", 0.1 is "0.10000000000000000555"; those that are not finite are "Inf", "-Inf" and "NaN". A
/// complex number is "(1.5,-2)". Neither the locale nor the time zone matters.
///
/// Keys become names of elements as they stand: only those that a path can name are sure to read again.
/// White space that is all the text of an element is lost to every XML reader of this kind: a string of blanks
/// comes back as that many NULs. So do the characters U+FEFF, U+FFFE and U+FFFF where there is nothing else, and
/// units that UTF-8 cannot hold, behind the others.
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VProp.h>

#include <string>

/// Replaces `xml` by the XML text of `prop`.
///
/// `format` is
/// - 1: the wrapper of LVData, a declaration and an element "LVData" with "Version" and the tree, whose top element
///   has the name "DefaultValueCausedByCreatingAnElementWithNoParameters"
/// - 2: the native form, whose top element is "root"
/// - 3: the text of the top element without any markup
/// - anything else, flags above bit 15 not counted: `xml` becomes empty. So it does with the flag 0x1000, which
///   leaves no known number; this is wanted.
///
/// Sets bit 0 of `userbits` in every array of strings in `prop`, although that is constant: the bit is what
/// tells such an array from a cell array in the text.
///
/// After a failure `xml` is as it was.
///
/// @throws VelaError id -1 "Type unknown or incompatible with xml export!": the tree holds a colour
/// @throws VelaError id -1 "Property tree nested deeper than 512 levels!": elements would lie deeper, that of LVData
///         and those of strings in arrays included
/// @throws VelaError id -1 "Error writing XML properties to string:\n%s": any other failure; in format 3, that the
///         value has no text, as structs, cell arrays, arrays of strings and empty values
/// @throws VelaError as `VProparrayBase::get_size`, for an array whose sizes do not fit
VELA_API void vela_export_xml(std::string& xml, const VProp& prop, int format);

/// Reads XML text into `prop`.
///
/// `format` is 1 (LVData) or 2 (native) to demand that form, or 0 to take what comes; its low 16 bits count. The
/// native form is known by `vprop_version` above 0 or `xml_tb_version` at the first element. Text that is neither
/// is read as the form that is demanded.
///
/// `prop` is not cleared first: a value is read into what is there, as `VProp::ensure` does. An empty `prop` becomes
/// what the text says; members of a struct are added to those that are there; a value of another type fails; elements
/// of an array are put behind those that are there, and then the sizes do not fit. `isempty` clears.
///
/// Numbers are read up to the first that is none: a scalar that cannot be read stays as it was, or is 0, without a
/// failure. A string that is shorter than its `size` is filled up with NUL. What elements promise without
/// bringing it, such NULs and structs without members, is believed up to 65536 beyond the bytes of the text for
/// each element, and up to 8388608 beyond them for all together. Attributes that cannot be read count as missing,
/// but for `idx` and `size`.
///
/// Names are paths. Those with a "." in them, which nobody writes, are read up to 8192 times.
///
/// Two older forms are read too: a "cell" with `ischar` not 0 is an array of strings, and an element of `type`
/// "complex" has two children of the same kind of number, the real and the imaginary part.
///
/// After a failure `prop` holds what was read before it.
///
/// Not for two threads at once: the XML parser has one switch for the whole process, which every call sets.
///
/// @throws VelaError id -1 "Error parsing XML properties:\n%s": no XML, no element, elements nested deeper than 512
///         levels, or an element with more than 256 attributes
/// @throws VelaError id -1 "Xml input of newer version than library!": `vprop_version` is above 1
/// @throws VelaError id -1 "Could not determine xml format!": `format` is 0, and the text is of no known form
/// @throws VelaError id -1 "Specified format does not match the xml string!": it is of the other known form
/// @throws VelaError id -1 "%s\nLocation:\n%s": everything that goes wrong from there on. First comes the report of
///         that failure, then the names of the elements that lead to it, with "." between them.
///
/// Reports of these stand there, beside those of `VProp`, its arrays and its paths:
///
/// - VelaError id -1 "Unknown type '%s' in xml string!": `type` is missing, no name of a type, or "none"
/// - VelaError id -1 "Invalid struct array!": members cannot be shared out evenly, stand in the wrong order, or are
///   not those of the first struct
/// - VelaError id -1 "Invalid size set!": there are more or fewer elements than `size` says, too many are promised, or
///   it does not begin with a number
/// - VelaError id -1 "Too many paths for names in xml string!": there are more than 8192 names with a "." in them
/// - VelaError id -1 "Malformed 'complex' element!": fewer than two children, or one has more elements than the other
/// - VelaError id -1 "Real and imaginary part have different types in 'complex' element!"
/// - VelaError id -1 "Invalid type in 'complex' element!": the parts are no plain numbers
/// - "Text does not exists in the current element", without a place: a number without a text
VELA_API void vela_import_xml(const std::string& xml, VProp& prop, int format);

/// The text of a number, complex number, boolean or string, or of an array of them with a blank between its elements.
/// Strings are in UTF-8.
/// @throws VelaError id -1 "Conversion of unknown type to string!": it is anything else
VELA_API std::string vela_val2string(const VProp& prop);

/// The value of type `type` (the id of a number, complex number, boolean or "char", no array) that `text` says.
/// A text that cannot be read is 0. A string is all of the text, from UTF-8.
/// @throws VelaError id -1 "Conversion of string to invalid type!": it is any other type
VELA_API VProp vela_string2val(const std::string& text, int type);
