#include "appearance/font/fallback/font_writer.h"

#include <cmath>
#include <string>
#include <utility>

#include "appearance/font/fallback/fallback_font.h"
#include "appearance/font/fallback/font_subset.h"
#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

// "Flags" of a font descriptor. The codes are in no standard encoding.
constexpr int FLAG_SYMBOLIC = 1 << 2;
constexpr int FLAG_ITALIC = 1 << 6;
constexpr int FLAG_FORCE_BOLD = 1 << 18;

// Nobody measured them; viewers only imitate fonts that are not embedded by them.
constexpr int STEM_WIDTH = 80;
constexpr int STEM_WIDTH_BOLD = 140;
constexpr int ITALIC_ANGLE = -12;

// What becomes the new version of an object; of a stream, with its compressed data.
struct NEW_OBJECT {
    explicit NEW_OBJECT(const PDF_REF& object) : ref(object) {}
    ~NEW_OBJECT() { VXFree(data); }
    NEW_OBJECT(const NEW_OBJECT&) = delete;
    NEW_OBJECT& operator=(const NEW_OBJECT&) = delete;

    PDF_REF ref;
    CPDFObj value;
    unsigned char* data = nullptr;  // owned
    int data_len = 0;
};

bool set_stream(NEW_OBJECT& object, CPDFXRefTable& xref, const std::string& bytes)
{
    object.data = xref.compress_data(bytes.data(), static_cast<int>(bytes.size()), object.data_len);
    if (!object.data)
        return false;
    CPDFStreamRec* made = object.value.set_stream();
    if (!made)
        return false;
    CPDFStreamRec& record = *made;
    record.dict.set_item_name(CPDFDictionary::sm_tag_filter, "FlateDecode");
    record.dict.set_item_int(CPDFDictionary::sm_tag_length, object.data_len);
    record.data_len = static_cast<uint32_t>(object.data_len);
    record.ref = object.ref;
    record.in_memory = 1;
    return true;
}

// A subset's name begins with six letters that no other subset in the file has.
std::string base_font(const CPDFFontFile& file, uint32_t num)
{
    std::string name;
    for (int i = 0; i < 6; ++i, num /= 26)
        name.insert(name.begin(), static_cast<char>('A' + num % 26));
    name += '+';
    for (const char c : file.name().substr(0, 100)) {
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-')
            name += c;
    }
    return name;
}

void set_font(CPDFDictionary& dict, const FONT_OBJECTS& objects, const std::string& name)
{
    dict.set_item_name("Type", "Font");
    dict.set_item_name("Subtype", "Type0");
    dict.set_item_name("BaseFont", name.c_str());
    dict.set_item_name("Encoding", "Identity-H");
    CPDFArray descendants;
    descendants.append_ref(objects.descendant);
    dict.set_item_arr("DescendantFonts", &descendants);
    dict.set_item_ref("ToUnicode", objects.to_unicode);
}

// Runs of codes, each with the widths: c [w w ...].
void set_widths(CPDFDictionary& dict, const CPDFFallbackFont& font)
{
    CPDFArray widths;
    CPDFArray run;
    uint32_t next = 0;
    const auto finish_run = [&] {
        if (run.count > 0)
            widths.append_arr(&run);
        run.clear();
    };
    for (const auto& [code, entry] : font.codes().all()) {
        if (!entry.used)
            continue;
        if (code != next || run.count == 0) {
            finish_run();
            widths.append_int(static_cast<int>(code));
        }
        run.append_int(entry.width);
        next = code + 1;
    }
    finish_run();
    dict.set_item_arr("W", &widths);
    dict.set_item_int("DW", static_cast<int>(std::lround(font.file().width(0) * 1000)));
}

void set_descendant(CPDFDictionary& dict, const CPDFFallbackFont& font, const FONT_OBJECTS& objects,
                    const std::string& name)
{
    dict.set_item_name("Type", "Font");
    dict.set_item_name("Subtype", font.file().is_cff() ? "CIDFontType0" : "CIDFontType2");
    dict.set_item_name("BaseFont", name.c_str());
    CPDFDictionary collection;
    collection.set_item_str("Registry", "Adobe", 5);
    collection.set_item_str("Ordering", "Identity", 8);
    collection.set_item_int("Supplement", 0);
    dict.set_item_dict("CIDSystemInfo", &collection);
    dict.set_item_ref("FontDescriptor", objects.descriptor);
    set_widths(dict, font);
    if (!font.file().is_cff())
        dict.set_item_ref("CIDToGIDMap", objects.cid_glyphs);
}

