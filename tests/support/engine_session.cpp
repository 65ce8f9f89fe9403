#include "support/engine_session.h"

#include "board/fen.h"
#include "board/zobrist.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/search_params.h"
#include "search/search_trace.h"
#include "search/threads.h"
#include "search/tt.h"
#include "uci/console_commands.h"
#include "uci/engine_loop.h"
#include "uci/game.h"
#include "uci/input.h"
#include "uci/options.h"
#include "uci/position_editor.h"
#include "uci/search_output.h"
#include "uci/settings.h"
#include "uci/uci_commands.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

int start_threads_count = 1;
int start_hash_mb = 16;
int input_writer = -1; // our end of the engine's standard input

// Back to the state main leaves the engine in before its loop starts.
void restore_start_up_state(bool console)
{
    stop_and_wait(STOP_SILENT);
    limits.search_state = SEARCH_IDLE;
    if (position_editor_active())
        position_editor_line(".");
    set_default_settings();
    settings.threads = int16_t(start_threads_count);
    settings.hash_mb = int16_t(start_hash_mb);
    settings_changed_after_option();
    apply_waiting_settings(); // workers, table and tablebases as the settings say
    // Files a session opened start afresh in the next one.
    close_log_file();
    close_trace_file();
    trace_depth = 0;
    search_config.noise = 0;
    protocol_mode = console ? 0 : 1;
    limits.base_max_depth = limits.max_depth = MAX_SEARCH_DEPTH;
    limits.base_node_limit = limits.node_limit = 0;
    limits.level_moves = 0;
    limits.infinite = false;
    cancel_engine_moves();
    reset_game_limits();
}

} // namespace

void session_engine_start(int threads, int hash_mb)
{
    start_threads_count = threads;
    start_hash_mb = hash_mb;
    init_zobrist();
    set_default_settings();
    install_search_output();
    protocol_mode = 1;
    limits.base_max_depth = limits.max_depth = MAX_SEARCH_DEPTH;
    reset_game_limits();
    settings.threads = int16_t(threads);
    settings.hash_mb = int16_t(hash_mb);
    start_threads(threads);
    tt_allocate(hash_mb);
    search_settings = settings;
    publish_settings();
    init_evaluation();
    init_eval_params(0);
    build_search_params();
    settings.changed = search_settings.changed = search_config.changed = 0;
    set_position(game_position(), START_FEN);
    limits.full_nps = 1e6;
    limits.full_elo = 3000;
}

void session_engine_stop()
{
    stop_threads();
    tt_free();
}

void session_open(bool console)
{
    restore_start_up_state(console);
    if (input_writer >= 0)
        close(input_writer);
    int fds[2];
    if (pipe(fds) == 0) {
        dup2(fds[0], 0);
        close(fds[0]);
        input_writer = fds[1];
        fcntl(input_writer, F_SETFL, O_NONBLOCK);
        fcntl(input_writer, F_SETFD, FD_CLOEXEC);
    }
    reset_input();
    // The loop's own start.
    set_game_position(START_FEN);
    show_game_board();
    quit_requested = false;
    limits.search_state = SEARCH_IDLE;
}

void session_write(const char* bytes, size_t n)
{
    while (n > 0 && input_writer >= 0) {
        ssize_t done = write(input_writer, bytes, n);
        if (done > 0) {
            bytes += done;
            n -= size_t(done);
        } else if (done < 0 && errno != EAGAIN && errno != EINTR) {
            return;
        } else if (session_rounds(1)) {
            return; // the engine quit and reads no more
        }
    }
}

void session_write_line(const char* line)
{
    session_write(line, std::strlen(line));
    session_write("\n", 1);
}

int session_rounds(int rounds)
{
    for (int i = 0; i < rounds && !quit_requested; i++)
        engine_round();
    return quit_requested ? 1 : 0;
}

bool session_idle()
{
    int unread = 0;
    if (ioctl(0, FIONREAD, &unread) != 0)
        unread = 0;
    return unread == 0 && !input_pending() && limits.search_state == SEARCH_IDLE && count_busy_threads() == 0;
}

int session_until_idle(int max_rounds)
{
    for (int i = 0; i < max_rounds; i++) {
        if (quit_requested || session_idle())
            return 1;
        engine_round();
    }
    return quit_requested || session_idle() ? 1 : 0;
}

int session_close(int max_rounds)
{
    if (input_writer >= 0)
        close(input_writer);
    input_writer = -1;
    return session_rounds(max_rounds);
}

bool session_quit_requested()
{
    return quit_requested;
}
