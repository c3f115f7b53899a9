#include <VelaProps/VPropstring.h>

#include "sources/platform/platform.h"
#include "sources/props/text/code_pages.h"

#include <boost/locale/encoding.hpp>
#include <boost/locale/encoding_utf.hpp>
#include <boost/locale/utf.hpp>

#include <cstring>
#include <cwchar>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace {

namespace conv = boost::locale::conv;
namespace utf = boost::locale::utf;

constexpr std::size_t up_to_nul = static_cast<std::size_t>(-1);
constexpr const char* utf8_charset = "UTF-8";
constexpr const char* windows1252_charset = "windows-1252";

/// The loop of `utf_to_utf` but for one thing: after an invalid sequence it goes on at the very next
/// byte. `utf_to_utf` of Boost 1.74 also drops the byte that showed the sequence to be invalid, so it
/// would lose the "b" of "a\xC3" "b".
std::wstring decode_utf8(std::string_view text)
{
    std::wstring wide;
    wide.reserve(text.size());
    for (auto at = text.begin(); at != text.end();)
    {
        auto next = at;
        const utf::code_point character = utf::utf_traits<char>::decode(next, text.end());
        if (character == utf::illegal || character == utf::incomplete)
        {
            ++at;
            continue;
        }
        utf::utf_traits<wchar_t>::encode(character, std::back_inserter(wide));
        at = next;
    }
    return wide;
}

/// The charset of an encoding.
const char* charset_of(VPropstring::encoding enc)
{
    switch (enc)
    {
    case VPropstring::enc_utf8:
        return utf8_charset;
    case VPropstring::enc_system:
        return Vela::detail::charset_of_code_page(Vela::platform::code_page());
    case VPropstring::enc_windows1252:
        return windows1252_charset;
    }
    throw std::invalid_argument("Unknown encoding '" + std::to_string(static_cast<std::int32_t>(enc)) + "' found");
}

/// UTF-8 needs no table of the system, whichever encoding led to it.
bool is_utf8(const char* charset)
{
    return std::strcmp(charset, utf8_charset) == 0;
}

/// Converts in pieces. Boost.Locale 1.74 spends on every character that it drops a time that grows with what
/// follows it: a million dropped at once took 17 s, in pieces of this size less than one. Only for charsets of
/// single bytes: others would be cut within characters.
constexpr std::size_t piece_length = 256;

template <class Text, class Convert>
auto in_pieces(Text text, Convert convert)
{
    decltype(convert(text)) converted;
    for (std::size_t at = 0; at < text.size(); at += piece_length)
        converted += convert(text.substr(at, piece_length));
    return converted;
}

std::wstring decode(std::string_view text, VPropstring::encoding enc)
{
    const char* const charset = charset_of(enc);
    if (is_utf8(charset))
        return decode_utf8(text);
    const auto convert = [charset](std::string_view piece)
    { return conv::to_utf<wchar_t>(piece.data(), piece.data() + piece.size(), charset, conv::skip); };
    return enc == VPropstring::enc_windows1252 ? in_pieces(text, convert) : convert(text);
}

std::string encode(std::wstring_view text, VPropstring::encoding enc)
{
    const char* const charset = charset_of(enc);
    if (is_utf8(charset))
        return conv::utf_to_utf<char>(text.data(), text.data() + text.size(), conv::skip);
    const auto convert = [charset](std::wstring_view piece)
    { return conv::from_utf(piece.data(), piece.data() + piece.size(), charset, conv::skip); };
    return enc == VPropstring::enc_windows1252 ? in_pieces(text, convert) : convert(text);
}

std::string_view narrow_view(const char* text, std::size_t length)
{
    if (text == nullptr)
        return {};
    return {text, length == up_to_nul ? std::strlen(text) : length};
}

std::wstring_view wide_view(const wchar_t* text, std::size_t length)
{
    if (text == nullptr)
        return {};
    return {text, length == up_to_nul ? std::wcslen(text) : length};
}

} // namespace

VPropstring::VPropstring() = default;
VPropstring::VPropstring(const VPropstring& other) = default;
VPropstring::VPropstring(VPropstring&& other) noexcept = default;
VPropstring::VPropstring(const std::wstring& text) : std::wstring(text) {}
VPropstring::VPropstring(const wchar_t* text) : std::wstring(wide_view(text, up_to_nul)) {}
VPropstring::VPropstring(const std::string& text, encoding enc)
{
    from(text, enc);
}
VPropstring::VPropstring(const char* text, encoding enc)
{
    from(text, enc);
}
VPropstring::~VPropstring() = default;

VPropstring& VPropstring::operator=(const VPropstring& other) = default;
VPropstring& VPropstring::operator=(VPropstring&& other) noexcept = default;
VPropstring& VPropstring::operator=(const std::string& text)
{
    return from(text, enc_system);
}
VPropstring& VPropstring::operator=(const char* text)
{
    return from(text, enc_system);
}

VPropstring& VPropstring::from(const std::string& text, encoding enc)
{
    std::wstring decoded = decode(text, enc);
    swap(decoded);
    return *this;
}

VPropstring& VPropstring::from(const char* text, encoding enc, std::size_t length)
{
    std::wstring decoded = decode(narrow_view(text, length), enc);
    swap(decoded);
    return *this;
}

std::string VPropstring::to(encoding enc) const
{
    return encode(*this, enc);
}

void VPropstring::to(std::string& out, encoding enc) const
{
    out = encode(*this, enc);
}

bool VPropstring::to(char* buffer, std::size_t& size, encoding enc) const
{
    const std::string encoded = encode(*this, enc);
    // A buffer exactly as long as the text is refused: the caller is about to terminate it.
    if (encoded.size() >= size)
    {
        size = encoded.size();
        return false;
    }
    encoded.copy(buffer, encoded.size());
    return true;
}

VPropstring::operator std::string() const
{
    return to(enc_system);
}

std::size_t VPropstring::size_in(encoding enc) const
{
    return size_in(c_str(), enc);
}

std::size_t VPropstring::size_in(const wchar_t* text, encoding enc, std::size_t length)
{
    return encode(wide_view(text, length), enc).size();
}

std::size_t VPropstring::length_of(const char* text, encoding enc, std::size_t length)
{
    return decode(narrow_view(text, length), enc).size();
}

bool VPropstring::operator==(const VPropstring& other) const
{
    return compare(other) == 0;
}

bool VPropstring::operator==(const std::wstring& other) const
{
    return compare(other) == 0;
}

bool VPropstring::operator==(const wchar_t* other) const
{
    return wide_view(other, up_to_nul) == *this;
}

bool VPropstring::operator==(const std::string& other) const
{
    return to(enc_system) == other;
}

bool VPropstring::operator==(const char* other) const
{
    return to(enc_system) == narrow_view(other, up_to_nul);
}
