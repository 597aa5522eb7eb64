#include "appearance/font/font_values.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/stream.h"

namespace {

constexpr float THOUSANDTH = 0.001F;
constexpr float WIDEST = 10;

// Whether lines can be placed by the box: fonts are known that say 0, or lengths of another unit.
bool is_sane(const TEXT_FONT_BOX& box)
{
    const float height = box.ascent + box.descent;
    return box.ascent > 0 && box.descent >= 0 && height > 0.5F && height < 3;
}

// Files are known with a positive "Descent".
TEXT_FONT_BOX box_of(float top, float bottom)
{
    return {top * THOUSANDTH, std::fabs(bottom) * THOUSANDTH};
}

TEXT_FONT_BOX read_box(CPDFXRefTable& xref, const CPDFDictionary& descriptor)
{
    const TEXT_FONT_BOX letters =
        box_of(number_value(xref, descriptor.get_item("Ascent")), number_value(xref, descriptor.get_item("Descent")));
    if (is_sane(letters))
        return letters;
    CPDFObj scratch;
    const CPDFArray* bounds = view_obj(&xref, descriptor.get_item("FontBBox"), scratch)->array();
    if (!bounds)
        return {};
    const TEXT_FONT_BOX all = box_of(number_value(xref, bounds->at(3)), number_value(xref, bounds->at(1)));
    return is_sane(all) ? all : TEXT_FONT_BOX{};
}

PDF_REF read_file(const CPDFDictionary& descriptor)
{
    for (const char* key : {"FontFile", "FontFile2", "FontFile3"}) {
        const CPDFObj* file = descriptor.get_item(key);
        if (file && file->type == PDF_OBJ_REF)
            return file->ref;
    }
    return {0, 0};
}

}  // namespace

float number_value(CPDFXRefTable& xref, const CPDFObj* entry)
{
    CPDFObj scratch;
    const CPDFObj* number = view_obj(&xref, entry, scratch);
    if (number->type == PDF_OBJ_INT)
        return static_cast<float>(number->ival);
    return number->type == PDF_OBJ_REAL ? static_cast<float>(static_cast<double>(number->fval) / VXFIX_ONE) : 0;
}

std::string name_value(CPDFXRefTable& xref, const CPDFObj* entry)
{
    CPDFObj scratch;
    const char* name = view_obj(&xref, entry, scratch)->name_text();
    return name ? name : "";
}

std::string stream_value(CPDFXRefTable& xref, const CPDFObj* entry, int most)
{
    CPDFObj scratch;
    const CPDFObj* value = view_obj(&xref, entry, scratch);
    std::unique_ptr<CPDFStream> reader(value->type == PDF_OBJ_STREAM ? xref.make_stream(value->stream) : nullptr);
    if (!reader)
        return "";
    int size = std::min(reader->m_data_len, most);
    const VXBlock<unsigned char> bytes(reader->buffer_load(most, size));
    reader.reset();  // a font may be large: not three times in memory
    return bytes ? std::string(bytes.get(), bytes.get() + size) : "";
}

float width_of_thousandths(float thousandths)
{
    return std::clamp(thousandths * THOUSANDTH, 0.0F, WIDEST);
}

FONT_DESCRIPTOR read_descriptor(CPDFXRefTable& xref, const CPDFDictionary& font)
{
    CPDFObj scratch;
    const CPDFDictionary* dict = view_obj(&xref, font.get_item("FontDescriptor"), scratch)->any_dictionary();
    FONT_DESCRIPTOR descriptor;
    if (!dict)
        return descriptor;
    descriptor.present = true;
    descriptor.flags = resolve_integer(&xref, dict->get_item("Flags"));
    descriptor.missing_width = width_of_thousandths(number_value(xref, dict->get_item("MissingWidth")));
    descriptor.box = read_box(xref, *dict);
    descriptor.file = read_file(*dict);
    return descriptor;
}
