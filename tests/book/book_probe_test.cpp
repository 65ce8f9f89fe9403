#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "book/book_key.h"
#include "book/book_probe.h"
#include "support/game_and_dir_fixture.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <tuple>

namespace
{

void write_book(const std::string& path, const std::vector<BookEntry>& entries)
{
    std::ofstream out(path, std::ios::binary);
    for (const BookEntry& e : entries) {
        unsigned char bytes[BOOK_ENTRY_SIZE];
        encode_book_entry(&e, bytes);
        out.write(reinterpret_cast<const char*>(bytes), sizeof bytes);
    }
}

uint16_t book_code(const char* from, const char* to)
{
    return uint16_t((from[0] - 'a' + 8 * (from[1] - '1')) << 6 | (to[0] - 'a' + 8 * (to[1] - '1')));
}

std::string coord(Move m)
{
    return std::string(SQUARE_NAMES[move_from(m)]) + SQUARE_NAMES[move_to(m)];
}

// The '|'-separated fields of a data line.
std::vector<std::string> fields(const std::string& line)
{
    std::vector<std::string> parts;
    std::stringstream in(line);
    for (std::string field; std::getline(in, field, '|');)
        parts.push_back(field);
    return parts;
}

const std::string LISTING = "info string ( book moves are: ";

class BookFiles : public GameAndDir
{
  protected:
    void SetUp() override
    {
        GameAndDir::SetUp();
        set_test_position(game, START_FEN);
    }
    // Probes and returns what was printed: the interface's listing, the
    // console's, or nothing when quiet.
    std::string probe(const std::string& file, Move* result, bool console = false, bool quiet = false)
    {
        testing::internal::CaptureStdout();
        *result = book_probe(&game->pos, file.c_str(), {25, quiet, console});
        return testing::internal::GetCapturedStdout();
    }
    void play(std::initializer_list<const char*> moves)
    {
        for (const char* text : moves) {
            Move m;
            ASSERT_TRUE(parse_move(&game->pos, text, &m)) << text;
            make_move(&game->pos, m);
        }
    }
};

} // namespace

// The nine published keys: castling rights lost one by one, en-passant
// squares a pawn can use (in the key) and ones it cannot (left out).
TEST_F(BookFiles, PublishedKeys)
{
    std::ifstream in(data_path("books/test_keys.txt"));
    int checked = 0;
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> f = fields(line);
        if (line[0] == '#' || f.size() != 2)
            continue;
        set_test_position(game, f[0]);
        EXPECT_EQ(book_key(&game->pos), std::stoull(f[1], nullptr, 16)) << line;
        checked++;
    }
    EXPECT_EQ(checked, 9);
}

// Every position of the probe list against what an independent reader
// found: entries in file order, a listing of exactly those of non-zero
// weight, and a move among them.
TEST_F(BookFiles, PerformanceBookAgreesWithAnIndependentReader)
{
    std::string book = data_path("books/performance.bin");
    std::ifstream in(data_path("books/performance_probes.txt"));
    int positions = 0, found = 0;
    for (std::string line; std::getline(in, line); positions++) {
        std::vector<std::string> parts = fields(line);
        ASSERT_GE(parts.size(), 2u) << line;
        set_test_position(game, parts[0]);
        uint64_t key = std::stoull(parts[1], nullptr, 16);
        ASSERT_EQ(book_key(&game->pos), key) << line;
        std::vector<std::string> expected, read;
        std::string listing = LISTING;
        std::stringstream moves(parts.size() > 2 ? parts[2] : "");
        for (std::string item; moves >> item;) {
            expected.push_back(item);
            if (item.substr(item.find(':') + 1) != "0")
                listing += item.substr(0, 4) + " ";
        }
        BookEntry entries[MAX_BOOK_MOVES];
        int n = read_book_moves(book.c_str(), key, entries);
        for (int i = 0; i < n; i++)
            read.push_back(coord(book_move_to_move(entries[i].move)) + ":" + std::to_string(entries[i].weight));
        EXPECT_EQ(read, expected) << line;
        Move m = 0;
        std::string text = probe(book, &m);
        found += !expected.empty();
        EXPECT_EQ(text, expected.empty() ? "" : listing + " )\n") << line;
        // A listed move, or none where the book has nothing.
        EXPECT_TRUE(m ? listing.find(" " + coord(m) + " ") != std::string::npos : expected.empty()) << line;
    }
    EXPECT_EQ(positions, 200);
    EXPECT_GT(found, 50);
}

