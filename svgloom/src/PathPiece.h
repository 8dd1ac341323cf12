// The commands of path data: what they leave to those behind them, and those of a piece that has
// been taken apart.

#pragma once

#include "svgloom/src/Characters.h"
#include "svgloom/src/PathBuffer.h"

namespace SVGLoom {

constexpr bool IsClose(char command)
{
    return ToLower(command) == 'z';
}

constexpr bool IsFlag(char c)
{
    return c == '0' || c == '1';
}

/// What numbers behind those of `command` stand for.
constexpr char RepeatOf(char command)
{
    return command == 'M' ? 'L' : command == 'm' ? 'l' : command;
}

/// What commands leave to those behind them.
struct PathState {
    char previous = 'm';  // command
    Point position;
    Point start;
    Point cubicControl;
    Point quadControl;
};

inline Point Reflected(const Point& position, const Point& control)
{
    return {2 * position.x - control.x, 2 * position.y - control.y};
}

/// The start of a subpath behind a close without a move: its start with its x for both coordinates,
/// on purpose; artwork has been drawn with it. It is only emitted: relative coordinates count from
/// the true start. ParsePath.TheMoveBehindACloseTakesXTwice holds this.
inline void MoveBehindClose(const PathState& state, PathBuffer& path)
{
    path.MoveTo(state.position.x, state.position.x);
}

/// Carries out commands piece by piece, as long as they are what they should be, and keeps `state`.
/// Returns where the first command, or repeat of one, stands that is not carried out; `end` if
/// there is none. `text` has to be the beginning of a command or repeat.
const char* ReadPieces(const char* text, const char* end, PathState& state, PathBuffer& path);

}  // namespace SVGLoom
