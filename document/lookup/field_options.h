// The options of choice fields, and what words they are known by.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/object.h"

class CPDFField;

// One option, in UTF-8. An empty `text` shows the value.
struct PDF_OPTION {
    std::string value;  // the export value
    std::string text;
};

// The options of a choice field, its own or those of the nearest choice field above it that has any; of any other field
// those of its own dictionary. Or options that no field has yet.
class CPDFFieldOptions {
public:
    CPDFFieldOptions() = default;
    // Both are borrowed.
    explicit CPDFFieldOptions(const CPDFField& field);
    explicit CPDFFieldOptions(const std::vector<PDF_OPTION>& options) : m_given(&options) {}

    // The field whose options they are; null for none, and for options that no field has yet.
    const CPDFField* holder() const { return m_holder; }

    int32_t count() const;
    std::string value(int32_t index) const;
    std::string text(int32_t index) const;
    // What a person sees: the text, or else the value.
    std::string shown(int32_t index) const;
    // The export value as a dictionary has it, byte for byte where the option comes from one.
    void make_value(int32_t index, CPDFObj& out) const;

    // The option with this export value, else the first that shows this text; -1 when there is none.
    int32_t find(const std::string& word) const;

private:
    friend class CPDFOptionIndex;
    bool has_text(int32_t index) const;

    const CPDFField* m_holder = nullptr;               // borrowed; null for no options
    const std::vector<PDF_OPTION>* m_given = nullptr;  // borrowed; in place of a holder
};

// Finds options for one field after the other. Many may share one long list, so that is looked through once.
class CPDFOptionIndex {
public:
    // As CPDFFieldOptions::find.
    int32_t find(const CPDFFieldOptions& options, const std::string& word);

private:
    struct WORDS {
        std::unordered_map<std::string, int32_t> values;
        std::unordered_map<std::string, int32_t> texts;
    };

    std::unordered_map<const CPDFField*, WORDS> m_words;  // of long lists, by the field that has them
};
