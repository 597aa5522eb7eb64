#include "document/lookup/xml_fit.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "core/alloc.h"
#include "core/text.h"
#include "core/xml_token.h"
#include "document/lookup/field_text.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"
#include "forms/partial_name.h"

namespace {

struct RANGE {
    uint32_t first;
    uint32_t last;
};

constexpr RANGE STARTS[] = {{'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},     {0xD8, 0xF6},
                            {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F},
                            {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFC}, {0x10000, 0xEFFFF}};
constexpr RANGE OTHERS[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <size_t N>
bool is_in(const RANGE (&ranges)[N], uint32_t c)
{
    return std::any_of(ranges, ranges + N, [c](const RANGE& range) { return c >= range.first && c <= range.last; });
}

bool is_xml_name(std::string_view text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = p + text.size();
    if (p == end || !is_in(STARTS, ucs_from_utf8(p, end)))
        return false;
    while (p < end) {
        const uint32_t c = ucs_from_utf8(p, end);
        if (!is_in(STARTS, c) && !is_in(OTHERS, c))
            return false;
    }
    return true;
}

// Whether `text` is character data in which only the five entities of XML stand.
bool is_xml_text(std::string_view text)
{
    constexpr std::string_view ENTITIES[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
    for (size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
        if (std::none_of(std::begin(ENTITIES), std::end(ENTITIES),
                         [&](std::string_view entity) { return text.substr(at, entity.size()) == entity; }))
            return false;
    }
    constexpr auto NONE = std::string_view::npos;
    return text.find('<') == NONE && text.find("]]>") == NONE && find_xml_forbidden(text) == NONE;
}

}  // namespace

bool has_xml_name(const CPDFField& field)
{
    char name[PARTIAL_NAME_SIZE];
    partial_name(field, name);
    return !is_named(name) || is_xml_name(name);
}

bool has_xml_value(const CPDFField& field)
{
    if (field.m_type != FIELD_BUTTON)
        return true;  // the others have texts, which are escaped
    char name[PARTIAL_NAME_SIZE];
    const auto name_size = static_cast<size_t>(partial_name(field, name));
    int len = 0;
    const VXBlock<char> xml(const_cast<CPDFField&>(field).get_form_xml(len));
    std::string_view text(xml ? xml.get() : "", static_cast<size_t>(len));
    if (xml && is_named(name)) {
        text.remove_prefix(name_size + 2);
        text.remove_suffix(name_size + 3);
    }
    return is_xml_text(text);
}
