/// The string of the property tree and of every file name.
#pragma once

#include <VelaBase/export.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// A wide string that converts to and from narrow text at its interface.
///
/// The text is held in wide units: UTF-16 where `wchar_t` has 16 bits, code points where it has 32.
/// It may contain NUL; its own length counts wide units. A null pointer to text counts as empty text.
///
/// Every conversion drops what it cannot express: bytes that are not valid in the encoding,
/// and characters that the encoding does not have. The characters beside them stay.
///
/// Every conversion may throw:
/// - `std::invalid_argument` "Unknown encoding '%d' found": the encoding is none of the three; the string is unchanged.
/// - `std::invalid_argument` "Unknown codepage %d": the system code page has no known charset.
/// - what Boost.Locale throws when it cannot open a charset, a `boost::locale::conv::conversion_error` or kin.
class VELA_API VPropstring : public std::wstring
{
public:
    /// What narrow text is encoded in. Callers may pass any number; an unknown one is answered with a failure.
    enum encoding : std::int32_t
    {
        enc_utf8 = 0,        ///< UTF-8
        enc_system = 1,      ///< the system's code page, looked up at each call; UTF-8 on POSIX
        enc_windows1252 = 2, ///< windows-1252
    };

    VPropstring();
    VPropstring(const VPropstring& other);
    VPropstring(VPropstring&& other) noexcept;
    /// These two take the text as it stands.
    VPropstring(const std::wstring& text);
    VPropstring(const wchar_t* text);
    /// These two call `from`.
    VPropstring(const std::string& text, encoding enc);
    VPropstring(const char* text, encoding enc);
    ~VPropstring();

    VPropstring& operator=(const VPropstring& other);
    VPropstring& operator=(VPropstring&& other) noexcept;
    /// These two call `from` with `enc_system`.
    VPropstring& operator=(const std::string& text);
    VPropstring& operator=(const char* text);

    /// Replaces the content by the decoded text. A failure leaves the string as it was.
    VPropstring& from(const std::string& text, encoding enc);

    /// The same for `length` bytes, NULs included, or up to the first NUL with the default length.
    VPropstring& from(const char* text, encoding enc, std::size_t length = static_cast<std::size_t>(-1));

    /// The text encoded in `enc`.
    std::string to(encoding enc) const;

    /// The same into `out`, which a failure leaves as it was.
    void to(std::string& out, encoding enc) const;

    /// Copies the encoded text into `buffer` of `size` bytes, without a terminating NUL, and returns true.
    /// A text of n bytes needs a `size` above n: otherwise `buffer` is not touched, `size` becomes n
    /// and the result is false. On success `size` keeps its value.
    bool to(char* buffer, std::size_t& size, encoding enc) const;

    /// The text encoded in the system's code page.
    operator std::string() const;

    /// Number of bytes of the text in `enc`, counted only up to the first NUL.
    std::size_t size_in(encoding enc) const;

    /// Number of bytes of a wide text of `length` units, or up to its NUL with the default length.
    static std::size_t size_in(const wchar_t* text, encoding enc, std::size_t length = static_cast<std::size_t>(-1));

    /// Number of wide units that a narrow text of `length` bytes, or up to its NUL, decodes to.
    static std::size_t length_of(const char* text, encoding enc, std::size_t length = static_cast<std::size_t>(-1));

    /// These three compare the wide text.
    bool operator==(const VPropstring& other) const;
    bool operator==(const std::wstring& other) const;
    bool operator==(const wchar_t* other) const;
    /// These two encode this text in the system's code page and compare the bytes, so a text that
    /// loses characters on the way may equal one that does not have them.
    bool operator==(const std::string& other) const;
    bool operator==(const char* other) const;
};

/// The same the other way round, and negated. C++20 would find most of these by itself, C++17 does not.
inline bool operator==(const std::wstring& a, const VPropstring& b)
{
    return b == a;
}
inline bool operator==(const wchar_t* a, const VPropstring& b)
{
    return b == a;
}
inline bool operator==(const std::string& a, const VPropstring& b)
{
    return b == a;
}
inline bool operator==(const char* a, const VPropstring& b)
{
    return b == a;
}
inline bool operator!=(const VPropstring& a, const VPropstring& b)
{
    return !(a == b);
}
inline bool operator!=(const VPropstring& a, const std::wstring& b)
{
    return !(a == b);
}
inline bool operator!=(const VPropstring& a, const wchar_t* b)
{
    return !(a == b);
}
inline bool operator!=(const VPropstring& a, const std::string& b)
{
    return !(a == b);
}
inline bool operator!=(const VPropstring& a, const char* b)
{
    return !(a == b);
}
inline bool operator!=(const std::wstring& a, const VPropstring& b)
{
    return !(b == a);
}
inline bool operator!=(const wchar_t* a, const VPropstring& b)
{
    return !(b == a);
}
inline bool operator!=(const std::string& a, const VPropstring& b)
{
    return !(b == a);
}
inline bool operator!=(const char* a, const VPropstring& b)
{
    return !(b == a);
}
