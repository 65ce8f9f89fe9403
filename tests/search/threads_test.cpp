// The worker pool's hand-over between the main search thread and its helpers.
#include "board/fen.h"
#include "search/clock.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "support/search_harness.h"
#include "uci/game.h"

#include <gtest/gtest.h>

// A stop that arrives before the main thread has set up its root must not
// send the helpers to read the main thread's root result while it is being
// written. Outside ThreadSanitizer (make tsan) only the pool coming to rest
// is visible; under it, the read itself.
TEST(Threads, HelpersStoppedBeforeTheMainThreadStartsLeaveItAlone)
{
    harness_start(4);
    set_game_position(START_FEN);
    for (int i = 0; i < 20; i++) {
        set_root_position(game_position());
        limits.search_state = SEARCH_REQUESTED;
        prepare_search();
        limits.search_state = SEARCH_FINISH;
        limits.stop_signal = STOP_REPORT;
        start_search_threads();
        while (count_busy_threads())
            sleep_ms(1);
        limits.search_state = SEARCH_IDLE;
    }
    EXPECT_EQ(worker_count(), 4);
}
