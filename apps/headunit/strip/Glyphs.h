#pragma once

#include "headunit/Cluster.h"
#include "headunit/strip/Brush.h"

namespace headunit::strip {

/// Degrees clockwise from straight ahead that a turn's arrow points to, by what the phone tells of it.
double arrowAngle(const TurnView& turn);

/// Drawings without a picture file, each in the middle of its box.
void drawTurn(Brush* brush, const Box& box, const TurnView& turn, Colour colour);
void drawNote(Brush* brush, const Box& box, Colour colour);
void drawPlayState(Brush* brush, const Box& box, bool playing, Colour colour);
void drawShuffle(Brush* brush, const Box& box, Colour colour);
void drawRepeat(Brush* brush, const Box& box, bool one, Colour colour);
void drawBell(Brush* brush, const Box& box, Colour colour);
void drawPerson(Brush* brush, const Box& box, Colour colour);
/// `strength`: of the four bars.
void drawSignal(Brush* brush, const Box& box, unsigned int strength, Colour on, Colour off);

}  // namespace headunit::strip
