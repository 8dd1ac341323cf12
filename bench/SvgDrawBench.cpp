// Drawing parsed artwork on pixels, against librsvg on a cairo image surface and against a floor:
// AGG filling the same outlines, flattened beforehand, with a bare span blender. Clearing the
// pixels counts on all sides.
//
// usage: KIV_BENCH_ARTWORK=FOLDER SvgDrawBench

#include "bench/SvgCorpora.h"
#include "framework/kivui/src/scrivel/Blending.h"
#include "framework/kivui/src/scrivel/Objects.h"
#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/DocumentCreator.h"

#include <agg2/agg_conv_curve.h>
#include <agg2/agg_conv_stroke.h>
#include <agg2/agg_conv_transform.h>
#include <agg2/agg_path_storage.h>
#include <agg2/agg_rasterizer_scanline_aa.h>
#include <agg2/agg_scanline_p.h>
#include <agg2/agg_trans_affine.h>
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <kivui/ScrivelTargets.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace scrivel = kivui::scrivel;

// Some pictures of a set, spread over all of it.
std::vector<std::string> SampleOf(benchmark::State& state, const std::string& name)
{
    constexpr std::size_t kPictures = 250;
    const std::vector<std::string> all = bench::LoadCorpus(state, name);
    std::vector<std::string> some;
    for (std::size_t i = 0; i < std::min(kPictures, all.size()); ++i) {
        some.push_back(all[i * all.size() / std::min(kPictures, all.size())]);
    }
    return some;
}

struct Pixels {
    explicit Pixels(int pixelSize)
        : size(pixelSize),
          pixels(static_cast<std::size_t>(pixelSize) * static_cast<std::size_t>(pixelSize))
    {
    }
    void Clear() { std::memset(pixels.data(), 0, pixels.size() * sizeof(std::uint32_t)); }
    scrivel::PixelBuffer Buffer() { return {pixels.data(), size, size, size}; }

    int size;
    std::vector<std::uint32_t> pixels;
};

// Ours.

using Document = std::unique_ptr<SVGLoom::SVGDocumentImpl>;

void Render(SVGLoom::SVGDocumentImpl& document, SVGLoom::ScrivelSVGRenderer& renderer,
            scrivel::DrawingTarget& target, int size)
{
    renderer.Bind(target);
    document.Render({}, static_cast<float>(size), static_cast<float>(size));
    renderer.Unbind();
}

// librsvg.

struct Destroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

class CairoPixels {
public:
    explicit CairoPixels(int size)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size)),
          context_(cairo_create(surface_.get())),
          size_(size)
    {
    }

    void Draw(RsvgHandle* handle)
    {
        std::memset(cairo_image_surface_get_data(surface_.get()), 0,
                    static_cast<std::size_t>(cairo_image_surface_get_stride(surface_.get())) *
                        static_cast<std::size_t>(size_));
        cairo_surface_mark_dirty(surface_.get());
        const double side = size_;
        const RsvgRectangle area = {0, 0, side, side};
        rsvg_handle_render_document(handle, context_.get(), &area, nullptr);
        cairo_surface_flush(surface_.get());
    }

private:
    const std::unique_ptr<cairo_surface_t, Destroy> surface_;
    const std::unique_ptr<cairo_t, Destroy> context_;
    const int size_;
};

// The floor.

// An area, its corners in pixels.
struct Outline {
    agg::path_storage corners;
    bool nonZero = true;
    std::uint32_t color = 0;
};

// A target that keeps the outlines of what it is to draw. Clips are left out, gradients are their
// first colour.
class OutlineTarget final : public scrivel::DrawingTarget, private scrivel::SurfaceInterface {
public:
    scrivel::FactoryInterface& Factory() noexcept override { return objects_->Factory(); }
    scrivel::SurfaceInterface& Surface() noexcept override { return *this; }
    std::vector<Outline> Take() { return std::move(outlines_); }

private:
    void FillPath(const scrivel::PathInterface& path, const scrivel::BrushInterface& brush,
                  bool nonZero) override
    {
        Add(path, ObjectOf(brush).color, nonZero, nullptr);
    }
    void FillPathLinear(const scrivel::PathInterface& path,
                        const scrivel::LinearShaderInterface& shader, bool nonZero) override
    {
        Add(path, ObjectOf(shader).colors.front(), nonZero, nullptr);
    }
    void FillPathRadial(const scrivel::PathInterface& path,
                        const scrivel::RadialShaderInterface& shader, bool nonZero) override
    {
        Add(path, ObjectOf(shader).inner, nonZero, nullptr);
    }
    void StrokePath(const scrivel::PathInterface& path, const scrivel::PenInterface& pen) override
    {
        Add(path, ObjectOf(pen).color, true, &ObjectOf(pen));
    }
    void ClipPath(const scrivel::PathInterface&, bool, const scrivel::Matrix*) override {}
    void Concat(const scrivel::Matrix& m) override
    {
        matrix_.premultiply(agg::trans_affine(static_cast<double>(m.a), static_cast<double>(m.b),
                                              static_cast<double>(m.c), static_cast<double>(m.d),
                                              static_cast<double>(m.e), static_cast<double>(m.f)));
    }
    void Save() override { saved_.push_back(matrix_); }
    void Restore() noexcept override
    {
        matrix_ = saved_.back();
        saved_.pop_back();
    }

