#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "formats/import/csv.h"
#include "tools/extract/file_queue.h"
#include "tools/extract/form_table.h"
#include "tools/save_output.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

struct EXTRACT_ARGUMENTS {
    std::vector<COMMAND_WORD> files;
    COMMAND_WORD password;
    COMMAND_WORD list;
    COMMAND_WORD format;
    COMMAND_WORD output;
    COMMAND_WORD columns;
    COMMAND_WORD errors;
    COMMAND_WORD list_separator{"|"};
    COMMAND_WORD jobs{"1"};
    int job_count = 1;
    bool recursive = false;
};

// What became of one file.
struct FILE_RESULT {
    std::string path;
    CPDFStatus status;
    std::string warning;
    FORM_ROW row;
};

// Several threads read files, and what they found goes into the table in the order of the files.
class Extraction {
public:
    Extraction(const EXTRACT_ARGUMENTS& arguments, const TABLE_STYLE& style)
        : m_arguments(arguments), m_style(style), m_queue(arguments.files, arguments.recursive), m_table(style)
    {
    }

    // Returns a COMMAND_EXIT.
    int run()
    {
        if (!open())
            return COMMAND_REFUSED;
        {
            std::vector<std::jthread> threads;
            for (int i = 1; i < m_arguments.job_count; ++i)
                threads.emplace_back([this] { work(); });
            work();
        }
        if (m_ended_early)
            throw std::bad_alloc();
        return finish();
    }

private:
    bool open()
    {
        const auto good = [](const CPDFStatus& status, const std::string& file) {
            if (!status.ok())
                complain(file, status.text);
            return status.ok();
        };
        const std::string& list = m_arguments.list.text;
        if (!list.empty() && !good(m_queue.open_list(list), list))
            return false;
        const std::string& errors = m_arguments.errors.text;
        m_has_errors_file = !errors.empty();
        if (m_has_errors_file && !good(m_errors.open(errors), errors))
            return false;
        if (m_has_errors_file)
            m_errors.put("file,error\r\n");
        return good(m_table.open(m_arguments.output.text), m_arguments.output.text);
    }

    void work()
    {
        try {
            QUEUED_FILE file;
            for (size_t number = 0; take(file, number);) {
                FILE_RESULT result = read(file);
                need_memory();
                done(number, std::move(result));
            }
        } catch (...) {  // nothing but memory runs out here
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_ended_early = true;
            m_moved.notify_all();
        }
    }

    // No thread gets far ahead of the slowest one, whose result the others wait for.
    bool take(QUEUED_FILE& file, size_t& number)
    {
        constexpr size_t AHEAD = 64;
        std::unique_lock<std::mutex> lock(m_mutex);
        m_moved.wait(lock, [this] { return m_ended_early || m_given < m_written + AHEAD; });
        if (m_ended_early || !m_queue.next(file))
            return false;
        number = m_given++;
        return true;
    }

    FILE_RESULT read(const QUEUED_FILE& file)
    {
        FILE_RESULT result = {file.path, file.status, "", {}};
        if (!result.status.ok())
            return result;
        CPDFDocument document;
        result.status = document.open(file.path, PDF_LOAD::WHOLE_FORM, m_arguments.password.text);
        if (!result.status.ok())
            return result;
        result.warning = document.rescue_note();
        result.status = read_row(document, file.path, m_style, result.row);
        return result;
    }

    void done(size_t number, FILE_RESULT result)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.emplace(number, std::move(result));
        for (auto at = m_waiting.begin(); at != m_waiting.end() && at->first == m_written;
             at = m_waiting.erase(at), ++m_written)
            write(at->second);
        m_moved.notify_all();
    }

    void write(const FILE_RESULT& result)
    {
        if (!result.warning.empty())
            complain(result.path, "warning: " + result.warning);
        if (result.status.ok()) {
            m_table.add(result.path, result.row);
            return;
        }
        ++m_refused;
        if (!m_has_errors_file) {
            complain(result.path, result.status.text);
            return;
        }
        std::string line;
        append_csv_cell(line, printable(result.path), true);
        append_csv_cell(line, result.status.text, false);
        m_errors.put(line + "\r\n");
    }

    int finish()
    {
        if (m_table.has_field_file())
            complain("file", "note: a field has this name, too: its values are in the second column that is called so");
        if (m_given == 0)
            return end_with(CPDFStatus::failed(PDF_CODE::NOT_FOUND, "there is no file to read"),
                            m_arguments.list.text.empty() ? m_arguments.files.front().text : m_arguments.list.text);
        const CPDFStatus noted = m_has_errors_file ? m_errors.finish_as(m_arguments.errors.text) : CPDFStatus();
        if (!noted.ok())
            return end_with(noted, m_arguments.errors.text);
        if (m_refused && m_has_errors_file)
            complain(m_arguments.errors.text, "names " + std::to_string(m_refused) + " of " + std::to_string(m_given) +
                                                  " files, which could not be read");
        if (m_refused == m_given)
            return COMMAND_REFUSED;
        const int exit = end_with(m_table.finish(), m_arguments.output.text);
        return exit == COMMAND_DONE && m_refused ? COMMAND_PARTLY : exit;
    }

    const EXTRACT_ARGUMENTS& m_arguments;  // borrowed from the caller
    const TABLE_STYLE& m_style;            // the same
    FileQueue m_queue;
    FormTable m_table;
    SpoolFile m_errors;
    bool m_has_errors_file = false;
    std::mutex m_mutex;
    std::condition_variable m_moved;
    bool m_ended_early = false;
    size_t m_given = 0;                       // files that were handed out
    size_t m_written = 0;                     // files whose result was written
    std::map<size_t, FILE_RESULT> m_waiting;  // results behind one that is not there yet
    size_t m_refused = 0;
};

