#include "tools/extract/file_queue.h"

#include <algorithm>
#include <filesystem>

#include "document/lookup/field_text.h"
#include "formats/import/form_data.h"

namespace fs = std::filesystem;

CPDFStatus FileQueue::open_list(const std::string& path)
{
    return m_list.open(path);
}

bool FileQueue::next_given(std::string& path)
{
    if (m_taken < m_files.size()) {
        path = m_files[m_taken++].text;
        return true;
    }
    return m_list.next(path);
}

bool FileQueue::next(QUEUED_FILE& file)
{
    for (;;) {
        file = QUEUED_FILE();
        bool is_folder = false;
        if (!m_entries.empty()) {
            file.path = std::move(m_entries.back().path);
            is_folder = m_entries.back().is_folder;
            m_entries.pop_back();
        } else {
            if (!next_given(file.path))
                return false;
            std::error_code none;
            is_folder = fs::is_directory(file.path, none);
        }
        if (is_folder && !m_walks)
            file.status = CPDFStatus::failed(PDF_CODE::IO, "this is a folder: --recursive takes the files in it");
        else if (is_folder)
            file.status = enter(file.path);
        if (!is_folder && !is_utf8(file.path))
            file.status = CPDFStatus::failed(PDF_CODE::BAD_DATA, "its name is not UTF-8, which tables are");
        if (!is_folder || !file.status.ok())
            return true;
    }
}

CPDFStatus FileQueue::enter(const std::string& folder)
{
    std::error_code problem;
    std::vector<ENTRY> found;
    for (fs::directory_iterator at(folder, problem), end; !problem && at != end; at.increment(problem)) {
        std::error_code none;
        const bool is_folder = at->is_directory(none) && !at->is_symlink(none);
        if (is_folder || (suffix_of(at->path().native()) == ".pdf" && at->is_regular_file(none)))
            found.push_back({at->path().native(), is_folder});
    }
    if (problem)
        return CPDFStatus::failed(PDF_CODE::IO, "the folder can't be read: " + problem.message());
    std::sort(found.begin(), found.end(), [](const ENTRY& a, const ENTRY& b) { return a.path > b.path; });
    m_entries.insert(m_entries.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
    return {};
}
