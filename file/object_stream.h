// Object streams (ISO 32000-2, 7.5.7), decoded once and kept while there is room.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "core/limits.h"
#include "file/filter/filters.h"

// One decoded object stream and where its objects begin.
class CPDFObjectStream {
public:
    // Takes the decoded bytes; `count` is "N" and `first` is "First", neither of them trusted. No more than
    // LIMIT_STREAM_OBJECTS objects count.
    CPDFObjectStream(CPDFBytes bytes, int32_t count, int32_t first);

    // The bytes of object `num`, which the cross-reference data says is object `index` of the stream. The object ends at
    // `end` at the latest. False when the stream does not hold it.
    bool find(uint32_t num, uint32_t index, const uint8_t*& begin, const uint8_t*& end) const;

    // Memory held, in bytes.
    size_t footprint() const { return m_bytes.size() + m_places.size() * (sizeof(Place) + sizeof(uint32_t)); }

private:
    struct Place {
        uint32_t num;
        uint32_t offset;
    };

    size_t place_of(uint32_t num) const;

    CPDFBytes m_bytes;
    std::vector<Place> m_places;
    mutable std::vector<uint32_t> m_by_num;  // places in the order of their numbers, made when it is needed
};

// The decoded object streams of one file, by object number; the ones used longest ago go first when room ends.
class CPDFObjectStreamCache {
public:
    // Keeps up to `room` bytes.
    explicit CPDFObjectStreamCache(size_t room = LIMIT_OBJECT_STREAM_CACHE) : m_room(room) {}

    // The stream `num`, or null. Borrowed: ends with the next add.
    const CPDFObjectStream* find(uint32_t num);

    // Keeps `stream` as number `num` and returns it.
    const CPDFObjectStream* add(uint32_t num, std::unique_ptr<CPDFObjectStream> stream);

    // Memory of all streams that are kept, in bytes.
    size_t held() const { return m_held; }

private:
    struct Slot {
        std::unique_ptr<CPDFObjectStream> stream;
        uint64_t last_use = 0;
    };

    void make_room(size_t size);

    std::unordered_map<uint32_t, Slot> m_slots;
    size_t m_room;
    size_t m_held = 0;
    uint64_t m_clock = 0;
    uint32_t m_last_num = 0;
    const CPDFObjectStream* m_last = nullptr;  // borrowed from m_slots
};
