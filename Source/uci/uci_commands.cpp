#include "uci/uci_commands.h"

#include "board/fen.h"
#include "board/movegen.h"
#include "output/engine_name.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/perft.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/tt.h"
#include "uci/bounded_input.h"
#include "uci/game.h"
#include "uci/input.h"
#include "uci/options.h"
#include "uci/settings.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace
{

// Times arrive as milliseconds; anything that is not a sane number is 0.
double read_seconds(const char* text)
{
    double ms = std::strtod(text, nullptr);
    if (!(ms > 0))
        return 0.0;
    if (ms > 1e12)
        ms = 1e12;
    return ms * 0.001;
}

long long read_count(const char* text)
{
    long long n = std::strtoll(text, nullptr, 10);
    return n;
}

// The number after `keyword` and one separator, or nullptr without the keyword.
const char* value_after(const char* args, const char* keyword)
{
    const char* p = std::strstr(args, keyword);
    if (!p)
        return nullptr;
    p += std::strlen(keyword);
    return *p ? p + 1 : p;
}

// Coordinate text to a move code as the protocol spells it; 0 when the text
// is not a move of that shape.
Move coordinate_move(const char* token)
{
    size_t len = std::strlen(token);
    if (len < 4)
        return 0;
    for (int i = 0; i < 4; i += 2)
        if (token[i] < 'a' || token[i] > 'h' || token[i + 1] < '1' || token[i + 1] > '8')
            return 0;
    int from = (token[0] - 'a') + 8 * (token[1] - '1');
    int to = (token[2] - 'a') + 8 * (token[3] - '1');
    Move move = make_move_code(from, to);
    if (len > 4) {
        switch (token[4]) {
        case 'q':
            move |= PROMO_QUEEN;
            break;
        case 'n':
            move |= PROMO_KNIGHT;
            break;
        case 'b':
            move |= PROMO_BISHOP;
            break;
        case 'r':
            move |= PROMO_ROOK;
            break;
        default:
            break;
        }
    }
    return move;
}

bool is_legal_game_move(Move move)
{
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(game_position(), list);
    for (int i = 0; i < n; i++)
        if (list[i].move == move)
            return true;
    return false;
}

void setoption_command(const char* args)
{
    const char* name = std::strstr(args, "name");
    const char* value = std::strstr(args, "value");
    if (!name || !value || value < name)
        return;
    name += 4;
    while (*name == ' ')
        name++;
    char option[101];
    size_t len = size_t(value - name);
    while (len > 0 && name[len - 1] == ' ')
        len--;
    if (len > 100)
        len = 100;
    std::memcpy(option, name, len);
    option[len] = 0;
    value += 5;
    while (*value == ' ')
        value++;
    set_option(option, value);
    settings_changed_after_option();
}

void new_game_command()
{
    stop_and_wait(STOP_SILENT);
    limits.search_state = SEARCH_IDLE;
    apply_waiting_settings();
    reset_game_limits();
    game_position()->game_ply = 0;
    if (count_busy_threads() == 0)
        clear_hash_table();
}

} // namespace

void reset_game_limits()
{
    limits.fixed_limit = 0;
    limits.move_time = 60.0;
    limits.increment = 0.0;
    limits.white_time = 60.0;
    limits.black_time = 60.0;
}

void position_command(char* args)
{
    char* moves = std::strstr(args, "moves");
    if (moves)
        *moves = 0;
    if (std::strstr(args, "startpos")) {
        game_position()->chess960 = uint8_t(settings.chess960 != 0);
        if (!set_game_position(START_FEN))
            return;
    } else if (const char* fen = std::strstr(args, "fen")) {
        // How castling is read and written follows UCI_Chess960.
        game_position()->chess960 = uint8_t(settings.chess960 != 0);
        fen = std::strlen(fen) >= 4 ? fen + 4 : "";
        if (!set_game_position(fen))
            return;
    } else {
        return;
    }
    if (moves) {
        char* text = moves + 5;
        char* save = nullptr;
        for (char* token = strtok_r(text, " ", &save); token; token = strtok_r(nullptr, " ", &save)) {
            Move move = coordinate_move(token);
            if (!move || !is_legal_game_move(move)) {
                char line[300];
                send_line(format_line(line, sizeof line, "info string illegal move %.200s", token));
                break;
            }
            play_game_move(move);
        }
    }
    // The search starts without a previous move.
    game_position()->undo[game_position()->game_ply].move = 0;
    game_position()->last_move = 0;
}

