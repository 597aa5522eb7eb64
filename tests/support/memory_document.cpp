#include "tests/support/memory_document.h"

#include <cstdio>
#include <cstdlib>

#include "file/syntax/parser.h"
#include "tests/support/new_hook.h"

namespace {
#ifdef FORMWORK_ALLOC_HOOK
using TestOnly = NewHookPause;
#else
struct TestOnly {
    TestOnly() {}
};
#endif

std::string show_string(const std::string& bytes)
{
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        return "(" + bytes + ")";
    std::string hex = "<";
    for (const char c : bytes)
        hex += {"0123456789ABCDEF"[static_cast<unsigned char>(c) >> 4], "0123456789ABCDEF"[c & 15]};
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
    const VXFailureCheck memory;
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    CPDFParser parser(bytes, bytes + text.size(), nullptr);
    const bool found = parser.parse(out, nullptr);
    parser.lexer().skip_space();
    if (!memory.failed() && !(found && parser.lexer().done())) {
        std::fprintf(stderr, "test object: can't parse '%s'\n", text.c_str());
        std::abort();
    }
    if (memory.failed())
        out.free();
    return !memory.failed();
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
        return obj.name ? std::string("/") + obj.name : "null";
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

std::string show_entry(CPDFXRefTable& xref, uint32_t num, const char* key)
{
    CPDFObj own;
    xref.get_entity(own, {num, 0});
    const CPDFObj* value = own.dictionary() ? own.dict->get_item(key) : nullptr;
    return value ? show_object(*value) : "-";
}

std::string stream_data(CPDFXRefTable& xref, uint32_t num)
{
    CPDFObj obj;
    xref.get_entity(obj, {num, 0});
    const std::unique_ptr<CPDFStream> stream(obj.type == PDF_OBJ_STREAM ? xref.make_stream(obj.stream) : nullptr);
    if (!stream)
        return "no stream";
    int len = 0;
    const VXBlock<unsigned char> block(stream->buffer_load(INT32_MAX, len));
    return {block.get(), block.get() + len};
}

std::vector<std::string> split(const std::string& text, char mark)
{
    std::vector<std::string> parts;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(mark, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

std::vector<std::pair<std::string, std::string>> rows_of(const std::string& table)
{
    std::vector<std::pair<std::string, std::string>> rows;
    for (size_t at = 0; at < table.size();) {
        const size_t arrow = table.find(" => ", at);
        const size_t end = std::min(table.find(" | ", at), table.size());
        rows.emplace_back(table.substr(at, arrow - at), table.substr(arrow + 4, end - arrow - 4));
        at = end + 3;
    }
    return rows;
}

MemoryStream::MemoryStream(std::string data, int32_t data_len) : m_data(std::move(data))
{
    m_data_len = data_len;
}

int MemoryStream::read_data(void* buf, int size)
{
    const TestOnly test_only;
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
    for (const std::string& text : split(objects, ';')) {
        const size_t begin = text.find_first_not_of(' ');
        const bool entries = text[begin] == '/' && text.find(' ', begin) != std::string::npos;
        put(num++, entries ? "<< " + text + " >>" : text);
    }
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
    const TestOnly test_only;
    ++reads[num];
    const std::string& text = m_objects[entry.index];
    if (text.rfind(STREAM_MARK, 0) != 0) {
        parse_object(text, out);
        return;
    }
    if (!out.set_stream())
        return;
    out.stream->in_file = 1;
    out.stream->ref = {num, 0};
    out.stream->handle = entry.index;
    out.stream->data_len = static_cast<uint32_t>(text.size() - std::strlen(STREAM_MARK));
}

int MemoryDocument::read_section(CPDFXRefTable& table, uint32_t pos)
{
    sections_read.push_back(pos);
    const auto section = sections.find(pos);
    if (section == sections.end())
        return 0;
    for (const auto& [num, text] : section->second.objects) {
        if (table.reserve_entry(num)->gen == PDF_XREF_NO_GEN)
            *table.reserve_entry(num) = {PDF_XREF_IN_FILE, add(text), 0};
        table.raise_next_num(num + 1);
    }
    if (section->second.older)
        table.push_pending(section->second.older);
    return 1;
}

CPDFStream* MemoryDocument::open_stream(CPDFXRefTable&, const CPDFStreamRec& rec, const unsigned char* memory,
                                        uint32_t size)
{
    const TestOnly test_only;
    const std::string data =
        memory ? std::string(memory, memory + size) : m_objects[rec.handle].substr(std::strlen(STREAM_MARK));
    return new MemoryStream(data, static_cast<int32_t>(rec.data_len));
}

unsigned char* MemoryDocument::compress(const void* data, int len, int& out_len)
{
    void* copy = VXAlloc(static_cast<size_t>(len));
    out_len = copy ? len : 0;
    return static_cast<unsigned char*>(copy ? std::memcpy(copy, data, static_cast<size_t>(len)) : nullptr);
}
