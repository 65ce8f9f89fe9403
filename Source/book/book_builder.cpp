#include "book/book_builder.h"

#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "book/book_entry.h"
#include "book/book_key.h"
#include "book/book_probe.h"
#include "book/book_table.h"
#include "output/output.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace
{

// A game adds its moves until this many plies are in; the test is made once
// per line, so the line that reaches the limit is read to its end.
constexpr int BOOK_PLIES = 36;
// Lines are read as fgets reads them into a buffer of this size: a longer
// line comes in pieces, each read as a line of its own.
constexpr int LINE_SIZE = 1024;
constexpr int DOT_GAMES = 1024;
constexpr int RECORD_BATCH = 512;
constexpr size_t READ_SIZE = 1 << 20;

enum GameResult { WHITE_WON, BLACK_WON, DRAWN, UNKNOWN };

struct Builder {
    BookTable table;
    Game replay;
    Position start;
    uint64_t start_men_key;
    uint64_t men_key; // the men's part of the replay position's book key
    int result;
    int ply_count;
    int comment_depth;
    int variation_depth;
    bool game_broken;
    bool out_of_memory;
    int games;
    // The current game's records, counted together when the game ends (or
    // when the batch is full).
    BookRecord records[RECORD_BATCH];
    int record_count;
};

// Reads a file in large blocks and hands out lines exactly as repeated
// fgets(line, LINE_SIZE, file) calls would.
struct LineReader {
    FILE* file;
    char* buffer;
    size_t size;
    size_t begin, end;
    bool at_end;
};

bool next_line(LineReader* r, char* line)
{
    size_t length = 0;
    while (length < LINE_SIZE - 1) {
        if (r->begin == r->end) {
            if (r->at_end)
                break;
            r->begin = 0;
            r->end = std::fread(r->buffer, 1, r->size, r->file);
            if (r->end == 0) {
                r->at_end = true;
                break;
            }
        }
        size_t want = std::min(r->end - r->begin, size_t(LINE_SIZE - 1) - length);
        const char* from = r->buffer + r->begin;
        const void* newline = std::memchr(from, '\n', want);
        size_t take = newline ? size_t(static_cast<const char*>(newline) - from) + 1 : want;
        std::memcpy(line + length, from, take);
        length += take;
        r->begin += take;
        if (newline)
            break;
    }
    line[length] = 0;
    return length > 0;
}

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_control(char c)
{
    return (c >= 0 && c < 32) || c == 127;
}

void count_records(Builder* b)
{
    if (!book_table_record(&b->table, b->records, b->record_count))
        b->out_of_memory = true;
    b->record_count = 0;
}

void start_game(Builder* b, const char* line)
{
    count_records(b);
    b->replay.pos = b->start;
    game_init(&b->replay);
    b->men_key = b->start_men_key;
    b->result = std::strstr(line, "1-0")   ? WHITE_WON
                : std::strstr(line, "0-1") ? BLACK_WON
                : std::strstr(line, "1/2") ? DRAWN
                                           : UNKNOWN;
    b->games++;
    if (b->games % DOT_GAMES == 0) {
        std::fputc('.', stdout);
        std::fflush(stdout);
    }
    b->ply_count = b->comment_depth = b->variation_depth = 0;
    b->game_broken = false;
}

void read_token(Builder* b, const char* token)
{
    if (b->game_broken || token[0] == ';' || token[0] == '$')
        return;
    switch (token[0]) {
    case '{':
        b->comment_depth++;
        return;
    // A closing mark with nothing open is a stray: counted, it would turn
    // the next comment or variation into moves.
    case '}':
        if (b->comment_depth > 0)
            b->comment_depth--;
        return;
    case '(':
        b->variation_depth++;
        return;
    case ')':
        if (b->variation_depth > 0)
            b->variation_depth--;
        return;
    default:
        break;
    }
    if (b->comment_depth > 0 || b->variation_depth > 0)
        return;
    // Move numbers, results and annotations start otherwise; castling may
    // be written with zeros.
    if (!is_letter(token[0]) && !(token[0] == '0' && token[1] == '-'))
        return;
    Position* pos = &b->replay.pos;
    Move move;
    if (!parse_move(pos, token, &move)) {
        b->game_broken = true;
        return;
    }
    uint64_t key = b->men_key ^ book_key_state(pos);
    int outcome = b->result == DRAWN ? 0 : (b->result == WHITE_WON) == (pos->side == WHITE) ? 1 : -1;
    b->ply_count++;
    // The replay never takes a move back, so its history may start over
    // rather than run out (a line holds a few hundred plies at most anyway).
    if (pos->game_ply >= MAX_GAME_PLY - 1)
        pos->game_ply = 0;
    uint8_t before[64];
    std::memcpy(before, pos->board, sizeof before);
    make_move(pos, move);
    b->men_key ^= book_key_men_change(before, pos->board);
    b->records[b->record_count++] = {key, move, int8_t(outcome)};
    if (b->record_count == RECORD_BATCH)
        count_records(b);
}

void read_line(Builder* b, const char* line)
{
    if (std::strstr(line, "[Result")) {
        start_game(b, line);
        return;
    }
    if ((line[0] == '[' || line[0] == ';') && b->comment_depth <= 0)
        return;
    if (b->result == UNKNOWN || b->ply_count >= BOOK_PLIES)
        return;
    char token[LINE_SIZE];
    int length = 0;
    for (const char* p = line; !b->out_of_memory; p++) {
        char c = *p;
        bool single = c == '{' || c == '}' || c == '(' || c == ')';
        if (c == 0 || c == ' ' || single) {
            if (length) {
                token[length] = 0;
                read_token(b, token);
                length = 0;
            }
            if (single) {
                char alone[2] = {c, 0};
                read_token(b, alone);
            }
            if (c == 0)
                break;
        } else if (!is_control(c)) {
            token[length++] = c;
        }
    }
}

struct KeptMove {
    uint32_t node;
    int32_t score;
};

int64_t score_of(const BookNode* node)
{
    return 4 * int64_t(node->wins) - 2 * int64_t(node->losses) + node->draws;
}

// Writes one position's kept moves; `moves` holds up to MAX_BOOK_MOVES.
void write_position(const BookTable* table, const KeptMove* moves, int count, FILE* out)
{
    int64_t max = 0;
    for (int i = 0; i < count; i++)
        max = std::max<int64_t>(max, moves[i].score);
    // Weights must fit 16 bits; the scale keeps their ratios.
    double scale = std::min(1.0, 60000.0 / double(max));
    BookEntry entries[MAX_BOOK_MOVES];
    for (int i = 0; i < count; i++) {
        const BookNode* node = book_node(table, moves[i].node);
        entries[i] = {node->key, move_to_book_move(node->move), uint16_t(int(moves[i].score * scale)), 0};
    }
    // Heaviest first; equal weights keep the order in which the moves were first seen.
    if (count > 1)
        std::stable_sort(entries, entries + count,
                         [](const BookEntry& a, const BookEntry& b) { return a.weight > b.weight; });
    unsigned char bytes[MAX_BOOK_MOVES * BOOK_ENTRY_SIZE];
    for (int i = 0; i < count; i++)
        encode_book_entry(&entries[i], bytes + i * BOOK_ENTRY_SIZE);
    std::fwrite(bytes, BOOK_ENTRY_SIZE, size_t(count), out);
}

bool is_kept(const BookNode* node)
{
    return node->wins >= 3 && score_of(node) >= 10;
}

// The moves that scored well enough, in book order: ascending key and, for
// one position, the order in which its moves were first seen (node numbers
// rise with it). Returns the count, or -1 when memory ran out.
int64_t kept_moves(const BookTable* table, KeptMove** out)
{
    int64_t count = 0;
    for (uint32_t n = 1; n <= table->count; n++)
        count += is_kept(book_node(table, n));
    KeptMove* kept = static_cast<KeptMove*>(std::malloc(sizeof(KeptMove) * size_t(count ? count : 1)));
    if (!kept)
        return -1;
    int64_t i = 0;
    for (uint32_t n = 1; n <= table->count; n++) {
        const BookNode* node = book_node(table, n);
        if (is_kept(node))
            kept[i++] = {n, int32_t(std::min<int64_t>(score_of(node), INT32_MAX))};
    }
    std::sort(kept, kept + count, [table](const KeptMove& a, const KeptMove& b) {
        uint64_t ka = book_node(table, a.node)->key, kb = book_node(table, b.node)->key;
        return ka != kb ? ka < kb : a.node < b.node;
    });
    *out = kept;
    return count;
}

// Returns 0 when memory ran out.
int write_book(const BookTable* table, FILE* out)
{
    KeptMove* kept = nullptr;
    int64_t count = kept_moves(table, &kept);
    if (count < 0)
        return 0;
    for (int64_t i = 0; i < count;) {
        uint64_t key = book_node(table, kept[i].node)->key;
        int64_t j = i;
        while (j < count && book_node(table, kept[j].node)->key == key)
            j++;
        // No position has that many good moves; past the buffer they are dropped.
        write_position(table, &kept[i], int(std::min<int64_t>(j - i, MAX_BOOK_MOVES)), out);
        i = j;
    }
    std::free(kept);
    return 1;
}

// Replays the games into the table; returns 0 when memory ran out.
int read_games(Builder* b, FILE* in)
{
    LineReader reader = {in, static_cast<char*>(std::malloc(READ_SIZE)), READ_SIZE, 0, 0, false};
    if (!reader.buffer)
        return 0;
    char line[LINE_SIZE];
    while (!b->out_of_memory && next_line(&reader, line))
        read_line(b, line);
    count_records(b);
    std::free(reader.buffer);
    return !b->out_of_memory;
}

} // namespace

