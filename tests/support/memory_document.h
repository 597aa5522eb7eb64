// An in-memory document for tests: every object is a line of PDF-like text, parsed when the store asks for it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/object_source.h"
#include "core/stream.h"
#include "core/xref_table.h"

// Makes `out` the object that `text` spells. False, with `out` null, when memory ran out; wrong text ends the test
// program.
bool parse_object(const std::string& text, CPDFObj& out);

// The object as text in the same form, keys sorted, strings with unprintable bytes in hexadecimal.
std::string show_object(const CPDFObj& obj);

// Entry `key` of the newest version of object `num` as text, "-" when there is none.
std::string show_entry(CPDFXRefTable& xref, uint32_t num, const char* key);

// The decoded data of stream object `num`; "no stream" for anything else.
std::string stream_data(CPDFXRefTable& xref, uint32_t num);

// The texts between the marks.
std::vector<std::string> split(const std::string& text, char mark);

// The rows of "text => result | text => result"; the last may end in " | ", too.
std::vector<std::pair<std::string, std::string>> rows_of(const std::string& table);

// A reader over bytes in memory. It notes the size of every read.
class MemoryStream : public CPDFStream {
public:
    MemoryStream(std::string data, int32_t data_len);
    void rewind() override { m_at = 0; }
    bool at_end() override { return m_at == m_data.size(); }
    int read_data(void* buf, int size) override;

    std::vector<int> reads;

private:
    std::string m_data;
    size_t m_at = 0;
};

// The objects and the store that reads them. A read is all or nothing: without memory the object is absent.
class MemoryDocument : public CPDFObjectSource {
public:
    // Objects 1, 2, 3, ... separated by ';'. One like "/T (a)" is a dictionary without its brackets.
    explicit MemoryDocument(const std::string& objects = "") : xref(this) { put_all(1, objects); }
    void put_all(uint32_t num, const std::string& objects);

    // Puts an object, or a stream with these data, into the newest section; put_free marks its number as free there.
    void put(uint32_t num, std::string text);
    void put_stream(uint32_t num, const std::string& data) { put(num, STREAM_MARK + data); }
    void put_free(uint32_t num) { *xref.reserve_entry(num) = {PDF_XREF_FREE, 0, 1}; }

    // The newest version of the object as text, "null" when there is none.
    std::string show(uint32_t num);

    std::string data(uint32_t num) { return stream_data(xref, num); }
    std::string entry(uint32_t num, const char* key) { return show_entry(xref, num, key); }

    void read_object(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                     const CPDFKeySet* keys) override;
    int read_section(CPDFXRefTable& xref, uint32_t pos) override;
    CPDFStream* open_stream(CPDFXRefTable& xref, const CPDFStreamRec& rec, const unsigned char* memory,
                            uint32_t size) override;
    unsigned char* compress(const void* data, int len, int& out_len) override;

    // Older sections by file position. One is read when xref.push_pending(position) was called and the store needs it.
    struct Section {
        std::vector<std::pair<uint32_t, std::string>> objects;
        uint32_t older;  // position of the next one, or 0
    };
    std::map<uint32_t, Section> sections;
    std::vector<uint32_t> sections_read;
    std::map<uint32_t, int> reads;  // how often each object was read
    CPDFXRefTable xref;

private:
    static constexpr const char* STREAM_MARK = "stream ";

    uint32_t add(std::string text);

    std::vector<std::string> m_objects;
};
