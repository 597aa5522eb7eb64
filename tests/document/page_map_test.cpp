#include "document/lookup/page_map.h"

#include "tests/support/memory_document.h"

namespace {
// The page numbers of the annotations 50, 51, 52, 53 and the number of pages, for a catalog that names object 1 as the
// page tree.
std::vector<int32_t> pages_of(MemoryDocument& document)
{
    CPDFObj root;
    EXPECT_TRUE(parse_object("<< /Pages 1 0 R >>", root));
    CPDFPageMap map;
    map.load(document.xref, root);
    std::vector<int32_t> numbers;
    for (uint32_t num = 50; num < 54; ++num)
        numbers.push_back(map.page_of_annotation(num));
    numbers.push_back(map.page_count());
    return numbers;
}

TEST(PageMapTest, TreesOfEveryShape)
{
    const struct {
        const char* label;
        const char* objects;  // 1, 2, ...
        std::vector<int32_t> expected;
    } cases[] = {
        {"nested nodes, wrong counts, annotations by reference and out of order",
         "/Type /Pages /Count 99 /Kids [2 0 R 5 0 R]; /Type /Pages /Count -1 /Kids 7 0 R;"
         "/Type /Page /Annots [53 0 R 50 0 R]; /Type /Page; /Type /Page /Annots 6 0 R; [51 0 R]; [3 0 R 4 0 R]",
         {1, 3, 0, 1, 3}},
        {"one annotation on two pages stays with the first, however the pages share the list",
         "/Kids [2 0 R 3 0 R 4 0 R]; /Annots [51 0 R]; /Annots 5 0 R; /Annots 5 0 R; [50 0 R 51 0 R]",
         {2, 1, 0, 0, 3}},
        {"direct, null, missing and repeated kids",
         "/Kids [<< /Type /Page /Annots [50 0 R] >> null 8 0 R 7 2 0 R 2 0 R]; /Type /Page /Annots [51 0 R]",
         {1, 2, 0, 0, 3}},
        {"cycles", "/Kids [1 0 R 2 0 R]; /Kids [1 0 R 3 0 R 2 0 R]; /Annots [50 0 R]", {1, 0, 0, 0, 1}},
        {"a page with kids, an empty node",
         "/Kids [2 0 R 3 0 R]; /Type /Pages; /Type /Page /Kids [2 0 R] /Annots [52 0 R]",
         {0, 0, 1, 0, 1}},
    };
    for (const auto& c : cases) {
        MemoryDocument document(c.objects);
        EXPECT_EQ(pages_of(document), c.expected) << c.label;
    }
}

TEST(PageMapTest, TooDeepPagesAreLeftOut)
{
    MemoryDocument document;
    for (uint32_t num = 1; num < 1000; ++num)
        document.put(num + 99, "<< /Kids [" + std::to_string(num + 100) + " 0 R] >>");
    document.put(1, "<< /Kids [100 0 R 2 0 R] >>");
    document.put(2, "<< /Annots [50 0 R] >>");
    EXPECT_EQ(pages_of(document), (std::vector<int32_t>{1, 0, 0, 0, 1}));
}

TEST(PageMapTest, OneLongListBehindManyReferencesIsNotReadForEach)
{
    constexpr uint32_t PAGES = 2000;
    MemoryDocument document;
    std::string kids, annotations;
    for (uint32_t num = 1000; num < 1000 + 2 * PAGES; num += 2) {
        kids += std::to_string(num) + " 0 R ";
        annotations += "50 0 R ";
        document.put(num, "<< /Annots " + std::to_string(num + 1) + " 0 R >>");
        document.put(num + 1, "3 0 R");
    }
    document.put(1, "<< /Kids [" + kids + "] >>");
    document.put(3, "[" + annotations + "]");
    EXPECT_EQ(pages_of(document), (std::vector<int32_t>{1, 0, 0, 0, PAGES}));
    EXPECT_LT(document.reads[3], 10);
}
}  // namespace
