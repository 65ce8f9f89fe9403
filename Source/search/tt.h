// The transposition table all search threads share, without locks.
//
// Entries are 16 bytes and a bucket is four consecutive entries starting at
// any entry. Even keys count their bucket from the front of the table and odd
// keys from the back, so a table whose size is not a power of two is used
// whole. Each entry carries a check word binding key, score and move, which
// lets a reader reject an entry torn by a concurrent writer.
#pragma once

#include "board/position.h"

#include <cstdint>

enum Bound : uint8_t { BOUND_NONE = 0, BOUND_UPPER = 1, BOUND_LOWER = 2, BOUND_EXACT = 3 };

// The probe result handed to callers: a copy of the entry's fields.
struct TransEntry {
    uint32_t lock;  // low 32 bits of the key
    uint32_t check; // (key >> 32) ^ (score + 15000) ^ (move << 16)
    uint16_t move;
    int16_t score; // mate scores relative to the node
    int8_t depth;  // -98: torn entry, -99: move does not fit; below -9 is a miss
    uint8_t bound;
    uint8_t age;
    uint8_t halfmove;
};
static_assert(sizeof(TransEntry) == 16, "transposition entry layout");

constexpr int TT_TORN = -98;
constexpr int TT_BAD_MOVE = -99;
constexpr int TT_MISS = -10;

struct TransTable {
    uint32_t entries;    // usable entries: megabytes * 65536
    uint64_t index_mask; // largest power of two not above entries, minus one
    uint64_t* words;     // two words per entry; entries + 16 entries in all
    int megabytes;
    uint16_t age; // 1..15, advanced before every search
    uint8_t use_hash;
};

extern TransTable tt;

// (Re)allocates for `megabytes`, keeping the old table when the memory
// cannot be had. Returns 1, or 0 on failure. The new table reads as empty;
// clearing it once commits its pages before any search.
int tt_allocate(int megabytes);
int tt_megabytes();

// Zeroes the whole table on the calling thread (clear_hash_table in
// threads.h shares the work among the workers).
void tt_clear();
// Zeroes slice `index` of `count` (a worker's share of tt_clear).
void tt_clear_slice(int index, int count);

// Fills `result`; its depth stays below -9 on a miss.
void tt_probe(const Position* pos, TransEntry* result);
void tt_store(const Position* pos, int ply, int depth, Move move, int score, int alpha, int beta);

// Fraction (0..1) of a 1000-entry sample written in this search.
double tt_hashfull(int depth);


// Advances the age (1..15) before a search.
void tt_new_search();

// Where the bucket of a key begins (entry index).
inline uint64_t tt_bucket_index(uint64_t key)
{
    uint64_t i = key & tt.index_mask;
    return (key & 1) ? tt.entries - i : i;
}

// Hints the bucket of a key into the cache: both lines when it straddles two.
inline void tt_prefetch(uint64_t key)
{
    if (tt.words && tt.use_hash) {
        const uint64_t* bucket = tt.words + 2 * tt_bucket_index(key);
        __builtin_prefetch(bucket);
        __builtin_prefetch(bucket + 6);
    }
}

void tt_free();
