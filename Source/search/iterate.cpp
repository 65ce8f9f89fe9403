#include "search/iterate.h"

#include "board/attack_queries.h"
#include "board/gives_check.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/see.h"
#include "eval/evaluate.h"
#include "search/clock.h"
#include "search/history.h"
#include "search/limits.h"
#include "search/search.h"
#include "search/search_config.h"
#include "search/search_params.h"
#include "search/search_report.h"
#include "search/search_thread.h"
#include "search/search_trace.h"
#include "search/search_values.h"
#include "search/threads.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace
{

constexpr int UNSEARCHED = -11000;
constexpr double CURRMOVE_AFTER = 3.5;     // seconds before the main thread shows its current move
constexpr int MAX_ITERATION = MAX_PLY - 1; // the loop's own bound beyond any depth limit
static_assert(MAX_SEARCH_DEPTH < MAX_ITERATION, "a depth limit must end the loop before its own bound");
constexpr int LAST_GAME_PLY = 883;
constexpr int ROOT_REDUCTION_DEPTH = 6;
constexpr int ROOT_REDUCTION_MOVES = 5;
constexpr int ROOT_REDUCTION_MARGIN = 24;

inline bool is_main(const SearchThread* t)
{
    return t->thread_number == 0;
}

void stable_sort_from(SearchThread* t, int first)
{
    std::stable_sort(t->root_moves + first, t->root_moves + t->root_count,
                     [](const RootMove& a, const RootMove& b) { return a.entry.score > b.entry.score; });
}

// Legal root moves, the table move first and captures by exchange value.
void build_root_moves(SearchThread* t)
{
    const Position* pos = &t->pos;
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list);
    TransEntry entry;
    entry.depth = TT_MISS;
    tt_probe(pos, &entry);
    Move hash_move = entry.depth >= -9 ? entry.move : 0;
    int kept = 0;
    for (int i = 0; i < n; i++) {
        MoveEntry e = list[i];
        if (!root_move_allowed(e.move))
            continue;
        int score = 0;
        if (e.move == hash_move)
            score = 3000;
        else if (e.captured || is_promotion(e.move))
            score = 1000 + swap(pos, pos->side, move_from(e.move), move_to(e.move));
        e.score = int16_t(score);
        t->root_moves[kept].entry = e;
        t->root_moves[kept].last_score = NO_SCORE;
        kept++;
    }
    t->root_count = kept;
    stable_sort_from(t, 0);
}

// The root tablebase step of the main thread: returns true when it decided
// the move on its own.
bool root_tablebase_step(SearchThread* t)
{
    t->root_tb_result = -1;
    if (!tb_largest)
        return false;
    Move move = 0;
    int r = tb_probe_root(&t->pos, &move);
    if (r < 0) {
        r = tb_probe_wdl(&t->pos, 70);
        move = 0;
    }
    t->root_tb_result = r;
    int score = r == 4 ? TB_WIN - 1 : r == 0 ? -TB_WIN : 0;
    if (r >= 0)
        limits.root_score = score;
    // With go searchmoves the tables' choice must be among the moves given.
    if (move && t->pos.fifty > 9 && is_legal(&t->pos, t->pos.side, move) && root_move_allowed(move)) {
        t->tbhits++;
        t->best_move = move;
        t->root_score = score;
        t->root_pv[0] = move;
        t->root_pv[1] = 0;
        limits.completed_depth = 99;
        t->seldepth = 99;
        search_reporter.pv_line(t, 99, score, t->root_pv, 1, ' ');
        return true;
    }
    return false;
}

} // namespace

int helper_depth(int depth, int threads_at_depth, int thread_count)
{
    return threads_at_depth > (thread_count >> 1) ? depth + 1 : depth;
}

uint64_t total_nodes()
{
    uint64_t n = 0;
    for (int i = 0; i < worker_count(); i++)
        n += worker(i)->nodes;
    return n;
}

uint64_t total_tbhits()
{
    uint64_t n = 0;
    for (int i = 0; i < worker_count(); i++)
        n += worker(i)->tbhits;
    return n;
}

