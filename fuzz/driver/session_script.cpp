#include "session_script.h"

#include "board/fen.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "eval/params.h"
#include "fuzz_input.h"
#include "fuzz_support.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/threads.h"
#include "support/engine_session.h"
#include "uci/game.h"
#include "uci/option_table.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace
{

// Rounds (about a millisecond each) the engine has to come to rest and quit
// once the input is spent; only a hang needs more.
constexpr int PATIENCE = 10000;
// Rounds one input may spend waiting on purpose, so that a session stays short.
constexpr int WAIT_BUDGET = 150;
// Longest command line the loop keeps whole.
constexpr size_t LINE_LIMIT = 4992;

const char* const FENS[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "8/8/8/8/8/6k1/R7/7K w - -",
    "6k1/5ppp/8/8/8/8/5PPP/R5K1 w - -",
    "7k/7P/6K1/8/8/8/8/8 b - -",
    "R6k/8/6K1/8/8/8/8/8 b - -",
    "4k3/P7/8/8/8/8/7p/4K3 w - - 0 1",
    "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 2",
    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1",
    "8/8/4k3/8/8/4K3/4P3/8 w - - 0 1",
    "8/8/8/4k3/8/8/8/4KB1N w - - 0 1",
    "k7/8/8/8/8/8/8/K7 w - - 0 1",
    "7k/5Q2/6K1/8/8/8/8/8 b - - 0 1",
    "1k6/8/8/8/8/8/8/QQQQKQQQ w - - 0 1",
    "2r1q2k/7p/p1np1P1P/8/1pP2R2/8/PP1Q4/R1KN2r1 b - -",
    "r1b1k2r/1p1pppb1/p5pp/3P4/q2p1B2/3P1Q2/PPP2PPP/R3R1K1 w kq -",
    "8/8/8/8/8/8/8/8 w - - 0 1",
    "8/8/8/8/8/8/8/K6k w - - 0 1 extra fields here",
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq z9",
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR",
    "9/9/9 w",
    "K7/8/8/8/8/8/8/7k b - - 255 999",
};

const char* const EXTREME_NUMBERS[] = {"0",   "-1",         "-100",        "1e400", "nan",      "2147483648",
                                       "-0",  "99999999999", "4294967297", "x",     "18446744073709551617"};

const char* const FILE_NAMES[] = {"",
                                  "config.txt",
                                  "nested.txt",
                                  "missing.txt",
                                  ".",
                                  KORVEL_DATA_DIR "/books/lasker-trap.bin",
                                  KORVEL_DATA_DIR "/books/performance.bin",
                                  KORVEL_DATA_DIR "/syzygy",
                                  KORVEL_DATA_DIR "/syzygy:" KORVEL_DATA_DIR,
                                  KORVEL_DATA_DIR "/epd/wac.epd",
                                  KORVEL_DATA_DIR "/epd/bratko-kopec.epd",
                                  "tmp.pgn"};

struct Script {
    FuzzInput in;
    bool console;
    int waited;
    std::string pending; // written text the engine has not been handed yet
};

std::string number(FuzzInput* in, int lo, int hi)
{
    if (take_chance(in, 24))
        return take_one_of(in, EXTREME_NUMBERS);
    return std::to_string(take_range(in, lo, hi));
}

// Keeps what one input may ask for to what one input may take: deep perft,
// many threads and long traces are legitimate but slow, and device files
// would block the reader. Everything else passes as it is.
std::string tame(const std::string& line)
{
    std::string out = line;
    for (const char* device : {"/dev", "/proc", "/sys"})
        for (size_t at; (at = out.find(device)) != std::string::npos;)
            out.replace(at, std::strlen(device), "/nonexistent");
    size_t start = out.find_first_not_of(' ');
    if (start == std::string::npos)
        return out;
    auto cap_after = [&](const char* word, long limit) {
        size_t at = out.find(word, start);
        if (at == std::string::npos)
            return;
        size_t digits = out.find_first_not_of(' ', at + std::strlen(word));
        if (digits == std::string::npos)
            return;
        size_t end = out.find_first_of(" \r", digits);
        std::string value = out.substr(digits, end == std::string::npos ? std::string::npos : end - digits);
        long v = std::strtol(value.c_str(), nullptr, 10);
        if (v > limit || value.size() > 6)
            out.replace(digits, value.size(), std::to_string(limit));
    };
    if (out.compare(start, 5, "perft") == 0)
        cap_after("perft", 2);
    if (out.compare(start, 5, "trace") == 0)
        cap_after("trace", 3);
    if (out.find("Threads") != std::string::npos)
        cap_after("value", 16);
    return out;
}

// KORVEL_FUZZ_ECHO=1 shows on stderr what a session writes, for reading a
// saved input back.
void echo(const char* bytes, size_t n)
{
    static const bool on = std::getenv("KORVEL_FUZZ_ECHO") != nullptr;
    if (on) {
        std::fwrite(bytes, 1, n, stderr);
        std::fputs("|", stderr);
    }
}

void write_out(Script* s, size_t n)
{
    if (n > s->pending.size())
        n = s->pending.size();
    if (n) {
        echo(s->pending.data(), n);
        session_write(s->pending.data(), n);
        s->pending.erase(0, n);
    }
}

void flush(Script* s)
{
    write_out(s, s->pending.size());
}

void add_line(Script* s, const std::string& line)
{
    s->pending += tame(line);
    s->pending += '\n';
}

void wait_rounds(Script* s, int rounds)
{
    if (rounds > WAIT_BUDGET - s->waited)
        rounds = WAIT_BUDGET - s->waited;
    if (rounds <= 0)
        return;
    s->waited += rounds;
    session_rounds(rounds);
}

void write_coord(Move m, std::string* out)
{
    *out += SQUARE_NAMES[move_from(m)];
    *out += SQUARE_NAMES[move_to(m)];
    if (int t = promotion_type(m))
        *out += " pnbrqk"[t];
}

const char* const JUNK_MOVES[] = {"0000", "a1a1", "e2e4x", "z9z9", "E2E4", "e7e8k", "e1g1", "e8c8",
                                  "e2",   "e2e",  "h7h8q", "a2a1r", "e1h1", "@",    "e4",   "Nf3"};

// A list of moves from `fen`, most of them legal and played in turn on a
// scratch game, some of them not.
std::string move_list(FuzzInput* in, const char* fen)
{
    static Game scratch;
    Position* pos = game_init(&scratch);
    read_fen(pos, fen);
    bool playable = position_problem(pos) == nullptr;
    int n = take_chance(in, 12) ? take_range(in, 20, 400) : take_range(in, 0, 8);
    std::string out;
    for (int i = 0; i < n && input_left(in); i++) {
        if (i)
            out += ' ';
        if (!playable || take_chance(in, 16)) {
            out += take_one_of(in, JUNK_MOVES);
            continue;
        }
        MoveEntry list[MAX_MOVES];
        int count = gen_legal(pos, list);
        if (!count || pos->game_ply >= MAX_GAME_PLY - 4)
            break;
        Move m = list[take_range(in, 0, count - 1)].move;
        write_coord(m, &out);
        make_move(pos, m);
    }
    return out;
}

std::string position_command(FuzzInput* in)
{
    char fen[256];
    std::string line = "position";
    switch (take_range(in, 0, 7)) {
    case 0:
        line += " startpos";
        break;
    case 1:
        line += take_chance(in, 2) ? " fen" : "";
        break;
    case 2:
        line += " startpos fen ";
        line += fuzz_fen(in, fen, sizeof fen);
        break;
    default:
        line += " fen ";
        line += fuzz_fen(in, fen, sizeof fen);
        break;
    }
    if (take_chance(in, 2)) {
        std::string start = line.find(" fen ") != std::string::npos && line.find("startpos") == std::string::npos
                                ? line.substr(line.find(" fen ") + 5)
                                : std::string(FENS[0]);
        line += " moves ";
        line += move_list(in, start.c_str());
    }
    return line;
}

std::string go_command(FuzzInput* in)
{
    std::string line = "go";
    int parts = take_range(in, 0, 4);
    for (int i = 0; i < parts; i++) {
        switch (take_range(in, 0, 10)) {
        case 0:
            line += " wtime " + number(in, 0, 3000) + " btime " + number(in, 0, 3000);
            break;
        case 1:
            line += " winc " + number(in, 0, 100) + " binc " + number(in, 0, 100);
            break;
        case 2:
            line += " movestogo " + number(in, 1, 40);
            break;
        case 3:
        case 4:
            line += " depth " + (take_chance(in, 8) ? number(in, 9, 80) : number(in, 1, 6));
            break;
        case 5:
            line += " nodes " + number(in, 1, 20000);
            break;
        case 6:
            line += " movetime " + number(in, 0, 40);
            break;
        case 7:
            line += " infinite";
            break;
        case 8:
            line += " ponder";
            break;
        case 9:
            line += " wtime";
            break;
        default:
            line += " searchmoves e2e4";
            break;
        }
    }
    return line;
}

// Every option of the engine's table, with values a little beyond its
// range; the table and the thread pool stay small so that a session stays
// quick.
std::string setoption_command(FuzzInput* in)
{
    const OptionSpec& o = OPTIONS[take_range(in, 0, OPTION_COUNT - 1)];
    std::string name = o.name, value;
    switch (o.kind) {
    case OPTION_SPIN: {
        int hi = o.effect == EFFECT_HASH ? 64 : o.effect == EFFECT_THREADS ? 8 : o.max + 1;
        value = take_chance(in, 16) && o.effect == EFFECT_HASH ? "16384" : number(in, o.min - 1, hi);
        break;
    }
    case OPTION_CHECK:
        value = take_one_of(in, {"true", "false", "TRUE", "xtruex", ""});
        break;
    case OPTION_BUTTON:
        value = "x";
        break;
    case OPTION_STRING:
        value = take_one_of(in, FILE_NAMES);
        break;
    case OPTION_PAIR:
        value = number(in, 0, 250);
        if (take_chance(in, 2))
            value += "," + number(in, 0, 250);
        break;
    }
    switch (take_range(in, 0, 9)) {
    case 0:
        return "setoption name " + name; // no value: changes nothing
    case 1:
        return "setoption value " + value + " name " + name;
    case 2:
        return "setoption name   " + name + "   value   " + value;
    default:
        return "setoption name " + name + " value " + value;
    }
}

std::string uci_command(Script* s)
{
    FuzzInput* in = &s->in;
    switch (take_range(in, 0, 23)) {
    case 0:
        return "uci";
    case 1:
    case 2:
        return "isready";
    case 3:
        return "ucinewgame";
    case 4:
    case 5:
    case 6:
        return position_command(in);
    case 7:
    case 8:
    case 9:
    case 10:
        return go_command(in);
    case 11:
    case 12:
        return "stop";
    case 13:
        return "ponderhit";
    case 14:
    case 15:
    case 16:
        return setoption_command(in);
    case 17:
        return take_one_of(in, {"debug on", "debug off", "_show", "perft 2", "eval", "d", "quit"});
    case 18:
        return "  " + uci_command(s); // leading blanks
    case 19:
        return "go\tdepth 2";
    default:
        return take_line(in, 80);
    }
}

// A legal move of the game as the console reads them: coordinates or one of
// the SAN forms.
std::string console_move(FuzzInput* in)
{
    const Position* pos = game_position();
    MoveEntry list[MAX_MOVES];
    int count = gen_legal(pos, list);
    if (!count)
        return "e2e4";
    Move m = list[take_range(in, 0, count - 1)].move;
    char forms[4][MOVE_TEXT_SIZE];
    move_texts(pos, m, forms[0], forms[1], forms[2], forms[3]);
    return forms[take_range(in, 0, 3)];
}

const char* const EDITOR_LINES[] = {".", "#", "w", "b", "w Ke1 Ra1 Rh1 Pa2", "b Ke8 Qd8 Pe7", "xe1", "Kz9",
                                    "Qh8 Qg8 Qf8", "b Pa1", "w Kd4 Ke4", "."};

std::string console_command(Script* s)
{
    FuzzInput* in = &s->in;
    char fen_text[256];
    switch (take_range(in, 0, 32)) {
    case 0:
    case 1:
        return "move";
    case 2:
        return take_chance(in, 4) ? "self" : "move";
    case 3:
        return "swap";
    case 4:
        return "multipv " + number(in, 0, 4);
    case 5:
        return std::string(take_one_of(in, {"NMP_depth", "SEP_depth", "FP_depth", "ProbCut_depth", "LMP_depth",
                                            "LMR_depth", "Selectivity", "ponder"}))
               + " " + number(in, 0, 120);
    case 6:
        return "level " + number(in, 0, 60) + " " + number(in, 1, 30) + " " + number(in, 0, 2);
    case 7:
        return "depth " + number(in, 1, 5);
    case 8:
        return "target_nps " + number(in, 0, 200000);
    case 9:
        return "ss";
    case 10:
        return "edit";
    case 11:
        return take_one_of(in, EDITOR_LINES);
    case 12:
        return "trace " + number(in, 0, 3);
    case 13:
        return "undo";
    case 14:
        return "jump " + number(in, 0, 20);
    case 15: {
        const char* tags[] = {"WAC.001", "WAC.002", "WAC.150", "BK.01", "BK.24", "nothing", ""};
        return std::string("load ") + take_one_of(in, FILE_NAMES) + " " + take_one_of(in, tags);
    }
    case 16:
        return "save";
    case 17:
        return "book";
    case 18:
        return "perft " + number(in, 0, 2);
    case 19:
        return "hash";
    case 20:
        return "noise " + number(in, 0, 10000);
    case 21:
        return take_one_of(in, {"debug", "eval", "eval 2", "new", "d"});
    case 22:
        return take_chance(in, 8) ? "uci" : "d";
    case 23:
        return take_chance(in, 8) ? "quit" : "new";
    case 24:
    case 25:
    case 26:
    case 27:
        return console_move(in);
    case 28:
        return std::string("load ") + KORVEL_DATA_DIR "/epd/wac.epd WAC." + number(in, 100, 300);
    case 29:
        if (take_chance(in, 2))
            return fuzz_fen(in, fen_text, sizeof fen_text); // not a command: read as a move
        return take_one_of(in, {"freeze all", "thaw", "freeze mtl", "thaw king", "tune"});
    case 30:
        return std::string("tune ") + take_one_of(in, FILE_NAMES) + " " + take_one_of(in, {"0.001", "1", "0", "-1"})
               + " " + number(in, 1, 40);
    default:
        return take_line(in, 80);
    }
}

// Line ends and bytes the reader must survive.
std::string odd_text(FuzzInput* in)
{
    switch (take_range(in, 0, 5)) {
    case 0:
        return "isready\r\n";
    case 1:
        return "\n\n\n";
    case 2:
        return std::string(take_range(in, LINE_LIMIT - 8, LINE_LIMIT + 200), 'a') + "\n";
    case 3:
        return "is@ready\n";
    case 4:
        return std::string("isr\0eady\n", 9);
    default:
        return "go depth 1\nstop\nisready\n";
    }
}

void generated_session(Script* s)
{
    FuzzInput* in = &s->in;
    while (input_left(in) && s->waited < WAIT_BUDGET) {
        int action = take_range(in, 0, 15);
        if (action <= 8) {
            add_line(s, protocol_mode == 0 ? console_command(s) : uci_command(s));
        } else if (action == 9) {
            s->pending += take_line(in, 120);
        } else if (action == 10) {
            write_out(s, size_t(take_range(in, 0, int(s->pending.size())))); // a line split across reads
        } else if (action <= 12) {
            flush(s);
            wait_rounds(s, take_range(in, 0, 12));
        } else if (action == 13) {
            flush(s);
            int limit = WAIT_BUDGET - s->waited;
            for (int i = 0; i < limit && !session_idle() && !session_quit_requested(); i++)
                wait_rounds(s, 1);
        } else if (action == 14) {
            s->pending += odd_text(in);
        } else {
            flush(s); // the lines so far arrive in one read
        }
        if (session_quit_requested())
            return;
    }
    flush(s);
}

// The input as the session's own text, split at lines for the harness's
// limits and written in chunks whose sizes follow from its first byte.
void raw_session(Script* s, int shape)
{
    FuzzInput* in = &s->in;
    std::string text(reinterpret_cast<const char*>(in->data + in->used), in->size - in->used);
    std::string tamed;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            tamed += tame(text.substr(start));
            break;
        }
        tamed += tame(text.substr(start, end - start)) + "\n";
        start = end + 1;
    }
    uint32_t r = uint32_t(shape) * 2654435761u + 1;
    size_t at = 0;
    while (at < tamed.size() && !session_quit_requested()) {
        r = r * 1103515245u + 12345u;
        size_t n = 1 + (r >> 16) % 97;
        if (n > tamed.size() - at)
            n = tamed.size() - at;
        echo(tamed.data() + at, n);
        session_write(tamed.data() + at, n);
        at += n;
        if (s->waited < WAIT_BUDGET) {
            int rounds = int((r >> 8) % 4);
            s->waited += rounds;
            session_rounds(rounds);
        }
    }
}

