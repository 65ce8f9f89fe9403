#include "uci/settings.h"

#include "search/limits.h"
#include "search/threads.h"
#include "tablebase/tbprobe.h"

#include <cstring>

EngineSettings settings;
EngineSettings search_settings;
double noise = 0.0;

void set_default_settings()
{
    EngineSettings s;
    std::memset(&s, 0, sizeof s);
    s.changed = 1;
    s.hash_mb = 64;
    s.threads = 1;
    s.move_overhead = 50;
    s.ponder = 1;
    s.multi_pv = 1;
    s.limit_strength = 0;
    s.elo = 0;
    s.log_enabled = 0;
    s.own_book = 0;
    s.book_variety = 25;
    s.book_depth = 24;
    s.book2_depth = 0;
    s.tb_probe_depth5 = 0;
    s.tb_probe_depth6 = 1;
    s.contempt = 0;
    s.selectivity = 100;
    const int16_t search_defaults[SEARCH_SETTING_COUNT] = {0, 3, 75, 3, 3, 125, 3, 3, 100, 6, 2, 3};
    std::memcpy(s.search, search_defaults, sizeof search_defaults);
    for (auto& pair : s.personality)
        pair[0] = pair[1] = 100;
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
    std::memcpy(c.search, s.search, sizeof c.search);
    tb_set_probe_depths(s.tb_probe_depth5, s.tb_probe_depth6);
}
