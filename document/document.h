// The front class: open a PDF file, work with its form, save it as an incremental update.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/object.h"
#include "document/compute/scripts.h"
#include "document/design/field_design.h"
#include "document/design/move_field.h"
#include "document/design/tab_order.h"
#include "document/edit/add_field.h"
#include "document/fill/filler.h"
#include "document/merge/same_names.h"
#include "file/read_budget.h"
#include "file/status.h"

class CPDFAcroForm;
class CPDFAnnotWidget;
class CPDFField;
class CPDFFieldNotes;
class CPDFPageMap;
class CPDFXRefTable;
struct PDF_SUMMARY;
struct PDF_XFA_VALUE;

// How much of the form open loads.
enum class PDF_LOAD {
    WHOLE_FORM,
    FORM_AND_NOTES,  // also what field_notes has, which is read again otherwise
    NAMED_FIELDS,    // nothing: field() loads single fields, form() and everything that needs it the whole form
};

// What people may call a field by.
enum class PDF_FIELD_WORDS {
    PARTS,    // its full name, a part of that which no other field has, or its number
    NUMBERS,  // its full name or its number
};

// Who draws widgets whose value changed.
enum class PDF_DRAWING {
    DRAW,              // this library, when the document is saved
    LEAVE_TO_VIEWERS,  // viewers, which are asked to by "NeedAppearances" unless the file is signed
};

// What becomes of files too damaged to be read as they are.
enum class PDF_RESCUE {
    REPAIR,  // qpdf, in a process of its own, writes a clean copy, which takes the file's place
    OFF,     // they are refused, and what else is broken is absent; for programs that must not fork
};

// Told how much of an operation is done, from 0 to 1; false ends it with CANCELLED.
using PDF_PROGRESS = std::function<bool(double done)>;

// One document. It owns the file's bytes, the object store and the form; everything it hands out is borrowed and ends
// with it. One thread at a time. Where memory runs out, operations with a status answer NO_MEMORY; the others throw
// std::bad_alloc.
//
//     CPDFDocument document;
//     if (CPDFStatus status = document.open("form.pdf"); !status.ok()) ...
//     CPDFField* field = document.field("address.city");
//     status = document.set_value(*field, "Zürich");
//     status = document.save("filled.pdf");
class CPDFDocument {
public:
    CPDFDocument();
    ~CPDFDocument();
    CPDFDocument(const CPDFDocument&) = delete;
    CPDFDocument& operator=(const CPDFDocument&) = delete;

    // Opens a file, or takes its bytes, and loads the form; a form that takes more work than its size justifies is
    // refused. A file in which the cross-reference data, the catalog or an object of the form is broken is repaired, see
    // rescue_note. A document without a form opens with an empty one. An encrypted file opens with the empty password or with
    // `password`, the user's or the owner's in UTF-8; what is appended to it is encrypted with the same key. After a failure,
    // or before any call, the document is closed: every other operation needs a successful open.
    CPDFStatus open(const std::string& path, PDF_LOAD load = PDF_LOAD::WHOLE_FORM, std::string_view password = {});
    CPDFStatus open(std::vector<uint8_t> bytes, PDF_LOAD load = PDF_LOAD::WHOLE_FORM, std::string_view password = {});
    // The same for bytes that stay where they are until the document ends.
    CPDFStatus open_borrowed(std::span<const uint8_t> bytes, PDF_LOAD load = PDF_LOAD::WHOLE_FORM,
                             std::string_view password = {});

    // Whether the author of an encrypted file permits, with the password that opened it, to put values into fields, and to
    // add, remove and change fields. True for the owner's password, and for files that are not encrypted. What is not
    // permitted is refused unless it is forced.
    bool permits_filling() const;
    bool permits_editing() const;

    // For the files that are opened from now on; REPAIR at first.
    void set_rescue(PDF_RESCUE rescue);

    // What was broken, and that the repaired copy of the file took its place or why it could not: one sentence for
    // people; empty where nothing was. The copy is what data() gives and what save writes before the changes.
    const std::string& rescue_note() const;
    // Whether it could.
    bool was_repaired() const;

    // Takes the repaired copy, if it has more of the form, where something broken was noticed since the file was opened:
    // by field() of a document opened for named fields, or in the pages. True when it did; changes are dropped then and
    // all fields end, so that the work is to be done again. Costs nothing where nothing is broken, and a copy is made
    // once at most.
    bool mend();

