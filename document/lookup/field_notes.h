// What the dictionaries of fields and widgets say to people, which filling has no use for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "core/object.h"
#include "document/lookup/page_box.h"
#include "forms/load_watch.h"

class CPDFPageMap;
class CPDFXRefTable;

// Notes the labels and mapping names of fields and the rectangles of widgets while the form is loaded. A dictionary that
// was not seen then is read when it is asked for, and remembered.
class CPDFFieldNotes final : public CPDFLoadWatch {
public:
    // `xref` is borrowed.
    explicit CPDFFieldNotes(CPDFXRefTable& xref) : m_xref(xref) {}

    // Forgets what was seen: the document changed since.
    void clear() { m_notes.clear(); }

    const CPDFKeySet& keys() const override;
    void see(const PDF_REF& ref, CPDFDictionary& dict) override;

    // "TU" and "TM" in UTF-8.
    std::optional<std::string> label_of(const PDF_REF& field);
    std::optional<std::string> mapping_name_of(const PDF_REF& field);

    std::optional<PDF_BOX> rect_of(const PDF_REF& widget);

    // The page that lists the widget, else the one that it names itself; 0 for none.
    int32_t page_of(const PDF_REF& widget, const CPDFPageMap& pages);

private:
    struct NOTE {
        CPDFObj label;
        CPDFObj mapping_name;
        std::optional<PDF_BOX> rect;
    };

    const NOTE& note_of(const PDF_REF& ref);
    std::optional<std::string> text_of(const CPDFObj& entry);

    CPDFXRefTable& m_xref;
    std::unordered_map<uint32_t, NOTE> m_notes;  // by object number
};
