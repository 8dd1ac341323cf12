// The handle of a document of SVGHandler's: its number, and nothing else.

#pragma once

#include <cstdint>

#include <kivui/SVG.h>

namespace svgloom {

class VomSVGDocument final : public kivui::svg::ISVGDocument {
public:
    explicit VomSVGDocument(std::uint32_t id) : id_(id) {}
    /// Destroys the document that has this id now, if there is one.
    ~VomSVGDocument() override;

    /// The size of the viewBox without what is behind the point; 0 where that is not finite, or
    /// there is no such document.
    float Width() const override;
    float Height() const override;

    std::uint32_t Id() const noexcept { return id_; }

private:
    std::uint32_t id_;
};

}  // namespace svgloom