// "mate N": search until a mate in N moves or fewer is proven (or another
// limit given with it ends the search). Without another limit the search is
// unbounded but for its depth. N below 1 is refused and the go goes on
// without it.
void read_mate_limit(const char* args)
{
    limits.mate_moves = 0;
    const char* v = value_after(args, "mate");
    if (!v)
        return;
    long long n = read_count(v);
    if (n < 1) {
        char line[128];
        send_line(
            format_line(line, sizeof line, "info string mate %lld: a mate search needs 1 move or more, ignored", n));
        return;
    }
    limits.mate_moves = int16_t(clamp_int(n, 1, MAX_SEARCH_DEPTH / 2));
    bool other = value_after(args, "wtime") || value_after(args, "btime") || value_after(args, "movetime")
                 || value_after(args, "depth") || value_after(args, "nodes") || limits.infinite;
    if (!other) {
        limits.fixed_limit = 1;
        limits.increment = 0;
        limits.move_time = 10000000.0;
        limits.max_depth = MAX_SEARCH_DEPTH;
        limits.node_limit = 0;
    }
}

bool is_go_keyword(const char* token)
{
    static const char* const WORDS[] = {"wtime", "btime", "winc",     "binc",   "movestogo", "depth",
                                        "nodes", "mate",  "movetime", "ponder", "infinite",  "searchmoves"};
    for (const char* w : WORDS)
        if (!std::strcmp(token, w))
            return true;
    return false;
}

// "searchmoves m1 m2 ...": the root keeps only the legal moves listed; the
// others are reported and passed over, and a list that keeps none leaves
// every move in play.
void read_root_moves(const char* args)
{
    limits.root_move_count = 0;
    const char* p = std::strstr(args, "searchmoves");
    if (!p)
        return;
    char text[1024];
    copy_text(text, sizeof text, p + std::strlen("searchmoves"));
    char* save = nullptr;
    for (char* token = strtok_r(text, " ", &save); token; token = strtok_r(nullptr, " ", &save)) {
        if (is_go_keyword(token))
            break;
        Move move = coordinate_move(token);
        if (!move || !is_legal_game_move(move)) {
            char line[160];
            send_line(
                format_line(line, sizeof line, "info string searchmoves: %.60s is no legal move here, ignored", token));
            continue;
        }
        bool listed = false;
        for (int i = 0; i < limits.root_move_count; i++)
            listed |= limits.root_move_list[i] == move;
        if (!listed && limits.root_move_count < MAX_MOVES_AT_ROOT)
            limits.root_move_list[limits.root_move_count++] = move;
    }
}

// "go perft N": the counts per root move, with no search and no bestmove.
bool go_perft(const char* args)
{
    const char* v = value_after(args, "perft");
    if (!v)
        return false;
    long long depth = read_count(v);
    if (depth < 1 || depth > 20) {
        char line[96];
        send_line(format_line(line, sizeof line, "info string perft %lld: the depth must be 1 to 20", depth));
        return true;
    }
    SearchThread* t = new_search_thread();
    if (!t)
        return true;
    copy_position(&t->pos, t->undo, game_position());
    perft_divide(t, int(depth));
    free_search_thread(t);
    return true;
}

