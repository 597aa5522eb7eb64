// What the operations that change the structure of a form share.
#pragma once

#include <string>
#include <vector>

#include "core/entry_change.h"
#include "core/object.h"
#include "document/lookup/page_box.h"
#include "file/status.h"

class CPDFAcroForm;
class CPDFNameIndex;
class CPDFPageMap;
class CPDFWidgetBinder;

// Whether a document may be changed though its signatures forbid it.
enum class PDF_EDIT {
    RESPECT_SIGNATURES,
    FORCE,
};

// A document that is being edited; all references are borrowed. An operation keeps every part in step with its change.
struct EDIT_TARGET {
    CPDFXRefTable& xref;
    CPDFAcroForm& form;
    CPDFObj& root;  // the catalog
    const PDF_REF& root_ref;
    CPDFPageMap& pages;
    CPDFNameIndex& names;
    CPDFWidgetBinder& widgets;  // bound where the operation says so
    CPDFPageBoxes boxes = {};   // which no operation changes
};

// Everything that is wrong with a request, so that it can be told at once.
class CPDFRefusals {
public:
    void add(std::string sentence) { m_sentences.push_back(std::move(sentence)); }

    // Fails with all sentences, "; " between them, or is ok when there are none.
    CPDFStatus status() const
    {
        std::string all;
        for (const std::string& sentence : m_sentences)
            all += (all.empty() ? "" : "; ") + sentence;
        return m_sentences.empty() ? CPDFStatus() : CPDFStatus::failed(PDF_CODE::BAD_EDIT, all);
    }

private:
    std::vector<std::string> m_sentences;
};

// What an operation answers when memory ran out; a part of the change may have been made.
inline CPDFStatus no_memory_to_edit()
{
    return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to change the form");
}

// Two changes that belong together: what became of the first that was not stored.
inline PDF_CHANGE_RESULT both(PDF_CHANGE_RESULT first, PDF_CHANGE_RESULT second)
{
    return first == PDF_CHANGE_RESULT::STORED ? second : first;
}

// Why a change was not stored; `damage` is the sentence for a dictionary or array that isn't there.
inline CPDFStatus edit_status(PDF_CHANGE_RESULT result, const std::string& damage)
{
    if (result == PDF_CHANGE_RESULT::STORED)
        return {};
    return result == PDF_CHANGE_RESULT::NO_MEMORY ? no_memory_to_edit() : CPDFStatus::failed(PDF_CODE::DAMAGED, damage);
}
