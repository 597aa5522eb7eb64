#include "appearance/appearance_stream.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "appearance/form_fonts.h"
#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

// Below, the entry that names the filter takes what compressing saves.
constexpr size_t COMPRESS_FROM = 200;

void set_number(CPDFObj& out, double number)
{
    const double thousandths = std::round(number * 1000);
    if (std::fmod(thousandths, 1000) == 0)
        out.set_int(static_cast<int32_t>(thousandths / 1000));
    else
        out.set_real(static_cast<VXFIX>(thousandths / 1000 * static_cast<double>(VXFIX_ONE)));
}

template <size_t N>
void set_numbers(CPDFDictionary& dict, const char* key, const double (&numbers)[N])
{
    CPDFObj* slot = dict.value_slot(key);
    CPDFArray* array = slot ? slot->set_array() : nullptr;
    for (const double number : numbers) {
        if (CPDFObj* item = array ? array->append() : nullptr)
            set_number(*item, number);
    }
}

// An empty dictionary as the entry `key`; null when memory runs out.
CPDFDictionary* add_dictionary(CPDFDictionary& dict, const char* key)
{
    CPDFObj* slot = dict.value_slot(key);
    return slot ? slot->set_dict() : nullptr;
}

bool is_identity(const double (&m)[6])
{
    constexpr double IDENTITY[] = {1, 0, 0, 1, 0, 0};
    return std::equal(std::begin(m), std::end(m), std::begin(IDENTITY));
}

void describe(CPDFDictionary& dict, CPDFFormFonts& fonts, const WIDGET_PICTURE& picture)
{
    dict.set_item_name("Type", "XObject");
    dict.set_item_name("Subtype", "Form");
    set_numbers(dict, "BBox", {0, 0, picture.width, picture.height});
    if (!is_identity(picture.matrix))
        set_numbers(dict, "Matrix", picture.matrix);
    CPDFDictionary* resources = add_dictionary(dict, "Resources");
    if (!resources || picture.fonts.empty())
        return;
    CPDFDictionary* named = add_dictionary(*resources, "Font");
    for (const PICTURE_FONT& used : picture.fonts) {
        const PDF_REF font = fonts.object_of(*used.font);
        if (named && font.num)
            named->set_item_ref(used.name.c_str(), font);
    }
}

// The bytes that are stored; `is_packed` tells whether compressed.
VXBlock<unsigned char> pack(CPDFXRefTable& xref, const std::string& content, int& len, bool& is_packed)
{
    is_packed = false;
    if (content.size() >= COMPRESS_FROM) {
        VXBlock<unsigned char> packed(xref.compress_data(content.data(), static_cast<int>(content.size()), len));
        is_packed = packed && static_cast<size_t>(len) + sizeof "/Filter/FlateDecode" < content.size();
        if (is_packed)
            return packed;
    }
    VXBlock<unsigned char> plain(vx_alloc_array<unsigned char>(content.size()));
    if (plain)
        std::memcpy(plain.get(), content.data(), content.size());
    len = static_cast<int>(content.size());
    return plain;
}

}  // namespace

PDF_REF store_picture(CPDFXRefTable& xref, CPDFFormFonts& fonts, const WIDGET_PICTURE& picture)
{
    const VXFailureCheck memory;
    const PDF_REF ref = {xref.new_obj_num(), 0};
    int len = 0;
    bool is_packed = false;
    VXBlock<unsigned char> bytes = pack(xref, picture.content, len, is_packed);
    CPDFDictionary dict;
    describe(dict, fonts, picture);
    if (is_packed)
        dict.set_item_name(CPDFDictionary::sm_tag_filter, "FlateDecode");
    if (memory.failed() || xref.take_stream(ref, dict, bytes.release(), len) != PDF_CHANGE_RESULT::STORED)
        return {0, 0};
    return ref;
}
