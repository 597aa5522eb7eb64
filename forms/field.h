// One node of the form's field tree (ISO 32000-2, 12.7.4).
#pragma once

#include "core/alloc.h"
#include "core/object.h"
#include "core/pdf_string.h"

class CPDFAction;
class CPDFAnnotWidget;
class CPDFGRender;
class CPDFSign;
class CPDFVisitSet;
class CPDFXRefTable;
struct _VXMATRIX;
struct _VXRECTF;

enum PDF_FIELD_TYPE : int32_t {
    FIELD_UNKNOWN = 0,
    FIELD_BUTTON = 1,     // "Btn"
    FIELD_TEXT = 2,       // "Tx"
    FIELD_CHOICE = 3,     // "Ch"
    FIELD_SIGNATURE = 4,  // "Sig"
};

// Bits of the flags word "Ff" (ISO 32000-2, tables 227, 229, 231 and 233).
enum PDF_FIELD_FLAG : uint32_t {
    FIELD_READ_ONLY = 0x1,
    FIELD_REQUIRED = 0x2,
    FIELD_NO_EXPORT = 0x4,
    FIELD_MULTILINE = 0x1000,
    FIELD_PASSWORD = 0x2000,
    FIELD_NO_TOGGLE_TO_OFF = 0x4000,
    FIELD_RADIO = 0x8000,
    FIELD_PUSH_BUTTON = 0x10000,
    FIELD_COMBO = 0x20000,
    FIELD_EDIT = 0x40000,
    FIELD_SORT = 0x80000,
    FIELD_FILE_SELECT = 0x100000,
    FIELD_MULTI_SELECT = 0x200000,
    FIELD_NO_SPELL_CHECK = 0x400000,
    FIELD_NO_SCROLL = 0x800000,
    FIELD_COMB = 0x1000000,
    FIELD_RADIOS_IN_UNISON = 0x2000000,  // radio buttons
    FIELD_RICH_TEXT = 0x2000000,         // text fields: the same bit
    FIELD_COMMIT_ON_CHANGE = 0x4000000,
};

enum PDF_XFA_EVENT : int32_t {
    XFA_EVENT_NONE = 0,
    XFA_EVENT_SUBMIT = 1,
    XFA_EVENT_RESET = 2,
};

// One choice option. An option given as a plain string has an empty `text` with a null buffer; readers show `text`
// when its buffer is not null and `val` otherwise.
struct PDF_FIELD_OPT {
    PDF_String val;   // export value
    PDF_String text;  // text shown
};

// A field dictionary together with what is needed of it in memory. A field owns its kids and everything it points to
// except its parent, the object store and the widget. Setters change the member, then store a changed private copy of
// the field's own dictionary; they report nothing, and a call on a field of the wrong kind does nothing. The host fills
// fields without them: it stores all entries of a value at once and tells the field by show_value.
class CPDFField : public VXNew<CPDFField> {
public:
    CPDFField();
    virtual ~CPDFField();
    CPDFField(const CPDFField&) = delete;
    CPDFField& operator=(const CPDFField&) = delete;

    // Reads the field dictionary that `ref` names and the subtree under it. `xref` is borrowed and outlives the
    // field; `parent` is null for a top-level field, and has set this field's m_index, m_type and m_flags before.
    // Returns 1, or 0 when `ref` names no dictionary. Kids that don't load are left out.
    int load(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref);

    // The same without the subtree: the field loads with no kids and no widgets, for a caller who adds a kid by
    // adopt_kid.
    int load_alone(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref);

    // Takes `kid`, loaded with this field as its parent, as the only kid of a field of load_alone, in slot 0 of m_kids.
    // Returns 1, or 0 with the kid deleted when memory runs out.
    int adopt_kid(CPDFField* kid);

    // Reads the value, the default value and the selection again from the newest version of the dictionary.
    void reload_value();

    // The same without reading, where it is known what was stored: "V", null for none, and "I", an array of integers or
    // null.
    void show_value(const CPDFObj& value, const CPDFArray* sels);

    // Reads everything of the field's own dictionary again but its kids and widgets, and hands kind and flags on to the
    // kids that have none of their own. What was borrowed from the field ends. Nothing changes when the dictionary is
    // gone.
    void reload_entries();

    // Loads the field dictionary that `ref` names, with the fields under it, as the last kid of this field, and adds it
    // to "Kids". Returns the kid; null, with nothing changed, when it is no field dictionary, is this field or one
    // above it, or memory runs out. Its "Parent" is the caller's.
    CPDFField* append_child(const PDF_REF& ref);

    // Lookup. `name` is a dotted path of partial names in XML text, index suffixes ("[n]") removed; the first field of
    // this subtree that it designates, or null. Fields whose name does not match the head of the path are passed over.
    CPDFField* get(const char* name);
    // The first field of this subtree with the object number of `ref`, its own or a widget's; null when none.
    CPDFField* get(const PDF_REF& ref);

