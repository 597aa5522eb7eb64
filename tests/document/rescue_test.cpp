// Damaged files whose repaired copy takes their place.
#include <sys/wait.h>

#include <atomic>
#include <thread>

#include "fuzz/open_form_check.h"
#include "tests/support/pdf_builder.h"

namespace {
using Bytes = std::vector<uint8_t>;

Bytes bytes_of(const std::string& text)
{
    return {text.begin(), text.end()};
}

// `file` with `with` written over the bytes behind the last `word`.
std::string overwritten(std::string file, const std::string& word, const std::string& with, size_t behind)
{
    return file.replace(file.rfind(word) + behind, with.size(), with);
}

std::string small_form()
{
    return PdfBuilder().form({"<</FT/Tx/T(a)/V(one)>>", "<</FT/Tx/T(b)/V(two)>>"}).table().text;
}

// The small form with a wrong place of object 11, which is the field b.
std::string misplaced_field()
{
    std::string file = small_form();
    const std::string place = std::to_string(file.find("11 0 obj"));
    const std::string entry = std::string(10 - place.size(), '0') + place + " 00000 n";
    return overwritten(file, entry, "0000000003", 0);
}

std::map<std::string, std::string> values_of(CPDFDocument& document)
{
    std::map<std::string, std::string> values;
    for_each_field(document.form(), [&values](CPDFField& field) {
        if (const PDF_String* value = field.m_type == FIELD_TEXT ? field.get_edit_value() : nullptr)
            values[full_name(field)] = utf8_of(*value);
    });
    return values;
}

const std::map<std::string, std::string> SMALL_VALUES = {{"a", "one"}, {"b", "two"}};
}  // namespace

TEST(RescueTest, TheRepairedCopyTakesThePlaceOfTheFile)
{
    std::string shifted = small_form();
    for (size_t at = shifted.rfind("xref\n0"); (at = shifted.find(" 00000 n", at)) != std::string::npos; ++at)
        shifted[at - 2] = static_cast<char>('0' + (shifted[at - 2] - '0' + 5) % 10);
    const std::string packed = PdfBuilder()
                                   .object(1, "<</AcroForm 3 0 R>>")
                                   .object(3, "<</Fields[10 0 R 11 0 R]>>")
                                   .object_stream(5, {{10, "<</FT/Tx/T(a)/V(one)>>"}, {11, "<</FT/Tx/T(b)/V(two)>>"}})
                                   .entry(3, PDF_XREF_IN_FILE, 9, 0)
                                   .xref_stream(7)
                                   .text;
    const std::string form = small_form();
    const std::pair<const char*, std::string> cases[] = {
        {"a wrong startxref", overwritten(form, "startxref", "\n7\n", 9)},
        {"the place of the form wrong, with object streams", packed},
        {"no end", form.substr(0, form.rfind("startxref"))},
        {"every place wrong", shifted},
        {"one place wrong", misplaced_field()},
    };
    for (const auto& [label, text] : cases) {
        SCOPED_TRACE(label);
        CPDFDocument document;
        const CPDFStatus status = document.open(bytes_of(text));
        ASSERT_TRUE(status.ok()) << status.text;
        EXPECT_EQ(values_of(document), SMALL_VALUES);
        EXPECT_NE(document.rescue_note().find("; its repaired copy is used"), std::string::npos);
        ASSERT_TRUE(document.set_text(*document.field("b"), "three").ok());
        Bytes saved;
        ASSERT_TRUE(document.save(saved).ok());
        EXPECT_TRUE(std::equal(document.data(), document.data() + document.size(), saved.begin()));
        CPDFDocument again;
        ASSERT_TRUE(again.open(saved).ok());
        EXPECT_EQ(again.rescue_note(), "");
        EXPECT_EQ(utf8_of(*again.field("b")->get_edit_value()), "three");
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
}

TEST(RescueTest, WhatCannotBeRepairedIsRefusedOrLeftAsItIs)
{
    const std::string form = small_form();
    const std::pair<std::string, const char*> refused[] = {
        {"%PDF-1.7\nnothing", "it can't be repaired: "},
        {form.substr(0, form.rfind("trailer")), "it can't be repaired: "},
        {"nothing", "this is not a PDF file"},
        {"", "this is not a PDF file"},
    };
    for (const auto& [text, sentence] : refused) {
        CPDFDocument document;
        const CPDFStatus status = document.open(bytes_of(text));
        EXPECT_FALSE(status.ok());
        EXPECT_NE(status.text.find(sentence), std::string::npos) << status.text;
    }
    // The form dictionary is lost, for qpdf too.
    std::string lost = form;
    lost.replace(lost.find("3 0 obj"), 7, "X X XXX");
    CPDFDocument without_form;
    EXPECT_EQ(without_form.open(bytes_of(lost)).code, PDF_CODE::DAMAGED);
    // One field is lost; the file stays as it is, with the other one.
    std::string one_left = form;
    one_left.replace(one_left.find("11 0 obj"), 8, "XX X XXX");
    CPDFDocument left;
    ASSERT_TRUE(left.open(bytes_of(one_left)).ok());
    EXPECT_EQ(left.rescue_note(),
              "the file is damaged: object 11 can't be read; its repaired copy has no more of the form");
    EXPECT_EQ(std::string(left.data(), left.data() + left.size()), one_left);
    EXPECT_EQ(values_of(left).size(), 1u);
    for (const PDF_RESCUE rescue : {PDF_RESCUE::OFF, PDF_RESCUE::REPAIR}) {
        CPDFDocument document;
        document.set_rescue(rescue);
        ASSERT_TRUE(document.open(bytes_of(rescue == PDF_RESCUE::OFF ? misplaced_field() : form)).ok());
        EXPECT_EQ(document.rescue_note(), "");
        EXPECT_EQ(values_of(document).size(), rescue == PDF_RESCUE::OFF ? 1u : 2u);
        EXPECT_FALSE(document.mend());
    }
    CPDFDocument off;
    off.set_rescue(PDF_RESCUE::OFF);
    EXPECT_EQ(off.open(bytes_of(overwritten(form, "startxref", "\n7\n", 9))).code, PDF_CODE::DAMAGED);
}

TEST(RescueTest, DamageFoundLaterIsMendedOnRequest)
{
    CPDFDocument document;
    ASSERT_TRUE(document.open(bytes_of(misplaced_field()), PDF_LOAD::NAMED_FIELDS).ok());
    EXPECT_TRUE(document.field("a"));
    document.field("b");
    EXPECT_TRUE(document.mend());
    EXPECT_FALSE(document.mend());
    ASSERT_TRUE(document.field("b"));
    EXPECT_EQ(utf8_of(*document.field("b")->get_edit_value()), "two");
}

TEST(RescueTest, ThreadsRepairAtOnce)
{
    std::atomic<int> good = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&good] {
            CPDFDocument document;
            good += document.open(bytes_of(misplaced_field())).ok() && values_of(document) == SMALL_VALUES;
        });
    threads.clear();
    EXPECT_EQ(good, 4);
}
