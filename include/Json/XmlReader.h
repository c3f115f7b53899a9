/// Reads the XML form of a value, which may arrive in pieces.
#pragma once

#include <Json/Value.h>
#include <VelaBase/export.h>

#include <deque>
#include <iosfwd>
#include <stdexcept>
#include <string>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// A push parser for a simple XML dialect: elements, attributes, text, the five named references and an "xml"
/// processing instruction. Comments, DOCTYPE, CDATA and numeric references are errors. It gives the same result
/// wherever the text is cut. Nesting has no limit but memory.
///
/// The target becomes an object whose keys are the root elements. An element
/// - with nothing but text is that text, converted;
/// - with nothing at all is null;
/// - with attributes is an object of them, and its content stands under the key "";
/// - with child elements is an object with these under the key "".
///
/// A name that comes again on one level turns the key's value into a list, in the order of the document; but a null
/// value is taken again, and forgotten.
///
/// Attribute values and texts are converted alike: "true" and "false" to booleans; what begins with "-" or a
/// digit and goes on in digits, ".", "e", "E", "+", "-" to an integer or a decimal if it can be read to its end;
/// the rest to strings. A number out of range is saturated, and one that is cut off, as "1e" or a lone "-", is 0.
/// Leading white space of element text is skipped, all other stays. Empty text of an element stores nothing.
///
/// Wanted, though it looks wrong: "&" begins a reference only in text already known to be plain, so "&lt;x" stays as
/// it is and "x&lt;" is "x<". And "/" directly behind the name of an element closes it without ending it: a
/// document that is one such element never reports completion, and text behind it is stored in it.
class VELA_API XmlReader
{
public:
    /// What cannot stand where it stands: "Unexpected " and the character or text, a blank, and the words
    /// "duplicate attribute", "in attribute", "in tag", "in tag NAME", "in tag name", "at the beginning",
    /// "end tag", "end tag at the beginning", "after value", "after content", "processing tag" or "reference".
    struct VELA_API Unexpected : std::runtime_error
    {
        Unexpected(char character, const std::string& words);
        Unexpected(const std::string& text, const std::string& words);
        Unexpected(const Unexpected& other);
        Unexpected& operator=(const Unexpected& other);
        ~Unexpected() override;
    };

    /// Binds the target, which must outlive the reader, and sets it to null.
    explicit XmlReader(Value& target);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    /// Takes characters until one completes the document, which is the end tag of a root element (true), or
    /// the stream has no more (false).
    ///
    /// @throws Json::XmlReader::Unexpected as above; the target keeps what was read, and the reader is of no further
    ///         use.
    bool read(std::istream& in);

    /// The same over a buffer: `p` advances, to behind the character that completed the document, or to `end`.
    bool read(const char*& p, const char* const& end);

    /// The attributes of the processing instruction.
    const Value::Object& object() const;

    /// Empties the reader's own map; the target and the state are left alone. So within a declaration the attribute
    /// that is being read stays, null until its value has come.
    void clear();

private:
    struct Element
    {
        const std::string* name;
        Value* value;
    };

    void read_run(const char*& p, const char* end);
    bool read(char c);
    void read_value(char c);
    void read_reference(char c);
    void read_undecided(char c);
    void end_value();
    void store_number();
    void read_attribute(char c);
    void begin_attribute();
    bool read_tag_body(char c);
    bool end_tag_body();
    void read_between_tags(char c);
    bool read_tag_name(char c);
    void begin_tag(char c);
    void end_tag_name(const std::string& name);
    void open_element(const std::string& name);
    void close_element(const std::string& name);
    bool after_tag_name(char c, const std::string& name);
    bool end_of_end_tag();

    Value::Object declaration_; ///< attributes of the processing instruction
    Value& target_;
    std::deque<Element> open_; ///< from the root down
    Value* slot_ = nullptr;
    std::string text_; ///< also holds names
    std::string entity_;
    bool tag_open_ = false;
    bool tag_body_ = false;
    bool processing_ = false;
    bool end_tag_ = false;
    bool expect_close_ = false;
    bool in_attribute_ = false;
    bool after_attribute_name_ = false;
    bool expect_attribute_value_ = false;
    bool in_name_ = false;
    char delimiter_ = 0; ///< 0 outside values, the quote in an attribute value, "<" in the text of an element
    bool in_entity_ = false;
    bool plain_text_ = false;
    bool in_number_ = false;
    int true_position_ = 0;
    int false_position_ = 0;
};

VELA_ABI_NAMESPACE_END
}
