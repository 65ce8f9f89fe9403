#include "uci/options.h"

#include "output/output.h"
#include "search/limits.h"
#include "search/threads.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"
#include "uci/bounded_input.h"
#include "uci/console_commands.h"
#include "uci/settings.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

struct SpinOption {
    const char* name;
    int16_t EngineSettings::*field;
    int min, max;  // accepted by set_option
    int shown_min; // shown to the interface
};

// A ConfigFilePath line inside a configuration file loads another file; this
// bounds the nesting so that a file naming itself cannot recurse forever.
int config_nesting = 0;
constexpr int MAX_CONFIG_NESTING = 4;

const SpinOption SPIN_OPTIONS[] = {
    {"Hash", &EngineSettings::hash_mb, 0, 16384, 0},
    {"Threads", &EngineSettings::threads, 0, 128, 1},
    {"MoveOverhead", &EngineSettings::move_overhead, 0, 5000, 0},
    {"MultiPV", &EngineSettings::multi_pv, 1, 255, 1},
    {"UCI_Elo", &EngineSettings::elo, 1500, 3300, 1500},
    {"OwnBook_Variety", &EngineSettings::book_variety, 0, 100, 0},
    {"OwnBook_Depth", &EngineSettings::book_depth, 0, 60, 0},
    {"OwnBook2_Depth", &EngineSettings::book2_depth, 0, 60, 0},
    {"SyzygyProbeDepth5", &EngineSettings::tb_probe_depth5, -5, 100, -5},
    {"SyzygyProbeDepth6", &EngineSettings::tb_probe_depth6, -5, 100, -5},
    {"Contempt", &EngineSettings::contempt, -150, 150, -150},
    {"Selectivity", &EngineSettings::selectivity, 0, 200, 0},
};

struct CheckOption {
    const char* name;
    int16_t EngineSettings::*field;
};

const CheckOption CHECK_OPTIONS[] = {
    {"Ponder", &EngineSettings::ponder},
    {"UCI_LimitStrength", &EngineSettings::limit_strength},
    {"OwnBook", &EngineSettings::own_book},
    {"Log", &EngineSettings::log_enabled},
};

const SpinOption* find_spin(const char* name)
{
    for (const SpinOption& o : SPIN_OPTIONS)
        if (!std::strcmp(o.name, name))
            return &o;
    return nullptr;
}

void print_spin(const char* name)
{
    const SpinOption* o = find_spin(name);
    int max = o->max;
    if (o->field == &EngineSettings::elo)
        max = full_strength_elo();
    // An interface refuses an option whose default lies outside its range.
    int shown = clamp_int(search_settings.*(o->field), o->shown_min, max);
    char line[256];
    send_line(format_line(line, sizeof line, "option name %s type spin default %d min %d max %d", name, shown,
                          o->shown_min, max));
}

// The hash table, the worker pool and the tablebase files cannot change
// under a running search: such changes wait for it to end. A size the
// machine cannot give is refused and the engine plays on with what it has.
void resize_hash()
{
    int current = tt_megabytes();
    if (settings.hash_mb == current || allocate_hash(settings.hash_mb))
        return;
    char line[128];
    send_line(format_line(line, sizeof line, "info string could not allocate %d Mbytes for hash table, keeping %d",
                          settings.hash_mb, current));
    settings.hash_mb = search_settings.hash_mb = int16_t(current);
}

void restart_threads()
{
    int current = limits.thread_count;
    if (settings.threads == current)
        return;
    stop_threads();
    limits.thread_count = settings.threads;
    if (start_threads(settings.threads))
        return;
    char line[128];
    send_line(format_line(line, sizeof line, "info string could not start %d search threads, keeping %d",
                          int(settings.threads), current));
    settings.threads = search_settings.threads = int16_t(current);
    limits.thread_count = current;
    if (!start_threads(current)) {
        // Not even the pool it had: one thread is the least a search needs.
        settings.threads = search_settings.threads = 1;
        limits.thread_count = 1;
        start_threads(1);
    }
}

