#include "script/form_function.h"

#include "tests/script/call_fixture.h"

namespace {

struct ROW {
    const char* script;
    const char* value;
    const char* result;
};

template <size_t Size>
void expect_results(const ROW (&rows)[Size])
{
    for (const ROW& row : rows) {
        SCOPED_TRACE(testing::Message() << row.script << " of " << row.value);
        EXPECT_EQ(result_of(row.script, row.value), row.result);
    }
}

constexpr const char* NO_NUMBER = "The value entered does not match the format of the field [ f ]";

}  // namespace

TEST(FormFunctionTest, Numbers)
{
    const ROW rows[] = {
        {"AFNumber_Format(2, 0, 0, 0, '', true)", "1.005", "1.00"},
        {"AFNumber_Format(0, 1, 0, 0, '', true)", "2.5", "3"},
        {"AFNumber_Format(2, 0, 0, 0, '', true)", "9.996", "10.00"},
        {"AFNumber_Format(2, 0, 0, 0, '', true)", "$1,234.50", "1,234.50"},
        {"AFNumber_Format(2, 2, 0, 0, '', true)", "-1.234,5", "-1.234,50"},
        {"AFNumber_Format(2, 0, 0, 0, '', true)", "1.2.3", ""},
        {"AFNumber_Format(0, 0, 0, 0, '', true)", "1e5", "100,000"},
        {"AFNumber_Format(0, 0, 0, 0, '', true)", "1e999", ""},
        {"AFNumber_Format(1e6, 99, -7, 0, '', true)", "1", "1.00000000000000000000"},
        {"AFNumber_Format(2, 1)", "1", "1.00"},
        {"AFPercent_Format(1, 0, true)", "-0.055", "%-5.5"},
        {"AFPercent_Format(2, 0)", "", ""},
        {"AFPercent_Keystroke(2, 0)", "5%", NO_NUMBER},
        {"AFNumber_Keystroke(2, 2, 0, 0, '', true)", "12,5", "12,5"},
        {"AFNumber_Keystroke(2, 2, 0, 0, '', true)", "1.234,5", NO_NUMBER},
        {"AFNumber_Keystroke(2, 0, 0, 0, '', true)", ".", NO_NUMBER},
        {"AFNumber_Keystroke(2, 0, 0, 0, '', true)", " -.5 ", " -.5 "},
        {"AFNumber_Keystroke(2, 0, 0, 0, '', true)", "", ""},
        {"AFRange_Validate(true, 1, true, 2)", "0",
         "Invalid value: must be greater than or equal to 1 and less than or equal to 2."},
        {"AFRange_Validate(false, 0, true, 1.5)", "2", "Invalid value: must be less than or equal to 1.5."},
        {"AFRange_Validate(true, 1, true, 2)", "", ""},
    };
    expect_results(rows);
}

TEST(FormFunctionTest, ColorOfNegativeNumbers)
{
    const struct {
        const char* script;
        const char* value;
        EVENT_COLOR color;
    } cases[] = {
        {"AFNumber_Format(0, 0, 3, 0, '', true)", "-1", EVENT_COLOR::RED},
        {"AFNumber_Format(0, 0, 1, 0, '', true)", "1", EVENT_COLOR::BLACK},
        {"AFNumber_Format(0, 0, 2, 0, '', true)", "-1", EVENT_COLOR::AS_IS},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        FIELD_EVENT event = event_with(c.value);
        run_script(c.script, event);
        EXPECT_EQ(event.color, c.color);
    }
}

