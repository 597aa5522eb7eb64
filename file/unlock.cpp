// How an encrypted file is opened.

#include "core/array.h"
#include "core/xref_table.h"
#include "file/file_reader.h"
#include "file/security/security_handler.h"

namespace {

CPDFStatus locked(const char* sentence)
{
    return CPDFStatus::failed(PDF_CODE::ENCRYPTED, sentence);
}

CPDFStatus refusal(PDF_UNLOCK result, bool has_password)
{
    switch (result) {
    case PDF_UNLOCK::OPEN:
        return {};
    case PDF_UNLOCK::WRONG_PASSWORD:
        return locked(has_password ? "the file is encrypted, and the password is wrong"
                                   : "the file is encrypted and needs a password");
    case PDF_UNLOCK::PUBLIC_KEY:
        return locked("the file is encrypted for certificates (a public-key security handler), which is not supported");
    case PDF_UNLOCK::UNKNOWN:
        return locked("the file is encrypted in a way that is not known here");
    case PDF_UNLOCK::DAMAGED:
        break;
    }
    return locked("the file is encrypted, and its encryption dictionary is damaged");
}

}  // namespace

CPDFStatus CPDFFileReader::unlock(CPDFXRefTable& xref, std::string_view password)
{
    const CPDFObj* entry = trailer().get_item("Encrypt");
    if (!entry)
        return {};
    const CPDFEntryView encrypt(&xref, entry);
    if (!encrypt->dictionary())
        return refusal(PDF_UNLOCK::DAMAGED, false);
    const CPDFEntryView id(&xref, trailer().get_item("ID"));
    const CPDFEntryView first(&xref, id->array() ? id->array()->at(0) : nullptr);
    std::string_view file_id;
    if (first->type == PDF_OBJ_STRING && first->str.buf)
        file_id = {reinterpret_cast<const char*>(first->str.buf), static_cast<size_t>(first->str.len)};
    std::unique_ptr<CPDFSecurityHandler> handler;
    const PDF_UNLOCK result = CPDFSecurityHandler::unlock(xref, *encrypt->dictionary(), file_id, password, handler);
    if (result == PDF_UNLOCK::OPEN)
        set_security(std::move(handler), entry->type == PDF_OBJ_REF ? entry->ref.num : 0);
    return refusal(result, !password.empty());
}

bool CPDFFileReader::permits_filling() const
{
    return !security() || security()->permissions().fill;
}

bool CPDFFileReader::permits_editing() const
{
    return !security() || security()->permissions().modify;
}
