// Reads XML of unknown origin piece by piece, keeping every character of its texts (XML 1.0).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/xml_token.h"
#include "file/status.h"

// A strict reader without a tree: memory does not grow with the text, and nothing recurses. Text is UTF-8. Document
// types, and with them every entity but the five of XML, are refused; comments and instructions are passed over.
class CPDFXmlReader {
public:
    enum TOKEN {
        OPEN,   // an element begins: name(), attribute(); an empty element gives its CLOSE next
        CLOSE,  // the innermost element ends: name()
        TEXT,   // a piece of character data: text(); neighbouring pieces belong together
        END,    // behind the root element
        FAULT,  // status() tells
    };

    // `text` is borrowed.
    explicit CPDFXmlReader(std::string_view text);

    // Moves to the next piece. After END or FAULT nothing follows.
    TOKEN next();

    // Steps over the rest of the element that just opened, to its CLOSE.
    TOKEN skip_element();

    // The name of the element without its prefix.
    std::string_view name() const { return m_name.substr(m_name.rfind(':') + 1); }

    // The value of an attribute of the element that just opened, or null.
    const std::string* attribute(std::string_view name) const;

    const std::string& text() const { return m_text; }

    // Elements that are open.
    size_t depth() const { return m_open.size(); }

    // Why the text can't be read, with its line.
    const CPDFStatus& status() const { return m_status; }

    // Makes FAULT of the place of the last piece; returns it.
    TOKEN refuse(const std::string& why) { return fail(m_lexer.begin(), why); }

private:
    TOKEN fail(size_t at, const std::string& why);
    TOKEN take_open();
    TOKEN take_close();
    TOKEN take_text();
    TOKEN take_cdata();
    bool take_attributes();
    bool decode(size_t begin, size_t end, std::string_view special);
    bool decode_reference(size_t& at, size_t end);

    std::string_view m_all;
    CPDFXmlLexer m_lexer;
    bool m_is_empty = false;
    bool m_has_root = false;
    std::string_view m_name;
    std::vector<std::string_view> m_open;
    std::vector<std::pair<std::string_view, std::string>> m_attributes;
    std::string m_text;
    CPDFStatus m_status;
};
