// Korvel: start-up, the command line and shut-down.
#include "board/fen.h"
#include "board/zobrist.h"
#include "book/book_builder.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "output/output.h"
#include "search/limits.h"
#include "search/search_params.h"
#include "search/search_thread.h"
#include "search/search_trace.h"
#include "search/threads.h"
#include "search/timeman.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"
#include "tools/benchmark.h"
#include "tools/label_games.h"
#include "tools/offline_tools.h"
#include "tools/tuner.h"
#include "uci/bounded_input.h"
#include "uci/calibration.h"
#include "uci/engine_loop.h"
#include "uci/game.h"
#include "uci/options.h"
#include "uci/search_output.h"
#include "uci/settings.h"
#include "uci/uci_commands.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

enum RunMode {
    RUN_ENGINE = 1,
    RUN_EPD = 2,
    RUN_SCAN_PGN = 3, // 3..6 for variants 1..4
    RUN_MATCH = 7,
    RUN_BENCH = 8,
    RUN_BENCH2 = 9,
    RUN_PBENCH = 10,
    RUN_MKBOOK = 11,
    RUN_MKCONFIG = 12,
    RUN_MKTUNE = 13,
    RUN_TRAIN = 14, // the tuner as a batch job
    RUN_LABEL = 15, // games with results to labelled positions
    RUN_SHORT_BENCH = 16, // "bench", as testing frameworks call it
};

int run_mode = RUN_ENGINE;
char tool_file[PATH_SIZE];
double train_rate = 0.001;
long long train_positions = 0;

// -freeze and -thaw choices, applied once the parameter table exists.
struct FreezeSwitch {
    const char* pattern;
    bool frozen;
};
FreezeSwitch freeze_switches[32];
int freeze_switch_count = 0;

// Reads the switches; returns -1 to go on, or an exit status.
int read_switches(int argc, char** argv)
{
    for (int i = 1; i < argc; i++) {
        const char* a = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        auto takes = [&](const char* name) {
            if (std::strcmp(a, name) || !value)
                return false;
            i++;
            return true;
        };
        if (!std::strcmp(a, "bench") && i == 1) {
            // One thread and the default table, whatever else is asked:
            // the node count must be the same on every machine.
            run_mode = RUN_SHORT_BENCH;
        } else if (!std::strcmp(a, "-uci")) {
            protocol_mode = 1;
        } else if (!std::strcmp(a, "-c")) {
            protocol_mode = 0;
        } else if (!std::strcmp(a, "-log")) {
            settings.log_enabled = 1;
        } else if (!std::strcmp(a, "-numa")) {
            numa_binding = true;
        } else if (!std::strcmp(a, "-quiet")) {
            settings.log_enabled = 0;
            search_config.noise = 9999;
        } else if (takes("-noise")) {
            search_config.noise = std::atof(value);
        } else if (takes("-cfg")) {
            copy_text(settings.config_file_path, PATH_SIZE, value);
        } else if (takes("-d")) {
            limits.fixed_limit = 1;
            limits.base_max_depth = limits.max_depth = uint8_t(clamp_int(std::atoll(value), 1, MAX_SEARCH_DEPTH));
            limits.move_time = 10000;
        } else if (takes("-t")) {
            double t = std::atof(value);
            limits.fixed_limit = 1;
            limits.move_time = t > 0 && t < 1e7 ? t : 1.0;
        } else if (takes("-n")) {
            long long n = std::atoll(value);
            limits.fixed_limit = 1;
            limits.base_node_limit = limits.node_limit = uint64_t(n > 0 ? n : 1);
            limits.move_time = 1000;
        } else if (takes("-nps")) {
            double speed = std::atof(value);
            if (!(speed >= 1))
                speed = 1;
            settings.limit_strength = 1;
            int elo = int(elo_of_rate(speed));
            settings.elo = int16_t(clamp_int(elo, 1500, 3300)); // the option's range

            char line[32];
            send_line(format_line(line, sizeof line, "Elo= %d", elo));
        } else if (takes("-hash")) {
            settings.hash_mb = int16_t(clamp_int(std::atoll(value), 0, 16384));
        } else if (takes("-threads")) {
            settings.threads = int16_t(clamp_int(std::atoll(value), 1, 128));
        } else if (takes("-book")) {
            copy_text(settings.book_file, PATH_SIZE, value);
        } else if (takes("-tbpath")) {
            copy_text(settings.syzygy_path, PATH_SIZE, value);
        } else if (!std::strcmp(a, "-tbx")) {
            copy_text(settings.syzygy_path, PATH_SIZE, TB_DEFAULT_DIRECTORIES);
        } else if (takes("-anepd")) {
            run_mode = RUN_EPD;
            copy_text(tool_file, sizeof tool_file, value);
        } else if (takes("-scan_pgn")) {
            // The bare word takes its file but chooses no variant.
        } else if (!std::strncmp(a, "-scan_pgn", 9) && a[9] >= '1' && a[9] <= '4' && !a[10] && value) {
            i++;
            run_mode = RUN_SCAN_PGN + (a[9] - '1');
            copy_text(tool_file, sizeof tool_file, value);
        } else if (takes("-match")) {
            run_mode = RUN_MATCH;
            copy_text(tool_file, sizeof tool_file, value);
        } else if (!std::strcmp(a, "-bench")) {
            run_mode = RUN_BENCH;
        } else if (!std::strcmp(a, "-bench2")) {
            run_mode = RUN_BENCH2;
        } else if (!std::strcmp(a, "-pbench")) {
            run_mode = RUN_PBENCH;
        } else if (!std::strcmp(a, "-mkconfig")) {
            run_mode = RUN_MKCONFIG;
        } else if (takes("-mkbook")) {
            run_mode = RUN_MKBOOK;
            copy_text(tool_file, sizeof tool_file, value);
        } else if (takes("-mktune")) {
            run_mode = RUN_MKTUNE;
            copy_text(tool_file, sizeof tool_file, value);
        } else if (!std::strcmp(a, "-train") && i + 3 < argc) {
            // -train FILE RATE POSITIONS: the tuner without the console.
            run_mode = RUN_TRAIN;
            copy_text(tool_file, sizeof tool_file, argv[i + 1]);
            train_rate = std::atof(argv[i + 2]);
            if (!(train_rate > 0) || train_rate > 1e6)
                train_rate = 0.001;
            train_positions = std::atoll(argv[i + 3]);
            i += 3;
        } else if ((!std::strcmp(a, "-freeze") || !std::strcmp(a, "-thaw")) && value) {
            if (freeze_switch_count < 32)
                freeze_switches[freeze_switch_count++] = {value, a[1] == 'f'};
            i++;
        } else if (takes("-label_games")) {
            run_mode = RUN_LABEL;
            copy_text(tool_file, sizeof tool_file, value);
        } else if (!std::strcmp(a, "-tune")) {
            // Every build has the tuner; it is reached by another word.
            if (argc >= 4)
                send_line("the tuner runs as -train FILE RATE POSITIONS, or tune FILE RATE POSITIONS at the console");
            return 1;
        }
    }
    return -1;
}

