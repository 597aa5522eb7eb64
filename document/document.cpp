#include "document/document.h"

#include <unordered_map>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/remove_field.h"
#include "document/edit/rename_field.h"
#include "document/fill/need_appearances.h"
#include "document/fill/reset.h"
#include "document/lookup/branch_finder.h"
#include "document/lookup/field_text.h"
#include "document/lookup/name_index.h"
#include "document/lookup/page_map.h"
#include "document/lookup/signature_guard.h"
#include "document/lookup/widget_binder.h"
#include "document/lookup/xml_fit.h"
#include "file/file_bytes.h"
#include "file/file_reader.h"
#include "file/output_file.h"
#include "file/update.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

// Members are in the order in which they depend on one another.
struct CPDFDocument::State {
    CPDFFileBytes bytes;
    std::unique_ptr<CPDFFileReader> reader;
    std::unique_ptr<CPDFXRefTable> xref;
    CPDFObj root;
    PDF_REF root_ref = {0, 0};
    std::unique_ptr<CPDFPageMap> pages;
    std::unique_ptr<CPDFWidgetBinder> widgets;
    CPDFAcroForm form;
    bool form_loaded = false;
    bool form_whole = true;  // nothing of it was left unread
    std::unique_ptr<CPDFBranchFinder> branches = std::make_unique<CPDFBranchFinder>();
    CPDFNameIndex names;
    std::unique_ptr<CPDFSignatureGuard> signatures;
    std::vector<CPDFField*> filled;                  // borrowed; the fields that were changed
    bool edited = false;                             // fields were added, removed or changed in what they are
    bool asked_to_draw = false;                      // the form tells viewers to draw its texts anew
    std::unordered_map<uint32_t, CPDFField*> twins;  // borrowed; the fields of the form that `branches` has, too

    const CPDFObj* form_entry() const
    {
        const CPDFDictionary* catalog = root.dictionary();
        return catalog ? catalog->get_item(CPDFDictionary::sm_tag_acro_form) : nullptr;
    }

    void load_form()
    {
        if (form_loaded)
            return;
        form_loaded = true;
        reader->renew_budget();
        form.load(xref.get(), form_entry(), &root, root_ref);
        form_whole = !reader->exhausted();
        reader->renew_budget();
        for_each_field(form, [this](CPDFField& field) {
            if (branches->known(field.m_ref))
                twins[field.m_ref.num] = &field;
        });
    }

    CPDFStatus load_whole_form()
    {
        load_form();
        if (form_whole)
            return {};
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the form takes more work to read than its size justifies");
    }

    // Kids without a name may have lost values of their own.
    static void reload_tree(CPDFField& field)
    {
        for_each_field(field, [](CPDFField& at) { at.reload_value(); });
    }

    void reload_twin(const CPDFField& field)
    {
        const auto twin = twins.find(field.m_ref.num);
        if (twin != twins.end() && twin->second != &field)
            reload_tree(*twin->second);
    }
};

CPDFDocument::CPDFDocument() : m_state(std::make_unique<State>()) {}

CPDFDocument::~CPDFDocument() = default;

CPDFStatus CPDFDocument::open(const std::string& path, PDF_LOAD load_how)
{
    m_state = std::make_unique<State>();
    CPDFStatus status = m_state->bytes.open(path);
    return status.ok() ? load(load_how) : status;
}

CPDFStatus CPDFDocument::open(std::vector<uint8_t> bytes, PDF_LOAD load_how)
{
    m_state = std::make_unique<State>();
    m_state->bytes.take(std::move(bytes));
    return load(load_how);
}

CPDFStatus CPDFDocument::load(PDF_LOAD load_how)
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
        return CPDFStatus::failed(PDF_CODE::NO_CATALOG, "the file has no catalog: object " +
                                                            std::to_string(root->ref.num) + " is missing or damaged");
    return load_how == PDF_LOAD::WHOLE_FORM ? state.load_whole_form() : CPDFStatus();
}

bool CPDFDocument::has_form() const
{
    return m_state->form_entry() != nullptr;
}

bool CPDFDocument::has_xfa()
{
    CPDFObj scratch;
    const CPDFDictionary* form = view_obj(m_state->xref.get(), m_state->form_entry(), scratch)->dictionary();
    return form && form->get_item("XFA");
}

