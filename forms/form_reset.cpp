#include "forms/acro_form.h"
#include "forms/field_select.h"

void CPDFAcroForm::reset(const CPDFArray* fields, int flags)
{
    for_each_selected_field(*this, fields, flags, [](CPDFField& field) { field.reset(); });
}
