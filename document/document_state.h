// What a document consists of, and what the files of the front class share.
#pragma once

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <unordered_set>

#include "core/alloc.h"
#include "document/compute/form_compute.h"
#include "document/document.h"
#include "document/edit/adoption.h"
#include "document/edit/edit.h"
#include "document/look/redraw.h"
#include "document/lookup/branch_finder.h"
#include "document/lookup/field_notes.h"
#include "document/lookup/field_options.h"
#include "document/lookup/name_index.h"
#include "document/lookup/page_map.h"
#include "document/lookup/signature_guard.h"
#include "document/lookup/widget_binder.h"
#include "file/file_bytes.h"
#include "file/file_reader.h"
#include "forms/acro_form.h"

class CPDFXfaForm;

// Members are in the order in which they depend on one another.
struct CPDFDocument::State {
    CPDFFileBytes bytes;
    std::unique_ptr<CPDFFileReader> reader;
    std::unique_ptr<CPDFXRefTable> xref;
    CPDFObj root;
    PDF_REF root_ref = {0, 0};
    std::optional<CPDFPageMap> page_map;
    CPDFWidgetBinder widgets;   // bound when they are needed
    bool widgets_whole = true;  // none was left unread
    std::optional<CPDFFieldNotes> field_notes;
    CPDFAcroForm form;
    bool form_loaded = false;
    bool form_whole = true;  // nothing of it was left unread
    CPDFAdoption adoption;
    bool adopted = false;
    size_t adopted_count = 0;  // the most since the file was opened
    std::optional<CPDFBranchFinder> branches{std::in_place};
    CPDFNameIndex names;
    std::optional<CPDFSignatureGuard> guard;
    std::vector<CPDFField*> filled;  // borrowed; the fields that were changed
    PDF_PROGRESS progress;
    int progress_calls = 0;
    bool edited = false;                     // fields were added, removed or changed in what they are
    PDF_RESCUE rescue = PDF_RESCUE::REPAIR;  // OFF, too, when it was tried
    std::string rescue_note;
    bool repaired = false;  // the bytes are those of the copy
    std::string password;   // that the file was opened with
    PDF_SCRIPTS scripts = PDF_SCRIPTS::KNOWN;
    double script_seconds = 2;
    std::optional<CPDFFormCompute> computer;                   // made when the first script may run
    std::optional<std::vector<CPDFField*>> calculation_order;  // borrowed; "CO"
    bool to_calculate = false;                                 // values changed since the last calculation
    std::vector<std::string> calculation_notes;
    std::unordered_set<std::string> calculation_noted;                     // the same
    std::optional<std::vector<PDF_DOCUMENT_SCRIPT>> document_script_list;  // read when they are asked for
    std::vector<CPDFField*> changed_fields;  // borrowed; those that scripts made another kind of
    std::vector<std::string> console;        // what scripts printed
    size_t skipped = 0;                      // scripts that should have run
    CPDFOptionIndex shown_options;
    PDF_DRAWING drawing = PDF_DRAWING::DRAW;
    bool asked_to_draw = false;                   // the form tells viewers to draw its texts anew
    bool values_changed = false;                  // since the widgets were drawn
    std::vector<CPDFField*> to_draw;              // borrowed; the fields whose widgets show what was before
    std::vector<CPDFAnnotWidget*> drawn_buttons;  // borrowed; those that got states
    std::optional<CPDFRedraw> redraw;
    std::vector<std::string> notes;  // of what could not be drawn

    CPDFStatus load(PDF_LOAD load, std::string_view password);
    CPDFStatus find_root();
    void read_root();
    const CPDFObj* form_entry() const;
    bool has_xfa() const;

    // What is made on the first need. Where memory runs out, nothing is there that lacks a part, and they throw. The fields
    // that were found before the form is loaded come into it. The form has the fields that only pages know, too; what it
    // lists is there without a walk through the pages.
    CPDFAcroForm& listed_form();
    CPDFAcroForm& loaded_form();
    CPDFWidgetBinder& bound_widgets();
    CPDFPageMap& pages();
    const CPDFSignatureGuard& signatures();

    // Refuses a form of which something was left unread.
    CPDFStatus load_whole_form();
    CPDFStatus check_whole() const;

    // Refuses where `permitted` is not.
    static CPDFStatus check_permission(bool permitted);

    void unbind_widgets();
    void forget_fields();
    void unload_form();

    // Refuses to change a field that is to be listed by the form then, where signatures forbid that.
    CPDFStatus check_listing(const CPDFField& field);
    // Puts adopted fields into the form dictionary: those that changed, or all.
    CPDFStatus list_changed();
    CPDFStatus list_all();