// Clear_Hash sent during a search is carried out when the search ends.
bool clear_hash_waiting = false;

void clear_hash_now()
{
    clear_hash_table();
    send_line("info string Hash table cleared");
}

char tablebase_path[PATH_SIZE];

void reload_tablebases()
{
    copy_text(tablebase_path, PATH_SIZE, settings.syzygy_path);
    tb_init(tablebase_path);
}

void print_check(const char* name, int16_t value)
{
    char line[256];
    send_line(format_line(line, sizeof line, "option name %s type check default %s", name, value ? "true" : "false"));
}

void print_string(const char* name, const char* value)
{
    char line[256];
    send_line(format_line(line, sizeof line, "option name %s type string default %s", name, value));
}

void echo_path(const char* name, const char* path)
{
    char line[256];
    send_line(format_line(line, sizeof line, "info string %s set to '%s'", name, path));
}

void set_personality(int index, const char* value)
{
    int16_t* pair = settings.personality[index];
    const char* comma = std::strchr(value, ',');
    pair[0] = int16_t(clamp_int(std::strtoll(value, nullptr, 10), 20, 200));
    if (comma && comma[1] && comma[1] != ' ')
        pair[1] = int16_t(clamp_int(std::strtoll(comma + 1, nullptr, 10), 20, 200));
    char line[256];
    send_line(
        format_line(line, sizeof line, "info string %s set to %d,%d", PERSONALITY_NAMES[index], pair[0], pair[1]));
}

} // namespace

void apply_waiting_settings()
{
    resize_hash();
    restart_threads();
    if (clear_hash_waiting) {
        clear_hash_waiting = false;
        clear_hash_now();
    }
    if (std::strcmp(tablebase_path, settings.syzygy_path))
        reload_tablebases();
    settings_reach_the_search();
    apply_waiting_console_limits();
}

void init_tablebases()
{
    reload_tablebases();
}

int full_strength_elo()
{
    int elo = int(limits.full_elo);
    return elo < 1500 ? 1500 : elo;
}

int allocate_hash(int megabytes)
{
    if (!tt_allocate(megabytes))
        return 0;
    char line[128];
    send_line(format_line(line, sizeof line, "info string allocated %d Mbytes for hash table", megabytes));
    return 1;
}

void print_option_lines()
{
    const EngineSettings& s = search_settings;
    print_string("ConfigFilePath", s.config_file_path);
    print_spin("Hash");
    print_spin("Threads");
    send_line("option name Clear_Hash type button");
    print_check("OwnBook", s.own_book);
    print_string("OwnBook_File", s.book_file);
    print_spin("OwnBook_Depth");
    print_string("OwnBook2_File", s.book2_file);
    print_spin("OwnBook2_Depth");
    print_spin("OwnBook_Variety");
    print_string("SyzygyPath", s.syzygy_path);
    print_spin("SyzygyProbeDepth5");
    print_spin("SyzygyProbeDepth6");
    print_check("Log", s.log_enabled);
    print_check("Ponder", s.ponder);
    print_spin("MultiPV");
    print_spin("MoveOverhead");
    print_check("UCI_LimitStrength", s.limit_strength);
    if (settings.elo == 0) {
        settings.elo = int16_t(full_strength_elo());
        search_settings.elo = settings.elo;
    }
    print_spin("UCI_Elo");
    print_spin("Contempt");
    print_spin("Selectivity");
    for (int i = 0; i < PERSONALITY_COUNT; i++) {
        char pair[32];
        format_line(pair, sizeof pair, "%d,%d", s.personality[i][0], s.personality[i][1]);
        print_string(PERSONALITY_NAMES[i], pair);
    }
}

