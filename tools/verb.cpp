#include "tools/verb.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "core/alloc.h"
#include "document/lookup/field_text.h"
#include "document/notes.h"
#include "tools/terminal_text.h"

namespace {
thread_local uint64_t t_failures_before = 0;
}

void start_memory()
{
    t_failures_before = vx_failures();
}

void need_memory()
{
    if (vx_failures() != t_failures_before)
        throw std::bad_alloc();
}

bool lexical_cast(const std::string& input, COMMAND_WORD& output)
{
    output.text = input.substr(!input.empty() && input.front() == COMMAND_WORD_MARK ? 1 : 0);
    return true;
}

void add_input(CLI::App& verb, COMMAND_INPUT& input)
{
    verb.add_option("FILE", input.path, "the PDF file")->required()->option_text(" ");
    verb.add_option("--password", input.password, "password of a protected file")->option_text("TEXT");
}

static void note_rescue(const CPDFDocument& document, const COMMAND_INPUT& input)
{
    if (!document.rescue_note().empty())
        complain(input.path.text, "warning: " + document.rescue_note());
}

void put_note(const COMMAND_INPUT& input, const std::string& sentence)
{
    if (!sentence.empty())
        complain(input.path.text, "note: " + sentence);
}

void note_adopted(const CPDFDocument& document, const COMMAND_INPUT& input)
{
    put_note(input, adopted_note(document));
}

bool open_document(CPDFDocument& document, const COMMAND_INPUT& input, PDF_LOAD load)
{
    const CPDFStatus status = document.open(input.path.text, load, input.password.text);
    if (!status.ok())
        complain(input.path.text, status.text);
    else
        note_rescue(document, input);
    return status.ok();
}

bool mend_document(CPDFDocument& document, const COMMAND_INPUT& input)
{
    const bool mended = document.mend();
    if (mended)
        note_rescue(document, input);
    return mended;
}

bool may_fill(const CPDFDocument& document, const COMMAND_INPUT& input)
{
    if (document.permits_filling())
        return true;
    complain(input.path.text, "the file is encrypted, and its permissions forbid to fill the form; --force does it");
    return false;
}

bool find_fields(CPDFDocument& document, const COMMAND_INPUT& input, const std::vector<COMMAND_WORD>& names,
                 std::vector<CPDFField*>& fields)
{
    for (const COMMAND_WORD& name : names) {
        CPDFStatus why;
        if (CPDFField* field = find_field(document, input, name.text, why))
            fields.push_back(field);
        else
            complain(input.path.text, why.text);
    }
    return fields.size() == names.size();
}

CPDFField* find_field(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& name, CPDFStatus& why,
                      PDF_FIELD_WORDS words)
{
    CPDFField* field = document.find_field(name, why, words);
    if (field)
        note_same_names(document, input, name);
    return field;
}

void note_same_names(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& name)
{
    put_note(input, same_names_note(document, name));
}

void complain(std::string_view file, std::string_view sentence)
{
    need_memory();
    const std::string line = "formwork: " + printable(file) + ": " + printable(sentence) + "\n";
    std::fflush(stdout);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int end_with(const CPDFStatus& status, std::string_view file)
{
    if (status.ok())
        return put_done();
    complain(file, status.text);
    return COMMAND_REFUSED;
}

int complain_usage(std::string_view sentence)
{
    need_memory();
    const std::string line = "formwork: " + printable(sentence) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    return COMMAND_USAGE;
}

void put(std::string_view text)
{
    need_memory();
    std::fwrite(text.data(), 1, text.size(), stdout);
}

int put_done()
{
    need_memory();
    errno = 0;
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return COMMAND_DONE;
    complain("standard output", std::string("can't be written: ") + std::strerror(errno ? errno : EIO));
    return COMMAND_REFUSED;
}
