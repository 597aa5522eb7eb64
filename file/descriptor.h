// A file descriptor that is closed at the end of its scope.
#pragma once

#include <unistd.h>

#include <utility>

class CPDFDescriptor {
public:
    explicit CPDFDescriptor(int fd) : m_fd(fd) {}
    ~CPDFDescriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    CPDFDescriptor(const CPDFDescriptor&) = delete;
    CPDFDescriptor& operator=(const CPDFDescriptor&) = delete;

    int get() const { return m_fd; }
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;  // owned
};
