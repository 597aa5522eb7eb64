#include "core/xref_table.h"

#include "tests/support/memory_document.h"

namespace {
void store(MemoryDocument& doc, const PDF_REF& ref, const std::string& text)
{
    CPDFObj obj;
    ASSERT_TRUE(parse_object(text, obj));
    doc.xref.store_changed(ref, obj);
}
}  // namespace

TEST(XRefTableTest, ReadersSeeTheNewestVersion)
{
    MemoryDocument doc("/T (old) /V 1");
    EXPECT_EQ(doc.show(1), "<< /T (old) /V 1 >>");
    store(doc, {1, 3}, "<< /T (new) /V 2 >>");
    store(doc, {1, 0}, "<< /T (newest) /V 3 >>");
    EXPECT_TRUE(doc.xref.changed_count() == 1 && doc.xref.changed()[0].ref.gen == 0);
    CPDFObj copy;
    doc.xref.get_entity(copy, {1, 77});
    copy.dict->set_item_int("V", 4);
    EXPECT_EQ(doc.show(1), "<< /T (newest) /V 3 >>");

    static constexpr CPDFKeySet KEY_SET{"V"};
    CPDFObj part;
    doc.xref.get_entity(part, {1, 0}, &KEY_SET);
    EXPECT_EQ(show_object(part), "<< /V 3 >>");
}

TEST(XRefTableTest, MissingObjectsAreNull)
{
    MemoryDocument doc("1");
    doc.put_free(4);
    doc.xref.get_xref2(6, 0);
    doc.xref.reserve_entry(7)->type = PDF_XREF_CHANGED;
    for (const uint32_t num : {0u, 4u, 5u, 6u, 7u, 255u, 256u, 0xFFFFFFFFu})
        EXPECT_EQ(doc.show(num), "null") << num;
    for (const int outside : {static_cast<int>(LIMIT_OBJECT_NUMBER) + 1, -1, INT32_MIN})
        EXPECT_EQ(doc.xref.get_xref2(outside, 0), nullptr) << outside;
    EXPECT_EQ(doc.xref.entry_count(), 256u);
    store(doc, {7, 0}, "70");  // a changed entry without a record gets one
    EXPECT_EQ(doc.show(7), "70");
}

TEST(XRefTableTest, ReferenceChainsEnd)
{
    MemoryDocument doc("1 0 R; 3 0 R; 2 0 R; 9 0 R; 99 0 R");
    store(doc, {9, 0}, "(end)");
    EXPECT_EQ(doc.show(4), "(end)");
    for (const uint32_t num : {1u, 2u, 5u})
        EXPECT_EQ(doc.show(num), "null") << num;
    for (uint32_t num = 100; num < 200; ++num)
        doc.put(num, std::to_string(num + 1) + " 0 R");
    doc.put(200, "/Far");
    EXPECT_EQ(doc.show(200 - LIMIT_REF_CHAIN + 1), "/Far");
    EXPECT_EQ(doc.show(200 - LIMIT_REF_CHAIN - 1), "null");
}

TEST(XRefTableTest, OlderSectionsAreReadWhenNeeded)
{
    MemoryDocument doc("(newest)");
    doc.put_free(2);
    doc.sections[1000] = {{{1, "(old)"}, {2, "(deleted)"}, {3, "(three)"}}, 500};
    doc.sections[500] = {{{3, "(older)"}, {40, "(forty)"}}, 0};
    doc.xref.push_pending(1000);
    EXPECT_EQ(doc.show(1) + doc.show(2), "(newest)null");
    EXPECT_TRUE(doc.sections_read.empty());
    EXPECT_EQ(doc.show(3), "(three)");
    EXPECT_EQ(doc.sections_read, (std::vector<uint32_t>{1000}));
    EXPECT_EQ(doc.xref.new_obj_num(), 41u);
    EXPECT_EQ(doc.sections_read, (std::vector<uint32_t>{1000, 500}));
    EXPECT_EQ(doc.xref.new_obj_num(), 42u);
    store(doc, {60, 0}, "1");
    EXPECT_EQ(doc.xref.new_obj_num(), 61u);
    // It gives up at a section that can't be read, a look-up goes on.
    doc.sections[10] = {{{70, "70"}}, 0};
    for (uint32_t pos = 10; pos < 40; ++pos)
        doc.xref.push_pending(pos);
    EXPECT_EQ(doc.xref.new_obj_num(), 62u);
    EXPECT_EQ(doc.sections_read, (std::vector<uint32_t>{1000, 500, 39}));
    EXPECT_EQ(doc.show(70), "70");
}

TEST(XRefTableTest, ReadsStringsAndNames)
{
    MemoryDocument doc("(text); /Name; 12");
    for (const auto& [text, expected] :
         {std::pair("(abc)", "abc"), {"1 0 R", "text"}, {"2 0 R", "Name"}, {"3 0 R", ""}, {"[(a)]", ""}, {"()", ""}}) {
        CPDFObj entry;
        parse_object(text, entry);
        for (CPDFXRefTable* table : {&doc.xref, static_cast<CPDFXRefTable*>(nullptr)}) {
            PDF_String out;
            CPDFXRefTable::read_obj_string(table, out, &entry);
            EXPECT_TRUE(out.equals(table || entry.type != PDF_OBJ_REF ? expected : "")) << text;
            EXPECT_TRUE(!out.buf || out.buf[out.len] == 0);
            out.release();
        }
    }
}

TEST(XRefTableTest, StreamsInMemory)
{
    MemoryDocument doc;
    const auto set = [&](uint32_t num, const char* data) {
        int len = 0;
        unsigned char* packed = doc.xref.compress_data(data, static_cast<int>(std::strlen(data)), len);
        return doc.xref.set_mem_stream({num, 0}, packed, len);
    };
    set(5, "first");
    const uint64_t other = set(6, "other");
    CPDFDictionary entries;
    entries.set_item_int("X", 1);
    auto* third = static_cast<unsigned char*>(std::memcpy(VXAlloc(5), "third", 5));
    EXPECT_EQ(doc.xref.take_stream({7, 0}, entries, third, 5), PDF_CHANGE_RESULT::STORED);
    EXPECT_EQ(doc.show(7) + doc.data(7), "stream<< /Length 5 /X 1 >>third");
    doc.xref.discard_changes();
    EXPECT_EQ(doc.show(7), "null");
    set(5, "first");
    EXPECT_EQ(set(6, "other"), other);
    CPDFStreamRec rec;
    rec.in_memory = 1;
    for (const uint64_t handle : {uint64_t{0}, other + 1, ~uint64_t{0}, set(5, "second")}) {
        rec.handle = handle;
        const std::unique_ptr<CPDFStream> reader(doc.xref.make_stream(&rec));
        char data[7] = {};
        EXPECT_EQ(reader ? reader->read_data(data, 7) : 0, handle && handle <= other ? 6 : 0) << handle;
        EXPECT_STREQ(data, handle && handle <= other ? "second" : "");
    }
}
