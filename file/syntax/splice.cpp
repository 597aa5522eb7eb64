#include "file/syntax/splice.h"

#include <algorithm>
#include <cstring>

#include "file/syntax/lexer.h"
#include "file/syntax/serialize.h"

namespace {

constexpr int DEEPEST = 63;  // containers in a value, a bit each

bool is_changed(PDF_ENTRY_CHANGES changes, const uint8_t* key, size_t len)
{
    for (const PDF_ENTRY_CHANGE& change : changes) {
        // The first character tells almost all keys apart.
        const bool same_start = len > 0 && static_cast<uint8_t>(change.key[0]) == *key;
        if (same_start && std::strlen(change.key) == len && std::memcmp(change.key, key, len) == 0)
            return true;
    }
    return false;
}

bool ends_object(const CPDFLexer& text)
{
    return text.starts("endobj") || text.starts("stream");
}

// Whether the cursor is behind the first or the second part of what reads as a reference.
bool continues_reference(CPDFLexer text)
{
    uint32_t gen = 0;
    text.skip_space();
    if (text.read_u32(gen))
        text.skip_space();
    return text.peek() == 'R';
}

}  // namespace

// Copies the text up to `end`.
void CPDFSplicer::flush(const uint8_t* end)
{
    m_copy.append(reinterpret_cast<const char*>(m_run), static_cast<size_t>(end - m_run));
    m_run = end;
}

// Steps over white space and comments. One space stays where two regular characters would run together.
void CPDFSplicer::skip_gap(CPDFLexer& text)
{
    const uint8_t* begin = text.at();
    text.skip_space();
    // The slash of an empty name would take what follows for the name.
    const bool apart = !text.done() && is_regular(text.peek()) && (is_regular(begin[-1]) || begin[-1] == '/');
    if (apart && *begin == ' ' && text.at() == begin + 1)
        return;
    flush(begin);
    if (apart)
        m_copy += ' ';
    m_run = text.at();
}

// Steps over the decimals of a number, whose point is at the cursor, and leaves out the zeros that say nothing.
void CPDFSplicer::pass_decimals(CPDFLexer& text)
{
    const uint8_t* point = text.at();
    const uint8_t* begin = point;
    while (is_digit(begin[-1]))
        --begin;
    const uint8_t before = begin[-1] == '-' || begin[-1] == '+' ? begin[-2] : begin[-1];
    const uint8_t* end = point + 1;
    while (end < text.end() && is_digit(*end))
        ++end;
    text.move_to(end);
    // A name may hold a point, too.
    if (is_regular(before) || before == '/' || (end < text.end() && is_regular(*end)))
        return;
    const uint8_t* last = end;
    while (last[-1] == '0')
        --last;
    if (last > point + 1 && point == begin + 1 && *begin == '0') {
        flush(begin);
        m_run = point;
    } else if (last == point + 1) {
        // A number without its point might become part of a reference.
        last = point > begin && !continues_reference(text) ? point : std::min(end, point + 2);
    }
    if (last < end && last > begin) {
        flush(last);
        m_run = end;
    }
}

// Steps over a bracket; false when it is the wrong one.
bool CPDFSplicer::pass_bracket(CPDFLexer& text)
{
    const uint8_t c = text.peek();
    const bool dict = c == '<' || c == '>';
    if (c == '[' || c == '<') {
        m_dicts = m_dicts << 1 | dict;
        ++m_depth;
    } else {
        if (m_depth == 0 || (m_dicts & 1) != dict || (dict && text.peek(1) != '>'))
            return false;
        m_dicts >>= 1;
        --m_depth;
    }
    text.move_to(text.at() + (dict ? 2 : 1));
    return m_depth <= DEEPEST;
}

// Copies up to the next key or the end of the dictionary. The cursor is behind a key. Only what is no regular character
// matters, and the words that stand where a bracket is missing.
bool CPDFSplicer::copy_value(CPDFLexer& text)
{
    constexpr unsigned SPECIAL = CHAR_SPACE | CHAR_DELIMITER | CHAR_KEYWORD | CHAR_POINT;
    skip_gap(text);
    if (text.peek() == '>')
        return false;
    if (text.peek() == '/')
        text.move_to(text.at() + 1);
    while (!text.done()) {
        const uint8_t* at = text.at();
        while (at < text.end() && !(PDF_CHAR_CLASSES[*at] & SPECIAL))
            ++at;
        text.move_to(at);
        if (text.done())
            return false;
        switch (text.peek()) {
        case '/':
            if (m_depth == 0)
                return true;
            text.move_to(at + 1);
            break;
        case '(':
            text.skip_literal();
            break;
        case '.':
            pass_decimals(text);
            break;
        case '%':
            skip_gap(text);
            break;
        case '<':
            if (text.peek(1) != '<') {
                text.skip_hex();
                break;
            }
            [[fallthrough]];
        case '[':
        case ']':
        case '>':
            if (*at == '>' && m_depth == 0)
                return true;
            if (!pass_bracket(text))
                return false;
            break;
        default:
            if (is_space(*at)) {
                skip_gap(text);
                break;
            }
            if (!is_regular(*at) || (!is_regular(at[-1]) && at[-1] != '/' && ends_object(text)))
                return false;
            text.move_to(at + 1);
        }
    }
    return false;
}

// Copies the entries that stay, behind the opening bracket and up to the closing one.
bool CPDFSplicer::copy_entries(CPDFLexer& text, PDF_ENTRY_CHANGES changes)
{
    text.skip_space();
    m_run = text.at();
    while (text.peek() == '/') {
        const uint8_t* key = text.at();
        text.move_to(key + 1);
        if (text.skip_regular())
            return false;
        const bool changed = is_changed(changes, key + 1, static_cast<size_t>(text.at() - key - 1));
        if (changed)
            flush(key);
        const size_t kept = m_copy.size();
        if (!copy_value(text))
            return false;
        if (changed) {
            m_copy.resize(kept);
            m_run = text.at();
        }
    }
    flush(text.at());
    return text.peek() == '>' && text.peek(1) == '>';
}

bool CPDFSplicer::splice(CPDFLexer& text, PDF_ENTRY_CHANGES changes, PDF_String& out)
{
    text.skip_space();
    if (text.peek() != '<' || text.peek(1) != '<')
        return false;
    text.move_to(text.at() + 2);
    m_copy.assign("<<");
    m_depth = 0;
    if (!copy_entries(text, changes))
        return false;
    text.move_to(text.at() + 2);
    for (const PDF_ENTRY_CHANGE& change : changes) {
        if (change.value && change.value->type != PDF_OBJ_NULL)
            write_entry(m_copy, change.key, *change.value);
    }
    m_copy += ">>";
    return m_copy.size() < INT32_MAX && out.assign(m_copy.data(), static_cast<int32_t>(m_copy.size()));
}
