// Which widget annotations show which field.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "core/object.h"

class CPDFAcroForm;
class CPDFAnnotWidget;
class CPDFField;
class CPDFPageMap;
class CPDFXRefTable;

// Binds every widget to its field once: the widgets that the pages list, and those that only the field knows. A widget
// belongs to the nearest field with a name: kids without one are its widgets. Owns the widgets; every field's m_widget
// points into it, so it outlives the fields' use of them.
class CPDFWidgetBinder {
public:
    CPDFWidgetBinder();
    ~CPDFWidgetBinder();
    CPDFWidgetBinder(const CPDFWidgetBinder&) = delete;
    CPDFWidgetBinder& operator=(const CPDFWidgetBinder&) = delete;

    // Binds the widgets of the whole form. Linear in the fields and annotations.
    void bind(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages);

    // The widgets of `field`, in the order of its "Kids", then those that only a page knows. Empty for a field without.
    const std::vector<CPDFAnnotWidget*>& widgets_of(const CPDFField& field) const;

private:
    void add_tree(CPDFXRefTable& xref, CPDFField& field, const CPDFPageMap& pages);
    CPDFAnnotWidget* add(CPDFXRefTable& xref, const PDF_REF& ref, CPDFField& shown, CPDFField& named);

    struct OWNER {
        CPDFField* shown;  // whose m_widget it can be
        CPDFField* named;  // whose value it shows
    };

    std::vector<std::unique_ptr<CPDFAnnotWidget>> m_widgets;
    std::unordered_map<uint32_t, OWNER> m_owners;                            // by object number
    std::unordered_map<uint32_t, bool> m_bound;                              // object numbers of the widgets
    std::unordered_map<uint32_t, std::vector<CPDFAnnotWidget*>> m_by_field;  // by object number of the field
};
