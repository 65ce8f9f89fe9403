#include "eval/evaluate.h"

#include "board/attack_queries.h"
#include "board/attacks.h"
#include "board/notation.h"
#include "board/see.h"
#include "eval/eval_cache.h"
#include "eval/eval_options.h"
#include "eval/eval_tables.h"
#include "eval/eval_terms.h"
#include "eval/eval_trace.h"
#include "eval/kpk.h"
#include "eval/params.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace
{

// Values of the special endings that come before the tapered evaluation.
constexpr int KBNK_BASE = 740;
constexpr int KPK_WIN = 800;

// Search tallies left for the static pruning of the search.
constexpr int TRAPPED_MINOR_TALLY = 250;
constexpr int QUEEN_CONTACT_TALLY = 800;

// King-zone attack tally per attacking piece kind.
constexpr int ZONE_WEIGHT[7] = {0, 0, 4, 3, 4, 5, 0};
// Danger count per safe checking square by piece kind, and per queen contact check.
constexpr int CHECK_WEIGHT[7] = {0, 0, 3, 3, 4, 4, 0};
constexpr int CONTACT_CHECK_WEIGHT = 6;
constexpr int UNOPPOSED_ZONE_ATTACKER = 4;

constexpr Bitboard RANK_MASK(int r)
{
    return RANK_1 << (8 * r);
}

// Every square of the set and all squares below (above) them on their files.
inline Bitboard fill_down(Bitboard b)
{
    b |= b >> 8;
    b |= b >> 16;
    return b | b >> 32;
}
inline Bitboard fill_up(Bitboard b)
{
    b |= b << 8;
    b |= b << 16;
    return b | b << 32;
}

// Relative rank 0..7 of a square for a side.
inline int relative_rank(int side, int sq)
{
    return side == WHITE ? rank_of(sq) : 7 - rank_of(sq);
}

// Wing-folded pawn hash key: pawn scores depend on where both kings stand.
inline uint64_t pawn_hash_key(const Position* pos)
{
    return pawn_cache_key(pos->pawn_key, pos->king_square[WHITE], pos->king_square[BLACK]);
}

struct EvalState {
    const Position* pos;
    Score acc[2];
    Bitboard occ;
    Bitboard attacked[2];   // by any man of the side
    Bitboard attacked2[2];  // by at least two men
    Bitboard by_type[2][7]; // by piece type
    Bitboard king_zone[2];
    Bitboard exclusion[2]; // squares that do not count as reachable
    Bitboard outposts[2];
    Bitboard passed[2];
    Bitboard hung;    // for the trace
    int tally[2];     // attack tally against this side's king
    int threat[2];    // handed to the search
    int flip[2];      // square maps: sq ^ flip[side]
    int table_offset; // 0: "1" tables, else the distance to the "2" tables
    bool tracing;     // keep the snapshots
    Score snapshot[EVAL_GROUPS + 1][2];
    EvalCaches* caches;
};

// While tuning, a row's coefficient gathers the signed weight it enters the
// score with (White's uses positive); the rows touched are listed so that
// the tuner's update need not walk the whole table.
inline void record_coefficient(EvalState& st, int row, float weight)
{
    if (weight == 0.0f)
        return;
    EvalParam& p = param_table[row];
    EvalCaches* c = st.caches;
    if (p.coef == 0.0f && c->touched_count < MAX_TOUCHED_ROWS)
        c->touched[c->touched_count++] = uint16_t(row);
    p.coef += weight;
}

template <bool Tune>
inline void add(EvalState& st, int side, int row, int count = 1)
{
    st.acc[side] = score_plus(st.acc[side], score_times(count, param_score[row]));
    if constexpr (Tune)
        record_coefficient(st, row, float(side == WHITE ? count : -count));
}

// A term scaled by a factor through the working values (mobility-like terms).
template <bool Tune>
inline void add_scaled(EvalState& st, int side, int row, Score value, float factor)
{
    st.acc[side] = score_plus(st.acc[side], value);
    if constexpr (Tune)
        record_coefficient(st, row, side == WHITE ? factor : -factor);
}

// One side's running account within a group of terms, kept apart from the
// record so that it can live in a register; while tuning it also records
// each row's coefficient, in the order the terms come.
template <bool Tune, int Side>
struct Account {
    EvalState& st;
    Score sum;

    void add(int row, int count = 1)
    {
        sum = score_plus(sum, score_times(count, param_score[row]));
        if constexpr (Tune)
            record_coefficient(st, row, float(Side == WHITE ? count : -count));
    }
    void add_scaled(int row, Score value, float factor)
    {
        sum = score_plus(sum, value);
        if constexpr (Tune)
            record_coefficient(st, row, Side == WHITE ? factor : -factor);
    }
    // Books the account into the side's total.
    void close() { st.acc[Side] = score_plus(st.acc[Side], sum); }
};

inline int pst_row(const EvalState& st, int table, int side, int sq)
{
    return table + (sq ^ st.flip[side]);
}

// The "1" tables sit at fixed distances from their "2" twins.
inline int piece_table(const EvalState& st, int table_one)
{
    return st.table_offset ? table_one + st.table_offset : table_one;
}

// The accounts after a group of terms, for the breakdown display.
inline void snapshot(EvalState& st, int group)
{
    if (!st.tracing)
        return;
    st.snapshot[group][0] = st.acc[0];
    st.snapshot[group][1] = st.acc[1];
}

// --- pawns ------------------------------------------------------------------

template <bool Tune, int s>
Score pawn_structure(EvalState& st)
{
    const Position* pos = st.pos;
    Bitboard own = pos->pieces[s][PAWN], enemy = pos->pieces[s ^ 1][PAWN];
    Bitboard defended = pawn_attacks_of(s, own);
    Bitboard enemy_attacks = pawn_attacks_of(s ^ 1, enemy);
    Score before = st.acc[s];
    int p_table = st.table_offset ? PST_P2 : PST_P1;
    Bitboard b = own;
    while (b) {
        int sq = pop_lsb(b);
        add<Tune>(st, s, pst_row(st, p_table, s, sq));
        Bitboard neighbours = adjacent_files(sq);
        if (own & neighbours & RANK_MASK(rank_of(sq)))
            add<Tune>(st, s, pst_row(st, PST_CP, s, sq));
        if (defended & bit(sq))
            add<Tune>(st, s, pst_row(st, PST_DP, s, sq));
        if (!(own & neighbours)) {
            add<Tune>(st, s, PAWN_ISOLATED);
        } else if (!(own & support_span(s, sq)) && (enemy_attacks & bit(sq + PAWN_STEP[s]))) {
            // Backward: no pawn can come level with it, and its stop square is watched.
            add<Tune>(st, s, PAWN_WEAK);
        }
        if (own & forward_file(s, sq))
            add<Tune>(st, s, PAWN_DOUBLED);
    }
    return score_minus(st.acc[s], before);
}

template <bool Tune>
void evaluate_pawns(EvalState& st, EvalCaches* c, int ply)
{
    const Position* pos = st.pos;
    for (int s = 0; s < 2; s++)
        add<Tune>(st, s, MTL_PAWN, popcount(pos->pieces[s][PAWN]));
    if constexpr (Tune) {
        // The tuner changes the rows between evaluations, so an entry would
        // be stale at once: the cache is left alone.
        pawn_structure<Tune, WHITE>(st);
        pawn_structure<Tune, BLACK>(st);
    } else {
        uint64_t key = pawn_hash_key(pos);
        PawnHashEntry* e = &c->pawn_hash[key & (PAWN_HASH_SIZE - 1)];
        c->pawn_probes++;
        if (ply >= 2 && e->key == key) {
            c->pawn_hits++;
            st.acc[0] = score_plus(st.acc[0], e->score[0]);
            st.acc[1] = score_plus(st.acc[1], e->score[1]);
        } else {
            Score w = pawn_structure<Tune, WHITE>(st);
            Score b = pawn_structure<Tune, BLACK>(st);
            e->key = key;
            e->score[0] = w;
            e->score[1] = b;
        }
    }
    // Blocked pawns depend on the pieces too, so they stay out of the cache.
    Bitboard wp = pos->pieces[WHITE][PAWN], bp = pos->pieces[BLACK][PAWN];
    add<Tune>(st, WHITE, PAWN_BLOCKED, popcount(shift_up(wp) & st.occ));
    add<Tune>(st, BLACK, PAWN_BLOCKED, popcount(shift_down(bp) & st.occ));
}

// --- pieces -----------------------------------------------------------------

template <bool Tune, int Type, int s>
void evaluate_pieces(EvalState& st)
{
    const Position* pos = st.pos;
    constexpr int e = s ^ 1;
    Bitboard men = pos->pieces[s][Type];
    Account<Tune, s> a{st, 0};
    constexpr int mtl_row = Type == KNIGHT   ? MTL_KNIGHT
                            : Type == BISHOP ? MTL_BISHOP
                            : Type == ROOK   ? MTL_ROOK
                                             : MTL_QUEEN;
    a.add(mtl_row, popcount(men));
    if (!men) {
        a.close();
        return;
    }
    int table = Type == KNIGHT   ? piece_table(st, PST_N1)
                : Type == BISHOP ? piece_table(st, PST_B1)
                : Type == ROOK   ? piece_table(st, PST_R1)
                                 : piece_table(st, PST_Q1);
    const int flip = st.flip[s];
    const Bitboard occ = st.occ, reachable = ~st.exclusion[s], enemy_zone = st.king_zone[e];
    // The attack sets this kind adds, gathered here and booked at the end.
    Bitboard attacked = st.attacked[s], attacked2 = st.attacked2[s], by_kind = st.by_type[s][Type];
    int tally = 0;
    while (men) {
        int sq = pop_lsb(men);
        a.add(table + (sq ^ flip));
        Bitboard att = Type == KNIGHT   ? KNIGHT_ATTACKS[sq]
                       : Type == BISHOP ? bishop_attacks(sq, occ)
                       : Type == ROOK   ? rook_attacks(sq, occ)
                                        : queen_attacks(sq, occ);
        attacked2 |= attacked & att;
        attacked |= att;
        by_kind |= att;
        int n = popcount(att & reachable);
        if constexpr (Type == KNIGHT)
            a.add_scaled(KNIGHT_MOBILITY, derived.knight_mobility[n], KNIGHT_CURVE[n]);
        else if constexpr (Type == BISHOP)
            a.add_scaled(BISHOP_MOBILITY, derived.bishop_mobility[n], BISHOP_CURVE[n]);
        else if constexpr (Type == ROOK)
            a.add_scaled(ROOK_MOBILITY, derived.rook_mobility[n], ROOK_CURVE[n]);
        else
            a.add_scaled(QUEEN_MOBILITY, derived.queen_mobility[n], QUEEN_CURVE[n]);
        if (att & enemy_zone)
            tally += ZONE_WEIGHT[Type];

        // Trapped: not a single reachable square.
        if (n == 0) {
            constexpr int trapped_row = Type == KNIGHT   ? KNIGHT_TRAPPED
                                        : Type == BISHOP ? BISHOP_TRAPPED
                                        : Type == ROOK   ? ROOK_TRAPPED
                                                         : QUEEN_TRAPPED;
            a.add(trapped_row);
            // A minor stuck in the enemy's last two ranks is likely to be lost.
            if ((Type == KNIGHT || Type == BISHOP) && relative_rank(s, sq) >= 6)
                st.threat[s] += TRAPPED_MINOR_TALLY;
        }
        if constexpr (Type == KNIGHT || Type == BISHOP) {
            if (st.outposts[s] & bit(sq))
                a.add(Type == KNIGHT ? KNIGHT_OUTPOST : BISHOP_OUTPOST);
            if (att & st.outposts[s] & ~pos->pieces[s][0])
                a.add(Type == KNIGHT ? KNIGHT_OUTPOST_ATK : BISHOP_OUTPOST_ATK);
        }
        if constexpr (Type == BISHOP)
            a.add(BISHOP_MOB2, popcount(att & CENTER_BLOCK));
        if constexpr (Type == ROOK) {
            constexpr Bitboard enemy_half = s == WHITE ? 0xFFFFFFFF00000000ULL : 0x00000000FFFFFFFFULL;
            Bitboard file = file_mask(file_of(sq));
            a.add(ROOK_MOB2, popcount(att & file & enemy_half));
            // Open for the rook: no pawn of its own side on the file.
            if (!(pos->pieces[s][PAWN] & file))
                a.add(ROOK_OPENFILE);
            // On the seventh with enemy pawns there, or the enemy king on its last two ranks.
            if (relative_rank(s, sq) == 6) {
                constexpr Bitboard seventh = RANK_MASK(s == WHITE ? 6 : 1);
                constexpr Bitboard last_two = seventh | RANK_MASK(s == WHITE ? 7 : 0);
                if ((pos->pieces[e][PAWN] & seventh) || (pos->pieces[e][KING] & last_two))
                    a.add(ROOK_7TH);
            }
        }
    }
    st.attacked[s] = attacked;
    st.attacked2[s] = attacked2;
    st.by_type[s][Type] = by_kind;
    st.tally[e] += tally;
    a.close();
}

// --- king safety ------------------------------------------------------------

template <bool Tune, int s>
void evaluate_king(EvalState& st)
{
    const Position* pos = st.pos;
    Account<Tune, s> a{st, 0};
    int e = s ^ 1;
    int k = pos->king_square[s];
    a.add(pst_row(st, PST_K, s, k));

    if (pos->phase_material[e] > 8) {
        // Shield: a square of the king's shelter counts when an own pawn
        // stands on it or one or two ranks behind it.
        Bitboard pawns = pos->pieces[s][PAWN];
        Bitboard cover = pawns | shift_forward(s, pawns) | shift_forward(s, shift_forward(s, pawns));
        int shield = popcount(SHIELD_ZONE[s][k] & cover);
        if (shield > 9)
            shield = 9;
        float shield_factor = float(shield - 9) * 0.111f;
        a.add_scaled(PAWN_SHIELD, derived.shield[shield], shield_factor);

        int danger = st.tally[s] - (shield < 8 ? shield : 8);
        Bitboard defended = st.attacked[s] & ~(st.by_type[s][KING] & ~st.attacked2[s]);
        Bitboard intruders = st.king_zone[s] & (pos->pieces[e][0] & ~pos->pieces[e][PAWN] & ~pos->pieces[e][KING]);
        danger += UNOPPOSED_ZONE_ATTACKER * popcount(intruders & ~defended);

        // Safe checks: squares from which an enemy man would give check,
        // which it reaches and the defender does not watch at all.
        Bitboard safe = ~pos->pieces[e][0] & ~st.attacked[s];
        Bitboard rook_lines = rook_attacks(k, st.occ), bishop_lines = bishop_attacks(k, st.occ);
        Bitboard checks[7] = {};
        checks[KNIGHT] = KNIGHT_ATTACKS[k] & st.by_type[e][KNIGHT] & safe;
        checks[BISHOP] = bishop_lines & st.by_type[e][BISHOP] & safe;
        checks[ROOK] = rook_lines & st.by_type[e][ROOK] & safe;
        checks[QUEEN] = (rook_lines | bishop_lines) & st.by_type[e][QUEEN] & safe;
        int safe_checks = 0;
        for (int type = KNIGHT; type <= QUEEN; type++) {
            int n = popcount(checks[type]);
            safe_checks += n;
            danger += CHECK_WEIGHT[type] * n;
        }
        a.add(ENEMY_CHECKS, safe_checks);
        // Contact checks by the queen next to the king, supported, and held by nothing but the king.
        Bitboard contact = KING_ATTACKS[k] & st.by_type[e][QUEEN] & st.attacked2[e] & ~pos->pieces[e][0] & ~defended;
        if (contact) {
            danger += CONTACT_CHECK_WEIGHT * popcount(contact);
            st.threat[s] += QUEEN_CONTACT_TALLY;
        }
        if (danger > 1) {
            int d = danger < MAX_DANGER ? danger : MAX_DANGER;
            float f = float(d) * 0.0018f * float(d);
            bool queen = pos->pieces[e][QUEEN] != 0;
            a.add_scaled(queen ? KING_DANGER1 : KING_DANGER2, derived.king_danger[queen ? 0 : 1][d], f);
        }
    }

    // Trapped king: no neighbour square that is free of own men and unattacked.
    if (!(KING_ATTACKS[k] & ~pos->pieces[s][0] & ~st.attacked[e]))
        a.add(KING_TRAPPED);

    Bitboard pawns = all_pawns(pos);
    if (pawns) {
        Bitboard area = KING_ATTACKS[k] | bit(k);
        area |= shift_up(area) | shift_down(area);
        int steps = 0;
        while (!(area & pawns) && steps < 8) {
            area = dilate(area);
            steps++;
        }
        if (steps)
            a.add(KING_PAWN_PROX, steps);
    }
    a.close();
}

// --- passed pawns -----------------------------------------------------------

template <bool Tune, int s>
void evaluate_passers(EvalState& st)
{
    const Position* pos = st.pos;
    Account<Tune, s> a{st, 0};
    int e = s ^ 1;
    Bitboard own = pos->pieces[s][PAWN], enemy = pos->pieces[e][PAWN];
    Bitboard defended = pawn_attacks_of(s, own);
    // Only pawns with no enemy pawn ahead on their file can be passers or
    // candidates: the others are left out at once.
    Bitboard b = own & ~(s == WHITE ? fill_down(enemy >> 8) : fill_up(enemy << 8));
    while (b) {
        int sq = pop_lsb(b);
        int r = relative_rank(s, sq);
        if (enemy & passed_span(s, sq)) {
            // Candidate: half-open file and at least as many helpers as guards.
            if (!(enemy & forward_file(s, sq))) {
                int guards = popcount(enemy & passed_span(s, sq) & adjacent_files(sq));
                int helpers = popcount(own & support_span(s, sq));
                if (helpers >= guards)
                    a.add(CANDIDATE_PASSER);
            }
            continue;
        }
        if (own & forward_file(s, sq))
            continue; // the rear pawn of a doubled pair is not the passer
        st.passed[s] |= bit(sq);
        // Passed: no enemy pawn ahead on its own or the adjacent files. Mobile:
        // its stop square is empty. Free: the whole path to promotion is
        // empty and unwatched by the enemy.
        a.add(PPAWN + r);
        int stop = sq + PAWN_STEP[s];
        if (!(st.occ & bit(stop)))
            a.add(PPAWN_MOBILE + r);
        Bitboard path = forward_file(s, sq);
        if (!(path & st.occ) && !(path & st.attacked[e]))
            a.add(PPAWN_FREE + r);
        int own_dist = distance(pos->king_square[s], sq);
        int enemy_dist = distance(pos->king_square[e], sq);
        a.add_scaled(PPAWN_FKING_DIST, derived.passer_own_king[r][own_dist], float(own_dist) * PASSER_KING_WEIGHT[r]);
        a.add_scaled(PPAWN_EKING_DIST, derived.passer_enemy_king[r][enemy_dist],
                     float(enemy_dist) * PASSER_KING_WEIGHT[r]);
        if ((defended & bit(sq)) || (own & adjacent_files(sq) & RANK_MASK(rank_of(sq))))
            a.add(PPAWN_CONNECTED);
    }
    a.close();
}

// --- threats ----------------------------------------------------------------

template <bool Tune, int s>
void evaluate_threats(EvalState& st)
{
    const Position* pos = st.pos;
    Account<Tune, s> a{st, 0};
    int e = s ^ 1;
    const Bitboard* p = pos->pieces[s];
    Bitboard minors = p[KNIGHT] | p[BISHOP], majors = p[ROOK] | p[QUEEN];
    Bitboard hit = st.attacked[e];
    Bitboard hung = (p[0] & ~p[KING]) & hit & ~st.attacked[s];
    st.hung |= hung;
    a.add(HUNG_PAWN, popcount(hung & p[PAWN]));
    a.add(HUNG_MINOR, popcount(hung & minors));
    a.add(HUNG_MAJOR, popcount(hung & majors));

    // Defended men under attack; pieces only when the attacker is worth less.
    Bitboard by_pawn = st.by_type[e][PAWN];
    Bitboard by_minor = st.by_type[e][KNIGHT] | st.by_type[e][BISHOP];
    a.add(ATTACKED_PAWN, popcount(p[PAWN] & hit & ~hung));
    a.add(ATTACKED_MINOR, popcount(minors & by_pawn & ~hung));
    Bitboard major_threats = (p[ROOK] & (by_pawn | by_minor)) | (p[QUEEN] & (by_pawn | by_minor | st.by_type[e][ROOK]));
    a.add(ATTACKED_MAJOR, popcount(major_threats & ~hung));

    // Enemy pawn pushes onto squares they can hold that would hit a piece.
    Bitboard empty = ~st.occ;
    Bitboard pushes = shift_forward(e, pos->pieces[e][PAWN]) & empty;
    Bitboard start_rank = RANK_MASK(e == WHITE ? 2 : 5);
    pushes |= shift_forward(e, pushes & start_rank) & empty;
    pushes &= st.attacked[e] | ~st.attacked[s];
    a.add(PPUSH_THREAT, popcount(pawn_attacks_of(e, pushes) & (minors | majors)));

    // Men pinned against their king. A piece counts when the pin costs it
    // something: it cannot step along the line to take the pinner, or the
    // pinner is worth less than it is.
    int k = pos->king_square[s];
    const Bitboard* q = pos->pieces[e];
    Bitboard snipers = ((q[BISHOP] | q[QUEEN]) & BISHOP_RAYS[k]) | ((q[ROOK] | q[QUEEN]) & ROOK_RAYS[k]);
    Bitboard pinned = 0;
    int pinned_pieces = 0;
    while (snipers) {
        int sniper = pop_lsb(snipers);
        Bitboard between = BETWEEN[sniper][k] & st.occ;
        if (!between || (between & (between - 1)) || !(between & p[0]))
            continue;
        pinned |= between;
        int type = piece_type(pos->board[lsb(between)]);
        if (type == PAWN)
            continue;
        bool diagonal = BISHOP_RAYS[k] & bit(sniper);
        bool slides_along = type == QUEEN || (type == BISHOP && diagonal) || (type == ROOK && !diagonal);
        if (!slides_along || SEE_VALUE[piece_type(pos->board[sniper])] < SEE_VALUE[type])
            pinned_pieces++;
    }
    a.add(PINNED_PAWN, popcount(pinned & p[PAWN]));
    a.add(PINNED_PIECE, pinned_pieces);
    a.close();
}

// --- the rest ---------------------------------------------------------------

template <bool Tune>
void evaluate_rest(EvalState& st, int stm)
{
    const Position* pos = st.pos;
    add<Tune>(st, stm, STM_BONUS);
    for (int s = 0; s < 2; s++)
        if (popcount(pos->pieces[s][BISHOP]) > 1)
            add<Tune>(st, s, BISHOP_PAIR);

    // Rammed pairs: a White pawn on files b-g blocked by a Black pawn. Each
    // side counts its own pawn of the pair when it stands on a square colour
    // that one of its bishops shares.
    Bitboard wp = pos->pieces[WHITE][PAWN], bp = pos->pieces[BLACK][PAWN];
    Bitboard rammed_white = wp & shift_down(bp) & ~FILE_A & ~FILE_H & INNER_RANKS;
    Bitboard rammed_black = shift_up(rammed_white);
    for (int s = 0; s < 2; s++) {
        Bitboard bishops = pos->pieces[s][BISHOP];
        if (!bishops)
            continue;
        Bitboard colours =
            ((bishops & LIGHT_SQUARES) ? LIGHT_SQUARES : 0) | ((bishops & DARK_SQUARES) ? DARK_SQUARES : 0);
        int n = popcount((s == WHITE ? rammed_white : rammed_black) & colours);
        if (n)
            add<Tune>(st, s, BISHOP_RAMPAWNS, n);
    }

    // A rook against a minor piece with pawns on the rook's side.
    int w = pos->phase_material[WHITE], b = pos->phase_material[BLACK];
    if (w == 5 && b == 3 && popcount(wp) >= 2)
        add<Tune>(st, WHITE, MTL_RVB);
    if (w == 3 && b == 5 && popcount(bp) >= 2)
        add<Tune>(st, BLACK, MTL_RVB);
}

// --- special endings --------------------------------------------------------

bool minor_draw_side(uint32_t sig)
{
    // Nothing, a lone bishop, or at most two knights; no pawns or majors.
    if (sig & 0xFF00F)
        return false;
    int knights = sig >> 4 & 15, bishops = sig >> 8 & 15;
    return (bishops == 0 && knights <= 2) || (bishops == 1 && knights == 0);
}

// Returns true with the score (side to move's view) when a special ending applies.
bool special_ending(const Position* pos, int stm, int* score)
{
    const uint32_t* sig = pos->material_signature;
    // Every special ending has a side with nothing but its king, or no pawn,
    // rook or queen on the board at all.
    if (sig[WHITE] && sig[BLACK] && ((sig[WHITE] | sig[BLACK]) & 0xFF00F))
        return false;
    if (minor_draw_side(sig[WHITE]) && minor_draw_side(sig[BLACK])) {
        *score = 0;
        return true;
    }
    for (int strong = 0; strong < 2; strong++) {
        int weak = strong ^ 1;
        if (sig[weak] != 0)
            continue;
        int sk = pos->king_square[strong], wk = pos->king_square[weak];
        int value;
        if (sig[strong] == 1) {
            // King and pawn against king, seen with White holding the pawn.
            int pawn = lsb(pos->pieces[strong][PAWN]);
            int flip = strong == WHITE ? 0 : 56;
            int p = pawn ^ flip, own = sk ^ flip, other = wk ^ flip;
            int rr = rank_of(p);
            if (kpk_win(stm == strong, own, p, other))
                value = KPK_WIN + 25 * rr - 3 * distance(own, p) + 3 * distance(other, p);
            else
                value = rr;
        } else if (sig[strong] == 0x110) {
            int bsq = lsb(pos->pieces[strong][BISHOP]);
            int corner_map = (bit(bsq) & DARK_SQUARES) ? 0 : 7;
            value = KBNK_BASE + 10 * center_10(sk) + 8 * light_diag_dist(wk ^ corner_map) - 6 * distance(sk, wk);
        } else if (pos->pieces[strong][ROOK] | pos->pieces[strong][QUEEN]) {
            int s = pos->phase_material[strong], w = pos->phase_material[weak];
            value = 100 * s + 200 + 2 * (edge_60(wk) - 8 * distance(sk, wk)) - 100 * w;
        } else {
            continue;
        }
        *score = stm == strong ? value : -value;
        return true;
    }
    return false;
}

// --- scale factor -----------------------------------------------------------

// Whether the scale factor can differ from 1: only with little material,
// about even between the sides.
inline bool may_scale(const Position* pos)
{
    int w = pos->phase_material[WHITE], b = pos->phase_material[BLACK];
    return w <= 10 && b <= 10 && w - b <= 3 && b - w <= 3;
}

float scale_factor(const EvalState& st, int white_score)
{
    const Position* pos = st.pos;
    int strong = white_score >= 0 ? WHITE : BLACK, weak = strong ^ 1;
    int npm_s = pos->phase_material[strong], npm_w = pos->phase_material[weak];
    if (npm_s > 10 || npm_w > 10 || npm_s - npm_w > 3 || npm_w - npm_s > 3)
        return 1.0f;
    const uint32_t* sig = pos->material_signature;
    Bitboard strong_pawns = pos->pieces[strong][PAWN];
    int pawns_s = popcount(strong_pawns), pawns_w = popcount(pos->pieces[weak][PAWN]);
    if (!strong_pawns)
        return (sig[strong] == 0x200 && sig[weak] == 0x10) ? 0.75f : 0.15f;

    float sf = 1.0f;
    // A rook pawn whose promotion square the bishop cannot cover.
    const Bitboard* ps = pos->pieces[strong];
    if (!(ps[KNIGHT] | ps[ROOK] | ps[QUEEN])) {
        int wk = pos->king_square[weak];
        int last = strong == WHITE ? 7 : 0;
        bool king_near_last = rank_of(wk) == last || rank_of(wk) == (strong == WHITE ? 6 : 1);
        for (int file = 0; file < 8; file += 7) {
            if (strong_pawns & ~file_mask(file))
                continue;
            int queen_sq = make_square(file, last);
            Bitboard colour = (bit(queen_sq) & LIGHT_SQUARES) ? LIGHT_SQUARES : DARK_SQUARES;
            bool near_file = file == 0 ? file_of(wk) <= 1 : file_of(wk) >= 6;
            if (king_near_last && near_file && !(ps[BISHOP] & colour))
                return 0.05f;
        }
    }
    // Opposite-coloured bishops.
    const Bitboard* pw = pos->pieces[weak];
    if (popcount(ps[BISHOP]) == 1 && popcount(pw[BISHOP]) == 1 && npm_s == npm_w) {
        int d = popcount(pos->pieces[WHITE][PAWN]) - popcount(pos->pieces[BLACK][PAWN]);
        bool opposite = ((ps[BISHOP] & LIGHT_SQUARES) != 0) != ((pw[BISHOP] & LIGHT_SQUARES) != 0);
        if (opposite && d >= -2 && d <= 2) {
            sf = (d >= -1 && d <= 1) ? 0.65f : 0.8f;
            if (npm_s == 3)
                sf *= 0.65f;
        }
    }
    // Few pawns and hardly any extra material.
    if (pawns_s <= 2 && npm_s + pawns_s - (npm_w + pawns_w) <= 1 && npm_w > 0) {
        if (pawns_s == 1)
            sf *= (pw[KNIGHT] | pw[BISHOP]) ? 0.5f : 0.75f;
        if (!(strong_pawns & st.passed[strong]))
            sf *= 0.85f;
    }
    return sf;
}

int contempt_adjustment(const Position* pos)
{
    int contempt = eval_options.contempt;
    if (!contempt)
        return 0;
    int engine = eval_options.engine_side;
    int side = contempt < 1 ? engine ^ 1 : engine;
    int m = pos->phase_material[side];
    int p = popcount(pos->pieces[side][PAWN]);
    int adjust = ((m >= 4 ? m - 3 : 0) + 2 * (p < 6 ? p : 6)) * contempt / 41;
    return engine == WHITE ? adjust : -adjust;
}

template <bool Tune>
int evaluate_full(const Position* pos, EvalCaches* c, int stm, int ply, EvalBreakdown* trace, int16_t* threats)
{
    // Every field the terms accumulate into starts at zero; the snapshots are
    // written only for the breakdown display.
    EvalState st;
    st.pos = pos;
    st.caches = c;
    st.occ = occupancy(pos);
    st.tracing = trace != nullptr;
    st.acc[0] = st.acc[1] = 0;
    st.hung = 0;
    for (int s = 0; s < 2; s++) {
        st.passed[s] = 0;
        st.tally[s] = 0;
        st.threat[s] = 0;
        for (int type = 0; type < 7; type++)
            st.by_type[s][type] = 0;
    }

    double sum = double(pos->phase_material[WHITE] + pos->phase_material[BLACK]);
    double x = 0.016 * sum;
    double phase = float(x) > 1.0f ? 0.0 : 1.0 - x;
    c->last_phase = phase;

    bool white_queen_side = file_of(pos->king_square[WHITE]) < 4;
    bool black_queen_side = file_of(pos->king_square[BLACK]) < 4;
    st.flip[WHITE] = white_queen_side ? 7 : 0;
    st.flip[BLACK] = black_queen_side ? 63 : 56;
    st.table_offset = white_queen_side == black_queen_side ? 0 : PST_N2 - PST_N1;

    for (int s = 0; s < 2; s++) {
        int k = pos->king_square[s];
        Bitboard pawn_att = pawn_attacks_of(s, pos->pieces[s][PAWN]);
        st.by_type[s][PAWN] = pawn_att;
        st.by_type[s][KING] = KING_ATTACKS[k];
        st.attacked[s] = pawn_att | KING_ATTACKS[k];
        st.attacked2[s] = pawn_att & KING_ATTACKS[k];
        // King zone: the king's square, its neighbours and the three squares
        // beyond them towards the enemy.
        Bitboard zone = KING_ATTACKS[k] | bit(k);
        st.king_zone[s] = zone | shift_forward(s, zone);
    }
    for (int s = 0; s < 2; s++) {
        int e = s ^ 1;
        st.exclusion[s] = pos->pieces[s][0] | st.by_type[e][PAWN];
        // Outposts: relative ranks 4-6, defended by an own pawn, out of reach of
        // every enemy pawn however it advances.
        Bitboard ranks = s == WHITE ? 0x0000FFFFFF000000ULL : 0x000000FFFFFF0000ULL;
        st.outposts[s] = ranks & st.by_type[s][PAWN] & ~pawn_attack_span(e, pos->pieces[e][PAWN]);
    }

    evaluate_pawns<Tune>(st, c, ply);
    snapshot(st, 0);
    evaluate_pieces<Tune, KNIGHT, WHITE>(st);
    evaluate_pieces<Tune, KNIGHT, BLACK>(st);
    snapshot(st, 1);
    evaluate_pieces<Tune, BISHOP, WHITE>(st);
    evaluate_pieces<Tune, BISHOP, BLACK>(st);
    snapshot(st, 2);
    evaluate_pieces<Tune, ROOK, WHITE>(st);
    evaluate_pieces<Tune, ROOK, BLACK>(st);
    snapshot(st, 3);
    evaluate_pieces<Tune, QUEEN, WHITE>(st);
    evaluate_pieces<Tune, QUEEN, BLACK>(st);
    snapshot(st, 4);
    evaluate_king<Tune, WHITE>(st);
    evaluate_king<Tune, BLACK>(st);
    snapshot(st, 5);
    evaluate_passers<Tune, WHITE>(st);
    evaluate_passers<Tune, BLACK>(st);
    snapshot(st, 6);
    evaluate_threats<Tune, WHITE>(st);
    evaluate_threats<Tune, BLACK>(st);
    evaluate_rest<Tune>(st, stm);
    snapshot(st, 7);

    Score d = score_minus(st.acc[WHITE], st.acc[BLACK]);
    double tapered = std::fma(phase, double(endgame_of(d)), (1.0 - phase) * double(opening_of(d)));
    int score = int(tapered);
    int white_score = eval_options.contempt ? score + contempt_adjustment(pos) : score;
    float sf = may_scale(pos) ? scale_factor(st, white_score) : 1.0f;
    int final_score = int(float(white_score) * sf);
    if (stm == BLACK)
        final_score = -final_score;

    if (!Tune) {
        uint64_t key = pos->key;
        EvalHashEntry* e = &c->eval_hash[key & (EVAL_HASH_SIZE - 1)];
        e->key = key;
        e->score = int16_t(final_score);
        e->threat[0] = uint16_t(st.threat[0]);
        e->threat[1] = uint16_t(st.threat[1]);
    }
    if (threats) {
        threats[0] = int16_t(st.threat[0]);
        threats[1] = int16_t(st.threat[1]);
    }
    if (trace) {
        EvalBreakdown& b = *trace;
        std::memcpy(b.snapshot, st.snapshot, sizeof b.snapshot);
        b.phase = phase;
        b.scale = sf;
        b.hung = st.hung;
        int shown = int(float(score) * sf);
        b.shown_score = stm == BLACK ? -shown : shown;
        for (int s = 0; s < 2; s++)
            for (int type = PAWN; type <= QUEEN; type++)
                b.material[s][type] = score_times(popcount(pos->pieces[s][type]), param_score[MTL_PAWN + type - 1]);
    }
    return final_score;
}

} // namespace

