// What the sandbox and its parent tell each other: records with a size before them, little-endian. The reader is strict, since
// a script may have taken over whoever writes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "script/event.h"

// Bytes of one message. A form that needs more has no scripts run, a script that answers more counts as not run.
constexpr size_t SCRIPT_MESSAGE_MAX = 16 << 20;

// What a field is, as scripts see it.
enum class SCRIPT_FIELD_TYPE : uint8_t { TEXT, CHECKBOX, RADIO, BUTTON, LIST, COMBO, SIGNATURE, COUNT };

enum SCRIPT_FIELD_FLAG : uint8_t {
    SCRIPT_READ_ONLY = 1,
    SCRIPT_REQUIRED = 2,
    SCRIPT_MULTILINE = 4,
    SCRIPT_COMB = 8,
};

// Where and how the widgets of a field show, in the numbers that scripts have for it.
enum class SCRIPT_DISPLAY : uint8_t { VISIBLE, HIDDEN, NO_PRINT, NO_VIEW, COUNT };

enum SCRIPT_COLOR { SCRIPT_TEXT_COLOR, SCRIPT_FILL_COLOR, SCRIPT_STROKE_COLOR, SCRIPT_COLOR_COUNT };

struct SCRIPT_ITEM {
    std::string shown;
    std::string value;  // what the field has when it is chosen
};

struct SCRIPT_FIELD {
    std::string name;  // full name
    SCRIPT_FIELD_TYPE type = SCRIPT_FIELD_TYPE::TEXT;
    uint8_t flags = 0;
    SCRIPT_DISPLAY display = SCRIPT_DISPLAY::VISIBLE;
    std::vector<std::string> value;  // several of a list box only
    std::vector<std::string> default_value;
    std::vector<SCRIPT_ITEM> items;  // options of a choice; of a check box or radio group a value for each widget
    int32_t char_limit = 0;
    int32_t page = 0;              // of the first widget, from 0; -1 for none
    std::array<double, 4> rect{};  // of the first widget, in points: left, top, right, bottom
    std::array<std::vector<double>, SCRIPT_COLOR_COUNT> colors;  // of the first widget: gray, RGB, CMYK or none
};

struct SCRIPT_TEXT {
    std::string name;
    std::string text;
};

// A form as it was opened.
struct SCRIPT_DOCUMENT {
    std::vector<SCRIPT_FIELD> fields;
    std::vector<SCRIPT_TEXT> info;  // such as "Title"
    int32_t pages = 0;
};

// A value that a field has got.
struct SCRIPT_CHANGE {
    std::string field;
    std::vector<std::string> value;
};

// What of a field, besides its value, a script has made as it stands here.
enum SCRIPT_TRAIT : uint8_t {
    SCRIPT_TRAIT_READ_ONLY = 1,
    SCRIPT_TRAIT_REQUIRED = 2,
    SCRIPT_TRAIT_DISPLAY = 4,
    SCRIPT_TRAIT_ITEMS = 8,
};

struct SCRIPT_TRAITS {
    std::string field;
    uint8_t made = 0;   // SCRIPT_TRAIT
    uint8_t flags = 0;  // SCRIPT_FIELD_FLAG
    SCRIPT_DISPLAY display = SCRIPT_DISPLAY::VISIBLE;
    std::vector<SCRIPT_ITEM> items;
};

// One script that is to run, in the event that its field has.
struct SCRIPT_RUN {
    std::vector<SCRIPT_CHANGE> changes;  // of other fields since the last run
    std::string event_type;              // such as "Field" or "Doc"
    std::string event_name;              // such as "Calculate"
    FIELD_EVENT event;
    std::string source;  // full name of the field that started it
    std::string text;
};

struct SCRIPT_ANSWER {
    std::string fault;  // why the script did not come to its end; empty when it did
    FIELD_EVENT event;
    std::vector<SCRIPT_CHANGE> changes;  // in the order in which the script made them
    std::vector<SCRIPT_TRAITS> traits;
    std::vector<std::string> console;
};

enum class SCRIPT_REQUEST : uint8_t {
    LOAD,   // a SCRIPT_DOCUMENT follows
    RENEW,  // everything is to be as after the last LOAD
    RUN,    // a SCRIPT_RUN follows; it alone is answered
};

// A message with its size before it.
std::string write_message(SCRIPT_REQUEST request, const SCRIPT_DOCUMENT& document);
std::string write_message(SCRIPT_REQUEST request);
std::string write_message(SCRIPT_REQUEST request, const SCRIPT_RUN& run);
std::string write_message(const SCRIPT_ANSWER& answer);

// The bytes of the size, and what they say; too much reads as nothing.
constexpr size_t SCRIPT_SIZE_BYTES = 4;
std::optional<size_t> read_message_size(const char (&bytes)[SCRIPT_SIZE_BYTES]);

// Read a message without its size. False, with `out` in any state, when it is not exactly such a message. Texts of an answer are
// well-formed UTF-8 then.
bool read_message(std::string_view message, SCRIPT_DOCUMENT& out);
bool read_message(std::string_view message, SCRIPT_RUN& out);
bool read_message(std::string_view message, SCRIPT_ANSWER& out);

// Takes the kind of a request off its front.
std::optional<SCRIPT_REQUEST> read_request(std::string_view& message);
