// Engine options: the list shown to the interface, the setter that
// setoption, the configuration file and the command line go through, and the
// configuration file reader.
#pragma once

// The option lines that answer "uci", defaults from the working copy.
void print_option_lines();

// Sets one option by its exact name; values are clamped, never refused, and
// each accepted setting is echoed. Unknown names are ignored silently.
void set_option(const char* name, const char* value);

// Allocates the hash table for `megabytes` and says so ("info string
// allocated %d Mbytes for hash table"); 0 when the memory cannot be had.
int allocate_hash(int megabytes);

// Writes every option with its value as lines of a configuration file.
void print_config_file();

// Reads "name = value" lines from the file named by ConfigFilePath.
// Returns 1 when the file was read, 0 when it could not be opened.
int load_config_file();

// Carries out what options set during a search left waiting (table size,
// thread count, tablebase path, the search's copies of the settings, the
// console's level and depth); to be called while no search runs.
void apply_waiting_settings();

// Opens the tablebases of the SyzygyPath setting.
void init_tablebases();

// The full-strength Elo estimate shown as UCI_Elo's maximum.
int full_strength_elo();

// The search settings in force, for "_show".
void print_search_parameters();
