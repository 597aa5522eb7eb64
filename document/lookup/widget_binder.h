// Which widget annotations show which field.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <unordered_map>
#include <vector>

#include "core/object.h"
#include "engine/annot_widget.h"

class CPDFAcroForm;
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

    // Binds the widgets of the whole form anew. Linear in the fields and annotations.
    void bind(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages);

    // The same for who lists the widgets of a form: their states are not read.
    void bind_references(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages);

    // Whether a form is bound.
    bool is_bound() const { return m_is_bound; }

    // Binds a field that was added to the form, with those under it; nothing when the form is not bound.
    void bind_added(CPDFXRefTable& xref, CPDFField& field, const CPDFPageMap& pages);

    // Forgets the form. Ends the widgets.
    void clear();

    // The widgets of `field`, in the order of its "Kids", then those that only a page knows. Empty for a field without.
    // Borrowed until the form is bound anew or forgotten.
    std::span<CPDFAnnotWidget* const> widgets_of(const CPDFField& field) const;

private:
    bool bind_first(uint32_t num);
    void bind_orphans(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages);
    void sort_links();
    void add_tree(CPDFXRefTable& xref, CPDFField& field, const CPDFPageMap& pages);
    void add(CPDFXRefTable& xref, const PDF_REF& ref, CPDFField& shown, CPDFField& named);

    // A widget and the object number of the field whose value it shows.
    struct LINK {
        uint32_t field;
        CPDFAnnotWidget* widget;
    };

    // The widgets of one field.
    struct RANGE {
        uint32_t field;
        uint32_t count;
        CPDFAnnotWidget** first;  // borrowed from m_sorted
    };

    bool m_references_only = false;
    std::deque<CPDFAnnotWidget> m_widgets;
    std::unordered_map<uint32_t, int32_t> m_bare_types;  // while binding: the top-level fields that may be only widgets
    std::vector<bool> m_bound;                           // by object number
    std::vector<LINK> m_links;                           // while binding, in the order of binding
    std::deque<std::vector<CPDFAnnotWidget*>> m_sorted;  // one for each call that bound some; they never grow
    std::vector<RANGE> m_ranges;                         // by field
    bool m_is_bound = false;
};
