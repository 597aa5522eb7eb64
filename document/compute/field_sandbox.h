// A form in the sandbox of its other scripts, kept in step with the fields.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "document/compute/document_scripts.h"
#include "document/compute/field_scripts.h"
#include "document/compute/script_fields.h"
#include "script/sandbox/sandbox.h"

class CPDFField;

// What the sandbox asks its document.
struct PDF_SANDBOX_DOCUMENT {
    std::function<SCRIPT_DOCUMENT()> snapshot;  // the form as it is now
    std::function<const std::vector<PDF_DOCUMENT_SCRIPT>&()> scripts;
    PDF_SCRIPT_FIELDS fields;
};

class CPDFFieldSandbox {
public:
    CPDFFieldSandbox(PDF_SANDBOX_DOCUMENT document, const SCRIPT_LIMITS& limits)
        : m_document(std::move(document)), m_sandbox(limits)
    {
    }

    // Runs a script of `field`, the first one behind those of the document. False when it did not come to its end. Faults are
    // noted. A run that somebody else's hand ended is made once more.
    bool run(const CPDFField& field, PDF_SCRIPT_EVENT event, const std::string& text, FIELD_EVENT& at);

    // The field has another value than at the last run. It is newer than what scripts gave it before.
    void value_changed(const CPDFField& field);
    // Fields have got traits that they did not have when the document was opened.
    void traits_stored() { m_traits_stored = true; }
    // Scripts see this value of the field until assumptions are dropped: it is to be set together with others.
    void assume(const CPDFField& field, std::vector<std::string> value);
    void drop_assumptions();
    // The fields have the values again that they were opened with.
    void renew();

    // Hand over what scripts did since the last call: values for other fields, what else they made of fields, sentences on
    // scripts that did not run, and the lines that they printed. Formats make nothing of other fields.
    std::vector<SCRIPT_CHANGE> take_changes();
    std::vector<SCRIPT_TRAITS> take_traits() { return std::exchange(m_traits, {}); }
    std::vector<std::string> take_faults() { return std::exchange(m_faults, {}); }
    std::vector<std::string> take_console() { return std::exchange(m_console, {}); }

private:
    enum class CHANGES {
        KEPT,
        OLDER,     // kept but for fields that have got a value already
        REPEATED,  // made in another process before, so that fields have them
        DROPPED,
    };

    struct ASSUMPTION {
        const CPDFField* field;  // borrowed from the form
        SCRIPT_CHANGE change;
    };

    SCRIPT_ANSWER attempt(SCRIPT_RUN& run);
    void prepare();
    bool open_document();
    void load();
    void tell_changes(SCRIPT_RUN& run);
    void drop_changes(const CPDFField& field);
    void take(SCRIPT_ANSWER& answer, CHANGES changes, const std::string& script);

    PDF_SANDBOX_DOCUMENT m_document;
    CPDFScriptSandbox m_sandbox;
    bool m_prepared = false;                         // the scripts of the document have run in the state that there is
    size_t m_opened = 0;                             // how many of them have run once
    std::unordered_set<const CPDFField*> m_newer;    // fields that got a value before they ran
    std::set<size_t> m_deadly;                       // those of them that ended the process
    std::vector<const CPDFField*> m_changed;         // borrowed from the form
    std::unordered_set<const CPDFField*> m_altered;  // got a value since the document was opened or reverted
    std::unordered_set<const CPDFField*> m_loaded_with;  // those of them that the process was loaded with
    bool m_traits_stored = false;
    bool m_loaded_with_traits = false;
    std::vector<ASSUMPTION> m_assumptions;
    std::unordered_set<const CPDFField*> m_assumed;  // what scripts make of these since is newer than what is to be set
    size_t m_assumptions_told = 0;                   // how many of them the process knows
    std::vector<SCRIPT_CHANGE> m_changes;
    std::vector<SCRIPT_TRAITS> m_traits;
    std::vector<std::string> m_faults;
    std::vector<std::string> m_console;
};
