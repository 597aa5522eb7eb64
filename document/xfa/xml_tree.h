// XML of unknown origin as a tree of places in its text, so that a part can be changed and all the rest stays as it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "file/status.h"

// An element: numbers of others, and positions in the text.
struct XML_ELEMENT {
    int32_t parent = -1;
    int32_t first = -1;  // the first element in it
    int32_t next = -1;   // the next one beside it
    uint32_t begin = 0;  // of its tag
    uint32_t inner = 0;  // behind its tag
    uint32_t inner_end = 0;
    uint32_t end = 0;  // `inner` for an empty element's tag
};

// Elements are numbered in document order; the root is 0.
class CPDFXmlTree {
public:
    // Takes a text that is one element in UTF-8, up to LIMIT_XFA_STREAM bytes. Fails, with nothing in the tree, where it is not well-formed,
    // has a document type, nests deeper or has more elements than the limits allow; the sentence is to follow a name for
    // the text.
    CPDFStatus parse(std::string text);

    const std::string& source() const { return m_text; }
    int32_t count() const { return static_cast<int32_t>(m_elements.size()); }
    const XML_ELEMENT& at(int32_t element) const { return m_elements[static_cast<size_t>(element)]; }

    // The element's name, with its prefix and without. Borrowed from the tree.
    std::string_view full_name(int32_t element) const;
    std::string_view name(int32_t element) const;

    // Whether `element` is written as one tag, <a/>.
    bool is_single_tag(int32_t element) const { return at(element).inner == at(element).end; }

    // The value of an attribute, by its name without prefix; empty when there is none.
    std::string attribute(int32_t element, std::string_view name) const;

    // The character data of the element and all in it; line ends are LF.
    std::string text(int32_t element) const;

    // The first element of this name in `element`; -1 when there is none.
    int32_t child(int32_t element, std::string_view name) const;

private:
    std::string m_text;
    std::vector<XML_ELEMENT> m_elements;
};

// `text` as character data of XML.
std::string xml_escaped(std::string_view text);
