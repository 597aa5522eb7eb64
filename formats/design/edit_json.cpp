#include "formats/design/edit_json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "document/lookup/field_text.h"
#include "formats/design/design_words.h"
#include "formats/design/flag_words.h"
#include "formats/import/json_value.h"

namespace {

using nlohmann::json;

CPDFStatus refuse(std::string sentence)
{
    return CPDFStatus::failed(PDF_CODE::BAD_REQUEST, std::move(sentence));
}

CPDFStatus refuse_value(const std::string& key, const char* wanted)
{
    return refuse(in_quotes(key) + " is not " + wanted);
}

// "border-width" as "borderWidth".
std::string key_of(const std::string& name)
{
    std::string key;
    for (size_t i = 0; i < name.size(); ++i) {
        if (name[i] != '-')
            key += name[i];
        else if (++i < name.size())
            key += static_cast<char>(name[i] - 'a' + 'A');
    }
    return key;
}

bool read_whole(const json& value, int32_t least, int32_t& out)
{
    constexpr int64_t MOST = 1000000000;
    if (!value.is_number_integer() || value > MOST || value < least)
        return false;
    out = value.get<int32_t>();
    return true;
}

bool read_texts(const json& value, std::vector<std::string>& out)
{
    const bool good =
        value.is_array() && std::all_of(value.begin(), value.end(), [](const json& at) { return at.is_string(); });
    if (good)
        out = value.get<std::vector<std::string>>();
    return good;
}

bool read_default(const json& value, std::optional<CPDFValue>& out)
{
    std::vector<std::string> list;
    if (value.is_string())
        out = value.get<std::string>();
    else if (value.is_boolean())
        out = value.get<bool>();
    else if (read_texts(value, list))
        out = std::move(list);
    return out.has_value();
}

bool read_option(const json& value, PDF_OPTION& out)
{
    if (value.is_string()) {
        out.value = value.get<std::string>();
        return true;
    }
    if (!value.is_object() || !value.contains("value"))
        return false;
    for (const auto& [key, part] : value.items()) {
        if ((key != "value" && key != "text") || !part.is_string())
            return false;
        (key == "value" ? out.value : out.text) = part.get<std::string>();
    }
    return true;
}

bool read_options(const json& value, std::optional<std::vector<PDF_OPTION>>& out)
{
    out.emplace();
    return value.is_array() && std::all_of(value.begin(), value.end(),
                                           [&out](const json& at) { return read_option(at, out->emplace_back()); });
}

bool read_rect(const json& value, PDF_RECT& out)
{
    constexpr double FARTHEST = 1e6;
    double* const parts[] = {&out.x, &out.y, &out.width, &out.height};
    if (!value.is_array() || value.size() != std::size(parts))
        return false;
    for (size_t i = 0; i < std::size(parts); ++i) {
        if (!value[i].is_number())
            return false;
        *parts[i] = value[i].get<double>();
        if (!(*parts[i] >= -FARTHEST && *parts[i] <= FARTHEST))
            return false;
    }
    return true;
}

bool read_place(const json& value, PDF_PLACE& out)
{
    if (!value.is_object() || !value.contains("rect"))
        return false;
    for (const auto& [key, part] : value.items()) {
        if (key == "rect" ? !read_rect(part, out.rect) : key != "page" || !read_whole(part, 1, out.page))
            return false;
    }
    return true;
}

// Reads the keys that new and other fields have.
class EditReader {
public:
    // Places are on `page` where nothing else is said. Borrows the others.
    EditReader(int32_t page, PDF_FIELD_CHANGE& change, PDF_FIELD_DESIGN& design)
        : m_change(change), m_design(design), m_page(page)
    {
    }

    CPDFStatus read(const std::string& key, const json& value)
    {
        if (key == "maxLength")
            return read_max_length(key, value);
        if (key == "options")
            return read_options(value, m_change.options)
                       ? CPDFStatus()
                       : refuse_value(key, "a list of texts or of objects with \"value\" and \"text\"");
        if (key == "default")
            return read_default(value, m_change.default_value)
                       ? CPDFStatus()
                       : refuse_value(key, "a text, true, false or a list of texts");
        if (key == "page") {
            m_has_page = true;
            return read_whole(value, 1, m_page) ? CPDFStatus() : refuse_value(key, "a page number, counted from 1");
        }
        if (key == "places") {
            m_places = &value;
            return value.is_array() ? CPDFStatus() : refuse_value(key, "a list of places");
        }
        return read_word(key, value);
    }

