#include "forms/field_select.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "forms/field_walk.h"
#include "forms/partial_name.h"

namespace {

// An index costs about as much as this many searches of the tree.
constexpr int32_t FEW_LOOKUPS = 8;

bool is_prefix(const char* name, int len, const char* path)
{
    return std::strncmp(path, name, static_cast<size_t>(len)) == 0;
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
    for_each_field(m_form, [this](CPDFField& field) {
        add(m_refs, {field.m_ref.num, m_refs.size(), &field});
        for (int32_t i = 0; i < field.m_widget_cnt; ++i)
            add(m_refs, {field.m_widgets[i].num, m_refs.size(), &field});
        char own[PARTIAL_NAME_SIZE];
        partial_name(field, own);
        if (is_named(own))
            add(m_names, {std::hash<std::string_view>{}(own), m_names.size(), &field});
    });
    std::sort(m_refs.begin(), m_refs.end(), comes_before);
    std::sort(m_names.begin(), m_names.end(), comes_before);
}

CPDFField* CPDFFieldFinder::find_ref(const PDF_REF& ref)
{
    if (m_few)
        return m_form.find(ref);
    build();
    const auto at = std::lower_bound(m_refs.begin(), m_refs.end(), ENTRY{ref.num, 0, nullptr}, comes_before);
    return at != m_refs.end() && at->key == ref.num && !m_failed ? at->field : nullptr;
}

CPDFField* CPDFFieldFinder::find_path(const char* path)
{
    if (!m_few) {
        build();
        const std::string_view whole(path);
        const auto count = [](const Range& range) { return range.second - range.first; };
        std::ptrdiff_t first = 0;
        std::ptrdiff_t last = count(named(whole));
        for (size_t dot = whole.find('.'); dot != whole.npos; dot = whole.find('.', dot + 1)) {
            first += dot < PARTIAL_NAME_SIZE ? count(named(whole.substr(0, dot))) : 0;
            last += whole.size() - dot <= PARTIAL_NAME_SIZE ? count(named(whole.substr(dot + 1))) : 0;
        }
        return last < first ? find_last(path) : find_below(nullptr, 0, path);
    }
    CPDFField* found = nullptr;
    for (int32_t i = 0; i < m_form.m_field_cnt && !found; ++i)
        found = m_form.m_fields[i] ? m_form.m_fields[i]->get(path) : nullptr;
    return found;
}

// The fields that have the partial name `name`, and others of the same hash.
CPDFFieldFinder::Range CPDFFieldFinder::named(std::string_view name) const
{
    const ENTRY wanted{std::hash<std::string_view>{}(name), 0, nullptr};
    return std::equal_range(m_names.begin(), m_names.end(), wanted,
                            [](const ENTRY& a, const ENTRY& b) { return a.key < b.key; });
}

// Whether a search for `path` that starts under `top` asks `field`: every field between lets it pass, for the path begins
// with the name of none.
bool CPDFFieldFinder::is_reached(const CPDFField& field, const CPDFField* top, const char* path)
{
    for (const CPDFField* above = field.m_parent; above != top; above = above->m_parent) {
        char own[PARTIAL_NAME_SIZE];
        const int len = partial_name(*above, own);
        ++m_visits;
        if (is_named(own) && is_prefix(own, len, path))
            return false;
    }
    return true;
}

// Adds the fields under `top`, from `place` on, that have the partial name `name`.
void CPDFFieldFinder::add_named(Index& out, std::string_view name, const CPDFField* top, size_t place)
{
    const auto is_below = [top](const CPDFField* field) {
        while (field && field != top)
            field = field->m_parent;
        return field == top;
    };
    const ENTRY first{std::hash<std::string_view>{}(name), place, nullptr};
    for (auto at = std::lower_bound(m_names.begin(), m_names.end(), first, comes_before);
         at != m_names.end() && at->key == first.key && !gave_up() && is_below(at->field); ++at) {
        add(out, *at);
        ++m_visits;
    }
}

// CPDFField::get, asked of all fields under `top`, or of the whole form. The fields that take the first step of a match
// are named like the path up to one of its dots, or like all of it.
CPDFField* CPDFFieldFinder::find_below(const CPDFField* top, size_t place, const char* path)
{
    const std::string_view whole(path);
    Index starts;
    for (size_t end = 0; end < PARTIAL_NAME_SIZE;) {
        end = whole.find('.', end + 1);
        add_named(starts, whole.substr(0, end), top, place);
    }
    if (m_failed)
        return nullptr;
    std::sort(starts.begin(), starts.end(), [](const ENTRY& a, const ENTRY& b) { return a.place < b.place; });
    for (const ENTRY& start : starts) {
        char own[PARTIAL_NAME_SIZE];
        const int len = partial_name(*start.field, own);
        // Where only the hash is the same, the fields below are candidates of their own.
        if (!is_prefix(own, len, path) || !is_reached(*start.field, top, path))
            continue;
        if (path[len] == 0)
            return start.field;
        CPDFField* found = path[len] == '.' ? find_below(start.field, start.place + 1, path + len + 1) : nullptr;
        if (found)
            return found;
    }
    return nullptr;
}

// What is left of `path` under `field`, null for the form, where a search gets that far: fields whose name the rest does
// not begin with let it pass.
const char* CPDFFieldFinder::rest_below(const CPDFField* field, const char* path)
{
    const char* rest = field ? rest_below(field->m_parent, path) : path;
    if (!field || !rest)
        return rest;
    char own[PARTIAL_NAME_SIZE];
    const int len = partial_name(*field, own);
    ++m_visits;
    if (!is_named(own) || !is_prefix(own, len, rest))
        return rest;
    return rest[len] == '.' ? rest + len + 1 : nullptr;
}

// The same as find_below from the top, from the other end: the field that a path designates is named like the path behind
// one of its dots, or like all of it. Many fields may be called as the first step is, and few as the last.
CPDFField* CPDFFieldFinder::find_last(const char* path)
{
    const std::string_view whole(path);
    Index ends;
    for (size_t begin = 0;; ++begin) {
        if (whole.size() - begin < PARTIAL_NAME_SIZE) {
            const Range range = named(whole.substr(begin));
            m_failed = !ends.append(range.first, static_cast<size_t>(range.second - range.first)) || m_failed;
        }
        begin = whole.find('.', begin);
        if (begin == whole.npos)
            break;
    }
    std::sort(ends.begin(), ends.end(), [](const ENTRY& a, const ENTRY& b) { return a.place < b.place; });
    for (const ENTRY& end : ends) {
        if (gave_up() || m_failed)
            return nullptr;
        char own[PARTIAL_NAME_SIZE];
        partial_name(*end.field, own);
        const char* rest = rest_below(end.field->m_parent, path);
        if (rest && std::strcmp(own, rest) == 0)
            return end.field;
    }
    return nullptr;
}
