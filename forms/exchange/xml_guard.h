// Makes XML of unknown origin safe for a parser that recurses and ignores document types.
#pragma once

#include <cstddef>

// Looks through `len` bytes of XML before they are parsed, strictly: returns false, for the caller to refuse the text,
// for markup that is not well-formed, and when it nests deeper or holds more elements and attributes than the limits
// allow. Comments, instructions and document types, internal subset included, are overwritten with spaces, so that no
// entity is ever seen; an XML declaration leaves a byte order mark, and malformed UTF-8 becomes '?'.
bool guard_xml(char* text, size_t len);
