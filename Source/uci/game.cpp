#include "uci/game.h"

#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "output/output.h"

#include <cstdio>
#include <cstring>

namespace
{

Game game;

// The history keeps this many records when a very long game fills it; the
// draw test never looks further back than the fifty-move counter (a byte).
constexpr int KEPT_HISTORY = 256;
constexpr int HISTORY_LIMIT = MAX_GAME_PLY - 2 * MAX_PLY;
static_assert(HISTORY_LIMIT + MAX_PLY < MAX_GAME_PLY, "a search from the longest kept game must fit the undo records");
constexpr int RECORD_SIZE = 4096;

struct GameRecord {
    char start_fen[128];
    Move moves[RECORD_SIZE];
    int count;     // moves played
    int available; // moves that can be replayed (count .. available - 1 were taken back)
};

GameRecord record;

void trim_history(Position* pos)
{
    if (pos->game_ply < HISTORY_LIMIT)
        return;
    int drop = pos->game_ply - KEPT_HISTORY;
    std::memmove(pos->undo, pos->undo + drop, sizeof(UndoRecord) * KEPT_HISTORY);
    pos->game_ply = int16_t(KEPT_HISTORY);
}

void make_recorded(Move move)
{
    Position* pos = game_position();
    make_move(pos, move);
    trim_history(pos);
}

} // namespace

Position* game_position()
{
    return game_init(&game);
}

void send_info(const char* text)
{
    char line[512];
    send_line(protocol_mode == 1 ? format_line(line, sizeof line, "info string %s", text) : text);
}

int set_game_position(const char* fen)
{
    Position* pos = game_position();
    Position candidate = *pos;
    read_fen(&candidate, fen);
    if (const char* problem = position_problem(&candidate)) {
        char text[256];
        send_info(format_line(text, sizeof text, "invalid position (%s): %.150s", problem, fen));
        return 0;
    }
    *pos = candidate;
    pos->game_ply = 0;
    pos->search_ply = 1;
    pos->last_move = 0;
    write_fen(&candidate, record.start_fen);
    record.count = record.available = 0;
    return 1;
}

void play_game_move(Move move)
{
    make_recorded(move);
    if (record.count < RECORD_SIZE) {
        // A new move forgets the moves taken back unless it repeats the next one.
        if (record.count >= record.available || record.moves[record.count] != move)
            record.available = record.count + 1;
        record.moves[record.count++] = move;
    }
}

int undo_game_move()
{
    if (game_position()->game_ply <= 0 || record.count <= 0)
        return 0;
    unmake_move(game_position());
    record.count--;
    return 1;
}

int jump_to_ply(int ply)
{
    while (record.count > ply && undo_game_move()) {
    }
    while (record.count < ply && record.count < record.available) {
        make_recorded(record.moves[record.count]);
        record.count++;
    }
    return record.count;
}

int game_length()
{
    return record.count;
}

int save_game(const char* file)
{
    FILE* f = std::fopen(file, "w");
    if (!f)
        return 0;
    std::fprintf(f, "[Event \"Unknown\"]\n");
    if (std::strcmp(record.start_fen, START_FEN)) {
        std::fprintf(f, "[SetUp \"1\"]\n[FEN \"%s 0 1\"]\n", record.start_fen);
    }
    std::fprintf(f, "\n");
    // Replay from the set-up position on a scratch record to write SAN.
    static Game scratch_game;
    Position* scratch = game_init(&scratch_game);
    scratch->chess960 = game_position()->chess960;
    set_position(scratch, record.start_fen);
    int column = 0, number = 1;
    for (int i = 0; i < record.count; i++) {
        char coord[MOVE_TEXT_SIZE], san[MOVE_TEXT_SIZE], sf[MOVE_TEXT_SIZE], sr[MOVE_TEXT_SIZE], text[48];
        move_texts(scratch, record.moves[i], coord, san, sf, sr);
        const char* written = san[0] == 'o' ? sf : san; // castling in capital letters for other programs
        bool white = scratch->side == WHITE;
        if (white)
            column += std::snprintf(text, sizeof text, "%d. %s ", number, written);
        else if (i == 0)
            column += std::snprintf(text, sizeof text, "%d... %s ", number, written);
        else
            column += std::snprintf(text, sizeof text, "%s ", written);
        if (!white)
            number++;
        std::fputs(text, f);
        if (column > 70) {
            std::fputs("\n", f);
            column = 0;
        }
        make_move(scratch, record.moves[i]);
        if (scratch->game_ply >= MAX_GAME_PLY - 1)
            scratch->game_ply = 0; // only the position matters here
    }
    std::fprintf(f, "*\n\n");
    std::fclose(f);
    return 1;
}