int search_root(SearchThread* t, int depth, int alpha, int beta, int line)
{
    Position* pos = &t->pos;
    int side = pos->side;
    bool main = is_main(t);
    PlyInfo& pi = t->plies[ROOT_PLY];
    const int window_alpha = alpha;
    pi.alpha = int16_t(alpha);
    pi.depth = int16_t(depth);
    pi.reduction = 0;
    pi.list_end = t->move_buffer; // the root keeps its own list; children start behind this slot
    CheckInfo ci = check_info(pos);
    bool has_material = pos->phase_material[side] > 0 && pos->pieces[side][PAWN];
    for (int i = line; i < t->root_count; i++)
        t->root_moves[i].entry.score = int16_t(UNSEARCHED - i);

    int best = NO_SCORE;
    Move child_pv[MAX_PLY + 2];
    bool show_current = main && now_seconds() - limits.start_time > CURRMOVE_AFTER;
    if (show_current)
        search_reporter.status_line(limits.completed_depth, depth);
    for (int i = line; i < t->root_count; i++) {
        RootMove& rm = t->root_moves[i];
        MoveEntry* e = &rm.entry;
        Move move = e->move;
        int cls = move_class(t, move, e->piece, e->captured, ci);
        if (show_current)
            search_reporter.current_move(move, i + 1);
        int tried = i - line;
        int r = depth >= ROOT_REDUCTION_DEPTH && tried >= ROOT_REDUCTION_MOVES && alpha - ROOT_REDUCTION_MARGIN <= best
                        && best >= -MATE_BOUND && (cls & 63) == 0 && has_material
                    ? 1
                    : 0;
        pi.current_move = e;
        trace_move(t, move);
        make_move(pos, move);
        int v;
        if (tried == 0 || depth < 2) {
            v = -search_node(t, side ^ 1, ROOT_PLY + 1, depth - 1, -beta, -alpha, NODE_PV, child_pv);
        } else {
            v = -search_node(t, side ^ 1, ROOT_PLY + 1, depth - r - 1, -alpha - 1, -alpha, NODE_CUT, child_pv);
            if (v > alpha && !search_stopped())
                v = -search_node(t, side ^ 1, ROOT_PLY + 1, depth - 1, -beta, -alpha, NODE_PV, child_pv);
        }
        unmake_move(pos);
        pi.current_move = nullptr;
        if (search_stopped())
            return 0;
        e->score = int16_t(v);
        // Against the line's own window: a later move that merely fails to
        // beat the best so far is not a failing root.
        if (main)
            limits.root_line_state = v <= window_alpha ? 1 : v >= beta ? 2 : 0;
        if (v > best) {
            best = v;
            rm.last_score = int16_t(v);
            rm.pv[0] = move;
            int n = 1;
            for (int j = ROOT_PLY + 1; j < MAX_PLY && child_pv[j] && n < MAX_PLY; j++)
                rm.pv[n++] = child_pv[j];
            rm.pv[n] = 0;
            if (line == 0) {
                t->root_score = v;
                if (main)
                    limits.root_score = v;
                // The depth at which a best move was last set, the same move
                // again included: a node limit applies once an iteration from
                // the second on has set one. The time manager wants the
                // depth of the last real change.
                t->best_move_depth = uint8_t(depth);
                if (t->best_move != move) {
                    t->best_move = move;
                    if (main)
                        limits.best_change_depth = int16_t(depth);
                }
                std::memcpy(t->root_pv, rm.pv, sizeof(uint16_t) * size_t(n + 1));
            }
            if (v > alpha)
                alpha = v;
            if (main && search_config.multi_pv == 1)
                search_reporter.pv_line(t, depth, v, rm.pv, line + 1, v >= beta ? '+' : v <= pi.alpha ? '-' : '.');
            if (v >= beta)
                break;
        }
    }
    return best;
}

