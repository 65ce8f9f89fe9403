// The evaluation tuner: online gradient descent of the parameter rows over
// labelled EPD positions, checkpointed to params.txt.
#pragma once

#include <cstdint>

struct SearchThread;

// Trains over `file` (rewinding it for further passes) until `max_positions`
// have been trained, the stop flag is raised or the console says quit. Only
// mode 1 trains; any other mode reads the file and nothing more.
void tune(const char* file_name, double learning_rate, int mode, int max_positions);

// Evaluates the thread's position, moves every row that took part against
// the error towards `target` (the side to move's winning probability) and
// returns the score.
int train_position(SearchThread* thread, float target, double learning_rate);

// What a labelled line trains towards: nine parts game result (" gr ",
// " c9 " or "[") and one part the probability of its "ce", or that
// probability alone when the line carries no result.
float tuning_target(const char* line, int side, int ce);

// The winning probability a score (side to move's view) predicts.
double win_probability(int score);

// Writes every row as an fset line; 1 on success.
int write_params_file(const char* file);

// The batch form of the tuner: trains without watching the console, then
// writes params.txt. For scripts.
void train_from_file(const char* file_name, double learning_rate, int max_positions);
