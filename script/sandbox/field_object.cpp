// Fields as scripts see them. Values, some flags, how they show and their items are told to the document; what else scripts
// change lasts as long as they do.
#include <algorithm>

#include "script/functions/characters.h"
#include "script/functions/number.h"
#include "script/sandbox/host.h"

namespace {

constexpr const char* FIELD = "Field";
constexpr const char* TYPES[] = {"text", "checkbox", "radiobutton", "button", "listbox", "combobox", "signature"};
static_assert(std::size(TYPES) == static_cast<size_t>(SCRIPT_FIELD_TYPE::COUNT));

SCRIPT_NODE& node_of(js_State* js)
{
    return *static_cast<SCRIPT_NODE*>(js_touserdata(js, 0, FIELD));
}

const SCRIPT_FIELD& field_of(js_State* js)
{
    return host_of(js).field(node_of(js));
}

bool is_choice(const SCRIPT_FIELD& field)
{
    return field.type == SCRIPT_FIELD_TYPE::LIST || field.type == SCRIPT_FIELD_TYPE::COMBO;
}

bool is_switch(const SCRIPT_FIELD& field)
{
    return field.type == SCRIPT_FIELD_TYPE::CHECKBOX || field.type == SCRIPT_FIELD_TYPE::RADIO;
}

// A text that is a decimal number is one to scripts, so that they can add it up.
bool is_plain_number(const std::string& text)
{
    const size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+');
    return text.size() > sign && text.find_first_not_of("0123456789.", sign) == std::string::npos &&
           std::count(text.begin(), text.end(), '.') <= 1 && is_digit(static_cast<unsigned char>(text.back()));
}

void push_value(js_State* js, const std::string& text)
{
    if (is_plain_number(text))
        js_pushnumber(js, read_number(text).value_or(0));
    else
        push_text(js, text);
}

void get_name(js_State* js)
{
    push_text(js, node_of(js).name);
}

void get_type(js_State* js)
{
    const SCRIPT_NODE& node = node_of(js);
    if (node.group)
        js_pushundefined(js);
    else
        js_pushstring(js, TYPES[static_cast<size_t>(host_of(js).field(node).type)]);
}

void get_value(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    if (node_of(js).group)
        return js_pushundefined(js);
    if (field.value.size() <= 1) {
        if (field.value.empty())
            js_pushliteral(js, is_switch(field) ? "Off" : "");
        else
            push_value(js, field.value.front());
        return;
    }
    js_newarray(js);
    for (size_t i = 0; i < field.value.size(); ++i) {
        push_value(js, field.value[i]);
        js_setindex(js, -2, static_cast<int>(i));
    }
}

void get_text(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    push_text(js, field.value.empty() ? std::string() : field.value.front());
}

void set_value(js_State* js)
{
    SCRIPT_NODE& node = node_of(js);
    read_texts(js, 1);
    SCRIPT_HOST& host = host_of(js);
    for (const size_t index : node.fields)
        host.set_value(index, host.texts);
    js_pushundefined(js);
}

void get_default(js_State* js)
{
    const std::vector<std::string>& value = field_of(js).default_value;
    push_text(js, value.empty() ? std::string() : value.front());
}

void set_default(js_State* js)
{
    SCRIPT_NODE& node = node_of(js);
    read_texts(js, 1);
    SCRIPT_HOST& host = host_of(js);
    for (const size_t index : node.fields)
        host.change(index).default_value = host.texts;
    js_pushundefined(js);
}

uint8_t flag_of(js_State* js)
{
    return *static_cast<const uint8_t*>(js_currentfunctiondata(js));
}

void put_flag(js_State* js, uint8_t flag, bool on)
{
    SCRIPT_HOST& host = host_of(js);
    for (const size_t index : node_of(js).fields) {
        const bool read_only = flag == SCRIPT_READ_ONLY;
        const bool told = read_only || flag == SCRIPT_REQUIRED;
        const SCRIPT_TRAIT trait = read_only ? SCRIPT_TRAIT_READ_ONLY : SCRIPT_TRAIT_REQUIRED;
        uint8_t& flags = (told ? host.change_trait(index, trait) : host.change(index)).flags;
        flags = static_cast<uint8_t>(on ? flags | flag : flags & ~flag);
    }
}

void get_flag(js_State* js)
{
    js_pushboolean(js, (field_of(js).flags & flag_of(js)) != 0);
}

void set_flag(js_State* js)
{
    put_flag(js, flag_of(js), js_toboolean(js, 1) != 0);
    js_pushundefined(js);
}

void get_display(js_State* js)
{
    js_pushnumber(js, static_cast<int>(field_of(js).display));
}

void put_display(js_State* js, int display)
{
    const bool known = display >= 0 && display < static_cast<int>(SCRIPT_DISPLAY::COUNT);
    for (const size_t index : node_of(js).fields)
        if (known)
            host_of(js).change_trait(index, SCRIPT_TRAIT_DISPLAY).display = static_cast<SCRIPT_DISPLAY>(display);
    js_pushundefined(js);
}

void set_display(js_State* js)
{
    put_display(js, js_tointeger(js, 1));
}

void get_hidden(js_State* js)
{
    js_pushboolean(js, field_of(js).display == SCRIPT_DISPLAY::HIDDEN);
}

void set_hidden(js_State* js)
{
    put_display(js, js_toboolean(js, 1));
}

void get_char_limit(js_State* js)
{
    js_pushnumber(js, field_of(js).char_limit);
}

void set_char_limit(js_State* js)
{
    const int limit = js_tointeger(js, 1);
    for (const size_t index : node_of(js).fields)
        host_of(js).change(index).char_limit = limit;
    js_pushundefined(js);
}

void get_page(js_State* js)
{
    js_pushnumber(js, field_of(js).page);
}

void get_rect(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    js_newarray(js);
    for (int i = 0; i < 4; ++i) {
        js_pushnumber(js, field.rect[static_cast<size_t>(i)]);
        js_setindex(js, -2, i);
    }
}

constexpr size_t COLORS[] = {SCRIPT_TEXT_COLOR, SCRIPT_FILL_COLOR, SCRIPT_STROKE_COLOR};

void get_color(js_State* js)
{
    push_color(js, field_of(js).colors[*static_cast<const size_t*>(js_currentfunctiondata(js))]);
}

// Numbers only, as many as the name of the space asks for: other colours are transparent.
void put_color(js_State* js)
{
    static constexpr std::pair<const char*, size_t> SPACES[] = {{"G", 1}, {"RGB", 3}, {"CMYK", 4}};
    SCRIPT_HOST& host = host_of(js);
    read_texts(js, 1);
    host.arguments.clear();
    for (const std::string& text : host.texts)
        host.arguments.push_back({text});
    const auto has_space = [&host](const auto& space) {
        return !host.texts.empty() && host.texts[0] == space.first && host.texts.size() == space.second + 1;
    };
    const bool known = std::any_of(std::begin(SPACES), std::end(SPACES), has_space);
    for (const size_t index : node_of(js).fields) {
        std::vector<double>& color = host.change(index).colors[*static_cast<const size_t*>(js_currentfunctiondata(js))];
        color.clear();
        for (size_t i = 1; known && i < host.arguments.size(); ++i)
            color.push_back(host.arguments[i].number());
    }
    js_pushundefined(js);
}

void set_text_color(js_State* js)
{
    read_texts(js, 1);
    SCRIPT_HOST& host = host_of(js);
    const std::vector<std::string>& color = host.texts;
    // Red text of the event's own field is told to whoever draws it.
    const bool red = color.size() == 4 && color[0] == "RGB" && color[1] == "1" && color[2] == "0" && color[3] == "0";
    if (node_of(js).name == host.event.target)
        host.event.color = red ? EVENT_COLOR::RED : EVENT_COLOR::BLACK;
    put_color(js);
}

void keep_as_it_is(js_State* js)
{
    js_pushundefined(js);
}

void get_item_count(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    js_pushnumber(js, is_choice(field) ? static_cast<double>(field.items.size()) : 0);
}

// Counts items from 0; without it, -1. To be read before the items are looked at: the argument's own functions may change them.
int index_at(js_State* js, int argument)
{
    return js_isdefined(js, argument) ? js_tointeger(js, argument) : -1;
}

// -1 and what is beyond the end are the last of the items, of which there is one at least.
size_t item_index(int index, size_t count)
{
    return index < 0 || static_cast<size_t>(index) >= count ? count - 1 : static_cast<size_t>(index);
}

// getItemAt(index, whether the value is wanted and not what is shown)
void get_item(js_State* js)
{
    const int index = index_at(js, 1);
    const bool shown = js_isdefined(js, 2) && !js_toboolean(js, 2);
    const SCRIPT_FIELD& field = field_of(js);
    if (field.items.empty() || index >= static_cast<int>(field.items.size()))
        return js_pushundefined(js);
    const SCRIPT_ITEM& item = field.items[item_index(index, field.items.size())];
    push_text(js, shown ? item.shown : item.value);
}

void clear_items(js_State* js)
{
    for (const size_t index : node_of(js).fields)
        if (is_choice(host_of(js).document.fields[index]))
            host_of(js).change_trait(index, SCRIPT_TRAIT_ITEMS).items.clear();
    js_pushundefined(js);
}

// setItems([text or [shown, value]...])
void set_items(js_State* js)
{
    SCRIPT_HOST& host = host_of(js);
    const SCRIPT_NODE& node = node_of(js);
    clear_items(js);
    const int count = js_isarray(js, 1) ? js_getlength(js, 1) : 0;
    for (int i = 0; i < count; ++i) {
        js_getindex(js, 1, i);
        read_texts(js, -1);
        js_pop(js, 1);
        if (host.texts.empty())
            continue;
        for (const size_t index : node.fields)
            if (is_choice(host.document.fields[index]))
                host.change(index).items.push_back({host.texts.front(), host.texts.back()});
    }
    js_pushundefined(js);
}

// insertItemAt(shown, value, index)
void insert_item(js_State* js)
{
    SCRIPT_HOST& host = host_of(js);
    const SCRIPT_NODE& node = node_of(js);
    const char* const shown = text_at(js, 1);
    const char* const value = js_isdefined(js, 2) ? text_at(js, 2) : shown;
    const int at = js_isdefined(js, 3) ? js_tointeger(js, 3) : 0;
    for (const size_t index : node.fields) {
        if (!is_choice(host.document.fields[index]))
            continue;
        std::vector<SCRIPT_ITEM>& items = host.change_trait(index, SCRIPT_TRAIT_ITEMS).items;
        const bool last = at < 0 || static_cast<size_t>(at) > items.size();
        items.insert(last ? items.end() : items.begin() + at, SCRIPT_ITEM{shown, value});
    }
    js_pushundefined(js);
}

void delete_item(js_State* js)
{
    const int index = index_at(js, 1);
    const SCRIPT_FIELD& field = field_of(js);
    if (is_choice(field) && !field.items.empty()) {
        const size_t at = item_index(index, field.items.size());
        std::vector<SCRIPT_ITEM>& items =
            host_of(js).change_trait(node_of(js).fields.front(), SCRIPT_TRAIT_ITEMS).items;
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(at));
    }
    js_pushundefined(js);
}

