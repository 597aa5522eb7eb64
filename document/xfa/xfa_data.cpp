#include "document/xfa/xfa_data.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "core/xml_token.h"
#include "document/lookup/field_text.h"

namespace {

constexpr std::string_view DATA_NAMESPACE = "http://www.xfa.org/schema/xfa-data/1.0/";
constexpr std::string_view RICH_TEXT = "http://www.w3.org/1999/xhtml";

// Places that a path may leave empty before the one that it names.
constexpr int32_t MOST_GAPS = 1000;
constexpr int64_t ADDED_VISITS = 50;  // what a node that was not there costs

bool is_blank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

void append_step(std::string& path, std::string_view name)
{
    if (!path.empty())
        path += '.';
    for (const char c : name) {
        if (c == '.')
            path += '\\';
        path += c;
    }
}

struct EDIT {
    size_t begin;
    size_t end;
    std::string text;
};

// `content` as what stands in `element` at [begin, end), which becomes two tags where it is one.
EDIT edit_of(const CPDFXmlTree& tree, int32_t element, size_t begin, size_t end, std::string content)
{
    if (!tree.is_single_tag(element))
        return {begin, end, std::move(content)};
    const size_t close = tree.at(element).end;
    return {close - 2, close, ">" + content + "</" + std::string(tree.full_name(element)) + ">"};
}

}  // namespace

bool cut_xfa_step(std::string_view& path, XFA_STEP& step)
{
    step = {};
    size_t at = 0;
    for (; at < path.size() && path[at] != '.' && path[at] != '['; ++at) {
        at += path[at] == '\\' && at + 1 < path.size();
        step.name += path[at];
    }
    path.remove_prefix(at);
    if (path.substr(0, 1) == "[") {
        const size_t close = path.find(']');
        if (close == std::string_view::npos)
            return false;
        const std::string_view index = path.substr(1, close - 1);
        step.is_all = index == "*";
        const auto [end, error] = std::from_chars(index.data(), index.data() + index.size(), step.index);
        if (!step.is_all && (error != std::errc() || end != index.data() + index.size() || step.index < 0))
            return false;
        path.remove_prefix(close + 1);
    }
    if (step.name.empty() || step.name.find_first_of("#@:!$()=\"'/ ") != std::string::npos ||
        (!path.empty() && (path[0] != '.' || path.size() == 1)))
        return false;
    path.remove_prefix(!path.empty());
    return true;
}

CPDFStatus CPDFXfaData::open(std::string text)
{
    if (is_blank(text))
        text = "<xfa:datasets xmlns:xfa=\"" + std::string(DATA_NAMESPACE) + "\"><xfa:data></xfa:data></xfa:datasets>";
    if (CPDFStatus status = m_tree.parse(std::move(text)); !status.ok())
        return CPDFStatus::failed(status.code, "the XFA data " + status.text);
    for (int32_t at = 0; at < m_tree.count(); ++at)
        m_kinds.push_back(content_of(at));
    m_data_sets = m_tree.name(0) == "datasets" ? 0 : m_tree.child(0, "datasets");
    if (m_data_sets < 0)
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, "the XFA data have no data set that can be changed");
    m_data = m_tree.child(m_data_sets, "data");
    if (m_data < 0) {
        const std::string_view name = m_tree.full_name(m_data_sets);
        m_data = add(m_data_sets, std::string(name.substr(0, name.size() - 8)) + "data");
    }
    return {};
}

CPDFXfaData::NAMES& CPDFXfaData::names_in(int32_t parent)
{
    const auto [found, is_new] = m_names.try_emplace(parent);
    if (is_new && is_there(parent)) {
        for (int32_t at = m_tree.at(parent).first; at >= 0; at = m_tree.at(at).next)
            found->second[std::string(m_tree.name(at))].nodes.push_back(at);
    }
    return found->second;
}

CPDFXfaData::CHAIN* CPDFXfaData::chain(int32_t parent, std::string_view name)
{
    NAMES& names = names_in(parent);
    const auto found = names.find(name);
    return found == names.end() ? nullptr : &found->second;
}

// NONE for a name that XML can't have.
int32_t CPDFXfaData::add(int32_t parent, std::string_view name)
{
    if (!is_xml_name_like(name))
        return NONE;
    m_visits += ADDED_VISITS;
    const int32_t node = m_tree.count() + static_cast<int32_t>(m_added.size());
    m_added.push_back({std::string(name), parent});
    m_added_in[parent].push_back(node);
    names_in(parent)[std::string(name)].nodes.push_back(node);
    return node;
}

// Whether it was not claimed before.
bool CPDFXfaData::take(int32_t node)
{
    const auto at = static_cast<size_t>(node);
    if (at >= m_claimed.size())
        m_claimed.resize(std::max(at + 1, static_cast<size_t>(m_tree.count())));
    const bool was = m_claimed[at];
    m_claimed[at] = true;
    return !was;
}

