// What a hostile file may cost, measured on the command: two seconds of one processor and 256 MiB for a file of 1 MB.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <gmock/gmock.h>

#include "core/alloc.h"
#include "file/filter/compress.h"
#include "tests/tools/command_run.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
constexpr bool IS_MEASURED = false;  // checked code is slow, and keeps its memory
constexpr rlim_t MOST_SECONDS = 40;
#else
constexpr bool IS_MEASURED = true;
constexpr rlim_t MOST_SECONDS = 2;
#endif
constexpr long MOST_KIB = 256 << 10;
constexpr size_t MIB = size_t{1} << 20;

struct Cost {
    int status;
    rusage used;
};

Cost run_bounded(const std::vector<std::string>& arguments)
{
    std::vector<char*> words;
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit seconds = {MOST_SECONDS, MOST_SECONDS};
        const rlimit bytes = {512 * MIB, 512 * MIB};  // room that is asked for and not used counts here
        const int null = ::open("/dev/null", O_RDWR);
        ::dup2(null, STDOUT_FILENO);
        ::dup2(null, STDERR_FILENO);
        if (::setrlimit(RLIMIT_CPU, &seconds) == 0 && (!IS_MEASURED || ::setrlimit(RLIMIT_DATA, &bytes) == 0))
            ::execv(FORMWORK_COMMAND, words.data());
        ::_exit(127);
    }
    Cost cost = {};
    ::wait4(child, &cost.status, 0, &cost.used);
    return cost;
}

std::string flate(const std::string& data)
{
    size_t size = 0;
    const VXBlock<unsigned char> packed(flate_compress(data.data(), data.size(), size));
    return {packed.get(), packed.get() + size};
}

// One byte, then ever longer sequences of it, the longest of which goes on for `codes` codes.
std::string lzw(size_t codes)
{
    std::string out;
    uint64_t bits = 0;
    unsigned held = 0;
    unsigned width = 9;
    const auto put = [&](uint64_t code) {
        bits = bits << width | code;
        for (held += width; held >= 8; held -= 8)
            out += static_cast<char>(bits >> (held - 8));
    };
    put(256);
    put('a');
    for (unsigned next = 258; next < 4096; ++next) {
        width = next + 2 > 1u << width && width < 12 ? width + 1 : width;
        put(next);
    }
    for (size_t i = 0; i < codes; ++i)
        put(4095);
    return out + std::string(2, '\0');
}

constexpr const char* PLAIN = "<</FT/Tx/T(a)/V(x)/Subtype/Widget/Rect[0 0 90 20]/DA(/Helv 0 Tf)>>";

std::string widget(const std::string& entries)
{
    return "<</FT/Tx/Ff 4096/Subtype/Widget/Rect[0 0 600 700]/DA(/Helv 0 Tf)" + entries + ">>";
}

// The names of `count` objects from 10 on.
std::string names_of(size_t count)
{
    std::string names;
    for (size_t i = 0; i < count; ++i)
        names += std::to_string(10 + i) + " 0 R ";
    return names;
}

