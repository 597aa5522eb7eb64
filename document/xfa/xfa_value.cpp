#include "document/xfa/xfa_value.h"

#include <algorithm>

#include "document/fill/filler.h"
#include "document/xfa/xfa_date.h"
#include "forms/field.h"

namespace {

constexpr const char* OFF = "Off";

void make_line_feeds(std::string& text)
{
    for (size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r', at)) {
        if (text.compare(at, 2, "\r\n") == 0)
            text.erase(at, 1);
        else
            text[at] = '\n';
    }
}

bool is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\n';
}

// Rich text breaks its lines where it likes.
bool is_same_but_space(std::string a, std::string b)
{
    a.erase(std::remove_if(a.begin(), a.end(), is_space), a.end());
    b.erase(std::remove_if(b.begin(), b.end(), is_space), b.end());
    return a == b;
}

// The number that `text` writes with commas between thousands, without them and without zeros that say nothing; empty where it is
// none.
std::string plain_number(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        if ((c >= '0' && c <= '9') || (c == '.' && out.find('.') == std::string::npos) || (c == '-' && out.empty()))
            out += c;
        else if (c != ',' && c != ' ')
            return {};
    }
    if (out.find_first_of("0123456789") == std::string::npos)
        return {};
    if (out.find('.') != std::string::npos) {
        out.erase(out.find_last_not_of('0') + 1);
        if (out.back() == '.')
            out.pop_back();
    }
    const size_t sign = out.substr(0, 1) == "-";
    out.erase(sign, std::min(out.find_first_not_of('0', sign), out.size()) - sign);
    if (out.size() == sign || out[sign] == '.')
        out.insert(sign, "0");
    return out;
}

}  // namespace

CPDFXfaValues::RESULT CPDFXfaValues::value_of(const XFA_BINDING& at, const CPDFXfaData& data,
                                              std::vector<std::string>& out)
{
    const std::vector<std::string> now = data.values(at.node);
    PDF_VALUE_TEXT value = m_values.value_of(*at.field);
    const std::string one = now.empty() ? std::string() : now.front();
    if (value.is_list) {
        out = std::move(value.items);
        return out == now ? KEEP : SET_LIST;
    }
    out = {std::move(value.text)};
    if (at.field->m_type == FIELD_BUTTON)
        return button(at, out[0], one, out[0]);
    if (now.size() > 1)
        return out[0].empty() ? SET_TEXT : SET_LIST;
    if (at.field->m_type == FIELD_CHOICE)
        return out[0] == one ? KEEP : SET_TEXT;
    make_line_feeds(out[0]);
    if (out[0] == one || (data.is_rich(at.node) && is_same_but_space(out[0], one)))
        return KEEP;
    return text(at, one, out[0]);
}

std::vector<std::string> CPDFXfaValues::items_of(int32_t element) const
{
    std::vector<std::string> texts;
    const int32_t items = element < 0 ? -1 : m_tree->child(element, "items");
    for (int32_t at = items < 0 ? -1 : m_tree->at(items).first; at >= 0; at = m_tree->at(at).next)
        texts.push_back(m_tree->text(at));
    return texts;
}

CPDFXfaValues::RESULT CPDFXfaValues::button(const XFA_BINDING& at, const std::string& state, const std::string& now,
                                            std::string& out) const
{
    const bool is_group = at.element >= 0 && m_tree->name(at.element) == "exclGroup";
    const std::vector<std::string> items = is_group ? std::vector<std::string>() : items_of(at.element);
    if (!state.empty() && state != OFF) {
        out = is_group || items.empty() ? on_value(at, state) : items[0];
        return out == now ? KEEP : SET_TEXT;
    }
    // What is no value of the button is as good as off.
    const bool is_on = is_group ? !now.empty() : now == (items.empty() ? "1" : items[0]);
    out = is_group ? "" : items.size() > 1 ? items[1] : "0";
    return is_on && out != now ? SET_TEXT : KEEP;
}

// What the data have for a button that is on: of a group the item of the member, found by its export value, its state or its
// place.
std::string CPDFXfaValues::on_value(const XFA_BINDING& at, const std::string& state) const
{
    const std::vector<PDF_BUTTON_CHOICE> choices = button_choices(*at.field, m_widgets);
    const auto on = std::find_if(choices.begin(), choices.end(),
                                 [&state](const PDF_BUTTON_CHOICE& choice) { return choice.state == state; });
    std::string exported = on == choices.end() ? state : on->export_value;
    if (at.element < 0)
        return exported;
    if (m_tree->name(at.element) == "field")
        return "1";
    std::vector<std::string> members;
    for (int32_t member = m_tree->at(at.element).first; member >= 0; member = m_tree->at(member).next) {
        const std::vector<std::string> items = items_of(member);
        if (m_tree->name(member) == "field")
            members.push_back(items.empty() ? "1" : items[0]);
    }
    for (const std::string& word : {exported, state}) {
        if (std::find(members.begin(), members.end(), word) != members.end())
            return word;
    }
    return on != choices.end() && members.size() == choices.size() ? members[static_cast<size_t>(on - choices.begin())]
                                                                   : exported;
}

bool CPDFXfaValues::has_ui(int32_t element, std::string_view name) const
{
    const int32_t ui = element < 0 ? -1 : m_tree->child(element, "ui");
    return ui >= 0 && m_tree->child(ui, name) >= 0;
}

CPDFXfaValues::RESULT CPDFXfaValues::text(const XFA_BINDING& at, const std::string& now, std::string& out) const
{
    if (has_ui(at.element, "numericEdit") && picture_of(at.element, "bind").empty()) {
        const std::string number = plain_number(out);
        if (!number.empty() && number == plain_number(now))
            return KEEP;
        if (!number.empty())
            out = number;
    }
    return has_ui(at.element, "dateTimeEdit") && !out.empty() ? date(at.element, now, out) : SET_TEXT;
}

// The picture in `holder`, an element of the field; empty when there is none.
std::string CPDFXfaValues::picture_of(int32_t element, std::string_view holder) const
{
    const int32_t at = m_tree->child(element, holder);
    const int32_t picture = at < 0 ? -1 : m_tree->child(at, "picture");
    return picture < 0 ? std::string() : m_tree->text(picture);
}

CPDFXfaValues::RESULT CPDFXfaValues::date(int32_t element, const std::string& now, std::string& out) const
{
    const std::string bound = picture_of(element, "bind");
    const std::string shown = picture_of(element, "format") + "|" + picture_of(element, "ui") + "|" + bound + "|" +
                              std::string(XFA_PLAIN_DATE);
    XFA_DATE date;
    std::string text;
    if (read_xfa_date(shown, out, date))
        text = write_xfa_date(bound.empty() ? XFA_PLAIN_DATE : std::string_view(bound), date);
    if (text.empty() && !now.empty())
        return NO_FORMAT;
    if (!text.empty())
        out = text;
    return out == now ? KEEP : SET_TEXT;
}
