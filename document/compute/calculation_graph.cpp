#include "document/compute/calculation_graph.h"

#include <algorithm>
#include <map>

#include "document/lookup/field_text.h"
#include "forms/field.h"

void CPDFCalculationGraph::add(CPDFField& field, const std::vector<std::string>& names)
{
    if (m_places.emplace(&field, m_nodes.size()).second)
        m_nodes.push_back({&field, names});
    m_sources.clear();
}

// A name is that of a field or of a group, whose fields all count.
void CPDFCalculationGraph::link()
{
    if (m_sources.size() == m_nodes.size())
        return;
    std::multimap<std::string, size_t> by_name;
    for (size_t i = 0; i < m_nodes.size(); ++i)
        by_name.emplace(full_name(*m_nodes[i].field), i);
    m_sources.resize(m_nodes.size());
    for (size_t i = 0; i < m_nodes.size(); ++i) {
        std::vector<size_t>& sources = m_sources[i];
        for (const std::string& name : m_nodes[i].names) {
            const auto [first, last] = by_name.equal_range(name);
            for (auto at = first; at != last; ++at)
                sources.push_back(at->second);
            const std::string group = name + ".";
            for (auto at = by_name.lower_bound(group); at != by_name.end() && at->first.starts_with(group); ++at)
                sources.push_back(at->second);
        }
        std::sort(sources.begin(), sources.end());
        sources.erase(std::unique(sources.begin(), sources.end()), sources.end());
    }
}

bool CPDFCalculationGraph::leads_to(size_t from, size_t to) const
{
    std::vector<bool> seen(m_nodes.size());
    std::vector<size_t> open = {from};
    while (!open.empty()) {
        const size_t at = open.back();
        open.pop_back();
        if (at == to)
            return true;
        if (seen[at])
            continue;
        seen[at] = true;
        open.insert(open.end(), m_sources[at].begin(), m_sources[at].end());
    }
    return false;
}

const CPDFField* CPDFCalculationGraph::circle_of(const CPDFField& field)
{
    link();
    const size_t place = m_places.at(&field);
    for (const size_t source : m_sources[place]) {
        if (leads_to(source, place))
            return m_nodes[source].field;
    }
    return nullptr;
}

std::vector<CPDFField*> CPDFCalculationGraph::sorted()
{
    link();
    std::vector<CPDFField*> order;
    std::vector<bool> entered(m_nodes.size());
    std::vector<std::pair<size_t, size_t>> path;  // nodes, and which of their sources is next
    for (size_t start = 0; start < m_nodes.size(); ++start) {
        if (!entered[start])
            path.emplace_back(start, 0);
        entered[start] = true;
        while (!path.empty()) {
            auto& [at, next] = path.back();
            if (next == m_sources[at].size()) {
                order.push_back(m_nodes[at].field);
                path.pop_back();
            } else if (const size_t source = m_sources[at][next++]; !entered[source]) {
                entered[source] = true;
                path.emplace_back(source, 0);
            }
        }
    }
    return order;
}
