// Scripts in their sandbox: what they see, and what hostile ones can't do.
#include "script/sandbox/sandbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <thread>

namespace {

using testing::HasSubstr;

SCRIPT_DOCUMENT form()
{
    SCRIPT_DOCUMENT document;
    const auto add = [&document](const char* name, SCRIPT_FIELD_TYPE type, const char* value) -> SCRIPT_FIELD& {
        SCRIPT_FIELD& field = document.fields.emplace_back();
        field.name = name;
        field.type = type;
        field.value = {value};
        field.default_value = {"d"};
        return field;
    };
    add("a", SCRIPT_FIELD_TYPE::TEXT, "2").flags = SCRIPT_READ_ONLY;
    add("b.x", SCRIPT_FIELD_TYPE::TEXT, "020");
    add("b.y", SCRIPT_FIELD_TYPE::TEXT, "Zürich");
    add("box", SCRIPT_FIELD_TYPE::CHECKBOX, "Yes").items = {{"Yes", "Yes"}};
    add("pick", SCRIPT_FIELD_TYPE::COMBO, "2").items = {{"one", "1"}, {"two", "2"}};
    document.info = {{"Title", "Form"}};
    document.pages = 3;
    return document;
}

SCRIPT_RUN run_of(std::string text)
{
    SCRIPT_RUN run;
    run.event.target = "a";
    run.event.value = "7";
    run.event_type = "Field";
    run.event_name = "Calculate";
    run.text = std::move(text);
    return run;
}

class SandboxTest : public testing::Test {
protected:
    SCRIPT_ANSWER run(const std::string& text)
    {
        sandbox.renew();
        if (sandbox.needs_document())
            sandbox.load(form());
        return sandbox.run(run_of(text));
    }

