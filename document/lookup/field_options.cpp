#include "document/lookup/field_options.h"

#include "document/lookup/field_text.h"
#include "forms/field_inherit.h"

CPDFFieldOptions::CPDFFieldOptions(const CPDFField& field) : m_holder(&field)
{
    if (field.m_type != FIELD_CHOICE)
        return;
    m_holder = nearest_field(field, [](const CPDFField& at) { return at.m_opt_cnt > 0 || at.m_type != FIELD_CHOICE; });
    if (m_holder && m_holder->m_type != FIELD_CHOICE)
        m_holder = nullptr;
}

int32_t CPDFFieldOptions::count() const
{
    if (m_given)
        return static_cast<int32_t>(m_given->size());
    return m_holder ? m_holder->m_opt_cnt : 0;
}

std::string CPDFFieldOptions::value(int32_t index) const
{
    return m_given ? (*m_given)[static_cast<size_t>(index)].value : utf8_of(m_holder->m_opts[index].val);
}

std::string CPDFFieldOptions::text(int32_t index) const
{
    return m_given ? (*m_given)[static_cast<size_t>(index)].text : utf8_of(m_holder->m_opts[index].text);
}

std::string CPDFFieldOptions::shown(int32_t index) const
{
    std::string seen = text(index);
    return seen.empty() ? value(index) : seen;
}

void CPDFFieldOptions::make_value(int32_t index, CPDFObj& out) const
{
    if (!m_given) {
        const PDF_String& value = m_holder->m_opts[index].val;
        out.set_string(value.buf, value.len);
        return;
    }
    PDF_String value = pdf_string_of((*m_given)[static_cast<size_t>(index)].value);
    out.set_string(value.buf, value.len);
    value.release();
}

bool CPDFFieldOptions::has_text(int32_t index) const
{
    return m_given ? !(*m_given)[static_cast<size_t>(index)].text.empty() : m_holder->m_opts[index].text.buf != nullptr;
}

int32_t CPDFFieldOptions::find(const std::string& word) const
{
    for (int32_t i = 0; i < count(); ++i) {
        if (value(i) == word)
            return i;
    }
    for (int32_t i = 0; i < count(); ++i) {
        if (has_text(i) && text(i) == word)
            return i;
    }
    return -1;
}

int32_t CPDFOptionIndex::find(const CPDFFieldOptions& options, const std::string& word)
{
    constexpr int32_t SHORT_LIST = 32;
    if (!options.m_holder || options.count() <= SHORT_LIST)
        return options.find(word);
    const auto [place, is_new] = m_words.try_emplace(options.m_holder);
    WORDS& words = place->second;
    for (int32_t i = 0; is_new && i < options.count(); ++i) {
        words.values.emplace(options.value(i), i);
        if (options.has_text(i))
            words.texts.emplace(options.text(i), i);
    }
    for (const auto* names : {&words.values, &words.texts}) {
        if (const auto found = names->find(word); found != names->end())
            return found->second;
    }
    return -1;
}