    // Loads the whole form of a document that was opened for named fields; refuses it as open does.
    CPDFStatus load_form();
    // Whether that was done, by this call or another one that needs it.
    bool has_loaded_form() const;

    // Whether the catalog names a form.
    bool has_form() const;
    // Whether a signature field is signed, or the document is certified.
    bool is_signed();
    // Whether the form has XFA data beside its fields. Filling leaves them as they are, see write_xfa.
    bool has_xfa();
    // The fields of the form, and behind them those that only pages know, which are adopted: widgets that no field of the
    // form's list leads to, under the top of their "Parent" chain. The first save after a change of such a field puts it into
    // the list; a missing form dictionary is made then, but pages are walked on the first call.
    CPDFAcroForm& form();
    // How many fields were adopted so far; those that a name finds without them are not looked for.
    size_t adopted_fields() const;
    // The pages, walked on the first call. Borrowed until fields_changed or a revert that loads the form anew.
    const CPDFPageMap& pages();
    CPDFXRefTable& xref();

    // The catalog and its reference, and the trailer dictionary of the newest section.
    CPDFObj& root();
    const PDF_REF& root_ref() const;
    const CPDFDictionary& trailer() const;

    // The file's bytes, unchanged, or those of its repaired copy.
    const uint8_t* data() const;
    size_t size() const;

    // To be called after fields were renamed, added or removed behind this class's back: forgets what is known of names
    // and widgets, and which fields revert restores. Ends the fields that were found before the form was loaded.
    void fields_changed();

    // What there is, for people who see the document first. Fails where that takes too much work.
    CPDFStatus summarize(PDF_SUMMARY& out);

    // The field with this full name in UTF-8, compared with the names as stored, else with the names without index
    // suffixes; the first in tree order where several have it, null when none has.
    // Of a document opened for named fields it loads no more than the branch that leads to the field. When the form is
    // loaded later, that very object is in it; the fields above it end then.
    CPDFField* field(std::string_view name);

    // The same for what people type: a full name, else the number of the field in the list (field_at) or, unless `words` are
    // only those, a part of its name (guess_field). Null, with `why` a sentence that may propose another name, where it is
    // not clear which field is meant.
    CPDFField* find_field(std::string_view word, CPDFStatus& why, PDF_FIELD_WORDS words = PDF_FIELD_WORDS::PARTS);

    // The refusal of a name that no field has, with the nearest one that a field has.
    CPDFStatus no_field(std::string_view name);

    // How many fields have this full name; only the first of several is found by it. Of a document opened for named fields
    // it loads the whole form only where there seem to be several.
    size_t fields_named(std::string_view name);

    // Labels of fields and rectangles of widgets.
    CPDFFieldNotes& field_notes();

    // The widgets that show `field`, bound on the first call for the whole form. Borrowed until fields_changed or a
    // revert that loads the form anew.
    std::span<CPDFAnnotWidget* const> widgets_of(const CPDFField& field);

    // What the widgets of a button field stand for, in their order; bound as above.
    std::vector<PDF_BUTTON_CHOICE> choices_of(const CPDFField& field);