CPDFAcroForm& CPDFDocument::form()
{
    m_state->load_form();
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

void CPDFDocument::fields_changed()
{
    forget_widgets();
    m_state->names.clear();
    m_state->filled.clear();
    m_state->twins.clear();
    m_state->branches = std::make_unique<CPDFBranchFinder>();
    m_state->pages.reset();
    m_state->signatures.reset();
}

// They are bound anew when they are needed.
void CPDFDocument::forget_widgets()
{
    if (m_state->widgets)
        for_each_field(m_state->form, [](CPDFField& field) { field.m_widget = nullptr; });
    m_state->widgets.reset();
}

CPDFField* CPDFDocument::field(std::string_view name)
{
    State& state = *m_state;
    if (!state.form_loaded) {
        if (CPDFField* found = state.branches->find(*state.xref, state.form_entry(), name))
            return found;
    }
    CPDFField* found = state.names.find(form(), name);
    CPDFField* known = found ? state.branches->known(found->m_ref) : nullptr;
    return known ? known : found;
}

CPDFWidgetBinder& CPDFDocument::bound_widgets()
{
    State& state = *m_state;
    if (!state.widgets) {
        state.widgets = std::make_unique<CPDFWidgetBinder>();
        state.widgets->bind(*state.xref, form(), pages());
        state.reader->renew_budget();
    }
    return *state.widgets;
}

CPDFPageMap& CPDFDocument::pages()
{
    State& state = *m_state;
    if (!state.pages) {
        state.pages = std::make_unique<CPDFPageMap>();
        state.pages->load(*state.xref, state.root);
    }
    return *state.pages;
}

const CPDFSignatureGuard& CPDFDocument::signatures()
{
    State& state = *m_state;
    if (!state.signatures) {
        const CPDFDictionary& root = *state.root.dict;
        state.signatures = has_signature(data(), size(), *state.xref, root)
                               ? std::make_unique<CPDFSignatureGuard>(*state.xref, form(), root)
                               : std::make_unique<CPDFSignatureGuard>();
    }
    return *state.signatures;
}

std::span<CPDFAnnotWidget* const> CPDFDocument::widgets_of(const CPDFField& field)
{
    return bound_widgets().widgets_of(field);
}

std::vector<PDF_BUTTON_CHOICE> CPDFDocument::choices_of(const CPDFField& field)
{
    return button_choices(field, bound_widgets());
}

CPDFStatus CPDFDocument::check_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill, PDF_FILL_PLAN& plan,
                                     PDF_WORDS words)
{
    const CPDFWidgetBinder no_widgets;
    const bool button = field.m_type == FIELD_BUTTON;
    m_state->reader->renew_budget();
    CPDFStatus status = plan_fill(field, value, fill, words, button ? bound_widgets() : no_widgets, plan);
    if (!status.ok() || fill == PDF_FILL::FORCE || plan.action == PDF_FILL_PLAN::KEEP)
        return status;
    status = signatures().check_fill(field);
    return status.ok() || plan_keep(field, value, plan) ? CPDFStatus() : status;
}

CPDFStatus CPDFDocument::set_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill)
{
    PDF_FILL_PLAN plan;
    CPDFStatus status = check_value(field, value, fill, plan);
    return status.ok() ? apply(plan) : status;
}

CPDFStatus CPDFDocument::set_text(CPDFField& field, std::string_view value, PDF_FILL fill)
{
    if (field.m_type != FIELD_TEXT)
        return CPDFStatus::failed(PDF_CODE::WRONG_KIND, "field \"" + full_name(field) + "\" is no text field");
    return set_value(field, std::string(value), fill);
}

CPDFStatus CPDFDocument::apply(const PDF_FILL_PLAN& plan)
{
    State& state = *m_state;
    const CPDFWidgetBinder no_widgets;
    const bool button = plan.action == PDF_FILL_PLAN::SET_BUTTON;
    state.reader->renew_budget();
    const size_t before = state.filled.size();
    CPDFStatus status = apply_fill(*state.xref, plan, button ? bound_widgets() : no_widgets, state.filled);
    for (size_t i = before; i < state.filled.size(); ++i)
        state.reload_twin(*state.filled[i]);
    if (!button && state.filled.size() > before)
        ask_to_draw();
    return status;
}

void CPDFDocument::ask_to_draw()
{
    State& state = *m_state;
    if (state.asked_to_draw || signatures().is_signed())
        return;
    set_need_appearances(*state.xref, state.root, state.root_ref);
    state.asked_to_draw = true;
}

