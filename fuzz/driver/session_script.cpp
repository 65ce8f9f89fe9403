#include "session_script.h"

#include "eval/params.h"
#include "fuzz_support.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/threads.h"
#include "support/engine_session.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{

// Rounds (about a millisecond each) the engine has to come to rest and quit
// once the input is spent; only a hang needs more.
constexpr int PATIENCE = 10000;
// Rounds one input may spend waiting on purpose, so that a session stays short.
constexpr int WAIT_BUDGET = 150;

// Keeps what one input may ask for to what one input may take: deep perft,
// many threads and long traces are legitimate but slow, and device files
// would block the reader.
std::string tame(std::string text)
{
    for (const char* device : {"/dev", "/proc", "/sys"})
        for (size_t at; (at = text.find(device)) != std::string::npos;)
            text.replace(at, std::strlen(device), "/nonexistent");
    for (auto [word, limit] : {std::pair{"perft", "2"}, {"trace", "3"}, {"Threads value", "16"}})
        for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
            size_t digits = text.find_first_not_of(' ', at + std::strlen(word));
            if (digits != std::string::npos)
                text.replace(digits, std::min(text.find_first_of(" \r\n", digits), text.size()) - digits, limit);
        }
    return text;
}

} // namespace

void session_fuzz_start()
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    if (FILE* f = std::fopen("config.txt", "w")) {
        std::fputs(
            "Hash = 8\nMultiPV = 2\n  Threads = 4\nMtl_Pawn = 110,90\nnovalue\n=5\nConfigFilePath = config.txt\n", f);
        std::fclose(f);
    }
    session_engine_start(1, 16);
}

void run_session_input(const uint8_t* data, size_t size, bool console)
{
    if (size == 0)
        return;
    session_open(console);
    // Rows the tuner moved, froze or saved to params.txt go back to their
    // defaults: each input starts alike.
    std::remove("params.txt");
    set_frozen("all", false);
    init_eval_params(0);
    // The first byte sets, as the switch -d does, a depth every search stops
    // at (small for most inputs, so that sessions stay short), and the sizes
    // of the chunks the rest is written in, with rounds of the loop between.
    int shape = data[0];
    const int depths[8] = {1, 2, 3, 3, 4, 4, 5, MAX_SEARCH_DEPTH};
    limits.base_max_depth = limits.max_depth = uint8_t(depths[shape >> 5]);
    std::string text = tame(std::string(reinterpret_cast<const char*>(data + 1), size - 1));
    uint32_t r = uint32_t(shape) * 2654435761u + 1;
    int waited = 0;
    for (size_t at = 0; at < text.size() && !session_quit_requested();) {
        r = r * 1103515245u + 12345u;
        size_t n = std::min<size_t>(1 + (r >> 16) % 97, text.size() - at);
        session_write(text.data() + at, n);
        at += n;
        int rounds = std::min(int((r >> 8) % 4), WAIT_BUDGET - waited);
        waited += rounds;
        session_rounds(rounds);
    }
    if (!session_quit_requested() && protocol_mode == 1) {
        // An interface ends its lines: a partial one would swallow the stop.
        session_write_line("\nstop");
        if (!session_until_idle(PATIENCE))
            fuzz_fail("the engine did not come to rest after stop");
    }
    if (!session_quit_requested() && !session_close(PATIENCE))
        fuzz_fail("the engine did not quit at the end of its input");
    if (count_busy_threads())
        fuzz_fail("a search thread is still busy after quit");
}
