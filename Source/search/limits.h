// The shared search control record: what the front end asked for, what the
// time manager decided, and what the search found. Written by the input
// thread between searches; the fields that search threads poll while they
// run are atomics.
#pragma once

#include <atomic>
#include <cstdint>

#include "board/types.h"

enum SearchState : uint8_t {
    SEARCH_IDLE = 0,
    SEARCH_REQUESTED = 1,
    PONDER_REQUESTED = 2,
    SEARCH_FINISH = 3,  // searching or done, due to be reported
    SEARCH_PONDERING = 4,
};

enum StopSignal : uint8_t {
    STOP_NONE = 0,
    STOP_REPORT = 1,   // time or the stop command: report the move
    STOP_LIMIT = 2,    // the search ended by its own limits
    STOP_SILENT = 3,   // abort without a report
    STOP_SHUTDOWN = 99,
};

constexpr int MAX_SEARCH_DEPTH = 66;

struct SearchLimits {
    std::atomic<uint8_t> search_state;
    std::atomic<uint8_t> stop_signal;

    // Requested limits (go, level, command line).
    uint8_t fixed_limit;  // 0 whole game, 1 fixed per move, 40 moves per control
    uint8_t max_depth;
    uint64_t node_limit;
    double move_time;
    double increment;
    double white_time;
    double black_time;
    int16_t moves_to_go;
    uint8_t base_max_depth;    // what each go starts from (the command line may set it)
    uint64_t base_node_limit;

    int engine_side;       // the side the engine plays in this search
    double contempt_gate;  // contempt applies while this is at most 90000

    int thread_count;
    double full_nps;  // the machine's full search rate, from the start-up calibration
    double full_elo;  // the engine's own rating estimate at full speed
};

extern SearchLimits limits;
