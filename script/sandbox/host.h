// What scripts work on. Errors of scripts jump over C++ destructors, so that functions which scripts call have no locals that
// need one while they call the interpreter: what they work with stands here.
#pragma once

#include <map>
#include <mujs.h>

#include "script/form_function.h"
#include "script/sandbox/message.h"

struct SCRIPT_HOST;

// A field, or a group of fields, that a script has asked for.
struct SCRIPT_NODE {
    std::string name;
    std::vector<size_t> fields;  // it, or those under it
    bool group = false;
};

struct SCRIPT_HOST : CPDFFieldValues {
    void load(SCRIPT_DOCUMENT&& loaded);
    void renew();

    // The node of that name, kept until the next load; null where there is none.
    SCRIPT_NODE* node(const std::string& name);
    void append_values(const std::string& name, std::vector<std::string>& out) const override;

    const SCRIPT_FIELD& field(const SCRIPT_NODE& at) const { return document.fields[at.fields.front()]; }
    // For changes: what it was comes back with renew.
    SCRIPT_FIELD& change(size_t index);
    void set_value(size_t index, std::vector<std::string> value);
    // The same for what is told of a field besides its value.
    SCRIPT_FIELD& change_trait(size_t index, SCRIPT_TRAIT trait);
    void take_change(const SCRIPT_CHANGE& change);
    // Puts into the answer what scripts made since the last one.
    void tell_traits();
    void alert(std::string text);
    void print(std::string line);

    js_State* js = nullptr;
    SCRIPT_DOCUMENT document;
    SCRIPT_RUN run;
    SCRIPT_ANSWER answer;
    FIELD_EVENT& event = answer.event;

    // What the function that runs works with.
    SCRIPT_LIST arguments;
    std::vector<std::string> texts;
    FIELD_EVENT before;

private:
    std::map<std::string, size_t> m_by_name;
    std::map<std::string, SCRIPT_NODE> m_nodes;
    std::map<size_t, SCRIPT_FIELD> m_originals;
    std::map<size_t, uint8_t> m_traits;  // SCRIPT_TRAIT, by field
    size_t m_printed = 0;
};

inline SCRIPT_HOST& host_of(js_State* js)
{
    return *static_cast<SCRIPT_HOST*>(js_getcontext(js));
}

// Well-known texts for null and undefined, which are empty, and everything else.
const char* text_at(js_State* js, int index);
// Leaves the texts of a list, or the one of anything else, in the host. Numbers are spelled as the language does.
void read_texts(js_State* js, int index);
void push_text(js_State* js, const std::string& text);
// A colour of so many components as scripts have it; none is transparent.
void push_color(js_State* js, const std::vector<double>& color);

// Put a function into the object on top of the stack, or an accessor; `data` as js_newcfunctionx has it.
void define_function(js_State* js, const char* name, js_CFunction function, void* data = nullptr);
void define_property(js_State* js, const char* name, js_CFunction get, js_CFunction set, void* data = nullptr);

// Make the families of objects in a new state.
void define_document(js_State* js);
void define_fields(js_State* js);
void define_app(js_State* js);
void define_form_functions(js_State* js);
void define_constants(js_State* js);
// Functions of viewers that are not to be had: whoever calls one gets an error that names it.
void define_missing(js_State* js);

// Pushes the object of a field or group.
void push_field(js_State* js, SCRIPT_NODE& node);

// The event object of the run, and back from it to the event of the host.
void define_event(js_State* js);
void read_event(js_State* js);
void write_event(js_State* js);
