#include "tablebase/tb_index.h"

#include "board/bitboard.h"

#include <utility>

namespace
{

constexpr int MAX_LEAD_PAWNS = 5;
constexpr int KK_PLACEMENTS = 462;      // two kings, the first in the a1-d1-d4 triangle
constexpr int TRIPLE_PLACEMENTS = 31332; // three unique men, the first in the triangle
constexpr int PAWN_SQUARES = 48;         // ranks 2 to 7

// choose[k][n] = n over k.
uint32_t choose[TB_MAX_MEN + 1][65];

// Two kings: the number of the second king's square for each triangle
// place of the first, -1 where the kings touch or the pair is a mirror image.
int16_t kk_number[10][64];

// Below-diagonal squares (file > rank) numbered 0..27 in square order.
int8_t below_number[64];

// Leading pawns: where the placements of a pawn on each square start, and
// how many placements each file holds, by the count of leading pawns.
uint32_t pawn_start[MAX_LEAD_PAWNS][24];
uint32_t pawn_file_size[MAX_LEAD_PAWNS][4];

bool built = false;

inline bool on_diagonal(int sq)
{
    return file_of(sq) == rank_of(sq);
}
inline bool above_diagonal(int sq)
{
    return rank_of(sq) > file_of(sq);
}
inline int transpose(int sq)
{
    return make_square(rank_of(sq), file_of(sq));
}
inline int fold_file(int file)
{
    return file < 4 ? file : 7 - file;
}

// Place of a square of the a1-d1-d4 triangle: the six below the diagonal
// first (b1 c1 d1 c2 d2 d3), then the diagonal a1 b2 c3 d4.
int triangle_place(int sq)
{
    if (on_diagonal(sq))
        return 6 + rank_of(sq);
    static const int8_t below[4][4] = {{-1, 0, 1, 2}, {-1, -1, 3, 4}, {-1, -1, -1, 5}, {-1, -1, -1, -1}};
    return below[rank_of(sq)][file_of(sq)];
}

// Pawn squares ordered for the leading pawn: by folded file, then rank.
inline int pawn_rank_order(int sq)
{
    return fold_file(file_of(sq)) * 6 + rank_of(sq) - 1;
}

// Pawn squares ordered for the other leading pawns: the centre files and
// the far ranks come first, so that every other leading pawn lies below the
// one that leads.
inline int pawn_twist(int sq)
{
    int f = file_of(sq);
    return (3 - fold_file(f)) * 12 + (6 - rank_of(sq)) * 2 + (f < 4 ? 1 : 0);
}

inline int square_of_rank_order(int place)
{
    return make_square(place / 6, place % 6 + 1);
}

void build_choose()
{
    for (int n = 0; n <= 64; n++)
        for (int k = 0; k <= TB_MAX_MEN; k++) {
            uint64_t c = 1;
            for (int i = 0; i < k; i++)
                c = c * uint64_t(n - i) / uint64_t(i + 1);
            choose[k][n] = k > n ? 0 : uint32_t(c);
        }
}

int build_kk_numbers()
{
    int next = 0;
    int deferred_t[32], deferred_sq[32], deferred = 0;
    for (int t = 0; t < 10; t++)
        for (int sq = 0; sq < 64; sq++)
            kk_number[t][sq] = -1;
    for (int t = 0; t < 10; t++) {
        int k1 = -1;
        for (int sq = 0; sq < 64 && k1 < 0; sq++)
            if (file_of(sq) < 4 && rank_of(sq) < 4 && triangle_place(sq) == t)
                k1 = sq;
        for (int k2 = 0; k2 < 64; k2++) {
            if (distance(k1, k2) <= 1)
                continue;
            if (on_diagonal(k1) && above_diagonal(k2))
                continue;
            // Pairs on the diagonal are numbered after all others.
            if (on_diagonal(k1) && on_diagonal(k2)) {
                if (deferred == 32)
                    return -1;
                deferred_t[deferred] = t;
                deferred_sq[deferred++] = k2;
                continue;
            }
            kk_number[t][k2] = int16_t(next++);
        }
    }
    for (int i = 0; i < deferred; i++)
        kk_number[deferred_t[i]][deferred_sq[i]] = int16_t(next++);
    return next;
}

void build_pawn_tables()
{
    for (int k = 0; k < MAX_LEAD_PAWNS; k++)
        for (int file = 0; file < 4; file++) {
            uint32_t s = 0;
            for (int r = 0; r < 6; r++) {
                int place = file * 6 + r;
                pawn_start[k][place] = s;
                s += k == 0 ? 1 : choose[k][pawn_twist(square_of_rank_order(place))];
            }
            pawn_file_size[k][file] = s;
        }
}

// Numbers a set of like men (ascending squares in sq[first..first+n)) among
// the squares left free by the `first` men before them, less `skip` squares
// at the bottom of the board.
uint64_t set_number(const int* sq, int first, int n, int skip)
{
    uint64_t s = 0;
    for (int m = first; m < first + n; m++) {
        int below = 0;
        for (int l = 0; l < first; l++)
            below += sq[l] < sq[m];
        s += choose[m - first + 1][sq[m] - below - skip];
    }
    return s;
}

void sort_ascending(int* sq, int n)
{
    for (int i = 1; i < n; i++)
        for (int j = i; j > 0 && sq[j - 1] > sq[j]; j--)
            std::swap(sq[j - 1], sq[j]);
}

// Numbers the groups after the leading ones, from place `i` on.
uint64_t groups_number(const TbEncoding* e, int* sq, int i)
{
    uint64_t idx = 0;
    while (i < e->men) {
        int g = e->group[i];
        sort_ascending(sq + i, g);
        idx += set_number(sq, i, g, 0) * e->factor[i];
        i += g;
    }
    return idx;
}

} // namespace

