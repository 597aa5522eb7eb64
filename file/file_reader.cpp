#include "file/file_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <vector>

#include "core/array.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "file/syntax/parser.h"

// Cross-reference sections (ISO 32000-2, 7.5.4 and 7.5.8):
//
//     xref                                 12 0 obj
//     0 2                                  << /Type /XRef /W [1 2 1] /Index [0 2] /Size 2 ... >>
//     0000000000 65535 f                   stream
//     0000000017 00000 n          or       type, field 2 and field 3 of each entry, big-endian
//     trailer                              endstream
//     << /Size 2 /Root 1 0 R >>            endobj

namespace {

constexpr size_t HEADER_WINDOW = 1024;
constexpr size_t ENTRY_SIZE = 20;

const uint8_t* find_last(const uint8_t* begin, const uint8_t* end, const char* word)
{
    const size_t size = std::strlen(word);
    for (const uint8_t* p = end - std::min<size_t>(size, static_cast<size_t>(end - begin)); p > begin; --p) {
        if (*p == static_cast<uint8_t>(*word) && static_cast<size_t>(end - p) >= size &&
            std::memcmp(p, word, size) == 0)
            return p;
    }
    return nullptr;
}

// Eight decimal digits at once: neighbours are added up to pairs, to fours, to the whole number. `bad` gets a bit when
// one is no digit.
uint64_t eight_digits(const uint8_t* p, uint64_t& bad)
{
    constexpr uint64_t EACH = 0x0101010101010101;
    uint64_t digits = 0;
    std::memcpy(&digits, p, sizeof digits);
    if constexpr (std::endian::native == std::endian::big)
        digits = __builtin_bswap64(digits);  // the first digit is lowest
    // A digit is 0x30 to 0x39: its upper half is 3, and stays so when 6 is added.
    bad |= ((digits & 0xF0 * EACH) ^ 0x30 * EACH) | (((digits + 0x06 * EACH) & 0xF0 * EACH) ^ 0x30 * EACH);
    digits -= 0x30 * EACH;
    digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FF;
    digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFF;
    return (digits * 10000 + (digits >> 32)) & 0xFFFFFFFF;
}

// A table entry "nnnnnnnnnn ggggg n" in its fixed form; false when it is not in that form.
bool read_fixed_entry(const uint8_t* p, uint64_t& offset, uint32_t& gen, bool& in_use)
{
    uint64_t bad = 0;
    const auto digit = [p, &bad](int at) {
        const unsigned value = p[at] - unsigned{'0'};
        bad |= value > 9;
        return value;
    };
    offset = (uint64_t{digit(0)} * 10 + digit(1)) * 100000000 + eight_digits(p + 2, bad);
    gen = (((digit(11) * 10 + digit(12)) * 10 + digit(13)) * 10 + digit(14)) * 10 + digit(15);
    in_use = p[17] == 'n';
    return !bad && p[10] == ' ' && p[16] == ' ' && (in_use || p[17] == 'f') && is_space(p[18]) && is_space(p[19]);
}

uint64_t big_endian(const uint8_t* p, int width)
{
    uint64_t value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 8 | p[i];
    return value;
}

// An entry of a trailer that must be a plain number; -1 otherwise.
int64_t number_of(const CPDFDictionary& dict, const char* key)
{
    const CPDFObj* entry = dict.get_item(key);
    if (!entry || (entry->type != PDF_OBJ_INT && entry->type != PDF_OBJ_REAL))
        return -1;
    return entry->type == PDF_OBJ_INT ? entry->ival : entry->fval >> 26;
}

}  // namespace

CPDFStatus CPDFFileReader::start(CPDFXRefTable& xref)
{
    const void* header = m_size ? memmem(m_data, std::min(m_size, HEADER_WINDOW), "%PDF-", 5) : nullptr;
    m_shift = header ? static_cast<size_t>(static_cast<const uint8_t*>(header) - m_data) : 0;
    uint32_t pos = 0;
    const bool has_start = find_start(pos);
    if (!header && !has_start && (!m_size || !memmem(m_data, m_size, "endobj", 6)))
        return CPDFStatus::failed(PDF_CODE::NOT_PDF, "this is not a PDF file");
    if (!has_start)
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "the file is damaged at byte " + std::to_string(m_size) +
                                                         ": the position of the cross-reference section is missing");
    size_t at = 0;
    if (!place_section(pos, at) || !read_section_at(xref, at, m_newest_kind))
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "the file is damaged at byte " + std::to_string(pos) +
                                                         ": there is no cross-reference section");
    m_newest_pos = static_cast<uint32_t>(at - m_shift);
    if (const int64_t prev = number_of(m_trailer, "Prev"); prev > 0 && prev < m_newest_pos)
        m_budget.set_updated();
    return {};
}

