#include "document/lookup/name_index.h"

#include <algorithm>
#include <functional>

#include "core/alloc.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_walk.h"

void CPDFNameIndex::clear()
{
    *this = CPDFNameIndex();
}

CPDFField* CPDFNameIndex::find(CPDFAcroForm& form, std::string_view name)
{
    if (!m_has_stored) {
        build(m_stored, form, full_name);
        m_has_stored = true;
    }
    if (CPDFField* field = look_up(m_stored, name, full_name))
        return field;
    if (!m_has_without_index) {
        build(m_without_index, form, full_name_without_index);
        m_has_without_index = true;
    }
    return look_up(m_without_index, name, full_name_without_index);
}

size_t CPDFNameIndex::count(CPDFAcroForm& form, std::string_view name)
{
    if (!m_has_stored) {
        build(m_stored, form, full_name);
        m_has_stored = true;
    }
    const uint64_t hash = std::hash<std::string_view>()(name);
    const auto below = [](const ENTRY& entry, uint64_t wanted) { return entry.hash < wanted; };
    size_t count = 0;
    for (auto at = std::lower_bound(m_stored.begin(), m_stored.end(), hash, below);
         at != m_stored.end() && at->hash == hash; ++at)
        count += full_name(*at->field) == name;
    return count;
}

void CPDFNameIndex::add(CPDFField& field)
{
    const VXFailureCheck memory;
    for_each_field(field, [this](CPDFField& at) {
        if (m_has_stored && at.m_name.len > 0)
            insert(m_stored, at, full_name);
        if (m_has_without_index && at.m_name.len > 0)
            insert(m_without_index, at, full_name_without_index);
    });
    if (memory.failed())
        clear();
}

void CPDFNameIndex::remove(CPDFField& field)
{
    const VXFailureCheck memory;
    for_each_field(field, [this](CPDFField& at) {
        if (m_has_stored)
            erase(m_stored, at, full_name);
        if (m_has_without_index)
            erase(m_without_index, at, full_name_without_index);
    });
    if (memory.failed())  // a name that could not be made was not found
        clear();
}

void CPDFNameIndex::insert(std::vector<ENTRY>& entries, CPDFField& field, NameOf name_of)
{
    const uint64_t hash = std::hash<std::string>()(name_of(field));
    const auto above = [](uint64_t wanted, const ENTRY& entry) { return wanted < entry.hash; };
    entries.insert(std::upper_bound(entries.begin(), entries.end(), hash, above), {hash, &field});
}

void CPDFNameIndex::erase(std::vector<ENTRY>& entries, CPDFField& field, NameOf name_of)
{
    const uint64_t hash = std::hash<std::string>()(name_of(field));
    const auto below = [](const ENTRY& entry, uint64_t wanted) { return entry.hash < wanted; };
    auto at = std::lower_bound(entries.begin(), entries.end(), hash, below);
    while (at != entries.end() && at->hash == hash && at->field != &field)
        ++at;
    if (at != entries.end() && at->field == &field)
        entries.erase(at);
}

void CPDFNameIndex::build(std::vector<ENTRY>& entries, CPDFAcroForm& form, NameOf name_of)
{
    entries.clear();
    for_each_field(form, [&](CPDFField& field) {
        if (field.m_name.len > 0)
            entries.push_back({std::hash<std::string>()(name_of(field)), &field});
    });
    std::stable_sort(entries.begin(), entries.end(), [](const ENTRY& a, const ENTRY& b) { return a.hash < b.hash; });
}

CPDFField* CPDFNameIndex::look_up(const std::vector<ENTRY>& entries, std::string_view name, NameOf name_of)
{
    const uint64_t hash = std::hash<std::string_view>()(name);
    const auto below = [](const ENTRY& entry, uint64_t wanted) { return entry.hash < wanted; };
    auto at = std::lower_bound(entries.begin(), entries.end(), hash, below);
    for (; at != entries.end() && at->hash == hash; ++at) {
        if (name_of(*at->field) == name)
            return at->field;
    }
    return nullptr;
}
