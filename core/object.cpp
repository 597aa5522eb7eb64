#include "core/object.h"

#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

static_assert(sizeof(CPDFObj) <= 24, "a value is a tag and a string's room");

void CPDFObj::free()
{
    switch (type) {
    case PDF_OBJ_STRING:
        VXFree(str.buf);
        break;
    case PDF_OBJ_NAME:
        VXFree(name);
        break;
    case PDF_OBJ_ARRAY:
        delete arr;
        break;
    case PDF_OBJ_DICT:
        delete dict;
        break;
    case PDF_OBJ_STREAM:
        delete stream;
        break;
    default:
        break;
    }
    clear();
}

void CPDFObj::copy_from(const CPDFObj* src)
{
    free();
    if (!src)
        return;
    switch (src->type) {
    case PDF_OBJ_STRING:
        set_string(src->str.buf, src->str.len);
        return;
    case PDF_OBJ_NAME:
        set_name(src->name);
        return;
    case PDF_OBJ_ARRAY:
        if (set_array())
            arr->copy_from(src->arr);
        return;
    case PDF_OBJ_DICT:
        if (set_dict())
            dict->copy_from(src->dict);
        return;
    case PDF_OBJ_STREAM:
        if (set_stream() && src->stream)
            stream->copy_from(src->stream);
        return;
    case PDF_OBJ_REF:
        ref = src->ref;
        break;
    default:
        fval = src->fval;
        break;
    }
    type = src->type;
}

void CPDFObj::take(CPDFObj& src)
{
    if (this == &src)
        return;
    free();
    std::memcpy(static_cast<void*>(this), static_cast<const void*>(&src), sizeof(CPDFObj));
    src.clear();
}

void CPDFObj::set_bool(int value)
{
    free();
    fval = 0;
    ival = value != 0;
    type = PDF_OBJ_BOOL;
}

void CPDFObj::set_int(int32_t value)
{
    free();
    fval = 0;
    ival = value;
    type = PDF_OBJ_INT;
}

void CPDFObj::set_real(VXFIX value)
{
    free();
    fval = value;
    type = PDF_OBJ_REAL;
}

void CPDFObj::set_ref(const PDF_REF& value)
{
    free();
    ref = value;
    type = PDF_OBJ_REF;
}

void CPDFObj::set_name(const char* characters)
{
    free();
    if (!characters)
        return;
    const size_t size = std::strlen(characters) + 1;
    auto* copy = static_cast<char*>(VXAlloc(size));
    if (!copy)
        return;
    std::memcpy(copy, characters, size);
    name = copy;
    type = PDF_OBJ_NAME;
}

void CPDFObj::set_string(const void* bytes, int32_t len)
{
    free();
    str.assign(bytes, len);
    type = PDF_OBJ_STRING;
}

CPDFArray* CPDFObj::set_array()
{
    free();
    arr = new CPDFArray;
    type = arr ? PDF_OBJ_ARRAY : PDF_OBJ_NULL;
    return arr;
}

CPDFDictionary* CPDFObj::set_dict()
{
    free();
    dict = new CPDFDictionary;
    type = dict ? PDF_OBJ_DICT : PDF_OBJ_NULL;
    return dict;
}

CPDFStreamRec* CPDFObj::set_stream()
{
    free();
    stream = new CPDFStreamRec;
    type = stream ? PDF_OBJ_STREAM : PDF_OBJ_NULL;
    return stream;
}

bool CPDFObj::is_name(const char* characters) const
{
    return type == PDF_OBJ_NAME && name && std::strcmp(name, characters) == 0;
}

CPDFDictionary* CPDFObj::any_dictionary() const
{
    if (type == PDF_OBJ_STREAM)
        return stream ? &stream->dict : nullptr;
    return dictionary();
}

int32_t integer_value(const CPDFObj& obj)
{
    if (obj.type == PDF_OBJ_INT)
        return obj.ival;
    return obj.type == PDF_OBJ_REAL ? fix_to_int(obj.fval) : 0;
}

int32_t resolve_integer(CPDFXRefTable* xref, const CPDFObj* entry)
{
    const CPDFEntryView value(xref, entry);
    return integer_value(*value);
}

void resolve_obj(CPDFXRefTable* xref, const CPDFObj* src, CPDFObj& out)
{
    out.free();
    if (!src)
        return;
    if (xref && src->type == PDF_OBJ_REF)
        xref->get_entity(out, src->ref);
    else
        out.copy_from(src);
}

void take_obj(CPDFXRefTable* xref, CPDFObj* src, CPDFObj& out)
{
    if (src && !(xref && src->type == PDF_OBJ_REF))
        out.take(*src);
    else
        resolve_obj(xref, src, out);
}

const CPDFObj* view_obj(CPDFXRefTable* xref, const CPDFObj* src, CPDFObj& scratch)
{
    if (src && !(xref && src->type == PDF_OBJ_REF))
        return src;
    resolve_obj(xref, src, scratch);
    return &scratch;
}
