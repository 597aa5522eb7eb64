#include "document/edit/set_field.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/array.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "forms/field.h"
#include "forms/field_edit.h"
#include "forms/field_inherit.h"

namespace {

// The words for bits of `flags` that mean nothing to the kind.
std::vector<std::string> foreign_flags(uint32_t flags, const PDF_FIELD_KIND& kind)
{
    for (const PDF_FIELD_FLAG_WORD& at : field_flag_words())
        flags &= at.has_kind(kind) ? ~at.flag : ~0U;
    std::vector<std::string> words;
    for (const PDF_FIELD_FLAG_WORD& at : field_flag_words()) {
        if (flags & at.flag)
            words.emplace_back(at.word);
        flags &= ~at.flag;
    }
    return words;
}

void check_options(const std::vector<PDF_OPTION>& options, const std::string& field, CPDFRefusals& refusals)
{
    for (size_t i = 0; i < options.size(); ++i) {
        const auto same = [&](const PDF_OPTION& at) { return at.value == options[i].value; };
        if (std::any_of(options.begin(), options.begin() + static_cast<std::ptrdiff_t>(i), same))
            refusals.add(field + " would have the option " + in_quotes(options[i].value) + " twice");
    }
}

// A field that is an odd comb already may be changed in other ways.
bool makes_odd_comb(const PDF_FIELD_CHANGE& change, const PDF_FIELD_SHAPE& shape)
{
    constexpr uint32_t NO_COMB = FIELD_MULTILINE | FIELD_PASSWORD | FIELD_FILE_SELECT;
    const bool is_touched = change.max_length || (change.set_flags & (FIELD_COMB | NO_COMB));
    return shape.kind->id == KIND_TEXT && (shape.flags & FIELD_COMB) && is_touched &&
           (shape.max_length == 0 || (shape.flags & NO_COMB));
}

CPDFStatus plan_default(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_FILL_PLAN& plan)
{
    return plan_value(shape, value, PDF_WORDS::STATES_FIRST, plan);
}

}  // namespace

void change_shape(const PDF_FIELD_CHANGE& change, const std::string& name, PDF_FIELD_SHAPE& shape,
                  CPDFRefusals& refusals)
{
    const std::string field = "field " + in_quotes(name);
    const auto refuse_kind = [&](const std::string& what) {
        refusals.add(field + " is a " + shape.kind->title + ", which has no " + what);
    };
    for (const std::string& word : foreign_flags(change.set_flags | change.clear_flags, *shape.kind))
        refuse_kind("flag " + in_quotes(word));
    shape.flags = (shape.flags | change.set_flags) & ~change.clear_flags;
    if (change.max_length && shape.kind->id != KIND_TEXT)
        refuse_kind("maximum length");
    else if (change.max_length && *change.max_length < 0)
        refusals.add(field + " can't have a maximum length of " + std::to_string(*change.max_length));
    else if (change.max_length)
        shape.max_length = *change.max_length;
    if (change.options && shape.kind->type != FIELD_CHOICE) {
        refuse_kind("options");
    } else if (change.options) {
        shape.options = CPDFFieldOptions(*change.options);
        check_options(*change.options, field, refusals);
    }
    if (makes_odd_comb(change, shape))
        refusals.add(field + " can't be a comb without a maximum length, nor of several lines or for a password");
    PDF_FILL_PLAN plan;
    if (!change.default_value)
        return;
    if (const CPDFStatus status = plan_default(shape, *change.default_value, plan); !status.ok())
        refusals.add(field + " " + status.text);
}

