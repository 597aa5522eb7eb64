#include "engine/resources.h"
#include "engine/sign.h"
#include "tests/support/memory_document.h"

namespace {
std::string list(const CPDFResources& resources)
{
    std::string text;
    for (const PDF_RESOURCE& r : resources.resources())
        text += r.category + "/" + r.name + " " + std::to_string(r.ref.num) + " " + r.base_font + ";";
    return text;
}
}  // namespace

TEST(ResourcesTest, BindsAndLists)
{
    MemoryDocument doc("/Font 2 0 R /XObject << /X 9 0 R >>; /H 3 0 R /D << /BaseFont /Cour >> /Bad 4 0 R /Gone 99 0 R;"
                       "/BaseFont /Helvetica; /BaseFont (no name); 12");
    const struct {
        const char* entry;
        uint32_t ref;
        const char* expected;
    } cases[] = {
        {"1 0 R", 1, "Font/Bad 4 ;Font/D 0 Cour;Font/Gone 99 ;Font/H 3 Helvetica;XObject/X 9 ;"},
        {"<< /Font << /F 3 0 R >> /ProcSet [/PDF] /Pattern 99 0 R >>", 0, "Font/F 3 Helvetica;"},
        {"99 0 R", 99, ""},
        {"null", 0, ""},
    };
    CPDFResources resources;  // one object: binding again leaves nothing of the last one
    for (const auto& c : cases) {
        CPDFObj entry;
        parse_object(c.entry, entry);
        resources.bind(&doc.xref, entry.type ? &entry : nullptr);
        entry.free();
        resources.load_resource(&doc.xref, 0);
        resources.load_resource(&doc.xref, 0);
        EXPECT_EQ(list(resources), c.expected) << c.entry;
        EXPECT_EQ(resources.m_ref.num, c.ref) << c.entry;
    }
}

TEST(SignTest, KeepsWhatTheDictionarySays)
{
    MemoryDocument doc("<00FF0000>; [0 100 4 0 R 300.0]; /adbe.pkcs7.detached; 200");
    CPDFSign sign;
    {
        CPDFObj dict;
        parse_object("<< /Contents 1 0 R /ByteRange 2 0 R /Filter /F /SubFilter 3 0 R /Name (N) /M (D:2024) >>", dict);
        sign.load(&doc.xref, dict.dict);
    }
    EXPECT_EQ(sign.m_data_cnt, 4);
    EXPECT_EQ(sign.m_filter + "," + sign.m_sub_filter + "," + sign.m_name + "," + sign.m_date,
              "F,adbe.pkcs7.detached,N,D:2024");
    EXPECT_EQ(sign.m_byte_range, (std::vector<int64_t>{0, 100, 200, 300}));

    // Loading again forgets; entries of the wrong kind count as absent.
    CPDFObj wrong;
    parse_object("<< /Contents /x /ByteRange 5 /Filter 7 /SubFilter [] /Name 99 0 R /M << >> >>", wrong);
    sign.load(&doc.xref, wrong.dict);
    EXPECT_EQ(std::to_string(sign.m_data_cnt) + sign.m_filter + sign.m_sub_filter + sign.m_name + sign.m_date, "0");
    EXPECT_TRUE(sign.m_byte_range.empty());
}
