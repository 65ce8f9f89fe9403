#include "search/search.h"

#include "board/attack_queries.h"
#include "board/attacks.h"
#include "board/draw.h"
#include "board/gives_check.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/see.h"
#include "eval/eval_cache.h"
#include "eval/eval_terms.h"
#include "eval/evaluate.h"
#include "search/clock.h"
#include "search/history.h"
#include "search/limits.h"
#include "search/movepick.h"
#include "search/search_params.h"
#include "search/search_thread.h"
#include "search/search_trace.h"
#include "search/search_values.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"

#include <algorithm>
#include <cstring>

namespace
{

// The entry a null move is recorded with in the search stack.
MoveEntry NULL_MOVE_ENTRY = {0, 0, 0, 0};

// Cut-node block and static pruning.
constexpr int EVAL_DROP_LIMIT = 75;        // the static eval may have fallen this much since ply - 2
constexpr int HANGING_SAFETY_MARGIN = 124; // static pruning near the horizon with nothing en prise
// ProbCut: captures must win at least this much by exchange.
constexpr int PROBCUT_SEE = 74;
// Internal iterative deepening runs when the static eval is not far below alpha.
constexpr int IID_EVAL_MARGIN = 199;
// Ordering scores: LMR keeps non-quiet moves unreduced above this, LMP spares them above that.
constexpr int LMR_HISTORY = 31;
constexpr int LMP_TACTICAL_HISTORY = 40;
constexpr int STRENGTH_MASK = 511;

inline int worth(int code)
{
    return PIECE_WORTH[piece_type(code)];
}

// Does a quiet move create a threat that late-move pruning must not throw away?
bool makes_new_threat(const Position* pos, Move move, int piece)
{
    int side = pos->side, e = side ^ 1;
    int from = move_from(move), to = move_to(move);
    const Bitboard* them = pos->pieces[e];
    Bitboard king_ring = KING_ATTACKS[pos->king_square[e]];
    Bitboard occ = (occupancy(pos) & ~bit(from)) | bit(to);
    switch (piece_type(piece)) {
    case PAWN:
        return PAWN_ATTACKS[side][to] & (them[KNIGHT] | them[BISHOP] | them[ROOK] | them[QUEEN] | king_ring);
    case KNIGHT:
        return KNIGHT_ATTACKS[to] & (them[ROOK] | them[QUEEN] | king_ring);
    case BISHOP: {
        Bitboard now = bishop_attacks(to, occ);
        Bitboard before = bishop_attacks(from, occupancy(pos));
        return (now & ~before & (them[ROOK] | them[QUEEN])) || (now & king_ring);
    }
    case ROOK: {
        Bitboard now = rook_attacks(to, occ);
        Bitboard before = rook_attacks(from, occupancy(pos));
        return (now & ~before & them[QUEEN]) || (now & king_ring);
    }
    case QUEEN:
        return queen_attacks(to, occ) & king_ring;
    default:
        return false; // king moves are always pruned
    }
}

bool is_ep_capture(const Position* pos, Move move, int piece)
{
    return piece_type(piece) == PAWN && move_to(move) == pos->ep_square;
}

// A capture or move by a man worth more than what stands on the target square.
inline bool worth_more(const Position* pos, const MoveEntry* e)
{
    return !is_ep_capture(pos, e->move, e->piece) && worth(e->piece) > worth(e->captured);
}

int non_pawn_units(const Position* pos, int side)
{
    return pos->phase_material[side];
}

// Any man of the side to move (king excepted) that the opponent can win by exchange?
bool safe_from_captures(const Position* pos, int eval, int beta)
{
    int side = pos->side;
    Bitboard men = pos->pieces[side][0] & ~pos->pieces[side][KING];
    while (men) {
        int sq = pop_lsb(men);
        if (!is_square_attacked(pos, sq, side ^ 1))
            continue;
        int g = swap(pos, side ^ 1, NO_SQUARE, sq);
        if (g >= 1 && eval - g <= beta + HANGING_SAFETY_MARGIN)
            return false;
    }
    return true;
}

// Waits while the node rate runs ahead of the strength limit.
void limit_node_rate(const SearchThread* t)
{
    if (!limits.rate_limited)
        return;
    for (;;) {
        uint8_t state = limits.search_state.load(std::memory_order_relaxed);
        if (!limits.rate_limited || search_stopped() || (state != SEARCH_FINISH && state != SEARCH_PONDERING))
            return;
        double elapsed = now_seconds() - limits.start_time;
        if (elapsed >= double(t->nodes) / limits.target_nps)
            return;
        sleep_ms(1);
    }
}

} // namespace

