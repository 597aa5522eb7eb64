// A font file of this machine: the outlines that a text is set with and that a document gets a part of.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "appearance/font/fallback/font_metrics.h"
#include "appearance/font/fallback/harfbuzz.h"
#include "appearance/font/text_font.h"

// One face of a file with TrueType or CFF outlines; of a variable font, its default instance. It does not change, so that
// threads can share it.
class CPDFFontFile {
public:
    // Face `index` of the file at `path`; `name` is its PostScript name. Null where the file has no outlines that a PDF
    // file can hold or its maker does not allow a part of it to be embedded. `hb` is borrowed and outlives the result.
    static std::unique_ptr<CPDFFontFile> open(const HARFBUZZ& hb, const std::string& path, int index, std::string name);
    ~CPDFFontFile();
    CPDFFontFile(const CPDFFontFile&) = delete;
    CPDFFontFile& operator=(const CPDFFontFile&) = delete;

    const HARFBUZZ& harfbuzz() const { return m_hb; }
    hb_face_t* face() const { return m_face; }
    hb_font_t* font() const { return m_font; }
    const std::string& name() const { return m_name; }

    // The glyph that shows `c` by itself; 0 for none.
    uint32_t glyph_of(char32_t c) const;

    // Parts of the font size.
    TEXT_FONT_BOX box() const;
    float width(uint32_t glyph) const { return scaled(m_hb.hb_font_get_glyph_h_advance(m_font, glyph)); }
    float scaled(int32_t units) const { return static_cast<float>(units) / m_units; }

    FONT_METRICS metrics() const;

    bool is_cff() const { return m_is_cff; }
    // Whether glyphs go by the numbers of a character collection, and the number of one of them.
    bool has_cids() const { return !m_cids.empty(); }
    uint16_t cid_of(uint32_t glyph) const { return glyph < m_cids.size() ? m_cids[glyph] : uint16_t{0}; }

private:
    CPDFFontFile(const HARFBUZZ& hb, hb_face_t* face, std::string name);
    bool is_usable(const std::string& path, int index);
    std::vector<uint8_t> table(hb_tag_t tag, size_t bytes) const;

    const HARFBUZZ& m_hb;  // borrowed from the machine's fonts
    hb_face_t* m_face;     // owned
    hb_font_t* m_font;     // owned
    std::string m_name;
    float m_units = 1000;  // parts of the font size
    bool m_is_cff = false;
    std::vector<uint16_t> m_cids;  // by glyph; empty where the font has no such numbers
};