    CPDFScriptSandbox sandbox{SCRIPT_LIMITS{0.5}};
};

TEST_F(SandboxTest, ScriptsSeeTheObjectsOfViewers)
{
    const struct {
        const char* expression;
        const char* expected;
    } rows[] = {
        {"event.value + event.name + event.type + event.targetName + event.target.name", "7CalculateFieldaa"},
        {"getField('a').value + this.getField('b.x').value", "22"},
        {"getField('b.x').valueAsString", "020"},
        {"getField('b.y').value.length", "6"},
        {"String(getField('none')) + getField('b').getArray().length + getField('a.0').name", "null2a"},
        {"[numFields, this.numPages, getNthFieldName(1), info.Title, path, external].join()", "5,3,b.x,Form,,false"},
        {"[getField('a').type, getField('box').type, getField('pick').type].join()", "text,checkbox,combobox"},
        {"[getField('a').readonly, getField('b.x').readonly, getField('a').display == display.visible].join()",
         "true,false,true"},
        {"var f = getField('b.x'); f.hidden = true; f.required = true; [f.hidden, f.required, f.display].join()",
         "true,true,1"},
        {"var f = getField('pick'); [f.numItems, f.getItemAt(0), f.getItemAt(0, false), f.currentValueIndices].join()",
         "2,1,one,1"},
        {"var f = getField('pick'); f.setItems(['p', ['q', 'r']]); f.insertItemAt('s'); f.deleteItemAt(1); "
         "[f.numItems, f.getItemAt(0), f.getItemAt(1)].join()",
         "2,s,r"},
        {"getField('box').isBoxChecked(0) + ',' + getField('box').checkThisBox(0, false) + "
         "getField('box').isBoxChecked(0)",
         "true,undefinedfalse"},
        {"[app.viewerVersion, app.viewerType, app.response('?'), app.launchURL('u')].join()", "11,Formwork,,"},
        {"util.printd('yyyy-mm-dd HH:MM', util.scand('mm/dd/yyyy', '03/04/2021'))", "2021-03-04 00:00"},
        {"util.printf('%.2f', 1.005) + String(util.scand('mm/dd', 'x')) + AFMakeNumber('1,5')", "1.00null1.5"},
        {"AFMergeChange(event) + AFExtractNums('1 a 2').length", "72"},
        {"AFSimple_Calculate('SUM', ['a', 'b']); event.value", "22"},
        {"AFParseDateEx('2.3.2021', 'dd.mm.yyyy').getTime()", "1614643200000"},
        {"color.equal(color.red, ['RGB', 1, 0, 0])", "true"},
        {"new Date(2021, 0, 1).getTimezoneOffset()", "0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expression);
        const std::string expression = row.expression;
        const size_t last = expression.rfind("; ");
        const size_t at = last == std::string::npos ? 0 : last + 2;
        const SCRIPT_ANSWER answer = run(expression.substr(0, at) + "event.value = " + expression.substr(at));
        EXPECT_EQ(answer.fault, "");
        EXPECT_EQ(answer.event.value, row.expected);
    }
}

TEST_F(SandboxTest, AnswersTellWhatScriptsDid)
{
    const SCRIPT_ANSWER answer =
        run("console.println('hi'); app.alert({cMsg: 'no'}); event.rc = false; getField('b.x').value = 5;"
            "event.target.textColor = color.red; resetForm(['b.y'])");
    EXPECT_EQ(answer.fault, "");
    EXPECT_EQ(answer.event.message, "no");
    EXPECT_FALSE(answer.event.rc);
    EXPECT_EQ(answer.event.color, EVENT_COLOR::RED);
    EXPECT_THAT(answer.console, testing::ElementsAre("hi"));
    ASSERT_EQ(answer.changes.size(), 2U);
    EXPECT_EQ(answer.changes[0].field + '=' + answer.changes[0].value.at(0), "b.x=5");
    EXPECT_EQ(answer.changes[1].field + '=' + answer.changes[1].value.at(0), "b.y=d");
    EXPECT_EQ(run("AFRange_Validate(true, 8, false, 0)").event.message,
              "Invalid value: must be greater than or equal to 8.");
}

TEST_F(SandboxTest, AnswersTellWhatScriptsMadeOfFields)
{
    const SCRIPT_ANSWER answer = run("getField('b').required = true; getField('b.x').display = display.noView;"
                                     "getField('pick').insertItemAt('s', 't', -1); getField('a').setItems(['x']);");
    ASSERT_EQ(answer.traits.size(), 3U) << answer.fault;
    EXPECT_EQ(answer.traits[0].field, "b.x");
    EXPECT_EQ(answer.traits[0].made, SCRIPT_TRAIT_REQUIRED | SCRIPT_TRAIT_DISPLAY);
    EXPECT_EQ(answer.traits[0].display, SCRIPT_DISPLAY::NO_VIEW);
    EXPECT_TRUE(answer.traits[1].flags & SCRIPT_REQUIRED);
    ASSERT_EQ(answer.traits[2].items.size(), 3U);
    EXPECT_EQ(answer.traits[2].items[2].value, "t");
    EXPECT_TRUE(run("event.value = 1").traits.empty());
}

// Whatever is given to the well-known functions, they answer or the script ends with an error.
TEST_F(SandboxTest, FunctionsTakeArgumentsOfAnyKind)
{
    const std::string script = R"(
        var odd = [undefined, null, NaN, Infinity, -1e308, 1e21, -0, true, '', 'x', '\u0000\uffff', [], [[[]]], {},
                   new Date(NaN), new Date(8.64e15), function () {}, /x/, getField('a'), this,
                   {toString: function () { throw 'no'; }}, {valueOf: function () { return {}; }}];
        var names = ['AFNumber_Format', 'AFNumber_Keystroke', 'AFPercent_Format', 'AFPercent_Keystroke', 'AFDate_Format',
            'AFDate_FormatEx', 'AFDate_Keystroke', 'AFDate_KeystrokeEx', 'AFTime_Format', 'AFTime_FormatEx',
            'AFTime_Keystroke', 'AFTime_KeystrokeEx', 'AFSpecial_Format', 'AFSpecial_Keystroke', 'AFSpecial_KeystrokeEx',
            'AFRange_Validate', 'AFSimple_Calculate', 'AFSimple', 'AFMakeNumber', 'AFExtractNums', 'AFParseDateEx',
            'AFMergeChange', 'printf', 'printx', 'printd', 'scand'];
        var calls = 0;
        for (var n = 0; n < names.length; ++n) {
            var f = this[names[n]] || util[names[n]];
            for (var i = 0; i < odd.length; ++i)
                for (var k = 0; k < odd.length; k += 3) {
                    try { f(odd[i], odd[k], odd[k], odd[i], odd[k], odd[i]); } catch (e) {}
                    try { event.value = odd[k]; f(2, 0, odd[i]); } catch (e) {}
                    ++calls;
                }
        }
        event.value = calls; event.rc = true;)";
    CPDFScriptSandbox patient{SCRIPT_LIMITS{20}};
    patient.load(form());
    const SCRIPT_ANSWER answer = patient.run(run_of(script));
    EXPECT_EQ(answer.fault, "");
    EXPECT_EQ(answer.event.value, std::to_string(26 * 22 * 8));
}

TEST_F(SandboxTest, TheFilterOfSystemCallsIsActive)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "sanitizers need more calls";
#endif
    run("1");
    std::ifstream file("/proc/" + std::to_string(sandbox.child()) + "/status");
    const std::string status{std::istreambuf_iterator<char>(file), {}};
    if (status.find("Seccomp:") == std::string::npos)
        GTEST_SKIP() << "a kernel without filters";
    EXPECT_THAT(status, HasSubstr("Seccomp:\t2"));
}

TEST_F(SandboxTest, AStateLastsForOneRow)
{
    EXPECT_EQ(run("x = 1; getField('a').value = 9").fault, "");
    SCRIPT_RUN next = run_of("event.value = x + ',' + getField('a').value + getField('b.x').value");
    next.changes = {{"b.x", {"3"}}};
    EXPECT_EQ(sandbox.run(next).event.value, "1,93");
    const pid_t child = sandbox.child();
    EXPECT_EQ(run("event.value = typeof x + getField('a').value + getField('b.x').value").event.value, "undefined220");
    EXPECT_EQ(sandbox.child(), child);
}