void init_evaluation()
{
    kpk_init();
}

int evaluate(const Position* pos, EvalCaches* c, int stm, int ply, int trace, int16_t* threats)
{
    c->eval_count++;
    // Answers that come before the tallies leave none: the search must not
    // read a threat left over from another node.
    if (threats)
        threats[0] = threats[1] = 0;
    int special;
    if (special_ending(pos, stm, &special)) {
        // The terms are shown as the full evaluation counts them; the score
        // line gives the special ending's answer, which is what counts.
        if (trace) {
            EvalBreakdown b;
            evaluate_full<false>(pos, c, stm, ply, &b, nullptr);
            b.shown_score = special;
            b.phase = 1.0;
            b.scale = 1.0f;
            print_eval_breakdown(b, trace);
        }
        return special;
    }
    if (c->tuning)
        return evaluate_full<true>(pos, c, stm, ply, nullptr, threats);
    if (c->generation != param_generation)
        clear_eval_caches(c);
    uint64_t key = pos->key;
    EvalHashEntry* e = &c->eval_hash[key & (EVAL_HASH_SIZE - 1)];
    c->eval_probes++;
    if (ply > 1 && e->key == key && !trace) {
        c->eval_hits++;
        if (threats) {
            threats[0] = int16_t(e->threat[0]);
            threats[1] = int16_t(e->threat[1]);
        }
        return e->score;
    }
    if (!trace)
        return evaluate_full<false>(pos, c, stm, ply, nullptr, threats);
    EvalBreakdown b;
    int score = evaluate_full<false>(pos, c, stm, ply, &b, threats);
    print_eval_breakdown(b, trace);
    return score;
}
