#include "uci/search_output.h"

#include "board/fen.h"
#include "board/notation.h"
#include "output/output.h"
#include "search/clock.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_config.h"
#include "search/search_report.h"
#include "search/search_thread.h"
#include "search/search_values.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/tt.h"
#include "uci/input.h"
#include "uci/wdl_model.h"

#include <cstdio>
#include <cstring>
#include <mutex>

namespace
{

constexpr int MAX_PV_SHOWN = 66;

// Mate scores are shown as moves to mate from these bounds on (the losing
// side's bound is one lower, so a mate at root ply 1 reads one move long).
constexpr int MATE_SHOWN = 9899;
constexpr int MATED_SHOWN = -9900;

void format_pv(const Move* pv, char* out, size_t size)
{
    out[0] = 0;
    size_t used = 0;
    for (int i = 0; i < MAX_PV_SHOWN && pv[i]; i++) {
        char text[MOVE_TEXT_SIZE];
        move_to_coord(pv[i], text, reported_move_style());
        int n = std::snprintf(out + used, size - used, "%s%s", i ? " " : "", text);
        if (n < 0 || used + size_t(n) >= size)
            break;
        used += size_t(n);
    }
}

double nodes_per_second(double nodes, double elapsed)
{
    return elapsed > 0.001 ? nodes / elapsed : 0.0;
}

void status_line(int completed_depth, int iteration_depth)
{
    if (protocol_mode != 1)
        return;
    char text[256];
    double elapsed = now_seconds() - limits.start_time;
    double nodes = double(total_nodes());
    send_line(format_line(text, sizeof text, "info depth %d time %.0f nodes %.0f nps %.0f hashfull %.0f",
                          completed_depth, elapsed * 1000, nodes, nodes_per_second(nodes, elapsed),
                          tt_hashfull(iteration_depth) * 1000));
}

void current_move(Move move, int number)
{
    if (protocol_mode != 1)
        return;
    char text[128];
    send_line(format_line(text, sizeof text, "info currmove %s%s currmovenumber %d", SQUARE_NAMES[move_from(move)],
                          SQUARE_NAMES[move_to(move)], number));
}

void message(const char* text)
{
    char line[256];
    send_line(format_line(line, sizeof line, "info string %s", text));
}

bool poll_commands(bool read)
{
    if (read)
        poll_input();
    return quit_requested;
}

} // namespace

void install_search_output()
{
    search_reporter = {print_info_line, status_line, current_move, message, poll_commands};
}

void score_text(int score, char* text, int size)
{
    if (score > MATE_SHOWN)
        std::snprintf(text, size_t(size), "mate %d", (MATE - score) / 2);
    else if (score < MATED_SHOWN)
        std::snprintf(text, size_t(size), "mate -%d", (score + INFINITE_SCORE) / 2);
    else
        std::snprintf(text, size_t(size), "cp %d", score);
}

void print_info_line(const SearchThread* t, int depth, int score, const Move* pv, int line_number, char mark)
{
    std::lock_guard<std::mutex> guard(info_lock);
    char pv_text[MAX_PV_SHOWN * 8];
    format_pv(pv, pv_text, sizeof pv_text);
    double elapsed = now_seconds() - limits.start_time;
    double nodes = double(total_nodes());
    char line[1024];
    if (protocol_mode == 1) {
        char multipv[32] = "";
        if (search_config.multi_pv > 1)
            std::snprintf(multipv, sizeof multipv, "multipv %d ", line_number);
        char score_buf[64];
        score_text(score, score_buf, sizeof score_buf);
        if (search_config.show_wdl) {
            WdlChances c = wdl_of_score(score);
            size_t used = std::strlen(score_buf);
            std::snprintf(score_buf + used, sizeof score_buf - used, " wdl %d %d %d", c.win, c.draw, c.loss);
        }
        send_line(format_line(line, sizeof line,
                              "info %s%sdepth %d seldepth %d score %s time %.0f nodes %.0f nps %.0f tbhits %.0f "
                              "hashfull %.0f pv %s",
                              multipv, "", depth, t->seldepth, score_buf, elapsed * 1000, nodes,
                              nodes_per_second(nodes, elapsed), double(total_tbhits()), tt_hashfull(depth) * 1000,
                              pv_text));
    } else {
        send_line(format_line(line, sizeof line, "%02d] %02d%c %5.1f %7.0fK %5d  %s", line_number, depth, mark, elapsed,
                              nodes * 0.001, score, pv_text));
    }
}

void print_search_start()
{
    if (!search_is_timed())
        return;
    const Position* root = root_position();
    char fen[128], line[256];
    write_fen(root, fen);
    double clock = root->side == WHITE ? limits.white_time : limits.black_time;
    if (protocol_mode == 1) {
        log_line(format_line(line, sizeof line, "info string fen %s", fen));
        log_line(format_line(line, sizeof line, "info string ply= %d, trg_time= %0.3f sec", root->game_ply,
                             limits.target_time));
    } else {
        send_line(format_line(line, sizeof line, "fen %s", fen));
        send_line(format_line(line, sizeof line, "Ply= %d, cnt50= %d, Clock= %0.2fs, Target time= %0.2fs",
                              root->game_ply, root->fifty, clock, limits.target_time));
    }
}
