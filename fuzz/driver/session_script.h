// One fuzz input played as a whole session of the engine's command loop, in
// process: the bytes either are the session's text, written in chunks of
// varying size, or steer a generator that writes commands of the dialect
// (positions with real and broken moves, searches with small limits, option
// changes, ponder and stop, console tools), splits and merges the writes and
// lets the loop run between them. The search threads are real.
//
// Whatever the input, the session must end: once the input is spent, a UCI
// session is sent "stop" and must come to rest, and the end of standard
// input must make the engine quit. A session that does not is reported as a
// hang through fuzz_fail.
#pragma once

#include <cstddef>
#include <cstdint>

// Engine start-up as the binary does it (one search thread), standard output
// to /dev/null, the working directory a scratch directory; once per process.
void session_fuzz_start();

// Plays one input as a session in the console (`console`) or UCI dialect.
void run_session_input(const uint8_t* data, size_t size, bool console);

// FEN text for the generators: a known position, a random board or a known
// one with a few characters changed.
struct FuzzInput;
const char* fuzz_fen(FuzzInput* in, char* buffer, size_t size);
