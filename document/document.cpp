#include "document/document.h"

#include <algorithm>
#include <utility>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document_state.h"
#include "document/fill/need_appearances.h"
#include "document/lookup/field_text.h"
#include "document/lookup/name_guess.h"
#include "file/file_reader.h"
#include "file/output_file.h"
#include "file/update.h"
#include "forms/field_walk.h"

CPDFDocument::CPDFDocument() : m_state(std::make_unique<State>()) {}

CPDFDocument::~CPDFDocument() = default;

CPDFStatus CPDFDocument::open(const std::string& path, PDF_LOAD load, std::string_view password)
{
    return within_memory("open the file", [&] {
        renew_state();
        CPDFStatus status = m_state->bytes.open(path);
        return status.ok() ? load_or_rescue(load, password) : status;
    });
}

CPDFStatus CPDFDocument::open(std::vector<uint8_t> bytes, PDF_LOAD load, std::string_view password)
{
    return within_memory("open the file", [&] {
        renew_state();
        m_state->bytes.take(std::move(bytes));
        return load_or_rescue(load, password);
    });
}

CPDFStatus CPDFDocument::open_borrowed(std::span<const uint8_t> bytes, PDF_LOAD load, std::string_view password)
{
    return within_memory("open the file", [&] {
        renew_state();
        m_state->bytes.borrow(bytes.data(), bytes.size());
        return load_or_rescue(load, password);
    });
}

CPDFStatus CPDFDocument::load_form()
{
    return within_memory("read the form", [&] { return m_state->load_whole_form(); });
}

bool CPDFDocument::has_loaded_form() const
{
    return m_state->form_loaded;
}

void CPDFDocument::renew_state()
{
    auto state = std::make_unique<State>();
    state->drawing = m_state->drawing;
    state->scripts = m_state->scripts;
    state->script_seconds = m_state->script_seconds;
    state->rescue = m_rescue;
    state->progress = m_state->progress;
    m_state = std::move(state);
}

CPDFStatus CPDFDocument::State::load(PDF_LOAD load, std::string_view password)
{
    reader = std::make_unique<CPDFFileReader>(bytes.data(), bytes.size());
    xref = std::make_unique<CPDFXRefTable>(reader.get());
    CPDFStatus status = reader->start(*xref);
    if (status.ok())
        status = reader->unlock(*xref, password);
    if (status.ok())
        status = find_root();
    if (load == PDF_LOAD::FORM_AND_NOTES)
        field_notes.emplace(*xref);
    if (!status.ok() || load == PDF_LOAD::NAMED_FIELDS)
        return status;
    listed_form();
    return check_whole();
}

CPDFStatus CPDFDocument::State::find_root()
{
    const CPDFObj* entry = reader->trailer().get_item("Root");
    if (!entry) {
        xref->read_all_sections();  // the trailer may stand in an older section
        entry = reader->trailer().get_item("Root");
    }
    if (!entry || entry->type != PDF_OBJ_REF)
        return CPDFStatus::failed(PDF_CODE::NO_CATALOG, "the file has no catalog: its trailer names none");
    root_ref = entry->ref;
    read_root();
    if (root.dictionary())
        return {};
    return CPDFStatus::failed(PDF_CODE::NO_CATALOG, "the file has no catalog: object " + std::to_string(root_ref.num) +
                                                        " is missing or damaged");
}

void CPDFDocument::State::read_root()
{
    root.free();
    xref->get_entity(root, root_ref);
}

const CPDFObj* CPDFDocument::State::form_entry() const
{
    const CPDFDictionary* catalog = root.dictionary();
    return catalog ? catalog->get_item(CPDFDictionary::sm_tag_acro_form) : nullptr;
}

bool CPDFDocument::State::has_xfa() const
{
    const CPDFEntryView entry(xref.get(), form_entry());
    const CPDFDictionary* dict = entry->dictionary();
    return dict && dict->get_item("XFA");
}

CPDFAcroForm& CPDFDocument::State::listed_form()
{
    if (form_loaded)
        return form;
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    form.unload();  // what was loaded when memory ran out
    form.load(xref.get(), form_entry(), &root, root_ref, field_notes ? &*field_notes : nullptr);
    need_memory(memory);
    form_whole = !allowance.used_up();
    branches->graft(form);
    form_loaded = true;
    return form;
}

// What takes too much work is not adopted: the fields that the form lists are worth having without.
CPDFAcroForm& CPDFDocument::State::loaded_form()
{
    listed_form();
    if (adopted)
        return form;
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    adoption.give_back(form);  // what was adopted when memory ran out
    EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
    adoption.adopt(target);
    if (memory.failed() || allowance.used_up())
        adoption.give_back(form);
    need_memory(memory);
    if (adoption.count() > 0)
        names.clear();
    adopted_count = std::max(adopted_count, adoption.count());
    adopted = true;
    return form;
}

CPDFStatus CPDFDocument::State::load_whole_form()
{
    loaded_form();
    return check_whole();
}

