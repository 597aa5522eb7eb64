#include "document/fill/reset.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <unordered_set>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/fill/filler_internal.h"
#include "document/lookup/field_text.h"
#include "document/lookup/widget_binder.h"
#include "engine/annot_widget.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

constexpr const char* STORED_KEYS[] = {"I", "RV", "V"};
constexpr CPDFKeySet STORED_KEY_SET(STORED_KEYS);

// The field whose "DV" counts, or null.
const CPDFField* default_holder(const CPDFField& field)
{
    return nearest_field(field, [](const CPDFField& at) { return at.m_def_value.type != PDF_OBJ_NULL; });
}

// Bytes that a copy of the value takes, about.
uint64_t size_of(const CPDFObj& value)
{
    uint64_t size = sizeof(CPDFObj);
    if (value.type == PDF_OBJ_STRING)
        size += static_cast<uint64_t>(value.str.len);
    else if (value.type == PDF_OBJ_NAME && value.name)
        size += std::strlen(value.name);
    else if (const CPDFArray* array = value.array())
        for (int32_t i = 0; i < array->count; ++i)
            size += size_of(array->items[i]);
    else if (const CPDFDictionary* dict = value.dictionary())
        for (int32_t i = 0; i < dict->count; ++i)
            size += std::strlen(dict->items[i]->key()) + size_of(dict->items[i]->value);
    return size;
}

void collect(CPDFField& field, const std::unordered_set<uint32_t>& chosen, bool inside, PDF_RESET_PLAN& plan)
{
    if (!inside && chosen.count(field.m_ref.num)) {
        inside = true;
        plan.tops.push_back(&field);
    }
    if (inside && field_kind(field).takes_value && &value_field(field) == &field)
        plan.fields.push_back(&field);
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        if (field.m_kids[i])
            collect(*field.m_kids[i], chosen, inside, plan);
    }
}

// One reset at work.
class Reset {
public:
    Reset(CPDFXRefTable& xref, const CPDFWidgetBinder& widgets, std::vector<CPDFField*>& changed)
        : m_target{xref, changed}, m_widgets(widgets)
    {
    }

    // A field whose dictionary is missing, or null.
    const CPDFField* lost() const { return m_target.lost; }

    // Whether the value of a text or choice field was stored.
    bool run(CPDFField& field)
    {
        const size_t before = m_target.changed.size();
        CPDFObj value;
        read_default(field, value);
        const PDF_FIELD_KIND_ID kind = field_kind(field).id;
        if (kind == KIND_CHECK || kind == KIND_RADIO) {
            reset_button(field, value);
            return false;
        }
        if (kind == KIND_TEXT)
            reset_text(field, value);
        else
            reset_choice(field, value);
        return m_target.changed.size() > before;
    }

private:
    // A stream can't stand inside a dictionary: of such a default it is the reference that counts.
    void read_default(const CPDFField& field, CPDFObj& value)
    {
        const CPDFField* holder = default_holder(field);
        if (!holder)
            return;
        if (holder->m_def_value.type != PDF_OBJ_STREAM) {
            value.copy_from(&holder->m_def_value);
            return;
        }
        CPDFObj own;
        m_target.xref.get_entity(own, holder->m_ref);
        value.copy_from(own.dictionary() ? own.dict->get_item("DV") : nullptr);
    }

    // Whether a field without a value shows one of a field above it that means something to it.
    static bool shows_from_above(const CPDFField& field)
    {
        const auto has_value = [](const CPDFField& at) { return at.m_value.type != PDF_OBJ_NULL; };
        const CPDFField* holder = field.m_parent ? nearest_field(*field.m_parent, has_value) : nullptr;
        if (!holder)
            return false;
        const CPDFObj& value = holder->m_value;
        if (field.m_type == FIELD_BUTTON)
            return value.type == PDF_OBJ_NAME && !value.is_name(PDF_STATE_OFF);
        return value.type != PDF_OBJ_STRING || value.str.len > 0;
    }

    // Whether the field only groups others, which have values of their own.
    static bool is_group(const CPDFField& field)
    {
        const auto is_field = [](CPDFField* kid) { return kid && &value_field(*kid) == kid; };
        return field.m_kid_cnt > 0 && field.m_widget_cnt == 0 &&
               std::all_of(field.m_kids, field.m_kids + field.m_kid_cnt, is_field);
    }

    // What has nothing and gets nothing isn't written once more.
    void store(CPDFField& field, const CPDFObj& value)
    {
        CPDFObj own;
        m_target.xref.get_entity(own, field.m_ref, &STORED_KEY_SET);
        const CPDFDictionary* dict = own.dictionary();
        const auto has = [dict](const char* key) { return dict && dict->get_item(key); };
        const bool empty = !std::any_of(std::begin(STORED_KEYS), std::end(STORED_KEYS), has);
        if (empty && value.type == PDF_OBJ_NULL)
            drop_kid_values(m_target, field);
        else if (!empty || !is_group(field))
            store_value(m_target, field, value, nullptr);
    }

    void reset_text(CPDFField& field, CPDFObj& value)
    {
        PDF_String empty;
        empty.init(nullptr, 1);
        const PDF_String& text = value.type == PDF_OBJ_STRING ? value.str : empty;
        for (CPDFAnnotWidget* widget : m_widgets.widgets_of(field))
            widget->set_edit_value(&text, nullptr, 0);
        empty.release();
        if (value.type == PDF_OBJ_NULL && shows_from_above(field))
            value.set_string("", 0);
        store(field, value);
    }

