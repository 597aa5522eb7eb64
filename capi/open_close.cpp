// Opening documents, what there is to know of one as a whole, and its options.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>

#include "capi/document.h"
#include "core/dictionary.h"

namespace {

// The members that the caller's header has; the others are 0.
fw_open_options known_options(const fw_open_options& given)
{
    fw_open_options options = {};
    std::memcpy(&options, &given, std::min(given.struct_size, sizeof options));
    return options;
}

// `open(CPDFDocument&, password, borrow)` opens it.
template <typename Open>
fw_code open_with(const fw_open_options* given, fw_document** out, const Open& open)
{
    if (!out)
        return bad_argument("there is no place for the document");
    *out = nullptr;
    constexpr size_t FIRST_SIZE = offsetof(fw_open_options, no_repair) + sizeof(int);  // of the first version
    if (given && given->struct_size < FIRST_SIZE)
        return bad_argument("the options have no struct_size");
    return call([&] {
        const fw_open_options options = given ? known_options(*given) : fw_open_options{};
        auto made = std::make_unique<fw_document>();
        made->document.set_rescue(options.no_repair ? PDF_RESCUE::OFF : PDF_RESCUE::REPAIR);
        const CPDFStatus status = open(made->document, options.password ? options.password : "", options.borrow != 0);
        if (!status.ok())
            return result_of(status);
        made->note_document();
        *out = made.release();
        return FW_OK;
    });
}

bool fact_of(fw_document& at, fw_fact fact)
{
    switch (fact) {
    case FW_HAS_FORM:
        return at.document.has_form();
    case FW_HAS_XFA:
        return at.document.has_xfa();
    case FW_HAS_ONLY_XFA:
        return at.document.has_only_xfa();
    case FW_IS_SIGNED:
        return at.document.is_signed();
    case FW_IS_ENCRYPTED:
        return at.document.trailer().get_item("Encrypt") != nullptr;
    case FW_PERMITS_FILLING:
        return at.document.permits_filling();
    case FW_PERMITS_EDITING:
        return at.document.permits_editing();
    case FW_WAS_REPAIRED:
        return at.document.was_repaired();
    }
    return false;
}

}  // namespace

fw_code fw_open_file(const char* path, const fw_open_options* options, fw_document** document)
{
    hand_out<fw_document*>(document, nullptr);
    if (!path)
        return bad_argument("the path is NULL");
    return open_with(options, document, [path](CPDFDocument& made, const char* password, bool /*borrow*/) {
        return made.open(std::string(path), PDF_LOAD::NAMED_FIELDS, password);
    });
}

fw_code fw_open_bytes(const void* bytes, size_t size, const fw_open_options* options, fw_document** document)
{
    hand_out<fw_document*>(document, nullptr);
    if (!bytes && size > 0)
        return bad_argument("the bytes are NULL");
    return open_with(options, document, [&](CPDFDocument& made, const char* password, bool borrow) {
        const std::span<const uint8_t> given(static_cast<const uint8_t*>(bytes), size);
        if (borrow)
            return made.open_borrowed(given, PDF_LOAD::NAMED_FIELDS, password);
        return made.open(std::vector<uint8_t>(given.begin(), given.end()), PDF_LOAD::NAMED_FIELDS, password);
    });
}

void fw_close(fw_document* document)
{
    delete document;
}

fw_code fw_has(fw_document* document, fw_fact fact, int* holds)
{
    hand_out(holds, 0);
    return call_with(document, [&](fw_document& at) {
        if (fact < FW_HAS_FORM || fact > FW_WAS_REPAIRED)
            return bad_argument("there is no such fact");
        hand_out(holds, fact_of(at, fact) ? 1 : 0);
        return FW_OK;
    });
}

fw_code fw_set_option(fw_document* document, fw_option option, long value)
{
    return call_with(document, [&](fw_document& at) {
        switch (option) {
        case FW_SCRIPTS:
            if (value < 0 || value > 2)
                return bad_argument("scripts are 0 (none), 1 (known) or 2 (all)");
            at.scripts = static_cast<PDF_SCRIPTS>(value);
            at.document.set_scripts(at.scripts, at.script_seconds);
            return FW_OK;
        case FW_SCRIPT_MILLISECONDS:
            if (value < 10 || value > 3600000)
                return bad_argument("scripts take from 10 to 3600000 milliseconds");
            at.script_seconds = static_cast<double>(value) / 1000;
            at.document.set_scripts(at.scripts, at.script_seconds);
            return FW_OK;
        case FW_DRAW:
            if (value != 0 && value != 1)
                return bad_argument("drawing is 0 or 1");
            at.document.set_drawing(value ? PDF_DRAWING::DRAW : PDF_DRAWING::LEAVE_TO_VIEWERS);
            return FW_OK;
        case FW_WRITE_XFA:
            if (value != 0 && value != 1)
                return bad_argument("writing XFA data is 0 or 1");
            at.writes_xfa = value != 0;
            return FW_OK;
        }
        return bad_argument("there is no such option");
    });
}

fw_code fw_set_progress(fw_document* document, fw_progress progress, void* user)
{
    return call_with(document, [&](fw_document& at) {
        if (progress)
            at.document.set_progress([progress, user](double done) { return progress(done, user) == 0; });
        else
            at.document.set_progress(nullptr);
        return FW_OK;
    });
}

fw_code fw_note(fw_document* document, size_t index, const char** note)
{
    hand_out<const char*>(note, nullptr);
    return call_with(document, [&](fw_document& at) {
        at.note_document();
        hand_out(note, index < at.notes.size() ? at.notes[index].c_str() : nullptr);
        return FW_OK;
    });
}
