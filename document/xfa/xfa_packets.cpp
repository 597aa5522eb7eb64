#include "document/xfa/xfa_packets.h"

#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "document/lookup/value_text.h"

namespace {

// False where `object` is no stream or has more than `most` bytes.
bool read_stream(CPDFXRefTable& xref, const CPDFObj& object, int most, std::string& out)
{
    const std::unique_ptr<CPDFStream> reader(object.type == PDF_OBJ_STREAM ? xref.make_stream(object.stream) : nullptr);
    int len = 0;
    const VXBlock<unsigned char> bytes(reader ? reader->buffer_load(most, len) : nullptr);
    if (!bytes || !reader->at_end())
        return false;
    out.assign(reinterpret_cast<const char*>(bytes.get()), static_cast<size_t>(len));
    return true;
}

}  // namespace

CPDFStatus read_xfa_packets(CPDFXRefTable& xref, const CPDFObj* form, PDF_XFA_PACKETS& out)
{
    out = {};
    const CPDFEntryView form_view(&xref, form);
    const CPDFDictionary* dict = form_view->dictionary();
    const CPDFObj* entry = dict ? dict->get_item("XFA") : nullptr;
    const CPDFEntryView xfa(&xref, entry);
    if (const CPDFArray* packets = xfa->array()) {
        for (int32_t i = 0; i + 1 < packets->count; i += 2) {
            const CPDFEntryView name(&xref, &packets->items[i]);
            const std::string word = value_text(xref, *name).text;
            const CPDFObj& packet = packets->items[i + 1];
            if (word == "datasets" && packet.type == PDF_OBJ_REF)
                out.data_ref = packet.ref;
            const CPDFEntryView stream(&xref, &packet);
            if (word == "template")
                read_stream(xref, *stream, LIMIT_XFA_TEMPLATE, out.form_template);
        }
    } else if (entry && entry->type == PDF_OBJ_REF) {
        out.data_ref = entry->ref;
        out.is_single = true;
    }
    CPDFObj data;
    xref.get_entity(data, out.data_ref);
    if (out.data_ref.num == 0 || data.type != PDF_OBJ_STREAM)
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, "the XFA data have no data set that can be changed");
    if (!read_stream(xref, data, LIMIT_XFA_STREAM, out.data))
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the XFA data are larger than what is supported, or can't be read");
    return {};
}

CPDFStatus store_xfa_stream(CPDFXRefTable& xref, const PDF_REF& ref, const std::string& text)
{
    const VXFailureCheck memory;  // a dictionary without its filter must not be stored
    CPDFDictionary dict;
    dict.set_item_name(CPDFDictionary::sm_tag_filter, CPDFDictionary::sm_tag_fdec);
    int len = 0;
    unsigned char* const packed =
        memory.failed() ? nullptr : xref.compress_data(text.data(), static_cast<int>(text.size()), len);
    if (packed && xref.take_stream(ref, dict, packed, len) == PDF_CHANGE_RESULT::STORED)
        return {};
    return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to write the XFA data");
}
