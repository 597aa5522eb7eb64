// Objects, separated by lines of one semicolon: the first is read as a font. One that begins with "stream " is a stream.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "appearance/font/read_font.h"
#include "core/dictionary.h"
#include "core/object_source.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "file/syntax/parser.h"

namespace {

constexpr std::string_view STREAM_MARK = "stream ";

class TextStream : public CPDFStream {
public:
    explicit TextStream(std::string_view data) : m_data(data) {}
    void rewind() override { m_at = 0; }
    bool at_end() override { return m_at == m_data.size(); }
    int read_data(void* buf, int size) override
    {
        const size_t got = m_data.copy(static_cast<char*>(buf), static_cast<size_t>(size), m_at);
        m_at += got;
        return static_cast<int>(got);
    }

private:
    std::string_view m_data;
    size_t m_at = 0;
};

class TextObjects : public CPDFObjectSource {
public:
    explicit TextObjects(std::string_view text) : xref(this)
    {
        constexpr std::string_view MARK = "\n;\n";
        for (size_t begin = 0; begin < text.size() && m_objects.size() < 100;) {
            const size_t end = std::min(text.find(MARK, begin), text.size());
            *xref.reserve_entry(static_cast<uint32_t>(m_objects.size() + 1)) = {
                PDF_XREF_IN_FILE, static_cast<uint32_t>(m_objects.size()), 0};
            m_objects.push_back(text.substr(begin, end - begin));
            begin = end + MARK.size();
        }
    }

    void read_object(CPDFXRefTable&, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                     const CPDFKeySet*) override
    {
        const std::string_view text = m_objects[entry.index];
        const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
        if (!text.starts_with(STREAM_MARK)) {
            CPDFParser(bytes, bytes + text.size(), nullptr).parse(out, nullptr);
            return;
        }
        out.stream = new CPDFStreamRec;
        out.type = PDF_OBJ_STREAM;
        out.stream->in_file = 1;
        out.stream->ref = {num, 0};
        out.stream->handle = entry.index;
    }
    int read_section(CPDFXRefTable&, uint32_t) override { return 0; }
    CPDFStream* open_stream(CPDFXRefTable&, const CPDFStreamRec& rec, const unsigned char*, uint32_t) override
    {
        return new TextStream(m_objects[rec.handle].substr(STREAM_MARK.size()));
    }
    unsigned char* compress(const void*, int, int&) override { return nullptr; }

    CPDFXRefTable xref;

private:
    std::vector<std::string_view> m_objects;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    TextObjects objects({reinterpret_cast<const char*>(data), size});
    CPDFObj reference;
    reference.set_ref({1, 0});
    const std::unique_ptr<CPDFTextFont> font = read_font(objects.xref, reference);
    if (!font)
        return 0;
    std::u32string text;
    for (char32_t c = 0; c < 0x500; ++c)
        text += c;
    std::vector<TEXT_GLYPH> glyphs;
    font->shape(text, 0, text.size(), true, glyphs);
    if (glyphs.size() != text.size())
        std::abort();
    for (const TEXT_GLYPH& glyph : glyphs) {
        std::string bytes;
        font->append_code(glyph.code, bytes);
        if (bytes.empty() || !(glyph.advance >= 0 && glyph.advance <= 10))
            std::abort();
    }
    const TEXT_FONT_BOX box = font->box();
    if (!(box.ascent + box.descent > 0))
        std::abort();
    return 0;
}
