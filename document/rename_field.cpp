#include "document/rename_field.h"

#include <algorithm>
#include <list>
#include <vector>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/field_text.h"
#include "document/field_tree.h"
#include "document/form_home.h"
#include "document/name_index.h"
#include "forms/field.h"
#include "forms/field_edit.h"
#include "forms/field_inherit.h"

namespace {

std::string in_quotes(const std::string& text)
{
    return '"' + text + '"';
}

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

// Entries that fields inherit (ISO 32000-2, 12.7.4.1 and 12.7.4.3).
constexpr const char* INHERITED[] = {"FT", "Ff", "V", "DV", "DA", "Q", "MaxLen", "Opt"};
constexpr CPDFKeySet INHERITED_SET(INHERITED);

struct INHERITANCE {
    std::list<CPDFObj> values;
    std::vector<PDF_ENTRY_CHANGE> changes;
};

// Collects what `field` has from the fields above it.
void collect_inherited(const CPDFField& field, INHERITANCE& out)
{
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &INHERITED_SET);
    for (const char* key : INHERITED) {
        bool found = own.dictionary() && own.dict->get_item(key);
        for (const CPDFField* above = field.m_parent; above && !found; above = above->m_parent) {
            CPDFObj dict;
            above->m_xref->get_entity(dict, above->m_ref, &INHERITED_SET);
            const CPDFObj* entry = dict.dictionary() ? dict.dict->get_item(key) : nullptr;
            found = entry != nullptr;
            if (!entry)
                continue;
            CPDFObj& value = out.values.emplace_back();
            value.copy_from(entry);
            out.changes.push_back({key, &value});
        }
    }
}

}  // namespace

CPDFStatus rename_field(EDIT_TARGET& target, CPDFField& field, const std::string& name)
{
    CPDFRefusals refusals;
    check_named(field, refusals);
    if (const std::string wrong = wrong_partial_name(name); !wrong.empty())
        refusals.add(wrong);
    else
        check_free(target, field, name_under(field.m_parent, name), refusals);
    if (CPDFStatus status = refusals.status(); !status.ok())
        return status;
    const VXFailureCheck memory;
    CPDFObj text;
    text.type = PDF_OBJ_STRING;
    text.str = pdf_string_of(name);
    if (change_entries(field, {{"T", &text}}, memory) != PDF_CHANGE_RESULT::STORED)
        return no_memory_to_edit();
    target.names.remove(field);
    field.m_name.release();
    field.m_name.take(text.str);
    target.names.add(field);
    return {};
}

CPDFStatus move_field(EDIT_TARGET& target, CPDFField& field, CPDFField* parent, CPDFField*& moved)
{
    moved = &field;
    CPDFRefusals refusals;
    check_named(field, refusals);
    check_free(target, field, name_under(parent, utf8_of(field.m_name)), refusals);
    if (parent)
        check_parent(target, field, *parent, refusals);
    if (CPDFStatus status = refusals.status(); !status.ok() || field.m_parent == parent)
        return status;
    const VXFailureCheck memory;
    INHERITANCE inherited;
    collect_inherited(field, inherited);
    CPDFObj above;
    if (parent)
        above.set_ref(parent->m_ref);
    inherited.changes.push_back({CPDFDictionary::sm_tag_parent, &above});
    const PDF_REF ref = field.m_ref;
    if (memory.failed() || !settle_form(target).ok())
        return no_memory_to_edit();
    if (!detach_field(target, field))
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "field " + in_quotes(full_name(field)) +
                                                         " can't be moved: the list that holds it is damaged");
    target.xref.change_entries(ref, inherited.changes);
    moved = attach_field(target, parent, ref);
    return moved && !memory.failed() ? CPDFStatus() : no_memory_to_edit();
}