CPDFStatus read_columns(const std::string& path, TABLE_COLUMNS& columns)
{
    ListFile names;
    if (CPDFStatus status = names.open(path); !status.ok())
        return status;
    for (std::string name; names.next(name);)
        columns.emplace(name, columns.size());
    return columns.empty() ? CPDFStatus::failed(PDF_CODE::BAD_DATA, "the file names no column") : CPDFStatus();
}

CPDFStatus check_usage(EXTRACT_ARGUMENTS& arguments)
{
    constexpr int MOST_JOBS = 256;
    const std::string& format = arguments.format.text;
    if (format != "csv" && format != "jsonl")
        return wrong_usage("there is no format " + in_quotes(format) + ": give --as csv or jsonl");
    if (arguments.files.empty() && arguments.list.text.empty())
        return wrong_usage(
            "there is no file to read: give some, or --from-list (`formwork extract --help` tells more)");
    const std::string& jobs = arguments.jobs.text;
    const auto [end, error] = std::from_chars(jobs.data(), jobs.data() + jobs.size(), arguments.job_count);
    if (error != std::errc() || end != jobs.data() + jobs.size() || arguments.job_count < 1 ||
        arguments.job_count > MOST_JOBS)
        return wrong_usage(in_quotes(jobs) + " is no number of jobs: give 1 to 256");
    const std::string& output = arguments.output.text;
    const std::string& errors = arguments.errors.text;
    if (!output.empty() && (output == errors || is_same_file(output, errors)))
        return wrong_usage(in_quotes(output) + " can't be both the table and that of the errors");
    for (const COMMAND_WORD* out : {&arguments.output, &arguments.errors}) {
        if (suffix_of(out->text) == ".pdf")
            return wrong_usage(in_quotes(out->text) + " is no name for a table: it might be one of the forms");
        const auto is_output = [&out](const COMMAND_WORD& file) { return is_same_file(out->text, file.text); };
        if (std::any_of(arguments.files.begin(), arguments.files.end(), is_output) || is_output(arguments.list) ||
            is_output(arguments.columns))
            return wrong_usage(in_quotes(out->text) + " is one of the files that are read");
    }
    return {};
}

int extract(EXTRACT_ARGUMENTS& arguments)
{
    if (const CPDFStatus usage = check_usage(arguments); !usage.ok())
        return complain_usage(usage.text);
    TABLE_COLUMNS columns;
    const bool has_columns = !arguments.columns.text.empty();
    if (const CPDFStatus status = has_columns ? read_columns(arguments.columns.text, columns) : CPDFStatus();
        !status.ok())
        return end_with(status, arguments.columns.text);
    const TABLE_STYLE style = {arguments.format.text == "jsonl", arguments.list_separator.text,
                               has_columns ? &columns : nullptr};
    return Extraction(arguments, style).run();
}

constexpr const char* FOOTER =
    R"(The table has a row for each file, in the order given; those of a folder are
sorted by name. Values are as `formwork export` has them.
  csv     the first column is "file"; then a column for each name that any of
          the files has, in the order in which they come up. Without a value a
          cell is empty; several values are joined by |, or what
          --list-separator says.
  jsonl   a line {"file": "...", "values": {...}} for each file, lists as lists;
          a field without a value is left out.
--columns makes a table with these names alone, one a line, in their order.

A file that can't be read has no row; it is told on standard error, or in the
table "file,error" of --errors. Exits 0 when all files were read, 3 when some
were not, 1 when none was.)";

}  // namespace

void add_extract_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<EXTRACT_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("extract", "Writes the values of many forms as one table");
    verb.add_option("FILE", arguments->files, "the PDF files, or folders with --recursive")->option_text("...");
    verb.add_option("--from-list", arguments->list, "a file with more paths, one a line; - for standard input")
        ->option_text("LIST");
    verb.add_option("--as", arguments->format, "csv or jsonl")->required()->option_text("FORMAT");
    verb.add_option("-o,--output", arguments->output, "where to write; standard output by default")->option_text("OUT");
    verb.add_option("--columns", arguments->columns, "a file with the names to take, one a line")->option_text("NAMES");
    verb.add_option("--list-separator", arguments->list_separator, "what joins several values in CSV (|)")
        ->option_text("TEXT");
    verb.add_option("--errors", arguments->errors, "where to tell of files that can't be read, as CSV")
        ->option_text("ERRORS");
    verb.add_flag("--recursive", arguments->recursive, "take the .pdf files in folders, and in the folders in these");
    verb.add_option("--jobs", arguments->jobs, "files that are worked on at once (1)")->option_text("N");
    verb.add_option("--password", arguments->password, "password of protected files")->option_text("TEXT");
    verb.footer(FOOTER);
    verb.callback([arguments, &action] { action = [arguments] { return extract(*arguments); }; });
}
