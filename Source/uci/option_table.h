// Every UCI option, declared once: its name, kind, default, range and the
// settings field it sets. The defaults, the "uci" answer, setoption, the
// configuration file and -mkconfig all read this table; adding an option is
// one row here plus the code that uses its field.
#pragma once

#include "uci/settings.h"

#include <cstdint>

enum OptionKind : uint8_t {
    OPTION_SPIN,   // a number, clamped into min..max
    OPTION_CHECK,  // true when the value holds "true"
    OPTION_STRING, // a path of at most 143 characters
    OPTION_BUTTON, // no value of its own
    OPTION_PAIR,   // opening and endgame percentages "%d,%d", shown as a string
};

// What a change sets off beyond storing the value.
enum OptionEffect : uint8_t {
    EFFECT_NONE,
    EFFECT_HASH,        // re-allocate the table (waits for a running search)
    EFFECT_THREADS,     // restart the pool (waits likewise)
    EFFECT_CLEAR_HASH,  // clear the table (waits likewise)
    EFFECT_CONFIG_FILE, // read the file it names at once
    EFFECT_TABLEBASES,  // find the tables again (waits likewise)
    EFFECT_LOG,         // open the log or switch logging off
};

struct OptionSpec {
    const char* name;
    OptionKind kind;
    OptionEffect effect;
    int16_t def;                             // spin and check: the start-up value; pair: both halves
    int16_t min, max;                        // spin and pair: the range shown and accepted
    int16_t EngineSettings::*number;         // spin and check
    char (EngineSettings::*text)[PATH_SIZE]; // string
    int8_t pair;                             // pair: which personality weight
    const char* alias;                       // another name clients use, or null
    int16_t* (*locate)(EngineSettings& s);   // spin: where the value lives when `number` is null
};

// Where a spin or check option's value lives in `s`.
inline int16_t* option_value(const OptionSpec& o, EngineSettings& s)
{
    return o.number ? &(s.*(o.number)) : o.locate(s);
}
inline int16_t read_option(const OptionSpec& o, const EngineSettings& s)
{
    return *option_value(o, const_cast<EngineSettings&>(s));
}

extern const OptionSpec OPTIONS[];
extern const int OPTION_COUNT;
// The rows a tuning build (KORVEL_TUNING) adds to OPTIONS.
extern const OptionSpec TUNING_OPTIONS[];
extern const int TUNING_OPTION_COUNT;

// The row of an option by its name or alias in any letter case (option
// names are not case-sensitive); null for an unknown name.
const OptionSpec* find_option(const char* name);
