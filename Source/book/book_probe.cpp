#include "book/book_probe.h"

#include "board/legality.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "book/book_key.h"
#include "output/output.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// Entries read at once for the last steps of the search (4 KB).
constexpr int SEARCH_WINDOW = 256;

// Binary search of the open file for the first entry whose key is not below
// `key`; then the run of entries with that key. The file length decides the
// entry count, so a file cut inside an entry loses only that entry.
int find_moves(int fd, uint64_t key, BookEntry* entries)
{
    struct stat info;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size < BOOK_ENTRY_SIZE)
        return 0;
    int64_t last = (int64_t(info.st_size) - BOOK_ENTRY_SIZE) / BOOK_ENTRY_SIZE;
    BookEntry candidate;
    if (read_book_entry(fd, last, &candidate))
        return 0;
    int64_t lo = -1, hi = last;
    // Once the range fits one small read, the rest of the search runs on a
    // copy in memory: the same steps, a third of the system calls.
    unsigned char window[SEARCH_WINDOW * BOOK_ENTRY_SIZE];
    int64_t window_start = -1;
    while (hi - lo != 1) {
        if (window_start < 0 && hi - lo - 1 <= SEARCH_WINDOW) {
            size_t bytes = size_t(hi - lo - 1) * BOOK_ENTRY_SIZE;
            if (pread(fd, window, bytes, off_t(lo + 1) * BOOK_ENTRY_SIZE) != ssize_t(bytes))
                return 0; // the file shrank under us
            window_start = lo + 1;
        }
        int64_t mid = (lo + hi) / 2;
        BookEntry entry;
        if (window_start >= 0)
            decode_book_entry(window + (mid - window_start) * BOOK_ENTRY_SIZE, &entry);
        else if (read_book_entry(fd, mid, &entry))
            return 0;
        if (key <= entry.key) {
            hi = mid;
            candidate = entry;
        } else {
            lo = mid;
        }
    }
    if (candidate.key != key)
        return 0;

    // One read for the whole run: a position rarely has more than a handful
    // of entries, and never more than MAX_BOOK_MOVES are looked at.
    unsigned char bytes[MAX_BOOK_MOVES * BOOK_ENTRY_SIZE];
    ssize_t got = pread(fd, bytes, sizeof bytes, off_t(hi) * BOOK_ENTRY_SIZE);
    int whole = got > 0 ? int(got / BOOK_ENTRY_SIZE) : 0;
    int count = 0;
    for (; count < whole; count++) {
        decode_book_entry(bytes + count * BOOK_ENTRY_SIZE, &entries[count]);
        if (entries[count].key != key)
            break;
    }
    return count;
}

// From and to square, without a promotion letter: the form the GUI listing uses.
void square_pair(Move move, char* text)
{
    std::memcpy(text, SQUARE_NAMES[move_from(move)], 2);
    std::memcpy(text + 2, SQUARE_NAMES[move_to(move)], 2);
    text[4] = 0;
}

} // namespace

uint32_t book_draw()
{
    // The multiplier and offset spread the low-quality low bits of rand()
    // before the reduction; unsigned arithmetic wraps modulo 2^32.
    return (uint32_t(std::rand()) * 98765u + 123456789u) % 1000u;
}

void spin_book_roulette(const BookEntry* entries, int count, int variety, uint32_t draw, BookRoulette* out)
{
    out->total = 0;
    for (int i = 0; i < count; i++)
        out->total += entries[i].weight;
    // A variety above 25 adds a share of the first entry's weight to every
    // move (flattening the choice), one below takes it away.
    int bonus = int(entries[0].weight * 0.01 * (variety - 25));
    out->sum = 0;
    for (int i = 0; i < count; i++) {
        // A position whose weights are all 0 gives nothing to share out;
        // the first entry is then chosen below without dividing by zero.
        int adjusted = out->total ? (entries[i].weight + bonus) * 10000 / out->total : 0;
        out->adjusted[i] = adjusted > 0 ? adjusted : 0;
        out->sum += out->adjusted[i];
    }
    int threshold = int(draw * 0.001 * out->sum);
    // A roulette: an entry is chosen when the threshold lies strictly above
    // the running sum in front of it, so the last such entry wins.
    out->selected = 0;
    int running = 0;
    for (int i = 0; i < count; i++) {
        if (entries[i].weight == 0)
            continue;
        if (threshold > running)
            out->selected = i;
        running += out->adjusted[i];
    }
}

int read_book_moves(const char* file, uint64_t key, BookEntry* entries)
{
    if (!file || !file[0])
        return 0;
    // Non-blocking, so that a name that turns out to be a pipe cannot hang the engine.
    int fd = open(file, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return 0;
    int count = find_moves(fd, key, entries);
    close(fd);
    return count;
}

namespace
{

// Books write castling king takes rook, as Chess960 does: only standard
// chess turns it into the king's two-square move.
Move book_move_in(const Position* pos, uint16_t book_move)
{
    Move move = book_move_to_move(book_move);
    if (pos->chess960 && piece_type(pos->board[move_from(move)]) == KING)
        return Move(make_move_code(book_move >> 6 & 63, book_move & 63));
    return move;
}

} // namespace

Move book_probe(const Position* pos, const char* file, const BookOptions& options)
{
    BookEntry entries[MAX_BOOK_MOVES];
    int count = read_book_moves(file, book_key(pos), entries);
    if (count == 0)
        return 0;
    BookRoulette roulette;
    spin_book_roulette(entries, count, options.variety, book_draw(), &roulette);

    bool console = options.console_listing;
    char list[64 + MAX_BOOK_MOVES * 5] = "info string ( book moves are: ";
    size_t length = std::strlen(list);
    for (int i = 0; i < count && !options.quiet; i++) {
        if (entries[i].weight == 0)
            continue;
        Move move = book_move_in(pos, entries[i].move);
        if (console) {
            char text[MOVE_TEXT_SIZE], line[128];
            move_to_coord(move, text, MOVE_STYLE_CONSOLE);
            double share = 100.0 * entries[i].weight / roulette.total;
            double chance = roulette.sum ? 100.0 * roulette.adjusted[i] / roulette.sum : 0.0;
            send_line(format_line(line, sizeof line, "  %s  cnt= %5d, weight= %5.2f%% -> %5.2f%%", text,
                                  entries[i].weight, share, chance));
        } else {
            square_pair(move, list + length);
            list[length + 4] = ' ';
            list[length + 5] = 0;
            length += 5;
        }
    }

    Move chosen = book_move_in(pos, entries[roulette.selected].move);
    Move result = is_legal_move(pos, chosen) ? chosen : 0;
    if (!options.quiet) {
        char line[64];
        if (console) {
            send_line(format_line(line, sizeof line, "selecting %s%s", SQUARE_NAMES[move_from(chosen)],
                                  SQUARE_NAMES[move_to(chosen)]));
        } else {
            std::strcpy(list + length, " )");
            send_line(list);
        }
    }
    return result;
}
