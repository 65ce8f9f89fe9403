#include "tools/tuner.h"

#include "board/epd.h"
#include "board/fen.h"
#include "eval/eval_cache.h"
#include "eval/eval_tables.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/search_report.h"
#include "search/search_thread.h"
#include "search/threads.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int LINE_SIZE = 254;
constexpr int MAX_CE = 5000;
constexpr double NO_RESULT = -9.0;
constexpr int POLL_EVERY = 8000;
constexpr int SAVE_EVERY = 300000;
constexpr int REPORT_EVERY = 2000000;

// Rounds half away from zero, exactly.
inline int round_half_away(double x)
{
    double t = std::trunc(x);
    if (std::fabs(x - t) >= 0.5)
        t += x > 0 ? 1 : -1;
    return int(t);
}

void update_row(int row, float err, double learning_rate, double phase)
{
    EvalParam& p = param_table[row];
    if (p.frozen)
        return;
    // A listed row whose weights cancelled out (coefficient 0) moves by
    // nothing here and stops at the rounding test below: cheaper than a
    // test for it that the processor cannot predict.
    p.opening_f -= p.coef * learning_rate * ((1 - phase) * err);
    p.endgame_f -= p.coef * learning_rate * (phase * err);
    p.coef = 0;
    // The packed value is always the rounding of the working copies, and
    // most steps move a copy by a fraction of a point: while both stay
    // closer than half a point to it, rounding would give it again. Only a
    // change of the rounded value reaches the tables derived from the row
    // (mobility, king danger), which are costly to rebuild.
    if (std::fabs(p.opening_f - opening_of(p.score)) < 0.5 && std::fabs(p.endgame_f - endgame_of(p.score)) < 0.5)
        return;
    Score rounded = make_score(round_half_away(p.opening_f), round_half_away(p.endgame_f));
    if (rounded == p.score)
        return;
    p.score = rounded;
    refresh_derived_row(row);
}

// Reads the number after `tag`, up to the next ";". Results are written
// "1.0", "0.5" or "0.0": those, exact in binary, are read here, anything
// else by the library.
double number_after(const char* line, const char* tag, bool* found)
{
    const char* p = std::strstr(line, tag);
    *found = p != nullptr;
    if (!p)
        return 0.0;
    p += std::strlen(tag);
    auto digit = [](char c) { return c >= '0' && c <= '9'; };
    if (digit(p[0]) && p[1] == '.' && (p[2] == '0' || p[2] == '5') && !digit(p[3]) && p[3] != 'e' && p[3] != 'E')
        return (p[0] - '0') + (p[2] == '5' ? 0.5 : 0.0);
    return std::atof(p);
}

} // namespace

// The game result a line carries, from the side to move's view, or
// NO_RESULT; `probability` gets the probability its labels give.
double line_result(const char* line, int side, int ce, double* probability)
{
    double r = NO_RESULT;
    bool found;
    double gr = number_after(line, " gr ", &found);
    if (found)
        r = gr;
    if (const char* c9 = std::strstr(line, " c9 ")) {
        const char* t = c9 + 4;
        while (*t == '"' || *t == ' ')
            t++;
        if (!std::strncmp(t, "1-0", 3))
            r = 1.0;
        else if (!std::strncmp(t, "0-1", 3))
            r = 0.0;
        else if (!std::strncmp(t, "1/2", 3))
            r = 0.5;
        if (side == BLACK)
            r = 1 - r;
    }
    if (const char* bracket = std::strchr(line, '[')) {
        const char* t = bracket + 1;
        double p = !std::strncmp(t, "1.0", 3) ? 1.0 : !std::strncmp(t, "0.0", 3) ? 0.0 : 0.5;
        if (side == BLACK)
            p = 1 - p;
        *probability = p;
        return p;
    }
    *probability = win_probability(ce);
    return r;
}

float tuning_target(const char* line, int side, int ce)
{
    double p;
    double r = line_result(line, side, ce, &p);
    return float(r >= 0 ? 0.9 * r + 0.1 * p : p);
}