int move_class(const SearchThread* t, Move move, int piece, int captured, const CheckInfo& ci)
{
    const Position* pos = &t->pos;
    int cls = 0;
    if (captured || is_ep_capture(pos, move, piece))
        cls |= 1;
    if (gives_check(pos, move, ci))
        cls |= 2;
    if (piece_type(piece) == PAWN) {
        int side = pos->side;
        int to = move_to(move);
        int r = side == WHITE ? rank_of(to) : 7 - rank_of(to);
        if (is_promotion(move))
            cls |= 16;
        else if (r == 6)
            cls |= 8;
        if (r >= 6 || ((r == 4 || r == 5) && !(pos->pieces[side ^ 1][PAWN] & passed_span(side, to))))
            cls |= 32;
    }
    return cls;
}

int search_node(SearchThread* t, int side, int ply, int depth, int alpha, int beta, int node_type, Move* pv)
{
    Position* pos = &t->pos;
    PlyInfo& pi = t->plies[ply];

    // The caller reads this node's line whatever way it returns.
    pv[ply] = 0;
    pv[ply + 1] = 0;

    // Step 1: count the node and keep to the strength limit's node rate.
    t->nodes++;
    limit_node_rate(t);

    // Step 2: node limit, stop flag.
    if (t->nodes > t->node_limit && t->best_move_depth >= 2)
        limits.stop_signal = STOP_LIMIT;
    if (search_stopped())
        return 0;

    // Step 3: selective depth.
    if (ply > t->seldepth)
        t->seldepth = uint8_t(ply);

    // Step 4: mate-distance pruning.
    alpha = std::max(alpha, ply - MATE);
    beta = std::min(beta, MATE - 1 - ply);
    if (alpha >= beta)
        return alpha;

    // Step 5: the table bucket is needed soon, and so is the pawn cache's
    // entry (the evaluation cache's was asked for by the parent).
    if (depth >= 0)
        tt_prefetch(pos->key);
    prefetch_pawn_entry(&t->eval, pawn_cache_key(pos->pawn_key, pos->king_square[WHITE], pos->king_square[BLACK]));

    // Step 6: this ply's record.
    pi.alpha = int16_t(alpha);
    pi.hash_move = 0;
    pi.iid_active = 0;
    pi.tb_result = -1;
    pi.reduction = 0;
    pi.current_move = nullptr;
    pi.list_end = list_start(t, ply);

    // Step 7: in check?
    int checker = find_attacker(pos, pos->king_square[side], side ^ 1, occupancy(pos));
    bool in_check = checker != NO_SQUARE;
    pi.in_check = in_check;
    pi.checker_square = uint8_t(checker);

    // Step 8: repetition and fifty-move draws.
    int from_root = plies_from_root(ply);
    if (is_draw(pos, from_root))
        return 0;

    // Step 9: check extension.
    if (in_check && from_root <= t->iteration_depth + 7)
        depth++;
    pi.depth = int16_t(depth);

    // Step 10: transposition table.
    bool tt_fail_low = false, tt_fail_high = false;
    int tt_depth = -1; // the entry's draft, when usable
    if (depth >= 0 && tt.use_hash) {
        t->tt_probes++;
        TransEntry entry;
        entry.depth = TT_MISS;
        tt_probe(pos, &entry);
        if (entry.depth >= -9) {
            t->tt_hits++;
            pi.hash_move = entry.move;
            // The table move is usually searched first: its child's entries
            // are asked for now, a whole evaluation ahead.
            if (entry.move) {
                uint64_t child_key = key_after(pos, entry.move);
                tt_prefetch(child_key);
                prefetch_eval_entry(&t->eval, child_key);
            }
            tt_depth = entry.depth;
            int s = entry.score;
            if (s < -MATE_BOUND)
                s += ply;
            else if (s >= MATE_BOUND)
                s -= ply;
            tt_fail_low = entry.bound != BOUND_LOWER && s <= alpha;
            tt_fail_high = entry.bound != BOUND_UPPER && s >= beta;
            if (depth <= entry.depth) {
                if (entry.bound == BOUND_EXACT && from_root >= 8 && (s > NEAR_MATE || s < -NEAR_MATE))
                    return s;
                if (node_type != NODE_PV) {
                    if (tt_fail_low)
                        return alpha;
                    if (tt_fail_high)
                        return beta;
                }
            }
        }
    }

    // Step 11: tablebases.
    const PlyInfo& parent = t->plies[ply - 1];
    if (tb_largest && (pos->fifty == 0 || parent.tb_result >= 0)) {
        int r = tb_probe_wdl(pos, depth);
        if (r >= 0) {
            t->tbhits++;
            pi.tb_result = r;
            if (parent.tb_result < 0) {
                int s = r == 0 ? ply - (TB_WIN + 1) : r == 4 ? TB_WIN - ply : 0;
                if (s <= alpha)
                    s = alpha;
                pi.alpha = int16_t(s);
                return s;
            }
            if (r >= 6 - parent.tb_result)
                return beta;
        }
    }

    // Step 12: static evaluation.
    int eval = evaluate(pos, &t->eval, side, from_root, 0, t->plies[ply].threat);
    pi.eval = int16_t(eval);

    // Step 13: too deep.
    if (ply > MAX_SEARCH_PLY)
        return in_check ? 0 : eval;

    // Step 14: in check, straight to the moves.
    if (in_check)
        return search_moves(t, side, ply, depth, alpha, beta, true, node_type, pv);

    // Step 15: random reductions of the strength limit.
    int rate = search_params.strength_reduction_rate;
    if (rate && node_type != NODE_PV && alpha >= -MATE_BOUND && beta <= MATE_BOUND - 1) {
        if (int((uint32_t(pos->key) ^ limits.random_word) & STRENGTH_MASK) < rate * 3 / 2)
            depth = depth - 2 > depth / 2 ? depth / 2 : depth - 3;
    }

    // Step 16: the horizon.
    if (depth < 1)
        return quiesce(t, side, ply, depth, alpha, beta, node_type, pv);

    // Step 17: razoring.
    if (depth <= search_params.fp_depth && eval <= alpha - search_params.fp_margin[margin_index(depth)] && !tt_fail_high
        && alpha < MATE_BOUND && node_type != NODE_PV) {
        return quiesce(t, side, ply, depth, alpha, beta, node_type, pv);
    }

    // Step 18: pruning at expected cut nodes.
    int prior_eval = ply >= 2 ? t->plies[ply - 2].eval : NO_SCORE;
    if (node_type == NODE_CUT && eval >= beta + search_params.bp_margin && eval >= prior_eval - EVAL_DROP_LIMIT
        && !tt_fail_low && non_pawn_units(pos, side) >= 1 && pos->pieces[side][PAWN] && beta >= -MATE_BOUND) {
        // 18a: static pruning.
        if (eval >= beta + pi.threat[side]) {
            if (depth <= search_params.sep_depth && eval >= beta + search_params.sep_margin[margin_index(depth)])
                return beta;
            if (depth < 3 && safe_from_captures(pos, eval, beta))
                return beta;
        }
        // 18b: ProbCut.
        if (depth >= search_params.pc_depth && from_root >= 4 && probcut(t, ply, depth, beta))
            return beta;
        // 18c: null move.
        const MoveEntry* m1 = t->plies[ply - 1].current_move;
        const MoveEntry* m2 = ply >= 2 ? t->plies[ply - 2].current_move : nullptr;
        if (depth >= search_params.nmp_depth && null_move_allowed(t->null_moves_on_path, t->iteration_depth)
            && m1 != &NULL_MOVE_ENTRY && m2 != &NULL_MOVE_ENTRY) {
            int R = depth > 9 && non_pawn_units(pos, side) >= 4 ? 4 : 3;
            pi.current_move = &NULL_MOVE_ENTRY;
            trace_move(t, 0);
            make_null(pos);
            t->null_moves_on_path++;
            int v = -search_node(t, side ^ 1, ply + 1, std::max(depth - R, 1) - 1, -beta, -alpha, NODE_CUT, pv);
            t->null_moves_on_path--;
            unmake_null(pos);
            pi.current_move = nullptr;
            if (search_stopped())
                return 0;
            if (v >= beta) {
                if (depth < 5)
                    return beta;
                // Deeper nodes are not cut, only reduced.
                depth -= R + 1;
            }
        }
    }

    // Step 19: internal iterative deepening.
    int reduced = node_type == NODE_PV ? depth - 3 : depth > 8 ? depth - 5 : depth - 4;
    bool skip_iid = reduced <= std::max(tt_depth, 0);
    if (node_type != NODE_PV && depth > 8)
        skip_iid = tt_depth >= depth - 5;
    if (!skip_iid && eval >= alpha - IID_EVAL_MARGIN) {
        pi.iid_active = 1;
        search_moves(t, side, ply, reduced, alpha, beta, false, node_type, pv);
        pi.iid_active = 0;
        if (search_stopped())
            return 0;
        if (pv[ply])
            pi.hash_move = pv[ply];
    }

    // Step 20: the moves.
    return search_moves(t, side, ply, depth, alpha, beta, false, node_type, pv);
}

