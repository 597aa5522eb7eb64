#include "document/set_field.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/field_text.h"
#include "document/filler_internal.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_edit.h"
#include "forms/field_inherit.h"

namespace {

constexpr uint32_t ALL_KINDS = ~0U;
constexpr uint32_t TEXT = 1U << KIND_TEXT;
constexpr uint32_t COMBO = 1U << KIND_COMBO;
constexpr uint32_t LIST = 1U << KIND_LIST;

constexpr PDF_FLAG_WORD FLAGS[] = {
    {"read-only", FIELD_READ_ONLY, ALL_KINDS, "people can't change it"},
    {"required", FIELD_REQUIRED, ALL_KINDS, "it must have a value when the form is submitted"},
    {"no-export", FIELD_NO_EXPORT, ALL_KINDS, "its value is not submitted"},
    {"multiline", FIELD_MULTILINE, TEXT, "text field: several lines"},
    {"password-field", FIELD_PASSWORD, TEXT, "text field: the text is not shown"},
    {"comb", FIELD_COMB, TEXT, "text field: as many cells as its maximum length"},
    {"edit", FIELD_EDIT, COMBO, "combo box: any text may be typed in"},
    {"multi-select", FIELD_MULTI_SELECT, LIST, "list box: several options may be chosen"},
};

bool has_kind(uint32_t kinds, PDF_FIELD_KIND_ID kind)
{
    return (kinds >> kind & 1) != 0;
}

size_t characters_of(const std::string& text)
{
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// The export value of the option that `word` names, as filling understands it; null when there is none.
const std::string* option_value(const std::vector<PDF_OPTION>& options, const std::string& word)
{
    for (const bool by_value : {true, false}) {
        for (const PDF_OPTION& option : options) {
            if ((by_value ? option.value : option.text) == word)
                return &option.value;
        }
    }
    return nullptr;
}

std::vector<std::string> words_of(const CPDFValue& value)
{
    if (const bool* on = std::get_if<bool>(&value))
        return {*on ? "true" : "false"};
    if (const std::string* word = std::get_if<std::string>(&value))
        return {*word};
    return std::get<std::vector<std::string>>(value);
}

// The state that `word` names; null when there is none. A check box also takes true and false.
const char* state_of(const FIELD_SHAPE& shape, const std::string& word)
{
    const auto found = std::find(shape.states.begin(), shape.states.end(), word);
    if (found != shape.states.end())
        return found->c_str();
    const bool check = shape.kind->id == KIND_CHECK;
    if (word == PDF_STATE_OFF || (check && word == "false"))
        return PDF_STATE_OFF;
    return check && word == "true" && !shape.states.empty() ? shape.states[0].c_str() : nullptr;
}

// Why `value` is no value of such a field, behind the name; empty when it is one.
std::string wrong_value(const FIELD_SHAPE& shape, const CPDFValue& value)
{
    const std::vector<std::string> words = words_of(value);
    const bool several = shape.kind->id == KIND_LIST && (shape.flags & FIELD_MULTI_SELECT);
    if (words.size() != 1 && !several)
        return "takes one value";
    const std::string& word = words.empty() ? "" : words[0];
    switch (shape.kind->id) {
    case KIND_TEXT:
        return shape.max_length && characters_of(word) > static_cast<size_t>(shape.max_length)
                   ? "takes at most " + std::to_string(shape.max_length) + " characters, not \"" + word + "\""
                   : "";
    case KIND_CHECK:
    case KIND_RADIO:
        return state_of(shape, word) ? "" : "has no state \"" + word + "\"";
    case KIND_COMBO:
        if (shape.flags & FIELD_EDIT)
            return "";
        [[fallthrough]];
    case KIND_LIST:
        for (const std::string& at : words) {
            if (!option_value(shape.options, at))
                return "has no option \"" + at + "\"";
        }
        return "";
    default:
        return "has no value";
    }
}

void change_options(const std::vector<PDF_OPTION>& options, const std::string& name, FIELD_SHAPE& shape,
                    CPDFRefusals& refusals)
{
    shape.options = options;
    for (size_t i = 0; i < options.size(); ++i) {
        const auto same = [&](const PDF_OPTION& at) { return at.value == options[i].value; };
        if (std::any_of(options.begin(), options.begin() + static_cast<std::ptrdiff_t>(i), same))
            refusals.add(name + " would have the option \"" + options[i].value + "\" twice");
    }
}

}  // namespace

std::span<const PDF_FLAG_WORD> flag_words()
{
    return FLAGS;
}

void change_shape(const PDF_FIELD_CHANGE& change, const std::string& name, FIELD_SHAPE& shape, CPDFRefusals& refusals)
{
    const std::string field = "field \"" + name + "\"";
    const auto refuse_kind = [&](const std::string& what) {
        refusals.add(field + " is a " + shape.kind->title + ", which has no " + what);
    };
    for (const PDF_FLAG_WORD& at : FLAGS) {
        if (((change.set_flags | change.clear_flags) & at.flag) && !has_kind(at.kinds, shape.kind->id))
            refuse_kind(std::string("flag \"") + at.word + "\"");
    }
    shape.flags = (shape.flags | change.set_flags) & ~change.clear_flags;
    if (change.max_length && shape.kind->id != KIND_TEXT)
        refuse_kind("maximum length");
    else if (change.max_length && *change.max_length < 0)
        refusals.add(field + " can't have a maximum length of " + std::to_string(*change.max_length));
    else if (change.max_length)
        shape.max_length = *change.max_length;
    if (change.options && shape.kind->type != FIELD_CHOICE)
        refuse_kind("options");
    else if (change.options)
        change_options(*change.options, field, shape, refusals);
    // A field that is an odd comb already may be changed in other ways.
    constexpr uint32_t NO_COMB = FIELD_MULTILINE | FIELD_PASSWORD | FIELD_FILE_SELECT;
    const bool comb = shape.kind->id == KIND_TEXT && (shape.flags & FIELD_COMB) &&
                      (change.max_length || (change.set_flags & (FIELD_COMB | NO_COMB)));
    if (comb && (shape.max_length == 0 || (shape.flags & NO_COMB)))
        refusals.add(field + " can't be a comb without a maximum length, nor of several lines or for a password");
    if (!change.default_value)
        return;
    if (const std::string wrong = wrong_value(shape, *change.default_value); !wrong.empty())
        refusals.add(field + " " + wrong);
}

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

void make_value(const FIELD_SHAPE& shape, const CPDFValue& value, CPDFObj& out)
{
    std::vector<std::string> words = words_of(value);
    if (shape.kind->type == FIELD_BUTTON) {
        out.set_name(state_of(shape, words[0]));
        return;
    }
    std::vector<PDF_OPTION> list;
    for (const std::string& word : words) {
        const std::string* option = option_value(shape.options, word);
        list.push_back({option ? *option : word, ""});
    }
    make_options(list, out);
    if (list.size() != 1 || !out.array() || out.arr->count == 0)  // memory ran out
        return;
    CPDFObj one;
    one.take(out.arr->items[0]);
    out.take(one);
}

namespace {

FIELD_SHAPE shape_of(const CPDFField& field, const CPDFWidgetBinder& widgets)
{
    FIELD_SHAPE shape = {&field_kind(field.m_type, field.m_flags), field.m_flags, max_length(field), {}, {}};
    if (field.m_type == FIELD_CHOICE) {
        const CPDFField& holder = options_holder(field);
        for (int32_t i = 0; i < holder.m_opt_cnt; ++i)
            shape.options.push_back({utf8_of(holder.m_opts[i].val), utf8_of(holder.m_opts[i].text)});
    }
    if (field.m_type == FIELD_BUTTON) {
        for (const PDF_BUTTON_CHOICE& choice : button_choices(field, widgets))
            shape.states.push_back(choice.state);
    }
    return shape;
}

// The texts of the value that the field has now.
std::vector<std::string> current_value(const CPDFField& field)
{
    std::vector<std::string> words;
    const CPDFObj& value = field.m_value;
    if (value.type == PDF_OBJ_STRING)
        words.push_back(utf8_of(value.str));
    for (int32_t i = 0; value.array() && i < value.arr->count; ++i) {
        if (value.arr->items[i].type == PDF_OBJ_STRING)
            words.push_back(utf8_of(value.arr->items[i].str));
    }
    return words;
}

// The places of the value's words among the options, as "I" has them.
void make_indices(const std::vector<PDF_OPTION>& options, const std::vector<std::string>& words, CPDFObj& out)
{
    out.set_array();
    for (size_t i = 0; out.array() && i < options.size(); ++i) {
        if (std::find(words.begin(), words.end(), options[i].value) != words.end())
            out.arr->append_int(static_cast<int>(i));
    }
}

// Kids without a name show this field: flags of their own follow.
void set_kid_flags(CPDFField& field, const PDF_FIELD_CHANGE& change, const VXFailureCheck& memory)
{
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        CPDFField* kid = field.m_kids[i];
        if (!kid || kid->m_name.len > 0)
            continue;
        const uint32_t flags = (kid->m_flags | change.set_flags) & ~change.clear_flags;
        CPDFObj value;
        value.set_int(static_cast<int32_t>(flags));
        if (!kid->m_inherited && flags != kid->m_flags) {
            static_cast<void>(change_entries(*kid, {{"Ff", &value}}, memory));
            kid->m_flags = flags;
        }
        set_kid_flags(*kid, change, memory);
    }
}

}  // namespace

