// -anepd: every position of an EPD test suite searched with the limits of
// the command line, scored against its "bm", "am" and "c0" answers, and
// written with the engine's move and score to "analysis.epd".
#include "board/board_display.h"
#include "board/epd.h"
#include "board/fen.h"
#include "board/notation.h"
#include "output/output.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_report.h"
#include "search/threads.h"
#include "tools/epd_scoring.h"
#include "tools/line_reader.h"
#include "tools/offline_tools.h"
#include "tools/progress.h"
#include "tools/tool_search.h"

#include <cstdio>

namespace
{

constexpr int EPD_LINE_SIZE = 512;
constexpr double SILENT_MOVE_TIME = 9999.0; // -t 9999: only the summary is printed
constexpr int HASH_DEPTH = 3;               // shallower runs leave the table off
constexpr int POOL_DEPTH = 5;               // deeper searches go to the worker pool...
constexpr uint64_t POOL_NODES = 99999;      // ...unless a small node limit bounds them

struct SuiteTotals {
    int positions = 0;
    int correct = 0;
    uint64_t nodes = 0;
    double time = 0;
    double depth = 0;
    double bf = 0;
    int c0_score = 0;
    int c0_possible = 0;
};

void print_summary(const SuiteTotals& s)
{
    char text[128];
    int n = s.positions;
    send_line(format_line(text, sizeof text, "%d / %d correct best moves", s.correct, n));
    send_line(format_line(text, sizeof text, "total nodes= %0.0f", double(s.nodes)));
    send_line(format_line(text, sizeof text, "total time= %0.2f seconds", s.time));
    send_line(format_line(text, sizeof text, "avg depth= %0.1f", n ? s.depth / n : 0.0));
    // The node average is an integer division, as it always was.
    send_line(format_line(text, sizeof text, "avg nodes= %0.1f", n ? double(s.nodes / uint64_t(n)) : 0.0));
    send_line(format_line(text, sizeof text, "node_rate= %0.0f", double(s.nodes) / (s.time + 0.01)));
    send_line(format_line(text, sizeof text, "avg bf= %0.2f", n ? s.bf / n : 0.0));
    send_line(format_line(text, sizeof text, "score= %d / %d", s.c0_score, s.c0_possible));
    send_line("");
}

void print_result(const ToolSearch& r)
{
    if (search_reporter.pv_line)
        search_reporter.pv_line(worker(0), r.depth, r.score, r.pv, 1, ' ');
    char move[MOVE_TEXT_SIZE], text[256];
    move_to_coord(r.best, move, reported_move_style());
    double nodes = double(r.nodes);
    send_line(format_line(text, sizeof text, "move= %s, time= %0.3f, score= %d, nodes= %0.0f, %0.0fK nps", move,
                          r.seconds, r.score, nodes, nodes / (r.seconds + 0.001) * 0.001));
}

void analyse_suite(FILE* in, FILE* out)
{
    bool silent = limits.move_time == SILENT_MOVE_TIME;
    bool hash_off = limits.max_depth < HASH_DEPTH;
    bool threaded = limits.max_depth > POOL_DEPTH && (limits.node_limit == 0 || limits.node_limit > POOL_NODES);
    SearchReporter saved = search_reporter;
    if (silent) {
        search_reporter.pv_line = [](const SearchThread*, int, int, const Move*, int, char) {};
        search_reporter.status_line = [](int, int) {};
        search_reporter.current_move = [](Move, int) {};
    }

    static Game game;
    Position* pos = game_init(&game);
    SuiteTotals totals;
    char line[EPD_LINE_SIZE], text[EPD_LINE_SIZE + 64];
    for (int length; (length = read_line(in, line, sizeof line)) >= 0;) {
        if (!is_suite_position_line(line, length))
            continue;
        EpdFields f{};
        split_epd(line, &f);
        totals.positions++;
        set_position(pos, f.fen);
        if (!silent) {
            send_line(format_line(text, sizeof text, "pos= %d", totals.positions));
            send_line(line);
            print_board(pos);
        } else {
            progress_note("pos= %d, %d correct", totals.positions, totals.correct);
        }
        if (const char* problem = position_problem(pos)) {
            // Counted like any position, but a broken board is never searched.
            char line[160];
            send_error_line(format_line(line, sizeof line, "pos= %d not searched: %s", totals.positions, problem));
            continue;
        }

        tool_clear_hash();
        ToolSearch r;
        tool_search(pos, threaded, hash_off, &r);
        totals.nodes += r.nodes;
        totals.time += r.seconds;
        totals.depth += r.depth;
        totals.bf += effective_branching_factor();

        if (f.bm[0])
            totals.correct += bm_hits(pos, f.bm, r.best);
        else if (f.am[0])
            totals.correct += am_hit(pos, f.am, r.best);
        if (f.c0[0]) {
            C0Result c = c0_points(pos, f.c0, r.best);
            totals.c0_score += c.points;
            totals.c0_possible += c.possible;
        }

        if (!silent)
            print_result(r);
        if (r.best)
            std::fprintf(out, "%s bm %s%s; ce %d;\n", f.fen, SQUARE_NAMES[move_from(r.best)],
                         SQUARE_NAMES[move_to(r.best)], r.score);
        if (job_should_end(false))
            break;
    }
    search_reporter = saved;
    print_summary(totals);
}

} // namespace

void run_epd_analysis(const char* file)
{
    FILE* in = std::fopen(file, "r");
    if (!in)
        return;
    FILE* out = std::fopen("analysis.epd", "w");
    if (!out) {
        std::fclose(in);
        return;
    }
    char text[200];
    send_line(format_line(text, sizeof text, "Analyzing %.150s...", file));
    analyse_suite(in, out);
    std::fclose(out);
    std::fclose(in);
}
