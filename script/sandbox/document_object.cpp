// The document, which is the global object of its scripts, too.
#include "script/sandbox/host.h"

namespace {

// In getField(name) a text with that name was made by the interpreter, which keeps it while the call lasts.
void get_field(js_State* js)
{
    SCRIPT_HOST& host = host_of(js);
    read_texts(js, 1);
    SCRIPT_NODE* const node = host.texts.empty() ? nullptr : host.node(host.texts.front());
    if (node)
        push_field(js, *node);
    else
        js_pushnull(js);
}

void get_field_name(js_State* js)
{
    const std::vector<SCRIPT_FIELD>& fields = host_of(js).document.fields;
    const int index = js_tointeger(js, 1);
    if (index < 0 || static_cast<size_t>(index) >= fields.size())
        js_pushnull(js);
    else
        push_text(js, fields[static_cast<size_t>(index)].name);
}

void reset_field(SCRIPT_HOST& host, size_t index)
{
    const SCRIPT_FIELD& field = host.document.fields[index];
    if (field.type == SCRIPT_FIELD_TYPE::BUTTON || field.type == SCRIPT_FIELD_TYPE::SIGNATURE)
        return;
    const bool is_switch = field.type == SCRIPT_FIELD_TYPE::CHECKBOX || field.type == SCRIPT_FIELD_TYPE::RADIO;
    host.set_value(index, field.default_value.empty() ? std::vector<std::string>{is_switch ? "Off" : ""}
                                                      : field.default_value);
}

// resetForm(names): all fields without names.
void reset_form(js_State* js)
{
    SCRIPT_HOST& host = host_of(js);
    if (js_iscoercible(js, 1)) {
        read_texts(js, 1);
        for (const std::string& name : host.texts)
            if (const SCRIPT_NODE* node = host.node(name))
                for (const size_t index : node->fields)
                    reset_field(host, index);
    } else {
        for (size_t i = 0; i < host.document.fields.size(); ++i)
            reset_field(host, i);
    }
    js_pushundefined(js);
}

// Calculations run when values have changed; a script need not ask.
void calculate_now(js_State* js)
{
    js_pushundefined(js);
}

void define_info(js_State* js)
{
    js_newobject(js);
    for (const SCRIPT_TEXT& entry : host_of(js).document.info) {
        push_text(js, entry.text);
        js_setproperty(js, -2, entry.name.c_str());
    }
    js_setproperty(js, -2, "info");
}

void set_number(js_State* js, const char* name, double number)
{
    js_pushnumber(js, number);
    js_setproperty(js, -2, name);
}

}  // namespace

void define_document(js_State* js)
{
    const SCRIPT_DOCUMENT& document = host_of(js).document;
    js_pushglobal(js);
    define_function(js, "getField", get_field);
    define_function(js, "getNthFieldName", get_field_name);
    define_function(js, "resetForm", reset_form);
    define_function(js, "calculateNow", calculate_now);
    define_info(js);
    set_number(js, "numFields", static_cast<double>(document.fields.size()));
    set_number(js, "numPages", document.pages);
    set_number(js, "pageNum", 0);
    for (const char* empty : {"path", "URL", "documentFileName"}) {
        js_pushliteral(js, "");
        js_setproperty(js, -2, empty);
    }
    for (const bool on : {false, true}) {
        js_pushboolean(js, on);
        js_setproperty(js, -2, on ? "calculate" : "external");
    }
    js_pop(js, 1);
}
