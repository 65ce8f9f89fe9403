#include "support/search_harness.h"

#include "board/zobrist.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "search/clock.h"
#include "search/limits.h"
#include "search/search_params.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/tt.h"
#include "uci/game.h"
#include "uci/settings.h"
#include "uci/uci_commands.h"

#include <cstring>

void harness_start(int threads)
{
    static bool started = false;
    if (started) {
        // Another test of the same process may have asked for another pool.
        if (worker_count() != threads) {
            stop_threads();
            start_threads(threads);
        }
        return;
    }
    started = true;
    init_zobrist();
    set_default_settings();
    settings.hash_mb = search_settings.hash_mb = 16;
    publish_settings();
    tt_allocate(16);
    start_threads(threads);
    init_evaluation();
    init_eval_params(0);
    build_search_params();
    settings.changed = search_settings.changed = search_config.changed = 0;
    limits.full_nps = 1e6;
    limits.full_elo = 3000;
    reset_game_limits();
}

SearchOutcome harness_search(const std::string& fen, int depth, const std::string& moves, int fifty)
{
    std::string command = "fen " + fen + (moves.empty() ? "" : " moves " + moves);
    char buffer[4096];
    std::strncpy(buffer, command.c_str(), sizeof buffer - 1);
    buffer[sizeof buffer - 1] = 0;
    position_command(buffer);
    if (fifty)
        game_position()->fifty = uint8_t(fifty);
    go_command(("depth " + std::to_string(depth)).c_str());
    set_root_position(game_position());
    prepare_search();
    limits.search_state = SEARCH_FINISH;
    start_search_threads();
    while (count_busy_threads())
        sleep_ms(1);
    limits.search_state = SEARCH_IDLE;
    const SearchThread* main = worker(0);
    return {main->best_move, main->root_score, limits.completed_depth, main->nodes};
}