int32_t CPDFXfaData::find_child(int32_t parent, const XFA_STEP& step)
{
    CHAIN* names = chain(parent, step.name);
    const auto index = static_cast<size_t>(step.index);
    return names && index < names->nodes.size() ? names->nodes[index] : NONE;
}

int32_t CPDFXfaData::child(int32_t parent, const XFA_STEP& step)
{
    if (const int32_t found = find_child(parent, step); found != NONE) {
        take(found);
        return found;
    }
    const CHAIN* names = chain(parent, step.name);
    int32_t node = NONE;
    auto place = static_cast<int32_t>(names ? names->nodes.size() : 0);
    if (step.index - place > MOST_GAPS)
        return NONE;
    for (; place <= step.index; ++place)
        node = add(parent, step.name);
    if (node != NONE)
        take(node);
    return node;
}

// Whether it holds several values as one field has them.
bool CPDFXfaData::is_list(int32_t element) const
{
    int32_t at = m_tree.at(element).first;
    while (at >= 0 && m_tree.name(at) == "value" && m_tree.at(at).first < 0)
        at = m_tree.at(at).next;
    return at < 0;
}

CPDFXfaData::CONTENT CPDFXfaData::content_of(int32_t element) const
{
    const XML_ELEMENT& at = m_tree.at(element);
    const std::string said = m_tree.attribute(element, "dataNode");
    if (said == "dataGroup")
        return IS_GROUP;
    if (said.empty() && at.first >= 0 && m_tree.attribute(at.first, "xmlns") != RICH_TEXT)
        return is_list(element) ? IS_LIST : IS_GROUP;
    const std::string_view inner = std::string_view(m_tree.source()).substr(at.inner, at.inner_end - at.inner);
    return at.first < 0 && is_blank(inner) ? IS_EMPTY : IS_TEXT;
}

// `empty` tells whether a group may be one that nothing shows to be one.
bool CPDFXfaData::fits(int32_t node, KIND kind, bool empty) const
{
    if (!is_there(node))
        return true;
    const CONTENT content = kind_of(node);
    if (kind == VALUE)
        return content != IS_GROUP;
    return content == IS_GROUP || content == IS_LIST || (empty && content == IS_EMPTY);
}

int32_t CPDFXfaData::claim(int32_t parent, std::string_view name, KIND kind)
{
    CHAIN* names = chain(parent, name);
    for (const bool empty : {false, true}) {
        for (size_t i = names ? names->open : 0; names && i < names->nodes.size() && !is_exhausted(); ++i) {
            const int32_t node = names->nodes[i];
            const bool is_claimed =
                static_cast<size_t>(node) < m_claimed.size() && m_claimed[static_cast<size_t>(node)];
            ++m_visits;
            names->open += is_claimed && i == names->open;
            if (!is_claimed && fits(node, kind, empty) && take(node))
                return node;
        }
    }
    return NONE;
}

int32_t CPDFXfaData::claim_or_add(int32_t parent, std::string_view name, KIND kind)
{
    int32_t node = claim(parent, name, kind);
    if (node == NONE && !is_exhausted()) {
        node = add(parent, name);
        if (node != NONE)
            take(node);
    }
    return node;
}

int32_t CPDFXfaData::claim_anywhere(int32_t top, std::string_view name)
{
    if (!is_there(top))
        return NONE;
    if (m_anywhere_top != top) {
        m_anywhere.clear();
        m_anywhere_top = top;
        for (int32_t at = top + 1; at < m_tree.count() && m_tree.at(at).begin < m_tree.at(top).end; ++at) {
            if (fits(at, VALUE, true))
                m_anywhere.emplace_back(m_tree.name(at), at);
        }
        std::sort(m_anywhere.begin(), m_anywhere.end());
    }
    const auto before = [](const auto& a, std::string_view b) { return a.first < b; };
    const auto begin = std::lower_bound(m_anywhere.begin(), m_anywhere.end(), name, before);
    auto end = begin;
    while (end != m_anywhere.end() && end->first == name)
        ++end;
    for (auto at = begin; at != end && !is_exhausted(); ++at) {
        ++m_visits;
        if (take(at->second))
            return at->second;
    }
    return begin == end ? NONE : begin->second;
}

std::vector<std::string> CPDFXfaData::values(int32_t node) const
{
    if (!is_there(node))
        return {};
    if (kind_of(node) != IS_LIST)
        return {m_tree.text(node)};
    std::vector<std::string> texts;
    for (int32_t at = m_tree.at(node).first; at >= 0; at = m_tree.at(at).next)
        texts.push_back(m_tree.text(at));
    return texts;
}

void CPDFXfaData::set_value(int32_t node, const std::string& value)
{
    m_contents[node] = xml_escaped(value);
}

void CPDFXfaData::set_list(int32_t node, const std::vector<std::string>& values)
{
    std::string& content = m_contents[node];
    content.clear();
    for (const std::string& value : values)
        content += "<value>" + xml_escaped(value) + "</value>";
}

