#include "tools/edit/field_pick.h"

#include <CLI/CLI.hpp>
#include <unordered_set>

#include "document/lookup/field_text.h"
#include "document/lookup/name_pattern.h"
#include "forms/field.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"

void add_field_pick(CLI::App& verb, FIELD_PICK& pick)
{
    verb.add_option("NAME", pick.names, "names of fields, parts of them or numbers; or patterns: 'line*.amount'")
        ->option_text("...");
    verb.add_flag("--all", pick.all, "all fields");
    verb.add_option(
            "--kind", pick.kind,
            "of --all and of patterns, only fields of this kind: text, check, radio, combo, list, push or signature")
        ->option_text("KIND");
}

CPDFStatus check_field_pick(const FIELD_PICK& pick)
{
    if (pick.all == !pick.names.empty())
        return wrong_usage("give either names of fields or --all");
    if (const std::string& kind = pick.kind.text; !kind.empty() && !field_kind(kind.c_str()))
        return wrong_usage(in_quotes(kind) + " is no kind of field");
    return {};
}

CPDFField* choose_field(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& name,
                        std::vector<CPDFStatus>& refusals, PDF_FIELD_WORDS words)
{
    CPDFStatus why;
    const bool is_known = document.field(name) != nullptr;
    CPDFField* field = find_field(document, input, name, why, words);
    if (!field)
        refusals.push_back(why);
    else if (!is_known)
        complain(input.path.text,
                 "note: " + in_quotes(name) + " is taken for the field " + in_quotes(full_name(*field)));
    return field;
}

std::vector<CPDFField*> choose_fields(CPDFDocument& document, const COMMAND_INPUT& input, const FIELD_PICK& pick,
                                      std::vector<CPDFStatus>& refusals)
{
    std::vector<CPDFField*> chosen;
    std::unordered_set<const CPDFField*> known;
    const auto choose = [&](CPDFField& field) {
        if (known.insert(&field).second)
            chosen.push_back(&field);
    };
    const auto choose_like = [&](const std::string& pattern) {
        bool any = false;
        for_each_field(document.form(), [&](CPDFField& field) {
            const PDF_FIELD_KIND& kind = field_kind(field);
            if (field.m_name.len <= 0 || kind.id == KIND_CONTAINER || !fits_pattern(full_name(field), pattern) ||
                (!pick.kind.text.empty() && pick.kind.text != kind.name))
                return;
            any = true;
            choose(field);
        });
        const std::string what = pick.kind.text.empty() ? "field" : "field of the kind " + pick.kind.text;
        if (!any && pick.all)
            refusals.push_back(CPDFStatus::failed(PDF_CODE::NO_FIELD, "the form has no " + what));
        else if (!any)
            refusals.push_back(
                CPDFStatus::failed(PDF_CODE::NO_FIELD, "no " + what + " has a name like " + in_quotes(pattern)));
    };
    if (pick.all)
        choose_like("*");
    for (const COMMAND_WORD& name : pick.names) {
        if (name.text.find('*') != std::string::npos && !document.field(name.text))
            choose_like(name.text);
        else if (CPDFField* field = choose_field(document, input, name.text, refusals))
            choose(*field);
    }
    return chosen;
}
