#include "board/board_display.h"

#include "board/fen.h"
#include "output/output.h"

void print_board(const Position* pos)
{
    const char* glyphs = "0123456789-PNBRQK-onbrqk";
    char fen[128];
    write_fen(pos, fen);
    send_line(fen);
    for (int rank = 7; rank >= 0; rank--) {
        char line[20] = " ";
        for (int file = 0; file < 8; file++) {
            int code = pos->board[make_square(file, rank)];
            char c;
            if (code)
                c = glyphs[10 + (piece_side(code) == WHITE ? 0 : 7) + piece_type(code)];
            else
                c = (file & 1) == (rank & 1) ? '+' : '-';
            line[1 + 2 * file] = ' ';
            line[2 + 2 * file] = c;
        }
        line[17] = 0;
        send_line(line);
    }
    send_line(pos->side == WHITE ? "white" : "black");
}
