#include "tools/label_games.h"

#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "output/output.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{

// Which positions of a game are worth training on: past the opening, not in
// the last few plies (often decided by a blunder or a resignation), without
// a long run of reversible moves, and never in check.
constexpr int FIRST_PLY = 16;
constexpr int LAST_PLIES_LEFT_OUT = 6;
constexpr int LAST_PLY = 220;
constexpr int MAX_FIFTY = 20;
constexpr int MAX_GAME_MOVES = 1000;

enum Result { WHITE_WINS, BLACK_WINS, DRAWN, UNKNOWN };

constexpr int NO_EVAL = -30000;
constexpr int MATE_EVAL = 9000;
constexpr int EVAL_LIMIT = 29999; // NO_EVAL lies just outside

struct GameText {
    Result result;
    int moves;
    char start[128]; // the FEN tag's position, or empty for the standard start
    char san[MAX_GAME_MOVES][16];
    int eval[MAX_GAME_MOVES]; // the mover's view, centipawns, or NO_EVAL
};

// "{+0.23/9 0.150s}": the score before the slash; "+M5" and "-M5" are mates.
int eval_of_comment(const char* comment)
{
    const char* slash = std::strchr(comment, '/');
    if (!slash)
        return NO_EVAL;
    const char* start = slash;
    while (start > comment && start[-1] != ' ' && start[-1] != '{')
        start--;
    if (slash - start >= 2 && start[1] == 'M')
        return start[0] == '-' ? -MATE_EVAL : MATE_EVAL;
    if (!std::strchr("+-0123456789.", *start) || start == slash)
        return NO_EVAL;
    // Text such as "1e99/5" or "+inf/5" reads as a number no int holds:
    // scores are kept inside the range of a stored evaluation, and "+nan"
    // counts as no score at all.
    double centipawns = std::strtod(start, nullptr) * 100;
    if (centipawns != centipawns)
        return NO_EVAL;
    return int(std::clamp(centipawns, -double(EVAL_LIMIT), double(EVAL_LIMIT)));
}

Result result_of(const char* tag_line)
{
    if (std::strstr(tag_line, "1-0"))
        return WHITE_WINS;
    if (std::strstr(tag_line, "0-1"))
        return BLACK_WINS;
    if (std::strstr(tag_line, "1/2"))
        return DRAWN;
    return UNKNOWN;
}

// Move text: comments in braces, variations in parentheses, ";" comments to
// the end of the line, numeric annotations and move numbers are passed over;
// a token that starts with a letter, or castling written with zeros, is a move.
struct MoveReader {
    int braces = 0;
    int parentheses = 0;
    char comment[256] = "";
    size_t comment_length = 0;

    void read(const char* line, GameText* g)
    {
        for (const char* p = line; *p;) {
            char c = *p;
            if (braces) {
                if (c == '}' && --braces == 0) {
                    comment[comment_length] = 0;
                    // A comment right after a move of the main line scores it.
                    if (!parentheses && g->moves)
                        g->eval[g->moves - 1] = eval_of_comment(comment);
                } else if (comment_length < sizeof comment - 1) {
                    comment[comment_length++] = c;
                }
                p++;
            } else if (c == '{') {
                braces++;
                comment_length = 0;
                p++;
            } else if (c == ';') {
                return;
            } else if (c == '(') {
                parentheses++;
                p++;
            } else if (c == ')') {
                parentheses -= parentheses > 0;
                p++;
            } else if (std::isspace(static_cast<unsigned char>(c)) || c == '}') {
                p++; // a closing brace without its comment is passed over like a blank
            } else {
                const char* end = p;
                while (*end && !std::isspace(static_cast<unsigned char>(*end)) && !std::strchr("{}();", *end))
                    end++;
                bool move = std::isalpha(static_cast<unsigned char>(c)) || !std::strncmp(p, "0-0", 3);
                if (move && !parentheses && g->moves < MAX_GAME_MOVES) {
                    size_t n = size_t(end - p) < 15 ? size_t(end - p) : 15;
                    std::memcpy(g->san[g->moves], p, n);
                    g->san[g->moves][n] = 0;
                    g->eval[g->moves] = NO_EVAL;
                    g->moves++;
                }
                p = end;
            }
        }
    }
};

