#include "document/lookup/branch_finder.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "forms/field_walk.h"
#include "forms/visit_set.h"

namespace {

constexpr CPDFKeySet NAME_KEYS{"T"};
constexpr CPDFKeySet TREE_KEYS{"Kids", "Parent"};
constexpr CPDFKeySet FIELDS_KEYS{"Fields"};

enum class NAMED { NO_FIELD, NO, YES };

// The partial name of a field dictionary, in UTF-8.
NAMED read_name(CPDFXRefTable& xref, const PDF_REF& ref, std::string& name)
{
    CPDFObj own;
    xref.get_entity(own, ref, &NAME_KEYS);
    const CPDFDictionary* dict = own.dictionary();
    if (!dict)
        return NAMED::NO_FIELD;
    const CPDFEntryView text(&xref, dict->get_item("T"));
    if (text->type != PDF_OBJ_STRING || text->str.len <= 0)
        return NAMED::NO;
    name = utf8_of(text->str);
    return NAMED::YES;
}

void hang_kids(CPDFField& field)
{
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        if (field.m_kids[i])
            field.m_kids[i]->m_parent = &field;
    }
}

// Gives each of two fields of the same dictionary the place in the tree that the other one has, and what depends on it;
// the rest is the same.
void trade_places(CPDFField& a, CPDFField& b)
{
    std::swap(a.m_parent, b.m_parent);
    std::swap(a.m_index, b.m_index);
    std::swap(a.m_kids, b.m_kids);
    std::swap(a.m_kid_cnt, b.m_kid_cnt);
    std::swap(a.m_widgets, b.m_widgets);
    std::swap(a.m_widget_cnt, b.m_widget_cnt);
    std::swap(a.m_xfa_target, b.m_xfa_target);
    std::swap(a.m_xfa_event, b.m_xfa_event);
    hang_kids(a);
    hang_kids(b);
}

}  // namespace

CPDFBranchFinder::CPDFBranchFinder() : m_visits(std::make_unique<CPDFVisitSet>()) {}

CPDFBranchFinder::~CPDFBranchFinder()
{
    for (const CPDFField* top : m_tops)
        delete top;
}

CPDFField* CPDFBranchFinder::find(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name)
{
    m_wanted = 1;
    return start(xref, form, name) && !m_in_doubt ? load_branch(xref) : nullptr;
}

int CPDFBranchFinder::count(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name)
{
    m_wanted = 2;
    start(xref, form, name);
    return m_in_doubt ? m_wanted : m_passed;
}

// Walks to the field of that name which is wanted; m_path then leads there.
bool CPDFBranchFinder::start(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name)
{
    CPDFObj fetched;
    const CPDFDictionary* dict = form ? form->dictionary() : nullptr;
    if (form && form->type == PDF_OBJ_REF) {
        xref.get_entity(fetched, form->ref, &FIELDS_KEYS);
        dict = fetched.dictionary();
    }
    m_path.clear();
    m_in_doubt = false;
    m_passed = 0;
    *m_visits = CPDFVisitSet();
    return dict && descend(xref, dict->get_item("Fields"), name, 0);
}

bool CPDFBranchFinder::descend(CPDFXRefTable& xref, const CPDFObj* list, std::string_view name, int depth)
{
    const CPDFEntryView entry(&xref, list);
    const CPDFArray* fields = entry->array();
    for (int32_t i = 0; fields && i < fields->count; ++i) {
        if (fields->items[i].type == PDF_OBJ_REF && enter(xref, fields->items[i].ref, name, depth))
            return true;
    }
    return false;
}

// Whether `name` designates the field `ref` or one under it; m_path then leads there. True in doubt, too, which ends
// the walk.
bool CPDFBranchFinder::enter(CPDFXRefTable& xref, const PDF_REF& ref, std::string_view name, int depth)
{
    std::string own_name;
    const NAMED named = depth < LIMIT_FIELD_DEPTH ? read_name(xref, ref, own_name) : NAMED::NO_FIELD;
    const bool matches = name.substr(0, own_name.size()) == own_name;
    if (named == NAMED::NO_FIELD || !matches || !m_visits->add(ref.num))
        return false;
    CPDFObj own;
    xref.get_entity(own, ref, &TREE_KEYS);
    const CPDFDictionary* dict = own.dictionary();
    const CPDFObj* parent = dict ? dict->get_item(CPDFDictionary::sm_tag_parent) : nullptr;
    const uint32_t above = m_path.empty() ? 0 : m_path.back().num;
    // Whether a field that names no parent, or another one, belongs here depends on what the whole form loads before it.
    m_in_doubt = (parent && parent->type == PDF_OBJ_REF ? parent->ref.num : 0) != above ||
                 (named == NAMED::YES && own_name.empty());
    std::string_view rest = name.substr(own_name.size());
    m_path.push_back(ref);
    const bool is_it = rest.empty() && named == NAMED::YES;
    m_passed += is_it;
    if (m_in_doubt || (is_it && m_passed == m_wanted))
        return true;
    if (named == NAMED::YES && !rest.empty())
        rest = rest.front() == '.' ? rest.substr(1) : std::string_view();
    if (!rest.empty() && dict && descend(xref, dict->get_item("Kids"), rest, depth + 1))
        return true;
    m_path.pop_back();
    return false;
}

CPDFField* CPDFBranchFinder::load_branch(CPDFXRefTable& xref)
{
    if (const auto found = m_found.find(m_path.back().num); found != m_found.end())
        return found->second;
    const VXFailureCheck memory;
    std::unique_ptr<CPDFField> top;
    CPDFField* above = nullptr;
    for (const PDF_REF& ref : m_path) {
        std::unique_ptr<CPDFField> field(new CPDFField);
        if (!field)
            return nullptr;
        if (above && above->m_type != FIELD_UNKNOWN) {
            field->m_type = above->m_type;
            field->m_flags = above->m_flags;
        }
        const bool last = &ref == &m_path.back();
        if (!(last ? field->load(above, &xref, ref) : field->load_alone(above, &xref, ref)))
            return nullptr;
        CPDFField* loaded = field.get();
        if (!above)
            top = std::move(field);
        else if (!above->adopt_kid(field.release()))
            return nullptr;
        above = loaded;
    }
    if (memory.failed())
        return nullptr;
    for_each_field(*above, [this](CPDFField& field) { m_found.emplace(field.m_ref.num, &field); });
    m_tops.push_back(top.get());
    static_cast<void>(top.release());
    return above;
}

void CPDFBranchFinder::graft(CPDFAcroForm& form)
{
    if (!m_found.empty())
        graft(form.m_fields, form.m_field_cnt);
    m_found.clear();
}

void CPDFBranchFinder::graft(CPDFField** fields, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        if (!fields[i])
            continue;
        if (const auto found = m_found.find(fields[i]->m_ref.num); found != m_found.end()) {
            CPDFField*& place = place_of(*found->second);
            trade_places(*fields[i], *place);
            std::swap(fields[i], place);
        }
        graft(fields[i]->m_kids, fields[i]->m_kid_cnt);
    }
}

// What holds `field` in its branch.
CPDFField*& CPDFBranchFinder::place_of(const CPDFField& field)
{
    return field.m_parent ? field.m_parent->m_kids[field.m_index] : *std::find(m_tops.begin(), m_tops.end(), &field);
}
