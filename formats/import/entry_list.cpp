#include "formats/import/entry_list.h"

namespace {

// The texts of a value and their bytes.
void measure(const CPDFValue& value, size_t& count, size_t& bytes)
{
    if (const auto* text = std::get_if<std::string>(&value))
        bytes += text->size();
    const auto* texts = std::get_if<std::vector<std::string>>(&value);
    count += texts ? texts->size() : 1;
    for (size_t i = 0; texts && i < texts->size(); ++i)
        bytes += (*texts)[i].size();
}

}  // namespace

CPDFEntryList::CPDFEntryList(CPDFFormData& out, size_t size)
    : m_out(out), m_room(LIMIT_DATA_BYTES + LIMIT_DATA_BYTES_PER_BYTE * size)
{
}

bool CPDFEntryList::join(std::string_view above, bool is_top, std::string_view part, std::string& name)
{
    if (above.size() + part.size() + 1 > LIMIT_FULL_NAME + size_t{is_top})
        return false;
    name = above;
    if (!is_top)
        name += '.';
    name += part;
    return true;
}

bool CPDFEntryList::add(const std::string& name, CPDFValue value, PDF_WORDS words)
{
    size_t count = 0;
    size_t bytes = name.size();
    measure(value, count, bytes);
    if (bytes > m_room || count > m_values)
        return false;
    m_room -= bytes;
    m_values -= count;
    m_out.push_back({name, std::move(value), words});
    return true;
}
