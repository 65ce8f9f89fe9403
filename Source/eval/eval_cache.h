// What one evaluating thread owns: its pawn and evaluation caches, their
// counters, and the tuner's switch.
#pragma once

#include "eval/score.h"

#include <cstdint>

constexpr int PAWN_HASH_SIZE = 16384;
constexpr int EVAL_HASH_SIZE = 32768;

struct PawnHashEntry {
    uint64_t key;
    Score score[2]; // White's and Black's pawn terms
};
static_assert(sizeof(PawnHashEntry) == 16, "pawn hash entry layout");

struct EvalHashEntry {
    uint64_t key;
    uint16_t threat[2]; // the per-side values handed to the search
    int16_t score;      // final score, side to move's view
    int16_t unused;
};
static_assert(sizeof(EvalHashEntry) == 16, "evaluation hash entry layout");

// Rows a single evaluation can touch, with room to spare; beyond it the
// tuner walks the whole table.
constexpr int MAX_TOUCHED_ROWS = 512;

struct EvalCaches {
    PawnHashEntry pawn_hash[PAWN_HASH_SIZE];
    EvalHashEntry eval_hash[EVAL_HASH_SIZE];
    uint32_t generation; // the parameter table the entries were computed with
    uint64_t eval_count;
    uint64_t pawn_probes, pawn_hits;
    uint64_t eval_probes, eval_hits;
    uint8_t tuning;    // record each row's coefficient (the tuner only)
    double last_phase; // game phase of the last full evaluation
    // While tuning: rows whose coefficient went from zero to non-zero.
    uint16_t touched[MAX_TOUCHED_ROWS];
    int touched_count;
};

// Zeroes both caches.
void clear_eval_caches(EvalCaches* caches);

// The pawn cache's key: the pawn key folded with the kings' wings, since the
// cached pawn scores depend on where both kings stand.
inline uint64_t pawn_cache_key(uint64_t pawn_key, int white_king, int black_king)
{
    if ((white_king & 7) < 4)
        pawn_key ^= 0x5555555555555555ULL;
    if ((black_king & 7) < 4)
        pawn_key ^= 0xAAAAAAAAAAAAAAAAULL;
    return pawn_key;
}

// Hints the cache entries of a position into the processor's cache ahead of
// its evaluation (the caches are larger than the fast levels).
inline void prefetch_eval_entry(const EvalCaches* c, uint64_t key)
{
    __builtin_prefetch(&c->eval_hash[key & (EVAL_HASH_SIZE - 1)]);
}
inline void prefetch_pawn_entry(const EvalCaches* c, uint64_t pawn_cache_key)
{
    __builtin_prefetch(&c->pawn_hash[pawn_cache_key & (PAWN_HASH_SIZE - 1)]);
}
