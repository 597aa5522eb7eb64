#include "document/notes.h"

#include "document/document.h"
#include "document/lookup/field_text.h"

std::string adopted_note(const CPDFDocument& document)
{
    const size_t count = document.adopted_fields();
    if (count == 1)
        return "1 field stands on a page only, not in the form's list: it is taken as its field";
    if (count == 0)
        return {};
    return std::to_string(count) + " fields stand on pages only, not in the form's list: they are taken as its fields";
}

std::string xfa_note(CPDFDocument& document, bool rewritten)
{
    if (document.has_xfa() == rewritten || document.has_only_xfa())
        return {};
    return rewritten ? "the form has no XFA data" : "the form also has XFA data, which stay as they are";
}

std::string same_names_note(CPDFDocument& document, std::string_view name)
{
    const size_t same = document.fields_named(name);
    if (same <= 1)
        return {};
    return std::to_string(same) + " fields have the name " + in_quotes(name) +
           ": the first one is taken, and numbers in the list tell them apart";
}

std::string skipped_scripts_note(size_t count)
{
    if (count == 0)
        return {};
    return count == 1 ? "1 script was not run" : std::to_string(count) + " scripts were not run";
}