int search_moves(SearchThread* t, int side, int ply, int depth, int alpha, int beta, bool in_check, int node_type,
                 Move* pv)
{
    Position* pos = &t->pos;
    PlyInfo& pi = t->plies[ply];
    const SearchParams& sp = search_params;
    int alpha0 = pi.alpha;

    // Step 1: late-move pruning switch.
    bool lmp = sp.lmp_depth >= depth && depth >= 1 && !in_check && !pi.iid_active && node_type != NODE_PV;
    int best = NO_SCORE;
    Move best_move = 0;
    const PlyInfo& parent = t->plies[ply - 1];

    Move child_pv[MAX_PLY + 2];
    child_pv[ply + 1] = 0;
    PinInfo pins = in_check ? pin_info(pos, side) : pin_info_unchecked(pos, side);
    CheckInfo ci = check_info(pos);
    init_picker(t, ply, MODE_SEARCH, in_check ? pi.checker_square : NO_SQUARE);
    bool hash_tried = false;
    pi.moves_tried = 0;

    // Step 2: the moves in picker order.
    while (MoveEntry* e = next_move(t, ply)) {
        Move move = e->move;
        if (e == &pi.hash_entry)
            hash_tried = true;
        else if (hash_tried && move == pi.hash_move)
            continue;
        if (move == 0 || !is_legal_fast(pos, side, move, pins))
            continue;
        // The child's table bucket and evaluation entry are asked for now,
        // so that the memory works while the move is classed and judged.
        uint64_t child_key = key_after(pos, move);
        tt_prefetch(child_key);
        prefetch_eval_entry(&t->eval, child_key);

        // Step 3: class of the move.
        int cls = move_class(t, move, e->piece, e->captured, ci);
        bool quiet = (cls & 63) == 0;
        int hist = e->score;

        // Step 4: pruning and reduction.
        int r = 0;
        if (best >= -MATE_BOUND) {
            if (lmp && quiet) {
                bool prune = false;
                int count = sp.lmp_count[margin_index(depth)] + hist / 4;
                if (pi.moves_tried >= count && !makes_new_threat(pos, move, e->piece))
                    prune = true;
                else if (worth_more(pos, e) && swap(pos, side, move_from(move), move_to(move)) < BAD_SEE)
                    prune = true;
                if (prune)
                    continue;
            } else if (lmp && !quiet && depth == 1) {
                // Tactical moves are pruned at the last ply only: late-move
                // pruning reaches deeper plies by default, so "the last ply"
                // is a condition of its own here.
                if (hist <= LMP_TACTICAL_HISTORY && (cls & 3) != 3 && worth_more(pos, e)
                    && swap(pos, side, move_from(move), move_to(move)) < BAD_SEE)
                    continue;
            }
            if (depth >= sp.lmr_depth && pi.moves_tried >= 1 && depth >= 2) {
                int d = std::min(depth, 31), m = std::min<int>(pi.moves_tried, 31);
                r = node_type == NODE_PV ? sp.lmr_pv[d][m] : sp.lmr_nonpv[d][m];
                int parent_reduction = parent.reduction;
                if (r >= 2 && !quiet) {
                    r = hist <= LMR_HISTORY ? (parent_reduction > 2 ? 0 : 1) : 0;
                } else if (r >= 1 && quiet) {
                    if (hist > LMR_HISTORY)
                        r = std::min(r, 3) - 1;
                    if (parent_reduction > 2 && r > 0)
                        r--;
                }
                if (worth_more(pos, e) && swap(pos, side, move_from(move), move_to(move)) < BAD_SEE)
                    r++;
                if (std::min(depth, 31) - r < 1)
                    r = depth - 1;
            }
        }
        pi.reduction = int8_t(r);

        // Step 5: search the move.
        pi.current_move = e;
        trace_move(t, move);
        make_move(pos, move);
        int v;
        if (pi.moves_tried > 0 && depth >= 2) {
            v = -search_node(t, side ^ 1, ply + 1, depth - r - 1, -alpha - 1, -alpha, NODE_CUT, child_pv);
            if (v > alpha && !search_stopped()) {
                pi.reduction = 0;
                v = -search_node(t, side ^ 1, ply + 1, depth - 1, -beta, -alpha,
                                 node_type == NODE_PV ? NODE_PV : NODE_ALL, child_pv);
            }
        } else {
            v = -search_node(t, side ^ 1, ply + 1, depth - 1, -beta, -alpha, -node_type, child_pv);
        }
        unmake_move(pos);
        if (search_stopped())
            return 0;
        pi.moves_tried++;

        // Step 6: ordering statistics of quiet moves.
        if (!(cls & 1) && depth >= 1)
            update_quiet_stats(t, ply, e, v > alpha, depth, in_check);

        // Step 7: best so far, cut, new alpha.
        if (v > best) {
            best = v;
            best_move = move;
            pv[ply] = move;
            pv[ply + 1] = 0;
            if (v > alpha) {
                // The line of a move that raised alpha (a cut included).
                if (ply + 1 < MAX_PLY) {
                    int i = ply + 1;
                    for (; i < MAX_PLY && child_pv[i]; i++)
                        pv[i] = child_pv[i];
                    if (i < MAX_PLY)
                        pv[i] = 0;
                }
                if (v >= beta)
                    break;
                alpha = v;
            }
        }
    }
    pi.current_move = nullptr;

    // Step 8: mate, stalemate, and the table store.
    int lo = alpha0, hi = beta;
    if (!best_move) {
        best = in_check ? ply - MATE : 0;
        lo = -INFINITE_SCORE;
        hi = INFINITE_SCORE;
    }
    if (depth >= 0)
        tt_store(pos, ply, depth, best_move, best, lo, hi);
    return best;
}