// Replays a finished game and writes its training positions; returns how many.
long write_game(const GameText& g, FILE* out, Game* board)
{
    if (g.result == UNKNOWN || g.moves == 0)
        return 0;
    Position* pos = game_init(board);
    const char* start = g.start[0] ? g.start : START_FEN;
    set_position(pos, start);
    if (position_problem(pos))
        return 0;
    // The labelling pass starts again from this very position: reading the
    // FEN again would keep the side to move of the game's end wherever the
    // side field is neither "w" nor "b".
    const Position first = *pos;
    Move moves[MAX_GAME_MOVES];
    int n = 0;
    for (; n < g.moves; n++) {
        if (!parse_move(pos, g.san[n], &moves[n]))
            break; // a move that does not fit: the game ends here for us
        make_move(pos, moves[n]);
        if (pos->game_ply >= MAX_GAME_PLY - 1)
            pos->game_ply = 0; // only the position matters
    }
    *pos = first;
    long written = 0;
    for (int ply = 0; ply < n && ply <= LAST_PLY; ply++) {
        if (ply >= FIRST_PLY && ply < n - LAST_PLIES_LEFT_OUT && pos->fifty <= MAX_FIFTY && !in_check(pos, pos->side)) {
            char fen[128], coord[MOVE_TEXT_SIZE], san[MOVE_TEXT_SIZE], sf[MOVE_TEXT_SIZE], sr[MOVE_TEXT_SIZE];
            write_fen(pos, fen);
            move_texts(pos, moves[ply], coord, san, sf, sr);
            double white = g.result == WHITE_WINS ? 1.0 : g.result == BLACK_WINS ? 0.0 : 0.5;
            double gr = pos->side == WHITE ? white : 1.0 - white;
            int ce = g.eval[ply] == NO_EVAL ? 0 : g.eval[ply];
            std::fprintf(out, "%s bm %s; ce %d; gr %0.1f;\n", fen, san[0] == 'o' ? sf : san, ce, gr);
            written++;
        }
        make_move(pos, moves[ply]);
        if (pos->game_ply >= MAX_GAME_PLY - 1)
            pos->game_ply = 0;
    }
    return written;
}

} // namespace

long label_games(const char* file)
{
    FILE* in = std::fopen(file, "r");
    if (!in)
        return -1;
    FILE* out = std::fopen("labelled.epd", "w");
    if (!out) {
        std::fclose(in);
        return -1;
    }
    auto game = std::make_unique<GameText>();
    auto board = std::make_unique<Game>();
    game->result = UNKNOWN;
    game->moves = 0;
    game->start[0] = 0;
    MoveReader reader;
    long games = 0, positions = 0;
    char line[1024];
    char text[128];
    while (std::fgets(line, sizeof line, in)) {
        if (line[0] == '[' && !reader.braces) {
            // A tag after move text closes the game before it.
            if (game->moves) {
                positions += write_game(*game, out, board.get());
                game->moves = 0;
                game->result = UNKNOWN;
                game->start[0] = 0;
                reader = MoveReader();
            }
            if (!std::strncmp(line, "[FEN \"", 6)) {
                const char* fen = line + 6;
                size_t n = std::strcspn(fen, "\"");
                n = n < sizeof game->start - 1 ? n : sizeof game->start - 1;
                std::memcpy(game->start, fen, n);
                game->start[n] = 0;
            }
            if (!std::strncmp(line, "[Result ", 8)) {
                game->result = result_of(line);
                if (++games % 10000 == 0)
                    send_line(format_line(text, sizeof text, "games= %ld, positions= %ld", games, positions));
            }
            continue;
        }
        reader.read(line, game.get());
    }
    positions += write_game(*game, out, board.get());
    std::fclose(in);
    std::fclose(out);
    send_line(format_line(text, sizeof text, "games= %ld, positions= %ld", games, positions));
    return positions;
}
