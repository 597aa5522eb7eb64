// All that can be read of a form: lists, exports, actions.
#pragma once

#include "core/alloc.h"
#include "document/action_list.h"
#include "document/document.h"
#include "formats/export/export_data.h"
#include "forms/acro_form.h"
#include "fuzz/fuzz_bytes.h"
#include "tools/list/list_internal.h"

inline void check_sentence(const CPDFStatus& status)
{
    check(status.ok() || !status.text.empty(), "a refusal has no sentence");
}

// Prints to standard output.
inline void list_all(CPDFDocument& document)
{
    check_sentence(list_actions(document, nullptr, [](const PDF_LISTED_ACTION&) {}));
    calculation_order(document);
    put_list_table(document, PDF_LISTED::NAMED, {});
    check_sentence(write_list_json(document, PDF_LISTED::ALL, {}, [](std::string_view) {}));
}

inline void export_all(CPDFDocument& document)
{
    for (const PDF_DATA_FORMAT format :
         {PDF_DATA_FORMAT::JSON, PDF_DATA_FORMAT::FDF, PDF_DATA_FORMAT::XFDF, PDF_DATA_FORMAT::CSV}) {
        std::string out;
        check_sentence(write_form_data(document, format, nullptr, out));
    }
    int len = 0;
    const VXBlock<char> url(document.form().get_url_para(nullptr, 0));
    const VXBlock<char> xml(document.form().get_url_xml(nullptr, 0));
    const VXBlock<char> xfa(document.form().get_xfa_data(len));
}