    // Names, as wide text into `buf`, which holds `size` characters, terminator included; longer text is cut at a
    // whole character. Each returns the length.
    // The partial name, or the nearest named ancestor's when the field has none.
    int get_name(wchar_t* buf, int size);
    // The same, and for an unnamed field the inherited name followed by '#' and its slot.
    int get_name_with_no(wchar_t* buf, int size);
    // The fully qualified name (ISO 32000-2, 12.7.4.2), index suffixes removed.
    int get_full_name(wchar_t* buf, int size);
    // The fully qualified name with the partial names as stored.
    int get_full_name2(wchar_t* buf, int size);
    // Replaces the partial name "T"; null gives an empty one. The memory changes even when the dictionary is gone.
    void set_name(const wchar_t* name);

    // Writes the field's own value as UTF-8 text into `size` bytes, terminator included, cut at a whole character:
    // numbers in decimal, names as they are, a one-element array as its string, empty for any other kind.
    void get_vaue(char* buf, int size);
    // Sets or clears the read-only bit and writes the whole flags word, inherited bits included, into the field's own
    // dictionary. Nothing changes when the dictionary is gone.
    void set_read_only(int on);

    // Text fields only: makes `value`, not null, the value "V" or the default appearance "DA". Neither "MaxLen" nor the
    // read-only flag nor the widgets are looked at. The memory changes even when the dictionary is gone.
    void set_edit_value(const PDF_String* value);
    void set_edit_appearnce(const PDF_String* da);
    // Text fields only: the value of the field or of the nearest text field above it that has a string; null when there
    // is none. Borrowed from the field that holds it, until its value changes.
    PDF_String* get_edit_value();
    // Text and choice fields: the field's own default appearance, or null. Borrowed until it changes.
    PDF_String* get_edit_apperance();

    // Check boxes only: makes the name `state`, not null, the value. When the field takes its kind from its parent and
    // the state is not "Off", the widgets of all fields beside it are unchecked; its own is left to the caller. Nothing
    // changes when the dictionary is gone.
    void set_check_value(const char* state);
    // 1 when the value of this button is a name other than "Off".
    int get_check_value();
    // Radio groups: turns the widgets of the kids off and `widget`, borrowed, on, and makes its on state the value. The
    // memory and the widgets change even when the dictionary is gone.
    void set_radio(CPDFAnnotWidget* widget);
    // 1 when the state of `widget` is the value of this button, or of its parent when it has no name of its own.
    int get_radio_value(CPDFAnnotWidget* widget);

    // The slot of the first kid whose widget has the on state `state`, or -1.
    int find_radio_kid(const char* state) const;

    // Whether this signature field is signed, and whether any field of this subtree is.
    int is_signed();
    int has_sign();

    // Choice fields. Options and selection are those of the holder: the field, or the nearest choice field above it that
    // has options. Indices are zero-based.
    // The text shown for an option, or null. Borrowed until the options change.
    PDF_String* get_choice_opt(int index);
    int get_choice_opt_cnt();
    // The first selected index, or -1.
    int get_choice_sel();
    // Selects one option: "V" becomes its export value, "I" the index. An index without an option changes the memory
    // only.
    void set_choice_sel(int index);
    // Selects `count` options in the given order: "V" becomes the array of the shown texts, "I" the indices; m_value
    // stays. An index without an option leaves the document as it is.
    void set_choice_sels(const int* sels, int count);
    // Inserts an option before `index`, or appends it; null or empty `text` makes it a single string. The selection keeps
    // naming the same options. Returns 1, or 0 for a wrong kind or index and when memory runs out.
    int insert_choice_opt(int index, PDF_String* val, PDF_String* text);
    // Removes an option and its selection; the first option is selected when none remains. Returns 1, or 0 as above.
    int remove_choice_opt(int index);

    // Returns this field and all under it to their defaults as a reset action does (ISO 32000-2, 12.7.6.3): the widgets
    // of text fields, check boxes and combo boxes show it, where "V" stays the caller's; a radio group gets its
    // default, or none, as "V" as well. Of a combo box only a default that is the text of an option is shown.
    void reset();
    // Takes `child` and the fields under it out of the subtree, out of "Kids" of the field above it wherever that lists it,
    // and deletes it. Returns 1 when it was found, 0 otherwise. The child stays when that field has no "Kids" in the document any more,
    // or memory runs out.
    int remove_child(CPDFField* child);

    // The script that runs on the event: 0 keystroke, 1 format, 2 validate, 3 calculate (ISO 32000-2, 12.6.3, "AA").
    // Only a field without any "AA" takes its parent's. Null when there is none, for other events and for actions that
    // are no JavaScript. The caller owns the action and deletes it.
    CPDFAction* get_addition_js(int event);