bool is_chosen(const SCRIPT_FIELD& field, const SCRIPT_ITEM& item)
{
    const auto chosen = [&item](const std::string& text) { return text == item.value || text == item.shown; };
    return std::any_of(field.value.begin(), field.value.end(), chosen);
}

// The index of the chosen item, a list for several, -1 for none.
void get_indices(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    if (field.value.size() > 1)
        js_newarray(js);
    int count = 0;
    for (size_t i = 0; i < field.items.size(); ++i) {
        if (!is_chosen(field, field.items[i]))
            continue;
        js_pushnumber(js, static_cast<double>(i));
        if (field.value.size() <= 1)
            return;
        js_setindex(js, -2, count++);
    }
    if (field.value.size() <= 1)
        js_pushnumber(js, -1);
}

void set_indices(js_State* js)
{
    SCRIPT_HOST& host = host_of(js);
    const SCRIPT_FIELD& field = field_of(js);
    read_texts(js, 1);
    host.arguments.clear();
    for (const std::string& text : host.texts)
        host.arguments.push_back({text});
    host.texts.clear();
    for (const SCRIPT_VALUE& argument : host.arguments) {
        const double index = argument.number();
        if (index >= 0 && index < static_cast<double>(field.items.size()))
            host.texts.push_back(field.items[static_cast<size_t>(index)].value);
    }
    host.set_value(node_of(js).fields.front(), host.texts);
    js_pushundefined(js);
}