    // The button whose state the default names, or of a check box with another name for it the first; -1 for off.
    static int chosen_button(const CPDFField& field, const CPDFObj& value, const CPDFWidgetBinder& widgets)
    {
        const char* state = value.name_text();
        if (!state || value.is_name(PDF_STATE_OFF))
            return -1;
        const std::vector<PDF_BUTTON_CHOICE> choices = button_choices(field, widgets);
        const auto position = [&choices](auto&& is_it) {
            const auto found = std::find_if(choices.begin(), choices.end(), is_it);
            return found == choices.end() ? -1 : static_cast<int>(found - choices.begin());
        };
        int button = position([state](const PDF_BUTTON_CHOICE& c) { return c.state == state; });
        const std::string word = utf8_of_name(state);
        if (button < 0)
            button = position([&word](const PDF_BUTTON_CHOICE& c) { return c.export_value == word; });
        return button < 0 && !choices.empty() && field_kind(field).id == KIND_CHECK ? 0 : button;
    }

    void reset_button(CPDFField& field, CPDFObj& value)
    {
        PDF_FILL_PLAN plan;
        plan.field = &field;
        plan.action = PDF_FILL_PLAN::SET_BUTTON;
        plan.button = chosen_button(field, value, m_widgets);
        if (plan.button >= 0) {
            apply_button(m_target, plan, m_widgets);
            return;
        }
        for (CPDFAnnotWidget* widget : m_widgets.widgets_of(field))
            widget->set_check_value(0);
        if (value.type != PDF_OBJ_NAME)
            value.free();
        if (value.type == PDF_OBJ_NULL && shows_from_above(field))
            value.set_name(PDF_STATE_OFF);
        store(field, value);
    }

    void reset_choice(CPDFField& field, CPDFObj& value)
    {
        PDF_FILL_PLAN plan;
        plan.field = &field;
        plan.action = PDF_FILL_PLAN::SET_OPTIONS;
        if (value.type != PDF_OBJ_NULL)
            plan.options = options_named(field, value);
        if (field_kind(field).id == KIND_COMBO) {
            for (CPDFAnnotWidget* widget : m_widgets.widgets_of(field))
                widget->set_choice_sel(plan.options.empty() ? -1 : plan.options[0]);
        }
        if (!plan.options.empty()) {
            apply_choice(m_target, plan);
            return;
        }
        if (value.type == PDF_OBJ_NULL && shows_from_above(field))
            value.set_string("", 0);
        store(field, value);
    }

    // The options that a default names, in ascending order; none when it also names what is no option.
    std::vector<int> options_named(const CPDFField& field, const CPDFObj& value)
    {
        std::vector<int> found;
        const CPDFArray* words = value.array();
        const CPDFFieldOptions options(field);
        const int32_t count = words ? words->count : 1;
        for (int32_t i = 0; i < count; ++i) {
            const CPDFEntryView word(&m_target.xref, words ? &words->items[i] : &value);
            const int option = word->type == PDF_OBJ_STRING ? m_options.find(options, utf8_of(word->str)) : -1;
            if (option < 0)
                return {};
            found.push_back(option);
        }
        std::sort(found.begin(), found.end());
        found.erase(std::unique(found.begin(), found.end()), found.end());
        return found;
    }

    PDF_FILL_TARGET m_target;
    const CPDFWidgetBinder& m_widgets;  // borrowed from the caller
    CPDFOptionIndex m_options;
};

}  // namespace

CPDFStatus plan_reset(CPDFAcroForm& form, const std::vector<CPDFField*>* chosen, const CPDFWidgetBinder& widgets,
                      PDF_RESET_PLAN& plan)
{
    std::unordered_set<uint32_t> numbers;
    for (size_t i = 0; chosen && i < chosen->size(); ++i)
        numbers.insert(value_field(*(*chosen)[i]).m_ref.num);
    for (int32_t i = 0; i < form.m_field_cnt; ++i) {
        if (!form.m_fields[i])
            continue;
        if (!chosen)
            numbers = {form.m_fields[i]->m_ref.num};
        collect(*form.m_fields[i], numbers, false, plan);
    }
    uint64_t bytes = 0;
    for (const CPDFField* field : plan.fields) {
        const CPDFField* holder = default_holder(*field);
        bytes += holder ? size_of(holder->m_def_value) * (1 + widgets.widgets_of(*field).size()) : 0;
        if (bytes > LIMIT_RESET_VALUES)
            return CPDFStatus::failed(PDF_CODE::LIMIT, "the default values of the form are too large");
    }
    return {};
}

CPDFStatus apply_reset(CPDFXRefTable& xref, const PDF_RESET_PLAN& plan, const CPDFWidgetBinder& widgets,
                       std::vector<CPDFField*>& changed)
{
    for (CPDFField* top : plan.tops) {
        top->reset();
        for_each_field(*top, [&changed](CPDFField& field) {
            if (field_kind(field).id == KIND_RADIO)  // the value of others does not change
                changed.push_back(&field);
        });
    }
    Reset reset(xref, widgets, changed);
    for (CPDFField* field : plan.fields)
        reset.run(*field);
    if (!reset.lost())
        return {};
    return CPDFStatus::failed(PDF_CODE::DAMAGED,
                              "field " + in_quotes(full_name(*reset.lost())) + " can't be reset: object " +
                                  std::to_string(reset.lost()->m_ref.num) + " is missing or damaged");
}
