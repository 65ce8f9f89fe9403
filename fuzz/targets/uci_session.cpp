// The UCI command loop as an interface drives it, from the seeds and the
// dictionary: whole sessions of positions, searches, option changes, ponder,
// stop and quit, with real search threads and lines split across reads.
// fuzz-test-runs: 150
#include "session_script.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    session_fuzz_start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    run_session_input(data, size, false);
    return 0;
}
