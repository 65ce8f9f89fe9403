// The engine's command loop inside the calling process, standard input a
// pipe the caller writes to: commands take a GUI's road (non-blocking reads,
// one command a round) and the search threads are real, so thread tests and
// fuzzers see what an interface would cause, at in-process speed.
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

// Idle: everything written was carried out and no search is requested,
// running or due to be reported. Returns 1 when idle (or quit) within
// `max_rounds`.
bool session_idle();
int session_until_idle(int max_rounds);

// Ends standard input, which the loop reads as "quit"; 1 when it quit in time.
int session_close(int max_rounds);

bool session_quit_requested();
