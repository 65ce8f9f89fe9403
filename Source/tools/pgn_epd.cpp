#include "tools/pgn_epd.h"

#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "tools/pgn_comment.h"

#include <cstdlib>
#include <cstring>

namespace
{

constexpr int FEN_SIZE = 128;
constexpr int COMMENT_SIZE = 512;

// Mistake test: only in the middle of a game, with plies to look ahead.
constexpr int FIRST_TESTED_PLY = 13;
constexpr int PLIES_AFTER_LAST_TESTED = 10;
constexpr int CALM_LOW = -999, CALM_HIGH = 249;
constexpr int RISE_SOON = 30, RISE_LATER = 50;

// Training positions of variant 2.
constexpr int FIRST_TRAINING_PLY = 16;
constexpr int LAST_TRAINING_PLY = 220;
constexpr int PLIES_KEPT_BACK = 6; // the last plies of a game teach little
constexpr int MAX_TRAINING_FIFTY = 20;
constexpr int MAX_TRAINING_EVAL = 5000;

// Opening positions of variant 3.
constexpr int OPENING_PLIES = 201;
constexpr int OPENING_EVAL = 500;

// Rook endings of variant 4: one rook's worth of men besides pawns a side.
constexpr int ROOK_PHASE = 5;

// The scanner never takes a move back, so the oldest history can go once
// the undo records run short.
void keep_history_bounded(Position* pos)
{
    if (pos->game_ply >= MAX_GAME_PLY - 2)
        pos->game_ply = 0;
}

double result_for_side(int result, int side)
{
    double gr = result == WHITE_WON ? 1.0 : result == BLACK_WON ? 0.0 : 0.5;
    return side == WHITE ? gr : 1.0 - gr;
}

// Plies 0 .. n - 1 of the game in turn: parse, let `visit` write, make.
// `visit` returns false to end the game after this ply.
template <class Visit>
void replay(const PgnGame* game, int n, Visit visit)
{
    static Game record;
    Position* pos = game_init(&record);
    set_position(pos, START_FEN);
    for (int i = 0; i < n; i++) {
        Move m = 0;
        if (!parse_move(pos, game->plies[i].text, &m))
            return;
        bool more = visit(pos, i);
        make_move(pos, m);
        keep_history_bounded(pos);
        if (!more)
            return;
    }
}

void append(char* text, const char* more)
{
    size_t used = std::strlen(text);
    std::snprintf(text + used, COMMENT_SIZE - used, "%s", more);
}

int write_listing(FILE* out, FILE* side_file, const PgnGame* game)
{
    int n = game->count, written = 0;
    bool marked = false;
    replay(game, n, [&](const Position* pos, int i) {
        const PgnPly& ply = game->plies[i];
        char label[16], comment[COMMENT_SIZE] = "", fen[FEN_SIZE], line[COMMENT_SIZE];
        if (i % 2 == 0)
            std::snprintf(label, sizeof label, "%3d. ", i / 2 + 1);
        else
            std::snprintf(label, sizeof label, "     ");
        if (ply.eval != NO_EVAL)
            std::snprintf(comment, sizeof comment, "%6.2f", (i % 2 == 0 ? ply.eval : -ply.eval) * 0.01);
        write_fen(pos, fen);
        bool refutes = marked;
        marked = false;
        if (is_mistake(game->plies, n, i)) {
            std::snprintf(line, sizeof line, " ? %s am %s;", fen, ply.text);
            append(comment, line);
            // The opponent's reply is the refutation: mark that ply.
            marked = true;
        }
        if (refutes) {
            std::snprintf(line, sizeof line, "%s bm %s;", fen, ply.text);
            append(comment, " ! ");
            append(comment, line);
            std::fprintf(side_file, "%s\n", line);
            written++;
        }
        std::fprintf(out, "%s %-6s  {%s}\n", label, ply.text, comment);
        return true;
    });
    std::fprintf(out, "\n");
    return written;
}

int write_training(FILE* out, const PgnGame* game)
{
    int last = game->count - 1 - PLIES_KEPT_BACK;
    if (last > LAST_TRAINING_PLY)
        last = LAST_TRAINING_PLY;
    int written = 0;
    replay(game, last + 1, [&](const Position* pos, int i) {
        int eval = game->plies[i].eval;
        if (i >= FIRST_TRAINING_PLY && pos->fifty <= MAX_TRAINING_FIFTY && std::abs(eval) < MAX_TRAINING_EVAL
            && !in_check(pos, pos->side)) {
            char fen[FEN_SIZE];
            write_fen(pos, fen);
            std::fprintf(out, "%s bm %s; ce %d; gr %0.1f;\n", fen, game->plies[i].text, eval,
                         result_for_side(game->result, pos->side));
            written++;
        }
        return true;
    });
    return written;
}

int write_opening(FILE* out, const PgnGame* game)
{
    int written = 0;
    int n = game->count < OPENING_PLIES ? game->count : OPENING_PLIES;
    replay(game, n, [&](const Position* pos, int i) {
        int eval = game->plies[i].eval;
        if (!in_check(pos, pos->side)) {
            char fen[FEN_SIZE];
            write_fen(pos, fen);
            std::fprintf(out, "%s bm %s; ce %d;\n", fen, game->plies[i].text, eval);
            written++;
        }
        // A move without an evaluation (NO_EVAL) ends the opening too.
        return std::abs(eval) <= OPENING_EVAL;
    });
    return written;
}

int write_rook_endings(FILE* out, const PgnGame* game)
{
    int written = 0;
    replay(game, game->count, [&](const Position* pos, int i) {
        if (pos->phase_material[WHITE] == ROOK_PHASE && pos->phase_material[BLACK] == ROOK_PHASE
            && popcount(all_pawns(pos)) == 1) {
            double tune = game->result == NO_WINNER ? 0.5 : game->result == pos->side ? 1.0 : 0.0;
            char fen[FEN_SIZE];
            write_fen(pos, fen);
            std::fprintf(out, "%s bm %s; ce %d; tune %0.5f;\n", fen, game->plies[i].text, game->plies[i].eval, tune);
            written++;
        }
        return true;
    });
    return written;
}

} // namespace

bool is_mistake(const PgnPly* plies, int n, int i)
{
    if (i < FIRST_TESTED_PLY || i >= n - PLIES_AFTER_LAST_TESTED)
        return false;
    int e = plies[i - 1].eval;
    if (e < CALM_LOW || e > CALM_HIGH || plies[i + 7].eval < CALM_LOW)
        return false;
    int t = std::abs(e) / 10;
    return plies[i + 1].eval > e + t + RISE_SOON && plies[i + 3].eval > e + t + RISE_SOON
           && plies[i + 7].eval > e + t + RISE_LATER;
}

int write_game_epd(FILE* out, FILE* side_file, const PgnGame* game, int variant)
{
    switch (variant) {
    case 1:
        return write_listing(out, side_file, game);
    case 2:
        return write_training(out, game);
    case 3:
        return write_opening(out, game);
    case 4:
        return write_rook_endings(out, game);
    default:
        return 0;
    }
}
