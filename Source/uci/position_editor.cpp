#include "uci/position_editor.h"

#include "board/fen.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "uci/bounded_input.h"
#include "uci/console_commands.h"
#include "uci/game.h"

#include <cctype>
#include <cstring>

namespace
{

struct Editor {
    bool active;
    int colour;
    Position board;
};
Editor editor;
const char* const MAN_LETTERS = "pnbrqk";

void finish()
{
    editor.active = false;
    limits.stop_signal = STOP_NONE;
    // Castling rights follow from kings and rooks on their home squares.
    Position* p = &editor.board;
    p->castling = 0;
    if (p->board[4] == piece_code(KING, WHITE)) {
        if (p->board[7] == piece_code(ROOK, WHITE))
            p->castling |= 1;
        if (p->board[0] == piece_code(ROOK, WHITE))
            p->castling |= 2;
    }
    if (p->board[60] == piece_code(KING, BLACK)) {
        if (p->board[63] == piece_code(ROOK, BLACK))
            p->castling |= 4;
        if (p->board[56] == piece_code(ROOK, BLACK))
            p->castling |= 8;
    }
    p->ep_square = NO_SQUARE;
    char fen[128];
    write_fen(p, fen);
    if (set_game_position(fen))
        show_game_board();
}

bool square_of(const char* text, int* sq)
{
    if (text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8' || text[2])
        return false;
    *sq = make_square(text[0] - 'a', text[1] - '1');
    return true;
}

} // namespace

bool position_editor_active()
{
    return editor.active;
}

void start_position_editor()
{
    editor.active = true;
    editor.colour = WHITE;
    editor.board = *game_position();
    limits.stop_signal = STOP_LIMIT;
    send_line(".                    end edit");
    send_line("#                    clear board");
    send_line("w  Pa2 Pb2 Kc2       white, pieces");
    send_line("b  Pa7 Pb7 Kc7       black, pieces");
}

void position_editor_line(const char* line)
{
    char copy[512];
    copy_text(copy, sizeof copy, line);
    char* save = nullptr;
    for (char* token = strtok_r(copy, " ", &save); token; token = strtok_r(nullptr, " ", &save)) {
        int sq;
        if (!std::strcmp(token, ".")) {
            finish();
            return;
        }
        if (!std::strcmp(token, "#")) {
            std::memset(editor.board.board, 0, sizeof editor.board.board);
        } else if (!std::strcmp(token, "w") || !std::strcmp(token, "b")) {
            editor.colour = token[0] == 'w' ? WHITE : BLACK;
        } else if (token[0] == 'x' && square_of(token + 1, &sq)) {
            editor.board.board[sq] = 0;
        } else if (const char* found = token[0] ? std::strchr(MAN_LETTERS, std::tolower(token[0])) : nullptr;
                   found && square_of(token + 1, &sq)) {
            editor.board.board[sq] = uint8_t(piece_code(int(found - MAN_LETTERS) + 1, editor.colour));
        } else {
            char text[300];
            send_line(format_line(text, sizeof text, "can't place '%.200s'", token));
        }
    }
}
