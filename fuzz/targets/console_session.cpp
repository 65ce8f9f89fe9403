// The console command loop as a person types into it, from the seeds and
// the dictionary: engine moves and self-play, moves in every notation, the
// position editor, the tools, settings, loading and saving, and the switch
// to UCI.
// fuzz-test-runs: 100
#include "session_script.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    session_fuzz_start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    run_session_input(data, size, true);
    return 0;
}
