#include "search/timeman.h"

#include "eval/eval_options.h"
#include "eval/params.h"
#include "search/clock.h"
#include "search/limits.h"
#include "search/search_config.h"
#include "search/search_params.h"
#include "search/search_report.h"
#include "search/search_thread.h"
#include "search/search_values.h"
#include "search/threads.h"
#include "search/tt.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

constexpr double MIN_TARGET = 0.002;
constexpr double MIN_ELAPSED = 0.015;

double& own_clock(int side)
{
    return side == WHITE ? limits.white_time : limits.black_time;
}

void set_target_time()
{
    const Position* root = root_position();
    int side = root->side;
    int ply = root->game_ply;
    double& clock = own_clock(side);
    if (limits.fixed_limit == 1) {
        limits.target_time = limits.move_time;
        clock = limits.move_time;
    } else {
        int divisor;
        bool several_left = true;
        if (limits.fixed_limit != 0) {
            if (limits.level_moves > 0) {
                int m = limits.level_moves;
                limits.moves_to_go = int16_t(m - (ply / 2) % m);
            }
            divisor = limits.moves_to_go + 1;
            several_left = limits.moves_to_go > 2;
        } else if (ply < 20) {
            limits.moves_to_go = int16_t(32 - ply / 2);
            divisor = limits.moves_to_go + 1;
        } else {
            limits.moves_to_go = 23;
            divisor = 24;
        }
        double t = clock / divisor;
        if (search_config.ponder && several_left)
            t *= 1.3;
        if (limits.elo_in_force < 2400)
            t *= 0.85;
        if (limits.increment > 0)
            t += limits.increment * clock / (2 * limits.increment + clock);
        t = std::min(t, 0.65 * clock - 5 * limits.move_overhead);
        limits.target_time = t;
    }
    if (limits.target_time < MIN_TARGET)
        limits.target_time = MIN_TARGET;
}

void set_strength()
{
    double full = limits.full_nps;
    limits.target_nps = full;
    limits.elo_in_force = limits.full_elo;
    if (search_config.limit_strength && search_config.elo >= 1) {
        double rate = rate_for_elo(search_config.elo);
        if (rate <= full - 30) {
            limits.target_nps = rate;
            limits.elo_in_force = search_config.elo;
        }
    }
    limits.rate_limited = limits.target_nps < full - 20;
    double elo = limits.elo_in_force;
    search_params.strength_reduction_rate =
        elo >= 1 && elo < 2200 ? int(std::min(150.0, 3000.0 / (limits.target_nps + 1))) : 0;
}

} // namespace

double elo_of_rate(double x)
{
    return 144.0 * std::log(x) + 1014.0 - 3000.0 / (x + 1);
}

double rate_for_elo(double elo)
{
    double lo = 10, hi = 10000000;
    for (int i = 0; i < 100; i++) {
        double mid = (lo + hi) / 2;
        double e = elo_of_rate(mid);
        if (std::fabs(e - elo) <= 0.5)
            return mid;
        if (e < elo)
            lo = mid;
        else
            hi = mid;
    }
    return (lo + hi) / 2;
}

void prepare_search()
{
    limits.start_time = now_seconds();
    limits.elapsed = 0.0;
    limits.move_overhead = search_config.move_overhead * 0.001;
    set_strength();
    set_target_time();

    tt_new_search();
    tt.use_hash = search_config.hash_mb >= 1;
    limits.root_score = root_position()->fifty > 100 ? 0 : -MATE;
    for (auto& n : limits.nodes_at_depth)
        n = 0;
    for (auto& s : limits.root_score_by_depth)
        s = 0;
    limits.stop_signal = STOP_NONE;
    limits.single_reply = 0;
    limits.best_change_depth = 0;
    limits.root_line_state = 0;
    limits.completed_depth = 0;
    limits.best_move = limits.ponder_move = 0;
    limits.best_score = 0;
    limits.best_line[0] = 0;
    limits.search_depth = 0;
    limits.search_started = false;
    eval_options.engine_side = root_position()->side;
    limits.random_word = uint32_t(std::rand()) * 2654435761u;
    limits.search_mode = limits.search_state == PONDER_REQUESTED ? MODE_PONDER : MODE_TIMED;
    if (search_config.changed) {
        search_reporter.message("setting search and eval params...");
        build_search_params();
        init_eval_params(0);
        search_config.changed = 0;
        set_strength();
    }
}

bool search_is_timed()
{
    return limits.fixed_limit != 1 || limits.move_time < 1000000.0;
}

void start_clock_on_ponderhit()
{
    limits.search_mode = MODE_TIMED;
}

bool time_is_up(double elapsed, int depth)
{
    if (limits.stop_signal != STOP_NONE || limits.search_mode != MODE_TIMED || depth <= 1 || elapsed < MIN_ELAPSED)
        return false;
    double remaining = std::max(0.0, own_clock(root_position()->side) - elapsed);
    double t = limits.target_time;
    double overhead = 0;
    if (limits.fixed_limit != 1) {
        overhead = std::min(limits.move_overhead, 0.025);
        int score = limits.root_score;
        int margin = std::abs(score) >= 336 ? std::abs(score) / 16 : 20;
        int state = limits.root_line_state;
        double extra = 0;
        if (state == 1) {
            extra = remaining * 0.25;
        } else if (state == 2) {
            extra = remaining * 0.1;
        } else if (depth > 3) {
            // Spend more while the score keeps falling, less while the move stands.
            for (int back = 1; back <= 2; back++)
                if (limits.root_score_by_depth[depth - back] >= score + margin)
                    extra += remaining * 0.03;
            if (depth - limits.best_change_depth > 4)
                extra -= t / 4;
        }
        t += extra;
    }
    t -= overhead;
    return (limits.single_reply && depth >= 6) || 5 * overhead > remaining || elapsed >= t;
}

void check_time()
{
    double elapsed = now_seconds() - limits.start_time;
    limits.elapsed = elapsed;
    SearchThread* main = worker(0);
    if (main && time_is_up(elapsed, main->iteration_depth))
        limits.stop_signal = STOP_REPORT;
}
