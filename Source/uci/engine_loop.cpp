#include "uci/engine_loop.h"

#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "book/book_probe.h"
#include "output/output.h"
#include "search/clock.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_report.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/tt.h"
#include "uci/console_commands.h"
#include "uci/game.h"
#include "uci/input.h"
#include "uci/options.h"
#include "uci/search_output.h"
#include "uci/settings.h"

#include <algorithm>

namespace
{

// What this loop plays of its own accord: a book move found before any
// search, and the console's requests for engine moves.
Move book_move = 0;
bool self_play = false;
bool play_once = false;

// A book key can collide and a book can be built from faulty games: its
// move is played only when it is legal here.
Move checked_book_move(Move move)
{
    return is_legal_move(game_position(), move) ? move : 0;
}

void start_search()
{
    apply_waiting_settings(); // the workers are idle here: a new go stopped them
    set_root_position(game_position());
    prepare_search();
    print_search_start();
    book_move = 0;
    limits.best_move = limits.ponder_move = 0;
    const Position* pos = game_position();
    if (limits.search_state == SEARCH_REQUESTED && search_settings.own_book) {
        BookOptions book = {search_settings.book_variety, search_config.noise >= 9999, protocol_mode == 0};
        Move move = 0;
        if (game_position()->game_ply < search_settings.book_depth)
            move = book_probe(pos, search_settings.book_file, book);
        if (!move && game_position()->game_ply < search_settings.book2_depth)
            move = book_probe(pos, search_settings.book2_file, book);
        move = checked_book_move(move);
        if (!root_move_allowed(move))
            move = 0; // go searchmoves did not list it
        if (move) {
            char line[128];
            send_line(format_line(line, sizeof line, "%s book move is %s%s", protocol_mode == 1 ? "info string" : "",
                                  SQUARE_NAMES[move_from(move)], SQUARE_NAMES[move_to(move)]));
            book_move = move;
            limits.best_move = move;
            limits.best_score = 0;
            limits.stop_signal = STOP_REPORT;
        }
    }
    limits.search_state = limits.search_state == SEARCH_REQUESTED ? SEARCH_FINISH : SEARCH_PONDERING;
    if (limits.best_move)
        return;
    if (pos->fifty <= 100) {
        start_search_threads();
    } else {
        // Past the fifty-move limit nothing is searched; any legal move will do.
        MoveEntry list[MAX_MOVES];
        limits.best_move = gen_legal(pos, list) ? list[0].move : 0;
        limits.stop_signal = STOP_LIMIT;
    }
}

void collect_result()
{
    if (book_move || limits.best_move)
        return; // a book move, or a move chosen without a search
    const SearchThread* main = worker(0);
    if (!main)
        return;
    Move best = main->best_move;
    if (!best && main->root_count > 0)
        best = main->root_moves[0].entry.move; // stopped before the first move was searched
    limits.best_move = best;
    limits.best_score = int16_t(main->root_score);
    // Stopped before any root move came back with a score: the root's
    // static evaluation stands for it, never the "mated" it starts from.
    if (best && limits.best_score <= -MATE_BOUND && limits.completed_depth < 1)
        limits.best_score = main->plies[ROOT_PLY].eval;
    int n = 0;
    if (best && main->root_pv[0] == best)
        for (; main->root_pv[n] && n < MAX_PLY; n++)
            limits.best_line[n] = main->root_pv[n];
    else if (best)
        limits.best_line[n++] = best;
    limits.best_line[n] = 0;
    limits.ponder_move = n >= 2 ? limits.best_line[1] : 0;
}

// The console's summary of a search: the workers' counters added up.
void print_console_statistics()
{
    uint64_t nodes = total_nodes();
    uint64_t main_probes = 0, main_hits = 0, pawn_probes = 0, pawn_hits = 0, eval_probes = 0, eval_hits = 0;
    for (int i = 0; i < worker_count(); i++) {
        const SearchThread* t = worker(i);
        main_probes += t->tt_probes;
        main_hits += t->tt_hits;
        pawn_probes += t->eval.pawn_probes;
        pawn_hits += t->eval.pawn_hits;
        eval_probes += t->eval.eval_probes;
        eval_hits += t->eval.eval_hits;
    }
    char text[256], move[MOVE_TEXT_SIZE];
    move_to_coord(limits.best_move, move, reported_move_style());
    double elapsed = limits.elapsed;
    int depth = limits.completed_depth;
    double hash_fill = tt_hashfull(depth > 6 ? depth : 7);
    send_line(format_line(text, sizeof text, "move= %s, time= %0.3f, score= %d, nodes= %0.0f, nps= %0.0fK ebf= %0.2f",
                          move, elapsed, limits.best_score, double(nodes), double(nodes) / (elapsed + 0.001) * 0.001,
                          effective_branching_factor()));
    send_line(format_line(text, sizeof text,
                          "Hash fill= %.1f%%, Hash hits: main= %0.1f%%, pawn= %0.1f%%, eval= %0.1f%%, TB=%0.0fK",
                          100 * hash_fill, 100.0 * double(main_hits) / double(main_probes + 1),
                          100.0 * double(pawn_hits) / double(pawn_probes + 1),
                          100.0 * double(eval_hits) / double(eval_probes + 1), double(total_tbhits()) * 0.001));
    send_line("");
}

void report_if_due()
{
    uint8_t stop = limits.stop_signal;
    if (count_busy_threads() || limits.search_state != SEARCH_FINISH || (stop != STOP_REPORT && stop != STOP_LIMIT))
        return;
    // An infinite search that ended by itself waits for "stop".
    if (stop == STOP_LIMIT && limits.infinite)
        return;
    limits.elapsed = now_seconds() - limits.start_time;
    bool searched = !book_move && !limits.best_move;
    collect_result();
    if (protocol_mode == 1 && !limits.best_move) {
        // No legal move: clients read the null move as 0000.
        send_line(in_check(game_position(), game_position()->side) ? "info depth 0 score mate 0"
                                                                   : "info depth 0 score cp 0");
        send_line("bestmove 0000");
        limits.search_state = SEARCH_IDLE;
        return;
    }
    // A search stopped inside its first iteration still reports depth 1.
    if (searched && worker(0))
        print_info_line(worker(0), std::max<int>(limits.completed_depth, 1), limits.best_score, limits.best_line, 1,
                        ' ');
    if (protocol_mode == 1) {
        char best[MOVE_TEXT_SIZE], ponder[MOVE_TEXT_SIZE + 8] = "", line[64];
        move_to_coord(limits.best_move, best, reported_move_style());
        if (limits.ponder_move) {
            char text[MOVE_TEXT_SIZE];
            move_to_coord(limits.ponder_move, text, reported_move_style());
            format_line(ponder, sizeof ponder, " ponder %s", text);
        }
        send_line(format_line(line, sizeof line, "bestmove %s%s", best, ponder));
    } else {
        print_console_statistics();
    }
    limits.search_state = SEARCH_IDLE;

    if (self_play || play_once) {
        double& clock = game_position()->side == WHITE ? limits.white_time : limits.black_time;
        clock = clock - limits.elapsed + limits.increment;
        // The move answers the position the search started from. Console
        // commands are served while the engine thinks; if they changed the
        // game meanwhile, the move belongs to no position on the board.
        if (!limits.best_move || game_position()->key != root_position()->key) {
            self_play = play_once = false;
            return;
        }
        char coord[MOVE_TEXT_SIZE], san[MOVE_TEXT_SIZE], sf[MOVE_TEXT_SIZE], sr[MOVE_TEXT_SIZE], text[96];
        move_texts(game_position(), limits.best_move, coord, san, sf, sr);
        int number = game_length() / 2 + 1;
        bool white = game_position()->side == WHITE;
        if (self_play)
            send_line(format_line(text, sizeof text, "%d%s move %s", number, white ? "." : "...", san));
        else
            send_line(format_line(text, sizeof text, "%d. move %s", number, san));
        play_game_move(limits.best_move);
        show_game_board();
        if (self_play)
            limits.search_state = SEARCH_REQUESTED;
        play_once = false;
    }
}

} // namespace

void request_engine_moves(bool continuous)
{
    self_play = continuous;
    play_once = !continuous;
}

void cancel_engine_moves()
{
    self_play = play_once = false;
}

void engine_round()
{
    sleep_ms(1);
    check_time();
    if (limits.search_state == SEARCH_IDLE && !count_busy_threads())
        apply_waiting_settings();
    bool pending = false;
    uint8_t state = limits.search_state;
    if (state != SEARCH_REQUESTED && state != PONDER_REQUESTED)
        poll_input();
    else
        pending = true;
    if (quit_requested)
        return;
    if (pending)
        start_search();
    report_if_due();
}

void run_engine_loop()
{
    set_game_position(START_FEN);
    show_game_board();
    quit_requested = false;
    limits.search_state = SEARCH_IDLE;
    while (!quit_requested)
        engine_round();
}
