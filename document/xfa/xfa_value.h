// The values of fields as XFA data have them.
#pragma once

#include <string>
#include <vector>

#include "document/lookup/export_value.h"
#include "document/xfa/xfa_binding.h"

class CPDFWidgetBinder;

class CPDFXfaValues {
public:
    enum RESULT {
        KEEP,       // the data say already what the field says
        SET_TEXT,   // one text
        SET_LIST,   // several
        NO_FORMAT,  // a date that is written in no way that is known: the data stay as they are
    };

    // `tree`, null for none, is the one with the template. All is borrowed.
    CPDFXfaValues(CPDFXRefTable& xref, const CPDFWidgetBinder& widgets, const CPDFXmlTree* tree)
        : m_values(xref), m_widgets(widgets), m_tree(tree)
    {
    }

    // Decides what becomes of the field's value in the data; hands out what is to be set.
    RESULT value_of(const XFA_BINDING& at, const CPDFXfaData& data, std::vector<std::string>& out);

    // Whether the values cost more than the limits allow.
    bool over_limit() const { return m_values.over_limit(); }

private:
    RESULT button(const XFA_BINDING& at, const std::string& state, const std::string& now, std::string& out) const;
    std::string on_value(const XFA_BINDING& at, const std::string& state) const;
    RESULT text(const XFA_BINDING& at, const std::string& now, std::string& out) const;
    RESULT date(int32_t element, const std::string& now, std::string& out) const;
    std::vector<std::string> items_of(int32_t element) const;
    std::string picture_of(int32_t element, std::string_view holder) const;
    bool has_ui(int32_t element, std::string_view name) const;

    CPDFExportValues m_values;
    const CPDFWidgetBinder& m_widgets;
    const CPDFXmlTree* m_tree;  // borrowed from the caller
};
