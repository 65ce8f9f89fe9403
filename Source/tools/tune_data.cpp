#include "tools/tune_data.h"

#include "board/epd.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "output/output.h"
#include "search/search_config.h"
#include "search/search_report.h"
#include "tools/line_reader.h"
#include "tools/offline_tools.h"
#include "tools/progress.h"
#include "tools/tool_search.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int TUNE_LINE_SIZE = 254; // lines of up to 253 characters
constexpr int GR_TEXT_SIZE = 16;    // the result number: at most 15 characters
constexpr int MAX_CE = 1200;
constexpr int WON_MIN_CE = -100;  // a won game whose side stood worse than this is noise
constexpr int LOST_MAX_CE = 100;  // and a lost one that stood better
constexpr int DRAWN_MAX_CE = 250; // a draw far from equal
constexpr int LOST_MATE = -9000;
constexpr double LOGISTIC_SCALE = 0.007; // centipawns to a winning chance
constexpr int POSITIONS_PER_NOTE = 4096;
constexpr double SILENT_NOISE = 9999;

int read_ce(const char* text)
{
    long v = std::strtol(text, nullptr, 10);
    return int(v > 100000 ? 100000 : v < -100000 ? -100000 : v);
}

double read_gr(const char* after)
{
    char text[GR_TEXT_SIZE];
    int n = 0;
    while (n < GR_TEXT_SIZE - 1 && after[n] && after[n] != ';') {
        text[n] = after[n];
        n++;
    }
    text[n] = 0;
    return std::atof(text);
}

bool set_up(Position* pos, const char* fen)
{
    set_position(pos, fen);
    return position_problem(pos) == nullptr;
}

} // namespace

bool tune_keeps(int ce, double gr)
{
    if (gr < 0 || gr > 1)
        return false;
    if (std::abs(ce) > MAX_CE)
        return false;
    if (gr == 1.0 && ce < WON_MIN_CE)
        return false;
    if (gr == 0.0 && ce > LOST_MAX_CE)
        return false;
    if (gr == 0.5 && std::abs(ce) > DRAWN_MAX_CE)
        return false;
    return true;
}

int tune_record(Position* pos, const Move* pv, int ce, double gr, char* line, int size)
{
    int played = 0;
    for (; played < MAX_PLY && pv[played]; played++) {
        Move m = pv[played];
        if (!is_legal_move(pos, m))
            break;
        make_move(pos, m);
    }
    if (played % 2) {
        ce = -ce;
        gr = 1.0 - gr;
    }
    char fen[128];
    write_fen(pos, fen);
    std::snprintf(line, size_t(size), "%s ce %d; gr %0.1f;\n", fen, ce, gr);
    return played;
}

TuneRun make_tune_data(const char* path, const char* out_path)
{
    TuneRun run{false, 0, 0.0};
    FILE* in = std::fopen(path, "r");
    if (!in)
        return run;
    FILE* out = std::fopen(out_path, "w");
    if (!out) {
        std::fclose(in);
        return run;
    }
    run.opened = true;
    char text[TUNE_LINE_SIZE + 64];
    send_line(format_line(text, sizeof text, "Creating file %.200s", out_path));

    // The search's own lines would bury the progress lines.
    SearchReporter saved = search_reporter;
    if (search_config.noise >= SILENT_NOISE) {
        search_reporter.pv_line = [](const SearchThread*, int, int, const Move*, int, char) {};
        search_reporter.status_line = [](int, int) {};
        search_reporter.current_move = [](Move, int) {};
    }
    static Game game;
    Position* pos = game_init(&game);
    double error_sum = 0;
    int lines = 0;
    char line[TUNE_LINE_SIZE];
    while (read_line(in, line, sizeof line) >= 0) {
        progress_note("%d lines read, %d positions written", lines, run.written);
        lines++;
        if (line[0] == ';' || line[0] == '#' || line[0] == ' ')
            continue;
        EpdFields f{};
        split_epd(line, &f);
        if (!f.fen[0] || !f.ce[0])
            continue;
        int ce = read_ce(f.ce);
        const char* gr_text = std::strstr(line, " gr ");
        // Lines without a result (an "sf11=" evaluation only) are set up but not used.
        if (!set_up(pos, f.fen)) {
            send_line(line);
            break;
        }
        if (!gr_text)
            continue;
        double gr = read_gr(gr_text + 4);
        if (!tune_keeps(ce, gr))
            continue;

        ToolSearch r;
        tool_search(pos, true, false, &r);
        if (r.score >= LOST_MATE && std::abs(r.score) <= MAX_CE) {
            char record[TUNE_LINE_SIZE + 64];
            tune_record(pos, r.pv, ce, gr, record, sizeof record);
            std::fputs(record, out);
            if (run.written % POSITIONS_PER_NOTE == 0) {
                char note[32];
                send_line(format_line(note, sizeof note, " n= %d", run.written));
            }
            run.written++;
            error_sum += std::fabs(1.0 / (1.0 + std::exp(-LOGISTIC_SCALE * r.score)) - gr);
        }
        if (job_should_end(false))
            break;
    }
    search_reporter = saved;
    std::fclose(out);
    std::fclose(in);
    run.error = run.written ? error_sum / run.written : 0.0;
    return run;
}

double make_tune_file(const char* file)
{
    TuneRun run = make_tune_data(file, "tune_new.epd");
    if (!run.opened)
        return 1.0;
    // Not part of the file's report on stdout; the figure a tuner run is judged by.
    char line[96];
    send_error_line(
        format_line(line, sizeof line, "positions= %d, mean absolute error= %0.6f", run.written, run.error));
    return run.error;
}
