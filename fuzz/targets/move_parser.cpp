// The move readers: the console's parser of coordinate and SAN text, the
// writer of the four forms it accepts, and the coordinate moves of
// "position ... moves". Text the parser accepts must name a legal move; every
// form written for a legal move must read back as that move when it reads
// at all, and the coordinate form always; the game a move list leaves must
// be consistent.
// fuzz-test-runs: 5000
#include "board/fen.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position_check.h"
#include "board/zobrist.h"
#include "fuzz_input.h"
#include "fuzz_support.h"
#include "output/output.h"
#include "session_script.h"
#include "uci/game.h"
#include "uci/uci_commands.h"

#include <cstring>
#include <string>
#include <vector>

namespace
{

Game game;

bool is_legal_move(const Position* pos, Move m)
{
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list);
    for (int i = 0; i < n; i++)
        if (list[i].move == m)
            return true;
    return false;
}

void check_forms(const Position* pos, Move m)
{
    char forms[4][MOVE_TEXT_SIZE];
    move_texts(pos, m, forms[0], forms[1], forms[2], forms[3]);
    for (int f = 0; f < 4; f++) {
        Move read = 0;
        int ok = parse_move(pos, forms[f], &read);
        if (ok && read != m)
            fuzz_fail("a written move form reads back as another move");
        if (f == 0 && !ok)
            fuzz_fail("the coordinate form of a legal move does not read back");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_silence_stdout();
    init_zobrist();
    set_game_position(START_FEN);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput in{data, size, 0};
    protocol_mode = int16_t(take_range(&in, 0, 1));
    char fen[256];
    fuzz_fen(&in, fen, sizeof fen);
    std::string text(reinterpret_cast<const char*>(data + in.used), size - in.used);
    text = text.substr(0, text.find('\0'));

    Position* pos = game_init(&game);
    set_position(pos, fen);
    if (!position_problem(pos)) {
        // Words of the text as console moves, each played when it reads.
        size_t start = 0;
        for (int words = 0; words < 64 && start < text.size(); words++) {
            size_t end = text.find_first_of(" \n", start);
            std::string word = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
            start = end == std::string::npos ? text.size() : end + 1;
            Move m = 0;
            if (!parse_move(pos, word.c_str(), &m))
                continue;
            if (!is_legal_move(pos, m))
                fuzz_fail("the parser read text as a move that is not legal");
            if (pos->game_ply >= MAX_GAME_PLY - 2)
                break;
            make_move(pos, m);
        }
        // The written forms of a few legal moves.
        MoveEntry list[MAX_MOVES];
        int n = gen_legal(pos, list);
        for (int k = 0; k < 3 && n > 0; k++)
            check_forms(pos, list[take_range(&in, 0, n - 1)].move);
        char coord[MOVE_TEXT_SIZE];
        if (n > 0)
            move_to_coord(list[0].move, coord, protocol_mode == 1 ? MOVE_STYLE_UCI : MOVE_STYLE_CONSOLE);
    }

    // The same text as the move list of a position command.
    std::string command = std::string("fen ") + fen + " moves " + text;
    std::vector<char> buffer(command.begin(), command.end());
    buffer.push_back(0);
    position_command(buffer.data());
    const char* fault = position_fault(game_position());
    if (*fault)
        fuzz_fail(fault);
    return 0;
}
