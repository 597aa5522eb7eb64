#include <algorithm>

#include "core/array.h"
#include "document/fill/filler_internal.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

CPDFStatus no_such_option(const CPDFFieldOptions& options, const std::string& word)
{
    std::vector<std::string> words;
    words.reserve(static_cast<size_t>(options.count()));
    for (int32_t i = 0; i < options.count(); ++i)
        words.push_back(options.value(i));
    const std::string takes = words.empty() ? "it has no options" : "it takes " + quoted_list(words);
    return refuse_value("has no option " + in_quotes(word) + ": " + takes);
}

// Whether the field has a value when its "V" is gone.
bool shows_another_value(const CPDFField& field)
{
    const auto has_value = [](const CPDFField& at) { return at.m_value.type != PDF_OBJ_NULL; };
    return field.m_def_value.type != PDF_OBJ_NULL || (field.m_parent && nearest_field(*field.m_parent, has_value));
}

}  // namespace

CPDFStatus plan_choice(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_FILL_PLAN& plan)
{
    plan.action = PDF_FILL_PLAN::SET_OPTIONS;
    if (std::holds_alternative<bool>(value))
        return refuse_value("takes an option, not true or false");
    const std::string* none = std::get_if<std::string>(&value);
    const bool chooses = !none || !none->empty() || shape.options.find("") >= 0;
    const std::vector<std::string> words = chooses ? texts_of(value) : std::vector<std::string>();
    const bool combo = shape.kind->id == KIND_COMBO;
    if (words.size() > 1 && (combo || !(shape.flags & FIELD_MULTI_SELECT)))
        return refuse_value("takes one option, not " + std::to_string(words.size()));
    for (const std::string& word : words) {
        const int option = shape.options.find(word);
        if (option >= 0) {
            plan.coerced = plan.coerced || shape.options.value(option) != word;
            plan.options.push_back(option);
            continue;
        }
        if (!combo || !(shape.flags & FIELD_EDIT))
            return no_such_option(shape.options, word);
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
void apply_choice(PDF_FILL_TARGET& target, const PDF_FILL_PLAN& plan)
{
    CPDFField& field = *plan.field;
    CPDFObj value;
    CPDFObj indices;
    if (!indices.set_array())
        return;
    for (const int option : plan.options)
        indices.arr->append_int(option);
    if (!plan.options.empty() || shows_another_value(field))
        make_value({&field_kind(field), field.m_flags, 0, CPDFFieldOptions(field), {}}, plan, value);
    store_value(target, field, value, plan.options.empty() ? nullptr : &indices);
}