bool CPDFFileReader::find_start(uint32_t& pos) const
{
    const uint8_t* word = find_last(m_data, m_data + m_size, "startxref");
    if (!word)
        return false;
    CPDFLexer lexer(word + 9, m_data + m_size);
    lexer.skip_space();
    return lexer.read_u32(pos);
}

bool CPDFFileReader::table_at(size_t at) const
{
    return at < m_size && m_size - at >= 4 && std::memcmp(m_data + at, "xref", 4) == 0 &&
           (at == 0 || m_data[at - 1] != 't');
}

bool CPDFFileReader::object_at(size_t at) const
{
    constexpr size_t LONGEST_START = 64;
    if (at >= m_size || (at > 0 && is_digit(m_data[at - 1])))
        return false;
    CPDFLexer lexer(m_data + at, m_data + at + std::min(LONGEST_START, m_size - at));
    uint32_t num = 0;
    uint32_t gen = 0;
    return lexer.accept_object(num, gen);
}

// A section some bytes before or behind `base`, as hand-edited files have it. Tables go first: an object so near is
// mostly an ordinary one.
bool CPDFFileReader::section_near(size_t base, size_t& at) const
{
    constexpr size_t NEAR = 32;
    for (const bool tables : {true, false}) {
        for (size_t off = 1; off <= NEAR; ++off) {
            for (const size_t place : {base + off, base - off}) {
                at = place;
                if (tables ? table_at(place) : object_at(place))
                    return true;
            }
        }
    }
    return false;
}

// Finds the section that file position `pos` means. The first one decides whether positions count from the header or from
// byte 0.
bool CPDFFileReader::place_section(uint32_t pos, size_t& at)
{
    const bool decided = !m_sections.empty();
    for (const bool exactly : {true, false}) {
        for (const size_t shift : {m_shift, size_t{0}}) {
            at = pos + shift;
            if (!(exactly ? table_at(at) || object_at(at) : section_near(pos + shift, at)))
                continue;
            if (decided && shift != m_shift)
                continue;
            m_shift = shift;
            return true;
        }
    }
    return false;
}

int CPDFFileReader::read_section(CPDFXRefTable& xref, uint32_t pos)
{
    size_t at = 0;
    PDF_SECTION_KIND kind = PDF_SECTION_KIND::NONE;
    if (place_section(pos, at) && read_section_at(xref, at, kind))
        return 1;
    note_damage(PDF_DAMAGE::SECTION);
    return 0;
}

bool CPDFFileReader::read_section_at(CPDFXRefTable& xref, size_t at, PDF_SECTION_KIND& kind)
{
    m_sections.insert(at);
    if (!m_budget.may_parse())
        return false;
    CPDFLexer lexer(m_data + at, m_data + m_size);
    if (std::memcmp(lexer.at(), "xref", std::min<size_t>(4, lexer.left())) != 0) {
        kind = PDF_SECTION_KIND::STREAM;
        return read_xref_stream(xref, at);
    }
    kind = PDF_SECTION_KIND::TABLE;
    lexer.move_to(lexer.at() + 4);
    const bool found = read_table(xref, lexer);
    return m_budget.spend(static_cast<size_t>(lexer.at() - (m_data + at))) && found;
}

uint32_t CPDFFileReader::largest_number() const
{
    const size_t fits = std::max<size_t>(m_size, LIMIT_OBJECT_NUMBER_SMALL_FILE);
    return static_cast<uint32_t>(std::min<size_t>(fits, LIMIT_OBJECT_NUMBER));
}

