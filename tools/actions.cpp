#include <CLI/CLI.hpp>
#include <memory>

#include "document/action_list.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "formats/export/json_text.h"
#include "forms/field.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

struct ACTIONS_ARGUMENTS {
    COMMAND_INPUT input;
    std::vector<COMMAND_WORD> names;
    bool json = false;
};

void append_text_entry(std::string& out, const char* key, const std::string& text)
{
    out.append(",\"").append(key).append("\":");
    append_json_text(out, text);
}

// Appends a JSON array of names.
template <typename List, typename NameOf>
void append_names(std::string& out, const List& list, NameOf&& name_of)
{
    out += '[';
    for (const auto& item : list) {
        if (&item != &list.front())
            out += ',';
        append_json_text(out, name_of(item));
    }
    out += ']';
}

std::string json_of(const PDF_LISTED_ACTION& action, CPDFNumberedNames& names)
{
    std::string out = "{\"name\":";
    if (action.field)
        append_json_text(out, names.name_of(*action.field));
    else
        out += "null";
    out += ",\"page\":" + (action.page ? std::to_string(action.page) : "null");
    out += ",\"object\":" + (action.object ? std::to_string(action.object) : "null");
    append_text_entry(out, "event", action.event);
    append_text_entry(out, "type", action.type);
    append_text_entry(out, "script", action.script);
    append_text_entry(out, "target", action.target);
    out += ",\"flags\":" + std::to_string(action.flags) + ",\"fields\":";
    append_names(out, action.fields, [](const std::string& name) { return name; });
    return out + '}';
}

// `text` with every line behind an indent.
std::string indented(const std::string& text)
{
    std::string lines;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r')
            lines += text[i];
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            lines += '\n';
    }
    std::string out = "    ";
    for (const char c : printable_lines(lines)) {
        out += c;
        if (c == '\n')
            out += "    ";
    }
    while (!out.empty() && (out.back() == ' ' || out.back() == '\n'))
        out.pop_back();
    return out + "\n";
}

std::string text_of(const PDF_LISTED_ACTION& action, CPDFNumberedNames& names)
{
    std::string out = action.field  ? names.name_of(*action.field)
                      : action.page ? "page " + std::to_string(action.page)
                                    : "document";
    out += ": " + action.event + ": " + (action.type.empty() ? "unknown action" : action.type);
    if (!action.target.empty())
        out += " " + action.target;
    for (const std::string& name : action.fields)
        out += (&name == &action.fields.front() ? ": " : ", ") + name;
    return printable(out) + "\n" + (action.script.empty() ? "" : indented(action.script));
}

void put_order(const std::vector<CPDFField*>& order, CPDFNumberedNames& names, bool json)
{
    std::string out;
    const auto name_of = [&names](const CPDFField* field) { return names.name_of(*field); };
    if (json) {
        append_names(out, order, name_of);
        put("],\n\"calculationOrder\":" + out + "}\n");
        return;
    }
    for (const CPDFField* field : order)
        out += (out.empty() ? "calculation order: " : ", ") + name_of(field);
    put(out.empty() ? "" : printable(out) + "\n");
}

int put_actions(const ACTIONS_ARGUMENTS& arguments)
{
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    std::vector<CPDFField*> fields;
    if (!find_fields(document, arguments.input, arguments.names, fields))
        return COMMAND_REFUSED;
    if (fields.empty())
        fields.push_back(nullptr);
    bool first = true;
    CPDFNumberedNames names(document.form());
    const auto put_one = [&](const PDF_LISTED_ACTION& action) {
        put(arguments.json ? (first ? "\n" : ",\n") + json_of(action, names) : text_of(action, names));
        first = false;
    };
    put(arguments.json ? "{\"actions\":[" : "");
    CPDFStatus status;
    for (size_t i = 0; i < fields.size() && status.ok(); ++i)
        status = list_actions(document, fields[i], put_one);
    if (first && status.ok() && !arguments.json)
        put(printable(arguments.input.path.text) + " has no actions there\n");
    put_order(arguments.names.empty() ? calculation_order(document) : std::vector<CPDFField*>(), names, arguments.json);
    return end_with(status, arguments.input.path.text);
}

}  // namespace

void add_actions_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<ACTIONS_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("actions", "Shows what happens at which event: scripts, submits, links");
    add_input(verb, arguments->input);
    verb.add_option("NAME", arguments->names,
                    "full names of fields; without one also the document, its pages and bookmarks")
        ->option_text("...");
    verb.add_flag("--json", arguments->json, "as JSON");
    verb.footer("Each action stands as NAME: EVENT: TYPE with its script, if any, in the lines\n"
                "below. The order in which fields are calculated comes last.");
    verb.callback([arguments, &action] { action = [arguments] { return put_actions(*arguments); }; });
}
