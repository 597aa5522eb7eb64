// URL-encoded form data: pair { '&' pair }, where pair = key '=' value and key is the encoded partial name.
#include <cstdio>

#include "core/text.h"
#include "forms/acro_form.h"
#include "forms/exchange/form_value.h"
#include "forms/field.h"
#include "forms/field_select.h"
#include "forms/partial_name.h"

namespace {

// A group whose states are numbers gives the export value, or the position from 1, of the button that is on.
void append_radio_value(CPDFDataBuffer& out, const CPDFField& group)
{
    if (group.m_value.type != PDF_OBJ_NAME)
        return;
    const char* state = group.m_value.name;
    if (!state || *state < '0' || *state > '9') {
        out.append("0");
        return;
    }
    const int kid = group.find_radio_kid(state);
    if (kid < 0)
        return;
    if (group.m_opts) {
        if (const PDF_String* val = export_value(group, kid))
            out.append(*val, cvt_utourl, FORM_BUTTON_MAX);
        return;
    }
    char digits[12];
    std::snprintf(digits, sizeof digits, "%d", kid + 1);
    out.append(digits);
}

// Appends the key; false, with nothing appended, when it is empty or begins with `barred`.
bool append_key(CPDFDataBuffer& out, const CPDFField& field, char barred)
{
    const size_t start = out.size();
    out.append(field.m_name, cvt_utourl);
    if (out.failed())
        return false;
    const char* key = out.bytes() + start;
    const int len = without_index_suffix(key, static_cast<int>(out.size() - start));
    const bool named = len > 0 && *key != barred;
    out.cut(start + static_cast<size_t>(named ? len : 0));
    return named;
}

bool has_no_pair(const CPDFField& field)
{
    return field.m_type == FIELD_UNKNOWN || is_push_button(field);
}

// False, with nothing appended, when the field gives no pair.
bool append_pair(CPDFDataBuffer& out, const CPDFField& field, char barred)
{
    if (has_no_pair(field) || !append_key(out, field, barred))
        return false;
    out.append("=");
    if (is_radio_group(field))
        append_radio_value(out, field);
    else
        append_value(out, field, cvt_utourl);
    return true;
}

bool append_own_pair(CPDFDataBuffer& out, CPDFField& field)
{
    return append_pair(out, field, '#');
}

// Appends what `append_one` gives for `field`, behind '&' when neither it nor what is there from `start` on is empty.
template <typename Append>
void append_joined(CPDFDataBuffer& out, size_t start, CPDFField& field, Append append_one)
{
    const size_t before = out.size();
    if (before > start)
        out.append("&");
    const size_t joined = out.size();
    append_one(out, field);
    if (out.size() == joined)
        out.cut(before);
}

bool append_tree(CPDFDataBuffer& out, CPDFField& field)
{
    const size_t start = out.size();
    append_pair(out, field, '%');
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        if (field.m_kids[i])
            append_joined(out, start, *field.m_kids[i], append_tree);
    }
    return true;
}

}  // namespace

char* CPDFField::get_form_url(int& len)
{
    CPDFDataBuffer out;
    len = 0;
    return append_own_pair(out, *this) ? out.release(len) : nullptr;
}

char* CPDFField::get_form_url2(int& len)
{
    CPDFDataBuffer out;
    append_tree(out, *this);
    return out.release(len);
}

char* CPDFAcroForm::get_url_para(const CPDFArray* fields, int flags)
{
    const VXFailureCheck memory;  // a field that was not found for want of it is no field to leave out
    CPDFDataBuffer out;
    bool given = false;
    const auto append_one = selects_all(fields, flags) ? append_tree : append_own_pair;
    const bool found = for_each_selected_field(*this, fields, flags, [&](CPDFField& field) {
        append_joined(out, 0, field, [&](CPDFDataBuffer& joined, CPDFField& one) { given |= append_one(joined, one); });
    });
    int len = 0;
    return found && given && !memory.failed() ? out.release(len) : nullptr;
}