TEST_F(SandboxTest, HostileScriptsEndWithinTheirLimits)
{
    const struct {
        const char* script;
        const char* fault;
    } rows[] = {
        {"for (;;);", "it took longer than 0.5 seconds"},
        {"while (true) try { for (;;) throw 1; } catch (e) {}", "it took longer than 0.5 seconds"},
        {"/(a+)+b/.test('aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa')", "it took longer than 0.5 seconds"},
        {"var a = []; for (;;) a.push('x' + a.length);", ""},
        {"var s = 'x'; for (var i = 0; i < 27; ++i) s += s; event.value = s", "it took more than 64 MiB of memory"},
        {"var s = 'x'; for (var i = 0; i < 24; ++i) s += s; event.value = s", "its answer is too large"},
        {"function f() { return f() + 1; } f()", "its calls are nested too deeply"},
        {"var a = []; for (var i = 0; i < 100000; ++i) a = [a]; event.value = a", ""},
        {"getField('a').value = {toString: function () { for (;;); }}", "it took longer than 0.5 seconds"},
        {"event.value = {toString: function () { throw 'no text'; }}", "no text"},
        {"x = ;", "SyntaxError"},
        {"load('/etc/passwd')", "'load' is not defined"},
        {"new ActiveXObject('shell')", "'ActiveXObject' is not defined"},
        {"require('fs')", "'require' is not defined"},
        {"this.submitForm('http://x')", "submitForm is not available"},
        {"app.openDoc('/etc/passwd')", "openDoc is not available"},
        {"getField('pick').getItemAt({valueOf: function () { getField('pick').clearItems(); return -1; }}); throw 'none'",
         "none"},
        {"getField('pick').deleteItemAt({valueOf: function () { getField('pick').clearItems(); return 0; }}); throw 'none'",
         "none"},
        {"AFMakeNumber({toString: function () { AFMakeNumber(); return '1'; }}); throw 'none'", "none"},
        {"Object.defineProperty(Array.prototype, '1', {get: function () { AFMakeNumber(); return 2; }});"
         "AFSimple_Calculate('SUM', [{toString: function () { AFMakeNumber('1'); return 'a'; }}, 'b']); throw 'none'",
         "none"},
        {"Date = function () { AFExtractNums('1 2'); }; util.scand('m/d', '1/1'); throw 'none'", "none"},
        {"getField.call(1, 'a').value; Object.getPrototypeOf(event.target).value", "TypeError"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.script);
        const SCRIPT_ANSWER answer = run(row.script);
        EXPECT_NE(answer.fault, "");
        EXPECT_THAT(answer.fault, HasSubstr(row.fault));
        EXPECT_EQ(run("event.value = 1").event.value, "1");
    }
}

TEST_F(SandboxTest, OneDocumentHasOneBudgetOfTime)
{
    EXPECT_THAT(run("for (;;);").fault, HasSubstr("longer"));
    sandbox.load(form());
    EXPECT_THAT(sandbox.run(run_of("event.value = 1")).fault, HasSubstr("longer"));
    EXPECT_EQ(sandbox.child(), 0);
}

TEST_F(SandboxTest, AChildThatDiesIsAFaultAndIsReplaced)
{
    run("event.value = 1");
    sandbox.renew();
    kill(sandbox.child(), SIGKILL);
    EXPECT_EQ(sandbox.run(run_of("1")).fault, "its process crashed");
    EXPECT_EQ(run("event.value = 2").event.value, "2");
}

TEST(SandboxProcessTest, NoChildIsLeftBehind)
{
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            for (const char* script : {"event.value = 1", "for (;;);", "var a = []; for (;;) a.push('x' + a.length)"}) {
                CPDFScriptSandbox sandbox{SCRIPT_LIMITS{0.1 * (i + 1)}};
                sandbox.load(form());
                sandbox.run(run_of(script));
            }
        });
    }
    threads.clear();
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(SandboxMessageTest, BytesThatAreNoMessageAreRefused)
{
    SCRIPT_ANSWER answer;
    answer.changes = {{"f", {"1", "2"}}};
    answer.console = {"\xff"};
    const std::string whole = write_message(answer).substr(SCRIPT_SIZE_BYTES);
    SCRIPT_ANSWER read;
    ASSERT_TRUE(read_message(whole, read));
    EXPECT_EQ(read.changes.at(0).value.at(1), "2");
    EXPECT_EQ(read.console.at(0), "\xef\xbf\xbd");
    for (size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(read_message(whole.substr(0, size), read)) << size;
    EXPECT_FALSE(read_message(whole + 'x', read));
    EXPECT_FALSE(read_message(std::string(whole.size(), '\xff'), read));
}

}  // namespace
