// The front class, continued: the order in which fields are calculated.
#include <unordered_set>

#include "core/array.h"
#include "core/xref_table.h"
#include "document/compute/calculation_graph.h"
#include "document/design/script_entries.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/edit/edit_array.h"
#include "document/lookup/field_text.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

// What the field is calculated from, as far as its script is a well-known call.
std::vector<std::string> sources_of(CPDFFieldScripts& scripts, const CPDFField& field)
{
    std::vector<std::string> names;
    const PDF_FIELD_SCRIPTS* own = scripts.of(field);
    for (const PDF_FIELD_SCRIPT* script : own ? own->on[EVENT_CALCULATE] : std::vector<const PDF_FIELD_SCRIPT*>()) {
        if (script->call)
            names = calculated_from(*script->call);
    }
    return names;
}

}  // namespace

// Refuses fields that would be calculated from one another.
void CPDFDocument::State::check_circles(EDIT_TARGET& target, std::span<CPDFField* const> fields,
                                        const PDF_CALCULATION& calculation, CPDFRefusals& refusals)
{
    CPDFFieldScripts scripts(reader->budget());
    CPDFCalculationGraph graph;
    for (CPDFField* field : fields)
        graph.add(*field, calculation_names(target, *field, calculation));
    for (CPDFField* field : fields_to_calculate())
        graph.add(*field, sources_of(scripts, *field));
    for (const CPDFField* field : fields) {
        const CPDFField* other = graph.circle_of(*field);
        const std::string shown = "field " + in_quotes(full_name(*field)) + " can't be calculated from ";
        if (other == field)
            refusals.add(shown + "itself");
        else if (other)
            refusals.add(shown + "field " + in_quotes(full_name(*other)) + ", which is calculated from it");
    }
}

// Puts each field of "CO" behind those that it is calculated from; what is no field keeps its place.
CPDFStatus CPDFDocument::State::order_calculations()
{
    CPDFFieldScripts scripts(reader->budget());
    CPDFCalculationGraph graph;
    calculation_order.reset();
    std::unordered_set<uint32_t> known;
    for (CPDFField* field : fields_to_calculate()) {
        graph.add(*field, sources_of(scripts, *field));
        known.insert(field->m_ref.num);
    }
    const std::vector<CPDFField*> order = graph.sorted();
    const bool is_sorted = order == *calculation_order;
    calculation_order.reset();
    if (is_sorted)
        return {};
    const PDF_CHANGE_RESULT result = edit_array(*xref, form.m_ref, "CO", [&](CPDFArray& list) {
        size_t next = 0;
        for (int32_t i = 0; i < list.count && next < order.size(); ++i) {
            CPDFObj& item = list.items[i];
            if (item.type == PDF_OBJ_REF && known.erase(item.ref.num))
                item.set_ref(order[next++]->m_ref);
        }
        return true;
    });
    return edit_status(result, "the form's order of calculation can't be changed: it is damaged");
}
