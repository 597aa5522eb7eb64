#include "formats/export/name_path.h"

#include "core/limits.h"

namespace {

std::vector<std::string_view> parts_of(std::string_view name)
{
    std::vector<std::string_view> parts;
    size_t at = 0;
    while (parts.size() + 1 < LIMIT_NAME_PARTS) {
        const size_t dot = name.find('.', at);
        if (dot == std::string_view::npos)
            break;
        parts.push_back(name.substr(at, dot - at));
        at = dot + 1;
    }
    parts.push_back(name.substr(at));
    return parts;
}

}  // namespace

CPDFNamePath::STEP CPDFNamePath::move_to(std::string_view name)
{
    STEP step;
    step.opened = parts_of(name);
    size_t kept = 0;
    while (kept < m_open.size() && kept + 1 < step.opened.size() && m_open[kept] == step.opened[kept])
        ++kept;
    step.closed = m_open.size() - kept;
    m_open.resize(kept);
    step.opened.erase(step.opened.begin(), step.opened.begin() + static_cast<std::ptrdiff_t>(kept));
    m_open.insert(m_open.end(), step.opened.begin(), step.opened.end());
    return step;
}
