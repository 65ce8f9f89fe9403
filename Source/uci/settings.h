// Every user setting of the engine in one flat record. The front end edits
// the live record; the search reads a working copy refreshed after every
// change, so that settings never move under a running search.
#pragma once

#include "eval/eval_options.h"
#include "search/search_config.h"

#include <cstdint>

constexpr int PATH_SIZE = 144; // 143 characters and a terminator

struct EngineSettings {
    int16_t changed;
    int16_t hash_mb;
    int16_t threads;
    int16_t move_overhead;
    int16_t ponder;
    int16_t multi_pv;
    int16_t limit_strength;
    int16_t elo; // 0 means the full-strength estimate
    int16_t log_enabled;
    int16_t own_book;
    int16_t book_variety;
    int16_t book_depth;
    int16_t book2_depth;
    char config_file_path[PATH_SIZE];
    char book_file[PATH_SIZE];
    char book2_file[PATH_SIZE];
    char syzygy_path[PATH_SIZE];
    int16_t tb_probe_depth5;
    int16_t tb_probe_depth6;
    int16_t show_wdl; // info lines carry win/draw/loss chances
    int16_t chess960; // castling of Chess960, written king takes rook
    int16_t contempt;
    int16_t selectivity;
    int16_t search[SEARCH_SETTING_COUNT];
    int16_t personality[PERSONALITY_COUNT][2]; // opening, endgame percentages
};

extern EngineSettings settings;        // live record
extern EngineSettings search_settings; // the search's working copy


void set_default_settings();

// Copies the live record into the working copy and marks it changed; while a
// search runs, the copy waits until settings_reach_the_search.
void settings_changed_after_option();
void settings_reach_the_search();

// A search has been asked for or is running.
bool search_in_progress();

// Hands the working copy's values to the layers below that keep records of
// their own (the evaluation's options and the search's configuration).
void publish_settings();
