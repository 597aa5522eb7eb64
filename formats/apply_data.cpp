#include "formats/apply_data.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/xfa/data_value.h"
#include "formats/field_cells.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

// Why the value is no text that PDF can hold.
CPDFStatus check_text(const PDF_FORM_ENTRY& entry)
{
    const std::string value = "the value for " + in_quotes(entry.name);
    for (const std::string& text : texts_of(entry.value)) {
        if (!is_utf8(text))
            return CPDFStatus::failed(PDF_CODE::WRONG_KIND, value + " is not UTF-8");
        if (text.find('\x1b') != std::string::npos)
            return CPDFStatus::failed(PDF_CODE::WRONG_KIND,
                                      value + " has an escape character, which PDF text can't hold");
    }
    return {};
}

CPDFStatus refuse_second(const std::string& name)
{
    return CPDFStatus::failed(PDF_CODE::WRONG_KIND, "field " + in_quotes(name) + " is given more than one value");
}

// Other programs write empty texts into their data files for signatures and push buttons.
bool says_nothing(const PDF_FORM_ENTRY& entry, const CPDFField& field)
{
    const auto* text = std::get_if<std::string>(&entry.value);
    return !entry.is_typed && text && text->empty() && !field_kind(field).takes_value;
}

// Adds `more` to the list that `value` is or becomes; false when the field takes no list or either is true or false.
bool join_values(const CPDFField& field, CPDFValue& value, const CPDFValue& more)
{
    if (!takes_several(field) || std::holds_alternative<bool>(value) || std::holds_alternative<bool>(more))
        return false;
    if (const auto* text = std::get_if<std::string>(&value))
        value = std::vector<std::string>{*text};
    auto& texts = std::get<std::vector<std::string>>(value);
    for (std::string& text : texts_of(more))
        texts.push_back(std::move(text));
    return true;
}

CPDFStatus check_item(CPDFDocument& document, PDF_DATA_ITEM& item, PDF_FILL fill)
{
    if (CPDFStatus status = check_text(item.entry); !status.ok())
        return status;
    CPDFField& field = *item.plan.field;
    if (!says_nothing(item.entry, field))
        return document.check_value(field, item.entry.value, fill, item.plan, item.entry.words);
    item.plan.action = PDF_FILL_PLAN::KEEP;
    return {};
}

// Names that no field has may be paths of XFA data, where the form has nothing else.
void plan_xfa(CPDFDocument& document, std::vector<PDF_DATA_ITEM>& items, PDF_FILL fill)
{
    std::vector<PDF_DATA_ITEM*> unknown;
    std::vector<PDF_XFA_VALUE> values;
    for (PDF_DATA_ITEM& item : items) {
        if (item.plan.field || (item.status = check_text(item.entry), !item.status.ok()))
            continue;
        unknown.push_back(&item);
        const bool is_list = std::holds_alternative<std::vector<std::string>>(item.entry.value);
        values.push_back({item.entry.name, is_list ? std::string() : texts_of(item.entry.value).front()});
    }
    std::vector<CPDFStatus> each;
    const CPDFStatus all = document.check_xfa_values(values, fill, each);
    std::map<std::string_view, const CPDFValue*> seen;
    for (size_t i = 0; i < unknown.size(); ++i) {
        PDF_DATA_ITEM& item = *unknown[i];
        item.is_xfa = true;
        item.status = all.ok() ? each[i] : all;
        const auto [earlier, is_first] = seen.emplace(item.entry.name, &item.entry.value);
        if (item.status.ok() && (!is_first && *earlier->second != item.entry.value))
            item.status = refuse_second(item.entry.name);
        if (item.status.ok() && std::holds_alternative<std::vector<std::string>>(item.entry.value))
            item.status = CPDFStatus::failed(PDF_CODE::WRONG_KIND, "the value " + in_quotes(item.entry.name) +
                                                                       " of the XFA data is one text");
    }
}

}  // namespace

std::vector<PDF_DATA_ITEM> plan_data(CPDFDocument& document, const CPDFFormData& data, PDF_FILL fill)
{
    std::vector<PDF_DATA_ITEM> items;
    std::unordered_map<uint32_t, size_t> item_of;  // by the object number of the field
    constexpr size_t MOST_GUESSES = 20;
    size_t unknown = 0;
    for (const PDF_FORM_ENTRY& entry : data) {
        PDF_DATA_ITEM item = {entry, {}, {}};
        const CPDFField* field = item.plan.field = entry.field ? entry.field : document.field(entry.name);
        const auto [earlier, is_first] = item_of.emplace(field ? field->m_ref.num : 0, items.size());
        if (!field) {
            item.status = unknown++ < MOST_GUESSES ? document.no_field(entry.name) : no_such_field(entry.name);
        } else if (!is_first) {
            CPDFValue& value = items[earlier->second].entry.value;
            if (join_values(*field, value, entry.value) || value == entry.value)
                continue;
            item.status = refuse_second(entry.name);
        }
        items.push_back(std::move(item));
    }
    size_t checked = 0;
    for (PDF_DATA_ITEM& item : items) {
        if (!document.go_on(static_cast<double>(checked++) / static_cast<double>(items.size()))) {
            document.drop_assumptions();
            return {{item.entry, CPDFStatus::cancelled(), {}}};
        }
        if (item.status.ok())
            item.status = check_item(document, item, fill);
        if (item.status.ok())
            item.status = document.assume(item.plan);
    }
    document.drop_assumptions();
    if (unknown > 0 && document.has_only_xfa())
        plan_xfa(document, items, fill);
    return items;
}

CPDFStatus refusals_of(const std::vector<PDF_DATA_ITEM>& items)
{
    CPDFStatus all;
    for (const PDF_DATA_ITEM& item : items) {
        if (all.ok())
            all = item.status;
        else if (!item.status.ok())
            all.text += "; " + item.status.text;
    }
    return all;
}

CPDFStatus apply_data(CPDFDocument& document, const std::vector<PDF_DATA_ITEM>& items,
                      std::vector<CPDFField*>* calculated)
{
    CPDFStatus status;
    std::vector<PDF_XFA_VALUE> values;
    for (const PDF_DATA_ITEM& item : items) {
        if (item.is_xfa && item.status.ok())
            values.push_back({item.entry.name, texts_of(item.entry.value).front()});
        else if (status.ok() && item.status.ok())
            status = document.apply(item.plan);
    }
    if (status.ok() && !values.empty())
        status = document.set_xfa_values(values, PDF_FILL::FORCE);  // the plan has asked whether it may
    return status.ok() ? document.calculate(calculated) : status;
}