// Entries that a newer section has set stay; false then.
bool CPDFFileReader::set_entry(CPDFXRefTable& xref, uint32_t num, uint32_t type, uint64_t index, uint64_t gen) const
{
    if (num > largest_number())
        return false;
    PDF_XREF_ENTRY* entry = xref.reserve_entry(num);
    if (!entry || entry->gen != PDF_XREF_NO_GEN)
        return false;
    if (gen >= PDF_XREF_NO_GEN || index > UINT32_MAX) {
        type = PDF_XREF_FREE;
        index = 0;
        gen = 0;
    }
    *entry = {type, static_cast<uint32_t>(index), static_cast<uint32_t>(gen)};
    xref.raise_next_num(num + 1);
    return true;
}

bool CPDFFileReader::read_table(CPDFXRefTable& xref, CPDFLexer& lexer)
{
    std::vector<uint32_t> freed;  // entries that this table makes free
    for (;;) {
        lexer.skip_space();
        if (lexer.accept("trailer"))
            break;
        uint32_t first = 0;
        uint32_t count = 0;
        if (!lexer.read_u32(first))
            return false;
        lexer.skip_space();
        if (!lexer.read_u32(count))
            return false;
        read_subsection(xref, lexer, first, count, freed);
    }
    CPDFParser parser(lexer.at(), lexer.end(), m_data);
    CPDFObj trailer;
    const bool found = parser.parse(trailer, nullptr);
    lexer.move_to(parser.lexer().at());
    if (!found || !trailer.dictionary())
        return false;
    keep_trailer(*trailer.dict);
    read_hidden(xref, *trailer.dict, freed);
    follow_trailer(xref, *trailer.dict);
    return true;
}

// A hybrid file's stream locates the objects that the table hides, by listing them as free or not at all. It comes before
// older sections.
void CPDFFileReader::read_hidden(CPDFXRefTable& xref, const CPDFDictionary& trailer, const std::vector<uint32_t>& freed)
{
    const int64_t hidden = number_of(trailer, "XRefStm");
    size_t at = 0;
    if (hidden < 0 || hidden >= UINT32_MAX || !place_section(static_cast<uint32_t>(hidden), at) ||
        std::memcmp(m_data + at, "xref", std::min<size_t>(4, m_size - at)) == 0 || !m_sections.insert(at).second)
        return;
    for (const uint32_t num : freed) {
        if (PDF_XREF_ENTRY* entry = xref.reserve_entry(num))
            *entry = {PDF_XREF_FREE, 0, PDF_XREF_NO_GEN};
    }
    read_xref_stream(xref, at);
    for (const uint32_t num : freed)
        set_entry(xref, num, PDF_XREF_FREE, 0, 0);
}

void CPDFFileReader::read_subsection(CPDFXRefTable& xref, CPDFLexer& lexer, uint32_t first, uint32_t count,
                                     std::vector<uint32_t>& freed)
{
    const uint32_t largest = largest_number();
    bool reserved = false;
    for (uint32_t i = 0; i < count; ++i) {
        while (!lexer.done() && is_space(lexer.peek()))
            lexer.move_to(lexer.at() + 1);
        uint64_t offset = 0;
        uint32_t gen = 0;
        bool in_use = false;
        if (lexer.left() >= ENTRY_SIZE && read_fixed_entry(lexer.at(), offset, gen, in_use)) {
            lexer.move_to(lexer.at() + ENTRY_SIZE);
        } else {
            uint32_t loose = 0;
            const uint8_t* back = lexer.at();
            if (!lexer.read_u32(loose))
                return;
            lexer.skip_space();
            const bool has_gen = lexer.read_u32(gen);
            lexer.skip_space();
            in_use = lexer.peek() == 'n';
            if (!has_gen || (!in_use && lexer.peek() != 'f')) {
                lexer.move_to(back);  // fewer entries than the subsection says
                return;
            }
            lexer.move_to(lexer.at() + 1);
            offset = loose;
        }
        // Some writers start the table at 1, though its first entry is the head of the free list.
        if (i == 0 && first == 1 && !in_use && gen == 65535 && offset == 0)
            first = 0;
        if (!reserved) {
            reserved = true;
            const uint64_t seen = std::min<uint64_t>(count, lexer.left() / ENTRY_SIZE + 1);
            xref.reserve_entry(static_cast<uint32_t>(std::min<uint64_t>(first + seen, largest)));
        }
        if (first > largest || i > largest - first)
            continue;
        if (in_use && offset > 0)
            set_entry(xref, first + i, PDF_XREF_IN_FILE, offset + m_shift, gen);
        else if (set_entry(xref, first + i, PDF_XREF_FREE, 0, gen))
            freed.push_back(first + i);
    }
}

