#include "appearance/font/fallback/font_subset.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "core/library_calls.h"

namespace {

// What a PDF reader draws outlines with.
constexpr hb_tag_t KEPT_TABLES[] = {
    HB_TAG('C', 'F', 'F', ' '), HB_TAG('g', 'l', 'y', 'f'), HB_TAG('h', 'e', 'a', 'd'), HB_TAG('h', 'h', 'e', 'a'),
    HB_TAG('h', 'm', 't', 'x'), HB_TAG('l', 'o', 'c', 'a'), HB_TAG('m', 'a', 'x', 'p'),
};

std::vector<hb_tag_t> tables_of(const CPDFFontFile& file)
{
    const HARFBUZZ& hb = file.harfbuzz();
    unsigned count = 0;
    std::vector<hb_tag_t> tags(hb.hb_face_get_table_tags(file.face(), 0, &count, nullptr));
    count = static_cast<unsigned>(tags.size());
    hb.hb_face_get_table_tags(file.face(), 0, &count, tags.data());
    return tags;
}

// Drops every table but these that the font has and `also`.
void drop_tables(hb_subset_input_t* input, const CPDFFontFile& file, hb_tag_t also)
{
    const HARFBUZZ& hb = file.harfbuzz();
    for (const hb_tag_t tag : tables_of(file)) {
        if (tag != also && std::find(std::begin(KEPT_TABLES), std::end(KEPT_TABLES), tag) == std::end(KEPT_TABLES))
            hb.hb_set_add(hb.hb_subset_input_set(input, HB_SUBSET_SETS_DROP_TABLE_TAG), tag);
    }
}

void choose_parts(hb_subset_input_t* input, const CPDFFontFile& file, const CPDFGlyphCodes& codes)
{
    const HARFBUZZ& hb = file.harfbuzz();
    for (const auto& [code, entry] : codes.all()) {
        if (entry.used)
            hb.hb_set_add(hb.hb_subset_input_glyph_set(input), entry.glyph);
    }
    drop_tables(input, file, 0);
    // Codes are glyph numbers in a CFF font without numbers of a character collection.
    const unsigned numbers = file.is_cff() && !file.has_cids() ? HB_SUBSET_FLAGS_RETAIN_GIDS : HB_SUBSET_FLAGS_DEFAULT;
    hb.hb_subset_input_set_flags(input, numbers | HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
}

std::string bytes_of(const HARFBUZZ& hb, hb_blob_t* blob)
{
    const auto owned = harfbuzz_guard(blob, hb.hb_blob_destroy);
    unsigned size = 0;
    const char* data = hb.hb_blob_get_data(blob, &size);
    return {data, size};
}

// What a document embeds of the part that was made: the TrueType font, or the bare CFF one.
std::string program_of(const CPDFFontFile& file, hb_face_t* part)
{
    const HARFBUZZ& hb = file.harfbuzz();
    return bytes_of(hb, file.is_cff() ? hb.hb_face_reference_table(part, HB_TAG('C', 'F', 'F', ' '))
                                      : hb.hb_face_reference_blob(part));
}

std::string glyphs_by_code(const HARFBUZZ& hb, const hb_map_t* new_glyphs, const CPDFGlyphCodes& codes)
{
    std::string out;
    for (const auto& [code, entry] : codes.all()) {
        if (!entry.used)
            continue;
        out.resize((size_t{code} + 1) * 2);
        const hb_codepoint_t glyph = hb.hb_map_get(new_glyphs, entry.glyph);
        if (glyph != HB_MAP_VALUE_INVALID) {
            out[size_t{code} * 2] = static_cast<char>(glyph >> 8);
            out[size_t{code} * 2 + 1] = static_cast<char>(glyph);
        }
    }
    return out.empty() ? std::string(2, '\0') : out;
}

}  // namespace

bool make_subset(FONT_SUBSET& out, const CPDFFontFile& file, const CPDFGlyphCodes& codes)
{
    const VXLibraryCalls memory;
    const HARFBUZZ& hb = file.harfbuzz();
    const auto input = harfbuzz_guard(hb.hb_subset_input_create_or_fail(), hb.hb_subset_input_destroy);
    if (!input)
        return false;
    choose_parts(input.get(), file, codes);
    const auto plan =
        harfbuzz_guard(hb.hb_subset_plan_create_or_fail(file.face(), input.get()), hb.hb_subset_plan_destroy);
    if (!plan)
        return false;
    const auto face = harfbuzz_guard(hb.hb_subset_plan_execute_or_fail(plan.get()), hb.hb_face_destroy);
    if (!face)
        return false;
    out.program = program_of(file, face.get());
    if (!file.is_cff())
        out.cid_glyphs = glyphs_by_code(hb, hb.hb_subset_plan_old_to_new_glyph_mapping(plan.get()), codes);
    return !out.program.empty();
}

bool make_character_subset(std::string& program, const CPDFFontFile& file, std::u32string_view characters)
{
    const VXLibraryCalls memory;
    const HARFBUZZ& hb = file.harfbuzz();
    const auto input = harfbuzz_guard(hb.hb_subset_input_create_or_fail(), hb.hb_subset_input_destroy);
    if (!input)
        return false;
    for (const char32_t c : characters)
        hb.hb_set_add(hb.hb_subset_input_unicode_set(input.get()), c);
    drop_tables(input.get(), file, HB_TAG('c', 'm', 'a', 'p'));
    const unsigned names = file.is_cff() ? HB_SUBSET_FLAGS_GLYPH_NAMES : HB_SUBSET_FLAGS_DEFAULT;
    hb.hb_subset_input_set_flags(input.get(), names | HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
    const auto plan =
        harfbuzz_guard(hb.hb_subset_plan_create_or_fail(file.face(), input.get()), hb.hb_subset_plan_destroy);
    if (!plan)
        return false;
    const auto face = harfbuzz_guard(hb.hb_subset_plan_execute_or_fail(plan.get()), hb.hb_face_destroy);
    if (!face)
        return false;
    program = program_of(file, face.get());
    return !program.empty();
}
