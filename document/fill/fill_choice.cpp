#include <algorithm>

#include "core/array.h"
#include "document/fill/filler_internal.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

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
    words.reserve(static_cast<size_t>(holder.m_opt_cnt));
    for (int32_t i = 0; i < holder.m_opt_cnt; ++i)
        words.push_back(utf8_of(holder.m_opts[i].val));
    const std::string takes = words.empty() ? "it has no options" : "it takes " + quoted_list(words);
    return refuse_fill(PDF_CODE::WRONG_KIND, field, "has no option \"" + word + "\": " + takes);
}

// Whether the field has a value when its "V" is gone.
bool shows_another_value(const CPDFField& field)
{
    const auto has_value = [](const CPDFField& at) { return at.m_value.type != PDF_OBJ_NULL; };
    return field.m_def_value.type != PDF_OBJ_NULL || (field.m_parent && nearest_field(*field.m_parent, has_value));
}

}  // namespace

const CPDFField& options_holder(const CPDFField& field)
{
    const CPDFField* holder =
        nearest_field(field, [](const CPDFField& at) { return at.m_opt_cnt > 0 || at.m_type != FIELD_CHOICE; });
    return holder && holder->m_type == FIELD_CHOICE ? *holder : field;
}

CPDFStatus plan_choice(const CPDFValue& value, PDF_FILL_PLAN& plan)
{
    const CPDFField& field = *plan.field;
    const CPDFField& holder = options_holder(field);
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

// Other programs read export values in "V", where the engine's set_choice_sels has the shown texts; and they read them in
// the field itself, wherever the options stand.
void apply_choice(FILL_TARGET& target, const PDF_FILL_PLAN& plan)
{
    CPDFField& field = *plan.field;
    const CPDFField& holder = options_holder(field);
    CPDFObj value;
    CPDFObj indices;
    if (!indices.set_array())
        return;
    if (plan.options.size() > 1)
        value.set_array();
    else if (shows_another_value(field))
        value.set_string("", 0);
    for (const int option : plan.options) {
        const PDF_String& val = holder.m_opts[option].val;
        indices.arr->append_int(option);
        if (value.type == PDF_OBJ_ARRAY)
            value.arr->append_str(val.buf, val.len);
        else
            value.set_string(val.buf, val.len);
    }
    store_value(target, field, value, plan.options.empty() ? nullptr : &indices);
}
