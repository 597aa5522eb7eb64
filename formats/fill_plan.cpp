#include "formats/fill_plan.h"

#include <algorithm>
#include <unordered_map>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

bool is_utf8_value(const CPDFValue& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return is_utf8(*text);
    const auto* texts = std::get_if<std::vector<std::string>>(&value);
    return !texts || std::all_of(texts->begin(), texts->end(), [](const std::string& text) { return is_utf8(text); });
}

bool has_escape(const CPDFValue& value)
{
    const auto escaped = [](const std::string& text) { return text.find('\x1b') != std::string::npos; };
    if (const auto* text = std::get_if<std::string>(&value))
        return escaped(*text);
    const auto* texts = std::get_if<std::vector<std::string>>(&value);
    return texts && std::any_of(texts->begin(), texts->end(), escaped);
}

// Other programs write empty texts into their data files for signatures and push buttons.
bool says_nothing(const FILL_ITEM& item)
{
    const auto* text = std::get_if<std::string>(&item.value);
    const CPDFField& field = *item.plan.field;
    return !item.is_typed && text && text->empty() && !field_kind(field).takes_value;
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
        CPDFField* field = m_document.field(entry.name);
        if (!field) {
            m_items.push_back({entry.name, entry.value, {}, no_such_field(entry.name), entry.words, entry.is_typed});
            return;
        }
        const auto [earlier, is_first] = m_item_of.emplace(field->m_ref.num, m_items.size());
        if (!is_first && takes_several(*field) && join_values(m_items[earlier->second].value, entry.value))
            return;
        if (!is_first && m_items[earlier->second].value == entry.value)
            return;
        FILL_ITEM item{entry.name, entry.value, {}, {}, entry.words, entry.is_typed};
        item.plan.field = field;
        if (!is_first)
            item.refusal = "field " + in_quotes(entry.name) + " is given more than one value";
        m_items.push_back(std::move(item));
    }

    std::vector<FILL_ITEM> check()
    {
        for (FILL_ITEM& item : m_items) {
            if (!item.refusal.empty())
                continue;
            if (!is_utf8_value(item.value))
                item.refusal = "the value for " + in_quotes(item.name) + " is not UTF-8";
            else if (has_escape(item.value))
                item.refusal =
                    "the value for " + in_quotes(item.name) + " has an escape character, which PDF text can't hold";
            else if (says_nothing(item))
                item.plan.action = PDF_FILL_PLAN::KEEP;
            else
                item.refusal = m_document.check_value(*item.plan.field, item.value, m_fill, item.plan, item.words).text;
        }
        return std::move(m_items);
    }

private:
    CPDFDocument& m_document;  // borrowed from the caller
    PDF_FILL m_fill;
    std::vector<FILL_ITEM> m_items;
    std::unordered_map<uint32_t, size_t> m_item_of;  // by the object number of the field
};

}  // namespace

std::vector<FILL_ITEM> plan_items(CPDFDocument& document, const CPDFFormData& data, PDF_FILL fill)
{
    Planner planner(document, fill);
    for (const PDF_FORM_ENTRY& entry : data)
        planner.add(entry);
    return planner.check();
}

bool all_accepted(const std::vector<FILL_ITEM>& items)
{
    return std::all_of(items.begin(), items.end(), [](const FILL_ITEM& item) { return item.refusal.empty(); });
}

CPDFStatus apply_items(CPDFDocument& document, const std::vector<FILL_ITEM>& items)
{
    CPDFStatus status;
    for (const FILL_ITEM& item : items) {
        if (status.ok() && item.refusal.empty())
            status = document.apply(item.plan);
    }
    return status;
}

std::string in_quotes(std::string_view text)
{
    constexpr size_t MOST = 80;
    if (text.size() <= MOST)
        return "\"" + std::string(text) + "\"";
    size_t end = MOST;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return "\"" + std::string(text.substr(0, end)) + "...\"";
}

std::string no_such_field(std::string_view name)
{
    return "there is no field " + in_quotes(name);
}
