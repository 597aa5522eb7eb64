// The document's interactive form (ISO 32000-2, 12.7.3).
#pragma once

#include "core/object.h"
#include "core/pdf_string.h"

class CPDFField;
class CPDFLoadWatch;
class CPDFResources;
class CPDFVisitSet;
class CPDFXRefTable;

// The top-level fields, the default resources, and what is kept of an XFA entry. The form owns the fields and the
// resources; the catalog and the object store are borrowed from the document.
class CPDFAcroForm {
public:
    CPDFAcroForm();
    ~CPDFAcroForm();
    CPDFAcroForm(const CPDFAcroForm&) = delete;
    CPDFAcroForm& operator=(const CPDFAcroForm&) = delete;

    // Loads the form. `form` is the catalog's form entry as stored, a reference or the dictionary itself; null loads
    // nothing. `root` and `root_ref` are the catalog and its reference. What loaded is visible in the members. `watch`, which
    // may be null, looks on.
    void load(CPDFXRefTable* xref, const CPDFObj* form, CPDFObj* root, const PDF_REF& root_ref,
              CPDFLoadWatch* watch = nullptr);

    // Releases the fields and the resources; the form may be loaded again. Ends every field pointer.
    void unload();

    // The field whose dictionary or widget has the object number of `ref`; null when none.
    CPDFField* find(const PDF_REF& ref);

    // The first top-level field with this partial name, compared on its first 61 characters; null when none and for
    // an empty name.
    CPDFField* find(const wchar_t* name);

    // The same, compared on the first 254 characters; an empty name finds the first top-level field without one. The
    // string form takes a PDF text string, of which the first 255 characters count.
    CPDFField* get_field(const wchar_t* name);
    CPDFField* get_field(const PDF_String& name);

    // Data for a submit action (ISO 32000-2, 12.7.6.2), of the fields that `fields` and `flags` select as in
    // forms/field_select.h. The caller owns the NUL-terminated text and releases it with VXFree.
    // The URL-encoded pairs, joined by '&': of the selected fields alone, or of all fields, where it may be empty. Null when
    // none of the selected fields gives a pair, for a form without fields, when memory runs out, and where the list takes
    // too much work (LIMIT_SELECT_VISITS). The text is not yet what goes over the wire: cvt_url_to_ascii.
    char* get_url_para(const CPDFArray* fields, int flags);
    // An XML document: the declaration, then the elements of the selected fields alone, or those of the whole tree, which
    // <fields> encloses unless the form has "XFA". Null only when memory runs out or the list takes too much work.
    char* get_url_xml(const CPDFArray* fields, int flags);

    // Carries out a reset action (ISO 32000-2, 12.7.6.3): CPDFField::reset on every top-level field, or, when `fields` is
    // not null nor empty and bit 0 of `flags` is clear, on the fields that its references and strings name; on none where
    // the list takes too much work.
    void reset(const CPDFArray* fields, int flags);

    // The data set of an XFA form as the values of the fields make it, of `len` bytes and a terminating 0. The caller
    // owns it and releases it with VXFree; null when memory runs out.
    char* get_xfa_data(int& len);

    // Writes the XFA data set anew from the values of the fields, as a compressed stream in memory: a new version of the
    // data set's object, or of the one stream that holds all packets, of which the other packets stay byte for byte.
    // Nothing changes without a data set, where it can't be found in the one stream, and when memory runs out.
    void reset_XFA(CPDFXRefTable* xref);

    // Loads the field dictionary that `ref` names as the last top-level field, and writes "Fields" anew as a direct
    // array of all of them. Returns the field, which is there also when it did not load, with `ref` as its reference;
    // null when the number is 0 or memory runs out. What is in the form already is appended again.
    CPDFField* append_field(const PDF_REF& ref);

    // Takes `field` and the fields under it out of the form, out of "Fields" or the "Kids" above it, and deletes them.
    // Nothing happens for null, a field of another form, or when the array can't be read.
    void remove_field(CPDFField* field);

    // Clears "SigFlags" unless some field is signed. Returns 1, or 0 when the form dictionary can't be fetched for that.
    int calc_sign_flag();
    // Sets "SigFlags" to 3 (signatures exist, append only) or to 0. Returns 1, or 0 when the form dictionary can't be
    // fetched.
    int set_sign_flag(int on);

    // Makes the default resources "DR" an object of their own, with an empty "Font" when there are none, and returns
    // them. Null for a form dictionary held in the catalog; nothing is stored when the form dictionary can't be
    // fetched. `xref` is not null.
    CPDFResources* new_resource(CPDFXRefTable* xref);

    // Adds the font dictionary `font` to "DR" under `name`, without the slash, in place of what it named before.
    // Returns 1, or 0 when there are no default resources or their dictionary can't be reached.
    int append_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font);

    PDF_REF m_ref;         // the form dictionary; number 0 when it is held directly in the catalog
    PDF_REF m_xfa_ref;     // the XFA data set's stream, or the single XFA stream; number 0 when there is none
    int32_t m_loaded;      // 1 once load has fetched the form entry, whatever it was
    int32_t m_has_xfa;     // 1 when the form dictionary has "XFA"
    CPDFField** m_fields;  // owned, with the fields; null slots for fields that did not load
    int32_t m_field_cnt;   // slots, one per "Fields" entry
    CPDFResources* m_res;  // owned; "DR", null when there is none
    CPDFObj* m_root;       // borrowed from the document; the catalog
    PDF_REF m_root_ref;
    CPDFXRefTable* m_xref;  // borrowed from the document
    int32_t m_xfa_single;   // 1 when m_xfa_ref is one stream with all packets

private:
    void load_resources(const CPDFDictionary& dict);
    void load_fields(const CPDFDictionary& dict, CPDFLoadWatch* watch);
    void load_top(int32_t slot, const CPDFObj& entry, CPDFVisitSet& visits);
    void load_xfa(const CPDFDictionary& dict);
    void load_packets(const CPDFArray& packets);
    void bind_template(const CPDFObj* packet);
    bool list_fields(CPDFArray& out);
    void store_fields(CPDFObj& fields);
    bool append_own_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font);
    bool append_root_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font);
    void rebind_resources(CPDFXRefTable* xref, const CPDFObj* entry);
    CPDFField* find_top(const wchar_t* name, int limit);
};
