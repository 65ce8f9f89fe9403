// The shared search control record: what the front end asked for, what the
// time manager decided, and what the search found. The input thread writes
// the request fields between searches; fields that cross threads while a
// search runs are atomics.
#pragma once

#include "board/types.h"
#include "search/search_values.h"

#include <atomic>
#include <cstdint>

enum SearchState : uint8_t {
    SEARCH_IDLE = 0,
    SEARCH_REQUESTED = 1,
    PONDER_REQUESTED = 2,
    SEARCH_FINISH = 3, // searching or done, due to be reported
    SEARCH_PONDERING = 4,
};

enum StopSignal : uint8_t {
    STOP_NONE = 0,
    STOP_REPORT = 1, // time or the stop command: report the move
    STOP_LIMIT = 2,  // the search ended by its own limits
    STOP_SILENT = 3, // abort without a report
    STOP_SHUTDOWN = 99,
};

// search_mode values: only a timed search stops on the clock; a ponder
// search turns timed on ponderhit.
enum SearchMode : uint8_t { MODE_PONDER = 2, MODE_TIMED = 3 };

// The deepest iteration a depth limit may ask for: one past the ply limit.
constexpr int MAX_SEARCH_DEPTH = MAX_SEARCH_PLY + 1;

// No position has more legal moves than this.
constexpr int MAX_MOVES_AT_ROOT = 256;

struct SearchLimits {
    std::atomic<uint8_t> search_state;
    std::atomic<uint8_t> stop_signal;

    // Requested limits (go, level, command line).
    uint8_t fixed_limit; // 0 whole game, 1 fixed per move, 40 moves per control
    uint8_t max_depth;
    uint64_t node_limit;
    double move_time;
    double increment;
    double white_time;
    double black_time;
    int16_t moves_to_go;
    int16_t level_moves; // console "level": moves per control, 0 for UCI
    bool infinite;       // go infinite: the report waits for "stop"
    int16_t mate_moves;  // go mate N: stop once a mate in N or fewer is proven; 0 for none
    // go searchmoves: the root considers only these (legal ones), when any.
    int16_t root_move_count;
    uint16_t root_move_list[MAX_MOVES_AT_ROOT];
    uint8_t base_max_depth; // what each go starts from (the command line may set it)
    uint64_t base_node_limit;

    // Time management.
    double start_time;
    std::atomic<double> elapsed;
    uint8_t search_mode;
    double target_time;
    double move_overhead;
    std::atomic<uint8_t> single_reply;
    std::atomic<int16_t> best_change_depth;
    std::atomic<int16_t> root_score_by_depth[MAX_PLY + 2];
    std::atomic<uint8_t> root_line_state; // 0 inside the window, 1 failed low, 2 failed high
    std::atomic<int> root_score;          // the main thread's current root score
    double target_nps;
    double full_nps; // the machine's full search rate, from the start-up calibration
    double full_elo; // the engine's own rating estimate at full speed
    double elo_in_force;
    bool rate_limited;
    uint32_t random_word;

    // Shared state of the running search.
    std::atomic<uint8_t> search_depth;
    std::atomic<bool> search_started;
    std::atomic<int8_t> completed_depth;

    // Result.
    uint16_t best_move;
    uint16_t ponder_move;
    int16_t best_score;
    uint16_t best_line[MAX_PLY + 2];

    // Statistics: the nodes each iteration took (the workers keep their own
    // counters, which the console's summary adds up).
    std::atomic<uint64_t> nodes_at_depth[MAX_PLY + 2];
};

extern SearchLimits limits;

// Whether `move` may be searched at the root (go searchmoves); with no list,
// every move may.
inline bool root_move_allowed(uint16_t move)
{
    for (int i = 0; i < limits.root_move_count; i++)
        if (limits.root_move_list[i] == move)
            return true;
    return limits.root_move_count == 0;
}

// True once any stop reason is set: every search loop polls this.
inline bool search_stopped()
{
    return limits.stop_signal.load(std::memory_order_relaxed) != STOP_NONE;
}