    // Form data of this field as NUL-terminated text (ISO 32000-2, 12.7.6.2): values of this record under the field's own
    // partial name, without its index suffix. Names and values are cut to 127 characters. The caller owns the text and
    // releases it with VXFree; `len` is its length in bytes. Null, with `len` 0, also when memory runs out.
    // URL-encoded, as cvt_utourl does it: the pair NAME=VALUE of this field alone. Null for a push button, a field
    // without a type, and a name that is empty or begins with '#'.
    char* get_form_url(int& len);
    // The pairs of this field, when it has one, and of all fields under it, joined by '&'; empty when there are none.
    // Push buttons, fields without a type, and names that are empty or begin with '%' give no pair.
    char* get_form_url2(int& len);
    // XML: the element of this field alone, its tag the name. A name that is empty or begins with '#' gives the value
    // without tags. Null for a push button, a field without a type, and an empty text. List boxes have no value here.
    char* get_form_xml(int& len);
    // The element of this field with those of its kids inside, before its own value; list boxes have one <value> element
    // for each selected option. Null for a push button and an empty text.
    char* get_form_xml2(int& len);

    static const char* const ms_actions[4];  // the keys of the events of get_addition_js

    // Painting, in render/. Only a combo box that is not read-only paints: its drop-down button, 16 device units wide,
    // at the right end of the widget rectangle `rc`. `m` maps the space of `rc` to the device. The renderer's path must
    // be empty, and is so again; its matrix is `m` then. Any other field leaves the renderer untouched.
    void render(CPDFGRender* r, const _VXMATRIX& m, const _VXRECTF& rc);
    // The same for a field that is known to be a choice field.
    void render_choice(CPDFGRender* r, const _VXMATRIX& m, const _VXRECTF& rc);

    CPDFXRefTable* m_xref;  // borrowed from the document
    int32_t m_type;         // PDF_FIELD_TYPE
    uint32_t m_flags;       // "Ff"
    CPDFObj m_value;        // "V", or "DV" where there is no "V"
    CPDFObj m_def_value;    // "DV"
    CPDFObj m_da;           // "DA"
    PDF_REF* m_widgets;     // owned; "Kids" entries that are widget annotations
    int32_t m_widget_cnt;
    CPDFField** m_kids;   // owned, with the fields; room for every "Kids" entry
    CPDFField* m_parent;  // borrowed; null for a top-level field
    int32_t m_kid_cnt;
    PDF_String m_name;      // owned; "T" as stored
    PDF_REF m_ref;          // this field's dictionary
    PDF_FIELD_OPT* m_opts;  // owned; "Opt"
    int32_t m_opt_cnt;
    int32_t* m_sels;  // owned; "I"
    int32_t m_sel_cnt;
    char* m_xfa_target;            // owned; target of the XFA event bound by the form, null when none
    int32_t m_xfa_event;           // PDF_XFA_EVENT
    int32_t m_max_len;             // "MaxLen" of a text field in characters, 0 when absent
    int32_t m_index;               // slot in the parent's m_kids
    int32_t m_inherited;           // 1 when kind and flags are the parent's
    bool m_has_actions = false;    // whether the dictionary has "AA"
    bool m_has_flags = false;      // whether the dictionary has "Ff"
    bool m_has_rich_text = false;  // whether the dictionary has "RV"
    int32_t m_group_max_len = 0;   // "MaxLen" of a field without a type, for the text fields under it; 0 when absent
    CPDFSign* m_sign;              // owned; signature value, null when unsigned
    CPDFAnnotWidget* m_widget;     // borrowed from the document; the widget that shows the field, may be null

private:
    friend class CPDFAcroForm;

    int load_once(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref, CPDFVisitSet& visits);
    void load_entries(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref, CPDFDictionary& dict,
                      CPDFVisitSet& visits);
    void load_head(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref, const CPDFDictionary& dict);
    void load_tail(CPDFDictionary& dict);
    void load_name(CPDFDictionary& dict);
    void load_kind(const CPDFDictionary& dict);
    void load_signature(const CPDFDictionary& dict);
    void release_opts();
    void hand_down_kind();
    void load_kids(const CPDFDictionary& dict, CPDFVisitSet& visits);
    void load_kid(const PDF_REF& ref, CPDFVisitSet& visits);
    CPDFField* new_kid();
    void load_opts(CPDFDictionary& dict);
    void load_sels(const CPDFObj* entry);
    void take_sels(const CPDFArray* sels);
    void load_values(CPDFDictionary& dict);
    int full_name(wchar_t* buf, int size, int (*trim)(wchar_t* segment, int len));
    CPDFField* choice_holder();
    bool unselect(int index);
    void reset_own();
    void reset_radio();
    void reset_combo();
    int remove_kid(int32_t slot);
    int insert_own_opt(int index, const PDF_String* val, const PDF_String* text);
    int remove_own_opt(int index);
    void store_entry(const char* key, const CPDFObj& value);
};
