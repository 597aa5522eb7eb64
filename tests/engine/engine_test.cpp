#include "engine/resources.h"
#include "engine/sign.h"
#include "tests/support/memory_document.h"

TEST(ResourcesTest, BindsAndFinds)
{
    MemoryDocument doc("/Font 2 0 R /XObject << /X 9 0 R >>; /H 3 0 R /D << /A 1 >>");
    const struct {
        const char* entry;
        uint32_t ref;
        const char* expected;  // Font H, Font D, XObject X
    } cases[] = {
        {"1 0 R", 1, "3 0 R << /A 1 >> 9 0 R"},
        {"<< /Font << /H 3 0 R >> /ProcSet [/PDF] /XObject 99 0 R >>", 0, "3 0 R - -"},
        {"99 0 R", 99, "- - -"},
        {"null", 0, "- - -"},
    };
    CPDFResources resources;  // one object: binding again leaves nothing of the last one
    for (const auto& c : cases) {
        CPDFObj entry;
        parse_object(c.entry, entry);
        resources.bind(&doc.xref, entry.type ? &entry : nullptr);
        entry.free();
        resources.load_resource(&doc.xref, 0);
        resources.load_resource(&doc.xref, 0);
        const auto found = [&resources](const char* category, const char* name) {
            const CPDFObj* resource = resources.find(category, name);
            return resource ? show_object(*resource) : "-";
        };
        EXPECT_EQ(found("Font", "H") + " " + found("Font", "D") + " " + found("XObject", "X"), c.expected) << c.entry;
        EXPECT_EQ(resources.m_ref.num, c.ref) << c.entry;
        EXPECT_EQ(resources.find("ProcSet", "PDF"), nullptr);
    }
}

TEST(SignTest, CountsTheContents)
{
    MemoryDocument doc("<00FF0000>");
    CPDFSign sign;
    for (const auto& [entries, count] :
         {std::pair("<< /Contents 1 0 R >>", 4), {"<< /Contents /x >>", 0}, {"<< >>", 0}}) {
        CPDFObj dict;
        parse_object(entries, dict);
        sign.load(&doc.xref, dict.dict);
        EXPECT_EQ(sign.m_data_cnt, count) << entries;
    }
}
