// A form in the sandbox of its other scripts, kept in step with the fields.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "document/compute/field_scripts.h"
#include "script/sandbox/sandbox.h"

class CPDFField;

class CPDFFieldSandbox {
public:
    // `snapshot` describes the form as it is now.
    CPDFFieldSandbox(std::function<SCRIPT_DOCUMENT()> snapshot, const SCRIPT_LIMITS& limits)
        : m_snapshot(std::move(snapshot)), m_sandbox(limits)
    {
    }

    // Runs a script of `field`. False when it did not come to its end; a fault is noted then.
    bool run(const CPDFField& field, PDF_SCRIPT_EVENT event, const std::string& text, FIELD_EVENT& at);

    // The field has another value than at the last run.
    void value_changed(const CPDFField& field) { m_changed.push_back(&field); }
    // The fields have the values again that they were opened with.
    void renew();

    // Hand over what scripts did since the last call: values for other fields, and sentences on scripts that did not run.
    std::vector<SCRIPT_CHANGE> take_changes() { return std::exchange(m_changes, {}); }
    std::vector<std::string> take_faults() { return std::exchange(m_faults, {}); }

    // Lines that scripts printed.
    const std::vector<std::string>& console() const { return m_console; }

private:
    std::function<SCRIPT_DOCUMENT()> m_snapshot;
    CPDFScriptSandbox m_sandbox;
    std::vector<const CPDFField*> m_changed;  // borrowed from the form
    std::vector<SCRIPT_CHANGE> m_changes;
    std::vector<std::string> m_faults;
    std::vector<std::string> m_console;
};

// The texts of a field's value, several of a list only.
std::vector<std::string> script_values_of(const CPDFField& field);