    CPDFStatus check_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill, PDF_FILL_PLAN& plan,
                           PDF_WORDS words);
    CPDFStatus apply(const PDF_FILL_PLAN& plan);
    CPDFStatus carry_out(const PDF_FILL_PLAN& plan);  // within the budget of what is going on
    CPDFStatus ask_to_draw();

    // Null where no scripts run.
    CPDFFormCompute* compute();
    PDF_SCRIPT_FIELDS script_fields();
    void assume(const PDF_FILL_PLAN& plan);
    PDF_SANDBOX_DOCUMENT sandbox_document();
    SCRIPT_DOCUMENT script_snapshot();
    const std::vector<PDF_DOCUMENT_SCRIPT>& document_scripts();
    // Stores what scripts made of other fields. Tells in `stored` whether values changed, and of which in `changed` unless that
    // is null.
    CPDFStatus take_from_sandbox(bool& stored, std::vector<CPDFField*>* changed);
    CPDFStatus store_traits(const SCRIPT_TRAITS& traits);
    CPDFStatus change_kind(CPDFField& field, const SCRIPT_TRAITS& traits);
    CPDFStatus change_widgets(CPDFField& field, const SCRIPT_TRAITS& traits);
    // Notes which scripts did not run, and what they printed.
    void note_scripts();
    void forget_scripts();
    // Whether the field's scripts take the value that `plan` is to store; they may change it.
    CPDFStatus commit(PDF_FILL_PLAN& plan, PDF_FILL fill);
    const std::vector<CPDFField*>& fields_to_calculate();
    CPDFStatus calculate(std::vector<CPDFField*>* changed);
    CPDFStatus calculate_in_order(const CPDFReadAllowance& allowance, std::vector<CPDFField*>* changed);
    CPDFStatus calculate_field(CPDFField& field, bool& stored, std::vector<CPDFField*>* changed);
    CPDFStatus store_calculated(CPDFField& field, CPDFValue value, bool& stored);
    void note_calculation(std::string sentence);

    // Tells who asked for it, now and then; false when the operation is to end.
    bool go_on(double done);

    // The widgets of these fields show something else from now on.
    CPDFStatus show(std::span<CPDFField* const> fields);
    // Draws what show() noted, and all that lacks an appearance where the form asks viewers to draw.
    CPDFStatus draw();
    CPDFStatus draw_changed();
    CPDFStatus draw_missing();
    CPDFStatus draw_states(CPDFField& field);
    // The same for fields whose widgets are to look anew in everything. Buttons are drawn at once, since only their
    // pictures say which states they have.
    CPDFStatus show_anew(std::span<CPDFField* const> fields);
    CPDFStatus show_moved(CPDFField& field, PDF_MOVED_LOOK look);
    // Scripts of fields were changed: the form is calculated with the new ones.
    void calculate_later();
    CPDFRedraw& painter();
    std::vector<PDF_DRAWN_WIDGET> widgets_to_draw(CPDFField& field);
    // Draws the texts of all fields where the form asks viewers to, and whatever lacks an appearance.
    CPDFStatus draw_all();
    CPDFStatus flatten();
    CPDFStatus begin_merge(PDF_EDIT edit);
    CPDFStatus draw_before_merge();
    CPDFStatus append(State& other, PDF_SAME_NAMES same_names, std::vector<std::string>& told);
    CPDFStatus put_joined(CPDFField& field, const CPDFValue& value);
    CPDFStatus reset(const std::vector<CPDFField*>* fields, PDF_FILL fill);
    CPDFStatus open_xfa(CPDFXfaForm& xfa);
    CPDFStatus take_xfa_values(CPDFXfaForm& xfa, std::vector<std::string>* notes);
    bool has_only_xfa();
    void summarize_fields(PDF_SUMMARY& out);
    CPDFStatus set_xfa_values(const std::vector<PDF_XFA_VALUE>& values, PDF_FILL fill, CPDFXfaForm& xfa,
                              std::vector<CPDFStatus>& each);
    CPDFStatus begin_edit(std::span<CPDFField* const> fields, PDF_EDIT edit);
    template <typename Operation>
    CPDFStatus edit(std::span<CPDFField* const> fields, PDF_EDIT edit, const Operation& operation);
    void check_circles(EDIT_TARGET& target, std::span<CPDFField* const> fields, const PDF_CALCULATION& calculation,
                       CPDFRefusals& refusals);
    CPDFStatus order_calculations();
    CPDFStatus make_update(std::string& update);
};

// The engine reports nothing when memory runs out: throws where that happened since `memory` was made.
inline void need_memory(const VXFailureCheck& memory)
{
    if (memory.failed())
        throw std::bad_alloc();
}

inline CPDFStatus no_memory_to(const char* what)
{
    return CPDFStatus::failed(PDF_CODE::NO_MEMORY, std::string("there is not enough memory to ") + what);
}

inline CPDFStatus too_much_to(const char* what)
{
    return CPDFStatus::failed(PDF_CODE::LIMIT,
                              std::string("it takes more work than the file's size justifies to ") + what);
}

// Runs an operation of the front class: where memory runs out it says so, whatever the operation made of it, and no
// exception gets out.
template <typename Operation>
CPDFStatus within_memory(const char* what, const Operation& operation)
{
    const VXFailureCheck memory;
    try {
        CPDFStatus status = operation();
        need_memory(memory);
        return status;
    } catch (const std::bad_alloc&) {
        return no_memory_to(what);
    }
}
