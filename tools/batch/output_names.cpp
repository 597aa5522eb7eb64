#include "tools/batch/output_names.h"

#include <algorithm>

namespace {
uint64_t hash_of(const std::string& name)
{
    return std::hash<std::string>()(name);
}
}  // namespace

void OutputNames::add(const std::string& name)
{
    m_hashes.push_back(hash_of(name));
}

bool OutputNames::look_closer()
{
    std::sort(m_hashes.begin(), m_hashes.end());
    for (auto at = m_hashes.begin(); (at = std::adjacent_find(at, m_hashes.end())) != m_hashes.end(); ++at)
        m_several.insert(*at);
    m_hashes = {};
    return !m_several.empty();
}

size_t OutputNames::add_again(const std::string& name, size_t row)
{
    if (!m_several.contains(hash_of(name)))
        return 0;
    const auto [at, is_first] = m_row_of.emplace(name, row);
    return is_first ? 0 : at->second;
}
