#include <tinyxml.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "forms/acro_form.h"
#include "forms/exchange/field_set.h"
#include "forms/exchange/xml_guard.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

// Collects the events of the template packet `text`; a text that is no XML yields none. TinyXML throws.
void collect_events(const char* text, _PDF_FIELD_SET_& events)
try {
    TiXmlDocument document;
    document.Parse(text, nullptr, TIXML_ENCODING_UNKNOWN);
    TiXmlElement* root = document.FirstChildElement();
    char path[FIELD_SET_PATH] = "";
    for (TiXmlElement* child = root ? root->FirstChildElement() : nullptr; child; child = child->NextSiblingElement()) {
        if (std::strcmp(child->Value(), "subform") == 0)
            events.load(child, path, 0);
    }
    document.Clear();
} catch (const std::bad_alloc&) {
    vx_note_failure();
}

void bind_event(CPDFField& field, const PDF_FIELD_ENTRY& event)
{
    VXFree(field.m_xfa_target);
    field.m_xfa_target = nullptr;
    const size_t size = std::strlen(event.value);
    if (size > 0) {
        field.m_xfa_target = static_cast<char*>(VXAlloc(size + 1));
        if (field.m_xfa_target)
            std::memcpy(field.m_xfa_target, event.value, size + 1);
    }
    field.m_xfa_event = event.kind;
}

}  // namespace

void CPDFAcroForm::bind_template(const CPDFObj* packet)
{
    const CPDFEntryView stream(m_xref, packet);
    if (stream->type != PDF_OBJ_STREAM)
        return;
    const std::unique_ptr<CPDFStream> reader(m_xref->make_stream(stream->stream));
    int len = 0;
    const VXBlock<unsigned char> text(reader ? reader->buffer_load(LIMIT_XFA_TEMPLATE, len) : nullptr);
    if (!text || !guard_xml(reinterpret_cast<char*>(text.get()), static_cast<size_t>(len)))
        return;
    _PDF_FIELD_SET_ events;
    collect_events(reinterpret_cast<const char*>(text.get()), events);
    int64_t field_cnt = 0;
    for_each_field(*this, [&field_cnt](const CPDFField&) { ++field_cnt; });
    const int64_t searches = LIMIT_XFA_VISITS / std::max<int64_t>(field_cnt, 1);
    const auto event_cnt = static_cast<int32_t>(std::min<int64_t>(events.count, searches));
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        for (int32_t k = 0; m_fields[i] && k < event_cnt; ++k) {
            CPDFField* field = m_fields[i]->get(events.items[k].name + 1);
            if (field)
                bind_event(*field, events.items[k]);
        }
    }
}