    // Decides what `value` means for `field` and whether the field takes it, see plan_fill; a field that a signature
    // locks is refused, too. Changes nothing.
    CPDFStatus check_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill, PDF_FILL_PLAN& plan,
                           PDF_WORDS words = PDF_WORDS::STATES_FIRST);

    // Scripts that check further values see those of `plan`, which check_value made, as if it were carried out, until
    // assumptions are dropped: so values that are set together are checked together, in their order. Fails when memory
    // runs out.
    CPDFStatus assume(const PDF_FILL_PLAN& plan);
    void drop_assumptions();

    // Makes `value` the value of `field`, all its widgets included; refuses as check_value does and changes nothing then.
    // The form is calculated, and the widgets are drawn anew, see set_scripts and set_drawing.
    CPDFStatus set_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY);

    // The same for text fields only.
    CPDFStatus set_text(CPDFField& field, std::string_view value, PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY);

    // Carries out a plan of check_value; the form is calculated later. Fails, with a part of the plan perhaps carried out,
    // where the field's dictionary is missing or memory runs out.
    CPDFStatus apply(const PDF_FILL_PLAN& plan);

    // Which scripts of the form run from now on, KNOWN at first; `seconds` of processor time for those of ALL, which run in
    // a child of this process. Scripts decide in check_value whether a field takes a value (those of keystrokes as when a
    // value is committed, and those that validate; they may change it), calculate fields from others, and format what
    // widgets show; "V" stays the value.
    void set_scripts(PDF_SCRIPTS scripts, double seconds = 2);

    // Calculates the fields of the form's calculation order, each of which is then validated, until nothing changes any
    // more; circles end after LIMIT_CALCULATION_ROUNDS. Fields that are read-only are calculated, too. Those that a
    // signature locks are not, nor are values that a field does not take: calculation_notes says so. set_value, reset and
    // import of data do this; after calls of apply it is done by save at the latest. What the file permits is not asked.
    // Hands out the fields that changed in `changed` unless that is null.
    CPDFStatus calculate(std::vector<CPDFField*>* changed = nullptr);

    // What the widgets of `field` show of its value where a script formats it; nothing where they show the value itself.
    std::optional<std::string> shown_text(const CPDFField& field);

    // What the field's format takes, in words such as "number, 2 decimals" or "date mm/dd/yyyy"; empty where no script or
    // none that is known says so.
    std::string format_words(const CPDFField& field);

    // A sentence for each calculated value that was not stored since the file was opened or reverted. Borrowed until the next
    // calculation.
    const std::vector<std::string>& calculation_notes() const;
    // The lines that scripts in the sandbox printed since then. Borrowed until the next call that runs scripts.
    const std::vector<std::string>& script_console() const;
    // How many scripts should have run since the file was opened, and did not, since they are no well-known calls; where
    // there are such, those of the document count, too, which prepare them.
    size_t skipped_scripts() const;

    // Brings every field, or `fields` and all under them, to their defaults, "DV" of their own or inherited: "V", and
    // "I" of choices, in the field and all its widgets; without a default they end without a value. Push buttons and
    // signatures stay as they are, read-only fields do not. Refuses, and changes nothing then, where a signature locks
    // one of the fields, unless `fill` is FORCE. The widgets are drawn anew, see set_drawing.
    CPDFStatus reset(PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY);
    CPDFStatus reset(const std::vector<CPDFField*>& fields, PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY);

    // Puts the values of the fields into the XFA data set, if the form has one, where its template says they belong; without a template the
    // names of the fields say it. All else in the data stays byte for byte. Sentences about fields whose values can't be put there are
    // appended to `notes` unless that is null. Refuses, and changes nothing then, where the XFA data can't be read or have no
    // data set, and a value that XML can't hold.
    CPDFStatus write_xfa(std::vector<std::string>* notes = nullptr);

    // The data set as write_xfa makes it, as XML.
    CPDFStatus read_xfa(std::string& out, std::vector<std::string>* notes = nullptr);

    // Whether the form has XFA data and no field that takes a value, as dynamic XFA forms are.
    bool has_only_xfa();

    // The values in the XFA data, with their paths, in their order.
    CPDFStatus xfa_values(std::vector<PDF_XFA_VALUE>& out);

    // Sets values by paths as xfa_values gives them; a name without a place is the first of it. Refuses, and changes nothing then, a path
    // that has no value, and what permissions and signatures forbid unless `fill` is FORCE. `check_xfa_values` changes nothing and tells in
    // `each` what would be refused of each value; it fails for what is refused of all.
    CPDFStatus check_xfa_values(const std::vector<PDF_XFA_VALUE>& values, PDF_FILL fill, std::vector<CPDFStatus>& each);
    CPDFStatus set_xfa_values(const std::vector<PDF_XFA_VALUE>& values, PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY);

    // The structure of the form. Each loads the whole form, keeps names, widgets and tree in step, and refuses, with
    // nothing changed, what signatures forbid unless `edit` is FORCE, and what the functions that do it say (insert_field,
    // erase_field, set_field_name, set_field_parent in document/edit, set_field.h).
    // When memory runs out a part may be done. XFA data stay as they are. In a tagged document the structure follows, see
    // tags/structure.h. The new field is handed out in `added` unless
    // that is null. Widgets are drawn anew, see set_drawing, where texts look different: for a new text or
    // choice field, changed options, another maximum length, and several lines, passwords or combs switched on or off.
    CPDFStatus add_field(const PDF_NEW_FIELD& field, PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES,
                         CPDFField** added = nullptr);
    // Ends the field and those under it.
    CPDFStatus remove_field(CPDFField& field, PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);
    // Gives the field another partial name, in UTF-8.
    CPDFStatus rename_field(CPDFField& field, const std::string& name, PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);
    // Moves the field under `parent`, null for the top. Ends the field and those under it; `moved`, unless null, is the
    // field then.
    CPDFStatus move_field(CPDFField& field, CPDFField* parent, PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES,
                          CPDFField** moved = nullptr);
    CPDFStatus change_field(CPDFField& field, const PDF_FIELD_CHANGE& change,
                            PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);

    // Makes `design` that of every field, or of none where one of them refuses it; see check_design. The widgets are drawn anew.
    CPDFStatus design_fields(std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design,
                             PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);

    // Moves the widgets of the field, and makes a field like another one, see design/move_field.h. The copy is handed out in
    // `copy` unless that is null. What looks different then is drawn anew.
    CPDFStatus move_widgets(CPDFField& field, const PDF_MOVE& move, PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);
    CPDFStatus copy_field(CPDFField& field, const std::string& name, const PDF_MOVE& move,
                          PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES, CPDFField** copy = nullptr);
    // The order in which the tab key goes through the fields, see design/tab_order.h.
    CPDFStatus order_tabs(const PDF_TABS& tabs, PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);

    // Appends another document: its pages, fields, outlines, named destinations, page labels and layers, see merge_document;
    // `names` is for fields that both have. Before that, widgets of either that lack an appearance get one, and all texts
    // where a form asks viewers to draw them; values of joined fields are drawn by save. A sentence for each thing that did
    // not come along is handed out in `notes` unless that is null. Refuses, with no more changed than that, a document that
    // is signed unless `edit` is FORCE, and what merge_document refuses; after other failures this document is to be
    // reverted. Ends its fields. `other` must be open, and is not needed any more then.
    // Whether this document takes others; append asks both.
    CPDFStatus check_append(PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);
    CPDFStatus append(CPDFDocument& other, PDF_SAME_NAMES names = PDF_SAME_NAMES::REFUSE,
                      PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES, std::vector<std::string>* notes = nullptr);

    // Makes what the widgets show a part of the pages, those without an appearance drawn as their fields are, and takes the
    // form off the document, see flatten_form. Refuses a signed document unless `edit` is FORCE. Ends all fields.
    CPDFStatus flatten(PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES);

    // Who draws the widgets of fields that change from now on; DRAW at first. Drawing happens in save, flatten and the calls
    // that change the structure: every widget of a changed text or choice field gets an appearance stream of its own or
    // shared with equal ones, buttons get the states that they lack. Where the form asked viewers to draw, widgets without
    // an appearance get one, and the request goes, unless the file is signed.
    void set_drawing(PDF_DRAWING drawing);

    // What could not be drawn as it is since the file was opened or reverted: a sentence for each field whose value has
    // characters that no font has. Borrowed until the next call that draws.
    const std::vector<std::string>& drawing_notes() const;

    // For whoever reads much through xref(): as much work as the opening of the file takes, after the form was loaded and
    // its widgets bound. When it is used up, objects read as absent.
    CPDFReadAllowance reading();

    // For what takes long from now on, such as drawing many fields when the document is saved; null for none. After CANCELLED nothing
    // is written, and the operation may be called again.
    void set_progress(PDF_PROGRESS progress);
    // Tells it, not at every call but at the first one after begin_progress; false when the operation is to end.
    void begin_progress();
    bool go_on(double done);

    // Whether so much was read since the last operation, or when the widgets were bound, that objects and streams read as
    // absent.
    bool read_too_much() const;

    // Whether revert ends all fields.
    bool has_edits() const;

    // Drops every change: the document and the fields that were set or reset are as they were when the file was opened.
    // After a call that is to change the structure the form is loaded anew, which ends all fields.
    void revert();

    // Writes the input's bytes unchanged and behind them the changed objects as one incremental update
    // (ISO 32000-2, 7.5.6). The file at `path` is replaced as a whole, or stays as it was. With no change the output is
    // a copy of the input.
    CPDFStatus save(const std::string& path);

    // The same into a buffer.
    CPDFStatus save(std::vector<uint8_t>& out);

    // The two halves of save: what stands behind data() in the output, nothing when nothing has changed; and the output
    // that has `update` there.
    CPDFStatus make_update(std::string& update);
    CPDFStatus write(const std::string& path, std::string_view update) const;

private:
    struct State;
    void renew_state();
    CPDFStatus load_or_rescue(PDF_LOAD load, std::string_view password);
    CPDFStatus take_repaired(const std::string& damage, PDF_LOAD load);

    std::unique_ptr<State> m_state;  // owned
    PDF_RESCUE m_rescue = PDF_RESCUE::REPAIR;
};
