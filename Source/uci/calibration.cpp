#include "uci/calibration.h"

#include "board/fen.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "output/output.h"
#include "search/clock.h"
#include "search/limits.h"
#include "search/timeman.h"

namespace
{

constexpr double CALIBRATION_SECONDS = 0.3;
constexpr double SEARCH_SPEED_FACTOR = 1.17; // search nodes per counted node of the loop below

} // namespace

void calibrate_speed()
{
    static Game scratch;
    Position* pos = game_init(&scratch);
    set_position(pos, START_FEN);
    double start = now_seconds(), elapsed = 0;
    uint64_t nodes = 0;
    MoveEntry list[MAX_MOVES];
    do {
        nodes++;
        gen_all(pos, list);
        int made = 0;
        for (MoveEntry* e = list; e->move != MOVE_END && made < 10; e++) {
            if (!is_legal(pos, pos->side, e->move))
                continue;
            make_move(pos, e->move);
            unmake_move(pos);
            made++;
        }
        elapsed = now_seconds() - start;
    } while (elapsed < CALIBRATION_SECONDS);
    double speed = double(nodes) * SEARCH_SPEED_FACTOR / (elapsed + 0.001);
    limits.full_nps = speed;
    limits.full_elo = elo_of_rate(speed);
    char line[128];
    send_line(format_line(line, sizeof line, "info string et= %.3f, calibration nps= %0.0f", elapsed, speed));
}