void run_job()
{
    switch (run_mode) {
    case RUN_EPD:
        run_epd_analysis(tool_file);
        break;
    case RUN_SCAN_PGN:
    case RUN_SCAN_PGN + 1:
    case RUN_SCAN_PGN + 2:
    case RUN_SCAN_PGN + 3:
        scan_pgn(tool_file, run_mode - RUN_SCAN_PGN + 1);
        break;
    case RUN_BENCH:
    case RUN_BENCH2:
        run_benchmark(20, false);
        break;
    case RUN_PBENCH:
        run_benchmark(10, true);
        break;
    case RUN_SHORT_BENCH:
        run_short_benchmark();
        break;
    case RUN_MKBOOK:
        make_book(tool_file);
        break;
    case RUN_MKTUNE:
        if (limits.max_depth > 10)
            limits.max_depth = 0;
        search_config.noise = 9999;
        make_tune_file(tool_file);
        break;
    case RUN_LABEL:
        label_games(tool_file);
        break;
    case RUN_TRAIN:
        train_from_file(tool_file, train_rate, clamp_int(train_positions, 1, 2000000000));
        break;
    case RUN_MKCONFIG:
        print_config_file();
        break;
    case RUN_MATCH:
        break; // an accepted word without a job
    default:
        calibrate_speed();
        init_tablebases();
        run_engine_loop();
        break;
    }
}

} // namespace

int main(int argc, char** argv)
{
    // The attack tables are filled before main; the hashing keys come next,
    // before anything can set up a position.
    init_zobrist();
    set_default_settings();
    install_search_output();
    protocol_mode = 1;
    limits.base_max_depth = limits.max_depth = MAX_SEARCH_DEPTH;
    reset_game_limits();
    int status = read_switches(argc, argv);
    if (status >= 0)
        return status;
    if (run_mode == RUN_SHORT_BENCH) {
        settings.threads = 1;
        settings.hash_mb = 64;
    }

    if (!start_threads(settings.threads))
        return 1;
    if (!allocate_hash(settings.hash_mb))
        return 1;
    if (settings.log_enabled)
        open_log();
    search_settings = settings;
    publish_settings();
    if (settings.config_file_path[0])
        load_config_file();
    init_evaluation();
    init_eval_params(0);
    for (int i = 0; i < freeze_switch_count; i++)
        set_frozen(freeze_switches[i].pattern, freeze_switches[i].frozen);
    build_search_params();
    settings.changed = search_settings.changed = search_config.changed = 0;
    set_position(game_position(), START_FEN);
    // A strength limit from the command line needs the machine's speed.
    limits.full_nps = 1e6;
    limits.full_elo = elo_of_rate(limits.full_nps);

    run_job();

    stop_threads();
    tt_free();
    close_log_file();
    close_trace_file();
    return 0;
}
