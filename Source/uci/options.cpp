#include "uci/options.h"

#include "output/output.h"
#include "search/limits.h"
#include "search/threads.h"
#include "search/tt.h"
#include "tablebase/tbprobe.h"
#include "uci/bounded_input.h"
#include "uci/console_commands.h"
#include "uci/option_table.h"
#include "uci/settings.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

// A ConfigFilePath line inside a configuration file loads another file; this
// bounds the nesting so that a file naming itself cannot recurse forever.
int config_nesting = 0;
constexpr int MAX_CONFIG_NESTING = 4;

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
    int current = worker_count();
    int wanted = settings.threads < 1 ? 1 : settings.threads; // 0 is taken as 1
    if (wanted == current)
        return;
    stop_threads();
    if (start_threads(wanted))
        return;
    char line[128];
    send_line(
        format_line(line, sizeof line, "info string could not start %d search threads, keeping %d", wanted, current));
    settings.threads = search_settings.threads = int16_t(current);
    // Not even the pool it had: one thread is the least a search needs.
    if (!start_threads(current)) {
        settings.threads = search_settings.threads = 1;
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

void echo_path(const char* name, const char* path)
{
    char line[256];
    send_line(format_line(line, sizeof line, "info string %s set to '%s'", name, path));
}

// "opening,endgame": the text up to the comma is the opening half; the
// endgame half is kept when nothing follows the comma.
void set_pair(const OptionSpec& o, const char* value)
{
    int16_t* pair = settings.personality[o.pair];
    const char* comma = std::strchr(value, ',');
    pair[0] = int16_t(clamp_int(std::strtoll(value, nullptr, 10), o.min, o.max));
    if (comma && comma[1] && comma[1] != ' ')
        pair[1] = int16_t(clamp_int(std::strtoll(comma + 1, nullptr, 10), o.min, o.max));
    char line[256];
    send_line(format_line(line, sizeof line, "info string %s set to %d,%d", o.name, pair[0], pair[1]));
}

// The value an option has in `s`, as the "uci" answer and -mkconfig show it.
const char* shown_value(const OptionSpec& o, const EngineSettings& s, char* buffer, size_t size)
{
    switch (o.kind) {
    case OPTION_SPIN:
        format_line(buffer, size, "%d", read_option(o, s));
        break;
    case OPTION_CHECK:
        format_line(buffer, size, "%s", read_option(o, s) ? "true" : "false");
        break;
    case OPTION_STRING:
        format_line(buffer, size, "%s", s.*(o.text));
        break;
    case OPTION_PAIR:
        format_line(buffer, size, "%d,%d", s.personality[o.pair][0], s.personality[o.pair][1]);
        break;
    case OPTION_BUTTON:
        buffer[0] = 0;
        break;
    }
    return buffer;
}

// The largest value shown and accepted: UCI_Elo's is the engine's own
// strength estimate.
int spin_max(const OptionSpec& o)
{
    return o.number == &EngineSettings::elo ? full_strength_elo() : o.max;
}

void print_option_line(const OptionSpec& o, const EngineSettings& s)
{
    char line[256], value[PATH_SIZE];
    switch (o.kind) {
    case OPTION_SPIN: {
        int max = spin_max(o);
        // An interface refuses an option whose default lies outside its range.
        int shown = clamp_int(read_option(o, s), o.min, max);
        send_line(format_line(line, sizeof line, "option name %s type spin default %d min %d max %d", o.name, shown,
                              o.min, max));
        break;
    }
    case OPTION_CHECK:
        send_line(format_line(line, sizeof line, "option name %s type check default %s", o.name,
                              shown_value(o, s, value, sizeof value)));
        break;
    case OPTION_BUTTON:
        send_line(format_line(line, sizeof line, "option name %s type button", o.name));
        break;
    case OPTION_STRING:
    case OPTION_PAIR:
        send_line(format_line(line, sizeof line, "option name %s type string default %s", o.name,
                              shown_value(o, s, value, sizeof value)));
        break;
    }
}

// Stores the value of `o` from its text and echoes it.
void store_value(const OptionSpec& o, const char* value)
{
    char line[256];
    switch (o.kind) {
    case OPTION_SPIN: {
        int v = clamp_int(std::strtoll(value, nullptr, 10), o.min, spin_max(o));
        send_line(format_line(line, sizeof line, "info string %s set to %d", o.name, v));
        *option_value(o, settings) = int16_t(v);
        break;
    }
    case OPTION_CHECK: {
        int v = std::strstr(value, "true") ? 1 : 0;
        send_line(format_line(line, sizeof line, "info string %s set to %d", o.name, v));
        *option_value(o, settings) = int16_t(v);
        break;
    }
    case OPTION_STRING:
        copy_text(settings.*(o.text), PATH_SIZE, value);
        echo_path(o.name, settings.*(o.text));
        break;
    case OPTION_PAIR:
        set_pair(o, value);
        break;
    case OPTION_BUTTON:
        break;
    }
}

// What a change sets off. The table, the pool and the tablebases cannot
// change under a running search: those wait for its end.
void carry_out(OptionEffect effect)
{
    bool busy = search_in_progress();
    switch (effect) {
    case EFFECT_NONE:
        break;
    case EFFECT_HASH:
        if (!busy)
            resize_hash();
        break;
    case EFFECT_THREADS:
        if (!busy)
            restart_threads();
        break;
    case EFFECT_CLEAR_HASH:
        if (busy)
            clear_hash_waiting = true;
        else
            clear_hash_now();
        break;
    case EFFECT_CONFIG_FILE:
        if (config_nesting < MAX_CONFIG_NESTING)
            load_config_file();
        break;
    case EFFECT_TABLEBASES:
        if (!busy)
            reload_tablebases();
        break;
    case EFFECT_LOG:
        if (settings.log_enabled)
            open_log();
        else
            stop_logging();
        settings.log_enabled = log_is_enabled() ? 1 : 0;
        break;
    }
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
    // Written once now, by all workers, rather than page by page inside
    // the first search.
    clear_hash_table();
    char line[128];
    send_line(format_line(line, sizeof line, "info string allocated %d Mbytes for hash table", megabytes));
    return 1;
}

void print_option_lines()
{
    if (settings.elo == 0) {
        settings.elo = int16_t(full_strength_elo());
        search_settings.elo = settings.elo;
    }
    for (const OptionSpec* o = OPTIONS; o < OPTIONS + OPTION_COUNT; o++)
        print_option_line(*o, search_settings);
}

void set_option(const char* name, const char* value)
{
    const OptionSpec* o = find_option(name);
    if (!o)
        return;
    store_value(*o, value);
    carry_out(o->effect);
}

void print_config_file()
{
    send_line("# Korvel options: name = value, one a line; \"#\" starts a comment");
    char line[256], value[PATH_SIZE];
    for (const OptionSpec* o = OPTIONS; o < OPTIONS + OPTION_COUNT; o++) {
        // UCI_Elo 0 stands for the engine's own estimate, which only stays
        // so when the file does not name it.
        bool unset =
            o->kind == OPTION_SPIN && (read_option(*o, settings) < o->min || read_option(*o, settings) > o->max);
        if (o->kind != OPTION_BUTTON && o->effect != EFFECT_CONFIG_FILE && !unset)
            send_line(
                format_line(line, sizeof line, "%s = %s", o->name, shown_value(*o, settings, value, sizeof value)));
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
    char line[256];
    for (int i = 1; i < SEARCH_SETTING_COUNT; i++)
        send_line(
            format_line(line, sizeof line, "info string %s= %d", SEARCH_SETTINGS[i].name, search_settings.search[i]));
    send_line(format_line(line, sizeof line, "info string Selectivity= %d", search_settings.selectivity));
}
