// The ciphers of encrypted files (ISO 32000-2, 7.6.3): RC4, and AES in CBC mode.
#pragma once

#include <cstddef>
#include <cstdint>

enum class PDF_CIPHER {
    NONE,  // the data are as they are
    RC4,
    AES,  // a random block in front, and 1 to 16 bytes behind that fill up the last block, each of them their number
};

constexpr size_t PDF_CIPHER_BLOCK = 16;
constexpr size_t PDF_CIPHER_LONGEST_KEY = 32;

// A cipher and its key: 5 to 16 bytes for RC4, 16 or 32 for AES.
struct PDF_CIPHER_KEY {
    PDF_CIPHER cipher = PDF_CIPHER::NONE;
    size_t size = 0;
    uint8_t bytes[PDF_CIPHER_LONGEST_KEY] = {};
};

// Decrypts `size` bytes where they stand and returns how many are left. Of data that are damaged, whole blocks are decrypted.
size_t decrypt_in_place(const PDF_CIPHER_KEY& key, uint8_t* data, size_t size);

// How many bytes `size` bytes become.
size_t encrypted_size(PDF_CIPHER cipher, size_t size);

// Encrypts `size` bytes into `out`, which has room for encrypted_size and does not overlap. Equal data become equal bytes
// under one key: the block in front is made of both, so that a document that is saved twice is saved alike.
void encrypt(const PDF_CIPHER_KEY& key, const uint8_t* data, size_t size, uint8_t* out);

// The bare ciphers, which passwords and keys are checked with.
void rc4(const uint8_t* key, size_t key_size, uint8_t* data, size_t size);
// Whole blocks only; `iv` is a block and ends as the last one that was encrypted.
void aes_encrypt_blocks(const uint8_t* key, size_t key_size, uint8_t* iv, const uint8_t* data, size_t size,
                        uint8_t* out);
void aes_decrypt_blocks(const uint8_t* key, size_t key_size, uint8_t* iv, const uint8_t* data, size_t size,
                        uint8_t* out);