void iterate(SearchThread* t)
{
    bool main = is_main(t);
    int multi_pv = std::min<int>(search_config.multi_pv, t->root_count);
    int max_depth = limits.max_depth;
    for (int d = 1; d < MAX_ITERATION; d++) {
        // Step 1: helpers skip a depth that most threads already search,
        // and shake their root order.
        if (!main) {
            if (d > 5 && d < max_depth && multi_pv == 1) {
                int at_or_beyond = 0;
                for (int i = 0; i < worker_count(); i++)
                    if (worker(i)->iteration_depth >= d)
                        at_or_beyond++;
                d = helper_depth(d, at_or_beyond, worker_count());
            }
            for (int i = 0; i < t->root_count; i++) {
                t->root_seed = t->root_seed * 19375u + 987654321u;
                t->root_moves[i].entry.score = int16_t(t->root_moves[i].entry.score - int(t->root_seed % 24));
            }
            stable_sort_from(t, 0);
        }
        // Step 2.
        if (main)
            limits.search_depth = uint8_t(d);
        t->iteration_depth = uint8_t(d);

        // Step 3: one aspiration search per line.
        for (int k = 0; k < multi_pv && k < t->root_count; k++) {
            if (main)
                limits.root_line_state = 0;
            int s = k == 0 ? t->root_score : t->root_moves[k].last_score;
            int delta = std::abs(s) / 16 + 25 + (d < 6 ? (6 - d) * 10 : 0);
            int lower = d == 1 || s == NO_SCORE ? -INFINITE_SCORE : s - delta;
            int upper = d == 1 || s == NO_SCORE ? INFINITE_SCORE : s + delta;
            int v = 0;
            for (;;) {
                if (search_stopped())
                    break;
                lower = open_lower(lower);
                upper = open_upper(upper);
                v = search_root(t, d, lower, upper, k);
                if (!search_stopped())
                    stable_sort_from(t, k);
                if (search_stopped())
                    break;
                if (v > lower && v < upper)
                    break;
                if (v <= lower)
                    lower -= delta;
                else
                    upper += delta;
                delta *= 2;
            }
            if (!search_stopped()) {
                t->root_moves[k].last_score = int16_t(v);
                if (main && multi_pv >= 2)
                    search_reporter.pv_line(t, d, v, t->root_moves[k].pv, k + 1, '.');
            }
        }

        // Step 4: statistics of the iteration.
        {
            std::lock_guard<std::mutex> guard(stats_lock);
            limits.nodes_at_depth[d] += t->nodes;
        }
        if (search_stopped())
            break;
        if (main) {
            // The root's result goes to the table too: the next search and
            // the console's "hash" line start from it.
            // Not when the root was restricted: its score speaks for some
            // moves only.
            if (t->best_move && !limits.root_move_count)
                tt_store(&t->pos, ROOT_PLY, d, t->best_move, t->root_score, -INFINITE_SCORE, INFINITE_SCORE);
            limits.completed_depth = int8_t(d);
            limits.root_score_by_depth[d] = int16_t(t->root_score);
        }
        // Step 5: mate found, depth reached, or the game too long; a mate
        // search ends once a mate as short as asked for is proven.
        if (std::abs(t->root_score) >= MATE - 1 - d || d >= max_depth || t->pos.game_ply + d > LAST_GAME_PLY)
            break;
        if (limits.mate_moves && t->root_score >= MATE - 2 * limits.mate_moves)
            break;
    }
    if (main && !search_stopped())
        limits.stop_signal = STOP_LIMIT;
}

void run_search(SearchThread* t)
{
    bool main = is_main(t);
    copy_root_into(t);
    std::memset(t->plies, 0, sizeof t->plies);
    clear_history(t);
    t->nodes = 0;
    t->tbhits = 0;
    t->tt_probes = t->tt_hits = 0;
    t->seldepth = 0;
    t->iteration_depth = 0;
    t->null_moves_on_path = 0;
    t->best_move_depth = 0;
    t->best_move = 0;
    t->root_pv[0] = 0;
    t->root_score = limits.root_score;
    t->root_seed = 123u * uint32_t(t->thread_number);
    t->node_limit = limits.node_limit ? limits.node_limit : ~0ULL;
    t->eval.eval_count = 0;
    build_root_moves(t);
    t->plies[ROOT_PLY].tb_result = -1;
    t->plies[0].tb_result = -1;
    t->plies[0].eval = NO_SCORE;
    t->plies[ROOT_PLY].eval =
        int16_t(evaluate(&t->pos, &t->eval, t->pos.side, plies_from_root(ROOT_PLY), 0, t->plies[ROOT_PLY].threat));

    if (main) {
        limits.single_reply = t->root_count == 1;
        bool decided = root_tablebase_step(t);
        t->plies[ROOT_PLY].tb_result = t->root_tb_result;
        limits.search_started = true;
        if (decided) {
            limits.stop_signal = STOP_LIMIT;
            return;
        }
    } else {
        while (!limits.search_started.load() && !search_stopped())
            sleep_ms(1);
        // Stopped before the main thread had its root ready: what it holds
        // is still being written, and there is nothing to search anyway.
        if (!limits.search_started.load())
            return;
        SearchThread* m = worker(0);
        if (m && m->root_tb_result != -1)
            return;
    }
    if (t->root_count == 0) {
        // Checkmate or stalemate on the board: nothing to search.
        t->root_score = in_check(&t->pos, t->pos.side) ? ROOT_PLY - MATE : 0;
        if (main) {
            limits.root_score = t->root_score;
            limits.stop_signal = STOP_LIMIT;
        }
        return;
    }
    iterate(t);
}

double effective_branching_factor()
{
    int d = limits.completed_depth;
    if (d <= 5 || d >= MAX_PLY)
        return 2.0;
    double n = double(limits.nodes_at_depth[d]), m = double(limits.nodes_at_depth[d - 4]);
    if (n == 0 || m == 0)
        return 2.0;
    return std::pow(n / m, 0.25);
}