int32_t CPDFXfaData::find(std::string_view path)
{
    int32_t node = m_data;
    XFA_STEP step;
    do {
        if (!cut_xfa_step(path, step) || step.is_all)
            return NONE;
        node = find_child(node, step);
    } while (node != NONE && !path.empty());
    return is_there(node) && is_value(node) ? node : NONE;
}

CPDFStatus CPDFXfaData::list(std::vector<PDF_XFA_VALUE>& out) const
{
    std::string path;
    size_t size = 0;
    return is_there(m_data) ? append_values(m_data, path, out, size) : CPDFStatus();
}

CPDFStatus CPDFXfaData::append_values(int32_t group, std::string& path, std::vector<PDF_XFA_VALUE>& out,
                                      size_t& size) const
{
    const size_t before = path.size();
    std::map<std::string_view, std::pair<int32_t, int32_t>> places;  // how many of the name, and how many passed
    for (int32_t at = m_tree.at(group).first; at >= 0; at = m_tree.at(at).next)
        ++places[m_tree.name(at)].first;
    for (int32_t at = m_tree.at(group).first; at >= 0; at = m_tree.at(at).next) {
        const std::string_view name = m_tree.name(at);
        append_step(path, name);
        auto& [of_name, passed] = places[name];
        if (of_name > 1)
            path += "[" + std::to_string(passed++) + "]";
        CPDFStatus status;
        if (!is_value(at)) {
            status = append_values(at, path, out, size);
        } else {
            out.push_back({path, m_tree.text(at)});
            size += path.size() + out.back().value.size();
        }
        if (size > LIMIT_EXPORT)
            status = CPDFStatus::failed(PDF_CODE::LIMIT, "the XFA data have more values than what is supported");
        if (!status.ok())
            return status;
        path.resize(before);
    }
    return {};
}

// The added nodes that are to be written: those with a value in them, and those before them without which they would be in
// another place.
std::vector<bool> CPDFXfaData::kept() const
{
    const auto first = static_cast<size_t>(m_tree.count());
    std::vector<bool> kept(m_added.size());
    for (size_t i = m_added.size(); i-- > 0;) {  // children are added after their parents
        kept[i] = kept[i] || m_contents.count(static_cast<int32_t>(first + i));
        const auto parent = static_cast<size_t>(m_added[i].parent);
        if (kept[i] && parent >= first)
            kept[parent - first] = true;
    }
    for (const auto& [parent, nodes] : m_added_in) {
        std::map<std::string_view, bool> needed;
        for (size_t i = nodes.size(); i-- > 0;) {
            const size_t at = static_cast<size_t>(nodes[i]) - first;
            bool& is_needed = needed[m_added[at].name];
            is_needed = is_needed || kept[at];
            kept[at] = is_needed;
        }
    }
    return kept;
}

void CPDFXfaData::append_added(std::string& out, int32_t parent, const std::vector<bool>& kept) const
{
    const auto children = m_added_in.find(parent);
    if (children == m_added_in.end())
        return;
    for (const int32_t node : children->second) {
        const auto at = static_cast<size_t>(node - m_tree.count());
        if (!kept[at])
            continue;
        out += "<" + m_added[at].name + ">";
        if (const auto content = m_contents.find(node); content != m_contents.end())
            out += content->second;
        append_added(out, node, kept);
        out += "</" + m_added[at].name + ">";
    }
}

std::string CPDFXfaData::changed_text(size_t begin, size_t end) const
{
    const std::vector<bool> kept = this->kept();
    std::vector<EDIT> edits;
    for (const auto& [node, content] : m_contents) {
        if (is_there(node))
            edits.push_back(edit_of(m_tree, node, m_tree.at(node).inner, m_tree.at(node).inner_end, content));
    }
    for (const auto& [parent, nodes] : m_added_in) {
        std::string content;
        if (is_there(parent))
            append_added(content, parent, kept);
        if (!content.empty())
            edits.push_back(
                edit_of(m_tree, parent, m_tree.at(parent).inner_end, m_tree.at(parent).inner_end, std::move(content)));
    }
    std::sort(edits.begin(), edits.end(), [](const EDIT& a, const EDIT& b) { return a.begin < b.begin; });
    std::string out;
    size_t at = begin;
    for (const EDIT& edit : edits) {
        if (edit.begin < at)
            continue;  // in what was replaced
        out.append(m_tree.source(), at, edit.begin - at);
        out += edit.text;
        at = edit.end;
    }
    return out.append(m_tree.source(), at, end - at);
}

CPDFStatus CPDFXfaData::set(const PDF_XFA_VALUE& value)
{
    const int32_t node = find(value.path);
    if (node == NONE)
        return CPDFStatus::failed(PDF_CODE::NO_FIELD, "the XFA data have no value " + in_quotes(value.path));
    if (find_xml_forbidden(value.value) != std::string::npos)
        return CPDFStatus::failed(PDF_CODE::WRONG_KIND, "XML can't hold the value for " + in_quotes(value.path));
    if (m_tree.text(node) != value.value)
        set_value(node, value.value);
    return {};
}
