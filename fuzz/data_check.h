// What must hold for any bytes that are read as form data.
#pragma once

#include <memory>
#include <string_view>

#include "document/document.h"
#include "formats/apply_data.h"
#include "formats/import/form_data.h"
#include "fuzz/fuzz_bytes.h"
#include "fuzz/made_file.h"

// A form with a field of every kind that takes a value: t, g.t, c, l, b.
inline std::unique_ptr<CPDFDocument> form_for_data()
{
    auto document = std::make_unique<CPDFDocument>();
    const CPDFStatus status =
        document->open(made_file({{1, "<</Type/Catalog/AcroForm<</Fields[2 0 R 3 0 R 5 0 R 6 0 R 7 0 R]>>>>"},
                                  {2, "<</T(t)/FT/Tx>>"},
                                  {3, "<</T(g)/Kids[4 0 R]>>"},
                                  {4, "<</T(t)/FT/Tx/MaxLen 3/Parent 3 0 R>>"},
                                  {5, "<</T(c)/FT/Ch/Ff 131072/Opt[(a)[(b)(shown)]]>>"},
                                  {6, "<</T(l)/FT/Ch/Ff 2097152/Opt[(a)(b)(c)]>>"},
                                  {7, "<</T(b)/FT/Btn/AP<</N<</Yes null/On null>>>>>>"}}));
    check(status.ok(), "the form for data does not open");
    return document;
}

// Reads the bytes and puts them into a form; ends the program when a refusal has no sentence or leaves entries.
template <typename Read>
CPDFFormData check_data(const uint8_t* data, size_t size, Read&& read)
{
    CPDFFormData entries;
    const CPDFStatus status = read(std::string_view(reinterpret_cast<const char*>(data), size), entries);
    check(status.ok() || (entries.empty() && !status.text.empty()), "the refusal has no sentence, or leaves entries");
    const auto form = form_for_data();
    const std::vector<PDF_DATA_ITEM> items = plan_data(*form, entries, PDF_FILL::FORCE);
    for (const PDF_DATA_ITEM& item : items)
        check(item.status.ok() || !item.status.text.empty(), "the refusal of an entry has no sentence");
    check(apply_data(*form, items).ok(), "what was accepted can't be applied");
    return entries;
}