void write_config_files()
{
    if (FILE* f = std::fopen("config.txt", "w")) {
        std::fputs("# a configuration\nHash = 8\nMultiPV = 2\nContempt=-500\n  Threads = 4\nMtl_Pawn = 110,90\n"
                   "Selectivity = 40 # comment\nnovalue\n=5\nConfigFilePath = nested.txt\n",
                   f);
        std::fclose(f);
    }
    if (FILE* f = std::fopen("nested.txt", "w")) {
        std::fputs("ConfigFilePath = nested.txt\nMultiPV = 1\n", f);
        std::fclose(f);
    }
}

} // namespace

const char* fuzz_fen(FuzzInput* in, char* buffer, size_t size)
{
    int kind = take_range(in, 0, 7);
    if (kind <= 3) {
        std::snprintf(buffer, size, "%s", take_one_of(in, FENS));
        return buffer;
    }
    if (kind <= 5) {
        // A known position with a few characters changed.
        std::snprintf(buffer, size, "%s", take_one_of(in, FENS));
        size_t len = std::strlen(buffer);
        for (int n = take_range(in, 1, 3); n > 0 && len; n--)
            buffer[take_range(in, 0, int(len) - 1)] = "pnbrqkPNBRQK12345678/ wb-KQkqa3e6"[take_range(in, 0, 33)];
        return buffer;
    }
    // A random board: men on random squares, usually with a king each.
    char board[64];
    std::memset(board, 0, sizeof board);
    if (take_range(in, 0, 3)) {
        board[take_range(in, 0, 63)] = 'K';
        board[take_range(in, 0, 63)] = 'k';
    }
    for (int n = take_range(in, 0, 30); n > 0; n--)
        board[take_range(in, 0, 63)] = "PNBRQKpnbrqk"[take_range(in, 0, 11)];
    std::string out = fuzz_placement(board);
    out += take_chance(in, 2) ? " w " : " b ";
    out += take_one_of(in, {"-", "KQkq", "K", "q", "Kk"});
    out += ' ';
    out += take_one_of(in, {"-", "-", "e3", "d6", "a6", "h3"});
    std::snprintf(buffer, size, "%s", out.c_str());
    return buffer;
}

