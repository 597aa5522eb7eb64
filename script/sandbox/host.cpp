#include "script/sandbox/host.h"

#include <algorithm>
#include <csetjmp>

#include "script/functions/number.h"
#include <iterator>

namespace {

// Lines that are told, in bytes over all of them.
constexpr size_t CONSOLE_MAX = 1 << 16;

// Bytes that any number takes.
constexpr size_t NUMBER_SIZE = 64;

bool is_under(const std::string& name, const std::string& group)
{
    return name.size() > group.size() && name[group.size()] == '.' && name.starts_with(group);
}

// A widget of a field may be asked for as NAME.INDEX.
std::string without_index(const std::string& name)
{
    const size_t dot = name.rfind('.');
    const bool index = dot != std::string::npos && dot + 1 < name.size() &&
                       name.find_first_not_of("0123456789", dot + 1) == std::string::npos;
    return index ? name.substr(0, dot) : std::string();
}

}  // namespace

void SCRIPT_HOST::load(SCRIPT_DOCUMENT&& loaded)
{
    document = std::move(loaded);
    m_by_name.clear();
    m_nodes.clear();
    m_originals.clear();
    m_traits.clear();
    for (size_t i = 0; i < document.fields.size(); ++i)
        m_by_name.emplace(document.fields[i].name, i);
}

void SCRIPT_HOST::renew()
{
    for (auto& [index, field] : m_originals)
        document.fields[index] = std::move(field);
    m_originals.clear();
}

SCRIPT_NODE* SCRIPT_HOST::node(const std::string& name)
{
    if (const auto known = m_nodes.find(name); known != m_nodes.end())
        return &known->second;
    SCRIPT_NODE found{name, {}, false};
    auto at = m_by_name.find(name);
    if (at == m_by_name.end())
        at = m_by_name.find(without_index(name));
    if (at != m_by_name.end()) {
        found.fields.push_back(at->second);
        found.name = at->first;
    } else {
        found.group = true;
        for (at = m_by_name.lower_bound(name + '.'); at != m_by_name.end() && is_under(at->first, name); ++at)
            found.fields.push_back(at->second);
    }
    return found.fields.empty() ? nullptr : &m_nodes.emplace(name, std::move(found)).first->second;
}

void SCRIPT_HOST::append_values(const std::string& name, std::vector<std::string>& out) const
{
    const auto add = [&](size_t index) {
        const std::vector<std::string>& value = document.fields[index].value;
        out.push_back(value.empty() ? std::string() : value.front());
    };
    if (const auto at = m_by_name.find(name); at != m_by_name.end())
        return add(at->second);
    for (auto at = m_by_name.lower_bound(name + '.'); at != m_by_name.end() && is_under(at->first, name); ++at)
        add(at->second);
}

SCRIPT_FIELD& SCRIPT_HOST::change(size_t index)
{
    m_originals.emplace(index, document.fields[index]);
    return document.fields[index];
}

SCRIPT_FIELD& SCRIPT_HOST::change_trait(size_t index, SCRIPT_TRAIT trait)
{
    m_traits[index] |= trait;
    return change(index);
}

void SCRIPT_HOST::tell_traits()
{
    answer.traits.clear();
    for (const auto& [index, made] : m_traits) {
        const SCRIPT_FIELD& at = document.fields[index];
        answer.traits.push_back({at.name, made, at.flags, at.display, {}});
        if (made & SCRIPT_TRAIT_ITEMS)
            answer.traits.back().items = at.items;
    }
    m_traits.clear();
}

void SCRIPT_HOST::set_value(size_t index, std::vector<std::string> value)
{
    SCRIPT_FIELD& at = change(index);
    at.value = value;
    for (SCRIPT_CHANGE& known : answer.changes) {
        if (known.field == at.name) {
            known.value = std::move(value);
            return;
        }
    }
    answer.changes.push_back({at.name, std::move(value)});
}

void SCRIPT_HOST::take_change(const SCRIPT_CHANGE& taken)
{
    const auto at = m_by_name.find(taken.field);
    if (at != m_by_name.end())
        change(at->second).value = taken.value;
}

void SCRIPT_HOST::alert(std::string text)
{
    if (event.message.empty())
        event.message = std::move(text);
}

void SCRIPT_HOST::print(std::string line)
{
    if (answer.console.empty())
        m_printed = 0;
    m_printed += line.size() + 1;
    if (m_printed <= CONSOLE_MAX)
        answer.console.push_back(std::move(line));
}

const char* text_at(js_State* js, int index)
{
    if (!js_isnumber(js, index))
        return js_iscoercible(js, index) ? js_tostring(js, index) : "";
    char text[NUMBER_SIZE];
    text[print_number(js_tonumber(js, index)).copy(text, sizeof text - 1)] = 0;
    js_pushstring(js, text);
    js_replace(js, index < 0 ? index - 1 : index);
    return js_tostring(js, index);
}

// Objects may have functions of the script run, which may read texts themselves.
void read_texts(js_State* js, int index)
{
    auto* const texts = new std::vector<std::string>;  // errors jump over destructors
    if (setjmp(*static_cast<jmp_buf*>(js_savetry(js))) != 0) {
        delete texts;
        js_throw(js);
    }
    const bool list = js_isarray(js, index) != 0;
    const int count = list ? js_getlength(js, index) : 0;
    if (!list)
        texts->emplace_back(text_at(js, index));
    for (int i = 0; i < count; ++i) {
        js_getindex(js, index, i);
        texts->emplace_back(text_at(js, -1));
        js_pop(js, 1);
    }
    js_endtry(js);
    host_of(js).texts = std::move(*texts);
    delete texts;
}

void push_text(js_State* js, const std::string& text)
{
    js_pushstring(js, text.c_str());
}

void push_color(js_State* js, const std::vector<double>& color)
{
    constexpr const char* SPACES[] = {"T", "G", "T", "RGB", "CMYK"};
    js_newarray(js);
    js_pushstring(js, SPACES[std::min(color.size(), std::size(SPACES) - 1)]);
    js_setindex(js, -2, 0);
    for (size_t i = 0; i < color.size(); ++i) {
        js_pushnumber(js, color[i]);
        js_setindex(js, -2, static_cast<int>(i) + 1);
    }
}

void define_function(js_State* js, const char* name, js_CFunction function, void* data)
{
    js_newcfunctionx(js, function, name, 0, data, nullptr);
    js_defproperty(js, -2, name, JS_DONTENUM);
}

void define_property(js_State* js, const char* name, js_CFunction get, js_CFunction set, void* data)
{
    js_newcfunctionx(js, get, name, 0, data, nullptr);
    if (set)
        js_newcfunctionx(js, set, name, 1, data, nullptr);
    else
        js_pushnull(js);
    js_defaccessor(js, -3, name, JS_DONTENUM);
}
