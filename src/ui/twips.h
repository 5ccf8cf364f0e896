#pragma once
namespace corvane {

// Sizes carried over from the design are in twips, 1,440 to the inch; the
// screen's resolution turns them into pixels (15 twips a pixel at 96 dpi).
int TwipsToPixelsX(int twips);
int TwipsToPixelsY(int twips);

}  // namespace corvane