    void Add(const scrivel::PathInterface& path, const scrivel::Color& color, bool nonZero,
             const scrivel::PenObject* pen)
    {
        agg::path_storage segments;
        const scrivel::Point* point = ObjectOf(path).Points().data();
        const auto x = [&](int i) { return static_cast<double>(point[i].x); };
        const auto y = [&](int i) { return static_cast<double>(point[i].y); };
        for (const scrivel::SegmentKind kind : ObjectOf(path).Kinds()) {
            switch (kind) {
                case scrivel::SegmentKind::kMove:
                    segments.move_to(x(0), y(0));
                    ++point;
                    break;
                case scrivel::SegmentKind::kLine:
                    segments.line_to(x(0), y(0));
                    ++point;
                    break;
                case scrivel::SegmentKind::kCurve:
                    segments.curve4(x(0), y(0), x(1), y(1), x(2), y(2));
                    point += 3;
                    break;
                case scrivel::SegmentKind::kClose:
                    segments.close_polygon();
                    break;
            }
        }
        Outline outline;
        outline.nonZero = nonZero;
        outline.color = scrivel::ToPixel(color);
        const double scale = matrix_.scale();
        agg::conv_curve<agg::path_storage> curves(segments);
        curves.approximation_scale(scale);
        if (pen == nullptr) {
            agg::conv_transform<decltype(curves)> mapped(curves, matrix_);
            outline.corners.concat_path(mapped);
        } else {
            agg::conv_stroke<decltype(curves)> stroke(curves);
            stroke.width(static_cast<double>(pen->width));
            stroke.approximation_scale(scale);
            agg::conv_transform<decltype(stroke)> mapped(stroke, matrix_);
            outline.corners.concat_path(mapped);
        }
        outlines_.push_back(outline);
    }

    const std::unique_ptr<scrivel::DrawingTarget> objects_ = scrivel::CreateRecordingTarget({});
    agg::trans_affine matrix_;
    std::vector<agg::trans_affine> saved_;
    std::vector<Outline> outlines_;
};

void Fill(Outline& outline, agg::rasterizer_scanline_aa<>& rasterizer, agg::scanline_p8& line,
          Pixels& pixels)
{
    rasterizer.reset();
    rasterizer.filling_rule(outline.nonZero ? agg::fill_non_zero : agg::fill_even_odd);
    rasterizer.add_path(outline.corners);
    if (!rasterizer.rewind_scanlines()) {
        return;
    }
    line.reset(rasterizer.min_x(), rasterizer.max_x());
    while (rasterizer.sweep_scanline(line)) {
        std::uint32_t* const row = pixels.pixels.data() + line.y() * pixels.size;
        auto span = line.begin();
        for (unsigned i = line.num_spans(); i > 0; --i, ++span) {
            std::uint32_t* pixel = row + span->x;
            if (span->len < 0) {  // a run of one coverage
                const std::uint32_t cover = *span->covers;
                if (cover == 255 && outline.color >> 24 == 255) {
                    std::fill(pixel, pixel - span->len, outline.color);
                    continue;
                }
                for (int k = 0; k < -span->len; ++k) {
                    pixel[k] = scrivel::Over(outline.color, cover, pixel[k]);
                }
                continue;
            }
            for (int k = 0; k < span->len; ++k) {
                pixel[k] = scrivel::Over(outline.color, span->covers[k], pixel[k]);
            }
        }
    }
}

class AggPixels {
public:
    explicit AggPixels(int size) : pixels_(size) { rasterizer_.clip_box(0, 0, size, size); }

