// One fuzz input played as a session of the engine's command loop in
// process, with real search threads: the input's text is written in chunks
// of varying size with rounds of the loop between them. Whatever the input,
// a UCI session must come to rest after "stop", and the end of standard
// input must make the engine quit; otherwise it is a hang (fuzz_fail).
#pragma once

#include <cstddef>
#include <cstdint>

// Engine start-up as the binary does it (one search thread), standard output
// to /dev/null, the working directory a scratch directory; once per process.
void session_fuzz_start();

// Plays one input as a session in the console (`console`) or UCI dialect.
void run_session_input(const uint8_t* data, size_t size, bool console);
