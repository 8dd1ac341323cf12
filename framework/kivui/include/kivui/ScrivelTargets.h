// The drawing targets that there are: pixels in memory, and a log of what was asked for.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include <kivui/Export.h>
#include <kivui/Scrivel.h>

namespace kivui::scrivel {

/// Pixels as 0xAARRGGBB, premultiplied, rows from the top. The memory is the caller's and has to
/// stand as long as a target draws on it.
struct PixelBuffer {
    std::uint32_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;  // from row to row, in pixels
};

inline constexpr int kMaxPixels = 32767;  // of a buffer's width and height

/// Draws over what `buffer` holds; the user unit begins as one pixel, the clip as the whole buffer.
/// Pictures are the same on every platform. Nothing is drawn under a transform, path, shader or pen
/// with a value that is not finite. Null if the buffer is null, a size is not in 1..kMaxPixels, the
/// stride is shorter than a row, or memory ran out.
KIVUI_API std::unique_ptr<DrawingTarget> CreatePixelTarget(const PixelBuffer& buffer);

/// Receives one operation as a line of JSON, without line end:
///
///     {"op":"save"}
///     {"op":"transform","m":[a,b,c,d,e,f]}
///     {"op":"clip","path":PATH,"rule":"nonzero","transform":[a,b,c,d,e,f]}
///     {"op":"fill","path":PATH,"winding":true,"color":[r,g,b,a]}
///     {"op":"fillLinear","path":PATH,"winding":true,"from":[x,y],"to":[x,y],"colors":[[r,g,b,a],...],
///      "offsets":[o,...]}
///     {"op":"fillRadial","path":PATH,"winding":true,"center":[x,y],"edge":[x,y],"inner":[r,g,b,a],
///      "outer":[r,g,b,a]}
///     {"op":"stroke","path":PATH,"color":[r,g,b,a],"width":w,"miterLimit":m,"dash":[...],
///      "join":"miter","cap":"butt"}
///     {"op":"restore"}
///
/// PATH is an array of ["M",x,y], ["L",x,y], ["C",x1,y1,x2,y2,x,y] and ["Z"]; the rule is nonzero
/// or evenodd, a missing clip transform null. Numbers are written as "%.9g" does, which
/// reads back to the same float; one that is not finite is "nan", "inf" or "-inf".
using CallSink = std::function<void(std::string_view line)>;

/// Logs instead of drawing. Every call of Restore is logged. Null if memory ran out.
KIVUI_API std::unique_ptr<DrawingTarget> CreateRecordingTarget(CallSink sink);

}  // namespace kivui::scrivel
