#include "document/edit/inheritance.h"

#include <string>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/field_tree.h"
#include "engine/annot_widget.h"
#include "forms/field.h"

namespace {

// Entries that fields inherit (ISO 32000-2, 12.7.4.1 and 12.7.4.3), and the scripts, which they take in this system.
constexpr const char* INHERITED[] = {"FT", "Ff", "V", "DV", "DA", "Q", "MaxLen", "Opt", "AA"};
constexpr CPDFKeySet INHERITED_KEYS(INHERITED);

// Makes `out` what stands for no entry `key` where the fields above have one. False where nothing does.
bool neutral_entry(const CPDFField& field, const std::string& key, CPDFObj& out)
{
    const bool value = (key == "V" || key == "DV") && field.m_type != FIELD_SIGNATURE;
    if (key == "Ff" || key == "Q")
        out.set_int(0);
    else if (value && field.m_type == FIELD_BUTTON)
        out.set_name(PDF_STATE_OFF);
    else if (value)
        out.type = PDF_OBJ_STRING;
    else if (key == "AA")
        out.set_dict();
    else
        return false;
    return true;
}

}  // namespace

void collect_inherited(const CPDFField& field, const CPDFField* parent, INHERITANCE& out)
{
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &INHERITED_KEYS);
    for (const char* key : INHERITED) {
        if (!own.dictionary() || own.dict->get_item(key))
            continue;
        CPDFObj value;
        CPDFObj other;
        if (inherited_entry(field.m_parent, key, value) ||
            (inherited_entry(parent, key, other) && neutral_entry(field, key, value))) {
            out.values.emplace_back().take(value);
            out.changes.push_back({key, &out.values.back()});
        }
    }
}
