// Tables of which every row fills a form.
#include <memory>

#include "capi/form_data.h"
#include "formats/import/form_rows.h"

struct fw_rows {
    std::string text;
    CPDFFormRows rows;
};

fw_code fw_open_rows(fw_format format, const void* data, size_t size, fw_rows** rows)
{
    if (!rows)
        return bad_argument("there is no place for the table");
    *rows = nullptr;
    return call([&] {
        if (format != FW_CSV && format != FW_JSON_LINES)
            return bad_argument("a table is CSV or JSON lines");
        if (!data && size > 0)
            return bad_argument("the data are NULL");
        auto made = std::make_unique<fw_rows>();
        made->text.assign(static_cast<const char*>(data), size);
        const CPDFStatus status =
            made->rows.open_text(made->text, format == FW_CSV ? PDF_ROW_FORMAT::CSV : PDF_ROW_FORMAT::JSON_LINES);
        if (status.ok())
            *rows = made.release();
        return result_of(status);
    });
}

fw_code fw_row_count(fw_rows* rows, size_t* count)
{
    hand_out(count, size_t{0});
    if (!rows)
        return bad_argument("the table is NULL");
    hand_out(count, rows->rows.count());
    return FW_OK;
}

fw_code fw_fill_row(fw_rows* rows, fw_document* document, unsigned flags, size_t* number, char** report,
                    size_t* report_size)
{
    hand_out(number, size_t{0});
    hand_out<char*>(report, nullptr);
    hand_out(report_size, size_t{0});
    std::string lines;
    const fw_code code = call_with(document, [&](fw_document& at) {
        if (!rows)
            return bad_argument("the table is NULL");
        PDF_FORM_ROW row;
        if (!rows->rows.next(row))
            return fail_with(FW_END, "there is no further row");
        hand_out(number, row.number);
        if (const fw_code reverted = fw_revert(document); reverted != FW_OK)
            return reverted;
        if (!row.status.ok())
            return result_of(row.status);
        return result_of(fill_from_file(at, std::move(row.data), flags, report ? &lines : nullptr));
    });
    return hand_out_report(code, lines, report, report_size);
}

void fw_close_rows(fw_rows* rows)
{
    delete rows;
}
