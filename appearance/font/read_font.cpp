#include "appearance/font/read_font.h"

#include <string>

#include "appearance/font/composite_font.h"
#include "appearance/font/font_values.h"
#include "core/dictionary.h"

std::unique_ptr<CPDFTextFont> read_font(CPDFXRefTable& xref, const CPDFObj& font)
{
    CPDFObj scratch;
    const CPDFDictionary* dict = view_obj(&xref, &font, scratch)->dictionary();
    const std::string kind = dict ? name_value(xref, dict->get_item("Subtype")) : "";
    if (kind == "Type0")
        return read_composite_font(xref, *dict);
    if (kind == "Type1" || kind == "MMType1" || kind == "TrueType")
        return read_simple_font(xref, *dict);
    return nullptr;
}