TEST(FormFunctionTest, Typing)
{
    const struct {
        const char* script;
        const char* value;
        const char* change;
        int begin;
        int end;
        bool taken;
    } cases[] = {
        {"AFNumber_Keystroke(2, 3, 0, 0, '', true)", "1", ",", 1, 1, true},
        {"AFNumber_Keystroke(2, 0, 0, 0, '', true)", "1.5", ".", 1, 2, true},
        {"AFNumber_Keystroke(2, 0, 0, 0, '', true)", "1.5", "x", 99, -1, false},
        {"AFSpecial_Keystroke(2)", "(415) 12", "3", 8, 8, true},
        {"AFSpecial_Keystroke(0)", "12345", "6", 5, 5, false},
        {"AFSpecial_KeystrokeEx('AA-99')", "ä", "B", 0, 1, true},
        {"AFDate_KeystrokeEx('m/d/yy')", "3/", "x", 2, 2, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.script << c.value << c.change);
        FIELD_EVENT event = event_with(c.value);
        event.will_commit = false;
        event.change = c.change;
        event.sel_start = c.begin;
        event.sel_end = c.end;
        run_script(c.script, event);
        EXPECT_EQ(event.rc, c.taken);
        EXPECT_EQ(event.value, c.value);
        EXPECT_EQ(event.message, "");
    }
}

TEST(FormFunctionTest, Dates)
{
    const ROW rows[] = {
        {"AFDate_FormatEx('dd/mm/yyyy')", "3/4/2021", "03/04/2021"},
        {"AFDate_FormatEx('yyyy-mm-dd')", "12/31/99", "1999-12-31"},
        {"AFDate_FormatEx('dd/mm/yyyy')", "2021-03-04", "04/03/2021"},
        {"AFDate_FormatEx('yyyy-mm-dd')", "31.2.2021", ""},
        {"AFDate_FormatEx('m/d/yyyy')", "2/29/1900", ""},
        {"AFDate_FormatEx('m/d/yyyy')", "2/29/2000", "2/29/2000"},
        {"AFDate_FormatEx('m/d/yyyy')", "1/1/50", "1/1/1950"},
        {"AFDate_FormatEx('m/d/yyyy')", "1/1/123", ""},
        {"AFDate_FormatEx('m/d/yyyy')", "7/8", "7/8/2023"},
        {"AFDate_FormatEx('ddd, d mmm yyyy')", "Thu, March 4th 2021", "Thu, 4 Mar 2021"},
        {"AFDate_FormatEx('yyyymmdd')", "20210304", "20210304"},
        {"AFDate_FormatEx('mm/dd/yy')", "030421", "03/04/21"},
        {"AFDate_FormatEx('mm/yyyy')", "3/21", "03/2021"},
        {"AFDate_FormatEx('mmmm yyyy')", "sept 2021", "September 2021"},
        {"AFDate_FormatEx('yyyy')", "21", "2021"},
        {"AFDate_FormatEx('m/d/yy HH:MM')", "3/4/21 12:05 am", "3/4/21 00:05"},
        {"AFDate_FormatEx('m/d/yy HH:MM')", "3/4/21 13:05 pm", ""},
        {"AFDate_FormatEx('HH:MM')", "9:30 pm", "21:30"},
        {"AFDate_Format(99)", "3/4/21", "3/4/21 00:00"},
        {"AFTime_Format(3)", "1:45:30 pm", "1:45:30 pm"},
        {"AFTime_Format(1)", "12.30", "12:30 pm"},
        {"AFTime_Keystroke(1)", "1:45 pm", "1:45 pm"},
        {"AFTime_Keystroke(0)", "3/4/2021",
         "Invalid date/time: please ensure that the date/time exists. Field [ f ] should match format HH:MM"},
        {"AFDate_KeystrokeEx('mm/dd/yyyy')", "2/30/2021",
         "Invalid date/time: please ensure that the date/time exists. Field [ f ] should match format mm/dd/yyyy"},
        {"AFDate_KeystrokeEx('mm/dd/yyyy')", " ", " "},
    };
    expect_results(rows);
}

TEST(FormFunctionTest, Special)
{
    const ROW rows[] = {
        {"AFSpecial_Format(1)", "12345", "12345"},
        {"AFSpecial_Format(2)", "555", "555"},
        {"AFSpecial_Keystroke(1)", "12345 6789", "12345 6789"},
        {"AFSpecial_Keystroke(2)", "(415) 123-4567", "(415) 123-4567"},
        {"AFSpecial_Keystroke(2)", "011-49-30-1234", "011-49-30-1234"},
        {"AFSpecial_KeystrokeEx('AA-999')", "AB-123", "AB-123"},
        {"AFSpecial_KeystrokeEx('OX')", "aé", "aé"},
        {"AFSpecial_KeystrokeEx('AA')", "ABC", NO_NUMBER},
    };
    expect_results(rows);
}

