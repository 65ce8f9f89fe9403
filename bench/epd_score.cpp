// Scores another engine's answers to an EPD test suite exactly as -anepd
// scores Korvel's: the same splitter, move reader and bm/am/c0 rules.
//   epd_score positions SUITE        prints the four FEN fields of each position
//   epd_score score SUITE MOVES      MOVES: one coordinate move (or "none") per position
#include "board/epd.h"
#include "board/fen.h"
#include "board/notation.h"
#include "board/zobrist.h"
#include "tools/epd_scoring.h"
#include "tools/line_reader.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    if (argc < 3 || (std::strcmp(argv[1], "score") == 0 && argc < 4)) {
        std::fprintf(stderr, "usage: epd_score positions SUITE | epd_score score SUITE MOVES\n");
        return 2;
    }
    bool scoring = std::strcmp(argv[1], "score") == 0;
    FILE* suite = std::fopen(argv[2], "r");
    FILE* moves = scoring ? std::fopen(argv[3], "r") : nullptr;
    if (!suite || (scoring && !moves)) {
        std::fprintf(stderr, "cannot open the files\n");
        return 1;
    }
    init_zobrist();
    static Game game;
    Position* pos = game_init(&game);
    int positions = 0, correct = 0, points = 0, possible = 0;
    char line[512], move_text[64];
    for (int n; (n = read_line(suite, line, sizeof line)) >= 0;) {
        if (!is_suite_position_line(line, n))
            continue;
        EpdFields f{};
        split_epd(line, &f);
        positions++;
        if (!scoring) {
            std::printf("%s\n", f.fen);
            continue;
        }
        set_position(pos, f.fen);
        Move best = 0;
        if (read_line(moves, move_text, sizeof move_text) < 0 || position_problem(pos)
            || !parse_move(pos, move_text, &best))
            best = 0;
        if (f.bm[0])
            correct += bm_hits(pos, f.bm, best);
        else if (f.am[0])
            correct += am_hit(pos, f.am, best);
        if (f.c0[0]) {
            C0Result c = c0_points(pos, f.c0, best);
            points += c.points;
            possible += c.possible;
        }
    }
    if (scoring)
        std::printf("%d / %d correct best moves\nscore= %d / %d\n", correct, positions, points, possible);
    return 0;
}
