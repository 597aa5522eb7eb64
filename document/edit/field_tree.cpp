#include "document/edit/field_tree.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "core/limits.h"
#include "document/edit/edit_array.h"
#include "document/lookup/field_text.h"
#include "document/lookup/name_index.h"
#include "document/lookup/page_map.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

using NumberSet = std::unordered_set<uint32_t>;

// Some files list kids in "Fields" as well, where a null slot stands for them: these entries would bring them back.
PDF_CHANGE_RESULT drop_null_slots(EDIT_TARGET& target, const NumberSet& gone)
{
    CPDFAcroForm& form = target.form;
    const auto is_null = [](const CPDFField* field) { return !field; };
    if (std::none_of(form.m_fields, form.m_fields + form.m_field_cnt, is_null))
        return PDF_CHANGE_RESULT::STORED;
    return edit_array(target.xref, form.m_ref, "Fields", [&](CPDFArray& fields) {
        const int32_t before = form.m_field_cnt;
        for (int32_t i = before - 1; i >= 0; --i) {
            const CPDFObj* entry = fields.at(i);
            if (form.m_fields[i] || !entry || entry->type != PDF_OBJ_REF || !gone.count(entry->ref.num))
                continue;
            fields.remove_obj(i);
            --form.m_field_cnt;
            std::memmove(form.m_fields + i, form.m_fields + i + 1,
                         static_cast<size_t>(form.m_field_cnt - i) * sizeof(CPDFField*));
        }
        return form.m_field_cnt != before;
    });
}

bool own_entry(const CPDFField& field, const char* key, CPDFObj& out)
{
    const CPDFKeySet key_set(key);
    CPDFObj dict;
    field.m_xref->get_entity(dict, field.m_ref, &key_set);
    CPDFObj* entry = dict.dictionary() ? dict.dict->get_item(key) : nullptr;
    if (entry)
        out.take(*entry);
    return entry != nullptr;
}

}  // namespace

CPDFField* attach_field(EDIT_TARGET& target, CPDFField* parent, const PDF_REF& ref)
{
    CPDFField* field = parent ? parent->append_child(ref) : target.form.append_field(ref);
    if (field)
        target.names.add(*field);
    return field;
}

PDF_CHANGE_RESULT detach_field(EDIT_TARGET& target, CPDFField& field)
{
    const VXFailureCheck memory;
    NumberSet gone;
    for_each_field(field, [&gone](const CPDFField& at) { gone.insert(at.m_ref.num); });
    const CPDFField* parent = field.m_parent;
    const int32_t& listed = parent ? parent->m_kid_cnt : target.form.m_field_cnt;
    const int32_t before = listed;
    // The names end with the fields.
    target.names.remove(field);
    target.form.remove_field(&field);
    if (listed == before) {
        target.names.add(field);
        return memory.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : PDF_CHANGE_RESULT::NO_DICTIONARY;
    }
    return drop_null_slots(target, gone);
}

CPDFField* field_named(EDIT_TARGET& target, const std::string& name)
{
    CPDFField* field = target.names.find(target.form, name);
    return field && full_name(*field) == name ? field : nullptr;
}

bool can_hold_fields(const EDIT_TARGET& target, const CPDFField& field)
{
    if (field.m_widget_cnt || target.pages.page_of_annotation(field.m_ref.num))
        return false;
    const auto has_name = [](const CPDFField* kid) { return !kid || kid->m_name.len > 0; };
    const bool all_named = std::all_of(field.m_kids, field.m_kids + field.m_kid_cnt, has_name);
    return all_named && (field.m_type == FIELD_UNKNOWN || field.m_kid_cnt > 0);
}

std::string wrong_partial_name(const std::string& name)
{
    if (name.empty())
        return "a field needs a name";
    return name.find('.') == std::string::npos ? ""
                                               : "the name " + in_quotes(name) + " holds a '.', which parts full names";
}

bool is_readable_name(const std::string& name)
{
    // full_name adds no part to a name that has no room for one more character of any size.
    constexpr size_t LONGEST_CHARACTER = 4;
    const size_t last_dot = name.rfind('.');
    const size_t above = last_dot == std::string::npos ? 0 : last_dot;
    return name.size() <= LIMIT_FULL_NAME && above + LONGEST_CHARACTER <= LIMIT_FULL_NAME;
}

bool inherited_entry(const CPDFField* parent, const char* key, CPDFObj& out)
{
    for (const CPDFField* above = parent; above; above = above->m_parent) {
        if (own_entry(*above, key, out))
            return true;
    }
    return false;
}

bool CPDFInheritedEntries::find(const CPDFField* field, const char* key, CPDFObj& out)
{
    for (const CPDFField* at = field; at; at = at->m_parent) {
        if (at->m_kid_cnt == 0) {
            if (own_entry(*at, key, out))
                return true;
            continue;
        }
        const auto [known, is_new] = m_known[at].try_emplace(key);
        if (is_new)
            own_entry(*at, key, known->second);
        if (known->second.type != PDF_OBJ_NULL) {
            out.copy_from(&known->second);
            return true;
        }
    }
    return false;
}

int32_t inherited_max_length(const CPDFField* parent)
{
    return parent ? max_length(*parent) : 0;
}
