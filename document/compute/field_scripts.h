// The scripts of fields, read once and recognised (ISO 32000-2, 12.6.3, "AA").
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "script/known_call.h"

class CPDFField;
struct CPDFObj;

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
    std::vector<PDF_FIELD_SCRIPT> on[EVENT_COUNT];  // in the order in which they run
};

class CPDFFieldScripts {
public:
    // The scripts of `field`; those of the nearest field above it that has actions, when it has none. Null when there are
    // none. Borrowed as long as this lives: scripts do not change while a document is open.
    const PDF_FIELD_SCRIPTS* of(const CPDFField& field);

private:
    const PDF_FIELD_SCRIPTS* read(const CPDFField& field);

    std::unordered_map<uint32_t, std::optional<PDF_FIELD_SCRIPTS>> m_read;  // by object number
};
