#include "core/object.h"

#include "tests/support/memory_document.h"

namespace {
std::string keys_of(const CPDFDictionary& dict)
{
    std::string keys;
    for (int32_t i = 0; i < dict.count; ++i)
        keys += dict.items[i]->key() + std::string(" ");
    return keys;
}
}  // namespace

TEST(ObjectTest, IntegersRoundHalfUp)
{
    MemoryDocument doc("42; (42); 1 0 R");
    const std::pair<const char*, int> entries[] = {{"1 0 R", 42}, {"2 0 R", 0},    {"3 0 R", 42}, {"/5", 0},
                                                   {"1.5", 2},    {"1.499999", 1}, {"-1.5", -1},  {"-1.500001", -2}};
    for (const auto& [text, expected] : entries) {
        CPDFObj entry;
        parse_object(text, entry);
        EXPECT_EQ(resolve_integer(&doc.xref, &entry), expected) << text;
    }
}

TEST(ObjectTest, FreeClearsThePayload)
{
    for (const char* text : {"(text)", "/Name", "[1]", "<< /A 1 >>", "5 7 R", "-2.5", "-7", "true"}) {
        CPDFObj obj;
        parse_object(text, obj);
        obj.free();
        EXPECT_TRUE(obj.type == PDF_OBJ_NULL && obj.fval == 0 && !obj.str.buf) << text;
        CPDFObj taken;
        obj.set_ref({5, 7});
        taken.take(obj);
        EXPECT_EQ(obj.fval, 0);
    }
}

TEST(DictionaryTest, FindsExactKeysOnly)
{
    CPDFDictionary dict;
    EXPECT_EQ(dict.get_item("A"), nullptr);
    int value = 0;
    for (const char* key : {"Kids", "DA", "a", "DV", "V", "T", "FT", "Ff", "DVX"})
        dict.set_item_int(key, ++value);
    EXPECT_EQ(keys_of(dict), "DA DV DVX FT Ff Kids T V a ");
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
    EXPECT_EQ(keys_of(dict), "DV DVX Ff Kids T V ");
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