void go_command(const char* args)
{
    stop_and_wait(STOP_SILENT);
    if (go_perft(args))
        return;
    limits.fixed_limit = 0;
    limits.max_depth = limits.base_max_depth;
    limits.node_limit = limits.base_node_limit;
    int side = game_position()->side;
    const char* v;
    if ((v = value_after(args, "wtime")))
        limits.white_time = read_seconds(v);
    if ((v = value_after(args, "btime")))
        limits.black_time = read_seconds(v);
    if ((v = value_after(args, "winc")) && side == WHITE)
        limits.increment = read_seconds(v);
    if ((v = value_after(args, "binc")) && side == BLACK)
        limits.increment = read_seconds(v);
    if ((v = value_after(args, "movestogo"))) {
        long long n = read_count(v);
        limits.fixed_limit = 40;
        limits.max_depth = MAX_SEARCH_DEPTH;
        limits.moves_to_go = int16_t(clamp_int(n, 1, 1000));
        limits.node_limit = 0;
    }
    if ((v = value_after(args, "depth"))) {
        long long d = read_count(v);
        limits.fixed_limit = 1;
        limits.max_depth = uint8_t(clamp_int(d, 1, MAX_SEARCH_DEPTH));
        limits.move_time = 10000000.0;
    }
    if ((v = value_after(args, "nodes"))) {
        long long n = read_count(v);
        if (n < 1)
            n = 1;
        if (n > (1LL << 50))
            n = 1LL << 50;
        // Jittered by up to 4 per cent either way so that games differ.
        long long r = std::rand();
        limits.fixed_limit = 1;
        limits.node_limit = uint64_t(n + n * (40 - r % 80) / 1000);
        limits.move_time = 10000000.0;
    }
    if ((v = value_after(args, "movetime"))) {
        limits.fixed_limit = 1;
        limits.increment = 0;
        limits.move_time = read_seconds(v);
    }
    limits.infinite = std::strstr(args, "infinite") != nullptr;
    if (limits.infinite) {
        limits.increment = 0;
        limits.node_limit = 0;
        limits.move_time = 10000000.0;
        limits.max_depth = MAX_SEARCH_DEPTH;
        limits.fixed_limit = 1;
    }
    read_mate_limit(args);
    read_root_moves(args);
    limits.search_state = std::strstr(args, "ponder") ? PONDER_REQUESTED : SEARCH_REQUESTED;
}

void handle_uci_command(char* line)
{
    if (!*line)
        return;
    log_command(line);
    while (*line == ' ')
        line++;
    char word[128];
    size_t n = 0;
    while (line[n] && line[n] != ' ' && line[n] != '\r' && line[n] != '\n' && n < sizeof word - 1) {
        word[n] = line[n];
        n++;
    }
    word[n] = 0;
    char* args = line + n;
    while (*args && *args != ' ') // a word longer than the buffer
        args++;
    if (*args)
        args++;

    if (!std::strcmp(word, "uci")) {
        protocol_mode = 1;
        char text[128];
        send_line(format_line(text, sizeof text, "id name %s", ENGINE_NAME));
        send_line(format_line(text, sizeof text, "id author %s", ENGINE_AUTHOR));
        print_option_lines();
        send_line("uciok");
    } else if (!std::strcmp(word, "isready")) {
        send_line("readyok");
    } else if (!std::strcmp(word, "setoption")) {
        // A running search goes on with its own root and settings; what
        // cannot change under it waits for its end.
        setoption_command(args);
    } else if (!std::strcmp(word, "debug")) {
        // Nothing to switch on: with Log on, every command and line is in
        // the log already.
    } else if (!std::strcmp(word, "_show")) {
        print_search_parameters();
    } else if (!std::strcmp(word, "ucinewgame")) {
        new_game_command();
    } else if (!std::strcmp(word, "position")) {
        position_command(args);
    } else if (!std::strcmp(word, "go")) {
        go_command(args);
    } else if (!std::strcmp(word, "ponderhit")) {
        if (limits.search_state == SEARCH_PONDERING) {
            start_clock_on_ponderhit();
            limits.search_state = SEARCH_FINISH;
        }
    } else if (!std::strcmp(word, "stop")) {
        if (limits.search_state != SEARCH_IDLE)
            limits.search_state = SEARCH_FINISH;
        stop_and_wait(STOP_REPORT);
    } else if (!std::strcmp(word, "quit")) {
        stop_and_wait(STOP_SILENT);
        quit_requested = true;
    }
}