bool tb_index_init()
{
    if (built)
        return true;
    for (int sq = 0, n = 0; sq < 64; sq++)
        below_number[sq] = int8_t(file_of(sq) > rank_of(sq) ? n++ : -1);
    build_choose();
    build_pawn_tables();
    built = build_kk_numbers() == KK_PLACEMENTS;
    return built;
}

uint64_t tb_set_factors(TbEncoding* e, int order, int order2)
{
    int men = e->men;
    if (men < 2 || men > TB_MAX_MEN)
        return 0;
    int count[16] = {};
    for (int i = 0; i < men; i++) {
        int c = e->code[i];
        if ((c & 7) == 0 || (c & 7) == 7)
            return 0;
        count[c]++;
        e->group[i] = 0;
    }

    // The leading group.
    int lead;
    if (e->lead_pawns) {
        lead = e->lead_pawns;
        int pawn = e->code[0];
        if ((pawn & 7) != 1 || count[pawn] != lead || count[pawn ^ 8] != e->other_pawns || lead > MAX_LEAD_PAWNS)
            return 0;
        for (int i = 0; i < lead + e->other_pawns; i++)
            if (e->code[i] != (i < lead ? pawn : pawn ^ 8))
                return 0;
        if (e->pawn_file > 3)
            return 0;
    } else {
        int unique = 0;
        for (int c = 0; c < 16; c++)
            unique += count[c] == 1;
        lead = unique >= 3 ? 3 : 2;
        for (int i = 0; i < lead; i++)
            if (count[e->code[i]] != 1)
                return 0;
        if (lead == 2 && (e->code[0] & 7) != 6)
            return 0;
    }
    e->group[0] = uint8_t(lead);
    int i = lead;
    if (e->other_pawns) {
        e->group[i] = e->other_pawns;
        i += e->other_pawns;
    }

    // Runs of like men; each kind of man forms exactly one run.
    int runs = 0;
    for (int j = i; j < men;) {
        int c = e->code[j], g = 0;
        while (j + g < men && e->code[j + g] == c)
            g++;
        if (g != count[c] || (c & 7) == 1)
            return 0;
        e->group[j] = uint8_t(g);
        j += g;
        runs++;
    }

    // The file tells in which turn the leading group (and the other pawns)
    // take their multiplier among the runs.
    int slots = 1 + (e->other_pawns ? 1 : 0) + runs;
    if (order < 0 || order >= slots)
        return 0;
    if (e->other_pawns && (order2 < 0 || order2 >= slots || order2 == order))
        return 0;
    if (!e->other_pawns)
        order2 = -1;

    uint64_t size = 1;
    int free_squares = 64 - i;
    int next = i;
    for (int k = 0; k < slots; k++) {
        if (k == order) {
            e->factor[0] = size;
            size *= e->lead_pawns ? pawn_file_size[lead - 1][e->pawn_file]
                                  : uint64_t(lead == 3 ? TRIPLE_PLACEMENTS : KK_PLACEMENTS);
        } else if (k == order2) {
            e->factor[lead] = size;
            size *= choose[e->other_pawns][PAWN_SQUARES - lead];
        } else {
            int g = e->group[next];
            e->factor[next] = size;
            size *= choose[g][free_squares];
            free_squares -= g;
            next += g;
        }
    }
    e->positions = size;
    return size;
}

