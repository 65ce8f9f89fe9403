#include "support/long_way_move_reader.h"

#include "board/movegen.h"
#include "board/notation.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

int matches_the_long_way(const Position* pos, const char* text, Move* found)
{
    std::string input(text, std::min<size_t>(std::strlen(text), MOVE_TEXT_SIZE * 2 - 3));
    input = input.substr(0, input.find('+'));
    if (input.empty())
        return 0;
    char last = char(std::toupper(input.back()));
    if (last == 'B' || last == 'N' || last == 'Q' || last == 'R') {
        if (input.size() >= 2 && input[input.size() - 2] == '=')
            input.back() = last;
        else
            input.back() = '=', input += last;
    }
    for (char& c : input)
        if (c == 'O' || c == '0')
            c = 'o';
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list), matches = 0;
    for (int i = 0; i < n; i++) {
        char forms[4][MOVE_TEXT_SIZE];
        move_texts(pos, list[i].move, forms[0], forms[1], forms[2], forms[3]);
        for (char* form : forms) {
            std::string f(form);
            if (f.substr(0, f.find('+')) == input) {
                matches++;
                *found = list[i].move;
                break;
            }
        }
    }
    return matches;
}
