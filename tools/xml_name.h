// Names of XML elements.
#pragma once

#include <string_view>

// Whether `text`, UTF-8, is a name as XML 1.0 (2.3) has it, without a colon.
bool is_xml_name(std::string_view text);