CPDFStatus CPDFDocument::State::check_whole() const
{
    if (form_whole)
        return {};
    return CPDFStatus::failed(PDF_CODE::LIMIT, "the form takes more work to read than its size justifies");
}

CPDFWidgetBinder& CPDFDocument::State::bound_widgets()
{
    if (!widgets.is_bound()) {
        const VXFailureCheck memory;
        loaded_form();
        const CPDFReadAllowance allowance(reader->budget());
        unbind_widgets();  // what was bound when memory ran out
        widgets.bind(*xref, form, pages());
        if (memory.failed())
            unbind_widgets();
        need_memory(memory);
        widgets_whole = !allowance.used_up();
    }
    return widgets;
}

CPDFPageMap& CPDFDocument::State::pages()
{
    if (!page_map) {
        const VXFailureCheck memory;
        CPDFPageMap map;
        map.load(*xref, root);
        need_memory(memory);
        page_map = std::move(map);
    }
    return *page_map;
}

const CPDFSignatureGuard& CPDFDocument::State::signatures()
{
    if (!guard) {
        const VXFailureCheck memory;
        CPDFSignatureGuard read;
        if (has_signature(bytes.data(), bytes.size(), *xref, *root.dict))
            read = CPDFSignatureGuard(*xref, loaded_form(), *root.dict);
        need_memory(memory);
        guard = std::move(read);
    }
    return *guard;
}

void CPDFDocument::State::unbind_widgets()
{
    for_each_field(form, [](CPDFField& field) { field.m_widget = nullptr; });
    widgets.clear();
}

void CPDFDocument::State::forget_fields()
{
    unbind_widgets();
    names.clear();
    filled.clear();
    to_draw.clear();
    drawn_buttons.clear();
    forget_scripts();
    shown_options = {};
    redraw.reset();
    branches.emplace();
    page_map.reset();
    guard.reset();
}

void CPDFDocument::State::unload_form()
{
    if (field_notes)
        field_notes->clear();
    adoption = CPDFAdoption();
    adopted = form_loaded = false;
    form.unload();
    form.m_ref = {0, 0};
}

CPDFStatus CPDFDocument::State::check_listing(const CPDFField& field)
{
    if (!adoption.is_unlisted(field))
        return {};
    CPDFStatus status = signatures().check_edit(nullptr);
    if (!status.ok())
        status.text =
            "field " + in_quotes(full_name(field)) + " is not in the form's list of fields, and " + status.text;
    return status;
}

CPDFStatus CPDFDocument::State::list_changed()
{
    if (adoption.count() == 0)
        return {};
    EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
    CPDFStatus status = adoption.list_changed(target);
    // There was perhaps no form dictionary yet to ask in.
    if (status.ok() && asked_to_draw && set_need_appearances(*xref, root, root_ref) == PDF_CHANGE_RESULT::NO_MEMORY)
        status = no_memory_to("draw the fields");
    return status;
}

CPDFStatus CPDFDocument::State::check_permission(bool permitted)
{
    return permitted ? CPDFStatus()
                     : CPDFStatus::failed(PDF_CODE::NOT_PERMITTED,
                                          "the file is encrypted, and its permissions forbid to change the form");
}

bool CPDFDocument::permits_filling() const
{
    return m_state->reader->permits_filling();
}

bool CPDFDocument::permits_editing() const
{
    return m_state->reader->permits_editing();
}

bool CPDFDocument::has_form() const
{
    return m_state->form_entry() != nullptr;
}

bool CPDFDocument::is_signed()
{
    return m_state->signatures().is_signed();
}

bool CPDFDocument::has_xfa()
{
    const VXFailureCheck memory;
    const bool found = m_state->has_xfa();
    need_memory(memory);
    return found;
}

CPDFAcroForm& CPDFDocument::form()
{
    return m_state->loaded_form();
}

size_t CPDFDocument::adopted_fields() const
{
    return m_state->adopted_count;
}

