#include "file/object_reader.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "core/key_set.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "file/filter/compress.h"
#include "file/security/security_handler.h"
#include "file/syntax/parser.h"

namespace {

// Steps over "num gen obj" with this number; false when it is not there.
bool accept_object_start(CPDFLexer& lexer, uint32_t num, uint32_t& gen)
{
    uint32_t found = 0;
    lexer.skip_space();
    return lexer.accept_object(found, gen) && found == num;
}

}  // namespace

CPDFObjectReader::CPDFObjectReader(const uint8_t* data, size_t size) : m_data(data), m_size(size), m_budget(size) {}

CPDFObjectReader::~CPDFObjectReader() = default;

void CPDFObjectReader::read_object(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                                   const CPDFKeySet* keys)
{
    if (entry.type == PDF_XREF_IN_STREAM)
        read_from_stream(xref, out, num, entry, keys);
    else if (entry.type == PDF_XREF_IN_FILE && !parse_object_at(xref, out, entry.index, num, keys))
        note_damage(PDF_DAMAGE::OBJECT, num);
}

void CPDFObjectReader::note_damage(PDF_DAMAGE damage, uint32_t num)
{
    if (m_damage != PDF_DAMAGE::NONE || m_budget.exhausted())
        return;
    m_damage = damage;
    m_damaged_object = num;
}

// An object in the file: "num gen obj", the value, and for a stream "stream", its data and "endstream".
bool CPDFObjectReader::parse_object_at(CPDFXRefTable& xref, CPDFObj& out, size_t at, uint32_t num,
                                       const CPDFKeySet* keys)
{
    if (at >= m_size || !m_budget.may_parse())
        return false;
    CPDFParser parser(m_data + at, m_data + m_size, m_data);
    CPDFLexer& lexer = parser.lexer();
    uint32_t gen = 0;
    const bool found = accept_object_start(lexer, num, gen) && parser.parse(out, keys);
    if (out.type == PDF_OBJ_DICT)
        lexer.skip_space();
    // What can't be read has taken its time as well.
    if (!m_budget.spend(static_cast<size_t>(lexer.at() - (m_data + at)) + parser.work()) || !found) {
        out.free();
        return false;
    }
    if (out.type != PDF_OBJ_DICT || !lexer.begins("stream")) {
        decrypt_strings(out, {num, gen});
        return true;
    }
    if (keys) {
        out.free();
        return parse_object_at(xref, out, at, num, nullptr);
    }
    lexer.move_to(lexer.at() + 6);
    // The keyword ends with CR LF or LF; a lone CR is tolerated.
    if (lexer.peek() == '\r')
        lexer.move_to(lexer.at() + 1);
    if (lexer.peek() == '\n')
        lexer.move_to(lexer.at() + 1);
    make_stream_value(xref, out, static_cast<size_t>(lexer.at() - m_data), {num, gen});
    decrypt_strings(out, {num, gen});
    return true;
}

void CPDFObjectReader::decrypt_strings(CPDFObj& object, const PDF_REF& ref) const
{
    if (m_security && ref.num != m_security_num)
        m_security->decrypt_strings(object, ref);
}

void CPDFObjectReader::make_stream_value(CPDFXRefTable& xref, CPDFObj& out, size_t data_at, const PDF_REF& ref)
{
    const size_t len = stream_length(xref, *out.dict, data_at);
    CPDFObj dict;
    dict.take(out);
    if (!out.set_stream())
        return;
    out.stream->dict.take(*dict.dict);
    out.stream->in_file = 1;
    out.stream->data_len = static_cast<uint32_t>(len);
    out.stream->ref = ref;
    out.stream->handle = data_at;
}

