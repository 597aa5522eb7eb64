// The fonts of this machine, found with fontconfig.
#pragma once

#include <fontconfig/fontconfig.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "appearance/font/fallback/font_file.h"
#include "appearance/font/font_style.h"

// One for a program: fonts are looked for when the first character asks for one, and loaded once. Threads may share it.
class CPDFMachineFonts {
public:
    // The libraries that shape text and make subsets, by name.
    explicit CPDFMachineFonts(const char* shaping = HARFBUZZ_SHAPING_LIBRARY,
                              const char* subsets = HARFBUZZ_SUBSET_LIBRARY);
    ~CPDFMachineFonts();
    CPDFMachineFonts(const CPDFMachineFonts&) = delete;
    CPDFMachineFonts& operator=(const CPDFMachineFonts&) = delete;

    // The font nearest to the style that has `c`, or null. Borrowed.
    const CPDFFontFile* find(char32_t c, const FONT_STYLE& style);

    // One sentence why no fonts can be had; empty while nothing is known to be wrong.
    std::string problem();

private:
    // Fonts in order of preference, and what was found in them.
    struct CHOICE {
        FcFontSet* fonts = nullptr;  // owned
        std::unordered_map<char32_t, const CPDFFontFile*> known;
    };

    void load();
    void unload();
    void choose_outlines();
    CHOICE& choice_of(const FONT_STYLE& style);
    const CPDFFontFile* search(const CHOICE& choice, char32_t c);
    const CPDFFontFile* file_of(FcPattern* font);
    std::unique_ptr<CPDFFontFile> open_file(const std::string& path, int index, std::string name);

    std::mutex m_mutex;
    const char* m_shaping;  // borrowed from the program
    const char* m_subsets;  // borrowed from the program
    bool m_loaded = false;
    std::string m_problem;
    HARFBUZZ m_hb;
    FcConfig* m_config = nullptr;     // owned
    FcFontSet* m_outlines = nullptr;  // owned; what a PDF file can hold
    std::unordered_map<unsigned, CHOICE> m_choices;
    std::map<std::pair<std::string, int>, std::unique_ptr<CPDFFontFile>> m_files;  // null for what is of no use
};
