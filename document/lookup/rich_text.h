// Rich text (ISO 32000-2, 12.7.4.3): XHTML in which only the characters count here.
#pragma once

#include <string>
#include <string_view>

// The characters of `xhtml`, UTF-8, without tags: white space as one blank, paragraphs and breaks as line feeds. What is
// broken ends it.
std::string plain_text(std::string_view xhtml);
