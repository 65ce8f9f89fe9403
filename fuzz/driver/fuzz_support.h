// What every fuzz target shares: the entry points both drivers call (the
// libFuzzer runtime, or the seeded random driver of standalone_main.cpp), and
// the few services a target needs around the engine.
//
// A target is one file in fuzz/targets/ defining LLVMFuzzerTestOneInput and,
// when it has start-up work, LLVMFuzzerInitialize. Its seeds live in
// fuzz/corpus/<name>/ and its dictionary, if any, in fuzz/dict/<name>.dict.
// A line "// fuzz-test-runs: N" in the target sets how many inputs the
// fixed-seed pass of make test gives it, and "// fuzz-max-len: N" the
// longest input either driver makes (4096 bytes without it).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Runs one input; returns 0. A target with start-up work also defines
// extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv), which both
// drivers call once before the first input when it is there.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Reports a broken promise of the engine and ends the process the way a
// sanitizer does, so that either driver keeps the input that caused it.
[[noreturn]] void fuzz_fail(const char* what);

// Sends the engine's standard output to /dev/null: the lines are still
// formatted and written, only nobody reads them.
void fuzz_silence_stdout();

// Moves into a fresh directory under the system's temporary directory, so
// that files the engine writes (log, trace, saved game) land there; it is
// removed with its files when the process ends.
void fuzz_enter_scratch_dir();

// The piece-placement field of a FEN for a board of piece letters (0 for an
// empty square), a8 first.
std::string fuzz_placement(const char board[64]);
