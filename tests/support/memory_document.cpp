#include "tests/support/memory_document.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"

namespace {

// value := '<<' ( '/'key value )* '>>' | '[' value* ']' | '(' text ')' | '<' hex '>' | '/'name | number | n g R | word
class Parser {
public:
    explicit Parser(const char* text) : m_at(text) {}

    bool value(CPDFObj& out)
    {
        if (eat("<<"))
            return dictionary(out);
        if (eat("["))
            return array(out);
        if (eat("("))
            return string(out, up_to(')'));
        if (eat("<"))
            return string(out, bytes_of(up_to('>')));
        if (eat("/")) {
            out.set_name(word().c_str());
            return out.type == PDF_OBJ_NAME;
        }
        const std::string token = word();
        if (token == "true" || token == "false")
            out.set_bool(token == "true");
        else if (token != "null")
            number(out, token);
        return true;
    }

    bool eat(const char* mark)
    {
        while (*m_at == ' ')
            ++m_at;
        const size_t size = std::strlen(mark);
        if (std::strncmp(m_at, mark, size) != 0)
            return false;
        m_at += size;
        return true;
    }

    void require(bool fine)
    {
        if (fine)
            return;
        std::fprintf(stderr, "test object: can't parse at '%.40s'\n", m_at);
        std::abort();
    }

    bool at_end()
    {
        eat("");
        return *m_at == 0;
    }

private:
    std::string word()
    {
        const size_t size = std::strcspn(m_at, " /[]<>()");
        m_at += size;
        return {m_at - size, size};
    }

    std::string up_to(char end)
    {
        const char* start = m_at;
        while (*m_at && *m_at != end)
            ++m_at;
        require(*m_at == end);
        return {start, m_at++};
    }

    static std::string bytes_of(const std::string& digits)
    {
        std::string bytes;
        for (size_t i = 0; i + 1 < digits.size(); i += 2)
            bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
        return bytes;
    }

    static bool string(CPDFObj& out, const std::string& bytes)
    {
        out.set_string(bytes.data(), static_cast<int32_t>(bytes.size()));
        return out.str.buf != nullptr;
    }

    void number(CPDFObj& out, const std::string& token)
    {
        char* end = nullptr;
        const double number = std::strtod(token.c_str(), &end);
        require(!token.empty() && *end == 0);
        const auto gen = static_cast<uint32_t>(std::strtoul(m_at, &end, 10));
        if (end != m_at && std::strncmp(end, " R", 2) == 0) {
            m_at = end + 2;
            out.set_ref({static_cast<uint32_t>(number), gen});
        } else if (token.find('.') != std::string::npos) {
            out.set_real(static_cast<VXFIX>(number * VXFIX_ONE));
        } else {
            out.set_int(static_cast<int32_t>(number));
        }
    }

    bool array(CPDFObj& out)
    {
        CPDFArray* items = out.set_array();
        while (!eat("]")) {
            CPDFObj* item = items->append();
            if (!item || !value(*item))
                return false;
        }
        return true;
    }

    bool dictionary(CPDFObj& out)
    {
        CPDFDictionary* dict = out.set_dict();
        while (!eat(">>")) {
            require(eat("/"));
            const std::string key = word();
            CPDFObj* entry = dict->append_unsorted(key.data(), key.size());
            if (!entry || !value(*entry))
                return false;
        }
        dict->sort_items();
        return true;
    }

    const char* m_at;
};

std::string show_string(const std::string& bytes)
{
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        return "(" + bytes + ")";
    constexpr char HEX[] = "0123456789ABCDEF";
    std::string hex = "<";
    for (const char c : bytes)
        hex = hex + HEX[static_cast<unsigned char>(c) >> 4] + HEX[c & 15];
    return hex + ">";
}

std::string show_dictionary(const CPDFDictionary& dict)
{
    std::string text = "<<";
    for (int32_t i = 0; i < dict.count; ++i)
        text += std::string(" /") + dict.items[i]->key() + " " + show_object(dict.items[i]->value);
    return text + " >>";
}

std::string show_array(const CPDFArray& array)
{
    std::string text = "[";
    for (int32_t i = 0; i < array.count; ++i)
        text += (i ? " " : "") + show_object(array.items[i]);
    return text + "]";
}

}  // namespace

bool parse_object(const std::string& text, CPDFObj& out)
{
    Parser parser(text.c_str());
    const bool whole = parser.value(out);
    if (!whole)
        out.free();
    parser.require(!whole || parser.at_end());
    return whole;
}

