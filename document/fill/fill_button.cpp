#include <algorithm>
#include <optional>
#include <string_view>

#include "core/xml_token.h"
#include "document/fill/filler_internal.h"
#include "document/lookup/field_text.h"
#include "document/lookup/widget_binder.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

// The name of the widget's on state. Radio buttons without appearances do not differ in theirs: each that would have the
// state of one before it goes by its place.
std::string on_state_of(const CPDFField& field, const CPDFAnnotWidget& widget,
                        const std::vector<PDF_BUTTON_CHOICE>& before)
{
    if (widget.m_on_state)
        return widget.m_on_state;
    const std::string state = widget.m_alt_state ? widget.m_alt_state : PDF_STATE_OFF;
    const auto same = [&state](const PDF_BUTTON_CHOICE& choice) { return choice.state == state; };
    const bool known = (field.m_flags & FIELD_RADIO) && std::any_of(before.begin(), before.end(), same);
    return known ? std::to_string(before.size()) : state;
}

// The first choice for which `is_it` holds, or -1.
template <typename Test>
int find_choice(const std::vector<PDF_BUTTON_CHOICE>& choices, Test&& is_it)
{
    const auto found = std::find_if(choices.begin(), choices.end(), is_it);
    return found != choices.end() ? static_cast<int>(found - choices.begin()) : -1;
}

std::vector<std::string> accepted_words(const std::vector<PDF_BUTTON_CHOICE>& choices)
{
    std::vector<std::string> words = {PDF_STATE_OFF};
    for (const PDF_BUTTON_CHOICE& choice : choices) {
        for (const std::string* word : {&choice.export_value, &choice.state}) {
            if (std::find(words.begin(), words.end(), *word) == words.end())
                words.push_back(*word);
        }
    }
    return words;
}

bool has_several_states(const std::vector<PDF_BUTTON_CHOICE>& choices)
{
    return std::any_of(choices.begin(), choices.end(), [&](const auto& at) { return at.state != choices[0].state; });
}

std::string small_letters(std::string word)
{
    for (char& c : word)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return word;
}

// What people write for a check box that is on or off, in any case; nothing for other words.
std::optional<bool> read_switch(std::string_view word)
{
    constexpr struct {
        std::string_view word;
        bool on;
    } WORDS[] = {{"true", true},   {"yes", true}, {"on", true},   {"1", true},
                 {"false", false}, {"no", false}, {"off", false}, {"0", false}};
    for (const auto& at : WORDS) {
        if (is_same_word(word, at.word))
            return at.on;
    }
    return {};
}

// Whether a widget is on when the widget `chosen` is. Check boxes with one on state are one box shown several times;
// radio buttons follow each other only where the field says so.
bool goes_with(const CPDFField& field, const PDF_BUTTON_CHOICE& choice, const PDF_BUTTON_CHOICE& chosen)
{
    if (choice.widget == chosen.widget)
        return true;
    if (!(field.m_flags & FIELD_RADIO))
        return choice.state == chosen.state;
    const bool unison = (effective_flags(field) & FIELD_RADIOS_IN_UNISON) != 0;
    return unison && (choice.state == chosen.state || choice.export_value == chosen.export_value);
}

}  // namespace

std::vector<PDF_BUTTON_CHOICE> button_choices(const CPDFField& field, const CPDFWidgetBinder& widgets)
{
    std::vector<PDF_BUTTON_CHOICE> choices;
    for (CPDFAnnotWidget* widget : widgets.widgets_of(field)) {
        const auto position = static_cast<int32_t>(choices.size());
        const std::string state = on_state_of(field, *widget, choices);
        const bool mapped = position < field.m_opt_cnt && field.m_opts[position].val.buf;
        choices.push_back({widget, state, mapped ? utf8_of(field.m_opts[position].val) : utf8_of_name(state)});
    }
    return choices;
}

CPDFStatus plan_button(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_WORDS words, PDF_FILL_PLAN& plan)
{
    const bool radio = shape.kind->id == KIND_RADIO;
    plan.action = PDF_FILL_PLAN::SET_BUTTON;
    const std::vector<PDF_BUTTON_CHOICE>& choices = shape.buttons;
    const auto refuse = [&](const std::string& what) {
        return refuse_value("has no state " + what + ": it takes " + quoted_list(accepted_words(choices)));
    };
    const bool is_switch = !radio && !choices.empty() && !has_several_states(choices);
    const auto take_bool = [&](bool on) {
        plan.button = on ? 0 : -1;
        return on && !is_switch ? refuse("\"true\"") : CPDFStatus();
    };
    if (std::holds_alternative<std::vector<std::string>>(value))
        return refuse_value("takes one state");
    if (const bool* on = std::get_if<bool>(&value))
        return take_bool(*on);

    const std::string& word = std::get<std::string>(value);
    const int by_state =
        find_choice(choices, [&](const PDF_BUTTON_CHOICE& c) { return utf8_of_name(c.state) == word; });
    const int by_export = find_choice(choices, [&](const PDF_BUTTON_CHOICE& c) { return c.export_value == word; });
    const bool exported = by_export >= 0 && (by_state < 0 || words == PDF_WORDS::EXPORT_FIRST);
    plan.button = exported ? by_export : by_state;
    plan.coerced = by_state < 0 && word != PDF_STATE_OFF;
    if (plan.button >= 0 || word == PDF_STATE_OFF)
        return {};
    const std::optional<bool> on = read_switch(word);
    if (on && is_switch)
        return take_bool(*on || is_same_word(word, small_letters(choices[0].state)));  // a state may be called "No"
    const auto says_it = [&](const PDF_BUTTON_CHOICE& choice) {
        return is_same_word(word, small_letters(choice.state)) ||
               is_same_word(word, small_letters(choice.export_value));
    };
    const bool is_off = on == false && !radio && find_choice(choices, says_it) < 0;
    if (is_off || word == "true" || word == "false")
        return take_bool(*on);
    return refuse(in_quotes(word));
}

void apply_button(PDF_FILL_TARGET& target, const PDF_FILL_PLAN& plan, const CPDFWidgetBinder& widgets)
{
    const PDF_FIELD_SHAPE shape = shape_of(*plan.field, widgets);
    const PDF_BUTTON_CHOICE* chosen = plan.button >= 0 ? &shape.buttons[static_cast<size_t>(plan.button)] : nullptr;
    for (const PDF_BUTTON_CHOICE& choice : shape.buttons)
        choice.widget->set_check_value(chosen && goes_with(*plan.field, choice, *chosen));
    CPDFObj value;
    make_value(shape, plan, value);
    store_value(target, *plan.field, value, nullptr);
}
