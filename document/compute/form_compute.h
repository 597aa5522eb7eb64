// What a form computes: what values its scripts take, what they make of them, and how they are shown.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "document/compute/field_sandbox.h"
#include "document/compute/field_scripts.h"
#include "document/compute/script_fields.h"
#include "file/status.h"

class CPDFField;

// A value as its field shows it.
struct PDF_SHOWN_TEXT {
    std::string text;
    bool red = false;
};

class CPDFFormCompute : private CPDFFieldValues {
public:
    // Scripts ask `fields` for others. What scripts take counts against `budget`, borrowed: nothing runs when it is used up,
    // which whoever began the operation is to tell.
    CPDFFormCompute(PDF_SCRIPT_FIELDS fields, CPDFReadBudget& budget)
        : m_fields(std::move(fields)), m_budget(budget), m_scripts(budget)
    {
    }

    // From now on scripts that are no well-known calls run, too.
    void use_sandbox(PDF_SANDBOX_DOCUMENT document, const SCRIPT_LIMITS& limits)
    {
        m_sandbox.emplace(std::move(document), limits);
    }
    // Null where those do not run.
    CPDFFieldSandbox* sandbox() { return m_sandbox ? &*m_sandbox : nullptr; }

    // The field's value as its scripts see it.
    std::string value_of(const CPDFField& field) const { return script_value_of(field, m_fields); }

    // Asks the field's scripts whether it takes `text`: those of keystrokes as when the value is committed, then those that
    // validate. They may change it. The refusal, in the script's own words, ends a sentence about the field. An empty text is
    // always taken.
    CPDFStatus commit(const CPDFField& field, std::string& text);
    // Those that validate alone.
    CPDFStatus validate(const CPDFField& field, std::string& text);

    // The value that the field calculates; nothing when it calculates none. `text` is the one it has.
    std::optional<std::string> calculate(const CPDFField& field, const std::string& text);

    // Whether the field has scripts that format.
    bool formats(const CPDFField& field) { return !scripts(field, EVENT_FORMAT).empty(); }
    // What its scripts that format, else those of keystrokes, say in words, see format_words; empty where there are none, or
    // they are no well-known calls.
    std::string words_of_format(const CPDFField& field);
    // What the field shows of `text`; nothing when that is `text` itself.
    std::optional<PDF_SHOWN_TEXT> format(const CPDFField& field, const std::string& text);

    // How many scripts should have run so far and did not, since they are no well-known calls.
    size_t skipped() const { return m_skipped.size(); }

private:
    const std::vector<const PDF_FIELD_SCRIPT*>& scripts(const CPDFField& field, PDF_SCRIPT_EVENT event);
    bool run(const CPDFField& field, PDF_SCRIPT_EVENT event, FIELD_EVENT& at);
    CPDFStatus check(const CPDFField& field, PDF_SCRIPT_EVENT event, std::string& text);
    void append_values(const std::string& name, std::vector<std::string>& out) const override;

    PDF_SCRIPT_FIELDS m_fields;
    CPDFReadBudget& m_budget;  // borrowed
    CPDFFieldScripts m_scripts;
    std::optional<CPDFFieldSandbox> m_sandbox;
    std::set<std::pair<uint32_t, int>> m_skipped;  // object number of the field, and the event
};
