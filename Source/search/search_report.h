// How the search's findings leave it. The search decides when there is
// something to say; the front end installs the functions that say it in the
// dialect it speaks. Until then nothing is printed (tools and tests).
#pragma once

#include "board/notation.h"
#include "board/types.h"
#include "output/output.h"

struct SearchThread;

struct SearchReporter {
    // A principal variation of the main thread: line number from 1 and a
    // mark for the console ('+' failed high, '-' failed low, '.' or ' ').
    void (*pv_line)(const SearchThread* t, int depth, int score, const Move* pv, int line_number, char mark);
    // Before the root move loop of a long search: how far it has come.
    void (*status_line)(int completed_depth, int iteration_depth);
    // The root move now searched, numbered from 1.
    void (*current_move)(Move move, int number);
    // A message about the search's own set-up.
    void (*message)(const char* text);
    // Between positions of a long job: serves what was typed meanwhile
    // (stop, quit) when `read` is set, and says whether the run should end.
    bool (*poll_commands)(bool read);
};

extern SearchReporter search_reporter;

// Moves are written as the dialect spoken now asks: "e7e8q" to an
// interface, "e7e8=Q" at the console.
inline MoveStyle reported_move_style()
{
    return protocol_mode == 1 ? MOVE_STYLE_UCI : MOVE_STYLE_CONSOLE;
}

// Whether a long job should end now; with `read`, typed commands are served
// first. False where no front end listens.
inline bool job_should_end(bool read)
{
    return search_reporter.poll_commands && search_reporter.poll_commands(read);
}
