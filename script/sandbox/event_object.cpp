// The event that a script runs in. Scripts may put anything into its properties.
#include "script/sandbox/host.h"

namespace {

constexpr const char* EVENT = "event";

void set_text(js_State* js, const char* name, const std::string& text)
{
    push_text(js, text);
    js_defproperty(js, -2, name, 0);
}

void set_number(js_State* js, const char* name, double number)
{
    js_pushnumber(js, number);
    js_defproperty(js, -2, name, 0);
}

void set_flag(js_State* js, const char* name, int flag)
{
    js_pushboolean(js, flag);
    js_defproperty(js, -2, name, 0);
}

void set_field(js_State* js, const char* name, const std::string& field)
{
    SCRIPT_HOST& host = host_of(js);
    SCRIPT_NODE* const node = host.run.event_type == "Field" ? host.node(field) : nullptr;
    if (node)
        push_field(js, *node);
    else
        js_pushglobal(js);
    js_defproperty(js, -2, name, 0);
}

void read_text(js_State* js, const char* name, std::string& text)
{
    js_getproperty(js, -1, name);
    text = text_at(js, -1);
    js_pop(js, 1);
}

int read_number(js_State* js, const char* name)
{
    js_getproperty(js, -1, name);
    const int number = js_tointeger(js, -1);
    js_pop(js, 1);
    return number;
}

bool read_flag(js_State* js, const char* name)
{
    js_getproperty(js, -1, name);
    const bool flag = js_toboolean(js, -1) != 0;
    js_pop(js, 1);
    return flag;
}

}  // namespace

void define_event(js_State* js)
{
    const SCRIPT_HOST& host = host_of(js);
    js_newobject(js);
    set_text(js, "value", host.event.value);
    set_text(js, "change", host.event.change);
    set_text(js, "changeEx", host.event.change);
    set_flag(js, "rc", host.event.rc);
    set_flag(js, "willCommit", host.event.will_commit);
    set_flag(js, "fieldFull", 0);
    set_flag(js, "modifier", 0);
    set_flag(js, "shift", 0);
    set_number(js, "commitKey", host.event.will_commit ? 2 : 0);
    set_number(js, "selStart", host.event.sel_start);
    set_number(js, "selEnd", host.event.sel_end);
    set_text(js, "name", host.run.event_name);
    set_text(js, "type", host.run.event_type);
    set_text(js, "targetName", host.event.target);
    set_field(js, "target", host.event.target);
    set_field(js, "source", host.run.source.empty() ? host.event.target : host.run.source);
    js_copy(js, -1);
    js_setregistry(js, EVENT);
    js_setglobal(js, EVENT);
}

void read_event(js_State* js)
{
    FIELD_EVENT& event = host_of(js).event;
    js_getregistry(js, EVENT);
    read_text(js, "value", event.value);
    read_text(js, "change", event.change);
    event.rc = read_flag(js, "rc");
    event.will_commit = read_flag(js, "willCommit");
    event.sel_start = read_number(js, "selStart");
    event.sel_end = read_number(js, "selEnd");
    js_pop(js, 1);
}

void write_event(js_State* js)
{
    const SCRIPT_HOST& host = host_of(js);
    js_getregistry(js, EVENT);
    if (host.event.value != host.before.value)
        set_text(js, "value", host.event.value);
    if (host.event.change != host.before.change)
        set_text(js, "change", host.event.change);
    if (host.event.rc != host.before.rc)
        set_flag(js, "rc", host.event.rc);
    js_pop(js, 1);
}