namespace
{

bool read_line(FILE* f, char* line)
{
    if (!std::fgets(line, LINE_SIZE, f))
        return false;
    // A longer line is read to its end and cut here.
    if (!std::strchr(line, '\n')) {
        int c;
        while ((c = std::fgetc(f)) != EOF && c != '\n') {
        }
    }
    return true;
}

// The training loop; `watch_console` polls the input as the interactive
// command does.
void run_tuner(const char* file_name, double learning_rate, int mode, int max_positions, bool watch_console)
{
    FILE* f = std::fopen(file_name, "r");
    if (!f)
        return;
    // Lines are short and many: a large buffer saves a system call every
    // few dozen of them.
    static char buffer[1 << 20];
    std::setvbuf(f, buffer, _IOFBF, sizeof buffer);
    std::fseek(f, 0, SEEK_END);
    double size = double(std::ftell(f));
    std::fseek(f, 0, SEEK_SET);
    char text[512];
    send_line(format_line(text, sizeof text, "Training using %.300s, %0.0f bytes ...", file_name, size));

    SearchThread* t = worker(0);
    if (!t) {
        std::fclose(f);
        return;
    }
    limits.stop_signal = STOP_NONE;
    uint64_t positions = 0, pass_lines = 0, lines_read = 0;
    double error_sum = 0, pass_start_error = 0, report_error = 0, best_average = 1.0;
    int pass = 1;
    // Lines a pass passed over, by reason: a pass that skipped any says so.
    uint64_t unlabelled = 0, beyond_ce = 0;
    char line[LINE_SIZE];
    EpdFields fields;
    for (;;) {
        if (limits.stop_signal != STOP_NONE)
            break;
        if (!read_line(f, line)) {
            double average = pass_lines ? (error_sum - pass_start_error) / double(pass_lines) : 0.0;
            send_line(format_line(text, sizeof text, "avg err= %0.5f", average));
            if (unlabelled || beyond_ce)
                send_line(format_line(text, sizeof text,
                                      "skipped %.0f lines: %.0f with neither a ce score nor a result, %.0f with a ce "
                                      "beyond %d",
                                      double(unlabelled + beyond_ce), double(unlabelled), double(beyond_ce), MAX_CE));
            unlabelled = beyond_ce = 0;
            // A file without a single usable line would be read forever.
            if (!pass_lines)
                break;
            pass++;
            pass_start_error = error_sum;
            pass_lines = 0;
            if (std::fseek(f, 0, SEEK_SET) != 0)
                send_line("error setting file position");
            send_line(format_line(text, sizeof text, "pass = %d, rewinding EPD file", pass));
            if (!read_line(f, line))
                break;
        }
        if (line[0] == ' ' || line[0] == '#' || line[0] == ';')
            continue;
        fields.fen[0] = fields.ce[0] = 0;
        split_epd(line, &fields);
        if (!fields.fen[0])
            continue;
        set_position(&t->pos, fields.fen);
        if (position_problem(&t->pos)) {
            send_line(line);
            break;
        }
        float target;
        if (fields.ce[0]) {
            int ce = std::atoi(fields.ce);
            if (ce < -MAX_CE || ce > MAX_CE) {
                beyond_ce++;
                continue;
            }
            target = tuning_target(line, t->pos.side, ce);
        } else {
            // The common sets label a position with the game's result
            // alone: it trains towards that result.
            double p;
            double r = line_result(line, t->pos.side, 0, &p);
            if (r < 0) {
                unlabelled++;
                continue;
            }
            target = float(r);
        }
        if (mode == 1) {
            int s = train_position(t, target, learning_rate);
            error_sum += std::fabs(win_probability(s) - target);
            positions++;
        }
        // The console is watched by lines read, so that a reading-only run
        // can be told to quit too.
        pass_lines++;
        lines_read++;
        if (watch_console && lines_read % POLL_EVERY == POLL_EVERY - 1) {
            if (job_should_end(true))
                break;
        }
        if (mode == 1 && positions % SAVE_EVERY == SAVE_EVERY - 1)
            write_params_file("params.txt");
        if (mode == 1 && positions % REPORT_EVERY == REPORT_EVERY - 1) {
            double average = (error_sum - report_error) / REPORT_EVERY;
            bool best = average < best_average;
            if (best)
                best_average = average;
            send_line(format_line(text, sizeof text, "%.0fM positions, lr= %0.1e, avg_err= %0.5f %s",
                                  double(positions) * 0.000001, learning_rate, average, best ? " *" : "  "));
            report_error = error_sum;
        }
        if (positions >= uint64_t(max_positions < 0 ? 0 : max_positions) && mode == 1)
            break;
    }
    std::fclose(f);
    // The tuned values are kept whenever a run ends, not only at the
    // checkpoints.
    if (mode == 1)
        write_params_file("params.txt");
    send_line("");
    send_line("done.");
}

} // namespace

double win_probability(int score)
{
    float x = -0.007f * float(score);
    return 1.0 / (1.0 + std::exp(double(x)));
}

int train_position(SearchThread* t, float target, double learning_rate)
{
    EvalCaches* c = &t->eval;
    c->tuning = 1;
    c->touched_count = 0;
    int s = evaluate(&t->pos, c, t->pos.side, 1, 0, nullptr);
    c->tuning = 0;
    float err = float(win_probability(s)) - target;
    if (t->pos.side == BLACK)
        err = -err;
    double phase = c->last_phase;
    // Only rows the evaluation touched can hold a coefficient; a full list
    // means some may have been left out, so then every row is looked at.
    if (c->touched_count < MAX_TOUCHED_ROWS) {
        for (int i = 0; i < c->touched_count; i++)
            if (c->touched[i] > 0)
                update_row(c->touched[i], err, learning_rate, phase);
    } else {
        for (int row = 1; row < param_count; row++)
            update_row(row, err, learning_rate, phase);
    }
    return s;
}

int write_params_file(const char* file)
{
    FILE* f = std::fopen(file, "w");
    if (!f)
        return 0;
    for (int row = 0; row < param_count; row++) {
        Score s = param_table[row].score;
        std::fprintf(f, "fset(\"%s\",%d,%d);\n", param_table[row].name, opening_of(s), endgame_of(s));
    }
    std::fclose(f);
    return 1;
}

void tune(const char* file_name, double learning_rate, int mode, int max_positions)
{
    run_tuner(file_name, learning_rate, mode, max_positions, true);
}

void train_from_file(const char* file_name, double learning_rate, int max_positions)
{
    run_tuner(file_name, learning_rate, 1, max_positions, false);
}
