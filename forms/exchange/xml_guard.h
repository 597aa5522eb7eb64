// Makes XML of unknown origin safe for a parser that recurses and ignores document types.
#pragma once

#include <cstddef>

// Looks through `len` bytes of XML before they are parsed. Document types, internal subset included, are overwritten
// with spaces, so that no entity of theirs is ever seen. Returns false, for the caller to refuse the text, when it nests
// deeper or holds more elements and attributes than the limits allow.
bool guard_xml(char* text, size_t len);
