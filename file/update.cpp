#include "file/update.h"

#include <algorithm>
#include <vector>

#include "core/array.h"
#include "core/xref_table.h"
#include "file/file_id.h"
#include "file/file_reader.h"
#include "file/security/security_handler.h"
#include "file/syntax/serialize.h"

namespace {

// Where a changed object stands in the output.
struct Place {
    uint32_t num;
    uint32_t gen;
    uint64_t offset;
};

// Appends `value` with zeros in front, so that it has at least `width` digits.
void append_padded(std::string& out, uint64_t value, size_t width)
{
    char digits[24];
    char* const end = digits + sizeof digits;
    char* first = end;
    for (; value > 0 || static_cast<size_t>(end - first) < width; value /= 10)
        *--first = static_cast<char>('0' + value % 10);
    out.append(first, end);
}

class Update {
public:
    Update(std::string& out, CPDFXRefTable& xref, const CPDFFileReader& reader, const uint8_t* data, size_t size)
        : m_out(out),
          m_xref(xref),
          m_reader(reader),
          m_security(reader.security()),
          m_data(data),
          m_size(size),
          m_next_num(xref.next_num())
    {
    }

    void run()
    {
        if (m_data[m_size - 1] != '\n')
            m_out += '\n';
        write_objects();
        m_start = position();
        if (m_reader.newest_kind() == PDF_SECTION_KIND::STREAM)
            write_section_stream();
        else
            write_table();
        m_out += "startxref\n" + std::to_string(m_start) + "\n%%EOF\n";
    }

private:
    // File position of the next byte, counted as the file's own positions are.
    uint64_t position() const { return m_size + m_out.size() - m_reader.shift(); }

    void write_objects()
    {
        constexpr size_t SAMPLE = 64;  // objects that tell how much room all of them will need
        const PDF_CHANGED_OBJ* changed = m_xref.changed();
        std::vector<int32_t> order;
        for (int32_t i = 0; i < m_xref.changed_count(); ++i) {
            if (changed[i].ref.num)
                order.push_back(i);
        }
        std::sort(order.begin(), order.end(),
                  [changed](int32_t a, int32_t b) { return changed[a].ref.num < changed[b].ref.num; });
        m_places.reserve(order.size() + 1);
        for (const int32_t i : order) {
            if (m_places.size() == SAMPLE)
                m_out.reserve(m_out.size() / SAMPLE * (order.size() + SAMPLE));
            m_places.push_back({changed[i].ref.num, generation_of(i), position()});
            append_padded(m_out, m_places.back().num, 1);
            m_out += ' ';
            append_padded(m_out, m_places.back().gen, 1);
            m_out += " obj\n";
            if (changed[i].text.buf)
                m_out.append(reinterpret_cast<const char*>(changed[i].text.buf),
                             static_cast<size_t>(changed[i].text.len));
            else
                write_version(changed[i].obj, {m_places.back().num, m_places.back().gen});
            m_out += "\nendobj\n";
        }
    }

    // A version that is an object; those of an encrypted file all are.
    void write_version(const CPDFObj& version, const PDF_REF& ref)
    {
        CPDFObj encrypted;
        if (m_security) {
            encrypted.copy_from(&version);
            m_security->encrypt_strings(encrypted, ref);
        }
        const CPDFObj& written = m_security ? encrypted : version;
        if (written.type == PDF_OBJ_STREAM)
            write_stream(*written.stream, ref);
        else
            write_object(m_out, written);
    }

    // The generation that the file gives the object: a reference may have named another.
    uint32_t generation_of(int32_t i) const
    {
        const PDF_XREF_ENTRY& before = m_xref.before()[i].entry;
        if (before.type == PDF_XREF_IN_FILE)
            return before.gen;
        return before.type == PDF_XREF_IN_STREAM ? 0 : m_xref.changed()[i].ref.gen;
    }

    void write_stream(const CPDFStreamRec& rec, const PDF_REF& ref)
    {
        const char* bytes = nullptr;
        size_t size = 0;
        std::string encrypted;
        if (const PDF_MEM_STREAM* memory = rec.in_memory ? m_xref.mem_stream(rec.handle) : nullptr) {
            bytes = reinterpret_cast<const char*>(memory->data);
            size = memory->len;
        } else if (rec.in_file && rec.handle <= m_size && rec.data_len <= m_size - rec.handle) {
            bytes = reinterpret_cast<const char*>(m_data) + rec.handle;
            size = rec.data_len;
        }
        if (m_security && encrypt_data(rec, ref, {bytes ? bytes : "", size}, encrypted)) {
            bytes = encrypted.data();
            size = encrypted.size();
        }
        CPDFDictionary dict;
        dict.copy_from(&rec.dict);
        dict.set_item_int(CPDFDictionary::sm_tag_length, static_cast<int>(size));
        write_dictionary(m_out, dict);
        m_out += "\nstream\n";
        m_out.append(bytes ? bytes : "", size);
        m_out += "\nendstream";
    }

