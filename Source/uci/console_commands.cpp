#include "uci/console_commands.h"

#include "board/attack_queries.h"
#include "board/board_display.h"
#include "board/epd.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "board/see.h"
#include "book/book_probe.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "output/output.h"
#include "search/search_report.h"
#include "search/limits.h"
#include "search/perft.h"
#include "search/search_thread.h"
#include "search/search_trace.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"
#include "tools/tuner.h"
#include "uci/bounded_input.h"
#include "uci/engine_loop.h"
#include "uci/game.h"
#include "uci/input.h"
#include "uci/position_editor.h"
#include "uci/settings.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int MAX_WORDS = 10;

struct Words {
    char text[MAX_WORDS][256];
};

void split_words(const char* line, Words* w)
{
    for (auto& word : w->text)
        word[0] = 0;
    int n = 0;
    const char* p = line;
    while (*p && n < MAX_WORDS) {
        while (*p == ' ')
            p++;
        if (!*p)
            break;
        size_t len = 0;
        while (p[len] && p[len] != ' ')
            len++;
        size_t keep = len < 255 ? len : 255;
        std::memcpy(w->text[n], p, keep);
        w->text[n][keep] = 0;
        p += len;
        n++;
    }
}

void echo_setting(const char* name, int value)
{
    char line[128];
    send_line(format_line(line, sizeof line, "%s set to %d", name, value));
}

void search_setting(int index, int value)
{
    settings.search[index] = int16_t(value);
    settings_changed_after_option();
}

void swap_command()
{
    const Position* pos = game_position();
    char line[128];
    for (int sq = 0; sq < 64; sq++) {
        int code = pos->board[sq];
        if (!code)
            continue;
        int s = piece_side(code) ^ 1;
        if (is_square_attacked(pos, sq, s))
            send_line(
                format_line(line, sizeof line, "sq= %s, swap1= %4d", SQUARE_NAMES[sq], swap(pos, s, NO_SQUARE, sq)));
    }
}

void load_command(const char* file, const char* tag)
{
    char line[600];
    send_line(format_line(line, sizeof line, "loading %.250s, tag %.250s", file, tag));
    FILE* f = std::fopen(file, "r");
    if (!f) {
        send_line(format_line(line, sizeof line, "can't open %.250s", file));
        return;
    }
    char text[1024];
    bool found = false;
    EpdFields fields;
    while (std::fgets(text, sizeof text, f)) {
        if (std::strlen(text) < 10 || text[0] == '#')
            continue;
        fields.id[0] = 0;
        split_epd(text, &fields);
        if (*tag) {
            char id[EPD_FIELD_SIZE];
            size_t n = 0;
            for (const char* c = fields.id; *c; c++)
                if (*c != '"')
                    id[n++] = *c;
            id[n] = 0;
            if (std::strcmp(id, tag) && std::strcmp(fields.id, tag))
                continue;
        }
        found = true;
        break;
    }
    std::fclose(f);
    if (!found) {
        send_line(format_line(line, sizeof line, "tag %.250s not found", tag));
        return;
    }
    if (set_game_position(fields.fen))
        show_game_board();
}

// "level" and "depth" typed while the engine thinks: the running search
// reads the clocks and its depth, so they reach the limits only once it has
// ended, as the settings do.
struct WaitingLimits {
    bool level, depth;
    int16_t level_moves;
    double seconds, increment;
    uint8_t max_depth;
};
WaitingLimits waiting_limits;

void set_level(int moves, double seconds, double inc)
{
    limits.level_moves = int16_t(moves);
    limits.fixed_limit = moves ? 40 : 0;
    limits.white_time = limits.black_time = seconds;
    limits.increment = inc;
}

void level_command(const Words& w)
{
    int moves = clamp_int(std::atol(w.text[1]), 0, 1000);
    double seconds = std::atof(w.text[2]);
    double inc = std::atof(w.text[3]);
    if (!(seconds > 0) || seconds > 1e7)
        seconds = 60;
    if (!(inc >= 0) || inc > 1e5)
        inc = 0;
    if (search_in_progress()) {
        waiting_limits.level = true;
        waiting_limits.level_moves = int16_t(moves);
        waiting_limits.seconds = seconds;
        waiting_limits.increment = inc;
    } else {
        set_level(moves, seconds, inc);
    }
    char line[128];
    send_line(format_line(line, sizeof line, "set level to %d moves in %0.2f seconds, inc %0.2f", moves, seconds, inc));
}