void check_length(CPDFField& field, int32_t most, CPDFRefusals& refusals)
{
    const PDF_String* value = field.get_edit_value();
    const FIELD_SHAPE shape = {&field_kind(FIELD_TEXT, 0), 0, most, {}, {}};
    if (const std::string wrong = value ? wrong_value(shape, utf8_of(*value)) : ""; !wrong.empty())
        refusals.add("the value of field \"" + full_name(field) + "\" would not fit: it " + wrong);
}

CPDFStatus change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, const CPDFWidgetBinder& widgets)
{
    const std::string name = full_name(field);
    CPDFRefusals refusals;
    FIELD_SHAPE shape = shape_of(field, widgets);
    change_shape(change, name, shape, refusals);
    const std::vector<std::string> words = current_value(field);
    const bool touches_value =
        change.options || change.max_length || (change.clear_flags & (FIELD_EDIT | FIELD_MULTI_SELECT));
    if (touches_value && !words.empty() && words != std::vector<std::string>{""}) {
        if (const std::string wrong = wrong_value(shape, words); !wrong.empty())
            refusals.add("the value of field \"" + name + "\" would not fit: it " + wrong);
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
    if (shape.flags != field.m_flags)
        changes.push_back({"Ff", &flags});
    if (change.max_length) {
        if (*change.max_length)
            limit.set_int(*change.max_length);
        changes.push_back({"MaxLen", &limit});
    }
    if (change.options) {
        make_options(shape.options, options);
        make_indices(shape.options, words, indices);
        changes.push_back({"Opt", &options});
        changes.push_back({"I", indices.array() && indices.arr->count ? &indices : nullptr});
    }
    if (change.default_value) {
        make_value(shape, *change.default_value, value);
        changes.push_back({"DV", &value});
    }
    if (changes.empty())
        return {};
    if (memory.failed() || field.m_xref->change_entries(field.m_ref, changes) == PDF_CHANGE_RESULT::NO_MEMORY)
        return no_memory_to_edit();
    set_kid_flags(field, change, memory);
    field.reload_entries();
    return memory.failed() ? no_memory_to_edit() : CPDFStatus();
}
