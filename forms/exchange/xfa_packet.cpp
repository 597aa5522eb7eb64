#include "forms/exchange/xfa_packet.h"

#include <algorithm>

#include "core/xml_token.h"

namespace {

constexpr std::string_view XMLNS = "xmlns";
constexpr std::string_view DATASETS = "datasets";
constexpr size_t MOST_PREFIXES = 16;  // that one element gives the data namespace; files have one

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

class PacketFinder {
public:
    explicit PacketFinder(std::string_view text) : m_lexer(text) {}

    bool run(PDF_XFA_RANGE& packet)
    {
        CPDFXmlLexer::PIECE piece = m_lexer.next();
        for (; piece != CPDFXmlLexer::END; piece = m_lexer.next()) {
            if (!take(piece))
                return false;
        }
        packet = m_packet;
        return m_root_done && m_found;
    }

private:
    bool take(CPDFXmlLexer::PIECE piece)
    {
        switch (piece) {
        case CPDFXmlLexer::OPEN:
            return start_tag();
        case CPDFXmlLexer::CLOSE:
            return end_tag();
        case CPDFXmlLexer::DECLARATION:
            return false;  // entities could change what is an element
        case CPDFXmlLexer::CDATA:
            return m_depth > 0 && !m_lexer.is_broken();
        default:
            return !m_lexer.is_broken();
        }
    }

    bool start_tag()
    {
        const std::string_view name = m_lexer.name();
        if (name.empty() || m_root_done)
            return false;
        const bool wanted = begins_packet(name);
        const bool bound = attributes(name, wanted);
        if (!m_lexer.end_tag())
            return false;
        const bool empty = m_lexer.is_empty();
        if (wanted && bound) {
            m_found = true;
            m_packet = {m_lexer.begin(), empty ? m_lexer.at() : 0};
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

    // Reads the attributes, of the root also for the namespaces that it declares. For an element that is `wanted`, tells
    // whether its prefix means the data namespace.
    bool attributes(std::string_view name, bool wanted)
    {
        const std::string_view own = cut_prefix(name);
        const std::string_view* const known = m_prefixes + m_prefix_cnt;
        bool bound = wanted && std::find<const std::string_view*>(m_prefixes, known, own) != known;
        while (m_lexer.next_attribute()) {
            std::string_view prefix;
            if ((m_depth > 0 && !wanted) || !declared_prefix(m_lexer.attribute(), prefix))
                continue;
            const bool data = m_lexer.value() == XFA_DATA_NAMESPACE;
            if (m_depth == 0 && data && m_prefix_cnt < MOST_PREFIXES)
                m_prefixes[m_prefix_cnt++] = prefix;
            if (wanted && prefix == own)
                bound = data;
        }
        return bound;
    }

    bool end_tag()
    {
        const std::string_view name = m_lexer.name();
        if (m_depth == 0 || name.empty() || !m_lexer.end_tag())
            return false;
        --m_depth;
        if (m_found && m_packet.end == 0 && m_depth == m_packet_depth) {
            if (name != m_packet_name)
                return false;
            m_packet.end = m_lexer.at();
        }
        m_root_done = m_depth == 0;
        return !m_root_done || name == m_root_name;
    }

    CPDFXmlLexer m_lexer;
    size_t m_depth = 0;  // open elements
    std::string_view m_root_name;
    std::string_view m_prefixes[MOST_PREFIXES];  // those that the root gives the data namespace
    size_t m_prefix_cnt = 0;
    bool m_root_done = false;
    bool m_found = false;
    PDF_XFA_RANGE m_packet = {0, 0};
    std::string_view m_packet_name;
    size_t m_packet_depth = 0;
};

}  // namespace

bool find_xfa_datasets(std::string_view text, PDF_XFA_RANGE& packet)
{
    // Under another encoding what is put in would be read as other characters.
    return is_same_word(xml_encoding(text), "utf-8") && PacketFinder(text).run(packet);
}
