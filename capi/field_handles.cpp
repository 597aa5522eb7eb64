#include "capi/field_handles.h"

#include <atomic>
#include <new>
#include <unordered_set>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/field_walk.h"

namespace {

// A handle has 24 bits for the place, counted from 1, and 40 for the life of the table.
constexpr unsigned PLACE_BITS = 24;
constexpr uint64_t PLACE_MASK = (uint64_t{1} << PLACE_BITS) - 1;

uint64_t next_life()
{
    static std::atomic<uint64_t> last{0};
    return ++last;
}

}  // namespace

FieldHandles::FieldHandles() : m_life(next_life()) {}

// The fields above one that was found alone are made anew when the form is loaded.
void FieldHandles::find_again(CPDFDocument& document)
{
    m_has_early = false;
    m_places.clear();
    for (size_t i = 0; i < m_slots.size(); ++i) {
        SLOT& slot = m_slots[i];
        if (!slot.early.empty())
            slot.field = document.field(slot.early);
        if (slot.field)
            m_places.emplace(slot.field, i);
    }
}

fw_field FieldHandles::handle_of(CPDFDocument& document, CPDFField* field)
{
    if (!field)
        return 0;
    const bool loaded = document.has_loaded_form();
    if (m_has_early && loaded)
        find_again(document);
    const auto known = m_places.find(field);
    size_t place = known == m_places.end() ? m_slots.size() : known->second;
    if (known == m_places.end()) {
        if (place >= PLACE_MASK)
            throw std::bad_alloc();
        m_slots.push_back({field, loaded ? std::string() : full_name(*field), nullptr});
        m_places.emplace(field, place);
        m_has_early = m_has_early || !loaded;
    }
    return (m_life << PLACE_BITS) | (place + 1);
}

CPDFField* FieldHandles::field_of(CPDFDocument& document, fw_field handle)
{
    const uint64_t place = handle & PLACE_MASK;
    if (handle >> PLACE_BITS != m_life || place == 0 || place > m_slots.size())
        return nullptr;
    if (m_has_early && document.has_loaded_form())
        find_again(document);
    return m_slots[place - 1].field;
}

FIELD_TEXTS_KEPT& FieldHandles::texts_of(fw_field handle)
{
    std::unique_ptr<FIELD_TEXTS_KEPT>& texts = m_slots[(handle & PLACE_MASK) - 1].texts;
    if (!texts)
        texts = std::make_unique<FIELD_TEXTS_KEPT>();
    return *texts;
}

void FieldHandles::end(std::span<CPDFField* const> fields)
{
    for (CPDFField* field : fields) {
        const auto known = m_places.find(field);
        if (known == m_places.end())
            continue;
        m_slots[known->second].field = nullptr;
        m_places.erase(known);
    }
}

void FieldHandles::end_missing(CPDFDocument& document)
try {
    std::unordered_set<const CPDFField*> present;
    for_each_field(document.form(), [&present](const CPDFField& field) { present.insert(&field); });
    std::vector<CPDFField*> gone;
    for (const SLOT& slot : m_slots) {
        if (slot.field && !present.contains(slot.field))
            gone.push_back(slot.field);
    }
    end(gone);
} catch (const std::bad_alloc&) {
    end_all();
}

void FieldHandles::end_all()
{
    m_life = next_life();
    m_slots.clear();
    m_places.clear();
    m_has_early = false;
}

void FieldHandles::replace(fw_field handle, CPDFField* field)
{
    const size_t place = (handle & PLACE_MASK) - 1;
    m_slots[place].field = field;
    m_places[field] = place;
}
