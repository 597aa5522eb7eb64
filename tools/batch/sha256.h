// SHA-256 digests.
#pragma once

#include <nettle/sha2.h>

#include <string>
#include <string_view>

// May be copied in the middle, so that many texts with one beginning cost no more than their ends.
class Sha256 {
public:
    Sha256() { sha256_init(&m_context); }

    Sha256& add(std::string_view bytes)
    {
        sha256_update(&m_context, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
        return *this;
    }

    // The digest of what was added so far, in hexadecimal digits.
    std::string hex() const;

private:
    sha256_ctx m_context;
};
