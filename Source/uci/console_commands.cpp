#include "uci/console_commands.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "board/attack_queries.h"
#include "board/board_display.h"
#include "board/epd.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "board/perft.h"
#include "board/see.h"
#include "eval/evaluate.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "uci/game.h"
#include "uci/input.h"
#include "uci/output.h"
#include "uci/protocol_mode.h"

namespace {

constexpr int MAX_WORDS = 10;

struct Words {
    char text[MAX_WORDS][256];
};

void split_words(const char* line, Words* w)
{
    for (auto& word : w->text)
        word[0] = 0;
    int n = 0;
    const char* p = line;
    while (*p && n < MAX_WORDS) {
        while (*p == ' ')
            p++;
        if (!*p)
            break;
        size_t len = 0;
        while (p[len] && p[len] != ' ')
            len++;
        size_t keep = len < 255 ? len : 255;
        std::memcpy(w->text[n], p, keep);
        w->text[n][keep] = 0;
        p += len;
        n++;
    }
}

// --- position editor --------------------------------------------------------

struct Editor {
    bool active;
    int colour;
    Position board;
};
Editor editor;

void editor_help()
{
    send_line(".                    end edit");
    send_line("#                    clear board");
    send_line("w  Pa2 Pb2 Kc2       white, pieces");
    send_line("b  Pa7 Pb7 Kc7       black, pieces");
}

void editor_finish()
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

void editor_line(const char* line)
{
    Words w;
    split_words(line, &w);
    for (const char* token : w.text) {
        if (!*token)
            break;
        if (!std::strcmp(token, ".")) {
            editor_finish();
            return;
        }
        if (!std::strcmp(token, "#")) {
            std::memset(editor.board.board, 0, sizeof editor.board.board);
            continue;
        }
        if (!std::strcmp(token, "w") || !std::strcmp(token, "b")) {
            editor.colour = token[0] == 'w' ? WHITE : BLACK;
            continue;
        }
        const char* letters = "pnbrqk";
        const char* found = std::strchr(letters, std::tolower(token[0]));
        if (!found || !token[0] || std::strlen(token) != 3 || token[1] < 'a' || token[1] > 'h' || token[2] < '1'
            || token[2] > '8') {
            char text[300];
            send_line(format_line(text, sizeof text, "can't place '%.200s'", token));
            continue;
        }
        int sq = make_square(token[1] - 'a', token[2] - '1');
        editor.board.board[sq] = uint8_t(piece_code(int(found - letters) + 1, editor.colour));
    }
}

void edit_command()
{
    editor.active = true;
    editor.colour = WHITE;
    editor.board = game_thread->pos;
    limits.stop_signal = STOP_LIMIT;
    editor_help();
}

// --- other commands ---------------------------------------------------------

void swap_command()
{
    const Position* pos = &game_thread->pos;
    char line[128];
    for (int sq = 0; sq < 64; sq++) {
        int code = pos->board[sq];
        if (!code)
            continue;
        int s = piece_side(code) ^ 1;
        if (is_square_attacked(pos, sq, s))
            send_line(format_line(line, sizeof line, "sq= %s, swap1= %4d", SQUARE_NAMES[sq], swap(pos, s, NO_SQUARE, sq)));
    }
}

void load_command(const char* file, const char* tag)
{
    char line[600];
    send_line(format_line(line, sizeof line, "loading %.250s, tag %.250s", file, tag));
    FILE* f = std::fopen(file, "r");
    if (!f) {
        send_line(format_line(line, sizeof line, "can't open %.250s", file));
        return;
    }
    char text[1024];
    bool found = false;
    EpdFields fields;
    while (std::fgets(text, sizeof text, f)) {
        if (std::strlen(text) < 10 || text[0] == '#')
            continue;
        fields.id[0] = 0;
        split_epd(text, &fields);
        if (*tag) {
            char id[EPD_FIELD_SIZE];
            size_t n = 0;
            for (const char* c = fields.id; *c; c++)
                if (*c != '"')
                    id[n++] = *c;
            id[n] = 0;
            if (std::strcmp(id, tag) && std::strcmp(fields.id, tag))
                continue;
        }
        found = true;
        break;
    }
    std::fclose(f);
    if (!found) {
        send_line(format_line(line, sizeof line, "tag %.250s not found", tag));
        return;
    }
    if (set_game_position(fields.fen))
        show_game_board();
}

void move_input(const char* word)
{
    Move move;
    if (!parse_move(&game_thread->pos, word, &move)) {
        char line[300];
        send_line(format_line(line, sizeof line, "can't parse move '%.200s'", word));
        return;
    }
    play_game_move(move);
    show_game_board();
}

}  // namespace

void show_game_board()
{
    if (protocol_mode == 0)
        print_board(&game_thread->pos);
}

void handle_console_command(char* line)
{
    if (!*line)
        return;
    log_command(line);
    if (editor.active) {
        editor_line(line);
        return;
    }
    Words w;
    split_words(line, &w);
    const char* cmd = w.text[0];
    if (!*cmd)
        return;
    if (!std::strcmp(cmd, "quit")) {
        stop_and_wait(STOP_SILENT);
        quit_requested = true;
    } else if (!std::strcmp(cmd, "perft")) {
        perft_command(game_thread, std::atoi(w.text[1]));
    } else if (!std::strcmp(cmd, "swap")) {
        swap_command();
    } else if (!std::strcmp(cmd, "undo")) {
        if (undo_game_move())
            show_game_board();
    } else if (!std::strcmp(cmd, "edit")) {
        edit_command();
    } else if (!std::strcmp(cmd, "trace")) {
        int d = std::atoi(w.text[1]);
        trace_depth = int8_t(d < 0 ? 0 : d > 100 ? 100 : d);
    } else if (!std::strcmp(cmd, "load")) {
        load_command(w.text[1], w.text[2]);
    } else if (!std::strcmp(cmd, "eval")) {
        int level = std::atoi(w.text[1]) >= 2 ? 2 : 1;
        evaluate(game_thread, game_thread->pos.side, 0, 0, level);
    } else if (!std::strcmp(cmd, "new")) {
        if (set_game_position(START_FEN))
            show_game_board();
    } else if (!std::strcmp(cmd, "d") || !std::strcmp(cmd, "board")) {
        print_board(&game_thread->pos);
    } else {
        move_input(cmd);
    }
}
