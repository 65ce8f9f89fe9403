// Reading a mapped table file front to back without ever leaving it: every
// read checks the file's length first and a failed read spoils the cursor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

inline uint16_t read_le16(const uint8_t* p)
{
    return uint16_t(p[0] | p[1] << 8);
}
inline uint32_t read_le32(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
inline uint32_t read_be32(const uint8_t* p)
{
    uint32_t v;
    std::memcpy(&v, p, 4);
    return __builtin_bswap32(v);
}
inline uint64_t read_be64(const uint8_t* p)
{
    uint64_t v;
    std::memcpy(&v, p, 8);
    return __builtin_bswap64(v);
}

struct TbCursor {
    const uint8_t* start;
    size_t size;
    size_t pos;
    bool ok;
};

inline TbCursor tb_cursor(const uint8_t* start, size_t size)
{
    return TbCursor{start, size, 0, true};
}

// The next `n` bytes, or nullptr (and a spoilt cursor) when the file ends first.
inline const uint8_t* tb_take(TbCursor* c, uint64_t n)
{
    if (!c->ok || n > c->size - c->pos) {
        c->ok = false;
        return nullptr;
    }
    const uint8_t* p = c->start + c->pos;
    c->pos += size_t(n);
    return p;
}

inline int tb_byte(TbCursor* c)
{
    const uint8_t* p = tb_take(c, 1);
    return p ? *p : 0;
}

// Skips to the next multiple of `alignment` bytes from the file's start
// (the file is mapped at a page boundary, so this aligns the memory too).
// A file may end inside the padding when nothing follows it.
inline void tb_align(TbCursor* c, size_t alignment)
{
    size_t pad = (alignment - c->pos % alignment) % alignment;
    c->pos = pad > c->size - c->pos ? c->size : c->pos + pad;
}
