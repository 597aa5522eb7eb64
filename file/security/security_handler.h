// The standard security handler (ISO 32000-2, 7.6): what of an encrypted file is encrypted, and how.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/object.h"
#include "file/security/cipher.h"
#include "file/security/file_key.h"

class CPDFDictionary;
class CPDFXRefTable;

enum class PDF_UNLOCK {
    OPEN,
    WRONG_PASSWORD,
    PUBLIC_KEY,  // encrypted for certificates
    UNKNOWN,     // another handler, or a version of this one that is not known
    DAMAGED,     // the encryption dictionary lacks what it needs
};

// What a person who opened the file with the user's password may do with its form ("P"; ISO 32000-2, table 22).
struct PDF_PERMISSIONS {
    bool fill = true;    // put values into fields
    bool modify = true;  // add, remove and change fields
};

// An object's strings and streams each have a key made of the file's and of the object's number, or the file's own.
class CPDFSecurityHandler {
public:
    // Reads the encryption dictionary `encrypt`, whose own strings are plain, and makes `out` from it when the empty password
    // or `password`, in UTF-8, opens the file. `file_id` is the first text of the trailer's "ID".
    static PDF_UNLOCK unlock(CPDFXRefTable& xref, const CPDFDictionary& encrypt, std::string_view file_id,
                             std::string_view password, std::unique_ptr<CPDFSecurityHandler>& out);

    const PDF_PERMISSIONS& permissions() const { return m_permissions; }

    // Decrypts or encrypts every string in `obj`, which is object `ref`: of a stream those of its dictionary. The value of a
    // signature and what a cross-reference stream says are never encrypted. A string for which there is no memory is left empty.
    void decrypt_strings(CPDFObj& obj, const PDF_REF& ref) const;
    void encrypt_strings(CPDFObj& obj, const PDF_REF& ref) const;

    // How the data of the stream object `ref` are encrypted. References in `dict` are followed through `xref`; null reads as
    // if they were absent.
    PDF_CIPHER_KEY stream_key(CPDFXRefTable* xref, const CPDFDictionary& dict, const PDF_REF& ref) const;

private:
    struct NamedCipher {
        std::string name;
        PDF_CIPHER cipher;
    };

    bool read_ciphers(CPDFXRefTable& xref, const CPDFDictionary& encrypt, int version);
    PDF_CIPHER cipher_of(std::string_view name) const;
    PDF_CIPHER_KEY key_of(PDF_CIPHER cipher, const PDF_REF& ref) const;
    template <typename Change>
    static void for_each_string(CPDFObj& obj, const Change& change);

    uint8_t m_key[PDF_CIPHER_LONGEST_KEY] = {};
    size_t m_key_size = 0;
    bool m_one_key = false;  // for all objects
    bool m_encrypts_metadata = true;
    PDF_CIPHER m_strings = PDF_CIPHER::NONE;
    PDF_CIPHER m_streams = PDF_CIPHER::NONE;
    std::vector<NamedCipher> m_named;  // "CF", for streams that choose one
    PDF_PERMISSIONS m_permissions;
};
