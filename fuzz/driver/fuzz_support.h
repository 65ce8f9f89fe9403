// What every fuzz target shares. A target is one file in fuzz/targets/
// defining LLVMFuzzerTestOneInput and, when it has start-up work,
// LLVMFuzzerInitialize; its seeds live in fuzz/corpus/<name>/ and its
// dictionary in fuzz/dict/<name>.dict. "// fuzz-test-runs: N" in the target
// sets the inputs of make test's fixed-seed pass, "// fuzz-max-len: N" the
// longest input (4096 bytes without it).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Reports a broken promise of the engine and aborts, as a sanitizer does,
// so that either driver keeps the input.
[[noreturn]] void fuzz_fail(const char* what);

// Standard output to /dev/null: the lines are still formatted and written.
void fuzz_silence_stdout();

// Moves into a fresh temporary directory for the files the engine writes;
// it is removed when the process ends.
void fuzz_enter_scratch_dir();

// The placement field of a FEN for a board of piece letters (0 for empty), a8 first.
std::string fuzz_placement(const char board[64]);
