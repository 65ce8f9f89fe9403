// Everything one search thread owns. The game itself is kept in a record of
// the same kind, so that make/unmake and the draw test work alike on both.
#pragma once

#include "board/movegen.h"
#include "board/position.h"
#include "eval/eval_cache.h"
#include "search/ply_info.h"

#include <atomic>

// Room for the move lists of one line: the list of ply p starts where the
// list of ply p - 1 ends.
constexpr int MOVE_BUFFER_SIZE = (MAX_PLY + 8) * 320;

// History: ((type of the previous move's piece) * 16 + moving piece) * 64 + to.
constexpr int HISTORY_SIZE = 8 * 16 * 64;
constexpr int HISTORY_START = 2048;

// Two counts of plies meet in the search. The position's own counter starts
// at 1 where a position is set up, so the root is ply 1: the search stack,
// the move lists and mate scores (a side mated at ply p scores p - MATE) go
// by it, which makes a mate in one 9998 and shows as "mate 1". The rules
// that speak of the distance from the root (the draw test's boundary, the
// evaluation caches, the check-extension limit, the exact-mate cut, ProbCut)
// go by plies_from_root, which is 0 at the root.
constexpr int ROOT_PLY = 1;

inline int plies_from_root(int ply)
{
    return ply - ROOT_PLY;
}

// A counter that its owner bumps while other threads read it (the info line
// sums all threads' nodes): relaxed atomic loads and stores, so that the
// owner's increments stay plain moves instead of locked instructions.
class RelaxedCounter
{
  public:
    RelaxedCounter& operator=(uint64_t v)
    {
        value_.store(v, std::memory_order_relaxed);
        return *this;
    }
    RelaxedCounter& operator+=(uint64_t n)
    {
        value_.store(value_.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
        return *this;
    }
    void operator++(int) { *this += 1; }
    operator uint64_t() const { return value_.load(std::memory_order_relaxed); }

  private:
    std::atomic<uint64_t> value_;
};

struct RootMove {
    MoveEntry entry; // the move with its piece codes; entry.score orders the list
    int16_t last_score;
    uint16_t pv[MAX_PLY + 2]; // its line when it last led a MultiPV line
};

enum ThreadCommand : uint8_t {
    CMD_IDLE = 0,
    CMD_SEARCH = 1,
    CMD_CLEAR_HASH = 2,
    CMD_QUIT = 99,
    CMD_GONE = 100,
};

struct SearchThread {
    Position pos;
    UndoRecord undo[MAX_GAME_PLY];
    int thread_number;
    std::atomic<uint8_t> command;

    // Counters.
    RelaxedCounter nodes;
    uint64_t node_limit;
    RelaxedCounter tbhits;
    uint64_t tt_probes, tt_hits;
    uint8_t seldepth;
    std::atomic<uint8_t> iteration_depth;
    uint8_t null_moves_on_path;
    uint8_t best_move_depth; // iteration at which the root last set a best move
    uint32_t root_seed;

    // Search stack and ordering tables.
    PlyInfo plies[MAX_PLY + 2];
    int16_t history[HISTORY_SIZE];
    uint16_t counter_moves[16][64][2]; // by the previous move's piece code and to-square
    uint16_t followup[16][64];         // by piece code and to-square of the move two plies back
    MoveEntry move_buffer[MOVE_BUFFER_SIZE];

    // Root.
    RootMove root_moves[MAX_MOVES];
    int root_count;
    int root_score;
    uint16_t best_move;
    uint16_t root_pv[MAX_PLY + 2];
    int root_tb_result;

    // The evaluation's caches and counters.
    EvalCaches eval;
};

// The position the next search starts from, with the game's history. The
// front end sets it before each search; every worker copies it when it
// starts, so the game itself may change while a search runs.
void set_root_position(const Position* game);
const Position* root_position();

// Points a position at its record; to be called once per record.
inline void attach_position(SearchThread* t)
{
    t->pos.undo = t->undo;
}

// Allocates a zeroed record with its position attached; nullptr on failure.
SearchThread* new_search_thread();
void free_search_thread(SearchThread* t);

// Copies the search root and its history into a worker's record.
void copy_root_into(SearchThread* t);
