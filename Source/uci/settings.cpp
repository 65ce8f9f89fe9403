#include "uci/settings.h"

#include "search/limits.h"
#include "search/threads.h"
#include "tablebase/tbprobe.h"
#include "uci/option_table.h"

#include <cstring>

EngineSettings settings;
EngineSettings search_settings;

void set_default_settings()
{
    EngineSettings s;
    std::memset(&s, 0, sizeof s);
    s.changed = 1;
    for (const OptionSpec* o = OPTIONS; o < OPTIONS + OPTION_COUNT; o++) {
        if (o->kind == OPTION_SPIN || o->kind == OPTION_CHECK)
            *option_value(*o, s) = o->def;
        if (o->kind == OPTION_PAIR)
            s.personality[o->pair][0] = s.personality[o->pair][1] = o->def;
    }
    for (int i = 0; i < SEARCH_SETTING_COUNT; i++)
        s.search[i] = SEARCH_SETTINGS[i].def;
    search_settings = s;
    settings = s;
    publish_settings();
}

namespace
{

bool waiting = false; // the working copy lags behind the live record

} // namespace

bool search_in_progress()
{
    return limits.search_state != SEARCH_IDLE || count_busy_threads() > 0;
}

void settings_changed_after_option()
{
    settings.changed = 1;
    // A running search keeps the settings it started with.
    if (search_in_progress()) {
        waiting = true;
        return;
    }
    search_settings = settings;
    publish_settings();
}

void settings_reach_the_search()
{
    if (!waiting)
        return;
    waiting = false;
    search_settings = settings;
    publish_settings();
}

void publish_settings()
{
    const EngineSettings& s = search_settings;
    std::memcpy(eval_options.personality, s.personality, sizeof eval_options.personality);
    eval_options.contempt = s.contempt;
    SearchConfig& c = search_config;
    c.changed = 1;
    c.hash_mb = s.hash_mb;
    c.move_overhead = s.move_overhead;
    c.ponder = s.ponder;
    c.multi_pv = s.multi_pv;
    c.limit_strength = s.limit_strength;
    c.elo = s.elo;
    c.selectivity = s.selectivity;
    c.show_wdl = s.show_wdl;
    std::memcpy(c.search, s.search, sizeof c.search);
    tb_set_probe_depths(s.tb_probe_depth5, s.tb_probe_depth6);
}
