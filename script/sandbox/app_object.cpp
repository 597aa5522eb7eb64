// The viewer and its console, constants, and what viewers have that is not to be had.
#include "script/sandbox/host.h"

namespace {

// alert(text) or alert({cMsg: text})
void alert(js_State* js)
{
    if (js_isobject(js, 1) && js_hasproperty(js, 1, "cMsg"))
        js_replace(js, 1);  // hasproperty leaves it on the stack
    read_texts(js, 1);
    SCRIPT_HOST& host = host_of(js);
    host.alert(host.texts.empty() ? std::string() : host.texts.front());
    js_pushnumber(js, 1);
}

void print_line(js_State* js)
{
    read_texts(js, 1);
    SCRIPT_HOST& host = host_of(js);
    host.print(host.texts.empty() ? std::string() : host.texts.front());
    js_pushundefined(js);
}

void nothing(js_State* js)
{
    js_pushundefined(js);
}

void missing(js_State* js)
{
    js_typeerror(js, "%s is not available", static_cast<const char*>(js_currentfunctiondata(js)));
}

void set_text(js_State* js, const char* name, const char* text)
{
    js_pushstring(js, text);
    js_setproperty(js, -2, name);
}

constexpr const char* CONSTANTS = R"(
var color = {transparent: ["T"], black: ["G", 0], white: ["G", 1], red: ["RGB", 1, 0, 0], green: ["RGB", 0, 1, 0],
    blue: ["RGB", 0, 0, 1], cyan: ["CMYK", 1, 0, 0, 0], magenta: ["CMYK", 0, 1, 0, 0], yellow: ["CMYK", 0, 0, 1, 0],
    dkGray: ["G", 0.25], gray: ["G", 0.5], ltGray: ["G", 0.75]};
color.equal = function (a, b) { return String(a) == String(b); };
color.convert = function (a) { return a; };
var display = {visible: 0, hidden: 1, noPrint: 2, noView: 3};
var border = {s: "solid", b: "beveled", d: "dashed", i: "inset", u: "underline"};
var style = {ch: "check", cr: "cross", di: "diamond", ci: "circle", st: "star", sq: "square"};
var global = {setPersistent: function () {}, subscribe: function () {}};
)";

// Whose function it is, "" for the document, and its name.
constexpr const char* MISSING[][2] = {{"", "addField"},
                                      {"", "addAnnot"},
                                      {"", "closeDoc"},
                                      {"", "deletePages"},
                                      {"", "exportAsFDF"},
                                      {"", "exportAsXFDF"},
                                      {"", "exportDataObject"},
                                      {"", "flattenPages"},
                                      {"", "getAnnots"},
                                      {"", "getURL"},
                                      {"", "gotoNamedDest"},
                                      {"", "importAnFDF"},
                                      {"", "importAnXFDF"},
                                      {"", "importDataObject"},
                                      {"", "importTextData"},
                                      {"", "insertPages"},
                                      {"", "mailDoc"},
                                      {"", "mailForm"},
                                      {"", "openDataObject"},
                                      {"", "print"},
                                      {"", "removeField"},
                                      {"", "saveAs"},
                                      {"", "spawnPageFromTemplate"},
                                      {"", "getTemplate"},
                                      {"", "submitForm"},
                                      {"", "addScript"},
                                      {"", "setAction"},
                                      {"app", "browseForDoc"},
                                      {"app", "execDialog"},
                                      {"app", "getPath"},
                                      {"app", "mailGetAddrs"},
                                      {"app", "mailMsg"},
                                      {"app", "newDoc"},
                                      {"app", "openDoc"},
                                      {"app", "openFDF"},
                                      {"app", "trustedFunction"},
                                      {"app", "addMenuItem"},
                                      {"app", "addToolButton"},
                                      {"util", "readFileIntoStream"},
                                      {"util", "stringFromStream"},
                                      {"util", "streamFromString"},
                                      {"util", "iconStreamFromIcon"},
                                      {"util", "crackURL"}};

}  // namespace

void define_app(js_State* js)
{
    js_newobject(js);
    define_function(js, "alert", alert);
    for (const char* name : {"response", "popUpMenu", "popUpMenuEx", "launchURL", "execMenuItem", "beep", "setTimeOut",
                             "clearTimeOut", "setInterval", "clearInterval", "goBack", "goForward"})
        define_function(js, name, nothing);
    js_pushnumber(js, 11);
    js_setproperty(js, -2, "viewerVersion");
    js_pushnumber(js, 11);
    js_setproperty(js, -2, "formsVersion");
    set_text(js, "viewerType", "Formwork");
    set_text(js, "viewerVariation", "Full");
    set_text(js, "platform", "UNIX");
    set_text(js, "language", "ENU");
    js_setglobal(js, "app");
    js_newobject(js);
    define_function(js, "println", print_line);
    for (const char* name : {"show", "hide", "clear"})
        define_function(js, name, nothing);
    js_setglobal(js, "console");
}

void define_constants(js_State* js)
{
    js_loadstring(js, "constants", CONSTANTS);
    js_pushundefined(js);
    js_call(js, 0);
    js_pop(js, 1);
}

void define_missing(js_State* js)
{
    for (const auto& [owner, name] : MISSING) {
        if (*owner != 0)
            js_getglobal(js, owner);
        else
            js_pushglobal(js);
        define_function(js, name, missing, const_cast<char*>(name));
        js_pop(js, 1);
    }
}
