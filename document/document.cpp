#include "document/document.h"

#include <unordered_map>

#include "core/dictionary.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "document/field_text.h"
#include "document/file_bytes.h"
#include "document/file_reader.h"
#include "document/output_file.h"
#include "document/update.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

// Members are in the order in which they depend on one another.
struct CPDFDocument::State {
    CPDFFileBytes bytes;
    std::unique_ptr<CPDFFileReader> reader;
    std::unique_ptr<CPDFXRefTable> xref;
    CPDFObj root;
    PDF_REF root_ref = {0, 0};
    bool has_form = false;
    CPDFAcroForm form;
    bool names_known = false;
    std::unordered_map<std::string, CPDFField*> names;        // as stored
    std::unordered_map<std::string, CPDFField*> plain_names;  // without index suffixes
};

CPDFDocument::CPDFDocument() : m_state(std::make_unique<State>()) {}

CPDFDocument::~CPDFDocument() = default;

CPDFStatus CPDFDocument::open(const std::string& path)
{
    m_state = std::make_unique<State>();
    CPDFStatus status = m_state->bytes.open(path);
    return status.ok() ? load() : status;
}

CPDFStatus CPDFDocument::open(std::vector<uint8_t> bytes)
{
    m_state = std::make_unique<State>();
    m_state->bytes.take(std::move(bytes));
    return load();
}

CPDFStatus CPDFDocument::load()
{
    State& state = *m_state;
    state.reader = std::make_unique<CPDFFileReader>(state.bytes.data(), state.bytes.size());
    state.xref = std::make_unique<CPDFXRefTable>(state.reader.get());
    CPDFStatus status = state.reader->start(*state.xref);
    if (!status.ok())
        return status;
    if (state.reader->trailer().get_item("Encrypt"))
        return CPDFStatus::failed(PDF_CODE::ENCRYPTED, "the file is encrypted, which is not supported yet");

    const CPDFObj* root = state.reader->trailer().get_item("Root");
    if (!root) {
        state.xref->read_all_sections();  // the trailer may stand in an older section
        root = state.reader->trailer().get_item("Root");
    }
    if (!root || root->type != PDF_OBJ_REF)
        return CPDFStatus::failed(PDF_CODE::NO_CATALOG, "the file has no catalog: its trailer names none");
    state.root_ref = root->ref;
    state.xref->get_entity(state.root, root->ref);
    if (!state.root.dictionary())
        return CPDFStatus::failed(PDF_CODE::NO_CATALOG, "the file has no catalog: object " + std::to_string(root->ref.num) +
                                                            " is missing or damaged");
    const CPDFObj* form = state.root.dict->get_item(CPDFDictionary::sm_tag_acro_form);
    state.has_form = form != nullptr;
    state.form.load(state.xref.get(), form, &state.root, state.root_ref);
    state.reader->renew_budget();
    return {};
}

bool CPDFDocument::has_form() const
{
    return m_state->has_form;
}

CPDFAcroForm& CPDFDocument::form()
{
    return m_state->form;
}

CPDFXRefTable& CPDFDocument::xref()
{
    return *m_state->xref;
}

CPDFObj& CPDFDocument::root()
{
    return m_state->root;
}

const PDF_REF& CPDFDocument::root_ref() const
{
    return m_state->root_ref;
}

const CPDFDictionary& CPDFDocument::trailer() const
{
    return m_state->reader->trailer();
}

const uint8_t* CPDFDocument::data() const
{
    return m_state->bytes.data();
}

size_t CPDFDocument::size() const
{
    return m_state->bytes.size();
}

void CPDFDocument::names_changed()
{
    m_state->names_known = false;
    m_state->names.clear();
    m_state->plain_names.clear();
}

CPDFField* CPDFDocument::field(std::string_view name)
{
    State& state = *m_state;
    if (!state.names_known) {
        for_each_field(state.form, [&state](CPDFField& field) {
            if (field.m_name.len <= 0)
                return;
            state.names.emplace(full_name(field), &field);
            state.plain_names.emplace(full_name_without_index(field), &field);  // containers left out, too
        });
        state.names_known = true;
    }
    const std::string key(name);
    if (const auto found = state.names.find(key); found != state.names.end())
        return found->second;
    const auto found = state.plain_names.find(key);
    return found != state.plain_names.end() ? found->second : nullptr;
}

CPDFStatus CPDFDocument::set_text(CPDFField& field, std::string_view value, PDF_FILL fill)
{
    const auto refusal = [&field](PDF_CODE code, const std::string& why) {
        return CPDFStatus::failed(code, "field \"" + full_name(field) + "\" " + why);
    };
    if (field.m_type != FIELD_TEXT)
        return refusal(PDF_CODE::WRONG_KIND, "is no text field");
    if ((field.m_flags & FIELD_READ_ONLY) && fill != PDF_FILL::FORCE)
        return refusal(PDF_CODE::READ_ONLY, "is read-only");
    const auto* p = reinterpret_cast<const unsigned char*>(value.data());
    const unsigned char* end = p + value.size();
    int64_t characters = 0;
    for (; p < end; ++characters)
        ucs_from_utf8(p, end);
    const int32_t limit = max_length(field);
    if (limit > 0 && characters > limit)
        return refusal(PDF_CODE::LIMIT, "takes at most " + std::to_string(limit) + " characters, not " +
                                            std::to_string(characters));
    PDF_String text = pdf_string_of(std::string(value));
    field.set_edit_value(&text);
    text.release();
    return {};
}

CPDFStatus CPDFDocument::save(const std::string& path)
{
    std::string update;
    write_update(update, *m_state->xref, *m_state->reader, data(), size());
    return write_file(path, {{reinterpret_cast<const char*>(data()), size()}, update});
}

CPDFStatus CPDFDocument::save(std::vector<uint8_t>& out)
{
    std::string update;
    write_update(update, *m_state->xref, *m_state->reader, data(), size());
    out.assign(data(), data() + size());
    out.insert(out.end(), update.begin(), update.end());
    return {};
}
