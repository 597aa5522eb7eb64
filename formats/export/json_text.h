// Texts and field values as JSON.
#pragma once

#include <string>

struct PDF_VALUE_TEXT;

// Appends `text`, UTF-8, as a JSON string that can't drive a terminal either.
void append_json_text(std::string& out, const std::string& text);

// Appends a value: null, a string or an array of strings.
void append_json_value(std::string& out, const PDF_VALUE_TEXT& value);
