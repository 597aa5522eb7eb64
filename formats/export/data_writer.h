// What the formats of exported data share: one writer for each.
#pragma once

#include <memory>
#include <string>

#include "document/lookup/value_text.h"
#include "file/status.h"

class CPDFField;

// A field that is exported. Borrowed for one call.
struct PDF_EXPORT_ITEM {
    const std::string& name;  // full name
    const CPDFField& field;
    const PDF_VALUE_TEXT& value;  // absent when the field has none
    bool is_export = false;       // of a button: `value` is an export value, not the state
};

// Writes one file: begins it when it is made, then takes the fields one after the other. `out` is borrowed and outlives
// the writer.
class CPDFDataWriter {
public:
    explicit CPDFDataWriter(std::string& out) : m_out(out) {}
    virtual ~CPDFDataWriter();
    CPDFDataWriter(const CPDFDataWriter&) = delete;
    CPDFDataWriter& operator=(const CPDFDataWriter&) = delete;

    // Refuses what the format can't hold.
    virtual CPDFStatus add(const PDF_EXPORT_ITEM& item) = 0;
    virtual CPDFStatus finish() = 0;

    // Bytes that were written so far.
    size_t size() const { return m_out.size(); }

protected:
    std::string& m_out;
};

std::unique_ptr<CPDFDataWriter> make_json_writer(std::string& out);
std::unique_ptr<CPDFDataWriter> make_fdf_writer(std::string& out);
std::unique_ptr<CPDFDataWriter> make_xfdf_writer(std::string& out);
std::unique_ptr<CPDFDataWriter> make_csv_writer(std::string& out);

// The cell of CSV that says `value`: several values joined by `separator`, no value as an empty cell. False where one of
// several has the separator in it.
bool csv_cell_of(const PDF_VALUE_TEXT& value, const std::string& separator, std::string& cell);

// A refusal: "field "name" " and why.
CPDFStatus refuse_export(const std::string& name, const char* why);
