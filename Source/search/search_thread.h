// Everything one search thread owns. The game itself is kept in a record of
// the same kind, so that make/unmake and the draw test work alike on both.
#pragma once

#include "board/movegen.h"
#include "board/position.h"
#include "eval/eval_cache.h"
#include "search/ply_info.h"

// Room for the move lists of one line: the list of ply p starts where the
// list of ply p - 1 ended.
constexpr int MOVE_BUFFER_SIZE = (MAX_PLY + 8) * 320;

struct SearchThread {
    Position pos;
    UndoRecord undo[MAX_GAME_PLY];
    int16_t game_ply;    // undo records in use, the index of the next one
    int16_t search_ply;  // ply of the current node; 1 after set-up
    uint16_t last_move;  // move that led here, 0 if none
    int thread_number;

    uint64_t nodes;
    uint8_t iteration_depth;

    // Evaluation caches and counters.
    PawnHashEntry pawn_hash[PAWN_HASH_SIZE];
    EvalHashEntry eval_hash[EVAL_HASH_SIZE];
    uint64_t eval_count;
    uint64_t pawn_probes, pawn_hits;
    uint64_t eval_probes, eval_hits;
    uint8_t tuning;  // record each row's coefficient (tuner only)

    PlyInfo plies[MAX_PLY];
    MoveEntry move_buffer[MOVE_BUFFER_SIZE];
};

// The record that holds the game position (not a search worker).
extern SearchThread* game_thread;

// Points a position at its record; to be called once per record.
inline void attach_position(SearchThread* t) { t->pos.thread = t; }
