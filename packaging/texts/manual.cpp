#include <algorithm>

#include "packaging/texts/command_texts.h"

namespace {

// Text as roff shows it as it is; words between backticks are bold.
std::string escaped(const std::string& text)
{
    std::string out;
    bool bold = false;
    bool line_begins = true;
    for (const char c : text) {
        if (line_begins && (c == '.' || c == '\''))
            out += "\\&";
        line_begins = c == '\n';
        switch (c) {
        case '\\':
            out += "\\e";
            break;
        case '-':
            out += "\\-";
            break;
        case '\'':
            out += "\\(aq";
            break;
        case '^':
            out += "\\(ha";
            break;
        case '~':
            out += "\\(ti";
            break;
        case '`':
            bold = !bold;
            out += bold ? "\\fB" : "\\fP";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string bold(const std::string& text)
{
    return "\\fB" + escaped(text) + "\\fP";
}

std::string italic(const std::string& text)
{
    return "\\fI" + escaped(text) + "\\fP";
}

enum class LINE_KIND { TEXT, ITEM, MORE, AS_IS };

// In the help, a table has rows of a word, several spaces and what it means; what else is indented stays as it is.
LINE_KIND kind_of(const std::string& line, LINE_KIND before)
{
    const size_t begin = line.find_first_not_of(' ');
    if (begin == 0)
        return LINE_KIND::TEXT;
    if (begin == 2 && line.find("  ", begin) != std::string::npos)
        return LINE_KIND::ITEM;
    return begin > 2 && (before == LINE_KIND::ITEM || before == LINE_KIND::MORE) ? LINE_KIND::MORE : LINE_KIND::AS_IS;
}

std::string row(const std::string& line)
{
    const size_t gap = line.find("  ", 2);
    return ".TP\n" + bold(line.substr(2, gap - 2)) + "\n" + escaped(line.substr(line.find_first_not_of(' ', gap))) +
           "\n";
}

std::string paragraphs(const std::string& text)
{
    std::string out;
    std::string lines;
    LINE_KIND before = LINE_KIND::AS_IS;
    const auto flush = [&] {
        if (!lines.empty())
            out += before == LINE_KIND::AS_IS ? ".PP\n.nf\n" + escaped(lines) + ".fi\n" : ".PP\n" + escaped(lines);
        lines.clear();
    };
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        const LINE_KIND kind = line.empty() ? LINE_KIND::TEXT : kind_of(line, before);
        if (line.empty() || kind != before)
            flush();
        before = kind;
        if (kind == LINE_KIND::ITEM)
            out += row(line);
        else if (kind == LINE_KIND::MORE)
            out += escaped(line.substr(line.find_first_not_of(' '))) + "\n";
        else if (!line.empty())
            lines += line + "\n";
    }
    flush();
    return out;
}

// "text.", whose first letter is small no more.
std::string sentence(std::string text)
{
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text.ends_with('.') ? text : text + ".";
}

std::string head(const std::string& page, const std::string& what, const std::string& version)
{
    std::string title;
    for (const char c : page)
        title += static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    return ".TH " + title + " 1 \"\" \"formwork " + version + "\" \"User Commands\"\n.SH NAME\n" + page + " \\- " +
           escaped(what) + "\n.SH SYNOPSIS\n";
}

std::string item(const COMMAND_OPTION& option)
{
    std::string out = ".TP\n";
    for (const std::string& name : option.names)
        out += (&name == &option.names.front() ? "" : ", ") + bold(name);
    if (!option.word.empty())
        out += (option.names.empty() ? "" : " ") + italic(option.word) + (option.repeats ? " ..." : "");
    return out + "\n" + escaped(sentence(option.help)) + "\n";
}

std::string items(const std::vector<COMMAND_OPTION>& options)
{
    std::string out;
    std::string group = options.empty() ? "" : options.front().group;
    for (const COMMAND_OPTION& option : options) {
        if (option.group != group)
            out += ".SS " + option.group + "\n";
        group = option.group;
        out += item(option);
    }
    return out;
}

std::string synopsis(const COMMAND_VERB& verb)
{
    std::string out = bold("formwork " + verb.name) + " [" + italic("OPTION") + " ...]";
    for (const COMMAND_OPTION& argument : verb.arguments) {
        const std::string word = italic(argument.word) + (argument.repeats ? " ..." : "");
        out += argument.required ? " " + word : " [" + word + "]";
    }
    return out + "\n";
}

// Every other page.
std::string see_also(const COMMAND_WORDS& command, const COMMAND_VERB* without)
{
    std::string out;
    if (without)
        out += ".BR formwork (1)";
    for (const COMMAND_VERB& verb : command.verbs) {
        if (&verb != without)
            out += (out.empty() ? "" : ",\n") + (".BR formwork\\-" + verb.name) + " (1)";
    }
    return ".SH SEE ALSO\n" + out + "\n";
}

}  // namespace

std::string make_manual(const COMMAND_WORDS& command, const std::string& version)
{
    std::string out = head("formwork", "forms of PDF files on the command line", version);
    out += bold("formwork") + " " + italic("VERB") + " " + italic("FILE") + " ...\n";
    out += ".SH DESCRIPTION\n" + escaped(command.description) + "\n.SH VERBS\n";
    for (const COMMAND_VERB& verb : command.verbs)
        out += ".TP\n.BR formwork\\-" + verb.name + " (1)\n" + escaped(sentence(verb.description)) + "\n";
    out += ".SH OPTIONS\n" + items(command.options);
    out += ".SH EXIT STATUS\n" + escaped(command.footer) + "\n";
    return out + see_also(command, nullptr);
}

std::string make_manual(const COMMAND_WORDS& command, const COMMAND_VERB& verb, const std::string& version)
{
    std::string out = head("formwork\\-" + verb.name, verb.description, version) + synopsis(verb);
    out += ".SH DESCRIPTION\n" + escaped(sentence(verb.description)) + "\n" + paragraphs(verb.footer);
    out += ".SH ARGUMENTS\n" + items(verb.arguments) + ".SH OPTIONS\n" + items(verb.options);
    out += ".SH EXIT STATUS\n" + escaped(command.footer) + "\n";
    return out + see_also(command, &verb);
}
