#include "core/xref_table.h"
#include "document/document_state.h"
#include "file/rescue/rescue.h"
#include "forms/field_walk.h"

namespace {

std::string sentence_of(const CPDFFileReader& reader)
{
    const std::string num = std::to_string(reader.damaged_object());
    switch (reader.damage()) {
    case PDF_DAMAGE::SECTION:
        return "the file is damaged: an older cross-reference section can't be read";
    case PDF_DAMAGE::OBJECT:
        return "the file is damaged: object " + num + " can't be read";
    case PDF_DAMAGE::OBJECT_STREAM:
        return "the file is damaged: the object stream " + num + " can't be read";
    case PDF_DAMAGE::NONE:
        break;
    }
    return {};
}

// How much of a form was read: more of it where nothing is broken.
int64_t parts_of(CPDFAcroForm& form, const CPDFPageMap& pages)
{
    int64_t parts = pages.page_count() + static_cast<int64_t>(pages.annotations().size());
    for_each_field(form, [&parts](const CPDFField& field) {
        parts += 1 + (field.m_value.type != PDF_OBJ_NULL) + field.m_opt_cnt + field.m_widget_cnt;
    });
    return parts;
}

}  // namespace

CPDFStatus CPDFDocument::load_or_rescue(PDF_LOAD load, std::string_view password)
{
    const VXFailureCheck memory;
    m_state->password = password;
    CPDFStatus status = m_state->load(load, password);
    const CPDFFileReader& reader = *m_state->reader;
    // What says how the file is encrypted can be broken, too.
    const bool locked = status.code == PDF_CODE::ENCRYPTED && reader.damage() != PDF_DAMAGE::NONE;
    const bool unreadable = locked || status.code == PDF_CODE::DAMAGED || status.code == PDF_CODE::NO_CATALOG;
    if (m_state->rescue == PDF_RESCUE::OFF || !(unreadable || (status.ok() && reader.damage() != PDF_DAMAGE::NONE)))
        return status;
    need_memory(memory);
    if (unreadable && m_state->reader->budget().exhausted())
        return status;
    const std::string damage = unreadable ? status.text : sentence_of(reader);
    const CPDFStatus repaired = take_repaired(damage, load);
    if (repaired.ok())
        return {};
    const std::string sentence = damage + "; " + repaired.text;
    // Of a form that lacks a part the rest is worth having.
    const bool lost = load != PDF_LOAD::NAMED_FIELDS && m_state->form_entry() && parts_of(m_state->form, {}) == 0;
    if (!status.ok() || lost)
        return CPDFStatus::failed(status.ok() ? PDF_CODE::DAMAGED : status.code, sentence);
    m_state->rescue_note = sentence;
    return {};
}

CPDFStatus CPDFDocument::take_repaired(const std::string& damage, PDF_LOAD load)
{
    m_state->rescue = PDF_RESCUE::OFF;  // once is enough
    auto repaired = std::make_unique<State>();
    repaired->drawing = m_state->drawing;
    repaired->scripts = m_state->scripts;
    repaired->script_seconds = m_state->script_seconds;
    repaired->rescue = PDF_RESCUE::OFF;
    repaired->progress = m_state->progress;
    repaired->password = m_state->password;
    CPDFStatus status = rescue_file(m_state->bytes.data(), m_state->bytes.size(), m_state->password, repaired->bytes);
    if (!status.ok())
        return status;
    if (status = repaired->load(load, repaired->password); !status.ok()) {
        status.text = "its repaired copy can't be used: " + status.text;
        return status;
    }
    // Where qpdf finds no more than what was read around the damage, the file stays what it is.
    if (m_state->root.dictionary() &&
        parts_of(repaired->loaded_form(), repaired->pages()) <= parts_of(m_state->loaded_form(), m_state->pages()))
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "its repaired copy has no more of the form");
    repaired->rescue_note = damage + "; its repaired copy is used";
    if (has_signature(m_state->bytes.data(), m_state->bytes.size(), *repaired->xref, *repaired->root.dict))
        repaired->rescue_note += ", in which the signatures are no longer valid";
    repaired->repaired = true;
    m_state = std::move(repaired);
    return {};
}

bool CPDFDocument::was_repaired() const
{
    return m_state->repaired;
}

void CPDFDocument::set_rescue(PDF_RESCUE rescue)
{
    m_rescue = rescue;
}

const std::string& CPDFDocument::rescue_note() const
{
    return m_state->rescue_note;
}

bool CPDFDocument::mend()
{
    const CPDFFileReader& reader = *m_state->reader;
    if (m_state->rescue == PDF_RESCUE::OFF || reader.damage() == PDF_DAMAGE::NONE)
        return false;
    const CPDFStatus status = within_memory("repair the file", [&] {
        const PDF_LOAD form = m_state->field_notes ? PDF_LOAD::FORM_AND_NOTES : PDF_LOAD::WHOLE_FORM;
        return take_repaired(sentence_of(reader), m_state->form_loaded ? form : PDF_LOAD::NAMED_FIELDS);
    });
    return status.ok();
}
