#include "forms/exchange/data_buffer.h"

#include <climits>
#include <cstring>

#include "core/text.h"

void CPDFDataBuffer::append(const char* bytes, size_t size)
{
    // One byte more for the terminator.
    char* at = m_failed || size >= INT_MAX - m_bytes.size() ? nullptr : m_bytes.room(size + 1);
    m_failed = !at;
    if (m_failed || size == 0)
        return;
    std::memcpy(at, bytes, size);
    m_bytes.added(size);
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

char* CPDFDataBuffer::release(int& len)
{
    append("", 0);
    len = m_failed ? 0 : static_cast<int>(m_bytes.size());
    if (m_failed)
        return nullptr;
    m_bytes.data()[len] = 0;
    return m_bytes.release();
}
