
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
#include "uci/option_table.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace
{

// Rounds (about a millisecond each) the engine has to come to rest and quit
// once the input is spent; only a hang needs more.
constexpr int PATIENCE = 10000;
// Rounds one input may spend waiting on purpose, so that a session stays short.
constexpr int WAIT_BUDGET = 150;

const char* const FENS[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "bqnb1rkr/pp3ppp/3ppn2/2p5/5P2/P2P4/NPP1P1PP/BQ1BNRKR w HFhf - 2 9",
    "8/8/8/8/8/6k1/R7/7K w - -",
    "7k/7P/6K1/8/8/8/8/8 b - -",
    "R6k/8/6K1/8/8/8/8/8 b - -",
    "4k3/P7/8/8/8/8/7p/4K3 w - - 0 1",
    "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 2",
    "8/8/4k3/8/8/4K3/4P3/8 w - - 0 1",
    "1k6/8/8/8/8/8/8/QQQQKQQQ w - - 0 1",
    "8/8/8/8/8/8/8/8 w - - 0 1",
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq z9",
    "9/9/9 w",
    "K7/8/8/8/8/8/8/7k b - - 255 999",
};

const char* const NUMBERS[] = {"0", "-1", "1e400", "nan", "2147483648", "-0", "99999999999", "x"};
const char* const FILE_NAMES[] = {"",
                                  "config.txt",
                                  "missing.txt",
                                  ".",
                                  KORVEL_DATA_DIR "/books/lasker-trap.bin",
                                  KORVEL_DATA_DIR "/syzygy",
                                  KORVEL_DATA_DIR "/syzygy:" KORVEL_DATA_DIR,
                                  KORVEL_DATA_DIR "/epd/wac.epd",
                                  "tmp.pgn"};
const char* const JUNK_MOVES[] = {"0000", "a1a1", "e2e4x", "E2E4", "e7e8k", "e1g1", "e1h1", "e2", "Nf3"};

struct Script {
    FuzzInput in;
    int waited;
    std::string pending; // written text the engine has not been handed yet
};

std::string number(FuzzInput* in, int lo, int hi)
{
    return take_chance(in, 24) ? take_one_of(in, NUMBERS) : std::to_string(take_range(in, lo, hi));
}

// Keeps what one input may ask for to what one input may take: deep perft,
// many threads and long traces are legitimate but slow, and device files
// would block the reader.
std::string tame(std::string out)
{
    for (const char* device : {"/dev", "/proc", "/sys"})
        for (size_t at; (at = out.find(device)) != std::string::npos;)
            out.replace(at, std::strlen(device), "/nonexistent");
    for (auto [word, limit] : {std::pair{"perft", 2}, {"trace", 3}, {"Threads value", 16}}) {
        size_t at = out.find(word);
        if (at == std::string::npos)
            continue;
        size_t digits = out.find_first_not_of(' ', at + std::strlen(word));
        size_t end = digits == std::string::npos ? digits : out.find_first_of(" \r", digits);
        if (digits != std::string::npos)
            out.replace(digits, end == std::string::npos ? end : end - digits, std::to_string(limit));
    }
    return out;
}

void flush(Script* s, size_t n)
{
    n = std::min(n, s->pending.size());
    session_write(s->pending.data(), n);
    s->pending.erase(0, n);
}

void wait_rounds(Script* s, int rounds)
{
    rounds = std::min(rounds, WAIT_BUDGET - s->waited);
    if (rounds > 0) {
        s->waited += rounds;
        session_rounds(rounds);
    }
}

// Moves from `fen`, most of them legal and played in turn on a scratch
// game, some of them not.
std::string move_list(FuzzInput* in, const char* fen)
{
    static Game scratch;
    Position* pos = game_init(&scratch);
    read_fen(pos, fen);
    bool playable = position_problem(pos) == nullptr;
    std::string out;
    for (int i = take_chance(in, 12) ? take_range(in, 20, 400) : take_range(in, 0, 8); i > 0 && input_left(in); i--) {
        MoveEntry list[MAX_MOVES];
        int count = playable ? gen_legal(pos, list) : 0;
        if (!count || take_chance(in, 16) || pos->game_ply >= MAX_GAME_PLY - 4) {
            out += std::string(" ") + take_one_of(in, JUNK_MOVES);
            continue;
        }
        Move m = list[take_range(in, 0, count - 1)].move;
        char text[MOVE_TEXT_SIZE];
        move_to_coord(m, text, MOVE_STYLE_UCI);
        out += std::string(" ") + text;
        make_move(pos, m);
    }
    return out;
}

std::string position_command(FuzzInput* in)
{
    const char* fen = take_one_of(in, FENS);
    std::string line = take_chance(in, 3) ? "position startpos" : std::string("position fen ") + fen;
    if (take_chance(in, 2))
        line += " moves" + move_list(in, line.size() < 20 ? FENS[0] : fen);
    return line;
}

std::string go_command(FuzzInput* in)
{
    std::string line = "go";
    for (int parts = take_range(in, 0, 4); parts > 0; parts--) {
        switch (take_range(in, 0, 10)) {
        case 0:
            line += " wtime " + number(in, 0, 3000) + " btime " + number(in, 0, 3000);
            break;
        case 1:
            line += " winc " + number(in, 0, 100) + " movestogo " + number(in, 1, 40);
            break;
        case 2:
        case 3:
            line += " depth " + (take_chance(in, 8) ? number(in, 9, 80) : number(in, 1, 6));
            break;
        case 4:
            line += " nodes " + number(in, 1, 20000);
            break;
        case 5:
            line += " movetime " + number(in, 0, 40);
            break;
        case 6:
            line += " mate " + number(in, 0, 3);
            break;
        case 7:
            line += " searchmoves e2e4 a7a6 h2h4";
            break;
        case 8:
            line += " perft " + number(in, 0, 2);
            break;
        default:
            line += take_chance(in, 2) ? " infinite" : " ponder";
        }
    }
    return line;
}

// Every option of the table, with values a little beyond its range; the
// table and the thread pool stay small so that a session stays quick.
std::string setoption_command(FuzzInput* in)
{
    const OptionSpec& o = OPTIONS[take_range(in, 0, OPTION_COUNT - 1)];
    std::string value;
    switch (o.kind) {
    case OPTION_SPIN:
        value = number(in, o.min - 1, o.effect == EFFECT_HASH ? 64 : o.effect == EFFECT_THREADS ? 8 : o.max + 1);
        break;
    case OPTION_CHECK:
        value = take_one_of(in, {"true", "false", "TRUE", "xtruex", ""});
        break;
    case OPTION_STRING:
        value = take_one_of(in, FILE_NAMES);
        break;
    case OPTION_PAIR:
        value = number(in, 0, 250) + (take_chance(in, 2) ? "," + number(in, 0, 250) : "");
        break;
    default:
        break;
    }
    return take_chance(in, 8) ? "setoption name " + std::string(o.name)
                              : "setoption name " + std::string(o.name) + " value " + value;
}

std::string uci_command(FuzzInput* in)
{
    switch (take_range(in, 0, 15)) {
    case 0:
        return take_one_of(in, {"uci", "isready", "ucinewgame", "ponderhit", "debug on", "quit", "eval"});
    case 1:
    case 2:
    case 3:
        return position_command(in);
    case 4:
    case 5:
    case 6:
    case 7:
        return go_command(in);
    case 8:
    case 9:
        return "stop";
    case 10:
    case 11:
    case 12:
        return setoption_command(in);
    default:
        return take_line(in, 80);
    }
}

void generated_session(Script* s)
{
    FuzzInput* in = &s->in;
    while (input_left(in) && s->waited < WAIT_BUDGET && !session_quit_requested()) {
        int action = take_range(in, 0, 15);
        if (action <= 8)
            s->pending += tame(uci_command(in)) + "\n";
        else if (action == 9)
            s->pending += take_line(in, 120);
        else if (action == 10)
            flush(s, size_t(take_range(in, 0, int(s->pending.size())))); // a line split across reads
        else if (action == 11)
            s->pending += std::string(take_range(in, 4900, 5200), 'a') + "\n"; // past the line buffer
        else if (action == 12)
            s->pending += std::string("isr\0eady\r\n", 10);
        else {
            flush(s, s->pending.size());
            wait_rounds(s, take_range(in, 0, 12));
        }
    }
    flush(s, s->pending.size());
}

// The input as the session's own text, written in chunks whose sizes follow
// from its first byte.
void raw_session(Script* s, int shape)
{
    std::string text = tame(std::string(reinterpret_cast<const char*>(s->in.data + s->in.used), s->in.size - s->in.used));
    uint32_t r = uint32_t(shape) * 2654435761u + 1;
    for (size_t at = 0; at < text.size() && !session_quit_requested();) {
        r = r * 1103515245u + 12345u;
        size_t n = std::min<size_t>(1 + (r >> 16) % 97, text.size() - at);
        session_write(text.data() + at, n);
        at += n;
        wait_rounds(s, int((r >> 8) % 4));
    }
}

} // namespace