void get_export_values(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    js_newarray(js);
    for (size_t i = 0; i < field.items.size(); ++i) {
        push_text(js, field.items[i].value);
        js_setindex(js, -2, static_cast<int>(i));
    }
}

// isBoxChecked(index of the widget)
void is_box_checked(js_State* js)
{
    const SCRIPT_FIELD& field = field_of(js);
    const int index = js_tointeger(js, 1);
    const bool known = is_switch(field) && index >= 0 && static_cast<size_t>(index) < field.items.size();
    js_pushboolean(js, known && is_chosen(field, field.items[static_cast<size_t>(index)]));
}

// checkThisBox(index of the widget, whether it is to be on)
void check_box(js_State* js)
{
    SCRIPT_HOST& host = host_of(js);
    const SCRIPT_FIELD& field = field_of(js);
    const int index = js_tointeger(js, 1);
    const bool on = !js_isdefined(js, 2) || js_toboolean(js, 2);
    js_pushundefined(js);
    if (!is_switch(field) || index < 0 || static_cast<size_t>(index) >= field.items.size())
        return;
    const SCRIPT_ITEM& item = field.items[static_cast<size_t>(index)];
    if (on)
        host.set_value(node_of(js).fields.front(), {item.value});
    else if (is_chosen(field, item))
        host.set_value(node_of(js).fields.front(), {"Off"});
}

