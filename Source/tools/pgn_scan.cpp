#include "tools/pgn_scan.h"

#include "output/output.h"
#include "tools/line_reader.h"
#include "tools/offline_tools.h"
#include "tools/pgn_comment.h"
#include "tools/pgn_epd.h"

#include <cstdio>
#include <cstring>

namespace
{

constexpr int PGN_LINE_SIZE = 255; // lines of up to 254 characters
constexpr int COMMENT_TEXT_SIZE = 256;
constexpr int GAMES_PER_NOTE = 100;

struct PgnScan {
    int variant;
    FILE* out;
    FILE* side_file;
    PgnGame game;
    bool dropped; // the last move did not fit the list: its comment goes nowhere
    bool skip;    // the game ended irregularly: its moves are not read
    int games;
    int positions;
    int comment_depth;
    char comment[COMMENT_TEXT_SIZE];
    int comment_length;
};

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_blank(char c)
{
    return c == ' ' || c == '\t';
}

void write_pending_game(PgnScan* s)
{
    if (s->game.count > 0)
        s->positions += write_game_epd(s->out, s->side_file, &s->game, s->variant);
    s->game.count = 0;
    s->dropped = false;
    s->comment_depth = 0;
    s->comment_length = 0;
}

// The text between the first pair of double quotes, bounded.
void quoted_value(const char* line, char* value, int size)
{
    value[0] = 0;
    const char* open = std::strchr(line, '"');
    if (!open)
        return;
    const char* close = std::strchr(open + 1, '"');
    int n = close ? int(close - open - 1) : int(std::strlen(open + 1));
    if (n > size - 1)
        n = size - 1;
    std::memcpy(value, open + 1, size_t(n));
    value[n] = 0;
}

void read_tag(PgnScan* s, const char* line)
{
    write_pending_game(s);
    if (s->variant == 1) {
        std::fprintf(s->out, "%s\n", line);
        if (std::strstr(line, "Round "))
            std::fprintf(s->out, "[Tag \"game_%d\"]\n", s->games);
    }
    char value[PGN_NAME_SIZE];
    if (std::strstr(line, "Event ")) {
        s->games++;
        if (s->games % GAMES_PER_NOTE == 0) {
            char text[32];
            send_line(format_line(text, sizeof text, "game %d", s->games));
        }
        s->skip = false;
    } else if (std::strstr(line, "White ")) {
        quoted_value(line, s->game.white, PGN_NAME_SIZE);
    } else if (std::strstr(line, "Black ")) {
        quoted_value(line, s->game.black, PGN_NAME_SIZE);
    } else if (std::strstr(line, "Result ")) {
        quoted_value(line, value, sizeof value);
        s->game.result = std::strstr(value, "1-0") ? WHITE_WON : std::strstr(value, "0-1") ? BLACK_WON : NO_WINNER;
    } else if (std::strstr(line, "unterminated") || std::strstr(line, "time forfeit")
               || std::strstr(line, "abandoned")) {
        s->skip = true;
    }
}

void close_comment(PgnScan* s)
{
    s->comment[s->comment_length] = 0;
    int n = s->game.count;
    if (n == 0 || s->dropped)
        return;
    // Games start from the standard position: even plies are White's.
    comment_eval(s->comment, (n - 1) % 2 == 0, &s->game.plies[n - 1].eval);
}

// Move text: comments (nested), and a word that starts with a letter is the
// next move. Move numbers, results and other words are passed over.
void read_move_text(PgnScan* s, const char* line)
{
    for (const char* p = line; *p; p++) {
        char c = *p;
        if (c == '{') {
            if (s->comment_depth++ == 0) {
                s->comment_length = 0;
                continue;
            }
        } else if (c == '}') {
            if (s->comment_depth > 0 && --s->comment_depth == 0) {
                close_comment(s);
                continue;
            }
            if (s->comment_depth == 0)
                continue; // a stray closing brace
        }
        if (s->comment_depth > 0) {
            if (s->comment_length < COMMENT_TEXT_SIZE - 1)
                s->comment[s->comment_length++] = c;
            continue;
        }
        if (!is_letter(c))
            continue;
        const char* start = p;
        while (p[1] && !is_blank(p[1]))
            p++;
        PgnGame& g = s->game;
        if (g.count >= PGN_MAX_PLIES) {
            s->dropped = true;
            continue;
        }
        int len = int(p + 1 - start);
        if (len > PGN_MOVE_SIZE - 1)
            len = PGN_MOVE_SIZE - 1;
        std::memcpy(g.plies[g.count].text, start, size_t(len));
        g.plies[g.count].text[len] = 0;
        g.plies[g.count].eval = NO_EVAL;
        g.count++;
    }
    // A comment that runs on to the next line: the line end is a blank.
    if (s->comment_depth > 0 && s->comment_length < COMMENT_TEXT_SIZE - 1)
        s->comment[s->comment_length++] = ' ';
}

void scan_lines(PgnScan* s, FILE* in)
{
    char line[PGN_LINE_SIZE];
    while (read_line(in, line, sizeof line) >= 0) {
        if (line[0] == '[' && line[1] == '%') {
            // A comment's "[%eval ...]" or "[%clk ...]" that starts a line is no tag.
            if (!s->skip)
                read_move_text(s, line);
        } else if (line[0] == '[') {
            read_tag(s, line);
        } else if (!s->skip && line[0]) {
            read_move_text(s, line);
        }
    }
    write_pending_game(s);
}

} // namespace

int scan_pgn_files(const char* path, int variant, const char* out_path, const char* side_path)
{
    FILE* in = std::fopen(path, "r");
    if (!in)
        return -1;
    FILE* out = std::fopen(out_path, "w");
    FILE* side_file = out ? std::fopen(side_path, "w") : nullptr;
    if (!out || !side_file) {
        if (out)
            std::fclose(out);
        std::fclose(in);
        return -1;
    }
    static PgnScan scan;
    scan = PgnScan{};
    scan.variant = variant;
    scan.out = out;
    scan.side_file = side_file;
    scan.game.result = NO_WINNER;
    scan_lines(&scan, in);
    std::fprintf(out, "\n");
    std::fclose(side_file);
    std::fclose(out);
    std::fclose(in);
    char text[64];
    send_line(format_line(text, sizeof text, "games= %d, positions= %d", scan.games, scan.positions));
    return scan.positions;
}

void scan_pgn(const char* file, int variant)
{
    scan_pgn_files(file, variant, variant == 1 ? "tmp.pgn" : "tmp.epd", "tmpX.epd");
}
