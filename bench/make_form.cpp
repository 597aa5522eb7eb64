// make_form COUNT OUT.pdf [--object-streams]
//
// Writes a form of COUNT fields of mixed kinds, the same bytes on every run. Fields come in groups of 50: each group
// has a container field and a page. Radio groups have two widgets, every other field is merged with its only widget.

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int GROUP_SIZE = 50;
constexpr size_t OBJECTS_PER_STREAM = 100;

std::string str(size_t n)
{
    return std::to_string(n);
}

std::string ref(size_t number)
{
    return str(number) + " 0 R";
}

std::string deflated(const std::string& data)
{
    uLongf size = compressBound(data.size());
    std::string out(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(data.data()), data.size(),
                  6) != Z_OK)
        std::abort();
    out.resize(size);
    return out;
}

std::string stream(const std::string& entries, const std::string& data)
{
    return "<<" + entries + "/Length " + str(data.size()) + ">>\nstream\n" + data + "\nendstream";
}

// Object number n is at index n - 1.
struct OBJECT {
    std::string body;
    bool is_stream = false;
};

class FormMaker {
public:
    explicit FormMaker(int count) : m_objects(FIRST_FREE - 1)
    {
        add_shared_objects();
        std::string groups;
        std::string pages;
        for (int done = 0; done < count; done += GROUP_SIZE)
            add_group(done, count - done < GROUP_SIZE ? count - done : GROUP_SIZE, groups, pages);
        const size_t page_count = (static_cast<size_t>(count) + GROUP_SIZE - 1) / GROUP_SIZE;
        set(CATALOG, "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>");
        set(PAGES, "<</Type/Pages/Count " + str(page_count) + "/Kids[" + pages + "]>>");
        set(FORM, "<</Fields[" + groups +
                      "]/DA(/Helv 0 Tf 0 g)/DR<</Font<</Helv 4 0 R/ZaDb 5 0 R>>/Encoding<</PDFDocEncoding"
                      "<</Type/Encoding/Differences[24/breve/caron/circumflex/dotaccent]>>>>>>>>");
    }

    const std::vector<OBJECT>& objects() const { return m_objects; }

private:
    enum : size_t { CATALOG = 1, PAGES, FORM, HELV, ZADB, TEXT_LOOK, ON_LOOK, OFF_LOOK, FIRST_FREE };

    void set(size_t number, std::string body, bool is_stream = false)
    {
        m_objects[number - 1] = {std::move(body), is_stream};
    }

    size_t reserve()
    {
        m_objects.emplace_back();
        return m_objects.size();
    }

    void add_shared_objects()
    {
        set(HELV, "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Name/Helv/Encoding/WinAnsiEncoding>>");
        set(ZADB, "<</Type/Font/Subtype/Type1/BaseFont/ZapfDingbats/Name/ZaDb>>");
        const std::string form = "/Type/XObject/Subtype/Form/Resources<</Font<</Helv 4 0 R/ZaDb 5 0 R>>>>/BBox[0 0 ";
        set(TEXT_LOOK, stream(form + "200 12]", "/Tx BMC EMC"), true);
        set(ON_LOOK, stream(form + "12 12]", "q BT /ZaDb 10 Tf 2 2 Td (4) Tj ET Q"), true);
        set(OFF_LOOK, stream(form + "12 12]", "q Q"), true);
    }

