// Fields that two documents both have.
#pragma once

// What becomes of fields with one full name when documents are merged.
enum class PDF_SAME_NAMES {
    REFUSE,
    RENAME,  // the later one gets a number: "city_2"
    JOIN,    // one field with the widgets of both; kinds must agree, and values must not contradict
};
