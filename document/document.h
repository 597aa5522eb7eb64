// The front class: open a PDF file, work with its form, save it as an incremental update.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/object.h"
#include "document/status.h"

class CPDFAcroForm;
class CPDFField;
class CPDFFileReader;
class CPDFXRefTable;

// Whether a read-only field may be changed.
enum class PDF_FILL {
    RESPECT_READ_ONLY,
    FORCE,
};

// One document. It owns the file's bytes, the object store and the form; everything it hands out is borrowed and ends
// with it. One thread at a time.
//
//     CPDFDocument document;
//     if (CPDFStatus status = document.open("form.pdf"); !status.ok()) ...
//     CPDFField* field = document.field("address.city");
//     status = document.set_text(*field, "Zürich");
//     status = document.save("filled.pdf");
class CPDFDocument {
public:
    CPDFDocument();
    ~CPDFDocument();
    CPDFDocument(const CPDFDocument&) = delete;
    CPDFDocument& operator=(const CPDFDocument&) = delete;

    // Opens a file, or takes its bytes, and loads the form. A document without a form opens with an empty one. After a
    // failure, or before any call, the document is closed: every other operation needs a successful open.
    CPDFStatus open(const std::string& path);
    CPDFStatus open(std::vector<uint8_t> bytes);

    // Whether the catalog names a form.
    bool has_form() const;
    CPDFAcroForm& form();
    CPDFXRefTable& xref();

    // The catalog and its reference, and the trailer dictionary of the newest section.
    CPDFObj& root();
    const PDF_REF& root_ref() const;
    const CPDFDictionary& trailer() const;

    // The file's bytes, unchanged.
    const uint8_t* data() const;
    size_t size() const;

    // To be called after fields were renamed, added or removed behind this class's back: forgets what is known of names.
    void names_changed();

    // The field with this full name in UTF-8, compared with the names as stored, else with the names without index
    // suffixes; the first in tree order where several have it, null when none has.
    CPDFField* field(std::string_view name);

    // Makes `value`, UTF-8, the value of a text field. Refuses other kinds, read-only fields and text longer than the
    // field's maximum, naming the field; nothing is changed then.
    CPDFStatus set_text(CPDFField& field, std::string_view value, PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY);

    // Writes the input's bytes unchanged and behind them the changed objects as one incremental update
    // (ISO 32000-2, 7.5.6). The file at `path` is replaced as a whole, or stays as it was. With no change the output is
    // a copy of the input.
    CPDFStatus save(const std::string& path);

    // The same into a buffer.
    CPDFStatus save(std::vector<uint8_t>& out);

private:
    struct State;
    CPDFStatus load();

    std::unique_ptr<State> m_state;  // owned
};
