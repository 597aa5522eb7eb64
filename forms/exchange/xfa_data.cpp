#include <memory>
#include <string_view>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "forms/acro_form.h"
#include "forms/exchange/data_buffer.h"
#include "forms/exchange/xfa_packet.h"
#include "forms/field.h"

namespace {

constexpr std::string_view OPENING_HEAD = "<xfa:datasets xmlns:xfa=\"";
constexpr std::string_view OPENING_TAIL = "\"><xfa:data>";
constexpr std::string_view CLOSING = "</xfa:data></xfa:datasets>";
static_assert(XFA_DATA_NAMESPACE.size() == 39);
static_assert(OPENING_HEAD.size() + XFA_DATA_NAMESPACE.size() + OPENING_TAIL.size() == 76);
static_assert(CLOSING.size() == 26);

void append_piece(CPDFDataBuffer& text, std::string_view piece)
{
    text.append(piece.data(), piece.size());
}

void append_data_set(CPDFDataBuffer& text, const CPDFAcroForm& form)
{
    append_piece(text, OPENING_HEAD);
    append_piece(text, XFA_DATA_NAMESPACE);
    append_piece(text, OPENING_TAIL);
    for (int32_t i = 0; i < form.m_field_cnt; ++i) {
        int len = 0;
        const VXBlock<char> piece(form.m_fields[i] ? form.m_fields[i]->get_form_xml2(len) : nullptr);
        if (piece)
            text.append(piece.get(), static_cast<size_t>(len));
    }
    append_piece(text, CLOSING);
}

// The stream with all packets, whose data set is replaced. False when it can't be read whole or has none.
bool append_all_packets(CPDFDataBuffer& text, const CPDFAcroForm& form, CPDFXRefTable& xref)
{
    CPDFObj obj;
    xref.get_entity(obj, form.m_xfa_ref);
    const std::unique_ptr<CPDFStream> reader(obj.type == PDF_OBJ_STREAM ? xref.make_stream(obj.stream) : nullptr);
    int len = 0;
    const VXBlock<unsigned char> before(reader ? reader->buffer_load(LIMIT_XFA_STREAM, len) : nullptr);
    if (!before || !reader->at_end())
        return false;
    const std::string_view packets(reinterpret_cast<const char*>(before.get()), static_cast<size_t>(len));
    PDF_XFA_RANGE data_set;
    if (!find_xfa_datasets(packets, data_set))
        return false;
    append_piece(text, packets.substr(0, data_set.begin));
    append_data_set(text, form);
    append_piece(text, packets.substr(data_set.end));
    return true;
}

}  // namespace

char* CPDFAcroForm::get_xfa_data(int& len)
{
    const VXFailureCheck check;  // a field that ran out of memory has no text
    CPDFDataBuffer text;
    append_data_set(text, *this);
    len = 0;
    return check.failed() ? nullptr : text.release(len);
}

void CPDFAcroForm::reset_XFA(CPDFXRefTable* xref)
{
    if (m_xfa_ref.num == 0)
        return;
    const VXFailureCheck check;  // a field that ran out of memory has no text
    CPDFDataBuffer text;
    if (!m_xfa_single)
        append_data_set(text, *this);
    else if (!append_all_packets(text, *this, *xref))
        return;
    if (text.failed() || check.failed())
        return;
    int packed_len = 0;
    int len = 0;
    const VXBlock<char> bytes(text.release(len));
    CPDFDictionary dict;
    dict.set_item_name(CPDFDictionary::sm_tag_filter, CPDFDictionary::sm_tag_fdec);
    unsigned char* packed = bytes && !check.failed() ? xref->compress_data(bytes.get(), len, packed_len) : nullptr;
    if (packed)
        static_cast<void>(xref->take_stream(m_xfa_ref, dict, packed, packed_len));  // without memory all stays
}
