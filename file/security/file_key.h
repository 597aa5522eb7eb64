// The key of an encrypted file, found with a password (ISO 32000-2, 7.6.4.3 and 7.6.4.4).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What the encryption dictionary and the trailer say.
struct PDF_PASSWORD_CHECK {
    int revision = 0;          // "R": 2 to 6
    size_t key_size = 5;       // bytes of the key: 5 to 16, and 32 from revision 5 on
    std::string owner;         // "O": 32 bytes, 48 from revision 5 on
    std::string user;          // "U"
    std::string owner_key;     // "OE", 32 bytes, from revision 5 on
    std::string user_key;      // "UE"
    uint32_t permissions = 0;  // "P"
    std::string file_id;       // the first text of the trailer's "ID"
    bool encrypts_metadata = true;
};

enum class PDF_PASSWORD {
    WRONG,
    USER,
    OWNER,
};

// Tells what `password`, in UTF-8, is (USER where one password is both), and when it is right sets `key`, of PDF_CIPHER_LONGEST_KEY bytes. Up to revision 4 a
// password counts in PDFDocEncoding as well as with its bytes as they are.
PDF_PASSWORD find_file_key(const PDF_PASSWORD_CHECK& check, std::string_view password, uint8_t* key);
