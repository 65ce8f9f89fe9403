#include "tools/tool_search.h"

#include "search/clock.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/search_report.h"
#include "search/tt.h"

#include <cstring>
#include <unistd.h>

void tool_clear_hash()
{
    if (tt.use_hash && tt.words && count_busy_threads() == 0)
        clear_hash_table();
}

void tool_search(const Position* pos, bool threaded, bool hash_off, ToolSearch* out)
{
    set_root_position(pos);
    limits.search_state = SEARCH_REQUESTED;
    prepare_search();
    limits.search_state = SEARCH_FINISH;
    if (hash_off)
        tt.use_hash = 0;
    // A person running a tool at the terminal may type "stop" (this
    // position) or "quit" (the whole run); a script's input is left alone,
    // since its end would read as "quit".
    bool keyboard = isatty(0);
    double start = now_seconds();
    if (threaded) {
        start_search_threads();
        while (count_busy_threads()) {
            sleep_ms(1);
            check_time();
            if (keyboard)
                job_should_end(true); // a quit is seen by the caller
        }
    } else {
        run_search(worker(0));
    }
    out->seconds = now_seconds() - start;
    limits.search_state = SEARCH_IDLE;

    const SearchThread* main = worker(0);
    out->best = main->best_move;
    out->score = main->root_score;
    out->depth = limits.completed_depth;
    out->nodes = threaded ? total_nodes() : uint64_t(main->nodes);
    int n = 0;
    if (out->best && main->root_pv[0] == out->best)
        for (; n < MAX_PLY && main->root_pv[n]; n++)
            out->pv[n] = main->root_pv[n];
    else if (out->best)
        out->pv[n++] = out->best;
    out->pv[n] = 0;
}
