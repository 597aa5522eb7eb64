// Arrays of plain records that grow: as a class, and for records whose pointer and count are members of their own.
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "core/alloc.h"

// Moves `records`, which may be null, to a block with room for `room` of them. False, with everything as it was, when
// memory runs out.
template <typename T>
[[nodiscard]] bool vx_set_room(T*& records, size_t room)
{
    void* moved = room <= SIZE_MAX / sizeof(T) ? VXRealloc(records, room * sizeof(T)) : nullptr;
    if (moved)
        records = static_cast<T*>(moved);
    return moved != nullptr;
}

// Makes room for `more` further records than `room`, which is raised. False as above, and beyond the range of int32_t.
template <typename T>
[[nodiscard]] bool vx_add_room(T*& records, int32_t& room, int32_t more)
{
    if (room > INT32_MAX - more || !vx_set_room(records, static_cast<size_t>(room) + static_cast<size_t>(more)))
        return false;
    room += more;
    return true;
}

// Records in one VXAlloc block. It grows in whole steps of STEP records, by the PART-th part of what it has where that is
// more. When memory runs out a call says so and changes nothing. Moved, never copied; what a record points to is not freed.
template <typename T, size_t STEP, size_t PART = 4>
class CPDFGrowable {
public:
    static_assert(std::is_trivially_copyable_v<T>);

    CPDFGrowable() = default;
    ~CPDFGrowable() { VXFree(m_records); }
    CPDFGrowable(CPDFGrowable&& other) noexcept { swap(other); }
    CPDFGrowable& operator=(CPDFGrowable&& other) noexcept
    {
        swap(other);
        return *this;
    }
    CPDFGrowable(const CPDFGrowable&) = delete;
    CPDFGrowable& operator=(const CPDFGrowable&) = delete;

    // Borrowed: ends with the next call that adds. Null while nothing was added.
    T* data() { return m_records; }
    const T* data() const { return m_records; }
    T* begin() { return m_records; }
    T* end() { return m_records + m_size; }
    const T* begin() const { return m_records; }
    const T* end() const { return m_records + m_size; }
    T& operator[](size_t index) { return m_records[index]; }
    const T& operator[](size_t index) const { return m_records[index]; }
    T& back() { return m_records[m_size - 1]; }
    size_t size() const { return m_size; }
    size_t capacity() const { return m_room; }
    bool empty() const { return m_size == 0; }

    // Room for `room` records in all, not more.
    [[nodiscard]] bool reserve(size_t room)
    {
        if (room > m_room && !vx_set_room(m_records, room))
            return false;
        m_room = std::max(m_room, room);
        return true;
    }

    // Room for `more` records behind the last one, uninitialised: write there, then call added. Null when memory runs out.
    [[nodiscard]] T* room(size_t more)
    {
        if (more > m_room - m_size && !grow(more))
            return nullptr;
        return m_records + m_size;
    }
    void added(size_t count) { m_size += count; }

    [[nodiscard]] bool append(const void* records, size_t count)
    {
        T* at = count ? room(count) : nullptr;
        if (at)
            std::memcpy(at, records, count * sizeof(T));
        m_size += at ? count : 0;
        return at || count == 0;
    }

    [[nodiscard]] bool push(const T& record)
    {
        const T own = record;  // may be one of these
        return append(&own, 1);
    }

    // The last record, taken off.
    T pop() { return m_records[--m_size]; }

    // Drops what lies behind the first `size` records; does nothing when there are fewer.
    void cut(size_t size) { m_size = std::min(m_size, size); }

    // Gives back room that is not used.
    void shrink()
    {
        if (m_size < m_room && vx_set_room(m_records, m_size))
            m_room = m_size;
    }

    // Frees everything.
    void clear() { VXFree(release()); }

    // The block, which the caller owns (VXFree); null when nothing was ever added. Leaves this empty.
    T* release()
    {
        T* records = m_records;
        m_records = nullptr;
        m_size = m_room = 0;
        return records;
    }

    void swap(CPDFGrowable& other) noexcept
    {
        std::swap(m_records, other.m_records);
        std::swap(m_size, other.m_size);
        std::swap(m_room, other.m_room);
    }

private:
    bool grow(size_t more)
    {
        if (more > SIZE_MAX / 4 / sizeof(T) - m_size)
            return false;
        const size_t wanted = std::max(m_size + more, m_room + m_room / PART);
        return reserve((wanted + STEP - 1) / STEP * STEP);
    }

    T* m_records = nullptr;  // owned, from VXAlloc
    size_t m_size = 0;
    size_t m_room = 0;
};