// The line the hash table holds from the game position.
void hash_command()
{
    Position* pos = game_position();
    char pv[600] = "";
    size_t used = 0;
    int made = 0;
    for (; made < 30; made++) {
        TransEntry e;
        e.depth = TT_MISS;
        tt_probe(pos, &e);
        if (e.depth < -9 || !is_legal_move(pos, e.move))
            break;
        char text[MOVE_TEXT_SIZE];
        move_to_coord(e.move, text, reported_move_style());
        used += size_t(std::snprintf(pv + used, sizeof pv - used, "%s%s", made ? " " : "", text));
        make_move(pos, e.move);
        if (used > sizeof pv - 20) {
            made++;
            break;
        }
    }
    for (int i = 0; i < made; i++)
        unmake_move(pos);
    char line[640];
    send_line(format_line(line, sizeof line, "PV: %s\n", pv));
}

// The probe lists the candidates and the choice itself.
void book_command()
{
    book_probe(game_position(), search_settings.book_file, {search_settings.book_variety, search_config.noise >= 9999, protocol_mode == 0});
}

// What the tables say of the game position, for people testing the engine:
// the value and the distance to zeroing, both for the side to move.
void tb_command()
{
    int wdl, dtz;
    char line[64];
    if (tb_probe_full(game_position(), &wdl, &dtz))
        send_line(format_line(line, sizeof line, "tb wdl %d dtz %d", wdl, dtz));
    else
        send_line("tb none");
}

void move_input(const char* word)
{
    Move move;
    if (!parse_move(game_position(), word, &move)) {
        char line[300];
        send_line(format_line(line, sizeof line, "can't parse move '%.200s'", word));
        return;
    }
    play_game_move(move);
    show_game_board();
}

// Perft walks the tree with the search's move picker, so it needs a search
// thread's record. It takes one of its own: the workers' records belong to
// the search, which may be thinking about an engine move right now.
void perft_of_game(int depth)
{
    SearchThread* t = new_search_thread();
    if (!t)
        return;
    copy_position(&t->pos, t->undo, game_position());
    perft_command(t, depth);
    free_search_thread(t);
}

// "tune" alone: one step on the game position towards a loss, then a run
// over tune.epd that only reads it. "tune FILE RATE POSITIONS" trains.
void tune_command(const Words& w)
{
    // Training rewrites the evaluation's rows and works on the main worker's
    // record, both of which a search thinking about an engine move is using:
    // the engine stops first, and self-play ends with it.
    cancel_engine_moves();
    stop_and_wait(STOP_SILENT);
    SearchThread* t = worker(0);
    if (!t)
        return;
    if (w.text[1][0]) {
        double rate = std::atof(w.text[2]);
        long long n = std::atoll(w.text[3]);
        if (!(rate > 0) || rate > 1e6)
            rate = 0.001;
        tune(w.text[1], rate, 1, clamp_int(n > 0 ? n : 1000000, 1, 2000000000));
    } else {
        copy_position(&t->pos, t->undo, game_position());
        train_position(t, 0.0f, 0.001);
        tune("tune.epd", 0.001, 5, 500000000);
    }
    send_line("done!");
}

void freeze_command(const char* word, const char* pattern)
{
    bool freeze = !std::strcmp(word, "freeze");
    int n = set_frozen(*pattern ? pattern : "all", freeze);
    char line[128];
    send_line(format_line(line, sizeof line, "%s %d rows", freeze ? "froze" : "thawed", n));
}

void start_engine_move(bool continuous)
{
    // A search still thinking about an earlier request ends first, as a new
    // go ends one: started over it, the new root replaced the old one under
    // the running threads, and their move was then played on the new board.
    stop_and_wait(STOP_SILENT);
    request_engine_moves(continuous);
    limits.infinite = false;
    limits.mate_moves = 0;
    limits.root_move_count = 0;
    limits.max_depth = limits.base_max_depth;
    limits.node_limit = limits.base_node_limit;
    limits.search_state = SEARCH_REQUESTED;
}

} // namespace

void show_game_board()
{
    if (protocol_mode == 0)
        print_board(game_position());
}

