#include "tablebase/tb_pairs.h"

#include <new>
#include <vector>

namespace
{

constexpr int SINGLE_VALUE = 0x80; // flags bit: the stream holds one value for every position
constexpr int NO_SYMBOL = 0xFFF;
constexpr int MAX_SPAN = 255;  // a symbol stands for at most 256 values
constexpr int MAX_CODE_LEN = 32; // codes are refilled 32 bits at a time

inline int left_half(const uint8_t* pair)
{
    return pair[0] | (pair[1] & 0x0F) << 8;
}
inline int right_half(const uint8_t* pair)
{
    return pair[1] >> 4 | pair[2] << 4;
}

// Works out how many values each symbol stands for, walking the pair tree
// without recursion; false when a pair names a missing symbol, the pairs
// loop, or a symbol grows longer than a symbol may be.
bool measure_symbols(TbPairs* p)
{
    int n = p->symbol_count;
    std::vector<uint8_t> state(n, 0); // 0 unseen, 1 on the stack, 2 measured
    std::vector<int> stack;
    stack.reserve(n);
    for (int s = 0; s < n; s++) {
        if (state[s])
            continue;
        stack.push_back(s);
        state[s] = 1;
        while (!stack.empty()) {
            int t = stack.back();
            const uint8_t* pair = p->pairs + 3 * t;
            int right = right_half(pair);
            if (right == NO_SYMBOL) {
                p->symbol_span[t] = 0;
                state[t] = 2;
                stack.pop_back();
                continue;
            }
            int left = left_half(pair);
            if (left >= n || right >= n)
                return false;
            // One child at a time, so that the stack holds exactly the path
            // down from the symbol being measured: meeting a symbol on it
            // again is a loop.
            if (state[left] == 1 || state[right] == 1)
                return false;
            int next = state[left] == 0 ? left : state[right] == 0 ? right : -1;
            if (next >= 0) {
                state[next] = 1;
                stack.push_back(next);
                continue;
            }
            int span = p->symbol_span[left] + p->symbol_span[right] + 1;
            if (span > MAX_SPAN)
                return false;
            p->symbol_span[t] = uint8_t(span);
            state[t] = 2;
            stack.pop_back();
        }
    }
    return true;
}

// The decoder trusts what is checked here: the bases fall with the code
// length (so the search for a code's length ends by the longest), and every
// code of every length names an existing symbol.
bool codes_are_canonical(TbPairs* p)
{
    for (int len = p->min_len; len < p->max_len; len++)
        if (p->base[len] < p->base[len + 1])
            return false;
    for (int len = p->min_len; len <= p->max_len; len++) {
        uint64_t top = len == p->min_len ? ~uint64_t(0) : p->base[len - 1] - 1;
        if (len > p->min_len && p->base[len - 1] == p->base[len])
            continue; // no code of this length
        if (p->lowest_symbol[len] + ((top - p->base[len]) >> (64 - len)) >= p->symbol_count)
            return false;
    }
    // Where to start looking for the length of a code by its first byte:
    // shorter lengths whose base lies above every code with that byte are
    // skipped.
    for (int b = 0; b < 256; b++) {
        uint64_t highest = uint64_t(b) << 56 | ((uint64_t(1) << 56) - 1);
        int len = p->min_len;
        while (highest < p->base[len])
            len++;
        p->first_len[b] = uint8_t(len);
    }
    return true;
}

} // namespace

