// The bytes of the input file, mapped or held.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "file/status.h"

// Owns the bytes, unless they are lent to it; they never change and stay at their place while this lives.
class CPDFFileBytes {
public:
    CPDFFileBytes() = default;
    ~CPDFFileBytes();
    CPDFFileBytes(const CPDFFileBytes&) = delete;
    CPDFFileBytes& operator=(const CPDFFileBytes&) = delete;

    // Maps a regular file, reads anything else to its end.
    CPDFStatus open(const std::string& path);
    // The same with a file that is open; takes the descriptor.
    CPDFStatus open(int fd);
    void take(std::vector<uint8_t> bytes);
    // Bytes of another owner, who keeps them where they are while this lives.
    void borrow(const uint8_t* data, size_t size);

    const uint8_t* data() const { return m_data; }
    size_t size() const { return m_size; }

    // A descriptor of the file that is mapped, for copying it; -1 for bytes that are held. Borrowed while this lives.
    int descriptor() const { return m_fd; }

private:
    CPDFStatus read_all(int fd);

    const uint8_t* m_data = nullptr;  // borrowed from m_mapping or m_held
    size_t m_size = 0;
    void* m_mapping = nullptr;  // owned
    int m_fd = -1;              // owned
    std::vector<uint8_t> m_held;
};
