#include "tools/epd_scoring.h"

#include "board/notation.h"

#include <cstdlib>
#include <cstring>

namespace
{

// Piece texts are moves or "move=points": anything longer names nothing.
constexpr int PIECE_SIZE = 64;
// Points are small numbers; a huge one in a broken file must not overflow the sums.
constexpr long POINTS_LIMIT = 1000000;
constexpr int SHORTEST_LINE = 10; // nine characters cannot hold a position

bool is_cut(char c, const char* cuts)
{
    return c && std::strchr(cuts, c) != nullptr;
}

// Copies the next piece of `*text` (cut at any of `cuts`) into `piece` and
// advances past it; false when no piece is left.
bool next_piece(const char** text, const char* cuts, char* piece)
{
    const char* p = *text;
    while (is_cut(*p, cuts))
        p++;
    if (!*p)
        return false;
    int n = 0;
    for (; *p && !is_cut(*p, cuts); p++)
        if (n < PIECE_SIZE - 1)
            piece[n++] = *p;
    piece[n] = 0;
    *text = p;
    return true;
}

bool names_move(const Position* pos, const char* text, Move best)
{
    Move m = 0;
    return parse_move(pos, text, &m) && m == best;
}

} // namespace

bool is_suite_position_line(const char* line, int length)
{
    return length >= SHORTEST_LINE && line[0] != ' ' && line[0] != '#' && line[0] != ';';
}

int bm_hits(const Position* pos, const char* bm, Move best)
{
    int hits = 0;
    char piece[PIECE_SIZE];
    for (const char* p = bm; next_piece(&p, " ,;\"\r\n", piece);)
        if (names_move(pos, piece, best))
            hits++;
    return hits;
}

int am_hit(const Position* pos, const char* am, Move best)
{
    Move m = 0;
    return parse_move(pos, am, &m) && m != best ? 1 : 0;
}

C0Result c0_points(const Position* pos, const char* c0, Move best)
{
    C0Result r{0, 0};
    if (!std::strchr(c0, '='))
        return r;
    bool found = false;
    char piece[PIECE_SIZE];
    for (const char* p = c0; next_piece(&p, ", \"\r\n", piece);) {
        char* eq = std::strchr(piece, '=');
        if (!eq)
            continue;
        // "e8=Q=5": the points follow the last "=".
        char* last = std::strrchr(piece, '=');
        long points = std::strtol(last + 1, nullptr, 10);
        if (points > POINTS_LIMIT)
            points = POINTS_LIMIT;
        if (points < -POINTS_LIMIT)
            points = -POINTS_LIMIT;
        *last = 0;
        if (points > r.possible)
            r.possible = int(points);
        if (!found && names_move(pos, piece, best)) {
            r.points = int(points);
            found = true;
        }
    }
    return r;
}
