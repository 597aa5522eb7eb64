// The well-known functions, for scripts: the same that serve known calls.
#include <csetjmp>

#include "script/sandbox/host.h"

namespace {

// What one call works with. Arguments and results may have functions of the script run, which may call such functions
// themselves, so that each call has its own.
struct CALL {
    SCRIPT_LIST arguments;
    SCRIPT_VALUE result;
};

SCRIPT_LIST& new_list(SCRIPT_VALUE& value)
{
    value.held = SCRIPT_LIST();
    return std::get<SCRIPT_LIST>(value.held);
}

// Reads a value that is no list into the last place of `list`.
void read_plain(js_State* js, int index, SCRIPT_LIST& list)
{
    if (js_isboolean(js, index))
        list.back().held = js_toboolean(js, index) != 0;
    else if (js_isnumber(js, index) || js_isdateobject(js, index))
        list.back().held = js_tonumber(js, index);
    else if (js_iscoercible(js, index))
        list.back().held = std::string(js_tostring(js, index));
}

void read_arguments(js_State* js, SCRIPT_LIST& arguments)
{
    const int count = js_gettop(js) - 1;
    for (int i = 1; i <= count; ++i) {
        arguments.emplace_back();
        if (!js_isarray(js, i)) {
            read_plain(js, i, arguments);
            continue;
        }
        SCRIPT_LIST& list = new_list(arguments.back());
        const int length = js_getlength(js, i);
        for (int k = 0; k < length; ++k) {
            js_getindex(js, i, k);
            list.emplace_back();
            read_plain(js, -1, list);
            js_pop(js, 1);
        }
    }
}

void push_date(js_State* js, const std::string& text)
{
    js_getglobal(js, "Date");
    push_text(js, text);
    js_construct(js, 1);
}

void push_plain(js_State* js, const SCRIPT_VALUE& value)
{
    if (const bool* flag = std::get_if<bool>(&value.held))
        js_pushboolean(js, *flag);
    else if (const double* number = std::get_if<double>(&value.held))
        js_pushnumber(js, *number);
    else if (const std::string* text = std::get_if<std::string>(&value.held))
        push_text(js, *text);
    else
        js_pushnull(js);
}

void push_result(js_State* js, const FORM_FUNCTION& function, const SCRIPT_VALUE& result)
{
    const bool date = function.name == "AFParseDateEx" || function.name == "util.scand";
    if (date && !result.is_nothing())
        return push_date(js, std::get<std::string>(result.held));
    const SCRIPT_LIST* const list = result.list();
    if (!list)
        return push_plain(js, result);
    js_newarray(js);
    for (size_t i = 0; i < list->size(); ++i) {
        push_plain(js, (*list)[i]);
        js_setindex(js, -2, static_cast<int>(i));
    }
}

// What needs destructors is done before the interpreter is called again.
void run(SCRIPT_HOST& host, const FORM_FUNCTION& function, CALL& call)
{
    host.before = host.event;
    host.event.message.clear();
    FORM_CALL form_call{call.arguments, host.event, host};
    call.result = function.run(form_call);
    if (!host.before.message.empty())
        host.event.message = host.before.message;
}

void call_function(js_State* js)
{
    const auto& function = *static_cast<const FORM_FUNCTION*>(js_currentfunctiondata(js));
    CALL* const call = new CALL;  // errors jump over destructors
    if (setjmp(*static_cast<jmp_buf*>(js_savetry(js))) != 0) {
        delete call;
        js_throw(js);
    }
    read_arguments(js, call->arguments);
    read_event(js);
    run(host_of(js), function, *call);
    write_event(js);
    push_result(js, function, call->result);
    js_endtry(js);
    delete call;
}

}  // namespace

void define_form_functions(js_State* js)
{
    constexpr std::string_view UTIL = "util.";
    js_newobject(js);
    js_pushglobal(js);
    for (const FORM_FUNCTION& function : form_functions()) {
        void* const data = const_cast<FORM_FUNCTION*>(&function);
        const char* const name = function.name.data();
        if (function.name.starts_with(UTIL)) {
            js_rot2(js);
            define_function(js, name + UTIL.size(), call_function, data);
            js_rot2(js);
        } else {
            define_function(js, name, call_function, data);
        }
    }
    js_pop(js, 1);
    js_setglobal(js, "util");
}