// "Length" when "endstream" follows the data there, else the distance to the next "endstream".
size_t CPDFObjectReader::stream_length(CPDFXRefTable& xref, const CPDFDictionary& dict, size_t data_at)
{
    const CPDFObj* entry = dict.get_item(CPDFDictionary::sm_tag_length);
    int64_t len = -1;
    if (entry && entry->type == PDF_OBJ_INT) {
        len = entry->ival;
    } else if (entry && entry->type == PDF_OBJ_REF && !m_in_length) {
        // The length of a stream may not need the length of another one: a loop would never end.
        const RaisedFlag flag(m_in_length);
        CPDFObj scratch;
        const CPDFObj* value = view_obj(&xref, entry, scratch);
        len = value->type == PDF_OBJ_INT ? value->ival : -1;
    }
    if (len >= 0 && static_cast<size_t>(len) <= m_size - data_at) {
        CPDFLexer lexer(m_data + data_at + len, m_data + m_size);
        while (is_space(lexer.peek()) && !lexer.done())
            lexer.move_to(lexer.at() + 1);
        if (!m_budget.spend(static_cast<size_t>(lexer.at() - (m_data + data_at + len))))
            return 0;
        if (lexer.begins("endstream"))
            return static_cast<size_t>(len);
    }
    return search_stream_end(data_at);
}

size_t CPDFObjectReader::search_stream_end(size_t data_at)
{
    const uint8_t* begin = m_data + data_at;
    const size_t left = m_size - data_at;
    const void* found = memmem(begin, left, "endstream", 9);
    if (!found) {
        if (!m_budget.spend(left))
            return 0;
        found = memmem(begin, left, "endobj", 6);
    }
    size_t len = found ? static_cast<size_t>(static_cast<const uint8_t*>(found) - begin) : left;
    if (!m_budget.spend(len))
        return 0;
    if (len > 0 && begin[len - 1] == '\n')
        --len;
    if (len > 0 && begin[len - 1] == '\r')
        --len;
    return len;
}

void CPDFObjectReader::read_from_stream(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                                        const CPDFKeySet* keys)
{
    const CPDFObjectStream* stream = object_stream(xref, entry.index);
    const uint8_t* begin = nullptr;
    const uint8_t* end = nullptr;
    if (!stream)
        return;
    if (!stream->find(num, entry.gen, begin, end)) {
        note_damage(PDF_DAMAGE::OBJECT, num);
        return;
    }
    CPDFParser parser(begin, end, nullptr);
    const bool found = m_budget.may_parse() && parser.parse(out, keys);
    if (m_budget.spend(static_cast<size_t>(parser.lexer().at() - begin) + parser.work()) && found)
        return;
    out.free();
    note_damage(PDF_DAMAGE::OBJECT, num);
}

void CPDFObjectReader::set_security(std::unique_ptr<CPDFSecurityHandler> security, uint32_t dictionary)
{
    m_security = std::move(security);
    m_security_num = dictionary;
}

bool CPDFObjectReader::splice_object(CPDFXRefTable& xref, uint32_t num, const PDF_XREF_ENTRY& entry,
                                     PDF_ENTRY_CHANGES changes, PDF_String& out)
{
    if (m_security)
        return false;  // the strings must be decrypted
    const uint8_t* begin = nullptr;
    const uint8_t* end = nullptr;
    uint32_t gen = 0;
    if (entry.type == PDF_XREF_IN_STREAM) {
        const CPDFObjectStream* stream = object_stream(xref, entry.index);
        if (!stream || !stream->find(num, entry.gen, begin, end))
            return false;
    } else if (entry.type == PDF_XREF_IN_FILE && entry.index < m_size) {
        begin = m_data + entry.index;
        end = m_data + m_size;
    }
    CPDFLexer text(begin, end);
    if (!m_budget.may_parse() || (entry.type == PDF_XREF_IN_FILE && !accept_object_start(text, num, gen)))
        return false;
    const bool spliced = m_splicer.splice(text, changes, out);
    if (spliced)
        text.skip_space();
    if (m_budget.spend(static_cast<size_t>(text.at() - begin)) && spliced && !text.starts("stream"))
        return true;
    out.release();
    return false;
}

bool CPDFObjectReader::splice_text(const PDF_String& text, PDF_ENTRY_CHANGES changes, PDF_String& out)
{
    CPDFLexer lexer(text.buf, text.buf + text.len);
    return m_budget.spend(static_cast<size_t>(text.len)) && m_splicer.splice(lexer, changes, out);
}