void session_fuzz_start()
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    write_config_files();
    session_engine_start(1, 16);
}

void run_session_input(const uint8_t* data, size_t size, bool console)
{
    Script s{{data, size, 0}, console, 0, std::string()};
    session_open(console);
    // Rows the tuner moved, froze or saved to params.txt (in the scratch
    // directory) go back to their defaults: each input starts alike.
    std::remove("params.txt");
    set_frozen("all", false);
    init_eval_params(0);
    // As the switch -d sets it: a depth every search stops at, small for most
    // inputs so that sessions stay short; go depth and the console's depth
    // may raise it.
    int shape = take_byte(&s.in);
    const int depths[8] = {1, 2, 3, 3, 4, 4, 5, MAX_SEARCH_DEPTH};
    limits.base_max_depth = limits.max_depth = uint8_t(depths[shape >> 5]);
    if (shape % 4 == 0)
        raw_session(&s, shape);
    else
        generated_session(&s);

    if (!session_quit_requested() && protocol_mode == 1) {
        // An interface ends its lines: a partial one would swallow the stop.
        session_write_line("\nstop");
        if (!session_until_idle(PATIENCE))
            fuzz_fail("the engine did not come to rest after stop");
    }
    if (!session_quit_requested() && !session_close(PATIENCE))
        fuzz_fail("the engine did not quit at the end of its input");
    // Quit stops every search: nothing may still be running.
    if (count_busy_threads())
        fuzz_fail("a search thread is still busy after quit");
}
