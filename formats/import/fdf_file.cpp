#include "formats/import/fdf_file.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "core/dictionary.h"
#include "core/limits.h"
#include "file/syntax/parser.h"

// file   = header *( object / "trailer" dictionary / anything else )
// object = number number "obj" value ["stream" data "endstream"] "endobj"
// Later objects of a number replace earlier ones.

namespace {

constexpr const char* SCAN_KEYS[] = {"FDF", "Length"};
constexpr CPDFKeySet SCAN_KEY_SET(SCAN_KEYS);

constexpr std::string_view END = "endstream";

bool starts_with(const CPDFLexer& lexer, const char* word)
{
    const size_t size = std::strlen(word);
    return lexer.left() >= size && std::memcmp(lexer.at(), word, size) == 0;
}

}  // namespace

CPDFFdfFile::CPDFFdfFile(const uint8_t* data, size_t size)
    : m_data(data), m_lexer(data, data + size), m_reader(data, size), m_xref(&m_reader)
{
}

bool CPDFFdfFile::fail(const uint8_t* at, const std::string& why)
{
    m_fault = "byte " + std::to_string(at - m_data) + ": " + why;
    return false;
}

std::string CPDFFdfFile::start()
{
    while (is_space(m_lexer.peek()) && !m_lexer.done())
        m_lexer.move_to(m_lexer.at() + 1);
    if (!starts_with(m_lexer, "%FDF-")) {
        fail(m_lexer.at(), "this is no FDF, which begins with %FDF-");
        return m_fault;
    }
    bool fine = true;
    for (m_lexer.skip_space(); fine && !m_lexer.done(); m_lexer.skip_space()) {
        if (is_digit(m_lexer.peek()))
            fine = scan_object();
        else if (m_lexer.accept("trailer"))
            fine = take_trailer();
        else if (is_regular(m_lexer.peek()))
            m_lexer.skip_regular();
        else
            m_lexer.move_to(m_lexer.at() + 1);
    }
    if (fine)
        find_fdf();
    return m_fault;
}

// At a digit: an object, or a number that means nothing, such as the one behind "startxref".
bool CPDFFdfFile::scan_object()
{
    const uint8_t* begin = m_lexer.at();
    uint32_t num = 0;
    uint32_t gen = 0;
    if (!m_lexer.read_u32(num)) {
        m_lexer.skip_regular();
        return true;
    }
    const uint8_t* behind = m_lexer.at();
    m_lexer.skip_space();
    const bool has_gen = m_lexer.read_u32(gen);
    m_lexer.skip_space();
    if (!has_gen || !starts_with(m_lexer, "obj")) {
        m_lexer.move_to(behind);
        return true;
    }
    const size_t most = std::max<size_t>(LIMIT_OBJECT_NUMBER_SMALL_FILE, static_cast<size_t>(m_lexer.end() - m_data));
    PDF_XREF_ENTRY* entry = num <= LIMIT_OBJECT_NUMBER && num <= most ? m_xref.reserve_entry(num) : nullptr;
    if (!entry)
        return fail(begin, "the object number " + std::to_string(num) + " is too large");
    *entry = {PDF_XREF_IN_FILE, static_cast<uint32_t>(begin - m_data), gen};

    CPDFParser parser(m_lexer.at() + 3, m_lexer.end(), m_data);
    CPDFObj value;
    parser.parse(value, &SCAN_KEY_SET);
    parser.lexer().skip_space();
    const CPDFDictionary* dict = value.dictionary();
    if (dict && dict->get_item("FDF"))
        m_candidate = {num, gen};
    if (dict && starts_with(parser.lexer(), "stream") && !pass_stream(parser, value))
        return fail(begin, "the stream object " + std::to_string(num) + " has no end");
    m_lexer.move_to(parser.lexer().at());
    if (!m_lexer.accept("endobj"))
        return fail(m_lexer.at(),
                    "object " + std::to_string(num) + " is damaged, cut off or too large; reading ended here");
    return true;
}

bool CPDFFdfFile::pass_stream(CPDFParser& parser, const CPDFObj& dict)
{
    CPDFLexer& lexer = parser.lexer();
    const uint8_t* data = lexer.at() + std::strlen("stream");
    const CPDFObj* length = dict.dict->get_item(CPDFDictionary::sm_tag_length);
    const auto left = static_cast<size_t>(lexer.end() - data);
    const void* end = nullptr;
    // "Length" counts from behind the end of the line, which may be two characters.
    if (length && length->type == PDF_OBJ_INT && length->ival > 0 && static_cast<size_t>(length->ival) < left) {
        lexer.move_to(data + length->ival);
        constexpr size_t LINE_ENDS = 6;
        end = memmem(lexer.at(), std::min(lexer.left(), LINE_ENDS + END.size()), END.data(), END.size());
    }
    if (!end)
        end = memmem(data, left, END.data(), END.size());
    if (!end)
        return false;
    lexer.move_to(static_cast<const uint8_t*>(end) + END.size());
    lexer.skip_space();
    return true;
}

bool CPDFFdfFile::take_trailer()
{
    CPDFParser parser(m_lexer.at(), m_lexer.end(), m_data);
    CPDFObj value;
    const bool found = parser.parse(value, nullptr);
    const CPDFDictionary* trailer = found ? value.dictionary() : nullptr;
    if (!trailer)
        return fail(m_lexer.at(), "the trailer has no dictionary");
    if (trailer->get_item("Encrypt"))
        return fail(m_lexer.at(), "the file is encrypted, which is not supported");
    const CPDFObj* root = trailer->get_item("Root");
    if (root && root->type == PDF_OBJ_REF)
        m_root = root->ref;
    m_lexer.move_to(parser.lexer().at());
    return true;
}

bool CPDFFdfFile::find_fdf()
{
    const PDF_REF& ref = m_root.num ? m_root : m_candidate;
    if (!ref.num)
        return fail(m_lexer.at(), "the file ends without a trailer that names its root");
    CPDFObj root;
    m_xref.get_entity(root, ref);
    const CPDFDictionary* dict = root.dictionary();
    CPDFObj scratch;
    if (dict)
        m_fdf.copy_from(view_obj(&m_xref, dict->get_item("FDF"), scratch));
    if (m_fdf.type == PDF_OBJ_DICT)
        return true;
    const PDF_XREF_ENTRY* entry = m_xref.entry_of(ref.num);
    const bool is_there = entry && entry->type == PDF_XREF_IN_FILE;
    return fail(is_there ? m_data + entry->index : m_lexer.at(),
                "object " + std::to_string(ref.num) + " should hold the FDF dictionary, and " +
                    (is_there ? "has none, is damaged or too large" : "is not there"));
}
