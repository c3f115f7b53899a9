/// Reads JSON text that arrives in pieces.
#pragma once

#include <Json/Value.h>
#include <VelaBase/export.h>

#include <cstddef>
#include <deque>
#include <stdexcept>
#include <string>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// A push parser for documents whose top level is one object. It gives the same result wherever the text is cut.
///
/// Beyond strict JSON it accepts raw control characters in strings, and numbers with leading zeros, several
/// signs or a trailing part: a number without "." is read as an integer up to the first character that
/// none has, so "1e5" and "1-2" are 1; one with "." is read as a decimal in the same way, and "1.0e-999" is 0. It
/// refuses "\u" in strings, a second "." in a number, an exponent without digits as in "1.5e", numbers too large for
/// their type, and a trailing comma. Nesting has no limit but memory.
class VELA_API Reader
{
public:
    /// What cannot stand where it stands: "Unexpected 'x' character in object value" or
    /// "Unexpected '1.2.3' string in number value". The kinds are "value", "object", "array", "'true'", "'false'",
    /// "'null'", "number" and "string".
    struct VELA_API Unexpected : std::runtime_error
    {
        Unexpected(char character, const std::string& kind);
        Unexpected(const std::string& text, const std::string& kind);
        Unexpected(const Unexpected& other);
        Unexpected& operator=(const Unexpected& other);
        ~Unexpected() override;
    };

    /// The object is empty, and a document is due.
    Reader();
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Consumes characters from `p` on.
    ///
    /// True as soon as the closing brace of the document has been consumed, with `p` directly behind it. False
    /// when `p` has reached `end` first; the next call goes on there. A number is stored once the character
    /// behind it has come. The next document goes into the same object: see `clear`.
    ///
    /// @throws Json::Reader::Unexpected as above; the reader is of no further use, and `p` is where it failed.
    bool read(const char*& p, const char* const& end);

    /// What has been read so far.
    const Value::Object& object() const;

    /// Empties the object. For use between documents: within one, the member that is being read stays, with what it
    /// has so far, and the document goes on.
    void clear();

private:
    void read_string(const char*& p, const char* end);
    void read_escape(char c);
    void end_string();
    void read_number(const char*& p, const char* end);
    void store_number();
    void read_keyword(char c);
    bool read_token(char c);
    bool begin_key(char c);
    void read_colon(char c);
    bool begin_value(char c);
    void begin_keyword(const char* keyword);
    Value& take_slot();
    bool read_structure(char c);
    void open_list(Value& value);
    void open_object(Value& value);
    void close();

    Value root_;
    std::deque<Value*> open_; ///< from the root down
    std::string key_;
    std::string number_;
    std::string* text_ = nullptr;      ///< receives characters; null outside a string
    Value* slot_ = nullptr;            ///< where the next value goes; null where none is due
    Value::List* list_ = nullptr;      ///< the innermost open container is this
    Value::Object* members_ = nullptr; ///< or this
    bool in_number_ = false;
    bool in_escape_ = false;
    const char* keyword_ = nullptr; ///< that is being read; null outside
    std::size_t keyword_position_ = 0;
    bool expect_key_ = false;
    bool expect_colon_ = false;
};

VELA_ABI_NAMESPACE_END
}