void set_descriptor(CPDFDictionary& dict, const CPDFFontFile& file, const FONT_OBJECTS& objects,
                    const std::string& name)
{
    const FONT_METRICS metrics = file.metrics();
    dict.set_item_name("Type", "FontDescriptor");
    dict.set_item_name("FontName", name.c_str());
    dict.set_item_int("Flags",
                      FLAG_SYMBOLIC | (metrics.italic ? FLAG_ITALIC : 0) | (metrics.bold ? FLAG_FORCE_BOLD : 0));
    CPDFArray box;
    for (const int side : metrics.bbox)
        box.append_int(side);
    dict.set_item_arr("FontBBox", &box);
    dict.set_item_int("ItalicAngle", metrics.italic ? ITALIC_ANGLE : 0);
    dict.set_item_int("Ascent", metrics.ascent);
    dict.set_item_int("Descent", metrics.descent);
    dict.set_item_int("CapHeight", metrics.ascent);
    dict.set_item_int("StemV", metrics.bold ? STEM_WIDTH_BOLD : STEM_WIDTH);
    dict.set_item_ref(file.is_cff() ? "FontFile3" : "FontFile2", objects.program);
}

// Hands out the numbers that are still missing, and makes room for objects and data, so that storing them can't fail.
bool reserve(CPDFXRefTable& xref, FONT_OBJECTS& objects, const CPDFFontFile& file)
{
    if (objects.descendant.num)
        return true;
    FONT_OBJECTS all = objects;
    for (PDF_REF* ref : {&all.descendant, &all.descriptor, &all.program, &all.to_unicode})
        ref->num = xref.new_obj_num();
    if (!file.is_cff())
        all.cid_glyphs.num = xref.new_obj_num();
    for (const PDF_REF& ref : {all.program, all.to_unicode, all.cid_glyphs}) {
        if (ref.num && !xref.set_mem_stream(ref, nullptr, 0))
            return false;
    }
    for (const PDF_REF& ref : {all.font, all.descendant, all.descriptor, all.program, all.to_unicode, all.cid_glyphs}) {
        if (ref.num && !xref.get_xref2(static_cast<int>(ref.num), 0))
            return false;
    }
    objects = all;
    return true;
}

bool build_streams(CPDFXRefTable& xref, const CPDFFallbackFont& font, NEW_OBJECT& program, NEW_OBJECT& to_unicode,
                   NEW_OBJECT& cid_glyphs)
{
    FONT_SUBSET subset;
    if (!make_subset(subset, font.file(), font.codes()) || subset.program.size() > INT32_MAX ||
        !set_stream(program, xref, subset.program) || !set_stream(to_unicode, xref, write_to_unicode(font.codes())))
        return false;
    if (font.file().is_cff()) {
        program.value.stream->dict.set_item_name(CPDFDictionary::sm_tag_subtype, "CIDFontType0C");
        return true;
    }
    program.value.stream->dict.set_item_int("Length1", static_cast<int>(subset.program.size()));
    return set_stream(cid_glyphs, xref, subset.cid_glyphs);
}

void store(CPDFXRefTable& xref, NEW_OBJECT& object)
{
    if (!object.ref.num)
        return;
    if (CPDFStreamRec* record = object.value.type == PDF_OBJ_STREAM ? object.value.stream : nullptr)
        record->handle = xref.set_mem_stream(object.ref, std::exchange(object.data, nullptr), object.data_len);
    xref.take_changed(object.ref, object.value);
}

}  // namespace

bool write_font(CPDFXRefTable& xref, const CPDFFallbackFont& font, FONT_OBJECTS& objects)
{
    const VXFailureCheck memory;
    if (!reserve(xref, objects, font.file()))
        return false;
    NEW_OBJECT dict{objects.font}, descendant{objects.descendant}, descriptor{objects.descriptor};
    NEW_OBJECT program{objects.program}, to_unicode{objects.to_unicode}, cid_glyphs{objects.cid_glyphs};
    if (!build_streams(xref, font, program, to_unicode, cid_glyphs))
        return false;
    const std::string name = base_font(font.file(), objects.font.num);
    if (!dict.value.set_dict() || !descendant.value.set_dict() || !descriptor.value.set_dict())
        return false;
    set_font(*dict.value.dict, objects, name);
    set_descendant(*descendant.value.dict, font, objects, name);
    set_descriptor(*descriptor.value.dict, font.file(), objects, name);
    if (memory.failed())
        return false;
    for (NEW_OBJECT* object : {&dict, &descendant, &descriptor, &program, &to_unicode, &cid_glyphs})
        store(xref, *object);
    return true;
}
