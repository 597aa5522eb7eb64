#include "forms/field_select.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "core/limits.h"
#include "forms/partial_name.h"

namespace {

// An index costs about as much as this many searches of the tree.
constexpr int32_t FEW_LOOKUPS = 8;

uint64_t key_of(std::string_view name)
{
    return std::hash<std::string_view>{}(name);
}

// What a search for `path` asks the kids of `field`, null for the top, as CPDFField::get does it: the rest of the path where
// it begins with the name, all of it where it doesn't. Null when it does not ask them.
const char* path_below(const CPDFField* field, const char* path, int64_t& visits)
{
    if (!field)
        return path;
    path = path_below(field->m_parent, path, visits);
    if (!path)
        return nullptr;
    ++visits;
    char own[PARTIAL_NAME_SIZE];
    const auto len = static_cast<size_t>(partial_name(*field, own));
    if (!is_named(own) || std::strncmp(path, own, len) != 0)
        return path;
    return path[len] == '.' ? path + len + 1 : nullptr;
}

bool designates(const char* path, const CPDFField& field, int64_t& visits)
{
    const char* rest = path_below(field.m_parent, path, visits);
    char own[PARTIAL_NAME_SIZE];
    partial_name(field, own);
    ++visits;
    return rest && std::strcmp(rest, own) == 0;
}

// Calls `take(std::string_view)` for what may be the name of the first field of a path: the path up to each of its dots,
// and all of it.
template <typename Take>
void each_head(std::string_view path, Take&& take)
{
    for (size_t end = 0; end < PARTIAL_NAME_SIZE;) {
        end = path.find('.', end + 1);
        take(path.substr(0, end));
    }
}

// The same for the last field: all of the path, and what is behind each of its dots.
template <typename Take>
void each_tail(std::string_view path, Take&& take)
{
    size_t begin = path.size() < PARTIAL_NAME_SIZE ? 0 : path.find('.', path.size() - PARTIAL_NAME_SIZE) + 1;
    if (path.size() >= PARTIAL_NAME_SIZE && begin == 0)
        return;
    for (;;) {
        take(path.substr(begin));
        const size_t dot = path.find('.', begin);
        if (dot == std::string_view::npos)
            return;
        begin = dot + 1;
    }
}

}  // namespace

bool CPDFFieldFinder::comes_before(const ENTRY& a, const ENTRY& b)
{
    return a.key != b.key ? a.key < b.key : a.place < b.place;
}

CPDFFieldFinder::CPDFFieldFinder(CPDFAcroForm& form, int32_t lookups) : m_form(form), m_few(lookups <= FEW_LOOKUPS) {}

CPDFField* CPDFFieldFinder::find(const CPDFObj& entry)
{
    if (entry.type == PDF_OBJ_REF)
        return find_ref(entry.ref);
    if (entry.type == PDF_OBJ_STRING)
        return find_path(entry.str.buf ? reinterpret_cast<const char*>(entry.str.buf) : "");
    return nullptr;
}

void CPDFFieldFinder::build()
{
    if (m_built)
        return;
    m_built = true;
    for (int32_t i = 0; i < m_form.m_field_cnt; ++i) {
        if (m_form.m_fields[i])
            add_tree(*m_form.m_fields[i]);
    }
    std::sort(m_refs.begin(), m_refs.end(), comes_before);
    std::sort(m_names.begin(), m_names.end(), comes_before);
}

void CPDFFieldFinder::add_tree(CPDFField& field)
{
    const size_t place = m_places++;
    add(m_refs, {field.m_ref.num, place, 0, &field});
    for (int32_t i = 0; i < field.m_widget_cnt; ++i)
        add(m_refs, {field.m_widgets[i].num, place, 0, &field});
    char own[PARTIAL_NAME_SIZE];
    partial_name(field, own);
    const size_t at = m_names.size();
    if (is_named(own))
        add(m_names, {key_of(own), place, 0, &field});
    const bool added = m_names.size() > at;
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        if (field.m_kids[i])
            add_tree(*field.m_kids[i]);
    }
    if (added)
        m_names[at].end = m_places;
}

CPDFField* CPDFFieldFinder::find_ref(const PDF_REF& ref)
{
    if (m_few)
        return m_form.find(ref);
    build();
    const auto at = std::lower_bound(m_refs.begin(), m_refs.end(), ENTRY{ref.num, 0, 0, nullptr}, comes_before);
    return at != m_refs.end() && at->key == ref.num && !m_gave_up ? at->field : nullptr;
}

CPDFField* CPDFFieldFinder::find_path(const char* path)
{
    if (!m_few) {
        build();
        return m_gave_up ? nullptr : find_named(path);
    }
    CPDFField* found = nullptr;
    for (int32_t i = 0; i < m_form.m_field_cnt && !found; ++i)
        found = m_form.m_fields[i] ? m_form.m_fields[i]->get(path) : nullptr;
    return found;
}

// The fields with this partial name, or with another of the same hash, in tree order.
CPDFFieldFinder::Range CPDFFieldFinder::named(std::string_view name) const
{
    const uint64_t key = key_of(name);
    const ENTRY* first = std::lower_bound(m_names.begin(), m_names.end(), ENTRY{key, 0, 0, nullptr}, comes_before);
    return {first, std::upper_bound(first, m_names.end(), ENTRY{key, SIZE_MAX, 0, nullptr}, comes_before)};
}

// Makes `best` the first of `fields` that `path` designates, when it comes before `best`, which may be null.
void CPDFFieldFinder::find_first(Range fields, const char* path, const ENTRY*& best)
{
    for (const ENTRY& entry : fields) {
        m_gave_up = m_gave_up || m_visits >= LIMIT_SELECT_VISITS;
        if (m_gave_up || (best && entry.place >= best->place))
            return;
        if (designates(path, *entry.field, m_visits))
            best = &entry;
    }
}

// The field that CPDFField::get finds is named like the end of the path, and below one that is named like its beginning.
// Where many have one name, those with the rarer one are tried.
CPDFField* CPDFFieldFinder::find_named(const char* path)
{
    size_t heads = 0;
    size_t tails = 0;
    each_head(path, [&](std::string_view name) { heads += named(name).size(); });
    each_tail(path, [&](std::string_view name) { tails += named(name).size(); });
    const ENTRY* best = nullptr;
    each_tail(path, [&](std::string_view name) {
        const Range last = named(name);
        if (tails <= heads) {
            find_first(last, path, best);
            return;
        }
        each_head(path, [&](std::string_view head) {
            for (const ENTRY& top : named(head)) {
                if (m_gave_up || (best && top.place >= best->place))
                    return;
                ++m_visits;
                const auto begin = std::lower_bound(last.begin(), last.end(), top.place,
                                                    [](const ENTRY& at, size_t place) { return at.place < place; });
                const auto end = std::lower_bound(begin, last.end(), top.end,
                                                  [](const ENTRY& at, size_t place) { return at.place < place; });
                find_first({begin, end}, path, best);
            }
        });
    });
    return m_gave_up ? nullptr : best ? best->field : nullptr;
}
