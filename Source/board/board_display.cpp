#include "board/board_display.h"

#include "board/fen.h"

#include <cstdio>

void print_board(const Position* pos)
{
    const char* glyphs = "0123456789-PNBRQK-onbrqk";
    char fen[128];
    write_fen(pos, fen);
    std::printf("%s\n", fen);
    for (int rank = 7; rank >= 0; rank--) {
        std::putchar(' ');
        for (int file = 0; file < 8; file++) {
            int code = pos->board[make_square(file, rank)];
            char c;
            if (code)
                c = glyphs[10 + (piece_side(code) == WHITE ? 0 : 7) + piece_type(code)];
            else
                c = (file & 1) == (rank & 1) ? '+' : '-';
            std::printf(" %c", c);
        }
        std::putchar('\n');
    }
    std::printf("%s\n", pos->side == WHITE ? "white" : "black");
    std::fflush(stdout);
}
