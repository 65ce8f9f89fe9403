// The per-thread pawn and evaluation caches.
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

struct SearchThread;

// Zeroes both caches of one thread.
void clear_eval_caches(SearchThread* thread);

// Zeroes the caches of every search thread and of the game's record.
void clear_all_eval_caches();
