#include "tools/svgloom/Picture.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdlib>
#include <new>
#include <vector>

namespace svgloom {

namespace {

// Asked for zeroed: what nothing is drawn on then takes no memory on most systems.
std::uint32_t* AllocatePixels(int width, int height)
{
    void* const pixels = std::calloc(
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height), sizeof(std::uint32_t));
    if (pixels == nullptr)
        throw std::bad_alloc();
    return static_cast<std::uint32_t*>(pixels);
}

std::uint32_t ToByte(float part)
{
    return static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0f, 1.0f) * 255.0f));
}

std::uint32_t Premultiplied(const SVGLoom::Color& color)
{
    const std::uint32_t alpha = ToByte(color.alpha);
    const auto part = [&](float value) { return (ToByte(value) * alpha + 127) / 255; };
    return alpha << 24 | part(color.red) << 16 | part(color.green) << 8 | part(color.blue);
}

// From premultiplied 0xAARRGGBB to the bytes red, green, blue and alpha.
void StoreStraight(std::uint32_t pixel, png_byte* bytes)
{
    const std::uint32_t alpha = pixel >> 24;
    const auto part = [&](int shift) {
        const std::uint32_t value = (pixel >> shift) & 0xFF;
        return static_cast<png_byte>(
            alpha == 0 ? 0 : std::min<std::uint32_t>((value * 255 + alpha / 2) / alpha, 255));
    };
    bytes[0] = part(16);
    bytes[1] = part(8);
    bytes[2] = part(0);
    bytes[3] = static_cast<png_byte>(alpha);
}

constexpr std::size_t kPngPixelBytes = 4;

// libpng leaves by longjmp, so this function holds nothing that needs a destructor.
bool WritePng(png_structp png, png_infop info, const std::uint32_t* pixels, png_uint_32 width,
              png_uint_32 height, png_byte* row)
{
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (png_uint_32 y = 0; y < height; ++y) {
        for (png_uint_32 x = 0; x < width; ++x)
            StoreStraight(pixels[std::size_t{y} * width + x], row + x * kPngPixelBytes);
        png_write_row(png, row);
    }
    png_write_end(png, nullptr);
    return true;
}

void Append(png_structp png, png_bytep bytes, std::size_t count)
{
    bool isDone = true;
    try {
        static_cast<std::string*>(png_get_io_ptr(png))
            ->append(reinterpret_cast<const char*>(bytes), count);
    } catch (const std::bad_alloc&) {
        isDone = false;
    }
    if (!isDone)
        png_error(png, "out of memory");
}

void StayInMemory(png_structp) {}

[[noreturn]] void Leave(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void StaySilent(png_structp, png_const_charp) {}

// The objects of libpng, which go together.
class PngObjects {
public:
    PngObjects()
        : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Leave, StaySilent)),
          info_(png_ != nullptr ? png_create_info_struct(png_) : nullptr)
    {
    }
    PngObjects(const PngObjects&) = delete;
    PngObjects& operator=(const PngObjects&) = delete;
    ~PngObjects() { png_destroy_write_struct(&png_, &info_); }

    png_structp Png() const { return png_; }
    png_infop Info() const { return info_; }

private:
    png_structp png_;
    png_infop info_;
};

}  // namespace

Picture::Picture(int width, int height)
    : width_(width), height_(height), pixels_(AllocatePixels(width, height))
{
}

void Picture::Freer::operator()(std::uint32_t* pixels) const
{
    std::free(pixels);
}

std::uint32_t* Picture::PixelAt(int x, int y) const
{
    return pixels_.get() + static_cast<std::ptrdiff_t>(y) * width_ + x;
}

void Picture::Fill(const PixelArea& area, const SVGLoom::Color& color)
{
    for (int y = area.y; y < area.y + area.height; ++y)
        std::fill_n(PixelAt(area.x, y), area.width, Premultiplied(color));
}

std::unique_ptr<kivui::scrivel::DrawingTarget> Picture::Target(const PixelArea& area)
{
    auto target = kivui::scrivel::CreatePixelTarget(
        {PixelAt(area.x, area.y), area.width, area.height, width_});
    if (target == nullptr)
        throw std::bad_alloc();
    return target;
}

std::string Picture::Png() const
{
    std::string file;
    std::vector<png_byte> row(static_cast<std::size_t>(width_) * kPngPixelBytes);
    const PngObjects objects;
    if (objects.Info() == nullptr)
        throw std::bad_alloc();
    png_set_write_fn(objects.Png(), &file, Append, StayInMemory);
    // Sizes were checked, so nothing else fails.
    if (!WritePng(objects.Png(), objects.Info(), pixels_.get(), static_cast<png_uint_32>(width_),
                  static_cast<png_uint_32>(height_), row.data()))
        throw std::bad_alloc();
    return file;
}

}  // namespace svgloom
