#include "uci/option_table.h"

#include <strings.h>

namespace
{

constexpr OptionSpec spin(const char* name, int16_t EngineSettings::*field, int def, int min, int max,
                          OptionEffect effect = EFFECT_NONE, const char* alias = nullptr)
{
    return {name, OPTION_SPIN, effect, int16_t(def), int16_t(min), int16_t(max), field, nullptr, 0, alias, nullptr};
}

constexpr OptionSpec check(const char* name, int16_t EngineSettings::*field, bool def,
                           OptionEffect effect = EFFECT_NONE)
{
    return {name, OPTION_CHECK, effect, int16_t(def), 0, 1, field, nullptr, 0, nullptr, nullptr};
}

constexpr OptionSpec text(const char* name, char (EngineSettings::*field)[PATH_SIZE], OptionEffect effect)
{
    return {name, OPTION_STRING, effect, 0, 0, 0, nullptr, field, 0, nullptr, nullptr};
}

constexpr OptionSpec pair(const char* name, Personality weight)
{
    return {name, OPTION_PAIR, EFFECT_NONE, 100, 20, 200, nullptr, nullptr, int8_t(weight), nullptr, nullptr};
}

// A tuning build offers every number worth tuning by SPSA as an integer
// option of its own: each half of each personality weight and each search
// setting, with the defaults and ranges of the ordinary settings. The rows
// are compiled (and tested) in every build; only a tuning build lists them.
template <int WEIGHT, int HALF>
int16_t* weight_half(EngineSettings& s)
{
    return &s.personality[WEIGHT][HALF];
}

template <int SETTING>
int16_t* search_setting(EngineSettings& s)
{
    return &s.search[SETTING];
}

template <int SETTING>
constexpr OptionSpec tuned_setting()
{
    const SearchSettingSpec& t = SEARCH_SETTINGS[SETTING];
    return {
        t.name, OPTION_SPIN, EFFECT_NONE, t.def, t.min, t.max, nullptr, nullptr, 0, nullptr, &search_setting<SETTING>};
}

#define TUNED_WEIGHT(NAME, WEIGHT)                                                                                     \
    OptionSpec{NAME "_Opening",        OPTION_SPIN, EFFECT_NONE, 100, 20, 200, nullptr, nullptr, 0, nullptr,           \
               &weight_half<WEIGHT, 0>},                                                                               \
        OptionSpec                                                                                                     \
    {                                                                                                                  \
        NAME "_Endgame", OPTION_SPIN, EFFECT_NONE, 100, 20, 200, nullptr, nullptr, 0, nullptr, &weight_half<WEIGHT, 1> \
    }

#define TUNING_ROWS                                                                                                    \
    TUNED_WEIGHT("Mtl_Pawn", WEIGHT_MTL_PAWN), TUNED_WEIGHT("Mtl_Knight", WEIGHT_MTL_KNIGHT),                          \
        TUNED_WEIGHT("Mtl_Bishop", WEIGHT_MTL_BISHOP), TUNED_WEIGHT("Mtl_Rook", WEIGHT_MTL_ROOK),                      \
        TUNED_WEIGHT("Mtl_Queen", WEIGHT_MTL_QUEEN), TUNED_WEIGHT("Activity_Knight", WEIGHT_ACTIVITY_KNIGHT),          \
        TUNED_WEIGHT("Activity_Bishop", WEIGHT_ACTIVITY_BISHOP), TUNED_WEIGHT("Activity_Rook", WEIGHT_ACTIVITY_ROOK),  \
        TUNED_WEIGHT("Activity_Queen", WEIGHT_ACTIVITY_QUEEN), TUNED_WEIGHT("Pawn_Structure", WEIGHT_PAWN_STRUCTURE),  \
        TUNED_WEIGHT("Passed_Pawns", WEIGHT_PASSED_PAWNS), TUNED_WEIGHT("King_Safety", WEIGHT_KING_SAFETY),            \
        TUNED_WEIGHT("Threats", WEIGHT_THREATS), tuned_setting<SEP_DEPTH>(), tuned_setting<SEP_MULT>(),                \
        tuned_setting<NMP_DEPTH>(), tuned_setting<FP_DEPTH>(), tuned_setting<FP_MULT>(), tuned_setting<PC_DEPTH>(),    \
        tuned_setting<PC_RED>(), tuned_setting<PC_MARGIN>(), tuned_setting<LMP_DEPTH>(), tuned_setting<LMP_MULT>(),    \
        tuned_setting<LMR_DEPTH>()

} // namespace

