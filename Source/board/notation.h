// Move text: coordinate notation for the protocol, SAN forms for people.
#pragma once

#include "board/position.h"

constexpr const char* SQUARE_NAMES[64] = {"a1", "b1", "c1", "d1", "e1", "f1", "g1", "h1", "a2", "b2", "c2", "d2", "e2",
                                          "f2", "g2", "h2", "a3", "b3", "c3", "d3", "e3", "f3", "g3", "h3", "a4", "b4",
                                          "c4", "d4", "e4", "f4", "g4", "h4", "a5", "b5", "c5", "d5", "e5", "f5", "g5",
                                          "h5", "a6", "b6", "c6", "d6", "e6", "f6", "g6", "h6", "a7", "b7", "c7", "d7",
                                          "e7", "f7", "g7", "h7", "a8", "b8", "c8", "d8", "e8", "f8", "g8", "h8"};

// Size of every buffer handed to the move writers.
constexpr int MOVE_TEXT_SIZE = 16;

// e2e4; promotions as e7e8=Q on the console and e7e8q in UCI mode; "null" for 0.
// How a move is written for whoever reads it: an interface reads "e7e8q",
// a person "e7e8=Q".
enum MoveStyle : uint8_t { MOVE_STYLE_UCI, MOVE_STYLE_CONSOLE };

void move_to_coord(Move move, char* text, MoveStyle style);

// The four forms that the parser accepts: coordinate (console promotion form),
// SAN, SAN with the from-file and SAN with the from-rank. Castling comes as
// "o-o", "O-O" and "0-0". A check adds "+" to all four.
void move_texts(const Position* pos, Move move, char* coord, char* san, char* san_file, char* san_rank);

// Finds the legal move of `pos` that `text` names in any of those forms.
// Returns 1 with the move; 0 when none matches or the text is ambiguous
// (two matches print "ambiguous move").
int parse_move(const Position* pos, const char* text, Move* move);
