#include "tests/support/pdf_builder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

PdfBuilder::PdfBuilder(const std::string& junk) : text(junk + "%PDF-1.7\n"), m_origin(junk.size()) {}

PdfBuilder& PdfBuilder::entry(uint32_t num, uint32_t type, uint64_t index, uint32_t gen)
{
    m_entries[num] = {type, static_cast<uint32_t>(index), gen};
    m_size = std::max(m_size, num + 1);
    return *this;
}

PdfBuilder& PdfBuilder::object(uint32_t num, const std::string& body, uint32_t gen)
{
    entry(num, PDF_XREF_IN_FILE, here(), gen);
    return raw(std::to_string(num) + " " + std::to_string(gen) + " obj\n" + body + "\nendobj\n");
}

PdfBuilder& PdfBuilder::stream(uint32_t num, const std::string& entries, const std::string& data)
{
    const bool has_length = entries.find("/Length") != std::string::npos;
    const std::string length = has_length ? "" : "/Length " + std::to_string(data.size());
    return object(num, "<<" + entries + length + ">>\nstream\n" + data + "\nendstream");
}

PdfBuilder& PdfBuilder::object_stream(uint32_t num, const std::vector<std::pair<uint32_t, std::string>>& objects,
                                      const std::string& more_entries)
{
    std::string head;
    std::string body;
    for (uint32_t i = 0; i < objects.size(); ++i) {
        const auto& [inner, value] = objects[i];
        entry(inner, PDF_XREF_IN_STREAM, num, i);
        head += std::to_string(inner) + " " + std::to_string(body.size()) + " ";
        body += value + " ";
    }
    const std::string counts = "/N " + std::to_string(objects.size()) + "/First " + std::to_string(head.size());
    return stream(num, "/Type/ObjStm" + counts + more_entries, head + body);
}

PdfBuilder& PdfBuilder::form(const std::vector<std::string>& fields, const std::string& form_entries)
{
    std::string refs;
    for (size_t i = 0; i < fields.size(); ++i)
        refs += std::to_string(10 + i) + " 0 R ";
    object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>");
    object(2, "<</Type/Pages/Kids[]/Count 0>>");
    object(3, "<</Fields[" + refs + "]" + form_entries + ">>");
    for (size_t i = 0; i < fields.size(); ++i)
        object(static_cast<uint32_t>(10 + i), fields[i]);
    return *this;
}

std::string PdfBuilder::trailer_entries(const std::string& more) const
{
    const std::string prev = section ? "/Prev " + std::to_string(section) : "";
    return "/Size " + std::to_string(m_size) + "/Root 1 0 R" + prev + more;
}

PdfBuilder& PdfBuilder::finish(uint32_t at)
{
    section = at;
    m_entries.clear();
    return raw("startxref\n" + std::to_string(at) + "\n%%EOF\n");
}

PdfBuilder& PdfBuilder::table(const std::string& more)
{
    const uint32_t at = here();
    text += "xref\n";
    for (auto it = m_entries.begin(); it != m_entries.end();) {
        auto last = it;
        size_t count = 0;
        for (uint32_t num = it->first; last != m_entries.end() && last->first == num; ++num, ++last)
            ++count;
        text += std::to_string(it->first) + " " + std::to_string(count) + "\n";
        for (; it != last; ++it) {
            const bool used = it->second.type == PDF_XREF_IN_FILE;
            char line[24];
            std::snprintf(line, sizeof line, "%010u %05u %c", used ? it->second.index : 0, it->second.gen,
                          used ? 'n' : 'f');
            text += line + entry_end;
        }
    }
    text += "trailer\n<<" + trailer_entries(more) + ">>\n";
    return finish(at);
}

void PdfBuilder::write_stream_section(uint32_t num, const std::map<uint32_t, PDF_XREF_ENTRY>& entries,
                                      const std::string& more, const std::vector<int>& widths)
{
    std::string rows;
    std::string index;
    for (const auto& [at, e] : entries) {
        const uint64_t columns[] = {e.type, e.index, e.gen};
        for (size_t i = 0; i < 3; ++i) {
            for (int byte = widths[i] - 1; byte >= 0; --byte)
                rows += byte < 8 ? static_cast<char>(columns[i] >> (8 * byte)) : '\0';
        }
        index += std::to_string(at) + " 1 ";
    }
    const std::string w = std::to_string(widths[0]) + " " + std::to_string(widths[1]) + " " + std::to_string(widths[2]);
    text += std::to_string(num) + " 0 obj\n<</Type/XRef/W[" + w + "]/Index[" + index + "]/Length " +
            std::to_string(rows.size()) + trailer_entries(more) + ">>\nstream\n" + rows + "\nendstream\nendobj\n";
}

PdfBuilder& PdfBuilder::xref_stream(uint32_t num, const std::string& more, const std::vector<int>& widths)
{
    const uint32_t at = here();
    entry(num, PDF_XREF_IN_FILE, at, 0);
    write_stream_section(num, m_entries, more, widths);
    return finish(at);
}

PdfBuilder& PdfBuilder::hybrid(uint32_t num, const std::string& more)
{
    std::map<uint32_t, PDF_XREF_ENTRY> hidden;
    for (auto& [at, e] : m_entries) {
        if (e.type != PDF_XREF_IN_STREAM)
            continue;
        hidden[at] = e;
        e = {PDF_XREF_FREE, 0, 0};
    }
    const std::string place = "/XRefStm " + std::to_string(here());
    entry(num, PDF_XREF_IN_FILE, here(), 0);
    write_stream_section(num, hidden, "", {1, 4, 2});
    return table(place + more);
}

FileAtWork::FileAtWork(const std::string& text)
    : bytes(text.begin(), text.end()), reader(bytes.data(), bytes.size()), xref(&reader), status(reader.start(xref))
{
}

std::string FileAtWork::show(uint32_t num)
{
    CPDFObj obj;
    xref.get_entity(obj, {num, 0});
    return show_object(obj);
}

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "formwork-XXXXXX").string();
    m_path = ::mkdtemp(pattern.data());
}

std::string TempFolder::write(const std::string& name, const std::string& bytes) const
{
    std::ofstream(m_path / name, std::ios::binary) << bytes;
    return path(name);
}

std::string repeated(const std::string& piece, size_t times)
{
    std::string out;
    for (size_t i = 0; i < times; ++i)
        out += piece;
    return out;
}

std::string read_text_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> corpus_files()
{
    const char* corpus = std::getenv("FORMWORK_CORPUS");
    return pdf_files(corpus ? corpus : "");
}

std::vector<std::string> corpus_sample()
{
    constexpr size_t STEP = 4;
    const std::vector<std::string> files = corpus_files();
    std::vector<std::string> sample;
    for (size_t i = 0; i < files.size(); i += std::getenv("FORMWORK_FULL") ? 1 : STEP)
        sample.push_back(files[i]);
    return sample;
}

std::string file_label(const testing::TestParamInfo<std::string>& file)
{
    std::string label = std::filesystem::path(file.param).stem().string();
    std::replace_if(
        label.begin(), label.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return label;
}

std::vector<std::string> pdf_files(const std::string& folder)
{
    std::vector<std::string> files;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        if (entry.path().extension() == ".pdf")
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}
