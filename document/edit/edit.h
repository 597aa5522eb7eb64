// What the operations that change the structure of a form share.
#pragma once

#include <string>
#include <vector>

#include "core/object.h"
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

// A document that is being edited; all borrowed. An operation keeps every part in step with its change.
struct EDIT_TARGET {
    CPDFXRefTable& xref;
    CPDFAcroForm& form;
    CPDFObj& root;  // the catalog
    const PDF_REF& root_ref;
    CPDFPageMap& pages;
    CPDFNameIndex& names;
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