void set_option(const char* name, const char* value)
{
    char line[256];
    if (const SpinOption* o = find_spin(name)) {
        int v = clamp_int(std::strtoll(value, nullptr, 10), o->min, o->max);
        send_line(format_line(line, sizeof line, "info string %s set to %d", name, v));
        settings.*(o->field) = int16_t(v);
    }
    for (const CheckOption& o : CHECK_OPTIONS) {
        if (std::strcmp(o.name, name))
            continue;
        int v = std::strstr(value, "true") ? 1 : 0;
        send_line(format_line(line, sizeof line, "info string %s set to %d", name, v));
        settings.*(o.field) = int16_t(v);
    }
    bool busy = search_in_progress();
    if (!std::strcmp(name, "Hash")) {
        if (!busy)
            resize_hash();
    } else if (!std::strcmp(name, "Threads")) {
        if (!busy)
            restart_threads();
    } else if (!std::strcmp(name, "Clear_Hash")) {
        if (busy)
            clear_hash_waiting = true;
        else
            clear_hash_now();
    } else if (!std::strcmp(name, "ConfigFilePath")) {
        copy_text(settings.config_file_path, PATH_SIZE, value);
        echo_path("ConfigFilePath", settings.config_file_path);
        if (config_nesting < MAX_CONFIG_NESTING)
            load_config_file();
    } else if (!std::strcmp(name, "OwnBook_File")) {
        copy_text(settings.book_file, PATH_SIZE, value);
        echo_path("OwnBook_File", settings.book_file);
    } else if (!std::strcmp(name, "OwnBook2_File")) {
        copy_text(settings.book2_file, PATH_SIZE, value);
        echo_path("OwnBook2_File", settings.book2_file);
    } else if (!std::strcmp(name, "SyzygyPath")) {
        copy_text(settings.syzygy_path, PATH_SIZE, value);
        echo_path("SyzygyPath", settings.syzygy_path);
        if (!busy)
            reload_tablebases();
    } else if (!std::strcmp(name, "Log")) {
        if (settings.log_enabled)
            open_log();
        else
            close_log_flag();
        settings.log_enabled = log_is_enabled() ? 1 : 0;
    } else {
        for (int i = 0; i < PERSONALITY_COUNT; i++)
            if (!std::strcmp(name, PERSONALITY_NAMES[i]))
                set_personality(i, value);
    }
}

int load_config_file()
{
    FILE* f = std::fopen(settings.config_file_path, "r");
    if (!f)
        return 0;
    config_nesting++;
    char line[256];
    send_line(format_line(line, sizeof line, "info string loading parameters from %s", settings.config_file_path));
    char text[255];
    while (std::fgets(text, sizeof text, f)) {
        size_t len = std::strlen(text);
        if (len <= 3)
            continue;
        text[len - 1] = 0; // the line end
        if (len >= 2 && text[len - 2] == '\r')
            text[len - 2] = 0;
        if (char* hash = std::strchr(text, '#'))
            *hash = 0;
        char* eq = std::strchr(text, '=');
        if (!eq)
            continue;
        char name[101];
        size_t n = size_t(eq - text);
        while (n > 0 && text[n - 1] == ' ')
            n--;
        if (n > 100)
            n = 100;
        std::memcpy(name, text, n);
        name[n] = 0;
        const char* v = eq + 1;
        while (*v == ' ')
            v++;
        char value[201];
        copy_text(value, sizeof value, v);
        set_option(name, value);
    }
    std::fclose(f);
    config_nesting--;
    settings_changed_after_option();
    return 1;
}

void print_search_parameters()
{
    static const char* const names[SEARCH_SETTING_COUNT] = {"leading",   "SEP_depth", "SEP_mult", "NMP_depth",
                                                            "FP_depth",  "FP_mult",   "PC_depth", "PC_red",
                                                            "PC_margin", "LMP_depth", "LMP_mult", "LMR_depth"};
    char line[256];
    for (int i = 1; i < SEARCH_SETTING_COUNT; i++)
        send_line(format_line(line, sizeof line, "info string %s= %d", names[i], search_settings.search[i]));
    send_line(format_line(line, sizeof line, "info string Selectivity= %d", search_settings.selectivity));
}
