#include "core/object.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "core/array.h"
#include "core/dictionary.h"
#include "tests/support/memory_document.h"

namespace {

std::string keys_of(const CPDFDictionary& dict)
{
    std::string keys;
    for (int32_t i = 0; i < dict.count; ++i)
        keys += std::string(i ? " " : "") + dict.items[i]->key();
    return keys;
}

}  // namespace

TEST(ObjectTest, DeepCopyOutlivesItsSource)
{
    for (const char* text : {"null", "true", "-7", "1.500000", "<FEFF0041>", "/Name", "5 2 R", "[]", "<< >>",
                             "[1 (x) [/N << /K [2 0 R] >>]]", "<< /A << /B (deep) >> /C [null 3 0 R] >>"}) {
        SCOPED_TRACE(text);
        CPDFObj copy;
        copy.set_string("old payload", 11);
        CPDFObj source;
        ASSERT_TRUE(parse_object(text, source));
        copy.copy_from(&source);
        source.free();
        EXPECT_EQ(show_object(copy), text);
        copy.free();
        copy.free();
        EXPECT_TRUE(copy.type == PDF_OBJ_NULL && copy.ival == 0);
    }
}

TEST(ObjectTest, EmptyStringsKeepTheirForm)
{
    for (const char* bytes : {"", static_cast<const char*>(nullptr)}) {
        CPDFObj source;
        CPDFObj copy;
        source.set_string(bytes, 0);
        copy.copy_from(&source);
        EXPECT_TRUE(copy.type == PDF_OBJ_STRING && copy.str.len == 0);
        EXPECT_TRUE(bytes ? copy.str.buf && !copy.str.buf[0] : !copy.str.buf);
    }
}

TEST(ObjectTest, StreamCopySharesItsData)
{
    MemoryDocument doc;
    doc.put_stream(1, "data");
    CPDFObj source;
    CPDFObj copy;
    doc.xref.get_entity(source, {1, 0});
    source.stream->dict.set_item_int("Length", 4);
    source.stream->handle = 0x123456789A;
    copy.copy_from(&source);
    source.free();
    EXPECT_EQ(show_object(copy), "stream<< /Length 4 >>");
    EXPECT_TRUE(copy.stream->handle == 0x123456789A && copy.stream->in_file == 1 && copy.stream->data_len == 4 &&
                copy.stream->ref.num == 1);
}

TEST(ObjectTest, IntegersRoundHalfUp)
{
    const std::pair<VXFIX, int32_t> reals[] = {{0x6000000, 2},   {0x5FFFFFF, 1}, {-0x6000000, -1},
                                               {-0x6000001, -2}, {0x2000000, 1}, {INT32_MIN * VXFIX_ONE, INT32_MIN}};
    for (const auto& [fixed, expected] : reals) {
        CPDFObj real;
        real.set_real(fixed);
        EXPECT_EQ(integer_value(real), expected) << fixed;
    }
    MemoryDocument doc("42; (42); 1 0 R");
    const std::pair<const char*, int> entries[] = {{"1 0 R", 42}, {"2 0 R", 0}, {"3 0 R", 42}, {"/5", 0}, {"2.4", 2}};
    for (const auto& [text, expected] : entries) {
        CPDFObj entry;
        parse_object(text, entry);
        EXPECT_EQ(resolve_integer(&doc.xref, &entry), expected) << text;
    }
}

TEST(DictionaryTest, FindsExactKeysOnly)
{
    CPDFDictionary dict;
    EXPECT_EQ(dict.get_item("A"), nullptr);
    int value = 0;
    for (const char* key : {"Kids", "DA", "a", "DV", "V", "T", "FT", "Ff", "DVX"})
        dict.set_item_int(key, ++value);
    EXPECT_EQ(keys_of(dict), "DA DV DVX FT Ff Kids T V a");
    for (const char* absent : {"D", "A", "DVY", "b", "", "Kid", "Kidsx", "VV"})
        EXPECT_EQ(dict.get_item(absent), nullptr) << absent;
    dict.set_item_int("Kids", 100);
    EXPECT_EQ(dict.get_item("Kids")->ival, 100);
    EXPECT_EQ(dict.get_item("a")->ival, 3);
    const CPDFObj null_value;
    dict.set_item("FT", &null_value);
    dict.set_item("new", &null_value);
    for (const char* key : {"nope", "a", "DA"})
        dict.remove_item(key);
    EXPECT_EQ(keys_of(dict), "DV DVX Ff Kids T V");
}

TEST(DictionaryTest, SortingKeepsTheLastOfEqualKeys)
{
    for (const int32_t size : {0, 1, 7, 32, 33, 200}) {
        CPDFDictionary dict;
        std::map<std::string, int32_t> expected;
        for (int32_t i = 0; i < size; ++i) {
            const std::string key = "k" + std::to_string(i * 37 % ((size + 1) / 2));
            dict.append_unsorted((key + "tail").c_str(), key.size())->set_int(i);
            expected[key] = i;
        }
        dict.sort_items();
        ASSERT_EQ(static_cast<size_t>(dict.count), expected.size());
        PDF_DICT_ITEM* const* item = dict.items;
        for (const auto& [key, value] : expected) {
            EXPECT_EQ((*item)->key(), key);
            EXPECT_EQ((*item++)->value.ival, value);
        }
    }
}

TEST(ArrayTest, AppendsAndRemoves)
{
    CPDFArray inner;
    inner.append_ref({4, 1});
    CPDFArray array;
    for (int i = 0; i < 9; ++i)
        array.append_int(i);
    array.append_str("x", 1);
    array.append_arr(&inner);
    for (const int index : {8, 0, -1, 9, 99, 3})
        array.remove_obj(index);
    CPDFObj copy;
    copy.set_array()->copy_from(&array);
    EXPECT_EQ(show_object(copy), "[1 2 3 5 6 7 (x) [4 1 R]]");
    array.clear();
    array.append_int(1);
    EXPECT_TRUE(array.count == 1 && !array.at(1) && !array.at(-1));
}
