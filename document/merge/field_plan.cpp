#include "document/merge/field_plan.h"

#include <algorithm>
#include <set>
#include <span>
#include <unordered_map>

#include "core/limits.h"
#include "document/edit/field_tree.h"
#include "document/edit/set_field.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "document/merge/free_names.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

using FieldList = std::span<CPDFField* const>;

FieldList kids_of(const CPDFField& field)
{
    return {field.m_kids, static_cast<size_t>(field.m_kid_cnt)};
}

FieldList top_of(const CPDFAcroForm& form)
{
    return {form.m_fields, static_cast<size_t>(form.m_field_cnt)};
}

std::set<std::string> states_of(const PDF_FIELD_SHAPE& shape)
{
    std::set<std::string> states;
    for (const PDF_BUTTON_CHOICE& button : shape.buttons)
        states.insert(button.state);
    return states;
}

bool same_options(const CPDFFieldOptions& a, const CPDFFieldOptions& b)
{
    bool same = a.count() == b.count();
    for (int32_t i = 0; same && i < a.count(); ++i)
        same = a.value(i) == b.value(i) && a.shown(i) == b.shown(i);
    return same;
}

// Whether the dictionary has options of its own: those of buttons go by the place of the widget.
bool has_export_values(const CPDFField& field)
{
    return field.m_type == FIELD_BUTTON && field.m_opt_cnt > 0;
}

// The text of the field's value; a button that is off has none.
std::string text_of(const CPDFField& field)
{
    const std::string text = value_text(*field.m_xref, field.m_value).joined();
    return field.m_type == FIELD_BUTTON && text == "Off" ? "" : text;
}

class Planner {
public:
    Planner(const EDIT_TARGET& into, const EDIT_TARGET& from, PDF_SAME_NAMES names, FIELD_PLAN& plan)
        : m_into(into), m_from(from), m_names(names), m_plan(plan)
    {
    }

    CPDFStatus run()
    {
        place(nullptr, top_of(m_into.form), top_of(m_from.form), 1);
        if (m_conflicts > 1)
            m_first += " (the first of " + std::to_string(m_conflicts) + " such fields)";
        return m_conflicts ? CPDFStatus::failed(PDF_CODE::BAD_EDIT, m_first) : CPDFStatus();
    }

private:
    // The fields `incoming` come together with the fields `present`, which are those under `parent`.
    void place(CPDFField* parent, FieldList present, FieldList incoming, int depth)
    {
        std::unordered_map<std::string, CPDFField*> by_name;
        CPDFFreeNames names;
        for (CPDFField* field : present) {
            if (field)
                by_name.emplace(utf8_of(field->m_name), field);
        }
        for (const FieldList& list : {present, incoming}) {
            for (const CPDFField* field : list) {
                if (field)
                    names.add(utf8_of(field->m_name));
            }
        }
        for (CPDFField* field : incoming) {
            if (!field)
                continue;
            const auto other = field->m_name.len > 0 ? by_name.find(utf8_of(field->m_name)) : by_name.end();
            if (other == by_name.end())
                m_plan.placements.push_back({field, parent, ""});
            else
                meet(*field, *other->second, names, depth);
        }
    }

    void meet(CPDFField& field, CPDFField& other, CPDFFreeNames& names, int depth)
    {
        if (can_hold_fields(m_from, field) && can_hold_fields(m_into, other) && depth < LIMIT_FIELD_DEPTH) {
            m_plan.groups.push_back({&field, &other});
            place(&other, kids_of(other), kids_of(field), depth + 1);
        } else if (m_names == PDF_SAME_NAMES::RENAME) {
            m_plan.placements.push_back({&field, other.m_parent, free_name(utf8_of(field.m_name), names)});
        } else if (m_names == PDF_SAME_NAMES::JOIN) {
            if (const std::string reason = why_apart(field, other); !reason.empty())
                refuse(field, "can't be joined: " + reason);
            else
                m_plan.joined.push_back({&field, &other});
        } else {
            refuse(field, "stands in both documents");
        }
    }

    void refuse(const CPDFField& field, const std::string& reason)
    {
        if (m_conflicts++ == 0)
            m_first = "field " + in_quotes(full_name(field)) + " " + reason;
    }

    // The number stands before an index suffix: "f1_2[0]".
    static std::string free_name(const std::string& name, CPDFFreeNames& names)
    {
        const size_t at = name.back() == ']' ? name.rfind('[') : std::string::npos;
        return names.take(name, at == std::string::npos || at == 0 ? "" : name.substr(at));
    }

    // Why the two can't be one field; empty when they can.
    std::string why_apart(CPDFField& field, CPDFField& other) const
    {
        const PDF_FIELD_SHAPE shape = shape_of(field, m_from.widgets);
        const PDF_FIELD_SHAPE theirs = shape_of(other, m_into.widgets);
        const auto has_name = [](const CPDFField* kid) { return kid && kid->m_name.len > 0; };
        for (const CPDFField* at : {&field, &other}) {
            if (std::ranges::any_of(kids_of(*at), has_name))
                return "it is a group in one document and a field in the other";
        }
        if (shape.kind != theirs.kind)
            return std::string("it is a ") + theirs.kind->title + " in one document and a " + shape.kind->title +
                   " in the other";
        if (shape.kind->id == KIND_SIGNATURE)
            return "a signature field has one place";
        if (shape.kind->id == KIND_CHECK && states_of(shape) != states_of(theirs))
            return "its states differ";
        if (!same_options(shape.options, theirs.options) || has_export_values(field) != has_export_values(other))
            return "its options differ";
        const std::string value = text_of(field);
        const std::string present = text_of(other);
        if (!value.empty() && !present.empty() && value != present)
            return "its values are " + in_quotes(present) + " and " + in_quotes(value);
        CPDFRefusals too_long;
        if (field.m_type == FIELD_TEXT)
            check_length(field, max_length(other), too_long);
        return too_long.status().text;
    }

    const EDIT_TARGET& m_into;  // borrowed from the caller, as the following
    const EDIT_TARGET& m_from;
    PDF_SAME_NAMES m_names;
    FIELD_PLAN& m_plan;
    std::string m_first;  // the first refusal
    size_t m_conflicts = 0;
};

}  // namespace

CPDFStatus plan_fields(const EDIT_TARGET& into, const EDIT_TARGET& from, PDF_SAME_NAMES names, FIELD_PLAN& plan)
{
    return Planner(into, from, names, plan).run();
}