// A form whose catalog, form, page and one plain field are objects 1 to 5; `count` objects from 10 on are fields and widgets.
PdfBuilder form_of(size_t count, const std::string& form_entries = "")
{
    const std::string fields = "5 0 R " + names_of(count);
    PdfBuilder file;
    file.object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>");
    file.object(2, "<</Type/Pages/Count 1/Kids[4 0 R]>>").object(3, "<</Fields[" + fields + "]" + form_entries + ">>");
    file.object(4, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Annots[" + fields + "]>>").object(5, PLAIN);
    return file;
}

// `count` fields whose values are in streams of their own.
std::string values(size_t count, const std::string& entries, const std::string& data)
{
    PdfBuilder file = form_of(count);
    for (uint32_t i = 0; i < count; ++i) {
        file.object(10 + i, widget("/T(b" + std::to_string(i) + ")/V " + std::to_string(50000 + i) + " 0 R"));
        file.stream(50000 + i, entries, data);
    }
    return file.table().text;
}

// Fields that name one object each, which is in turn `text`.
std::string same_for_all(uint32_t count, const std::string& entries, const std::string& text)
{
    PdfBuilder file = form_of(count, "/NeedAppearances true");
    file.object(6, text);
    for (uint32_t i = 0; i < count; ++i)
        file.object(10 + i, widget("/T(c" + std::to_string(i) + ")" + entries));
    return file.table().text;
}

// One field in each of `count` object streams, which unpack to `size` bytes.
std::string object_streams(uint32_t count, size_t size, bool twice)
{
    PdfBuilder file = form_of(count);
    for (uint32_t i = 0; i < count; ++i) {
        const std::string head = std::to_string(10 + i) + " 0 ";
        std::string data = flate(head + "<</FT/Tx/T(f" + std::to_string(i) + ")>>" + std::string(size, ' '));
        file.stream(50000 + i,
                    "/Type/ObjStm/N 1/First " + std::to_string(head.size()) +
                        (twice ? "/Filter[/FlateDecode/FlateDecode]" : "/Filter/FlateDecode"),
                    twice ? flate(data) : data);
        file.entry(10 + i, PDF_XREF_IN_STREAM, 50000 + i, 0);
    }
    return file.xref_stream(90000).text;
}

// Each of 100 objects names the next one twice, the last one the first.
std::string doubled(const std::string& entries)
{
    PdfBuilder file = form_of(1);
    for (uint32_t i = 0; i < 100; ++i) {
        const std::string next = std::to_string(10 + (i + 1) % 100) + " 0 R ";
        file.object(10 + i, "<</T(x)/FT/Tx" + entries + "/Kids[" + next + next + "]>>");
    }
    return file.table().text;
}

std::string sections_of_zeros()
{
    PdfBuilder file = form_of(0);
    const std::string bomb = flate(std::string(16 * MIB, '\0'));
    std::string prev;
    for (uint32_t i = 0; i < 55; ++i) {
        const std::string at = "/Prev " + std::to_string(file.here());
        file.stream(900 + i, "/Type/XRef/W[1 1 1]/Index[100 99999999]/Size 9/Root 1 0 R/Filter/FlateDecode" + prev,
                    bomb);
        prev = at;
    }
    return file.table(prev).text;
}

std::string chain_of_sections()
{
    PdfBuilder file = form_of(0);
    for (int i = 0; i < 8000; ++i)
        file.table();
    return file.text;
}

std::string fonts()
{
    std::string names;
    for (int i = 0; i < 60; ++i)
        names += "/F" + std::to_string(i) + " " + std::to_string(500 + i) + " 0 R";
    PdfBuilder file = form_of(60, "/NeedAppearances true/DR<</Font<<" + names + ">>>>");
    for (uint32_t i = 0; i < 60; ++i) {
        const std::string num = std::to_string(i);
        file.object(10 + i, "<</FT/Tx/V(v)/Subtype/Widget/Rect[0 0 90 90]/T(c" + num + ")/DA(/F" + num + " 9 Tf)>>");
        file.object(500 + i,
                    "<</Type/Font/Subtype/Type0/Encoding/Identity-H/ToUnicode 6 0 R/DescendantFonts[<</Type/Font"
                    "/Subtype/CIDFontType2/FontDescriptor<</FontFile2 7 0 R>>/CIDToGIDMap 7 0 R>>]>>");
    }
    file.stream(6, "/Filter/FlateDecode", flate(repeated("1 beginbfrange <0000> <ffff> <0000> endbfrange ", 100000)));
    return file.stream(7, "/Filter/FlateDecode", flate(std::string(64 * MIB, '\0'))).table().text;
}

// Many fields that have `entries` from the one above them, "g", which is calculated in the order `order`.
std::string under_one(uint32_t count, const std::string& entries, const std::string& order = "")
{
    PdfBuilder file = form_of(0);
    for (uint32_t i = 0; i < count; ++i)
        file.object(10 + i, "<</Parent 6 0 R/T(k" + std::to_string(i) + ")>>");
    file.object(3, "<</Fields[5 0 R 6 0 R]/CO[" + order + "]>>");
    return file.object(6, "<</T(g)" + entries + "/Kids[" + names_of(count) + "]>>").table().text;
}

std::string script(const std::string& text)
{
    return "<</S/JavaScript/JS(" + text + ")>>";
}

std::string sum_of(const std::string& names)
{
    return "/FT/Tx/AA<</C" + script("AFSimple_Calculate('SUM',[" + names + "])") + ">>";
}

struct Hostile {
    const char* name;
    std::string (*make)();
    const char* verbs;
};

const Hostile FILES[] = {
    {"deep array", [] { return same_for_all(1, "/V " + std::string(490000, '['), "null"); }, "list"},
    {"deep kids",
     [] {
         PdfBuilder file = form_of(1);
         for (uint32_t i = 10; i < 15000; ++i)
             file.object(i, "<</T(d)/FT/Tx/Kids[" + std::to_string(i + 1) + " 0 R]>>");
         return file.table().text;
     },
     "list export"},
    {"kids twice and in a circle", [] { return doubled(""); }, "list fill export"},
    {"pages twice and in a circle",
     [] {
         PdfBuilder file = form_of(0);
         file.object(2, "<</Type/Pages/Kids[4 0 R 2 0 R 2 0 R 4 0 R]>>");
         return file.table().text;
     },
     "list flatten"},
    {"huge counts",
     [] {
         PdfBuilder file = form_of(0);
         std::string text = file.table("/Size 2147483647").text;
         return text.replace(text.find("\n0 "), 4, "\n0 4294967295 ");
     },
     "list fill"},
    {"sections in a row", chain_of_sections, "list fill"},
    {"section in a circle",
     [] {
         PdfBuilder file = form_of(0);
         return file.table("/Prev " + std::to_string(file.here())).text;
     },
     "list fill"},
    {"sections of zeros", sections_of_zeros, "list fill"},
    {"object streams in a circle",
     [] {
         PdfBuilder file = form_of(1);
         file.object_stream(50, {{10, PLAIN}});
         file.entry(50, PDF_XREF_IN_STREAM, 51, 0).entry(51, PDF_XREF_IN_STREAM, 50, 0);
         return file.xref_stream(60).text;
     },
     "list fill"},
    {"object streams", [] { return object_streams(40, 4 * MIB, false); }, "list fill export"},
    {"object streams, twice", [] { return object_streams(60, 16 * MIB, true); }, "list export"},
    {"a million options", [] { return same_for_all(1, "/FT/Ch/V(a)/Opt 6 0 R", "[" + repeated("()", 1000000) + "]"); },
     "list fill export flatten"},
    {"shared options", [] { return same_for_all(4000, "/FT/Ch/Opt 6 0 R", "[" + repeated("(o)", 100000) + "]"); },
     "list"},
    {"options of one above", [] { return under_one(1200, "/FT/Ch/Opt[" + repeated("(\\7\\7\\7)", 50000) + "]"); },
     "list"},
    {"a long name above many",
     [] {
         PdfBuilder file = form_of(0);
         for (uint32_t i = 0; i < 8000; ++i)
             file.object(10 + i, "<</Parent 6 0 R/FT/Tx/T(k" + std::to_string(i) + ")>>");
         file.object(3, "<</Fields[5 0 R 6 0 R]>>");
         return file.object(6, "<</T(" + std::string(400000, 'L') + ")/Kids[" + names_of(8000) + "]>>").table().text;
     },
     "list fill export"},
    {"a default of one above", [] { return under_one(9000, "/FT/Tx/DV(" + std::string(25000, 'd') + ")"); }, "reset"},
    {"scripts",
     [] {
         const std::string shared = "<</S/JavaScript/JS 6 0 R>>";
         PdfBuilder file = form_of(800);
         file.stream(6, "/Filter/FlateDecode", flate(std::string(400 * MIB, 's')));
         for (uint32_t i = 0; i < 800; ++i)
             file.object(10 + i, "<</FT/Tx/T(c)/AA<</K" + shared + "/F" + shared + ">>>>");
         return file.table().text;
     },
     "actions"},
    {"sums of all by all", [] { return under_one(8000, sum_of("'g'") + "/V(1)", names_of(8000)); }, "fill calculate"},
    {"sum of a name, often", [] { return under_one(8000, sum_of(repeated("'g',", 9000) + "'g'"), names_of(1)); },
     "fill calculate"},
    {"one sum, often",
     [] { return under_one(1, sum_of(repeated("'n',", 9000) + "'n'"), repeated(names_of(1), 100000)); }, "calculate"},
    {"one long script",
     [] {
         return same_for_all(7000, "/V(1)/AA<</K 6 0 R/F 6 0 R>>",
                             script("AFNumber_Format(0,0,0,0,'" + std::string(250000, '$') + "',true)"));
     },
     "list fill flatten"},
    {"scripts of many arguments",
     [] {
         PdfBuilder file = form_of(1);
         std::string rows[4];
         for (uint32_t i = 0; i < 4000; ++i) {
             rows[i % 4] += "<</S/JavaScript/JS " + std::to_string(5000 + i) + " 0 R>>";
             file.stream(5000 + i, "/Filter/FlateDecode",
                         flate("AFNumber_Format(" + std::to_string(i) + repeated(",''", 9000) + ")"));
         }
         std::string actions;
         for (size_t i = 0; i < 4; ++i)
             actions += std::string("/") + "KFVC"[i] + "<</S/Named/Next[" + rows[i] + "]>>";
         return file.object(10, "<</FT/Tx/T(c)/V(1)/AA<<" + actions + ">>>>").table().text;
     },
     "list"},
    {"scripts in rows",
     [] {
         const std::string next = script("AFNumber_Format(0,0,0,0,'',1)");
         return same_for_all(7000, "/V(1)/AA<</K 6 0 R/F 6 0 R>>",
                             "<</S/JavaScript/JS()/Next[" + repeated(next, 999) + "]>>");
     },
     "list fill actions"},
    {"flate", [] { return values(1, "/Filter/FlateDecode", flate(std::string(400 * MIB, 'a'))); }, "export flatten"},
    {"flate, many", [] { return values(200, "/Filter/FlateDecode", flate(std::string(4 * MIB, 'a'))); },
     "export flatten"},
    {"flate in flate",
     [] { return values(100, "/Filter[/FlateDecode/FlateDecode]", flate(flate(std::string(64 * MIB, 'a')))); },
     "export"},
    {"predictor",
     [] {
         return values(1, "/Filter/FlateDecode/DecodeParms<</Predictor 2/Columns 8000/BitsPerComponent 1>>",
                       flate(std::string(400 * MIB, 'a')));
     },
     "export"},
    {"lzw", [] { return values(1, "/Filter/LZWDecode", lzw(640000)); }, "export"},
    {"ascii85", [] { return values(1, "/Filter/ASCII85Decode", std::string(MIB, 'z')); }, "export"},
    {"ascii85 in flate",
     [] { return values(1, "/Filter[/FlateDecode/ASCII85Decode]", flate(std::string(200 * MIB, 'z'))); },
     "export flatten"},
    {"run length",
     [] {
         return values(1, "/Filter[/RunLengthDecode/RunLengthDecode]",
                       repeated("\x81"
                                "a",
                                490000));
     },
     "export"},
    {"fonts", fonts, "fill"},
    {"long texts", [] { return same_for_all(7000, "/V 6 0 R", "(" + repeated("long text of words ", 10000) + ")"); },
     "fill"},
    {"one long text",
     [] {
         PdfBuilder file = form_of(8000);
         file.object(3, "<</NeedAppearances true/Fields[5 0 R 6 0 R]>>");
         file.object(6, "<</FT/Tx/Ff 4096/T(m)/DA(/Helv 0 Tf)/V(" + repeated("long text of words ", 10000) + ")/Kids[" +
                            names_of(8000) + "]>>");
         for (uint32_t i = 0; i < 8000; ++i)
             file.object(10 + i, "<</Parent 6 0 R/Subtype/Widget/Rect[0 0 " + std::to_string(600 + i % 97) + " 700]>>");
         return file.table().text;
     },
     "fill flatten"},
};

class BoundsTest : public testing::TestWithParam<Hostile> {
protected:
    void expect_bounded(const std::string& verb, const std::string& form)
    {
        const std::string out = folder.path("out.pdf");
        std::vector<std::string> arguments = {FORMWORK_COMMAND, verb == "flatten" ? "fill" : verb, form};
        if (verb == "list")
            arguments.emplace_back("--json");
        else if (verb == "export")
            arguments.insert(arguments.end(), {"--as", "json"});
        else if (verb == "reset" || verb == "calculate")
            arguments.insert(arguments.end(), {"-o", out});
        else if (verb != "actions")
            arguments.insert(arguments.end(), {"a=new", "-o", out});
        if (verb == "flatten")
            arguments.emplace_back("--flatten");
        const Cost cost = run_bounded(arguments);
        EXPECT_TRUE(WIFEXITED(cost.status) && WEXITSTATUS(cost.status) <= 1) << verb << ": status " << cost.status;
        if (IS_MEASURED) {
            EXPECT_LE(cost.used.ru_maxrss, MOST_KIB) << verb;
        }
    }

    CommandFolder folder;
};

TEST_P(BoundsTest, TimeAndMemory)
{
    const std::string form = folder.write("hostile.pdf", GetParam().make());
    for (const std::string& verb : split(GetParam().verbs, ' '))
        expect_bounded(verb, form);
}

std::string label(const testing::TestParamInfo<Hostile>& file)
{
    std::string text;
    for (const char c : std::string(file.param.name))
        text += c == ' ' ? "_" : c == ',' ? "" : std::string(1, c);
    return text;
}

INSTANTIATE_TEST_SUITE_P(Files, BoundsTest, testing::ValuesIn(FILES), label);

TEST_F(BoundsTest, TwoGibibytesOfNothing)
{
    std::string text = form_of(0).table().text;
    const size_t table = text.find("xref\n0");
    const std::string form = folder.write("sparse.pdf", text.substr(0, table));
    std::filesystem::resize_file(form, 2048 * MIB);
    std::string end = text.substr(table);
    end.replace(end.find("startxref"), std::string::npos, "startxref\n2147483648\n%%EOF\n");
    std::ofstream(form, std::ios::app | std::ios::binary) << end;
    expect_bounded("list", form);
    expect_bounded("export", form);
}

}  // namespace
