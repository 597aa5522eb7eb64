#include <algorithm>

#include "core/alloc.h"
#include "core/array.h"
#include "document/field_text.h"
#include "document/filler_internal.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

// The field that holds the options: the nearest choice field with options, or the field itself.
CPDFField& options_holder(CPDFField& field)
{
    const CPDFField* holder = nearest_field(
        field, [](const CPDFField& at) { return at.m_opt_cnt > 0 || at.m_type != FIELD_CHOICE; });
    return holder && holder->m_type == FIELD_CHOICE ? const_cast<CPDFField&>(*holder) : field;
}

// The option with this export value, else with this shown text, or -1.
int find_option(const CPDFField& holder, const std::string& word, bool& coerced)
{
    for (int32_t i = 0; i < holder.m_opt_cnt; ++i) {
        if (utf8_of(holder.m_opts[i].val) == word)
            return i;
    }
    for (int32_t i = 0; i < holder.m_opt_cnt; ++i) {
        if (holder.m_opts[i].text.buf && utf8_of(holder.m_opts[i].text) == word) {
            coerced = true;
            return i;
        }
    }
    return -1;
}

CPDFStatus no_such_option(const CPDFField& field, const CPDFField& holder, const std::string& word)
{
    std::vector<std::string> words;
    for (int32_t i = 0; i < holder.m_opt_cnt; ++i)
        words.push_back(utf8_of(holder.m_opts[i].val));
    const std::string takes = words.empty() ? "it has no options" : "it takes " + quoted_list(words);
    return refuse_fill(PDF_CODE::WRONG_KIND, field, "has no option \"" + word + "\": " + takes);
}

void append_export_value(CPDFArray& values, const CPDFField& holder, int option)
{
    const PDF_String& val = holder.m_opts[option].val;
    values.append_str(val.buf ? val.buf : reinterpret_cast<const unsigned char*>(""), val.len);
}

}  // namespace

CPDFStatus plan_choice(const CPDFValue& value, PDF_FILL_PLAN& plan)
{
    CPDFField& field = *plan.field;
    CPDFField& holder = options_holder(field);
    const bool combo = (field.m_flags & FIELD_COMBO) != 0;
    plan.action = PDF_FILL_PLAN::SET_OPTIONS;
    if (std::holds_alternative<bool>(value))
        return refuse_fill(PDF_CODE::WRONG_KIND, field, "takes an option, not true or false");
    std::vector<std::string> words;
    if (const std::string* word = std::get_if<std::string>(&value)) {
        if (!word->empty() || find_option(holder, "", plan.coerced) >= 0)
            words.push_back(*word);
    } else {
        words = std::get<std::vector<std::string>>(value);
    }
    const bool several = !combo && (field.m_flags & FIELD_MULTI_SELECT);
    if (words.size() > 1 && !several)
        return refuse_fill(PDF_CODE::WRONG_KIND, field, "takes one option, not " + std::to_string(words.size()));
    for (const std::string& word : words) {
        const int option = find_option(holder, word, plan.coerced);
        if (option >= 0) {
            plan.options.push_back(option);
            continue;
        }
        if (!combo || !(field.m_flags & FIELD_EDIT))
            return no_such_option(field, holder, word);
        plan.action = PDF_FILL_PLAN::SET_TEXT;
        plan.text = word;
        return {};
    }
    std::sort(plan.options.begin(), plan.options.end());
    plan.options.erase(std::unique(plan.options.begin(), plan.options.end()), plan.options.end());
    return {};
}

// The engine writes shown texts for several options; what other programs read in "V" are the export values.
void apply_choice(FILL_TARGET& target, const PDF_FILL_PLAN& plan)
{
    CPDFField& holder = options_holder(*plan.field);
    holder.set_choice_sels(plan.options.data(), static_cast<int>(plan.options.size()));
    CPDFObj value;
    CPDFArray indices;
    if (plan.options.size() > 1)
        value.set_array();
    for (const int option : plan.options) {
        indices.append_int(option);
        if (value.type == PDF_OBJ_ARRAY)
            append_export_value(*value.arr, holder, option);
        else
            value.set_string(holder.m_opts[option].val.buf, holder.m_opts[option].val.len);
    }
    store_value(target, holder, value, plan.options.empty() ? nullptr : &indices);
}
