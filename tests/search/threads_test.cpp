// The worker pool's hand-over between the main search thread and its helpers.
#include "board/fen.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "support/search_harness.h"
#include "uci/game.h"

#include <gtest/gtest.h>

// A helper whose search is stopped before the main thread has its root
// ready must leave at once: the main thread's root result is still being
// written, and there is nothing to search. Run here on the test's own
// thread, the helper's entry shows whether it searched anyway.
TEST(Threads, HelpersStoppedBeforeTheMainThreadStartsLeaveItAlone)
{
    harness_start(2);
    set_game_position(START_FEN);
    set_root_position(game_position());
    limits.search_state = SEARCH_REQUESTED;
    prepare_search();
    limits.search_state = SEARCH_FINISH;
    limits.stop_signal = STOP_REPORT;
    worker(0)->root_tb_result = -1; // what a main thread still setting up may hold
    SearchThread* helper = worker(1);
    run_search(helper);
    EXPECT_EQ(helper->nodes, 0u);
    EXPECT_EQ(helper->best_move, 0);
    EXPECT_EQ(helper->iteration_depth, 0);

    // The pool still searches afterwards, and with the size asked for.
    SearchOutcome r = harness_search(START_FEN, 4);
    EXPECT_EQ(r.depth, 4);
    EXPECT_EQ(worker_count(), 2);
    harness_start(1);
    EXPECT_EQ(worker_count(), 1);
}