    bool moves() const { return m_places || m_has_page; }
    int32_t page() const { return m_page; }

    // After all keys.
    CPDFStatus read_places(std::vector<PDF_PLACE>& places) const
    {
        for (size_t i = 0; m_places && i < m_places->size(); ++i) {
            PDF_PLACE& place = places.emplace_back();
            place.page = m_page;
            if (!read_place((*m_places)[i], place))
                return refuse("\"places\" has one that is not {\"page\": NUMBER, \"rect\": [X, Y, WIDTH, HEIGHT]}");
        }
        return {};
    }

private:
    CPDFStatus read_max_length(const std::string& key, const json& value)
    {
        m_change.max_length = 0;
        return value.is_null() || read_whole(value, 0, *m_change.max_length)
                   ? CPDFStatus()
                   : refuse_value(key, "a number of characters or null");
    }

    CPDFStatus read_word(const std::string& key, const json& value)
    {
        for (const PDF_FLAG_WORD& at : settable_flags()) {
            if (key != key_of(at.name()))
                continue;
            if (!value.is_boolean())
                return refuse_value(key, "true or false");
            (value.get<bool>() ? m_change.set_flags : m_change.clear_flags) |= at.flag;
            return {};
        }
        for (const PDF_DESIGN_WORD& at : design_words()) {
            if (key != key_of(at.name))
                continue;
            const bool is_number = at.is_number && value.is_number();
            if (!value.is_string() && !is_number)
                return refuse_value(key, at.is_number ? at.wanted : "a text");
            return read_design_word(at, in_quotes(key), is_number ? value.dump() : value.get<std::string>(), m_design);
        }
        return refuse("there is no key " + in_quotes(key) + " for a field");
    }

    PDF_FIELD_CHANGE& m_change;      // borrowed from the caller
    PDF_FIELD_DESIGN& m_design;      // borrowed from the caller
    const json* m_places = nullptr;  // borrowed from the object that is read
    int32_t m_page;
    bool m_has_page = false;
};

CPDFStatus parse_object(std::string_view text, json& out)
{
    CPDFStatus status = parse_json(text, out);
    if (status.ok() && !out.is_object())
        status = refuse("the JSON is not one object");
    return status;
}

// Of what only new fields have; `known` tells whether `key` is such.
CPDFStatus read_new_key(const std::string& key, const json& value, PDF_NEW_FIELD& field, bool& known)
{
    known = key == "kind" || key == "name" || key == "states";
    if (key == "kind") {
        const PDF_FIELD_KIND* kind = value.is_string() ? field_kind(value.get<std::string>().c_str()) : nullptr;
        if (!kind)
            return refuse_value(key, "text, check, radio, combo, list, push or signature");
        field.kind = kind->id;
    } else if (key == "name") {
        if (!value.is_string())
            return refuse_value(key, "a text");
        field.name = value.get<std::string>();
    } else if (key == "states" && !read_texts(value, field.states)) {
        return refuse_value(key, "a list of texts");
    }
    return {};
}

}  // namespace

CPDFStatus read_new_field(std::string_view text, PDF_NEW_FIELD& field, PDF_FIELD_DESIGN& design)
{
    field = {};
    design = {};
    json object;
    if (CPDFStatus status = parse_object(text, object); !status.ok())
        return status;
    for (const char* key : {"kind", "name", "places"}) {
        if (!object.contains(key))
            return refuse("the key " + in_quotes(key) + " is missing");
    }
    EditReader reader(1, field.entries, design);
    for (const auto& [key, value] : object.items()) {
        bool known = false;
        CPDFStatus status = read_new_key(key, value, field, known);
        if (status.ok() && !known)
            status = reader.read(key, value);
        if (!status.ok())
            return status;
    }
    field.entries.clear_flags = 0;  // a new field has none
    return reader.read_places(field.places);
}

CPDFStatus read_field_change(std::string_view text, PDF_FIELD_CHANGE& change, PDF_FIELD_DESIGN& design,
                             std::optional<PDF_MOVE>& move)
{
    change = {};
    design = {};
    move.reset();
    json object;
    if (CPDFStatus status = parse_object(text, object); !status.ok())
        return status;
    EditReader reader(0, change, design);
    for (const auto& [key, value] : object.items()) {
        if (CPDFStatus status = reader.read(key, value); !status.ok())
            return status;
    }
    if (!reader.moves())
        return {};
    move.emplace().page = reader.page();
    return reader.read_places(move->places);
}