const CPDFPageMap& CPDFDocument::pages()
{
    return m_state->pages();
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

void CPDFDocument::fields_changed()
{
    m_state->forget_fields();
    m_state->adoption.fields_changed(m_state->form);
}

CPDFField* CPDFDocument::field(std::string_view name)
{
    State& state = *m_state;
    const VXFailureCheck memory;
    CPDFField* found = nullptr;
    if (!state.form_loaded)
        found = state.branches->find(*state.xref, state.form_entry(), name);
    if (!found)
        found = state.names.find(state.listed_form(), name);
    if (!found && !state.adopted)
        found = state.names.find(state.loaded_form(), name);
    if (memory.failed())
        state.names.clear();
    need_memory(memory);
    return found;
}

CPDFField* CPDFDocument::find_field(std::string_view word, CPDFStatus& why, PDF_FIELD_WORDS words)
{
    const VXFailureCheck memory;
    CPDFField* found = field(word);
    if (!found && words == PDF_FIELD_WORDS::PARTS) {
        found = guess_field(m_state->loaded_form(), word, why);
    } else if (!found) {
        found = field_at(m_state->loaded_form(), word);
        why = found ? CPDFStatus() : no_such_field(m_state->loaded_form(), word);
    }
    need_memory(memory);
    return found;
}

CPDFStatus CPDFDocument::no_field(std::string_view name)
{
    const VXFailureCheck memory;
    CPDFStatus status = no_such_field(m_state->loaded_form(), name);
    need_memory(memory);
    return status;
}

size_t CPDFDocument::fields_named(std::string_view name)
{
    const VXFailureCheck memory;
    State& state = *m_state;
    size_t count = 2;
    if (!state.form_loaded)
        count = static_cast<size_t>(state.branches->count(*state.xref, state.form_entry(), name));
    if (count > 1)
        count = state.names.count(state.listed_form(), name);
    if (memory.failed())
        state.names.clear();
    need_memory(memory);
    return count;
}

CPDFFieldNotes& CPDFDocument::field_notes()
{
    if (!m_state->field_notes)
        m_state->field_notes.emplace(*m_state->xref);
    return *m_state->field_notes;
}

std::span<CPDFAnnotWidget* const> CPDFDocument::widgets_of(const CPDFField& field)
{
    return m_state->bound_widgets().widgets_of(field);
}

std::vector<PDF_BUTTON_CHOICE> CPDFDocument::choices_of(const CPDFField& field)
{
    const VXFailureCheck memory;
    std::vector<PDF_BUTTON_CHOICE> choices = button_choices(field, m_state->bound_widgets());
    need_memory(memory);
    return choices;
}

CPDFReadAllowance CPDFDocument::reading()
{
    m_state->bound_widgets();
    return CPDFReadAllowance(m_state->reader->budget());
}

bool CPDFDocument::read_too_much() const
{
    return m_state->reader->budget().exhausted() || !m_state->widgets_whole;
}

bool CPDFDocument::has_edits() const
{
    return m_state->edited;
}

void CPDFDocument::revert()
{
    State& state = *m_state;
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(state.reader->budget());
    state.xref->discard_changes();
    state.asked_to_draw = state.values_changed = false;
    state.to_draw.clear();
    state.notes.clear();
    if (CPDFFieldSandbox* sandbox = state.computer ? state.computer->sandbox() : nullptr)
        sandbox->renew();
    state.calculation_notes.clear();
    state.calculation_noted.clear();
    state.console.clear();
    state.to_calculate = false;
    state.shown_options = {};
    if (state.redraw)
        state.redraw->changes_dropped();
    if (std::exchange(state.edited, false)) {
        state.forget_fields();
        state.unload_form();
        state.read_root();
        need_memory(memory);
        state.listed_form();
        return;
    }
    state.read_root();
    state.adoption.changes_dropped(state.form);
    for (CPDFAnnotWidget* widget : std::exchange(state.drawn_buttons, {}))
        widget->load(state.xref.get(), widget->m_ref);
    // Kids without a name may have lost values of their own.
    for (CPDFField* field : state.filled)
        for_each_field(*field, [](CPDFField& at) { at.reload_value(); });
    state.filled.clear();
    for (CPDFField* field : std::exchange(state.changed_fields, {}))
        for_each_field(*field, [](CPDFField& at) { at.reload_entries(); });
    need_memory(memory);
}

CPDFStatus CPDFDocument::State::make_update(std::string& update)
{
    CPDFStatus status = draw();
    if (status.ok())
        status = list_changed();
    if (!status.ok())
        return status;
    const VXFailureCheck memory;
    write_update(update, *xref, *reader, bytes.data(), bytes.size());
    need_memory(memory);
    if (bytes.size() + update.size() > UINT32_MAX)
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the output would be larger than 4 GiB, which is not supported");
    return {};
}

CPDFStatus CPDFDocument::save(const std::string& path)
{
    return within_memory("save the file", [&] {
        std::string update;
        if (CPDFStatus status = m_state->make_update(update); !status.ok())
            return status;
        return write(path, update);
    });
}

CPDFStatus CPDFDocument::make_update(std::string& update)
{
    return within_memory("save the file", [&] {
        update.clear();
        return m_state->make_update(update);
    });
}

CPDFStatus CPDFDocument::write(const std::string& path, std::string_view update) const
{
    return within_memory("save the file", [&] {
        const std::string_view input(reinterpret_cast<const char*>(data()), size());
        return write_file(path, {input, m_state->bytes.descriptor()}, update);
    });
}

CPDFStatus CPDFDocument::save(std::vector<uint8_t>& out)
{
    return within_memory("save the file", [&] {
        std::string update;
        if (CPDFStatus status = m_state->make_update(update); !status.ok())
            return status;
        std::vector<uint8_t> file;
        file.reserve(size() + update.size());
        file.assign(data(), data() + size());
        file.insert(file.end(), update.begin(), update.end());
        out = std::move(file);
        return CPDFStatus();
    });
}
