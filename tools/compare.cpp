#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>

#include "core/limits.h"
#include "document/document.h"
#include "document/lookup/export_value.h"
#include "document/lookup/field_text.h"
#include "document/xfa/data_value.h"
#include "formats/export/json_text.h"
#include "forms/field_walk.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

// As other programs that compare files end.
enum COMPARE_EXIT : int { COMPARE_SAME = 0, COMPARE_DIFFERENT = 1, COMPARE_TROUBLE = 2 };

struct COMPARE_ARGUMENTS {
    COMMAND_INPUT first;
    COMMAND_INPUT second;
    bool json = false;
};

// The values of a form by name; of fields with one name in their order.
using FORM_VALUES = std::map<std::string, std::vector<PDF_VALUE_TEXT>>;

struct DIFFERENCE {
    const std::string* name;      // borrowed
    const PDF_VALUE_TEXT* first;  // borrowed; null where there is no such field
    const PDF_VALUE_TEXT* second;
};

bool read_values(const COMMAND_INPUT& input, FORM_VALUES& out)
{
    CPDFDocument document;
    if (!open_document(document, input))
        return false;
    CPDFExportValues values(document.xref());
    size_t names = 0;
    for_each_field(document.form(), [&](const CPDFField& field) {
        if (!CPDFExportValues::is_exported(field) || names > LIMIT_EXPORT)
            return;
        const std::string name = full_name(field);
        names += name.size();
        out[name].push_back(values.value_of(field));
    });
    note_adopted(document, input);
    std::vector<PDF_XFA_VALUE> data;
    const CPDFStatus status = document.has_only_xfa() ? document.xfa_values(data) : CPDFStatus();
    for (const PDF_XFA_VALUE& at : data)
        out[at.path].push_back({true, false, at.value, {}});
    if (status.ok() && !document.read_too_much() && !values.over_limit() && names <= LIMIT_EXPORT)
        return true;
    complain(input.path.text, status.ok() ? "the values of the form are larger than what is supported" : status.text);
    return false;
}

// No value is an empty one to whoever looks at it; a button that has none is off.
bool is_same(const PDF_VALUE_TEXT& a, const PDF_VALUE_TEXT& b)
{
    const auto shown = [](const PDF_VALUE_TEXT& value) {
        std::vector<std::string> texts = value.is_list ? value.items : std::vector<std::string>{value.text};
        std::sort(texts.begin(), texts.end());
        return texts == std::vector<std::string>{"Off"} ? std::vector<std::string>{""} : texts;
    };
    return shown(a) == shown(b);
}

std::vector<DIFFERENCE> differences(const FORM_VALUES& first, const FORM_VALUES& second)
{
    std::vector<DIFFERENCE> found;
    const auto value_at = [](const FORM_VALUES& values, const std::string& name, size_t i) {
        const auto at = values.find(name);
        return at != values.end() && i < at->second.size() ? &at->second[i] : nullptr;
    };
    for (const auto& [name, values] : first) {
        for (size_t i = 0; i < values.size(); ++i) {
            const PDF_VALUE_TEXT* other = value_at(second, name, i);
            if (!other || !is_same(values[i], *other))
                found.push_back({&name, &values[i], other});
        }
    }
    for (const auto& [name, values] : second) {
        for (size_t i = 0; i < values.size(); ++i) {
            if (!value_at(first, name, i))
                found.push_back({&name, nullptr, &values[i]});
        }
    }
    return found;
}

const char* place_of(const DIFFERENCE& at)
{
    return !at.second ? "first" : !at.first ? "second" : "both";
}

void put_json(const std::vector<DIFFERENCE>& found)
{
    const PDF_VALUE_TEXT none;
    std::string out = "[";
    for (const DIFFERENCE& at : found) {
        out += &at == &found.front() ? "\n{\"name\":" : ",\n{\"name\":";
        append_json_text(out, *at.name);
        out.append(",\"in\":\"").append(place_of(at)).append("\",\"first\":");
        append_json_value(out, at.first ? *at.first : none);
        out += ",\"second\":";
        append_json_value(out, at.second ? *at.second : none);
        out += '}';
    }
    put(out + (found.empty() ? "]\n" : "\n]\n"));
}

void put_table(const std::vector<DIFFERENCE>& found)
{
    constexpr int MOST_NAME = 40;
    int width = 4;
    for (const DIFFERENCE& at : found)
        width = std::max(width, std::min(columns_of(printable(*at.name)), MOST_NAME));
    const auto padded = [](const std::string& text, int columns) {
        return text + std::string(static_cast<size_t>(std::max(columns - columns_of(text), 0) + 2), ' ');
    };
    const auto value = [](const PDF_VALUE_TEXT* at) { return at ? '"' + printable(at->joined()) + '"' : ""; };
    for (const DIFFERENCE& at : found) {
        const std::string values = !at.second  ? value(at.first)
                                   : !at.first ? value(at.second)
                                               : value(at.first) + " -> " + value(at.second);
        const std::string what = at.first && at.second ? "differs" : std::string("only in ") + place_of(at);
        put(padded(what, 14) + padded(printable(*at.name), width) + values + "\n");
    }
}

int compare(const COMPARE_ARGUMENTS& arguments)
{
    FORM_VALUES first;
    FORM_VALUES second;
    COMMAND_INPUT other = arguments.second;
    if (other.password.text.empty())
        other.password = arguments.first.password;
    if (!read_values(arguments.first, first) || !read_values(other, second))
        return COMPARE_TROUBLE;
    const std::vector<DIFFERENCE> found = differences(first, second);
    (arguments.json ? put_json : put_table)(found);
    return put_done() != COMMAND_DONE ? COMPARE_TROUBLE : found.empty() ? COMPARE_SAME : COMPARE_DIFFERENT;
}

}  // namespace

void add_compare_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<COMPARE_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("compare", "Shows which fields of two files differ in their values");
    add_input(verb, arguments->first);
    verb.add_option("OTHER", arguments->second.path, "the other PDF file")->required()->option_text(" ");
    verb.add_option("--other-password", arguments->second.password, "password of the other file, where it differs")
        ->option_text("TEXT");
    verb.add_flag("--json", arguments->json, "as a JSON array, one object for each field that differs");
    verb.footer("Exits 0 when all values are the same, 1 when some differ or a field is in one\n"
                "file only, and 2 when a file can't be read. No value and an empty one are the\n"
                "same, and so are a button without a state and one that is off.");
    verb.callback([arguments, &action] { action = [arguments] { return compare(*arguments); }; });
}
