// One compressed stream of table values.
//
// The values of a table side are cut into blocks of a fixed byte size. Each
// block is a big-endian bit string of canonical Huffman codes; a code names a
// symbol, and a symbol is either one value or a pair of two earlier symbols,
// so that one symbol may stand for up to 256 consecutive values. A sparse
// index gives, every 2^span_bits positions, the block and the offset inside
// it of the position half a span further on; the block sizes (values per
// block) lead from there to the block that holds any position.
#pragma once

#include "tablebase/tb_cursor.h"

struct TbPairs {
    const uint8_t* sparse;      // 6 bytes an entry: block (u32) and offset into it (u16)
    const uint8_t* block_sizes; // u16 a block: values in the block, less one
    const uint8_t* blocks;      // block_count blocks of 2^block_bits bytes
    const uint8_t* pairs;       // 3 bytes a symbol: two 12-bit halves, the right one 0xFFF for a value
    uint8_t* symbol_span;       // values a symbol stands for, less one (owned)
    uint64_t base[33];          // by code length: the smallest left-aligned code of that length
    uint16_t lowest_symbol[33]; // by code length: the symbol of its smallest code
    uint8_t first_len[256];     // by a code's first byte: the shortest length it can have
    uint64_t sparse_count;
    uint32_t size_count; // entries of block_sizes (the blocks and some padding)
    uint32_t block_count;
    uint16_t symbol_count;
    uint8_t block_bits;
    uint8_t span_bits;
    uint8_t min_len;
    uint8_t max_len;
    uint8_t flags;    // the flags byte that opens the stream's header
    int16_t constant; // the value of a stream that holds only one, else -1
};

// Reads the stream's header at the cursor for a side of `positions` values:
// the code lengths, the symbol pairs (checked to form a tree) and the sizes
// of the three later sections. False on anything a table cannot hold.
bool tb_pairs_header(TbCursor* c, uint64_t positions, TbPairs* p);

// Byte sizes of the later sections, in file order.
inline uint64_t tb_sparse_bytes(const TbPairs* p)
{
    return 6 * p->sparse_count;
}
inline uint64_t tb_sizes_bytes(const TbPairs* p)
{
    return 2 * uint64_t(p->size_count);
}
inline uint64_t tb_blocks_bytes(const TbPairs* p)
{
    return uint64_t(p->block_count) << p->block_bits;
}

// The value (0..255) stored for position `idx`; -1 when the stream's data
// leads outside itself.
int tb_pairs_value(const TbPairs* p, uint64_t idx);

void tb_pairs_release(TbPairs* p);