bool tb_pairs_header(TbCursor* c, uint64_t positions, TbPairs* p)
{
    *p = TbPairs{};
    p->constant = -1;
    p->flags = uint8_t(tb_byte(c));
    if (p->flags & SINGLE_VALUE) {
        p->constant = int16_t(tb_byte(c));
        return c->ok;
    }
    // Block size and span as powers of two, padding of the size list, the
    // number of blocks, the longest and the shortest code.
    const uint8_t* h = tb_take(c, 9);
    if (!h)
        return false;
    p->block_bits = h[0];
    p->span_bits = h[1];
    p->block_count = read_le32(h + 3);
    p->size_count = p->block_count + h[2];
    p->max_len = h[7];
    p->min_len = h[8];
    if (p->block_bits < 3 || p->block_bits > 30 || p->span_bits < 1 || p->span_bits > 40)
        return false;
    if (p->min_len < 1 || p->min_len > p->max_len || p->max_len > MAX_CODE_LEN)
        return false;
    if (p->size_count < p->block_count)
        return false;
    int lengths = p->max_len - p->min_len + 1;
    const uint8_t* lowest = tb_take(c, 2 * lengths);
    const uint8_t* n = tb_take(c, 2);
    if (!n)
        return false;
    p->symbol_count = read_le16(n);
    if (p->symbol_count == 0 || p->symbol_count > NO_SYMBOL)
        return false;
    p->pairs = tb_take(c, 3 * p->symbol_count + (p->symbol_count & 1));
    if (!p->pairs)
        return false;
    p->sparse_count = (positions + (uint64_t(1) << p->span_bits) - 1) >> p->span_bits;

    // Canonical codes: longer codes take the smaller numbers, so the
    // smallest code of each length, left-aligned in 64 bits, falls as the
    // length grows and a code's length is the first whose base it reaches.
    for (int len = p->min_len; len <= p->max_len; len++)
        p->lowest_symbol[len] = read_le16(lowest + 2 * (len - p->min_len));
    p->base[p->max_len] = 0;
    for (int len = p->max_len - 1; len >= p->min_len; len--)
        p->base[len] = (p->base[len + 1] + p->lowest_symbol[len] - p->lowest_symbol[len + 1]) / 2;
    for (int len = p->min_len; len <= p->max_len; len++)
        p->base[len] <<= 64 - len;
    if (!codes_are_canonical(p))
        return false;
    p->symbol_span = new (std::nothrow) uint8_t[p->symbol_count];
    if (!p->symbol_span || !measure_symbols(p)) {
        tb_pairs_release(p);
        return false;
    }
    return true;
}

int tb_pairs_value(const TbPairs* p, uint64_t idx)
{
    if (p->constant >= 0)
        return p->constant;

    // Step 1: from the sparse index to the block and the offset inside it.
    uint64_t entry = idx >> p->span_bits;
    if (entry >= p->sparse_count)
        return -1;
    const uint8_t* e = p->sparse + 6 * entry;
    uint32_t block = read_le32(e);
    int64_t half = int64_t(1) << (p->span_bits - 1);
    int64_t offset = int64_t(idx & ((uint64_t(1) << p->span_bits) - 1)) - half + read_le16(e + 4);
    if (block >= p->size_count)
        return -1;
    while (offset < 0) {
        if (block == 0)
            return -1;
        offset += read_le16(p->block_sizes + 2 * --block) + 1;
    }
    while (offset > read_le16(p->block_sizes + 2 * block)) {
        offset -= read_le16(p->block_sizes + 2 * block) + 1;
        if (++block >= p->size_count)
            return -1;
    }
    if (block >= p->block_count)
        return -1;

    // Step 2: read codes until the symbol that covers the offset.
    const uint8_t* next = p->blocks + (uint64_t(block) << p->block_bits);
    const uint8_t* end = next + (uint64_t(1) << p->block_bits);
    uint64_t code = read_be64(next);
    next += 8;
    int used = 0; // bits of `code` consumed since the last refill
    int sym;
    for (;;) {
        int len = p->first_len[code >> 56];
        while (code < p->base[len])
            len++;
        sym = int(p->lowest_symbol[len] + ((code - p->base[len]) >> (64 - len)));
        if (offset <= p->symbol_span[sym])
            break;
        offset -= p->symbol_span[sym] + 1;
        code <<= len;
        used += len;
        if (used >= 32) {
            used -= 32;
            // The block's last codes may sit in the register already; past
            // the block's end only zeros come in.
            if (end - next >= 4) {
                code |= uint64_t(read_be32(next)) << used;
                next += 4;
            }
        }
    }

    // Step 3: down the pair tree to the one value.
    while (p->symbol_span[sym]) {
        const uint8_t* pair = p->pairs + 3 * sym;
        int left = left_half(pair);
        if (offset <= p->symbol_span[left]) {
            sym = left;
        } else {
            offset -= p->symbol_span[left] + 1;
            sym = right_half(pair);
        }
    }
    return p->pairs[3 * sym];
}

void tb_pairs_release(TbPairs* p)
{
    delete[] p->symbol_span;
    p->symbol_span = nullptr;
}