    void Draw(std::vector<Outline>& outlines)
    {
        pixels_.Clear();
        for (Outline& outline : outlines) {
            Fill(outline, rasterizer_, line_, pixels_);
        }
    }

private:
    Pixels pixels_;
    agg::rasterizer_scanline_aa<> rasterizer_;
    agg::scanline_p8 line_;
};

// Calls work for each.
template <class List, class Work>
std::function<void()> ForEach(List& list, Work work)
{
    return [&list, work] {
        for (auto& each : list) {
            work(each);
        }
        benchmark::ClobberMemory();
    };
}

constexpr int kRounds = 15;

// Times of one picture in microseconds, and how many times faster than librsvg it went.
void Report(benchmark::State& state, const std::vector<double>& seconds, std::size_t pictures)
{
    const double microseconds = 1e6 / static_cast<double>(pictures);
    state.counters["us"] = seconds[0] * microseconds;
    state.counters["librsvg_us"] = seconds[1] * microseconds;
    state.counters["times_librsvg"] = seconds[1] / seconds[0];
    if (seconds.size() > 2) {
        state.counters["floor_us"] = seconds[2] * microseconds;
        state.counters["floor_times_librsvg"] = seconds[1] / seconds[2];
    }
}

void DrawCorpus(benchmark::State& state, const std::string& name, int size)
{
    const std::vector<std::string> texts = SampleOf(state, name);
    const auto renderer = std::make_shared<SVGLoom::ScrivelSVGRenderer>();
    std::vector<Document> documents;
    std::vector<bench::RsvgDocument> handles;
    std::vector<std::vector<Outline>> pictures;
    for (const std::string& text : texts) {
        documents.push_back(SVGLoom::CreateDocument(text, renderer));
        handles.push_back(bench::ParseWithRsvg(text));
        OutlineTarget target;
        Render(*documents.back(), *renderer, target, size);
        pictures.push_back(target.Take());
        if (handles.back() == nullptr) {
            state.SkipWithError("librsvg refuses a picture");
            return;
        }
    }
    if (texts.empty()) {
        return;
    }
    Pixels pixels(size);
    const auto target = scrivel::CreatePixelTarget(pixels.Buffer());
    CairoPixels cairo(size);
    AggPixels agg(size);
    for (auto _ : state) {
        Report(state,
               bench::MediansInTurn(
                   kRounds,
                   {ForEach(documents,
                            [&](const Document& document) {
                                pixels.Clear();
                                Render(*document, *renderer, *target, size);
                            }),
                    ForEach(handles,
                            [&](const bench::RsvgDocument& handle) { cairo.Draw(handle.get()); }),
                    ForEach(pictures, [&](std::vector<Outline>& each) { agg.Draw(each); })}),
               texts.size());
    }
}

void ParseAndDrawCorpus(benchmark::State& state, const std::string& name, int size)
{
    const std::vector<std::string> texts = SampleOf(state, name);
    if (texts.empty()) {
        return;
    }
    Pixels pixels(size);
    const auto target = scrivel::CreatePixelTarget(pixels.Buffer());
    CairoPixels cairo(size);
    for (auto _ : state) {
        Report(state,
               bench::MediansInTurn(
                   kRounds, {ForEach(texts,
                                     [&](const std::string& text) {
                                         const auto renderer =
                                             std::make_shared<SVGLoom::ScrivelSVGRenderer>();
                                         const Document document =
                                             SVGLoom::CreateDocument(text, renderer);
                                         pixels.Clear();
                                         Render(*document, *renderer, *target, size);
                                     }),
                             ForEach(texts,
                                     [&](const std::string& text) {
                                         cairo.Draw(bench::ParseWithRsvg(text).get());
                                     })}),
               texts.size());
    }
}

}  // namespace

int main(int argc, char** argv)
{
    using Work = void (*)(benchmark::State&, const std::string&, int);
    struct Row {
        const char* name;
        Work work;
        int size;
    };
    for (const Row& row : {Row{"SvgDraw32/", DrawCorpus, 32}, Row{"SvgDraw256/", DrawCorpus, 256},
                           Row{"SvgParseAndDraw32/", ParseAndDrawCorpus, 32}}) {
        for (const std::string set : bench::kCorpusNames) {
            benchmark::RegisterBenchmark((row.name + set).c_str(), row.work, set, row.size)
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return bench::RunRegistered(argc, argv);
}
