// The numbers that stand for fields outside the library.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "capi/formwork.h"

class CPDFDocument;
class CPDFField;

constexpr size_t FIELD_TEXTS = FW_FORMAT + 1;
constexpr size_t FIELD_LISTS = FW_STATE_VALUES + 1;

// Texts of a field that were handed out.
struct FIELD_TEXTS_KEPT {
    uint64_t change = 0;  // of the document when they were made
    std::array<std::optional<std::optional<std::string>>, FIELD_TEXTS> texts;
    std::array<std::optional<std::vector<std::string>>, FIELD_LISTS> lists;
};

// A handle is a place in a table behind a number of the table's life, which no other table has: one that is kept too long is
// not found.
class FieldHandles {
public:
    FieldHandles();

    // The handle of the field: the same at every call. Null has 0.
    fw_field handle_of(CPDFDocument& document, CPDFField* field);

    // The field, or null where it has ended or never was one of this document.
    CPDFField* field_of(CPDFDocument& document, fw_field handle);

    // What was kept for the field of a handle that is good.
    FIELD_TEXTS_KEPT& texts_of(fw_field handle);

    // The handles of these fields end; or those of all that the form has no more: of every one where memory runs out.
    void end(std::span<CPDFField* const> fields);
    void end_missing(CPDFDocument& document);
    void end_all();

    // The handle of a field goes on with another object.
    void replace(fw_field handle, CPDFField* field);

    bool empty() const { return m_slots.empty(); }

private:
    struct SLOT {
        CPDFField* field;   // borrowed from the document; null when it has ended
        std::string early;  // the name of a field that was found before the form was loaded
        std::unique_ptr<FIELD_TEXTS_KEPT> texts;
    };

    void find_again(CPDFDocument& document);

    uint64_t m_life;
    std::vector<SLOT> m_slots;
    std::unordered_map<const CPDFField*, size_t> m_places;
    bool m_has_early = false;
};
