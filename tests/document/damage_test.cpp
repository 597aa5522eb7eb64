// Damaged copies of real files: nothing may crash, take ten seconds of processor time or a gibibyte, or lose a value when it is
// saved.
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <random>

#include "fuzz/open_form_check.h"
#include "tests/support/pdf_builder.h"
#include "tests/support/processor_time.h"

namespace {
constexpr unsigned SECONDS = 10;
constexpr rlim_t MEMORY = rlim_t{1} << 30;

// Bounds the memory of the program while it lives; the sanitizer's own has no bound.
class DamageTest : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override
    {
#if !defined(__SANITIZE_ADDRESS__)
        size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        bound_memory(pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + MEMORY);
#endif
    }
    void TearDown() override
    {
        bound_memory(RLIM_INFINITY);
    }

private:
    static void bound_memory(rlim_t bytes)
    {
        const rlimit bound = {bytes, RLIM_INFINITY};
        ASSERT_EQ(::setrlimit(RLIMIT_AS, &bound), 0);
    }
};

// Names what is being opened where a crash shows it last, and lets it run for so long.
void begin_variant(const std::string& label)
{
    std::fprintf(stderr, "opening %s\n", label.c_str());
    bound_processor_time(SECONDS);
}

// Positions of bytes that belong to the structure, not to the data of a stream.
std::vector<size_t> structure_of(const std::string& text)
{
    std::vector<size_t> positions;
    for (size_t at = 0; at < text.size();) {
        size_t data = text.find("stream\n", at);
        data = std::min(data == std::string::npos ? text.size() : data + 7, text.size());
        for (; at < data; ++at)
            positions.push_back(at);
        at = text.find("endstream", data);
    }
    return positions;
}

void open_variant(const std::string& label, const std::string& text)
{
    begin_variant(label);
    const char* fault = open_form_fault({text.begin(), text.end()}, 4);
    bound_processor_time(0);
    EXPECT_STREQ(fault, nullptr) << label;
}

void open_damaged(const std::string& path)
{
    const std::string text = read_text_file(path);
    const bool large = text.size() > 1000000;
    const size_t cuts = large ? 8 : 40;
    const size_t flips = large ? 12 : 60;
    for (size_t i = 0; i < cuts; ++i) {
        const size_t size = text.size() * i / cuts;
        open_variant(path + ", cut to " + std::to_string(size) + " bytes", text.substr(0, size));
    }
    const std::vector<size_t> structure = structure_of(text);
    std::minstd_rand random(static_cast<unsigned>(text.size()));
    for (size_t i = 0; i < flips; ++i) {
        const size_t at = i % 4 ? structure[random() % structure.size()] : random() % text.size();
        std::string flipped = text;
        flipped[at] = static_cast<char>(flipped[at] ^ (1u << random() % 8));
        open_variant(path + ", byte " + std::to_string(at) + " flipped to " + std::to_string(flipped[at]), flipped);
    }
    open_variant(path, text);
}
}  // namespace

// Many references to one thing that takes long, or much memory, to read: the work for all of them has a bound.
TEST_F(DamageTest, SharedThingsTakeNoTime)
{
    constexpr uint32_t FIRST = 100;
    constexpr uint32_t COUNT = 20000;
    std::string kids;
    for (uint32_t num = FIRST; num < FIRST + COUNT; ++num)
        kids += std::to_string(num) + " 0 R ";
    // A form whose kids are all at `here`, or the objects that `kid` spells.
    const auto form = [&kids](PdfBuilder file, uint32_t here, const std::string& kid = "") {
        file.form({"<</T(group)/Kids[" + kids + "]>>"});
        for (uint32_t num = FIRST; num < FIRST + COUNT; ++num)
            kid.empty() ? file.entry(num, PDF_XREF_IN_FILE, here, 0) : file.object(num, kid);
        return file;
    };
    PdfBuilder large;
    const uint32_t here = large.here();
    const std::string zeros = repeated("0 ", LIMIT_OBJECT_VALUES);
    PdfBuilder packed = form(large, here);
    std::string places;
    for (uint32_t num = FIRST; num < FIRST + COUNT; ++num) {
        packed.entry(num, PDF_XREF_IN_STREAM, 7, num - FIRST);
        places += std::to_string(num) + " 0 ";
    }
    PdfBuilder searched = packed;
    const std::string first = "/N 99999999/First " + std::to_string(places.size());
    PdfBuilder nested;
    std::string trailers;
    for (size_t i = 1; i < 60000; ++i) {
        const std::string next = "xref\n0 0\ntrailer<</Prev " + std::to_string(here + i * 64) + "/A(";
        trailers += next + std::string(64 - next.size(), ' ');
    }
    nested.raw(trailers + repeated(")", 60000) + ">>\n").object(1, "<</AcroForm 77 0 R>>");
    const std::pair<const char*, std::string> cases[] = {
        {"white space", form(PdfBuilder().raw(std::string(4000000, ' ')), here).table().text},
        {"an object over the limits", packed.stream(7, first, places + "[" + zeros + "0]").xref_stream(9).text},
        {"a value",
         form(PdfBuilder().object(8, "[" + zeros.substr(0, 600000) + "]"), 0, "<</FT/Ch/T(a)/V 8 0 R>>").table().text},
        {"options", form(PdfBuilder().object(8, "[" + repeated("(o)", 300000) + "]"), 0, "<</FT/Ch/T(a)/Opt 8 0 R>>")
                        .table()
                        .text},
        {"the end of streams", form(large, 0, "<<>>stream").raw(std::string(8000000, ' ')).table().text},
        {"an object stream", searched.stream(7, first, repeated("1 0 ", 2000000) + places).xref_stream(9).text},
        {"the end of trailers", nested.table("/Prev " + std::to_string(here)).text},
    };
    for (const auto& [label, text] : cases) {
        begin_variant(std::string("a file that shares ") + label);
        CPDFDocument document;
        document.set_rescue(PDF_RESCUE::OFF);
        const PDF_CODE code = document.open(std::vector<uint8_t>(text.begin(), text.end())).code;
        EXPECT_TRUE(code == PDF_CODE::OK || code == PDF_CODE::LIMIT) << label;
        bound_processor_time(0);
    }
}

TEST_P(DamageTest, DamagedCopiesOpenOrAreRefused)
{
    open_damaged(GetParam());
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DamageTest);
INSTANTIATE_TEST_SUITE_P(Samples, DamageTest, testing::ValuesIn(pdf_files(FORMWORK_SAMPLES_DIR)), file_label);
INSTANTIATE_TEST_SUITE_P(RealFiles, DamageTest, testing::ValuesIn(corpus_sample()), file_label);
