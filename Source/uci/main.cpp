// Korvel: start-up, the command line and shut-down.
#include <cstdlib>
#include <cstring>

#include "board/fen.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "search/limits.h"
#include "search/search_params.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"
#include "uci/calibration.h"
#include "uci/engine_loop.h"
#include "uci/options.h"
#include "uci/output.h"
#include "uci/protocol_mode.h"
#include "uci/settings.h"
#include "uci/uci_commands.h"

namespace {

void read_switches(int argc, char** argv)
{
    for (int i = 1; i < argc; i++) {
        const char* a = argv[i];
        if (!std::strcmp(a, "-uci"))
            protocol_mode = 1;
        else if (!std::strcmp(a, "-c"))
            protocol_mode = 0;
        else if (!std::strcmp(a, "-log"))
            settings.log_enabled = 1;
    }
}

}  // namespace

int main(int argc, char** argv)
{
    set_default_settings();
    protocol_mode = 1;
    limits.base_max_depth = MAX_SEARCH_DEPTH;
    limits.max_depth = MAX_SEARCH_DEPTH;
    reset_game_limits();
    read_switches(argc, argv);

    game_thread = new_search_thread();
    if (!game_thread)
        return 1;
    limits.thread_count = settings.threads;
    if (!start_threads(limits.thread_count))
        return 1;
    if (!tt_allocate(settings.hash_mb))
        return 1;
    if (settings.log_enabled)
        open_log();
    search_settings = settings;
    init_evaluation();
    init_eval_params(0);
    build_search_params();
    settings.changed = search_settings.changed = 0;

    set_position(&game_thread->pos, START_FEN);
    calibrate_speed();
    tb_init(settings.syzygy_path);
    run_engine_loop();

    stop_threads();
    tt_free();
    free_search_thread(game_thread);
    game_thread = nullptr;
    close_output_files();
    return 0;
}
