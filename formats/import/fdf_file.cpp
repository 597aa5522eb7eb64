#include "formats/import/fdf_file.h"

#include <algorithm>
#include <cstring>

#include "core/dictionary.h"
#include "core/key_set.h"
#include "core/limits.h"
#include "file/syntax/parser.h"

// file   = header *( object / "trailer" dictionary / anything else )
// object = number number "obj" value ["stream" data "endstream"] "endobj"
// Later objects of a number replace earlier ones.

namespace {

constexpr CPDFKeySet SCAN_KEYS{"FDF"};
constexpr const char* END_OF_STREAM = "endstream";

}  // namespace

CPDFFdfFile::CPDFFdfFile(const uint8_t* data, size_t size)
    : m_data(data), m_lexer(data, data + size), m_reader(data, size), m_xref(&m_reader)
{
}

bool CPDFFdfFile::fail(const uint8_t* at, const std::string& why)
{
    m_status = CPDFStatus::failed(PDF_CODE::BAD_DATA, "byte " + std::to_string(at - m_data) + ": " + why);
    return false;
}

CPDFStatus CPDFFdfFile::start()
{
    while (is_space(m_lexer.peek()) && !m_lexer.done())
        m_lexer.move_to(m_lexer.at() + 1);
    bool fine = m_lexer.begins("%FDF-") || fail(m_lexer.at(), "this is no FDF, which begins with %FDF-");
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
    return m_status;
}

// At a digit: an object, or a number that means nothing, such as the one behind "startxref".
bool CPDFFdfFile::scan_object()
{
    const uint8_t* begin = m_lexer.at();
    uint32_t num = 0;
    uint32_t gen = 0;
    if (!m_lexer.accept_object(num, gen)) {
        m_lexer.move_to(begin);
        m_lexer.skip_regular();
        return true;
    }
    const size_t most = std::max<size_t>(LIMIT_OBJECT_NUMBER_SMALL_FILE, static_cast<size_t>(m_lexer.end() - m_data));
    PDF_XREF_ENTRY* entry = num <= LIMIT_OBJECT_NUMBER && num <= most ? m_xref.reserve_entry(num) : nullptr;
    if (!entry)
        return fail(begin, "the object number " + std::to_string(num) + " is too large");
    *entry = {PDF_XREF_IN_FILE, static_cast<uint32_t>(begin - m_data), gen};

    CPDFParser parser(m_lexer.at(), m_lexer.end(), m_data);
    CPDFObj value;
    parser.parse(value, &SCAN_KEYS);
    m_lexer.move_to(parser.lexer().at());
    m_lexer.skip_space();
    const CPDFDictionary* dict = value.dictionary();
    if (dict && dict->get_item("FDF"))
        m_candidate = {num, gen};
    if (dict && m_lexer.begins("stream") && !pass_stream({num, gen}))
        return fail(begin, "the stream object " + std::to_string(num) + " has no end");
    if (!m_lexer.accept("endobj"))
        return fail(m_lexer.at(),
                    "object " + std::to_string(num) + " is damaged, cut off or too large; reading ended here");
    return true;
}

// Moves behind a stream, whose end only its reader knows.
bool CPDFFdfFile::pass_stream(const PDF_REF& ref)
{
    CPDFObj object;
    m_xref.get_entity(object, ref);
    if (object.type != PDF_OBJ_STREAM)
        return false;
    m_lexer.move_to(m_data + object.stream->handle + object.stream->data_len);
    m_lexer.skip_space();
    if (!m_lexer.begins(END_OF_STREAM))
        return false;
    m_lexer.move_to(m_lexer.at() + std::strlen(END_OF_STREAM));
    m_lexer.skip_space();
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
    const CPDFEntryView fdf(&m_xref, dict ? dict->get_item("FDF") : nullptr);
    m_fdf.copy_from(&*fdf);
    if (m_fdf.type == PDF_OBJ_DICT)
        return true;
    const PDF_XREF_ENTRY* entry = m_xref.entry_of(ref.num);
    const bool is_there = entry && entry->type == PDF_XREF_IN_FILE;
    return fail(is_there ? m_data + entry->index : m_lexer.at(),
                "object " + std::to_string(ref.num) + " should hold the FDF dictionary, and " +
                    (is_there ? "has none, is damaged or too large" : "is not there"));
}
