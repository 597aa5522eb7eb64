#include "formats/apply_data.h"

#include <algorithm>
#include <unordered_map>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

// Whether `holds(text)` for one of the texts of the value.
template <typename Holds>
bool any_text(const CPDFValue& value, Holds&& holds)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return holds(*text);
    const auto* texts = std::get_if<std::vector<std::string>>(&value);
    return texts && std::any_of(texts->begin(), texts->end(), holds);
}

// Why the value is no text that PDF can hold.
CPDFStatus check_text(const PDF_FORM_ENTRY& entry)
{
    const std::string value = "the value for " + in_quotes(entry.name);
    if (any_text(entry.value, [](const std::string& text) { return !is_utf8(text); }))
        return CPDFStatus::failed(PDF_CODE::WRONG_KIND, value + " is not UTF-8");
    if (any_text(entry.value, [](const std::string& text) { return text.find('\x1b') != std::string::npos; }))
        return CPDFStatus::failed(PDF_CODE::WRONG_KIND, value + " has an escape character, which PDF text can't hold");
    return {};
}

// Other programs write empty texts into their data files for signatures and push buttons.
bool says_nothing(const PDF_FORM_ENTRY& entry, const CPDFField& field)
{
    const auto* text = std::get_if<std::string>(&entry.value);
    return !entry.is_typed && text && text->empty() && !field_kind(field).takes_value;
}

bool takes_several(const CPDFField& field)
{
    return field_kind(field).id == KIND_LIST && (field.m_flags & FIELD_MULTI_SELECT);
}

// Adds `more` to the list that `value` is or becomes; false when either is true or false.
bool join_values(CPDFValue& value, const CPDFValue& more)
{
    if (std::holds_alternative<bool>(value) || std::holds_alternative<bool>(more))
        return false;
    if (const auto* text = std::get_if<std::string>(&value))
        value = std::vector<std::string>{*text};
    auto& texts = std::get<std::vector<std::string>>(value);
    if (const auto* text = std::get_if<std::string>(&more)) {
        texts.push_back(*text);
    } else {
        const auto& list = std::get<std::vector<std::string>>(more);
        texts.insert(texts.end(), list.begin(), list.end());
    }
    return true;
}

class Planner {
public:
    Planner(CPDFDocument& document, PDF_FILL fill) : m_document(document), m_fill(fill) {}

    void add(const PDF_FORM_ENTRY& entry)
    {
        PDF_DATA_ITEM item = {entry, {}, {}};
        item.plan.field = m_document.field(entry.name);
        if (!item.plan.field) {
            item.status = no_such_field(entry.name);
            m_items.push_back(std::move(item));
            return;
        }
        const CPDFField& field = *item.plan.field;
        const auto [earlier, is_first] = m_item_of.emplace(field.m_ref.num, m_items.size());
        if (!is_first) {
            CPDFValue& value = m_items[earlier->second].entry.value;
            if ((takes_several(field) && join_values(value, entry.value)) || value == entry.value)
                return;
            item.status = CPDFStatus::failed(PDF_CODE::WRONG_KIND,
                                             "field " + in_quotes(entry.name) + " is given more than one value");
        }
        m_items.push_back(std::move(item));
    }

    std::vector<PDF_DATA_ITEM> check()
    {
        for (PDF_DATA_ITEM& item : m_items) {
            if (item.status.ok())
                item.status = check_text(item.entry);
            if (!item.status.ok())
                continue;
            CPDFField& field = *item.plan.field;
            if (says_nothing(item.entry, field))
                item.plan.action = PDF_FILL_PLAN::KEEP;
            else
                item.status = m_document.check_value(field, item.entry.value, m_fill, item.plan, item.entry.words);
        }
        return std::move(m_items);
    }

private:
    CPDFDocument& m_document;  // borrowed from the caller
    PDF_FILL m_fill;
    std::vector<PDF_DATA_ITEM> m_items;
    std::unordered_map<uint32_t, size_t> m_item_of;  // by the object number of the field
};

}  // namespace

std::vector<PDF_DATA_ITEM> plan_data(CPDFDocument& document, const CPDFFormData& data, PDF_FILL fill)
{
    Planner planner(document, fill);
    for (const PDF_FORM_ENTRY& entry : data)
        planner.add(entry);
    return planner.check();
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

CPDFStatus apply_data(CPDFDocument& document, const std::vector<PDF_DATA_ITEM>& items)
{
    CPDFStatus status;
    for (const PDF_DATA_ITEM& item : items) {
        if (status.ok() && item.status.ok())
            status = document.apply(item.plan);
    }
    return status;
}