void CPDFObjectReader::read_text(CPDFObj& out, const PDF_String& text, const CPDFKeySet* keys)
{
    CPDFParser parser(text.buf, text.buf + text.len, nullptr);
    const bool found = m_budget.may_parse() && parser.parse(out, keys);
    if (!m_budget.spend(static_cast<size_t>(text.len) + parser.work()) || !found)
        out.free();
}

const CPDFObjectStream* CPDFObjectReader::object_stream(CPDFXRefTable& xref, uint32_t num)
{
    if (const CPDFObjectStream* known = m_streams.find(num))
        return known;
    // What an object stream's own dictionary refers to may not lie in an object stream: it could be the same one.
    if (m_in_container || !m_budget.may_decode())
        return nullptr;
    const RaisedFlag flag(m_in_container);
    const CPDFObjectStream* loaded = load_object_stream(xref, num);
    if (!loaded)
        note_damage(PDF_DAMAGE::OBJECT_STREAM, num);
    return loaded;
}

const CPDFObjectStream* CPDFObjectReader::load_object_stream(CPDFXRefTable& xref, uint32_t num)
{
    const PDF_XREF_ENTRY* place = xref.entry_of(num);
    if (!place || place->type != PDF_XREF_IN_FILE)
        return nullptr;
    CPDFObj container;
    if (!parse_object_at(xref, container, place->index, num, nullptr) || container.type != PDF_OBJ_STREAM)
        return nullptr;
    const CPDFStreamRec& rec = *container.stream;
    CPDFBytes bytes;
    if (!decode_stored(&xref, rec, bytes) || !m_budget.may_decode())
        return nullptr;
    const size_t decoded = bytes.size();
    const int32_t count = resolve_integer(&xref, rec.dict.get_item("N"));
    const int32_t first = resolve_integer(&xref, rec.dict.get_item("First"));
    const CPDFObjectStream* stream =
        m_streams.add(num, std::make_unique<CPDFObjectStream>(std::move(bytes), count, first));
    m_budget.spend_decoding(stream->footprint() - decoded);
    m_budget.set_kept(m_streams.held());
    return stream;
}

bool CPDFObjectReader::decode(CPDFXRefTable* xref, const CPDFDictionary& dict, const uint8_t* data, size_t size,
                              CPDFBytes& out)
{
    return m_budget.may_decode() && decode_stream(xref, dict, data, size, out, &m_budget.decoding());
}

bool CPDFObjectReader::decode_stored(CPDFXRefTable* xref, const CPDFStreamRec& rec, CPDFBytes& out)
{
    const uint8_t* data = m_data + rec.handle;
    const PDF_CIPHER_KEY key = m_security ? m_security->stream_key(xref, rec.dict, rec.ref) : PDF_CIPHER_KEY();
    if (key.cipher == PDF_CIPHER::NONE)
        return decode(xref, rec.dict, data, rec.data_len, out);
    CPDFBytes plain;
    m_budget.spend_decoding(rec.data_len);
    if (!plain.append(data, rec.data_len))
        return false;
    return decode(xref, rec.dict, plain.data(), decrypt_in_place(key, plain.data(), plain.size()), out);
}

CPDFStream* CPDFObjectReader::open_stream(CPDFXRefTable& xref, const CPDFStreamRec& rec, const unsigned char* memory,
                                          uint32_t size)
{
    CPDFBytes bytes;
    if (memory)
        decode(&xref, rec.dict, memory, size, bytes);
    else if (rec.handle <= m_size && rec.data_len <= m_size - rec.handle)
        decode_stored(&xref, rec, bytes);
    else
        return nullptr;
    return make_decoded_stream(std::move(bytes));
}

unsigned char* CPDFObjectReader::compress(const void* data, int len, int& out_len)
{
    size_t size = 0;
    unsigned char* packed = flate_compress(data, static_cast<size_t>(len), size);
    out_len = packed && size <= INT32_MAX ? static_cast<int>(size) : 0;
    return packed;
}
