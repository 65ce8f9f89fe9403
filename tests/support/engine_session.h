// The engine's command loop inside the calling process: start-up as the
// binary does it, then rounds of the loop with standard input replaced by a
// pipe the caller writes to. Commands take the road a GUI's commands take
// (non-blocking reads, lines split or merged across reads, one command a
// round) and the search threads are real, so thread tests and fuzzers see
// what an interface would cause, at in-process speed. Output goes wherever
// stdout points.
#pragma once

#include <cstddef>

// Once per process: settings, `threads` workers, a table of `hash_mb` and
// the evaluation, as main sets them up.
void session_engine_start(int threads, int hash_mb);

// Stops and frees the workers and the table, as main does at the end.
void session_engine_stop();

// Starts a session: a fresh standard input, the engine back to its start-up
// settings (workers, table size, options, limits, dialect), then the loop's
// own start: start position, no search, no quit.
void session_open(bool console);

// Raw bytes into standard input, no line end added; runs rounds of the loop
// while the pipe is full.
void session_write(const char* bytes, size_t n);
void session_write_line(const char* line);

// Runs up to `rounds` rounds of the loop; returns 1 once quit was requested.
int session_rounds(int rounds);

// Everything written has been read and carried out, and no search is
// requested, running or due to be reported.
bool session_idle();

// Rounds until the session is idle or has quit; returns 1 when that happened
// within `max_rounds`.
int session_until_idle(int max_rounds);

// Ends standard input, which the loop reads as "quit"; returns 1 when it
// quit within `max_rounds`.
int session_close(int max_rounds);

bool session_quit_requested();