void session_fuzz_start()
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    if (FILE* f = std::fopen("config.txt", "w")) {
        std::fputs("Hash = 8\nMultiPV = 2\n  Threads = 4\nMtl_Pawn = 110,90\nnovalue\n=5\nConfigFilePath = config.txt\n", f);
        std::fclose(f);
    }
    session_engine_start(1, 16);
}

void run_session_input(const uint8_t* data, size_t size, bool console)
{
    Script s{{data, size, 0}, 0, std::string()};
    session_open(console);
    // Rows the tuner moved, froze or saved to params.txt go back to their
    // defaults: each input starts alike.
    std::remove("params.txt");
    set_frozen("all", false);
    init_eval_params(0);
    // As the switch -d sets it: a depth every search stops at, small for most
    // inputs so that sessions stay short.
    int shape = take_byte(&s.in);
    const int depths[8] = {1, 2, 3, 3, 4, 4, 5, MAX_SEARCH_DEPTH};
    limits.base_max_depth = limits.max_depth = uint8_t(depths[shape >> 5]);
    // The console is fed its own text: its words are many and plain, and
    // the seeds and the dictionary hold them.
    if (shape % 4 == 0 || console)
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
    if (count_busy_threads())
        fuzz_fail("a search thread is still busy after quit");
}