TEST(FormFunctionTest, Calculations)
{
    const MapFields fields({{"a.x", "1"}, {"a.y", "2,5"}, {"ab", "100"}, {"b", ""}, {"c", "words"}, {"d", "-4"}});
    const struct {
        const char* script;
        const char* result;
    } cases[] = {
        {"AFSimple_Calculate('SUM', new Array('a', 'b', 'c', 'd'))", "-0.5"},
        {"AFSimple_Calculate('SUM', 'a.x, ab')", "101"},
        {"AFSimple_Calculate('AVG', ['a', 'b', 'c'])", "1.1666666666666667"},
        {"AFSimple_Calculate('PRD', ['a', 'd'])", "-10"},
        {"AFSimple_Calculate('MIN', ['a', 'b'])", "0"},
        {"AFSimple_Calculate('MAX', ['d', 'none'])", "-4"},
        {"AFSimple_Calculate('AVG', ['b', 'none'])", "0"},
        {"AFSimple_Calculate('MEDIAN', ['a'])", "before"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        FIELD_EVENT event = event_with("before");
        run_script(c.script, event, fields);
        EXPECT_EQ(event.value, c.result);
    }
}

TEST(FormFunctionTest, Returned)
{
    const struct {
        const char* script;
        const char* result;
    } cases[] = {
        {"AFMakeNumber('-.5')", "-0.5"},
        {"AFMakeNumber('12 apples')", "12"},
        {"AFExtractNums('a1b22')", "1,22"},
        {"AFSimple('AVG', 1, '2')", "1.5"},
        {"AFParseDateEx('4/3/21', 'dmy')", "2021-03-04T00:00:00"},
        {"util.scand('d/m/yy HH:MM', '4/3/21 15:30')", "2021-03-04T15:30:00"},
        {"util.scand('d/m/yy', 'never')", ""},
        {"util.printd('yyyy/m/d H', 1614870309000)", "2021/3/4 15"},
        {"util.printd('y', 1e300)", ""},
        {"util.printf('%5d|%05d|% d|%x', 7.9, -42, 0, -1)", "    7|-0042| 0|FFFFFFFF"},
        {"util.printf('%.1s%s%d', 'éa', true)", "étrue%d"},
        {"util.printf('%3.f%5.1f%f', 2.5, -0.25, 1)", "  3 -0.31.000000"},
        {"util.printf('%d%q', 'x', 1)", "nan%q"},
        {"util.printx('(999) 999', '12345')", "(123) 45"},
        {"util.printx('<AA\\\\99)', 'ABC1')", "ab91)"},
        {"AFMergeChange()", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        EXPECT_EQ(returned_by(c.script), c.result);
    }
}

TEST(FormFunctionTest, NumbersPrintAsScriptsPrintThem)
{
    const struct {
        double number;
        const char* text;
    } cases[] = {{0.1 + 0.2, "0.30000000000000004"},
                 {-0.0, "0"},
                 {1e20, "100000000000000000000"},
                 {1e21, "1e+21"},
                 {1.5e-7, "1.5e-7"},
                 {1e-300, "1e-300"}};
    for (const auto& c : cases)
        EXPECT_EQ(SCRIPT_VALUE{c.number}.text(), c.text);
}

TEST(FormFunctionTest, HostileArgumentsAreBounded)
{
    const std::string nines(100000, '9');
    EXPECT_EQ(returned_by("util.printf('%99999999999d', 1)").size(), 1000u);
    EXPECT_EQ(returned_by("util.printf('%.99999999999f', 1)").size(), 22u);
    EXPECT_EQ(result_of("AFNumber_Format(2, 0)", nines), "");
    EXPECT_EQ(result_of("AFDate_FormatEx('m/d/yy')", nines), "");
    EXPECT_EQ(result_of("AFSpecial_Format(3)", nines), "999-99-9999");
}