int build_book(const char* pgn_file, const char* book_file)
{
    FILE* in = std::fopen(pgn_file, "r");
    if (!in)
        return 0;
    // Large (the game's history and a batch of records): not for the stack.
    Builder* b = static_cast<Builder*>(std::calloc(1, sizeof(Builder)));
    if (!b || !book_table_init(&b->table)) {
        std::free(b);
        std::fclose(in);
        return 0;
    }
    b->result = UNKNOWN; // nothing counts before the first Result tag
    game_init(&b->replay);
    set_position(&b->replay.pos, START_FEN);
    b->start = b->replay.pos;
    b->start_men_key = book_key_men(&b->start);
    char text[300];
    send_line(format_line(text, sizeof text, "Creating file %s from games in %.200s", book_file, pgn_file));

    int read = read_games(b, in);
    std::fclose(in);
    int written = 0;
    if (read) {
        send_line("");
        send_line("writing book file ...");
        unlink(book_file);
        if (FILE* out = std::fopen(book_file, "wb")) {
            written = write_book(&b->table, out);
            written &= std::fclose(out) == 0;
        }
        send_line(format_line(text, sizeof text, "ngames= %d, nmoves= %u", b->games, b->table.count));
        send_line("done");
    }
    book_table_free(&b->table);
    std::free(b);
    return written;
}

void make_book(const char* pgn_file)
{
    build_book(pgn_file, BOOK_BUILD_OUTPUT);
}