    void add_group(int first, int count, std::string& groups, std::string& pages)
    {
        const size_t page = reserve();
        m_page = ref(page);
        const size_t container = reserve();
        m_parent = ref(container);
        m_annots.clear();
        std::string kids;
        for (int i = 0; i < count; ++i) {
            const size_t number = reserve();
            kids += ref(number) + " ";
            set(number, field(first + i, i, number));
        }
        set(page, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Resources<</Font<</Helv 4 0 R>>>>/Annots[" +
                      m_annots + "]/Tabs/S>>");
        set(container, "<</T(group" + str(static_cast<size_t>(first / GROUP_SIZE)) + ")/Kids[" + kids + "]>>");
        groups += m_parent + " ";
        pages += m_page + " ";
    }

    // Field number `i` of the form, `slot` within its group, with its widgets.
    std::string field(int i, int slot, size_t number)
    {
        const std::string head = "<</T" + partial_name(i, slot) + "/Parent " + m_parent;
        switch (i % 10) {
        case 5:
        case 6:
            return head + check_box(i) + widget(slot, number);
        case 7:
            return head + radio_group(i, slot, number);
        case 8:
            return head + combo(i) + widget(slot, number);
        case 9:
            return head + list_box(i) + widget(slot, number);
        default:
            return head + text_field(i) + widget(slot, number);
        }
    }

    static std::string partial_name(int i, int slot)
    {
        const auto n = static_cast<size_t>(slot);
        if (i % 97 != 96)
            return "(field" + str(n) + ")";
        std::string name("\xFE\xFF\0f\0\xE4\0l\0t", 10);  // UTF-16
        for (char c : str(n))
            name += {'\\', '0', '0', '0', c};
        return "(" + name + ")";
    }

    // The entries of an annotation, and the end of the dictionary. Lists it on the page.
    std::string widget(int slot, size_t number)
    {
        m_annots += ref(number) + " ";
        const int left = slot % 2 ? 310 : 50;
        const int bottom = 790 - slot / 2 * 30;
        char rect[64];
        std::snprintf(rect, sizeof rect, "%d.25 %d.5 %d.25 %d.5", left, bottom, left + 200, bottom + 18);
        return std::string("/Type/Annot/Subtype/Widget/F 4/Rect[") + rect + "]/P " + m_page +
               "/BS<</W 1/S/S>>/MK<</BC[0 0.2 0.4]/BG[0.95 0.95 1]>>>>";
    }

    static std::string text_value(int i)
    {
        const std::string n = str(static_cast<size_t>(i));
        switch (i / 10 % 8) {
        case 0:
            return "/V<FEFF004C00F3006400FA1E91017C0020D83DDE00" + ("003" + n.substr(n.size() - 1)) + ">";
        case 1:
            return "";
        case 2:
            return "/DV(proposal " + n + ")";
        case 3:
            return "/V(Z\xFCrich \\(ZH\\), Bahnhofstra\\337e " + n + ")";
        case 4:
            return "/V(first line\\rsecond line of value " + n + "\\nand a \\\\ third)/DV()";
        default:
            return "/V(Value of field number " + n + ")/DV(Value)";
        }
    }

    static std::string text_field(int i)
    {
        const char* flags = i / 10 % 8 == 4 ? "/Ff 4096" : i % 40 == 1 ? "/Ff 2" : "";
        return std::string("/FT/Tx") + flags + text_value(i) +
               "/MaxLen 120/Q 0/DA(/Helv 10 Tf 0 0 0.5 rg)/TU(Please fill in)" + "/AP<</N 6 0 R>>";
    }

    static std::string check_box(int i)
    {
        const char* state = i % 3 ? "/V/Yes/AS/Yes" : i % 2 ? "/V/Off/AS/Off" : "/AS/Off";
        return std::string("/FT/Btn") + state +
               "/DA(/ZaDb 0 Tf 0 g)/AP<</N<</Yes 7 0 R/Off 8 0 R>>/D<</Yes 7 0 R/Off 8 0 R>>>>";
    }

    std::string radio_group(int i, int slot, size_t number)
    {
        std::string kids;
        for (int k = 0; k < 2; ++k) {
            const size_t kid = reserve();
            const std::string state = k ? "second" : "first";
            set(kid, "<</Parent " + ref(number) + "/AS/" + (i / 10 % 2 == k ? state : "Off") + "/AP<</N<</" + state +
                         " 7 0 R/Off 8 0 R>>>>" + widget(slot, kid));
            kids += ref(kid) + " ";
        }
        return std::string("/FT/Btn/Ff 49152/V/") + (i / 10 % 2 ? "second" : "first") +
               "/DV/first/DA(/ZaDb 0 Tf 0 g)/Kids[" + kids + "]>>";
    }

    static std::string combo(int i)
    {
        static const char* const CODES[] = {"at", "be", "ch", "de", "fr", "hu"};
        const std::string code = CODES[i / 10 % 6];
        return std::string(
                   "/FT/Ch/Ff 131072/Opt[[(at)(Austria)][(be)(Belgium)][(ch)(Switzerland)][(de)(Germany)][(fr)(France)]"
                   "[(hu)(Hungary)]]/V(") +
               code + ")/I[" + str(static_cast<size_t>(i / 10 % 6)) + "]/DA(/Helv 10 Tf 0 g)/AP<</N 6 0 R>>";
    }

    static std::string list_box(int i)
    {
        const char* value = i / 10 % 2 ? "/V[(green)(violet)]/I[1 4]" : "/V(red)/I[0]";
        return std::string("/FT/Ch/Ff 2097152/Opt[(red)(green)(blue)(yellow)(violet)]") + value +
               "/DA(/Helv 10 Tf 0 g)/AP<</N 6 0 R>>";
    }

    std::vector<OBJECT> m_objects;
    std::string m_page;  // of the group that is being made: its page, its container, the widgets so far
    std::string m_parent;
    std::string m_annots;
};

// Where one object is, as a row of a cross-reference stream: type, position or stream, generation or index.
struct ENTRY {
    int type;
    size_t place;
    size_t index;
};

std::string header()
{
    return "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
}

constexpr const char* TRAILER = "/Root 1 0 R/ID[<466f726d776f726b2062656e63682030><466f726d776f726b2062656e63682030>]";

std::string with_table(const std::vector<OBJECT>& objects)
{
    std::string out = header();
    std::string table = "xref\n0 " + str(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (size_t i = 0; i < objects.size(); ++i) {
        char row[32];
        std::snprintf(row, sizeof row, "%010zu 00000 n \n", out.size());
        table += row;
        out += str(i + 1) + " 0 obj\n" + objects[i].body + "\nendobj\n";
    }
    const size_t start = out.size();
    return out + table + "trailer\n<</Size " + str(objects.size() + 1) + TRAILER + ">>\nstartxref\n" + str(start) +
           "\n%%EOF\n";
}

// Appends an object stream that holds the objects with these numbers, and notes where they are.
void add_object_stream(std::string& out, const std::vector<OBJECT>& objects, const std::vector<size_t>& numbers,
                       std::vector<ENTRY>& entries)
{
    const size_t own = entries.size();
    std::string index;
    std::string bodies;
    for (size_t i = 0; i < numbers.size(); ++i) {
        index += str(numbers[i]) + " " + str(bodies.size()) + " ";
        bodies += objects[numbers[i] - 1].body + "\n";
        entries[numbers[i]] = {2, own, i};
    }
    entries.push_back({1, out.size(), 0});
    out += str(own) + " 0 obj\n" +
           stream("/Type/ObjStm/Filter/FlateDecode/N " + str(numbers.size()) + "/First " + str(index.size()),
                  deflated(index + bodies)) +
           "\nendobj\n";
}

// The rows with the PNG predictor "Up" in front of each.
std::string predicted_rows(const std::vector<ENTRY>& entries)
{
    std::string rows;
    unsigned char above[7] = {};
    for (const ENTRY& entry : entries) {
        unsigned char row[7] = {static_cast<unsigned char>(entry.type)};
        for (int i = 0; i < 4; ++i)
            row[1 + i] = static_cast<unsigned char>(entry.place >> (24 - 8 * i));
        row[5] = static_cast<unsigned char>(entry.index >> 8);
        row[6] = static_cast<unsigned char>(entry.index);
        rows += '\2';
        for (int i = 0; i < 7; ++i)
            rows += static_cast<char>(row[i] - above[i]);
        std::memcpy(above, row, sizeof row);
    }
    return rows;
}

std::string with_object_streams(const std::vector<OBJECT>& objects)
{
    std::string out = header();
    std::vector<ENTRY> entries(objects.size() + 1, ENTRY{0, 0, 65535});
    std::vector<size_t> packed;
    for (size_t number = 1; number <= objects.size(); ++number) {
        if (objects[number - 1].is_stream) {
            entries[number] = {1, out.size(), 0};
            out += str(number) + " 0 obj\n" + objects[number - 1].body + "\nendobj\n";
            continue;
        }
        packed.push_back(number);
        if (packed.size() == OBJECTS_PER_STREAM) {
            add_object_stream(out, objects, packed, entries);
            packed.clear();
        }
    }
    if (!packed.empty())
        add_object_stream(out, objects, packed, entries);
    const size_t start = out.size();
    const size_t own = entries.size();
    entries.push_back({1, start, 0});
    return out + str(own) + " 0 obj\n" +
           stream("/Type/XRef/Size " + str(entries.size()) + "/W[1 4 2]" + TRAILER +
                      "/Filter/FlateDecode/DecodeParms<</Predictor 12/Columns 7>>",
                  deflated(predicted_rows(entries))) +
           "\nendobj\nstartxref\n" + str(start) + "\n%%EOF\n";
}

}  // namespace

int main(int argc, char** argv)
{
    const bool packed = argc == 4 && std::strcmp(argv[3], "--object-streams") == 0;
    const int count = argc > 1 ? std::atoi(argv[1]) : 0;
    if (count < 1 || argc < 3 || (argc > 3 && !packed)) {
        std::fprintf(stderr, "usage: make_form COUNT OUT.pdf [--object-streams]\n");
        return 2;
    }
    const FormMaker form(count);
    const std::string bytes = packed ? with_object_streams(form.objects()) : with_table(form.objects());
    FILE* file = std::fopen(argv[2], "wb");
    const bool written = file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (!file || std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "make_form: can't write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