CPDFStatus CPDFDocument::reset(PDF_FILL fill)
{
    return reset_fields(nullptr, fill);
}

CPDFStatus CPDFDocument::reset(const std::vector<CPDFField*>& fields, PDF_FILL fill)
{
    return reset_fields(&fields, fill);
}

CPDFStatus CPDFDocument::reset_fields(const std::vector<CPDFField*>* fields, PDF_FILL fill)
{
    State& state = *m_state;
    CPDFStatus status = state.load_whole_form();
    if (!status.ok())
        return status;
    const CPDFWidgetBinder& widgets = bound_widgets();
    PDF_RESET_PLAN plan;
    status = plan_reset(form(), fields, widgets, plan);
    if (status.ok() && fill != PDF_FILL::FORCE)
        status = check_locks(plan.fields);
    if (!status.ok())
        return status;
    const VXFailureCheck memory;
    state.reader->renew_budget();
    bool texts = false;
    status = apply_reset(*state.xref, plan, widgets, state.filled, texts);
    if (texts)
        ask_to_draw();
    for (const CPDFField* field : plan.fields) {
        CPDFField* known = state.branches->known(field->m_ref);
        if (!known || known == field)
            continue;
        State::reload_tree(*known);
        state.filled.push_back(known);
    }
    if (memory.failed())
        return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to reset the form");
    if (state.reader->exhausted())
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the form takes more work to reset than its size justifies");
    return status;
}

CPDFStatus CPDFDocument::check_locks(const std::vector<CPDFField*>& fields)
{
    CPDFStatus first;
    size_t locked = 0;
    for (const CPDFField* field : fields) {
        CPDFStatus status = signatures().check_fill(*field);
        if (!status.ok() && locked++ == 0)
            first = std::move(status);
    }
    if (locked > 1)
        first.text += ", and so are " + std::to_string(locked - 1) + " more";
    return first;
}

CPDFStatus CPDFDocument::reset_xfa()
{
    if (!has_xfa())
        return {};
    State& state = *m_state;
    if (CPDFStatus status = state.load_whole_form(); !status.ok())
        return status;
    if (CPDFStatus status = check_xfa_data(form()); !status.ok())
        return status;
    state.reader->renew_budget();
    const VXFailureCheck memory;
    CPDFObj data_set;
    state.xref->get_entity(data_set, form().m_xfa_ref);
    if (data_set.type == PDF_OBJ_STREAM)
        form().reset_XFA(state.xref.get());
    data_set.free();
    state.xref->get_entity(data_set, form().m_xfa_ref);
    if (memory.failed())
        return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to write the XFA data");
    if (data_set.type == PDF_OBJ_STREAM && data_set.stream->in_memory)
        return {};
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, "the XFA data have no data set that can be replaced");
}

// What every edit begins with: the field of the whole form in place of one of a single branch, the checks, and what
// would not survive the change. `field` may be null.
CPDFStatus CPDFDocument::begin_edit(CPDFField*& field, PDF_EDIT edit)
{
    State& state = *m_state;
    if (CPDFStatus status = state.load_whole_form(); !status.ok())
        return status;
    state.reader->renew_budget();
    if (field && state.branches->known(field->m_ref) == field) {
        field = state.form.find(field->m_ref);
        if (!field)
            return CPDFStatus::failed(PDF_CODE::NO_FIELD, "the field is not in the form that was loaded as a whole");
    }
    state.branches = std::make_unique<CPDFBranchFinder>();
    state.twins.clear();
    state.filled.clear();
    state.edited = true;
    return edit == PDF_EDIT::FORCE ? CPDFStatus() : signatures().check_edit(field);
}

EDIT_TARGET CPDFDocument::edit_target()
{
    State& state = *m_state;
    return {*state.xref, state.form, state.root, state.root_ref, pages(), state.names};
}

