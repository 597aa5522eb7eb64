#include "engine/sign.h"

#include "core/dictionary.h"

void CPDFSign::load(CPDFXRefTable* xref, const CPDFDictionary* dict)
{
    const CPDFEntryView contents(xref, dict->get_item("Contents"));
    m_data_cnt = contents->type == PDF_OBJ_STRING ? contents->str.len : 0;
}
