// What could be read can be read after a fill, however near to the limits of work the file was.
#include <gmock/gmock.h>

#include "core/alloc.h"
#include "document/document.h"
#include "file/filter/compress.h"
#include "forms/acro_form.h"
#include "forms/field_walk.h"
#include "tests/support/pdf_builder.h"

namespace {

std::vector<uint8_t> file_of(const PdfBuilder& file)
{
    return {file.text.begin(), file.text.end()};
}

std::string refs(const std::string& ref, size_t times)
{
    return "5 0 R " + repeated(ref + " 0 R ", times);
}

std::vector<uint8_t> one_object_under_many_names(size_t size)
{
    PdfBuilder file;
    file.object(1, "<</Type/Catalog/AcroForm<</Fields[" + refs("6", 5000) + "]>>>>").object(5, "<</FT/Tx/T(a)>>");
    return file_of(file.object(6, "<</FT/Tx/T(b)/V(" + std::string(size, 'v') + ")>>").table());
}

// Fields from 10 on, `entries` each, in object streams that hold every fifth one and `padding` further bytes.
std::vector<uint8_t> in_turns(uint32_t count, const std::string& entries, const std::string& shared, size_t padding)
{
    constexpr uint32_t STREAMS = 5;
    PdfBuilder file;
    std::string fields = "5 0 R ";
    for (uint32_t i = 0; i < count; ++i)
        fields += std::to_string(10 + i) + " 0 R ";
    file.object(1, "<</Type/Catalog/AcroForm<</Fields[" + fields + "]>>>>").object(5, "<</FT/Tx/T(a)>>");
    file.object(6, shared);
    for (uint32_t s = 0; s < STREAMS; ++s) {
        std::string head;
        std::string body;
        for (uint32_t i = s; i < count; i += STREAMS) {
            file.entry(10 + i, PDF_XREF_IN_STREAM, 8000 + s, i / STREAMS);
            head += std::to_string(10 + i) + " " + std::to_string(body.size()) + " ";
            body += "<</T(f" + std::to_string(i) + ")" + entries + ">> ";
        }
        const std::string data = head + body + std::string(padding, ' ');
        size_t packed = 0;
        const VXBlock<unsigned char> bytes(flate_compress(data.data(), data.size(), packed));
        file.stream(8000 + s,
                    "/Type/ObjStm/Filter/FlateDecode/N " + std::to_string(count / STREAMS) + "/First " +
                        std::to_string(head.size()),
                    {bytes.get(), bytes.get() + packed});
    }
    return file_of(file.xref_stream(9900));
}

std::vector<uint8_t> shared_options(size_t size)
{
    return in_turns(500, "/FT/Ch/Ff 393216/Opt 6 0 R", "[" + repeated("(o)", size / 3) + "]", 1 << 16);
}

std::vector<uint8_t> shared_text(size_t size)
{
    return in_turns(500, "/FT/Tx/V 6 0 R", "(" + std::string(size, 'v') + ")", 1 << 16);
}

std::vector<uint8_t> streams_in_turns(size_t size)
{
    return in_turns(500, "/FT/Tx", "null", size);
}

bool is_readable(const std::vector<uint8_t>& file)
{
    return CPDFDocument().open(file).ok();
}

struct HeavyFile {
    std::vector<uint8_t> (*make)(size_t);
    size_t step;  // no size above twice this is readable
};

// The largest size with which the file is readable, almost.
size_t largest_readable(const HeavyFile& heavy)
{
    size_t good = 0;
    for (size_t step = heavy.step; step > good / 200; step /= 2) {
        if (is_readable(heavy.make(good + step)))
            good += step;
    }
    return good;
}

class RefillTest : public testing::TestWithParam<HeavyFile> {};

TEST_P(RefillTest, WhatCouldBeReadCanBeReadAgain)
{
    std::vector<uint8_t> file = GetParam().make(largest_readable(GetParam()));
    for (const std::string value : {"new", "a longer value than the one before"}) {
        CPDFDocument document;
        ASSERT_TRUE(document.open(file).ok());
        document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);
        for_each_field(document.form(), [&](CPDFField& field) {
            EXPECT_TRUE(document.set_text(field, value).ok() || document.set_value(field, CPDFValue(value)).ok());
        });
        ASSERT_TRUE(document.save(file).ok());
        ASSERT_TRUE(is_readable(file)) << value;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, RefillTest,
                         testing::Values(HeavyFile{one_object_under_many_names, 8192}, HeavyFile{shared_options, 32768},
                                         HeavyFile{shared_text, 65536}, HeavyFile{streams_in_turns, 8 << 20}));

}  // namespace