bool probcut(SearchThread* t, int ply, int depth, int beta)
{
    if (beta > NEAR_MATE)
        return false;
    Position* pos = &t->pos;
    PlyInfo& pi = t->plies[ply];
    int side = pos->side;
    int rbeta = beta + search_params.pc_margin;
    int draft = std::max(depth - search_params.pc_red, 1);

    MoveEntry* list = list_start(t, ply);
    MoveEntry* end = gen_captures(pos, side, list, NO_SQUARE);
    pi.list_end = end;
    for (MoveEntry* e = list; e != end; e++)
        e->score = int16_t(MVV[piece_type(e->captured)] - piece_type(e->piece));
    PinInfo pins = pin_info_unchecked(pos, side);
    Move child_pv[MAX_PLY + 2];
    for (MoveEntry* next = list; next != end; next++) {
        MoveEntry* best = next;
        for (MoveEntry* e = next + 1; e != end; e++)
            if (e->score > best->score)
                best = e;
        std::swap(*best, *next);
        Move move = next->move;
        if (!is_legal_fast(pos, side, move, pins))
            continue;
        if (swap(pos, side, move_from(move), move_to(move)) <= PROBCUT_SEE)
            continue;
        pi.current_move = next;
        trace_move(t, move);
        make_move(pos, move);
        int v = -search_node(t, side ^ 1, ply + 1, draft - 1, -rbeta, -rbeta + 1, NODE_ALL, child_pv);
        unmake_move(pos);
        pi.current_move = nullptr;
        if (search_stopped())
            return false;
        if (v >= rbeta)
            return true;
    }
    return false;
}
