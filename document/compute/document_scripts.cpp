#include "document/compute/document_scripts.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "engine/action.h"

namespace {

using Visit = std::function<void(const std::string& name, const CPDFObj& action)>;

class NameTree {
public:
    NameTree(CPDFXRefTable& xref, const Visit& visit) : m_xref(xref), m_visit(visit) {}

    // ISO 32000-2, 7.9.6.
    void walk(const CPDFObj& entry, int depth)
    {
        const bool again = entry.type == PDF_OBJ_REF && !m_seen.insert(entry.ref.num).second;
        const CPDFEntryView node_entry(&m_xref, &entry);
        const CPDFDictionary* node = node_entry->dictionary();
        if (!node || again || depth > LIMIT_PAGE_DEPTH)
            return;
        const CPDFEntryView names_entry(&m_xref, node->get_item("Names"));
        const CPDFArray* names = names_entry->array();
        for (int32_t i = 0; names && i + 1 < names->count; i += 2) {
            PDF_String name;
            m_xref.read_obj_string(name, &names->items[i]);
            m_visit(utf8_of(name), names->items[i + 1]);
            name.release();
        }
        const CPDFEntryView kids_entry(&m_xref, node->get_item("Kids"));
        const CPDFArray* kids = kids_entry->array();
        for (int32_t i = 0; kids && i < kids->count; ++i)
            walk(kids->items[i], depth + 1);
    }

private:
    CPDFXRefTable& m_xref;
    const Visit& m_visit;
    std::unordered_set<uint32_t> m_seen;
};

void add_scripts(const std::string& name, const CPDFAction& action, std::vector<PDF_DOCUMENT_SCRIPT>& out)
{
    if (out.size() >= LIMIT_ACTIONS)
        return;
    if (action.m_type == ACTION_JAVASCRIPT && action.m_script.len > 0)
        out.push_back({name, utf8_of(action.m_script)});
    for (const CPDFAction* next : action.m_next)
        add_scripts(name, *next, out);
}

}  // namespace

void visit_document_scripts(CPDFXRefTable& xref, const CPDFDictionary& root, const Visit& visit)
{
    const CPDFEntryView names_entry(&xref, root.get_item("Names"));
    const CPDFDictionary* names = names_entry->dictionary();
    if (const CPDFObj* scripts = names ? names->get_item("JavaScript") : nullptr)
        NameTree(xref, visit).walk(*scripts, 0);
}

std::vector<PDF_DOCUMENT_SCRIPT> read_document_scripts(CPDFXRefTable& xref, const CPDFDictionary& root)
{
    std::vector<PDF_DOCUMENT_SCRIPT> out;
    visit_document_scripts(xref, root, [&](const std::string& name, const CPDFObj& entry) {
        if (out.size() >= LIMIT_ACTIONS)
            return;
        const std::unique_ptr<CPDFAction> action(CPDFAction::parser_act(&xref, &entry));
        if (action)
            add_scripts(name, *action, out);
    });
    const auto by_name = [](const PDF_DOCUMENT_SCRIPT& a, const PDF_DOCUMENT_SCRIPT& b) { return a.name < b.name; };
    std::stable_sort(out.begin(), out.end(), by_name);
    return out;
}
