#include "document/edit/rename_field.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/edit/field_tree.h"
#include "document/edit/form_home.h"
#include "document/edit/inheritance.h"
#include "document/edit/remove_field.h"
#include "document/edit/set_field.h"
#include "document/lookup/field_text.h"
#include "document/lookup/name_index.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_edit.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

// The full name of a field `name` under `parent`.
std::string name_under(const CPDFField* parent, const std::string& name)
{
    const std::string above = parent ? full_name(*parent) : "";
    return above.empty() ? name : above + "." + name;
}

void check_free(EDIT_TARGET& target, const CPDFField& field, const std::string& name, CPDFRefusals& refusals)
{
    const CPDFField* other = field_named(target, name);
    if (other && other != &field)
        refusals.add("there is a field " + in_quotes(name) + " already");
}

// Whether `field` and those under it could be found once it has the full name `name`.
bool are_readable(const CPDFField& field, const std::string& name)
{
    bool readable = is_readable_name(name);
    for (int32_t i = 0; i < field.m_kid_cnt && readable; ++i) {
        const CPDFField* kid = field.m_kids[i];
        readable = !kid || are_readable(*kid, kid->m_name.len > 0 ? name + "." + utf8_of(kid->m_name) : name);
    }
    return readable;
}

void check_name(EDIT_TARGET& target, const CPDFField& field, const std::string& name, CPDFRefusals& refusals)
{
    check_free(target, field, name, refusals);
    if (!are_readable(field, name))
        refusals.add("the full name would be longer than " + std::to_string(LIMIT_FULL_NAME) + " bytes");
}

void check_named(const CPDFField& field, CPDFRefusals& refusals)
{
    if (field.m_name.len <= 0)
        refusals.add("a field without a name of its own only shows field " + in_quotes(full_name(field)));
}

int depth_of(const CPDFField* field)
{
    int depth = 0;
    for (; field; field = field->m_parent)
        ++depth;
    return depth;
}

int height_of(const CPDFField& field)
{
    int height = 0;
    for (int32_t i = 0; i < field.m_kid_cnt; ++i)
        height = std::max(height, field.m_kids[i] ? height_of(*field.m_kids[i]) : 0);
    return height + 1;
}

void check_parent(EDIT_TARGET& target, const CPDFField& field, const CPDFField& parent, CPDFRefusals& refusals)
{
    if (nearest_field(parent, [&field](const CPDFField& at) { return &at == &field; }))
        refusals.add("field " + in_quotes(full_name(field)) + " can't stand under itself");
    else if (!can_hold_fields(target, parent))
        refusals.add("field " + in_quotes(full_name(parent)) + " has a value of its own and can't hold other fields");
    if (depth_of(&parent) + height_of(field) > LIMIT_FIELD_DEPTH)
        refusals.add("the fields would be too deep inside one another");
}

// Texts without a limit come under that of the new parent.
void check_lengths(CPDFField& field, const CPDFField& parent, CPDFRefusals& refusals)
{
    for_each_field(field, [&](CPDFField& at) {
        if (at.m_type == FIELD_TEXT && max_length(at) == 0)
            check_length(at, inherited_max_length(&parent), refusals);
    });
}

}  // namespace

CPDFStatus set_field_name(EDIT_TARGET& target, CPDFField& field, const std::string& name)
{
    CPDFRefusals refusals;
    check_named(field, refusals);
    if (const std::string wrong = wrong_partial_name(name); !wrong.empty())
        refusals.add(wrong);
    else
        check_name(target, field, name_under(field.m_parent, name), refusals);
    if (CPDFStatus status = refusals.status(); !status.ok())
        return status;
    const VXFailureCheck memory;
    CPDFObj text;
    text.type = PDF_OBJ_STRING;
    text.str = pdf_string_of(name);
    const PDF_CHANGE_RESULT result = change_entries(field, {{"T", &text}}, memory);
    if (result != PDF_CHANGE_RESULT::STORED)
        return edit_status(result, "field " + in_quotes(full_name(field)) + " can't be renamed: object " +
                                       std::to_string(field.m_ref.num) + " is missing or damaged");
    target.names.remove(field);
    field.m_name.release();
    field.m_name.take(text.str);
    target.names.add(field);
    return {};
}

CPDFStatus set_field_parent(EDIT_TARGET& target, CPDFField& field, CPDFField* parent, CPDFField*& moved)
{
    moved = &field;
    CPDFRefusals refusals;
    check_named(field, refusals);
    check_name(target, field, name_under(parent, utf8_of(field.m_name)), refusals);
    if (parent) {
        check_parent(target, field, *parent, refusals);
        check_lengths(field, *parent, refusals);
    }
    if (CPDFStatus status = refusals.status(); !status.ok() || field.m_parent == parent)
        return status;
    const VXFailureCheck memory;
    INHERITANCE inherited;
    collect_inherited(field, parent, inherited);
    CPDFObj above;
    if (parent)
        above.set_ref(parent->m_ref);
    inherited.changes.push_back({CPDFDictionary::sm_tag_parent, &above});
    const PDF_REF ref = field.m_ref;
    CPDFField* before = field.m_parent;
    if (memory.failed() || !settle_form(target).ok())
        return no_memory_to_edit();
    const std::string damage =
        "field " + in_quotes(full_name(field)) + " can't be moved: the list that holds it is damaged";
    std::unordered_map<uint32_t, CPDFAnnotWidget*> widgets;  // they stay bound to the dictionaries
    for_each_field(field, [&widgets](CPDFField& at) { widgets.emplace(at.m_ref.num, at.m_widget); });
    PDF_CHANGE_RESULT result = detach_field(target, field);
    if (result != PDF_CHANGE_RESULT::STORED)
        return edit_status(result, damage);
    result = target.xref.change_entries(ref, inherited.changes);
    moved = attach_field(target, parent, ref);
    if (moved)
        for_each_field(*moved, [&widgets](CPDFField& at) { at.m_widget = widgets[at.m_ref.num]; });
    result = both(result, erase_empty_groups(target, before, parent));
    return moved && !memory.failed() ? edit_status(result, damage) : no_memory_to_edit();
}