// In the order of the "uci" answer. A number outside its range is clamped
// into the range shown, so what the interface shows is what it gets.
const OptionSpec OPTIONS[] = {
    text("ConfigFilePath", &EngineSettings::config_file_path, EFFECT_CONFIG_FILE),
    spin("Hash", &EngineSettings::hash_mb, 64, 0, 16384, EFFECT_HASH),
    spin("Threads", &EngineSettings::threads, 1, 1, 128, EFFECT_THREADS),
    {"Clear_Hash", OPTION_BUTTON, EFFECT_CLEAR_HASH, 0, 0, 0, nullptr, nullptr, 0, nullptr, nullptr},
    check("OwnBook", &EngineSettings::own_book, false),
    text("OwnBook_File", &EngineSettings::book_file, EFFECT_NONE),
    spin("OwnBook_Depth", &EngineSettings::book_depth, 24, 0, 60),
    text("OwnBook2_File", &EngineSettings::book2_file, EFFECT_NONE),
    spin("OwnBook2_Depth", &EngineSettings::book2_depth, 0, 0, 60),
    spin("OwnBook_Variety", &EngineSettings::book_variety, 25, 0, 100),
    text("SyzygyPath", &EngineSettings::syzygy_path, EFFECT_TABLEBASES),
    spin("SyzygyProbeDepth5", &EngineSettings::tb_probe_depth5, 0, -5, 100),
    spin("SyzygyProbeDepth6", &EngineSettings::tb_probe_depth6, 1, -5, 100),
    check("Log", &EngineSettings::log_enabled, false, EFFECT_LOG),
    check("Ponder", &EngineSettings::ponder, true),
    spin("MultiPV", &EngineSettings::multi_pv, 1, 1, 255),
    // Shown with the blank, the name bots and clients send and check the uci
    // answer for (python-chess refuses an option it was not shown); the
    // older spelling is still taken, from configuration files too.
    spin("Move Overhead", &EngineSettings::move_overhead, 50, 0, 5000, EFFECT_NONE, "MoveOverhead"),
    check("UCI_LimitStrength", &EngineSettings::limit_strength, false),
    // 0 stands for the full-strength estimate, which is also the largest
    // value shown and accepted (the 3300 here is not used).
    spin("UCI_Elo", &EngineSettings::elo, 0, 1500, 3300),
    check("UCI_ShowWDL", &EngineSettings::show_wdl, false),
    // Read by the next position command: interfaces set it before one.
    check("UCI_Chess960", &EngineSettings::chess960, false),
    spin("Contempt", &EngineSettings::contempt, 0, -150, 150),
    spin("Selectivity", &EngineSettings::selectivity, 100, 0, 200),
    pair("Mtl_Pawn", WEIGHT_MTL_PAWN),
    pair("Mtl_Knight", WEIGHT_MTL_KNIGHT),
    pair("Mtl_Bishop", WEIGHT_MTL_BISHOP),
    pair("Mtl_Rook", WEIGHT_MTL_ROOK),
    pair("Mtl_Queen", WEIGHT_MTL_QUEEN),
    pair("Activity_Knight", WEIGHT_ACTIVITY_KNIGHT),
    pair("Activity_Bishop", WEIGHT_ACTIVITY_BISHOP),
    pair("Activity_Rook", WEIGHT_ACTIVITY_ROOK),
    pair("Activity_Queen", WEIGHT_ACTIVITY_QUEEN),
    pair("Pawn_Structure", WEIGHT_PAWN_STRUCTURE),
    pair("Passed_Pawns", WEIGHT_PASSED_PAWNS),
    pair("King_Safety", WEIGHT_KING_SAFETY),
    pair("Threats", WEIGHT_THREATS),
#if defined(KORVEL_TUNING)
    TUNING_ROWS,
#endif
};

const int OPTION_COUNT = int(sizeof OPTIONS / sizeof *OPTIONS);

const OptionSpec TUNING_OPTIONS[] = {TUNING_ROWS};
const int TUNING_OPTION_COUNT = int(sizeof TUNING_OPTIONS / sizeof *TUNING_OPTIONS);

const OptionSpec* find_option(const char* name)
{
    for (const OptionSpec& o : OPTIONS)
        if (!strcasecmp(o.name, name) || (o.alias && !strcasecmp(o.alias, name)))
            return &o;
    return nullptr;
}
