// The scripts of fields, read once and recognised (ISO 32000-2, 12.6.3, "AA").
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "file/read_budget.h"
#include "script/known_call.h"

class CPDFField;
class CPDFAction;

// When a script of a field runs.
enum PDF_SCRIPT_EVENT {
    EVENT_KEYSTROKE,  // a value is typed or committed
    EVENT_FORMAT,     // a value is to be shown
    EVENT_VALIDATE,   // a value is to be kept
    EVENT_CALCULATE,  // a value elsewhere has changed
    EVENT_COUNT,
};

// How people call it: "keystroke", "format", "validate" or "calculate".
const char* name_of_event(PDF_SCRIPT_EVENT event);

struct PDF_FIELD_SCRIPT {
    std::string text;                // UTF-8
    std::optional<KNOWN_CALL> call;  // what it is, when it is a well-known call
};

struct PDF_FIELD_SCRIPTS {
    std::vector<const PDF_FIELD_SCRIPT*> on[EVENT_COUNT];  // borrowed; in the order in which they run
};

class CPDFFieldScripts {
public:
    // What is read and kept counts against the budget, which outlives this.
    explicit CPDFFieldScripts(CPDFReadBudget& budget) : m_budget(budget) {}

    // The scripts of `field`; those of the nearest field above it that has actions, when it has none. Null when there are
    // none, and when the budget ends before it is known. Borrowed until the next call: scripts do not change while a document
    // is open, but only LIMIT_SCRIPTS_HELD of them are kept.
    const PDF_FIELD_SCRIPTS* of(const CPDFField& field);

private:
    struct BY_TEXT {
        bool operator()(const PDF_FIELD_SCRIPT& a, const PDF_FIELD_SCRIPT& b) const { return a.text < b.text; }
    };

    PDF_FIELD_SCRIPTS read(const CPDFField& field);
    void add_scripts(const CPDFAction& action, std::vector<const PDF_FIELD_SCRIPT*>& out);
    const PDF_FIELD_SCRIPT& kept(std::string text);

    CPDFReadBudget& m_budget;                                // borrowed
    std::unordered_map<uint32_t, PDF_FIELD_SCRIPTS> m_read;  // by object number
    std::set<PDF_FIELD_SCRIPT, BY_TEXT> m_scripts;           // many fields have the same
    size_t m_held = 0;                                       // bytes that they take
};
