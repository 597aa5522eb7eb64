#include "formats/export/json_text.h"

#include <nlohmann/json.hpp>

#include "document/lookup/value_text.h"

// Almost all text needs no escapes and is written as it is.
void append_json_text(std::string& out, const std::string& text)
{
    bool plain = true;
    bool may_drive_terminal = false;  // DEL and the controls from U+0080, which JSON allows
    for (const char c : text) {
        plain = plain && static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\';
        may_drive_terminal = may_drive_terminal || c == '\x7f' || c == '\xc2';
    }
    if (plain && !may_drive_terminal)
        out.append("\"").append(text).append("\"");
    else
        out += nlohmann::json(text).dump(-1, ' ', may_drive_terminal, nlohmann::json::error_handler_t::replace);
}

void append_json_value(std::string& out, const PDF_VALUE_TEXT& value)
{
    if (!value.present) {
        out += "null";
        return;
    }
    if (!value.is_list) {
        append_json_text(out, value.text);
        return;
    }
    out += '[';
    for (const std::string& item : value.items) {
        if (&item != &value.items.front())
            out += ',';
        append_json_text(out, item);
    }
    out += ']';
}