// One black reply per position of the line, the last an under-promotion,
// which the console lists in its own form.
TEST_F(BookFiles, LaskerTrapLineExactly)
{
    std::string book = data_path("books/lasker-trap.bin");
    const char* line[] = {"d4", "d5", "c4", "e5", "dxe5", "d4", "e3", "Bb4+", "Bd2", "dxe3", "Bxb4", "exf2+", "Ke2"};
    const char* replies[] = {"d7d5", "e7e5", "d5d4", "f8b4", "d4e3", "e3f2"};
    int reply = 0;
    for (const char* text : line) {
        Move m = 0;
        std::string out = probe(book, &m);
        if (game->pos.side == WHITE) {
            EXPECT_EQ(out + std::to_string(m), "0") << text;
        } else {
            EXPECT_EQ(out, LISTING + replies[reply] + "  )\n");
            EXPECT_EQ(coord(m), replies[reply++]);
        }
        play({text});
    }
    Move m = 0;
    EXPECT_EQ(probe(book, &m, true), "  f2g1=N  cnt=     2, weight= 100.00% -> 100.00%\nselecting f2g1\n");
    EXPECT_EQ(m, make_move_code(13, 6) | PROMO_KNIGHT);
    EXPECT_EQ(probe(book, &m, true, true), "");
    EXPECT_EQ(m, make_move_code(13, 6) | PROMO_KNIGHT) << "the quiet probe plays the same move";
}

// Of a run longer than 128 entries only the first 128 count, and other
// keys before and after it must not mislead the search. A lone entry of
// weight 0 is listed nowhere but still played.
TEST_F(BookFiles, RunsOfEntries)
{
    uint64_t key = book_key(&game->pos);
    std::vector<BookEntry> entries;
    for (int i = 0; i < 40; i++)
        entries.push_back({key - 1000 + uint64_t(i), book_code("e2", "e4"), 500, 0});
    for (int i = 0; i < 128; i++)
        entries.push_back({key, i % 2 ? book_code("a2", "a3") : book_code("h2", "h3"), 1, 0});
    for (int i = 0; i < 5; i++)
        entries.push_back({key, book_code("e2", "e4"), 60000, 0});
    for (int i = 0; i < 70; i++)
        entries.push_back({key + 1 + uint64_t(i), book_code("d2", "d4"), 500, 0});
    std::string book = dir + "/long.bin";
    write_book(book, entries);
    BookEntry read[MAX_BOOK_MOVES];
    EXPECT_EQ(read_book_moves(book.c_str(), key, read), 128);
    std::string listing = LISTING;
    for (int i = 0; i < 128; i++)
        listing += i % 2 ? "a2a3 " : "h2h3 ";
    for (int round = 0; round < 20; round++) {
        Move m = 0;
        EXPECT_EQ(probe(book, &m), listing + " )\n");
        EXPECT_TRUE(coord(m) == "a2a3" || coord(m) == "h2h3") << coord(m);
    }
    write_book(book, {{key, book_code("e2", "e4"), 0, 0}});
    Move m = 0;
    EXPECT_EQ(probe(book, &m), LISTING + " )\n");
    EXPECT_EQ(probe(book, &m, true), "selecting e2e4\n");
    EXPECT_EQ(coord(m), "e2e4");
}

// A file cut inside an entry reads as cut to its last whole entry; trailing
// bytes change nothing; short, empty, missing or non-files give nothing.
TEST_F(BookFiles, CutAndMissingFiles)
{
    std::string whole = read_text_file(data_path("books/lasker-trap.bin"));
    ASSERT_EQ(whole.size(), 112u);
    auto write_raw = [&](const std::string& name, const std::string& bytes) {
        std::ofstream(dir + "/" + name, std::ios::binary) << bytes;
        return dir + "/" + name;
    };
    std::string cut = write_raw("cut.bin", whole.substr(0, 112 - 5)), longer = write_raw("longer.bin", whole + "junk");
    // The last entry (largest key) answers 4. e3 with Bb4+.
    play({"d4", "d5", "c4", "e5", "dxe5", "d4", "e3"});
    Move m = 0;
    EXPECT_EQ(probe(longer, &m), LISTING + "f8b4  )\n");
    EXPECT_EQ(coord(m), "f8b4");
    EXPECT_EQ(probe(cut, &m), "");
    EXPECT_EQ(m, 0);
    set_test_position(game, START_FEN);
    play({"d4"});
    EXPECT_EQ(probe(cut, &m), LISTING + "d7d5  )\n");
    for (const std::string& file : {write_raw("tiny.bin", whole.substr(0, 15)), write_raw("empty.bin", ""),
                                    dir + "/missing.bin", dir, std::string()})
        EXPECT_TRUE(probe(file, &m).empty() && m == 0) << file;
}