bool CPDFFileReader::read_xref_stream(CPDFXRefTable& xref, size_t at)
{
    CPDFLexer lexer(m_data + at, m_data + m_size);
    uint32_t num = 0;
    CPDFObj section;
    // The section can't help to find its own parts: an indirect length is not fetched.
    const RaisedFlag flag(m_in_length);
    if (!lexer.read_u32(num) || !parse_object_at(xref, section, at, num, nullptr) || section.type != PDF_OBJ_STREAM)
        return false;
    const CPDFStreamRec& rec = *section.stream;
    CPDFBytes bytes;
    if (!rec.dict.get_item("W") || !decode(nullptr, rec.dict, m_data + rec.handle, rec.data_len, bytes))
        return false;
    read_stream_entries(xref, rec.dict, bytes);
    keep_trailer(rec.dict);
    follow_trailer(xref, rec.dict);
    return true;
}

void CPDFFileReader::read_stream_entries(CPDFXRefTable& xref, const CPDFDictionary& dict, const CPDFBytes& bytes)
{
    const CPDFArray* widths = dict.get_item("W")->array();
    if (!widths || widths->count < 3)
        return;
    int width[3];
    for (int i = 0; i < 3; ++i) {
        width[i] = integer_value(widths->items[i]);
        if (width[i] < 0 || width[i] > 8)
            return;
    }
    const auto row = static_cast<size_t>(width[0]) + static_cast<size_t>(width[1]) + static_cast<size_t>(width[2]);
    if (row == 0)
        return;
    const CPDFObj* index = dict.get_item("Index");
    const CPDFArray* ranges = index ? index->array() : nullptr;
    const int32_t range_count = ranges ? ranges->count / 2 : 1;
    const uint8_t* p = bytes.data();
    const uint8_t* end = p + bytes.size();
    for (int32_t r = 0; r < range_count; ++r) {
        const int64_t first = ranges ? integer_value(ranges->items[2 * r]) : 0;
        const int64_t count = ranges ? integer_value(ranges->items[2 * r + 1]) : INT32_MAX;
        if (first < 0)
            return;
        const int64_t seen = std::min<int64_t>(count, (end - p) / static_cast<int64_t>(row));
        if (seen > 0)
            xref.reserve_entry(static_cast<uint32_t>(std::min<int64_t>(first + seen - 1, largest_number())));
        for (int64_t i = 0; i < seen; ++i, p += row) {
            const uint64_t type = width[0] ? big_endian(p, width[0]) : 1;
            uint64_t place = big_endian(p + width[0], width[1]);
            const uint64_t gen = big_endian(p + width[0] + width[1], width[2]);
            if (first + i > largest_number() || type > PDF_XREF_IN_STREAM)
                continue;
            place += type == PDF_XREF_IN_FILE ? m_shift : 0;
            set_entry(xref, static_cast<uint32_t>(first + i), static_cast<uint32_t>(type), place, gen);
        }
    }
}

void CPDFFileReader::keep_trailer(const CPDFDictionary& trailer)
{
    if (m_trailer.count == 0)
        m_trailer.copy_from(&trailer);
    for (const char* key : {"Root", "Encrypt", "ID", "Info"}) {
        if (!m_trailer.get_item(key))
            m_trailer.set_item(key, trailer.get_item(key));
    }
}

void CPDFFileReader::follow_trailer(CPDFXRefTable& xref, const CPDFDictionary& trailer)
{
    const int64_t size = number_of(trailer, "Size");
    if (size > 0 && size <= largest_number())
        xref.raise_next_num(static_cast<uint32_t>(size));
    const int64_t prev = number_of(trailer, "Prev");
    size_t at = 0;
    if (prev <= 0)
        return;
    if (prev > UINT32_MAX || !place_section(static_cast<uint32_t>(prev), at))
        note_damage(PDF_DAMAGE::SECTION);
    else if (m_sections.insert(at).second)
        xref.push_pending(static_cast<uint32_t>(prev));
}