    // Encrypts `data` as those of object `ref`. False where they are so already: a stream's own in the file.
    bool encrypt_data(const CPDFStreamRec& rec, const PDF_REF& ref, std::string_view data, std::string& out) const
    {
        std::string plain;
        if (!rec.in_memory) {
            if (rec.ref.num == ref.num && rec.ref.gen == ref.gen)
                return false;
            const PDF_CIPHER_KEY before = m_security->stream_key(&m_xref, rec.dict, rec.ref);
            plain = data;
            plain.resize(decrypt_in_place(before, reinterpret_cast<uint8_t*>(plain.data()), plain.size()));
            data = plain;
        }
        const PDF_CIPHER_KEY key = m_security->stream_key(&m_xref, rec.dict, ref);
        out.resize(encrypted_size(key.cipher, data.size()));
        encrypt(key, reinterpret_cast<const uint8_t*>(data.data()), data.size(),
                reinterpret_cast<uint8_t*>(out.data()));
        return true;
    }

    // Calls `visit(first, count, place)` for each run of consecutive object numbers.
    template <typename Visit>
    void for_each_run(Visit&& visit) const
    {
        for (size_t i = 0; i < m_places.size();) {
            size_t run = 1;
            while (i + run < m_places.size() && m_places[i + run].num == m_places[i].num + run)
                ++run;
            visit(m_places[i].num, run, &m_places[i]);
            i += run;
        }
    }

    void write_table()
    {
        m_out += "xref\n";
        for_each_run([this](uint32_t first, size_t count, const Place* place) {
            m_out += std::to_string(first) + ' ' + std::to_string(count) + '\n';
            for (size_t i = 0; i < count; ++i) {
                append_padded(m_out, place[i].offset, 10);
                m_out += ' ';
                append_padded(m_out, place[i].gen, 5);
                m_out += " n \n";
            }
        });
        CPDFDictionary trailer;
        fill_trailer(trailer);
        m_out += "trailer\n";
        write_dictionary(m_out, trailer);
        m_out += '\n';
    }

    void write_section_stream()
    {
        constexpr int OFFSET_WIDTH = 4;
        constexpr int GEN_WIDTH = 2;
        const uint32_t num = m_next_num++;
        m_places.push_back({num, 0, m_start});
        CPDFArray index;
        std::string rows;
        for_each_run([&](uint32_t first, size_t count, const Place* place) {
            index.append_int(static_cast<int>(first));
            index.append_int(static_cast<int>(count));
            for (size_t i = 0; i < count; ++i) {
                rows += '\x01';
                append_big_endian(rows, place[i].offset, OFFSET_WIDTH);
                append_big_endian(rows, place[i].gen, GEN_WIDTH);
            }
        });
        CPDFDictionary dict;
        fill_trailer(dict);
        CPDFArray widths;
        for (const int width : {1, OFFSET_WIDTH, GEN_WIDTH})
            widths.append_int(width);
        dict.set_item_name("Type", "XRef");
        dict.set_item_arr("W", &widths);
        dict.set_item_arr("Index", &index);
        dict.set_item_int(CPDFDictionary::sm_tag_length, static_cast<int>(rows.size()));
        m_out += std::to_string(num) + " 0 obj\n";
        write_dictionary(m_out, dict);
        m_out += "\nstream\n" + rows + "\nendstream\nendobj\n";
    }

    static void append_big_endian(std::string& out, uint64_t value, int width)
    {
        for (int shift = (width - 1) * 8; shift >= 0; shift -= 8)
            out += static_cast<char>(value >> shift);
    }

    void fill_trailer(CPDFDictionary& trailer) const
    {
        const CPDFDictionary& before = m_reader.trailer();
        for (const char* key : {"Root", "Info", "Encrypt"})
            trailer.set_item(key, before.get_item(key));
        trailer.set_item_int("Size", static_cast<int>(m_next_num));
        // A position beyond 2 GiB is no 32-bit integer, but a real writes the same digits.
        CPDFObj prev;
        prev.set_real(static_cast<VXFIX>(m_reader.newest_pos()) << 26);
        trailer.set_item("Prev", &prev);
        set_file_id(trailer, before, m_out);
    }

    std::string& m_out;  // borrowed from the caller, as the following
    CPDFXRefTable& m_xref;
    const CPDFFileReader& m_reader;
    const CPDFSecurityHandler* m_security;  // null for a file that is not encrypted
    const uint8_t* m_data;
    size_t m_size;
    uint32_t m_next_num;  // first object number that the output leaves free
    uint64_t m_start = 0;
    std::vector<Place> m_places;
};

}  // namespace

void write_update(std::string& out, CPDFXRefTable& xref, const CPDFFileReader& reader, const unsigned char* data,
                  size_t size)
{
    if (xref.changed_count() == 0 || size == 0)
        return;
    xref.read_all_sections();
    Update(out, xref, reader, data, size).run();
}
