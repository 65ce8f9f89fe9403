// The console position editor: lines of men by colour until ".".
#pragma once

// Starts editing from the game position and prints the help lines.
void start_position_editor();

// True while the editor takes the console lines.
bool position_editor_active();

// One line for the editor: "." ends (the position is checked and set), "#"
// clears the board, "w"/"b" choose the colour, "Pa2"-style men are placed
// and "xa2" empties a square.
void position_editor_line(const char* line);