// A book move the position cannot play (a key collision, a faulty book) is
// listed but gives no move. Castling goes by squares alone: a rook on e1
// "castles" to g1, and a real castling must still be legal.
TEST_F(BookFiles, MovesThatDoNotFit)
{
    struct {
        const char* fen;
        const char *from, *to, *listed, *played;
    } cases[] = {
        {START_FEN, "e7", "e5", "e7e5", ""},
        {"k7/8/8/8/8/8/8/K3R3 w - -", "e1", "h1", "e1g1", "e1g1"},
        {"k7/8/8/8/8/8/8/K3R1B1 w - -", "e1", "h1", "e1g1", ""},
        {"4k3/8/8/8/8/8/8/R3K2R w KQ -", "e1", "h1", "e1g1", "e1g1"},
        {"4k3/8/8/8/8/8/8/R3K2R w - -", "e1", "h1", "e1g1", ""},  // no right
        {"3rk3/8/8/8/8/8/8/R3K3 w Q -", "e1", "a1", "e1c1", ""},  // through d1
        {"4k3/8/8/8/8/8/8/RN2K3 w Q -", "e1", "a1", "e1c1", ""},  // over the knight
        {"4k3/4r3/8/8/8/8/4B3/4K3 w - -", "e2", "d3", "e2d3", ""} // pinned
    };
    std::string book = dir + "/wrong.bin";
    for (const auto& c : cases) {
        set_test_position(game, c.fen);
        write_book(book, {{book_key(&game->pos), book_code(c.from, c.to), 10, 0}});
        Move m = 1;
        EXPECT_EQ(probe(book, &m), LISTING + c.listed + "  )\n") << c.fen;
        EXPECT_EQ(m ? coord(m) : "", c.played) << c.fen;
        EXPECT_EQ(probe(book, &m, true), std::string("  ") + c.listed
                                             + "  cnt=    10, weight= 100.00% -> 100.00%\nselecting " + c.listed
                                             + "\n");
    }
}

// An entry wins when the threshold lies strictly above the running sum in
// front of it; variety moves weight towards or away from the first entry
// (three quarters of its weight at 100); weight 0 or below never wins but
// as the first-entry fallback.
TEST(BookRoulette, ThresholdsAndVariety)
{
    BookEntry e[3] = {{1, 0, 60, 0}, {1, 0, 30, 0}, {1, 0, 10, 0}};
    BookRoulette r;
    auto pick = [&](const BookEntry* entries, int variety, uint32_t draw) {
        spin_book_roulette(entries, 3, variety, draw, &r);
        return r.selected;
    };
    const std::pair<uint32_t, int> draws[] = {{0, 0}, {600, 0}, {601, 1}, {900, 1}, {901, 2}};
    for (auto [draw, selected] : draws)
        EXPECT_EQ(pick(e, 25, draw), selected) << draw;
    EXPECT_EQ(std::tie(r.total, r.sum), std::make_tuple(100, 10000));
    EXPECT_EQ(pick(e, 100, 500), 1);
    EXPECT_EQ(std::tie(r.adjusted[0], r.adjusted[2], r.sum), std::make_tuple(10500, 5500, 23500));
    EXPECT_EQ(pick(e, 100, 766), 2); // 18001 > 18000
    EXPECT_EQ(pick(e, 0, 999), 1);
    EXPECT_EQ(std::tie(r.adjusted[2], r.sum), std::make_tuple(0, 6000));
    BookEntry z[3] = {{1, 0, 0, 0}, {1, 0, 50, 0}, {1, 0, 50, 0}};
    EXPECT_EQ(pick(z, 25, 0), 0) << "nothing qualifies at threshold 0";
    EXPECT_EQ(pick(z, 25, 500), 1);
    for (uint32_t d = 501; d < 1000; d++)
        ASSERT_EQ(pick(z, 25, d), 2) << d;
}

// Castling is stored as the king taking its rook; promotion pieces 1..4 are
// knight, bishop, rook, queen; other moves go there and back unchanged; the
// fields are big-endian.
TEST(BookEntry, MoveEncodings)
{
    EXPECT_EQ(book_move_to_move(book_code("e1", "a1")), make_move_code(4, 2));
    EXPECT_EQ(book_move_to_move(book_code("e8", "h8")), make_move_code(60, 62));
    EXPECT_EQ(book_move_to_move(book_code("e1", "g1")), make_move_code(4, 6));
    EXPECT_EQ(move_to_book_move(make_move_code(60, 58)), book_code("e8", "a8"));
    EXPECT_EQ(move_to_book_move(make_move_code(4, 6)), book_code("e1", "h1"));
    const Move pieces[5] = {0, PROMO_KNIGHT, PROMO_BISHOP, PROMO_ROOK, PROMO_QUEEN};
    for (int piece = 1; piece <= 6; piece++)
        EXPECT_EQ(book_move_to_move(uint16_t(book_code("b7", "b8") | piece << 12)),
                  make_move_code(49, 57) | (piece <= 4 ? pieces[piece] : 0));
    for (int from = 0; from < 64; from++)
        for (int to = 0; to < 64; to++)
            for (Move flag : pieces) {
                bool king_home = from == 4 || from == 60;
                if (king_home && (to == from + 2 || to == from - 2 || to == from + 3 || to == from - 4))
                    continue; // castling, by squares
                Move m = Move(make_move_code(from, to) | flag);
                EXPECT_EQ(book_move_to_move(move_to_book_move(m)), m);
            }
    BookEntry e = {0x0102030405060708ULL, 0x090A, 0x0B0C, 0x0D0E0F10u}, back;
    unsigned char bytes[BOOK_ENTRY_SIZE];
    encode_book_entry(&e, bytes);
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(bytes[i], i + 1);
    decode_book_entry(bytes, &back);
    EXPECT_EQ(std::tie(back.key, back.move, back.weight, back.learn), std::tie(e.key, e.move, e.weight, e.learn));
}
