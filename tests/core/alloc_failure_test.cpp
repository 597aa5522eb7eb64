#include "tests/support/alloc_walk.h"

#include <functional>

#include "tests/support/memory_document.h"

TEST(CoreAllocFailureTest, StringsAreLeftEmptyAndNamesAbsent)
{
    CPDFObj source;
    parse_object("[(text) /Name << /C [(y)] >>]", source);
    each_failed_allocation([&](const auto& arm) {
        PDF_String made;
        CPDFObj string, name, whole;
        const bool failed = arm([&] {
            made.init(L"text", 1);
            string.copy_from(source.arr->at(0));
            name.copy_from(source.arr->at(1));
            whole.copy_from(&source);
        });
        EXPECT_TRUE(made.len == 10 || (made.len == 0 && !made.buf));
        EXPECT_TRUE(string.type == PDF_OBJ_STRING && (string.str.len == 4 || (string.str.len == 0 && !string.str.buf)));
        EXPECT_TRUE(name.is_name("Name") || name.type == PDF_OBJ_NULL);
        EXPECT_TRUE(failed || show_object(whole) == show_object(source));
        made.release();
    });
}

TEST(CoreAllocFailureTest, ContainersStayAsTheyWere)
{
    CPDFObj value;
    parse_object("[(a) /B]", value);
    const std::function<void(CPDFDictionary&)> edits[] = {
        [](CPDFDictionary& dict) { dict.set_item_str("K", "new", 3); },
        [](CPDFDictionary& dict) { dict.set_item_name("K", "New"); },
        [&](CPDFDictionary& dict) { dict.set_item_arr("K", value.arr); },
        [](CPDFDictionary& dict) { dict.get_item("Arr")->arr->append_str("new", 3); },
        [&](CPDFDictionary& dict) { dict.get_item("Arr")->arr->append_arr(value.arr); },
    };
    for (const char* before :
         {"<< /Arr [1 2 3 4] /K (old) /Z 1 >>", "<< /A 1 /Arr [1] /B 1 /C 1 /D 1 /E 1 /F 1 /G 1 >>"}) {
        for (const auto& edit : edits) {
            SCOPED_TRACE("edit " + std::to_string(&edit - edits) + " of " + before);
            CPDFObj edited;
            parse_object(before, edited);
            edit(*edited.dict);
            each_failed_allocation([&](const auto& arm) {
                CPDFObj obj;
                parse_object(before, obj);
                const bool failed = arm([&] { edit(*obj.dict); });
                EXPECT_TRUE(show_object(obj) == show_object(edited) || (failed && show_object(obj) == before))
                    << show_object(obj);
            });
        }
    }
}

// The data that a stream has stay with its dictionary.
TEST(CoreAllocFailureTest, NewDataOfAStream)
{
    for (const bool again : {false, true}) {
        each_failed_allocation([again](const auto& arm) {
            MemoryDocument doc("null");
            const auto take = [&doc](const char* text) {
                const auto size = static_cast<int>(std::strlen(text));
                CPDFDictionary entries;
                auto* data = static_cast<unsigned char*>(VXAlloc(std::strlen(text)));
                return data &&
                       doc.xref.take_stream({1, 0}, entries,
                                            static_cast<unsigned char*>(std::memcpy(data, text, std::strlen(text))),
                                            size) == PDF_CHANGE_RESULT::STORED;
            };
            EXPECT_TRUE(!again || take("one"));
            bool taken = false;
            arm([&] { taken = take("three"); });
            EXPECT_EQ(doc.show(1) + doc.data(1), taken   ? "stream<< /Length 5 >>three"
                                                 : again ? "stream<< /Length 3 >>one"
                                                         : "nullno stream");
        });
    }
}

TEST(CoreAllocFailureTest, StreamsAndReaders)
{
    each_failed_allocation([](const auto& arm) {
        MemoryDocument doc("(text)");
        CPDFObj entry;
        entry.set_ref({1, 0});
        PDF_String text{0, nullptr};
        uint64_t handle = 0;
        auto* data = static_cast<unsigned char*>(VXAlloc(3));
        MemoryStream stream(std::string(5000, 'x'), 100);
        int len = 0;
        unsigned char* loaded = nullptr;
        const bool failed = arm([&] {
            doc.xref.read_obj_string(text, &entry);
            doc.xref.push_pending(9);
            handle = doc.xref.set_mem_stream({1, 0}, data, 3);
            loaded = stream.buffer_load(10000, len);
        });
        EXPECT_TRUE(text.equals("text") || (text.len == 0 && !text.buf));
        EXPECT_EQ(doc.xref.mem_stream(handle) != nullptr, handle != 0);
        EXPECT_EQ(len, loaded ? 5000 : 0);
        EXPECT_TRUE(failed || (text.buf && handle && loaded));
        text.release();
        VXFree(loaded);
    });
}
