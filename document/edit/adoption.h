// Fields that only pages know: their widgets stand in "Annots", but no way leads to them from "Fields".
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "document/edit/edit.h"

class CPDFField;

// Takes such fields into the form, in memory alone, and puts them into "Fields", or the "Kids" above them, once they are
// changed. Of a widget that no field knows the top of its "Parent" chain is taken, or what is just below a field of the
// form, with all under it; a widget without a name below such a field is its part and needs no adoption. Dictionaries that
// are no fields end a chain, and so does one that was met before. Widgets that are no objects of their own are left out.
class CPDFAdoption {
public:
    // Adopts what the pages show, in the order of the pages, behind the fields that `form` lists. Only annotations that
    // are unknown to the form are read. What runs out of memory or of what may be read is to be given back.
    void adopt(EDIT_TARGET& target);

    // Takes all out of the form again; ends the fields.
    void give_back(CPDFAcroForm& form);

    // Fields that take a value or show something; groups do not count.
    size_t count() const { return m_count; }

    // Whether the file does not list the field, or one above it.
    bool is_unlisted(const CPDFField& field) const;

    // Lists the fields that changed, or all, in the file. A missing form dictionary is made, with fonts for their texts.
    CPDFStatus list_changed(EDIT_TARGET& target);
    CPDFStatus list_all(EDIT_TARGET& target);

    // The document's changes were dropped: nothing is listed any more.
    void changes_dropped(CPDFAcroForm& form);

    // Fields were removed behind this class's back: forgets those that the form does not have any more.
    void fields_changed(CPDFAcroForm& form);

private:
    CPDFStatus list(EDIT_TARGET& target, std::vector<CPDFField*> fields);

    std::vector<CPDFField*> m_adopted;                // borrowed from the form, each behind the one it hangs on
    std::unordered_set<const CPDFField*> m_unlisted;  // of these
    PDF_REF m_form = {0, 0};                          // the form dictionary of the file
    size_t m_count = 0;
};