void handle_console_command(char* line)
{
    if (!*line)
        return;
    log_command(line);
    if (position_editor_active()) {
        position_editor_line(line);
        return;
    }
    Words w;
    split_words(line, &w);
    const char* cmd = w.text[0];
    const char* arg = w.text[1];
    if (!*cmd)
        return;
    for (int i = 0; i < SEARCH_SETTING_COUNT; i++) {
        const SearchSettingSpec& d = SEARCH_SETTINGS[i];
        if (d.console_word && !std::strcmp(cmd, d.console_word)) {
            int v = clamp_int(std::atol(arg), d.min, d.max);
            search_setting(i, v);
            echo_setting(cmd, v);
            return;
        }
    }
    if (!std::strcmp(cmd, "quit")) {
        stop_and_wait(STOP_SILENT);
        quit_requested = true;
    } else if (!std::strcmp(cmd, "self")) {
        start_engine_move(true);
    } else if (!std::strcmp(cmd, "move")) {
        start_engine_move(false);
    } else if (!std::strcmp(cmd, "tune")) {
        tune_command(w);
    } else if (!std::strcmp(cmd, "freeze") || !std::strcmp(cmd, "thaw")) {
        freeze_command(cmd, arg);
    } else if (!std::strcmp(cmd, "swap")) {
        swap_command();
    } else if (!std::strcmp(cmd, "multipv")) {
        settings.multi_pv = int16_t(clamp_int(std::atol(arg), 1, 255));
        settings_changed_after_option();
    } else if (!std::strcmp(cmd, "Selectivity")) {
        int v = clamp_int(std::atol(arg), 0, 200);
        settings.selectivity = int16_t(v);
        settings_changed_after_option();
        echo_setting(cmd, v);
    } else if (!std::strcmp(cmd, "ponder")) {
        int v = clamp_int(std::atol(arg), -32768, 32767);
        settings.ponder = int16_t(v);
        settings_changed_after_option();
        echo_setting(cmd, v);
    } else if (!std::strcmp(cmd, "level")) {
        level_command(w);
    } else if (!std::strcmp(cmd, "depth")) {
        uint8_t depth = uint8_t(clamp_int(std::atol(arg), 1, MAX_SEARCH_DEPTH));
        if (search_in_progress()) {
            waiting_limits.depth = true;
            waiting_limits.max_depth = depth;
        } else {
            limits.base_max_depth = limits.max_depth = depth;
        }
    } else if (!std::strcmp(cmd, "target_nps")) {
        double nps = std::atof(arg);
        if (!(nps >= 10))
            nps = 10;
        if (nps > 1e9)
            nps = 1e9;
        settings.limit_strength = 1;
        settings.elo = int16_t(elo_of_rate(nps));
        settings_changed_after_option();
        char text[64];
        send_line(format_line(text, sizeof text, "target_nps set to %.0f", nps));
    } else if (!std::strcmp(cmd, "ss")) {
        // Full width: no reductions or null moves, no razoring or late-move pruning.
        settings.search[LMR_DEPTH] = settings.search[NMP_DEPTH] = 99;
        settings.search[FP_DEPTH] = settings.search[LMP_DEPTH] = 0;
        settings_changed_after_option();
        send_line("selectivity set to OFF");
    } else if (!std::strcmp(cmd, "edit")) {
        start_position_editor();
    } else if (!std::strcmp(cmd, "trace")) {
        trace_depth = int8_t(clamp_int(std::atol(arg), 0, 100));
    } else if (!std::strcmp(cmd, "undo")) {
        if (undo_game_move())
            show_game_board();
    } else if (!std::strcmp(cmd, "jump")) {
        jump_to_ply(clamp_int(std::atol(arg), 0, 100000));
        show_game_board();
    } else if (!std::strcmp(cmd, "load")) {
        load_command(arg, w.text[2]);
    } else if (!std::strcmp(cmd, "save")) {
        if (!save_game("tmp.pgn"))
            send_line("can't write tmp.pgn");
    } else if (!std::strcmp(cmd, "book")) {
        book_command();
    } else if (!std::strcmp(cmd, "tb")) {
        tb_command();
    } else if (!std::strcmp(cmd, "perft")) {
        perft_of_game(std::atoi(arg));
    } else if (!std::strcmp(cmd, "hash")) {
        hash_command();
    } else if (!std::strcmp(cmd, "noise")) {
        // Echoed as an integer, so kept where an integer can hold it.
        double v = std::atof(arg);
        search_config.noise = v > 1e9 ? 1e9 : v < -1e9 ? -1e9 : v == v ? v : 0.0;
        echo_setting(cmd, int(search_config.noise));
    } else if (!std::strcmp(cmd, "debug")) {
        for (auto& pair : settings.personality)
            pair[0] = pair[1] = 100;
        settings_changed_after_option();
        send_line("set default personality");
    } else if (!std::strcmp(cmd, "eval")) {
        static EvalCaches caches;
        evaluate(game_position(), &caches, game_position()->side, 0, std::atoi(arg) >= 2 ? 2 : 1, nullptr);
    } else if (!std::strcmp(cmd, "new")) {
        if (set_game_position(START_FEN))
            show_game_board();
    } else if (!std::strcmp(cmd, "d")) {
        print_board(game_position());
    } else {
        move_input(cmd);
    }
}

void apply_waiting_console_limits()
{
    if (waiting_limits.level)
        set_level(waiting_limits.level_moves, waiting_limits.seconds, waiting_limits.increment);
    if (waiting_limits.depth)
        limits.base_max_depth = limits.max_depth = waiting_limits.max_depth;
    waiting_limits.level = waiting_limits.depth = false;
}
