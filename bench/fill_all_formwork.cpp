// fill_all_formwork IN OUT VALUE: fills every field and saves; fill_draw_formwork draws the widgets, too. A text field gets VALUE, cut to its maximum; a check box
// is turned on, and a choice gets its last option. Read-only fields, too: the rival knows no refusal.

#include <cstdio>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

CPDFStatus fill_field(CPDFDocument& document, CPDFField& field, const std::string& value)
{
    if (field.m_type == FIELD_TEXT) {
        const int32_t most = max_length(field);
        return document.set_value(field, most > 0 ? value.substr(0, static_cast<size_t>(most)) : value,
                                  PDF_FILL::FORCE);
    }
    if (field.m_type == FIELD_BUTTON && !(field.m_flags & (FIELD_RADIO | FIELD_PUSH_BUTTON)))
        return document.set_value(field, true, PDF_FILL::FORCE);
    if (field.m_type == FIELD_CHOICE && field.m_opt_cnt > 0)
        return document.set_value(field, utf8_of(field.m_opts[field.m_opt_cnt - 1].val), PDF_FILL::FORCE);
    return {};
}

CPDFStatus fill(char** argv)
{
    CPDFDocument document;
#ifndef BENCH_DRAW
    document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);  // as the rival does
#endif
    if (CPDFStatus status = document.open(argv[1]); !status.ok())
        return status;
    CPDFStatus status;
    for_each_field(document.form(), [&](CPDFField& field) {
        if (status.ok() && field.m_name.len > 0)
            status = fill_field(document, field, argv[3]);
    });
    return status.ok() ? document.save(argv[2]) : status;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: fill_all_formwork IN OUT VALUE\n");
        return 2;
    }
    const CPDFStatus status = fill(argv);
    if (!status.ok())
        std::fprintf(stderr, "fill_all_formwork: %s\n", status.text.c_str());
    return status.ok() ? 0 : 1;
}