std::string show_object(const CPDFObj& obj)
{
    switch (obj.type) {
    case PDF_OBJ_BOOL:
        return obj.ival ? "true" : "false";
    case PDF_OBJ_INT:
        return std::to_string(obj.ival);
    case PDF_OBJ_REAL:
        return std::to_string(static_cast<double>(obj.fval) / VXFIX_ONE);
    case PDF_OBJ_STRING:
        return obj.str.len > 0 ? show_string({obj.str.buf, obj.str.buf + obj.str.len}) : "()";
    case PDF_OBJ_NAME:
        return std::string("/") + obj.name;
    case PDF_OBJ_REF:
        return std::to_string(obj.ref.num) + " " + std::to_string(obj.ref.gen) + " R";
    case PDF_OBJ_ARRAY:
        return show_array(*obj.arr);
    case PDF_OBJ_DICT:
        return show_dictionary(*obj.dict);
    case PDF_OBJ_STREAM:
        return "stream" + show_dictionary(obj.stream->dict);
    default:
        return "null";
    }
}

MemoryStream::MemoryStream(std::string data, int32_t data_len) : m_data(std::move(data))
{
    m_data_len = data_len;
}

int MemoryStream::read_data(void* buf, int size)
{
    reads.push_back(size);
    const size_t got = m_data.copy(static_cast<char*>(buf), static_cast<size_t>(size), m_at);
    m_at += got;
    return static_cast<int>(got);
}

uint32_t MemoryDocument::add(std::string text)
{
    m_objects.push_back(std::move(text));
    return static_cast<uint32_t>(m_objects.size() - 1);
}

void MemoryDocument::put(uint32_t num, std::string text)
{
    *xref.reserve_entry(num) = {PDF_XREF_IN_FILE, add(std::move(text)), 0};
    xref.raise_next_num(num + 1);
}

void MemoryDocument::put_all(uint32_t num, const std::string& objects)
{
    for (size_t begin = 0; begin < objects.size(); ++num) {
        begin = objects.find_first_not_of(' ', begin);
        const size_t end = std::min(objects.find(';', begin), objects.size());
        const std::string text = objects.substr(begin, end - begin);
        const bool entries = text[0] == '/' && text.find(' ') != std::string::npos;
        put(num, entries ? "<< " + text + " >>" : text);
        begin = end + 1;
    }
}

void MemoryDocument::put_older(uint32_t pos, uint32_t num, std::string text)
{
    m_sections[pos].entries.push_back({num, add(std::move(text))});
}

std::string MemoryDocument::show(uint32_t num)
{
    CPDFObj obj;
    xref.get_entity(obj, {num, 0});
    return show_object(obj);
}

void MemoryDocument::read_object(CPDFXRefTable&, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                                 const CPDFKeySet*)
{
    const std::string& text = m_objects[entry.index];
    if (text.rfind(STREAM_MARK, 0) != 0) {
        parse_object(text, out);
        return;
    }
    out.stream = new CPDFStreamRec;
    out.type = PDF_OBJ_STREAM;
    out.stream->in_file = 1;
    out.stream->ref = {num, 0};
    out.stream->handle = entry.index;
    out.stream->data_len = static_cast<uint32_t>(text.size() - std::strlen(STREAM_MARK));
}

int MemoryDocument::read_section(CPDFXRefTable& table, uint32_t pos)
{
    sections_read.push_back(pos);
    const auto section = m_sections.find(pos);
    if (section == m_sections.end())
        return 0;
    for (const auto& [num, index] : section->second.entries) {
        PDF_XREF_ENTRY* entry = table.reserve_entry(num);
        if (entry && entry->gen == PDF_XREF_NO_GEN)
            *entry = {PDF_XREF_IN_FILE, index, 0};
        table.raise_next_num(num + 1);
    }
    if (section->second.older)
        table.push_pending(section->second.older);
    return 1;
}

CPDFStream* MemoryDocument::open_stream(CPDFXRefTable&, const CPDFStreamRec& rec, const unsigned char* memory,
                                        uint32_t size)
{
    const auto data_len = static_cast<int32_t>(rec.data_len);
    if (memory)
        return new MemoryStream({memory, memory + size}, data_len);
    return new MemoryStream(m_objects[rec.handle].substr(std::strlen(STREAM_MARK)), data_len);
}

unsigned char* MemoryDocument::compress(const void* data, int len, int& out_len)
{
    auto* copy = static_cast<unsigned char*>(VXAlloc(static_cast<size_t>(len)));
    out_len = copy ? len : 0;
    return copy ? static_cast<unsigned char*>(std::memcpy(copy, data, static_cast<size_t>(len))) : nullptr;
}
