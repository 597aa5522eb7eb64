#include "engine/annot_widget.h"

#include "tests/support/alloc_walk.h"
#include "tests/support/memory_document.h"

namespace {
const auto word = [](const char* text) { return std::string(text ? text : "-"); };
}  // namespace

TEST(AnnotWidgetTest, StatesOfEveryShape)
{
    const struct {
        const char *label, *entries;
        const char* states;  // m_on_state and m_alt_state
        const char* on;      // "AS" when turned on
    } cases[] = {
        {"no state shown", "/AP << /N << /Yes 2 0 R >> >>", "Yes -", "/Yes"},
        {"state shown that is not there", "/AP << /N << /1 2 0 R >> >> /AS /Yes", "1 Yes", "/1"},
        {"appearances elsewhere", "/AP 3 0 R /AS 6 0 R", "On Far", "/On"},
        {"pressed ones only", "/AP << /N << /Off 2 0 R >> /D << /Off 2 0 R /On 2 0 R >> >>", "On -", "/On"},
        {"pressed ones of another name", "/AP << /N << /Yes 2 0 R >> /D << /Down 2 0 R >> >>", "Yes -", "/Yes"},
        {"no appearances", "", "- Yes", "/Yes"},
        {"one picture for all states", "/AP << /N 5 0 R >> /AS /Off", "- Yes", "/Yes"},
        {"wrong kinds", "/AP [1] /AS (Yes)", "- Yes", "/Yes"},
        {"bytes beyond ASCII", "/AP << /N << /J\xFC 2 0 R >> >>", "J\xFC -", "/J\xFC"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        MemoryDocument doc("/Rect [] " + std::string(c.entries) + "; null; /N 4 0 R; /Off 2 0 R /On 2 0 R; null; /Far");
        doc.put_stream(5, "picture");
        CPDFAnnotWidget widget;
        ASSERT_EQ(widget.load(&doc.xref, {1, 0}), 1);
        EXPECT_EQ(word(widget.m_on_state) + " " + word(widget.m_alt_state), c.states);
        EXPECT_EQ(doc.xref.changed_count(), 0);
        const auto shows = [&doc](const std::string& state) {
            return doc.show(1).find("/AS " + state + " ") != std::string::npos;
        };
        for (const int on : {0, 1, 0, 1}) {  // again and again
            widget.set_radio_value(1 - on);
            EXPECT_TRUE(shows(on ? "/Off" : c.on)) << doc.show(1);
            widget.set_check_value(on);
            EXPECT_TRUE(shows(on ? c.on : "/Off")) << doc.show(1);
        }
        ASSERT_EQ(widget.load(&doc.xref, {1, 0}), 1);
        EXPECT_EQ(word(widget.m_on_state ? widget.m_on_state : widget.m_alt_state), c.on + 1) << "loaded again";
    }
}

TEST(AnnotWidgetTest, WithoutADictionaryNothingChanges)
{
    MemoryDocument doc("[1]; /AP << /N << /On 1 0 R >> >> /AS /Off");
    CPDFAnnotWidget widget;
    for (const uint32_t num : {0u, 1u, 9u})
        EXPECT_EQ(widget.load(&doc.xref, {num, 0}), 0);
    widget.set_check_value(1);
    ASSERT_EQ(widget.load(&doc.xref, {2, 0}), 1);
    EXPECT_EQ(widget.load(&doc.xref, {1, 0}), 0);
    EXPECT_STREQ(widget.m_on_state, "On") << "a failed load keeps what it has";
    doc.put_free(2);
    widget.set_radio_value(1);
    EXPECT_EQ(doc.xref.changed_count(), 0);
}

TEST(AnnotWidgetTest, AllocationFailures)
{
    each_failed_allocation([](const auto& arm) {
        MemoryDocument doc("/AP << /N << /On 1 0 R >> >> /AS /Off");
        CPDFAnnotWidget widget;
        const bool failed = arm([&] {
            widget.load(&doc.xref, {1, 0});
            widget.set_check_value(1);
        });
        const std::string now = doc.show(1);
        const auto as = [](const char* state) { return "<< /AP << /N << /On 1 0 R >> >> /AS /" + std::string(state); };
        EXPECT_TRUE(now == as("On >>") || (failed && (now == as("Off >>") || now == as("Yes >>")))) << now;
    });
}
