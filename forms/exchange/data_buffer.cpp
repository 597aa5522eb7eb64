#include "forms/exchange/data_buffer.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "core/alloc.h"
#include "core/text.h"

namespace {

constexpr size_t STEP = 1024;

}  // namespace

CPDFDataBuffer::~CPDFDataBuffer()
{
    VXFree(m_bytes);
}

// Makes room for `size` more bytes and the terminator.
bool CPDFDataBuffer::reserve(size_t size)
{
    if (m_failed || size < m_room - m_size)
        return !m_failed;
    m_failed = size >= INT_MAX - m_size;
    if (m_failed)
        return false;
    const size_t wanted = std::max(m_size + size + 1, m_room + m_room / 4);
    const size_t room = (wanted + STEP - 1) / STEP * STEP;
    void* grown = VXRealloc(m_bytes, room);
    m_failed = !grown;
    if (m_failed)
        return false;
    m_bytes = static_cast<char*>(grown);
    m_room = room;
    return true;
}

void CPDFDataBuffer::append(const char* bytes, size_t size)
{
    if (!reserve(size))
        return;
    std::memcpy(m_bytes + m_size, bytes, size);
    m_size += size;
}

void CPDFDataBuffer::append(const char* text)
{
    if (text)
        append(text, std::strlen(text));
}

void CPDFDataBuffer::append(const PDF_String& text, FORM_ENCODER encode, int max)
{
    wchar_t wide[FORM_TEXT_CHARS + 1];
    char encoded[FORM_TEXT_MAX + 1];
    cvt_text_to_ucs(&text, wide, FORM_TEXT_CHARS);
    append(encoded, static_cast<size_t>(encode(wide, encoded, max)));
}

void CPDFDataBuffer::cut(size_t size)
{
    m_size = std::min(m_size, size);
}

char* CPDFDataBuffer::release(int& len)
{
    len = 0;
    if (!reserve(0))
        return nullptr;
    len = static_cast<int>(m_size);
    m_bytes[m_size] = 0;
    char* text = m_bytes;
    m_bytes = nullptr;
    m_size = m_room = 0;
    return text;
}
