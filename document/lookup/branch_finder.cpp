#include "document/lookup/branch_finder.h"

#include <string>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/visit_set.h"

namespace {

constexpr const char* NAME_KEYS[] = {"T"};
constexpr CPDFKeySet NAME_KEY_SET(NAME_KEYS);
constexpr const char* TREE_KEYS[] = {"Kids", "Parent"};
constexpr CPDFKeySet TREE_KEY_SET(TREE_KEYS);
constexpr const char* FIELDS_KEYS[] = {"Fields"};
constexpr CPDFKeySet FIELDS_KEY_SET(FIELDS_KEYS);

enum class NAMED { NO_FIELD, NO, YES };

// The partial name of a field dictionary, in UTF-8.
NAMED read_name(CPDFXRefTable& xref, const PDF_REF& ref, std::string& name)
{
    CPDFObj own;
    xref.get_entity(own, ref, &NAME_KEY_SET);
    const CPDFDictionary* dict = own.dictionary();
    if (!dict)
        return NAMED::NO_FIELD;
    CPDFObj scratch;
    const CPDFObj* text = view_obj(&xref, dict->get_item("T"), scratch);
    if (text->type != PDF_OBJ_STRING || text->str.len <= 0)
        return NAMED::NO;
    name = utf8_of(text->str);
    return NAMED::YES;
}

}  // namespace

CPDFBranchFinder::CPDFBranchFinder() : m_visits(std::make_unique<CPDFVisitSet>()) {}

CPDFBranchFinder::~CPDFBranchFinder() = default;

CPDFField* CPDFBranchFinder::find(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name)
{
    CPDFObj fetched;
    const CPDFDictionary* dict = form ? form->dictionary() : nullptr;
    if (form && form->type == PDF_OBJ_REF) {
        xref.get_entity(fetched, form->ref, &FIELDS_KEY_SET);
        dict = fetched.dictionary();
    }
    m_path.clear();
    m_in_doubt = false;
    *m_visits = CPDFVisitSet();
    if (!dict || !descend(xref, dict->get_item("Fields"), name, 0) || m_in_doubt)
        return nullptr;
    return load_branch(xref);
}

CPDFField* CPDFBranchFinder::known(const PDF_REF& ref) const
{
    const auto found = m_found.find(ref.num);
    return found != m_found.end() ? found->second : nullptr;
}

bool CPDFBranchFinder::descend(CPDFXRefTable& xref, const CPDFObj* list, std::string_view name, int depth)
{
    CPDFObj scratch;
    const CPDFArray* fields = view_obj(&xref, list, scratch)->array();
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
    xref.get_entity(own, ref, &TREE_KEY_SET);
    const CPDFDictionary* dict = own.dictionary();
    const CPDFObj* parent = dict ? dict->get_item(CPDFDictionary::sm_tag_parent) : nullptr;
    const uint32_t above = m_path.empty() ? 0 : m_path.back().num;
    // Whether a field that names no parent, or another one, belongs here depends on what the whole form loads before it.
    m_in_doubt = (parent && parent->type == PDF_OBJ_REF ? parent->ref.num : 0) != above ||
                 (named == NAMED::YES && own_name.empty());
    std::string_view rest = name.substr(own_name.size());
    m_path.push_back(ref);
    if (m_in_doubt || (rest.empty() && named == NAMED::YES))
        return true;
    if (named == NAMED::YES && rest.front() == '.')
        rest.remove_prefix(1);
    else if (named == NAMED::YES)
        rest = std::string_view();
    if (!rest.empty() && dict && descend(xref, dict->get_item("Kids"), rest, depth + 1))
        return true;
    m_path.pop_back();
    return false;
}

CPDFField* CPDFBranchFinder::load_branch(CPDFXRefTable& xref)
{
    if (CPDFField* found = known(m_path.back()))
        return found;
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
    m_found.emplace(above->m_ref.num, above);
    m_tops.push_back(std::move(top));
    return above;
}
