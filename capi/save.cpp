// What leaves the library as a file.
#include "capi/document.h"
#include "document/notes.h"

namespace {

CPDFStatus make_update(fw_document& at, std::string& update)
{
    std::vector<std::string> notes;
    CPDFStatus status;
    if (at.writes_xfa && at.change > 1 && at.document.has_xfa())
        status = at.document.write_xfa(&notes);
    if (status.ok())
        status = at.document.make_update(update);
    at.note_all(notes);
    at.note_document();
    at.note(skipped_scripts_note(at.document.skipped_scripts()));
    return status;
}

}  // namespace

fw_code fw_save_file(fw_document* document, const char* path)
{
    return call_with(document, [&](fw_document& at) {
        if (!path)
            return bad_argument("the path is NULL");
        std::string update;
        CPDFStatus status = make_update(at, update);
        if (status.ok())
            status = at.document.write(path, update);
        return result_of(status);
    });
}

fw_code fw_save_bytes(fw_document* document, unsigned flags, char** bytes, size_t* size)
{
    hand_out<char*>(bytes, nullptr);
    hand_out(size, size_t{0});
    if (!bytes)
        return bad_argument("there is no place for the bytes");
    std::string update;
    const fw_code code = call_with(document, [&](fw_document& at) { return result_of(make_update(at, update)); });
    if (code != FW_OK)
        return code;
    const char* const input = reinterpret_cast<const char*>(document->document.data());
    return hand_out_text({input, flags & FW_UPDATE_ONLY ? 0 : document->document.size()}, update, bytes, size);
}