void get_array(js_State* js)
{
    const SCRIPT_NODE& node = node_of(js);
    js_newarray(js);
    for (size_t i = 0; i < node.fields.size(); ++i) {
        push_field(js, *host_of(js).node(host_of(js).document.fields[node.fields[i]].name));
        js_setindex(js, -2, static_cast<int>(i));
    }
}

void define_flags(js_State* js)
{
    static constexpr struct {
        const char* name;
        uint8_t flag;
    } FLAGS[] = {{"readonly", SCRIPT_READ_ONLY},
                 {"required", SCRIPT_REQUIRED},
                 {"multiline", SCRIPT_MULTILINE},
                 {"comb", SCRIPT_COMB}};
    for (const auto& each : FLAGS)
        define_property(js, each.name, get_flag, set_flag, const_cast<uint8_t*>(&each.flag));
}

}  // namespace

void push_field(js_State* js, SCRIPT_NODE& node)
{
    js_getregistry(js, FIELD);
    js_newuserdata(js, FIELD, &node, nullptr);
}

void define_fields(js_State* js)
{
    js_newobject(js);
    define_flags(js);
    define_property(js, "name", get_name, nullptr);
    define_property(js, "type", get_type, nullptr);
    define_property(js, "value", get_value, set_value);
    define_property(js, "valueAsString", get_text, nullptr);
    define_property(js, "defaultValue", get_default, set_default);
    define_property(js, "display", get_display, set_display);
    define_property(js, "hidden", get_hidden, set_hidden);
    define_property(js, "charLimit", get_char_limit, set_char_limit);
    define_property(js, "page", get_page, nullptr);
    define_property(js, "rect", get_rect, keep_as_it_is);
    static constexpr const char* COLOR_NAMES[] = {"textColor", "fillColor", "strokeColor"};
    for (const size_t& color : COLORS)
        define_property(js, COLOR_NAMES[color], get_color, color == SCRIPT_TEXT_COLOR ? set_text_color : put_color,
                        const_cast<size_t*>(&color));
    define_property(js, "numItems", get_item_count, nullptr);
    define_property(js, "currentValueIndices", get_indices, set_indices);
    define_property(js, "exportValues", get_export_values, nullptr);
    define_function(js, "getItemAt", get_item);
    define_function(js, "setItems", set_items);
    define_function(js, "clearItems", clear_items);
    define_function(js, "insertItemAt", insert_item);
    define_function(js, "deleteItemAt", delete_item);
    define_function(js, "isBoxChecked", is_box_checked);
    define_function(js, "checkThisBox", check_box);
    define_function(js, "getArray", get_array);
    define_function(js, "setFocus", keep_as_it_is);
    js_setregistry(js, FIELD);
}