CPDFStatus CPDFDocument::add_field(const PDF_NEW_FIELD& field, PDF_EDIT edit, CPDFField** out)
{
    CPDFField* added = nullptr;
    CPDFStatus status = begin_edit(added, edit);
    EDIT_TARGET target = edit_target();
    if (status.ok())
        status = ::add_field(target, field, added);
    if (!added)
        return status;
    if (m_state->widgets && !m_state->widgets->bind_added(*m_state->xref, *added, pages()))
        forget_widgets();
    const std::optional<CPDFValue>& value = field.entries.default_value;
    if (status.ok() && value) {
        PDF_FIELD_CHANGE change;
        change.default_value = value;
        status = ::change_field(*added, change, bound_widgets());
        if (status.ok())
            status = set_value(*added, *value, PDF_FILL::FORCE);
    }
    if (!status.ok()) {
        (void)::remove_field(target, *added, bound_widgets());
        return status;
    }
    if (added->m_type == FIELD_TEXT || added->m_type == FIELD_CHOICE)
        ask_to_draw();
    if (out)
        *out = added;
    return status;
}

CPDFStatus CPDFDocument::remove_field(CPDFField& field, PDF_EDIT edit)
{
    CPDFField* removed = &field;
    CPDFStatus status = begin_edit(removed, edit);
    if (!status.ok())
        return status;
    if (removed->has_sign())
        m_state->signatures.reset();
    EDIT_TARGET target = edit_target();
    return ::remove_field(target, *removed, bound_widgets());
}

CPDFStatus CPDFDocument::rename_field(CPDFField& field, const std::string& name, PDF_EDIT edit)
{
    CPDFField* renamed = &field;
    CPDFStatus status = begin_edit(renamed, edit);
    EDIT_TARGET target = edit_target();
    return status.ok() ? ::rename_field(target, *renamed, name) : status;
}

CPDFStatus CPDFDocument::move_field(CPDFField& field, CPDFField* parent, PDF_EDIT edit, CPDFField** out)
{
    CPDFField* moved = &field;
    const PDF_REF above = parent ? parent->m_ref : PDF_REF{0, 0};
    CPDFStatus status = begin_edit(moved, edit);
    if (!status.ok())
        return status;
    CPDFField* group = parent ? m_state->form.find(above) : nullptr;
    if (parent && !group)
        return CPDFStatus::failed(PDF_CODE::NO_FIELD, "the group is not in the form that was loaded as a whole");
    EDIT_TARGET target = edit_target();
    status = ::move_field(target, *moved, group, moved);
    if (status.ok())
        forget_widgets();
    if (out)
        *out = moved;
    return status;
}

CPDFStatus CPDFDocument::change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, PDF_EDIT edit)
{
    CPDFField* changed = &field;
    CPDFStatus status = begin_edit(changed, edit);
    if (status.ok())
        status = ::change_field(*changed, change, bound_widgets());
    constexpr uint32_t DRAWN = FIELD_MULTILINE | FIELD_PASSWORD | FIELD_COMB;
    if (status.ok() && (change.options || change.max_length || ((change.set_flags | change.clear_flags) & DRAWN)))
        ask_to_draw();
    return status;
}

void CPDFDocument::begin_reading()
{
    bound_widgets();
    m_state->reader->renew_budget();
}

bool CPDFDocument::reading_ended() const
{
    return m_state->reader->exhausted();
}

void CPDFDocument::revert()
{
    State& state = *m_state;
    state.xref->discard_changes();
    if (state.edited) {
        fields_changed();
        state.edited = state.asked_to_draw = state.form_loaded = false;
        state.root.free();
        state.xref->get_entity(state.root, state.root_ref);
        state.form.unload();
        state.form.m_ref = {0, 0};
        state.load_form();
        return;
    }
    for (CPDFField* field : state.filled) {
        State::reload_tree(*field);
        state.reload_twin(*field);
    }
    state.filled.clear();
    state.asked_to_draw = false;
    state.root.free();
    state.xref->get_entity(state.root, state.root_ref);
    state.reader->renew_budget();
}

CPDFStatus CPDFDocument::make_update(std::string& update)
{
    write_update(update, *m_state->xref, *m_state->reader, data(), size());
    if (size() + update.size() > UINT32_MAX)
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the output would be larger than 4 GiB, which is not supported");
    return {};
}

CPDFStatus CPDFDocument::save(const std::string& path)
{
    std::string update;
    if (CPDFStatus status = make_update(update); !status.ok())
        return status;
    const std::string_view input(reinterpret_cast<const char*>(data()), size());
    return write_file(path, {input, m_state->bytes.descriptor()}, update);
}

CPDFStatus CPDFDocument::save(std::vector<uint8_t>& out)
{
    std::string update;
    if (CPDFStatus status = make_update(update); !status.ok())
        return status;
    out.assign(data(), data() + size());
    out.insert(out.end(), update.begin(), update.end());
    return {};
}
