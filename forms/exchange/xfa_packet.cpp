#include "forms/exchange/xfa_packet.h"

#include <algorithm>
#include <unordered_set>

namespace {

constexpr std::string_view SPACES = " \t\r\n";
constexpr std::string_view XMLNS = "xmlns";
constexpr std::string_view DATASETS = "datasets";

bool is_space(char c)
{
    return SPACES.find(c) != std::string_view::npos;
}

// The prefix of a qualified name, "" when it has none, which is removed from `name`.
std::string_view cut_prefix(std::string_view& name)
{
    const size_t colon = name.find(':');
    if (colon == std::string_view::npos)
        return {};
    const std::string_view prefix = name.substr(0, colon);
    name.remove_prefix(colon + 1);
    return prefix;
}

// The prefix that an attribute declares ("" for the default namespace). False for other attributes.
bool declared_prefix(std::string_view attribute, std::string_view& prefix)
{
    const std::string_view head = cut_prefix(attribute);
    prefix = head.empty() ? std::string_view() : attribute;
    return head == XMLNS || (head.empty() && attribute == XMLNS);
}

// text := ( chars | comment | instruction | cdata | tag )*
// tag := '<' name ( name '=' quoted )* '/'? '>' | '</' name '>'
class PacketFinder {
public:
    explicit PacketFinder(std::string_view text) : m_text(text) {}

    bool run(XFA_RANGE& packet)
    {
        if (!takes_utf8())
            return false;
        while ((m_at = m_text.find('<', m_at)) != std::string_view::npos) {
            if (!markup())
                return false;
        }
        packet = m_packet;
        return m_root_done && m_found;
    }

private:
    bool starts(std::string_view mark) const { return m_text.substr(m_at, mark.size()) == mark; }

    bool skip_past(size_t from, std::string_view mark)
    {
        const size_t found = m_text.find(mark, m_at + from);
        if (found == std::string_view::npos)
            return false;
        m_at = found + mark.size();
        return true;
    }

    // A declared encoding other than UTF-8 would make other characters of what is put in.
    bool takes_utf8()
    {
        constexpr std::string_view KEY = "encoding";
        if (starts("\xEF\xBB\xBF"))
            m_at += 3;
        if (!starts("<?xml") || m_at + 5 >= m_text.size() || !is_space(m_text[m_at + 5]))
            return true;
        const std::string_view declaration = m_text.substr(m_at, m_text.find("?>", m_at) - m_at);
        const size_t key = declaration.find(KEY);
        if (key == std::string_view::npos)
            return true;
        const size_t open = declaration.find_first_of("'\"", key);
        if (open == std::string_view::npos)
            return false;
        const std::string_view name = declaration.substr(open + 1, 6);
        constexpr std::string_view UTF8 = "utf-8";
        return name.size() == 6 && name[5] == declaration[open] &&
               std::equal(UTF8.begin(), UTF8.end(), name.begin(),
                          [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b - 'A' + 'a' : b); });
    }

    bool markup()
    {
        if (starts("<!--"))
            return skip_past(4, "-->");
        if (starts("<![CDATA["))
            return m_depth > 0 && skip_past(9, "]]>");
        if (starts("<?"))
            return skip_past(2, "?>");
        if (starts("<!"))
            return false;  // entities could change what is an element
        return starts("</") ? end_tag() : start_tag();
    }

    bool start_tag()
    {
        const size_t begin = m_at++;
        const std::string_view name = take_name();
        if (name.empty() || m_root_done)
            return false;
        const bool wanted = begins_packet(name);
        bool bound = false;
        if (!attributes(name, wanted, bound))
            return false;
        const bool empty = starts("/");
        m_at += empty;
        if (!starts(">"))
            return false;
        ++m_at;
        if (wanted && bound) {
            m_found = true;
            m_packet = {begin, empty ? m_at : 0};
            m_packet_name = name;
            m_packet_depth = m_depth;
        }
        if (m_depth == 0)
            m_root_name = name;
        m_depth += !empty;
        m_root_done = m_depth == 0;
        return true;
    }

    bool begins_packet(std::string_view name) const
    {
        std::string_view local = name;
        cut_prefix(local);
        return local == DATASETS && m_depth <= 1 && !m_found;
    }

    // Reads the attributes, of the root also for the namespaces that it declares. For an element that is `wanted`,
    // `bound` tells whether its prefix means the data namespace.
    bool attributes(std::string_view name, bool wanted, bool& bound)
    {
        const std::string_view own = cut_prefix(name);
        bound = wanted && m_root_prefixes.count(own) > 0;
        for (skip_space(); m_at < m_text.size() && m_text[m_at] != '>' && m_text[m_at] != '/'; skip_space()) {
            std::string_view attribute = take_name();
            std::string_view value;
            if (attribute.empty() || !take_value(value))
                return false;
            std::string_view prefix;
            if ((m_depth > 0 && !wanted) || !declared_prefix(attribute, prefix))
                continue;
            const bool data = value == XFA_DATA_NAMESPACE;
            if (m_depth == 0 && data)
                m_root_prefixes.insert(prefix);
            if (wanted && prefix == own)
                bound = data;
        }
        return true;
    }

    bool end_tag()
    {
        m_at += 2;
        const std::string_view name = take_name();
        skip_space();
        if (m_depth == 0 || name.empty() || !starts(">"))
            return false;
        ++m_at;
        --m_depth;
        if (m_found && m_packet.end == 0 && m_depth == m_packet_depth) {
            if (name != m_packet_name)
                return false;
            m_packet.end = m_at;
        }
        m_root_done = m_depth == 0;
        return !m_root_done || name == m_root_name;
    }

    std::string_view take_name()
    {
        const size_t begin = m_at;
        m_at = std::min(m_text.find_first_of(" \t\r\n=/><'\"", m_at), m_text.size());
        return m_text.substr(begin, m_at - begin);
    }

    bool take_value(std::string_view& value)
    {
        skip_space();
        if (!starts("="))
            return false;
        ++m_at;
        skip_space();
        if (!starts("\"") && !starts("'"))
            return false;
        const size_t begin = m_at + 1;
        const size_t end = m_text.find(m_text[m_at], begin);
        if (end == std::string_view::npos)
            return false;
        value = m_text.substr(begin, end - begin);
        m_at = end + 1;
        return true;
    }

    void skip_space() { m_at = std::min(m_text.find_first_not_of(SPACES, m_at), m_text.size()); }

    std::string_view m_text;  // borrowed from the caller, as all names
    size_t m_at = 0;
    size_t m_depth = 0;  // open elements
    std::string_view m_root_name;
    std::unordered_set<std::string_view> m_root_prefixes;  // those that the root binds to the data namespace
    bool m_root_done = false;
    bool m_found = false;
    XFA_RANGE m_packet = {0, 0};
    std::string_view m_packet_name;
    size_t m_packet_depth = 0;
};

}  // namespace

bool find_xfa_datasets(std::string_view text, XFA_RANGE& packet)
{
    return PacketFinder(text).run(packet);
}
