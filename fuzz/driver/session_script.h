// One fuzz input played as a whole session of the engine's command loop, in
// process, with real search threads: the input is the session's text,
// written in chunks of varying size with rounds of the loop between them,
// so that lines are split and merged across reads.
//
// Whatever the input, the session must end: once the input is spent a UCI
// session is sent "stop" and must come to rest, and the end of standard
// input must make the engine quit. A session that does not is a hang,
// reported through fuzz_fail.
#pragma once

#include <cstddef>
#include <cstdint>

// Engine start-up as the binary does it (one search thread), standard output
// to /dev/null, the working directory a scratch directory; once per process.
void session_fuzz_start();

// Plays one input as a session in the console (`console`) or UCI dialect.
void run_session_input(const uint8_t* data, size_t size, bool console);