uint64_t tb_piece_index(const TbEncoding* e, int* sq)
{
    int n = e->men, lead = e->group[0];

    // Step 1: the first man into the a1-d4 quarter.
    if (file_of(sq[0]) > 3)
        for (int i = 0; i < n; i++)
            sq[i] ^= 7;
    if (rank_of(sq[0]) > 3)
        for (int i = 0; i < n; i++)
            sq[i] ^= 56;

    // Step 2: the first leading man off the a1-h8 diagonal goes below it.
    for (int i = 0; i < lead; i++) {
        if (on_diagonal(sq[i]))
            continue;
        if (above_diagonal(sq[i]))
            for (int j = 0; j < n; j++)
                sq[j] = transpose(sq[j]);
        break;
    }

    // Step 3: the leading group.
    uint64_t idx;
    if (lead == 2) {
        int k = kk_number[triangle_place(sq[0])][sq[1]];
        if (k < 0)
            return UINT64_MAX;
        idx = uint64_t(k);
    } else {
        int a = sq[0], b = sq[1], c = sq[2];
        int b_adj = b > a, c_adj = (c > a) + (c > b);
        if (!on_diagonal(a))
            idx = (uint64_t(triangle_place(a)) * 63 + (b - b_adj)) * 62 + (c - c_adj);
        else if (!on_diagonal(b))
            idx = 6 * 63 * 62 + (uint64_t(rank_of(a)) * 28 + below_number[b]) * 62 + (c - c_adj);
        else if (!on_diagonal(c))
            idx = 6 * 63 * 62 + 4 * 28 * 62 + (uint64_t(rank_of(a)) * 7 + (rank_of(b) - b_adj)) * 28 + below_number[c];
        else
            idx = 6 * 63 * 62 + 4 * 28 * 62 + 4 * 7 * 28 + (uint64_t(rank_of(a)) * 7 + (rank_of(b) - b_adj)) * 6
                  + (rank_of(c) - c_adj);
    }
    return idx * e->factor[0] + groups_number(e, sq, lead);
}

int tb_leading_file(int* sq, int lead_pawns)
{
    for (int i = 1; i < lead_pawns; i++)
        if (pawn_rank_order(sq[0]) > pawn_rank_order(sq[i]))
            std::swap(sq[0], sq[i]);
    return fold_file(file_of(sq[0]));
}

uint64_t tb_pawn_index(const TbEncoding* e, int* sq)
{
    int n = e->men, lead = e->lead_pawns;

    // Step 1: the leading pawn onto the files a-d.
    if (file_of(sq[0]) > 3)
        for (int i = 0; i < n; i++)
            sq[i] ^= 7;

    // Step 2: the other leading pawns, highest twist first, counted below
    // the leading one.
    for (int i = 1; i < lead; i++)
        for (int j = i + 1; j < lead; j++)
            if (pawn_twist(sq[i]) < pawn_twist(sq[j]))
                std::swap(sq[i], sq[j]);
    uint64_t idx = pawn_start[lead - 1][pawn_rank_order(sq[0])];
    for (int i = 1; i < lead; i++)
        idx += choose[lead - i][pawn_twist(sq[i])];
    idx *= e->factor[0];

    // Step 3: the pawns of the other colour, on the 48 pawn squares.
    int i = lead;
    if (e->other_pawns) {
        sort_ascending(sq + i, e->other_pawns);
        idx += set_number(sq, i, e->other_pawns, 8) * e->factor[i];
        i += e->other_pawns;
    }
    return idx + groups_number(e, sq, i);
}