namespace {

// Makes `out` the array "Opt" of these options.
void make_options(const std::vector<PDF_OPTION>& options, CPDFObj& out)
{
    if (!out.set_array())
        return;
    CPDFArray& list = *out.arr;
    const auto append = [](CPDFArray& to, const std::string& text) {
        PDF_String string = pdf_string_of(text);
        to.append_str(string.buf, string.len);
        string.release();
    };
    for (const PDF_OPTION& option : options) {
        if (option.text.empty()) {
            append(list, option.value);
            continue;
        }
        CPDFArray pair;
        append(pair, option.value);
        append(pair, option.text);
        list.append_arr(&pair);
    }
}

// Plans the value that the field has now for what the field will be: with nothing to plan where it has none.
CPDFStatus plan_current(const CPDFField& field, const PDF_FIELD_SHAPE& shape, PDF_FILL_PLAN& plan)
{
    PDF_VALUE_TEXT value = value_text(*field.m_xref, field.m_value);
    if (!value.present || value.joined().empty() || (field.m_type != FIELD_TEXT && field.m_type != FIELD_CHOICE))
        return {};
    const bool several = value.is_list && value.items.size() > 1;
    const CPDFValue given = several ? CPDFValue(std::move(value.items)) : CPDFValue(value.joined());
    return plan_value(shape, given, PDF_WORDS::STATES_FIRST, plan);
}

CPDFStatus lost_field(const CPDFField& field)
{
    return CPDFStatus::failed(PDF_CODE::DAMAGED, "field " + in_quotes(full_name(field)) + " can't be changed: object " +
                                                     std::to_string(field.m_ref.num) + " is missing or damaged");
}

CPDFStatus store_entries(const CPDFField& field, std::span<const PDF_ENTRY_CHANGE> changes)
{
    switch (field.m_xref->change_entries(field.m_ref, changes)) {
    case PDF_CHANGE_RESULT::STORED:
        return {};
    case PDF_CHANGE_RESULT::NO_DICTIONARY:
        return lost_field(field);
    default:
        return no_memory_to_edit();
    }
}

// Kids without a name show this field: flags of their own follow.
CPDFStatus set_kid_flags(CPDFField& field, const PDF_FIELD_CHANGE& change)
{
    CPDFStatus status;
    for (int32_t i = 0; i < field.m_kid_cnt && status.ok(); ++i) {
        CPDFField* kid = field.m_kids[i];
        if (!kid || kid->m_name.len > 0)
            continue;
        const uint32_t flags = (kid->m_flags | change.set_flags) & ~change.clear_flags;
        if (!kid->m_inherited && flags != kid->m_flags) {
            CPDFObj value;
            value.set_int(static_cast<int32_t>(flags));
            const PDF_ENTRY_CHANGE entry[] = {{"Ff", &value}};
            status = store_entries(*kid, entry);
            kid->m_flags = status.ok() ? flags : kid->m_flags;
            kid->m_has_flags = kid->m_has_flags || status.ok();
        }
        if (status.ok())
            status = set_kid_flags(*kid, change);
    }
    return status;
}

}  // namespace

void check_length(CPDFField& field, int32_t most, CPDFRefusals& refusals)
{
    const PDF_String* value = field.get_edit_value();
    const PDF_FIELD_SHAPE shape = {&field_kind(KIND_TEXT), 0, most, {}, {}};
    PDF_FILL_PLAN plan;
    if (const CPDFStatus status = value ? plan_default(shape, utf8_of(*value), plan) : CPDFStatus(); !status.ok())
        refusals.add("the value of field " + in_quotes(full_name(field)) + " would not fit: it " + status.text);
}

CPDFStatus change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, const CPDFWidgetBinder& widgets)
{
    const std::string name = full_name(field);
    CPDFRefusals refusals;
    PDF_FIELD_SHAPE shape = shape_of(field, widgets);
    change_shape(change, name, shape, refusals);
    PDF_FILL_PLAN current;
    if (change.options || change.max_length || (change.clear_flags & (FIELD_EDIT | FIELD_MULTI_SELECT))) {
        if (const CPDFStatus status = plan_current(field, shape, current); !status.ok())
            refusals.add("the value of field " + in_quotes(name) + " would not fit: it " + status.text);
    }
    if (CPDFStatus status = refusals.status(); !status.ok())
        return status;

    const VXFailureCheck memory;
    CPDFObj flags;
    CPDFObj limit;
    CPDFObj options;
    CPDFObj indices;
    CPDFObj value;
    std::vector<PDF_ENTRY_CHANGE> changes;
    flags.set_int(static_cast<int32_t>(shape.flags));
    if (shape.flags != effective_flags(field))
        changes.push_back({"Ff", &flags});
    if (change.max_length) {
        if (*change.max_length)
            limit.set_int(*change.max_length);
        changes.push_back({"MaxLen", &limit});
    }
    if (change.options) {
        make_options(*change.options, options);
        CPDFArray* list = indices.set_array();
        for (const int option : current.options) {
            if (list)
                list->append_int(option);
        }
        changes.push_back({"Opt", &options});
        changes.push_back({"I", current.options.empty() ? nullptr : &indices});
    }
    if (change.default_value) {
        PDF_FILL_PLAN plan;
        (void)plan_default(shape, *change.default_value, plan);  // change_shape has checked it
        make_value(shape, plan, value);
        changes.push_back({"DV", &value});
    }
    if (changes.empty())
        return {};
    if (memory.failed())
        return no_memory_to_edit();
    CPDFStatus status = store_entries(field, changes);
    if (status.ok())
        status = set_kid_flags(field, change);
    field.reload_entries();
    return status.ok() && memory.failed() ? no_memory_to_edit() : status;
}
