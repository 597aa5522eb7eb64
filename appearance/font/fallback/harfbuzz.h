// HarfBuzz as a table of functions: its libraries are loaded when the first text needs them, not with the program.
#pragma once

#include <harfbuzz/hb-subset.h>
#include <harfbuzz/hb.h>

#include <memory>
#include <string>

// The functions used, by their names in the library for shaping and in the one for subsets.
#define HARFBUZZ_SHAPING(F)                                                                                            \
    F(hb_blob_create_from_file_or_fail)                                                                                \
    F(hb_blob_destroy)                                                                                                 \
    F(hb_blob_get_data)                                                                                                \
    F(hb_buffer_add_utf32)                                                                                             \
    F(hb_buffer_clear_contents)                                                                                        \
    F(hb_buffer_create)                                                                                                \
    F(hb_buffer_destroy)                                                                                               \
    F(hb_buffer_get_glyph_infos)                                                                                       \
    F(hb_buffer_get_glyph_positions)                                                                                   \
    F(hb_buffer_set_direction)                                                                                         \
    F(hb_buffer_set_flags)                                                                                             \
    F(hb_buffer_set_script)                                                                                            \
    F(hb_face_create)                                                                                                  \
    F(hb_face_destroy)                                                                                                 \
    F(hb_face_get_table_tags)                                                                                          \
    F(hb_face_get_upem)                                                                                                \
    F(hb_face_reference_blob)                                                                                          \
    F(hb_face_reference_table)                                                                                         \
    F(hb_font_create)                                                                                                  \
    F(hb_font_destroy)                                                                                                 \
    F(hb_font_get_extents_for_direction)                                                                               \
    F(hb_font_get_glyph_h_advance)                                                                                     \
    F(hb_font_get_nominal_glyph)                                                                                       \
    F(hb_font_make_immutable)                                                                                          \
    F(hb_map_get)                                                                                                      \
    F(hb_set_add)                                                                                                      \
    F(hb_shape)                                                                                                        \
    F(hb_unicode_decompose)                                                                                            \
    F(hb_unicode_funcs_get_default)                                                                                    \
    F(hb_unicode_script)
#define HARFBUZZ_SUBSETS(F)                                                                                            \
    F(hb_subset_input_create_or_fail)                                                                                  \
    F(hb_subset_input_destroy)                                                                                         \
    F(hb_subset_input_glyph_set)                                                                                       \
    F(hb_subset_input_set)                                                                                             \
    F(hb_subset_input_set_flags)                                                                                       \
    F(hb_subset_input_unicode_set)                                                                                     \
    F(hb_subset_plan_create_or_fail)                                                                                   \
    F(hb_subset_plan_destroy)                                                                                          \
    F(hb_subset_plan_execute_or_fail)                                                                                  \
    F(hb_subset_plan_old_to_new_glyph_mapping)

struct HARFBUZZ {
#define HARFBUZZ_MEMBER(name) decltype(&::name) name = nullptr;  // NOLINT(bugprone-macro-parentheses): a declaration
    HARFBUZZ_SHAPING(HARFBUZZ_MEMBER)
    HARFBUZZ_SUBSETS(HARFBUZZ_MEMBER)
#undef HARFBUZZ_MEMBER
};

constexpr const char* HARFBUZZ_SHAPING_LIBRARY = "libharfbuzz.so.0";
constexpr const char* HARFBUZZ_SUBSET_LIBRARY = "libharfbuzz-subset.so.0";

// Loads the libraries, which then stay for the life of the program, and fills the table. False, with a sentence in
// `problem`, when one of them or a function is missing.
bool load_harfbuzz(HARFBUZZ& out, std::string& problem, const char* shaping = HARFBUZZ_SHAPING_LIBRARY,
                   const char* subsets = HARFBUZZ_SUBSET_LIBRARY);

// Guard for something of HarfBuzz inside a function body: `destroy` releases it.
template <typename T>
std::unique_ptr<T, void (*)(T*)> harfbuzz_guard(T* value, void (*destroy)(T*))
{
    return {value, destroy};
}
