// What stands behind an fw_document, and what its functions share.
#pragma once

#include <deque>
#include <string>
#include <unordered_set>
#include <vector>

#include "capi/call.h"
#include "capi/field_handles.h"
#include "document/document.h"

struct fw_document {
    CPDFDocument document;
    FieldHandles handles;
    uint64_t change = 1;           // counts the calls that changed the document
    std::vector<CPDFField*> list;  // the fields with a name of their own; borrowed, and empty until they are asked for
    bool has_list = false;
    std::deque<std::string> notes;  // as fw_note tells them
    std::unordered_set<std::string> noted;
    std::unordered_set<std::string> unique_names;  // that one field alone has; rows ask for the same ones again
    bool writes_xfa = false;
    PDF_SCRIPTS scripts = PDF_SCRIPTS::KNOWN;
    double script_seconds = 2;

    fw_document() = default;
    ~fw_document() = default;
    fw_document(const fw_document&) = delete;
    fw_document& operator=(const fw_document&) = delete;

    // Loads the whole form. A file in which damage is noticed then is repaired while nothing of it was handed out or changed.
    CPDFStatus load_form();
    // Repairs it for another reason; true when that was done.
    bool mend();
    // The fields with a name of their own, in tree order.
    CPDFStatus load_list();

    // Values changed, or what fields there are: texts that were handed out end.
    void values_changed() { ++change; }
    void structure_changed();
    // The document is another one.
    void all_changed();

    // Takes in a note, once; an empty one is none.
    void note(const std::string& sentence);
    void note_all(const std::vector<std::string>& sentences);
    // Takes in that several fields have the name of one.
    void note_same_names(const std::string& name);
    // Takes in what the document tells of itself.
    void note_document();
    void forget_notes();
};

// Refuses a flag that the call does not take, since whoever gives it wants nothing changed.
inline CPDFStatus refuse_check_only(unsigned flags)
{
    return flags & FW_CHECK_ONLY ? CPDFStatus::failed(PDF_CODE::BAD_REQUEST, "this call can't be checked only")
                                 : CPDFStatus();
}

inline PDF_FILL fill_of(unsigned flags)
{
    return flags & FW_FORCE ? PDF_FILL::FORCE : PDF_FILL::RESPECT_READ_ONLY;
}

inline PDF_EDIT edit_of(unsigned flags)
{
    return flags & FW_FORCE ? PDF_EDIT::FORCE : PDF_EDIT::RESPECT_SIGNATURES;
}

// Refuses to put values into a form whose author forbids that.
CPDFStatus check_may_fill(const CPDFDocument& document, unsigned flags);

fw_code no_document();
fw_code stale_field();

// Runs `operation(fw_document&)` as call() does.
template <typename Operation>
fw_code call_with(fw_document* document, const Operation& operation) noexcept
{
    return call([&] {
        if (!document)
            return no_document();
        document->document.begin_progress();
        return operation(*document);
    });
}

// Runs `operation(fw_document&, CPDFField&)`.
template <typename Operation>
fw_code call_with_field(fw_document* document, fw_field field, const Operation& operation) noexcept
{
    return call_with(document, [&](fw_document& at) {
        CPDFField* const found = at.handles.field_of(at.document, field);
        return found ? operation(at, *found) : stale_field();
    });
}

// Runs `operation(fw_document&, std::string& text)` and hands out its text, for the caller to free.
template <typename Operation>
fw_code call_for_text(fw_document* document, char** out, size_t* size, const Operation& operation) noexcept
{
    hand_out<char*>(out, nullptr);
    hand_out(size, size_t{0});
    if (!out)
        return bad_argument("there is no place for the text");
    std::string text;
    const fw_code code = call_with(document, [&](fw_document& at) { return operation(at, text); });
    return code == FW_OK ? hand_out_text(text, out, size) : code;
}

// The fields of these handles.
fw_code fields_of(fw_document& document, const fw_field* handles, size_t count, std::vector<CPDFField*>& out);
