#include <kivui/SVG.h>

namespace kivui::svg {

namespace {

class RasterizerParameters : public RasterizerParametersInterface {
public:
    float Scale() const noexcept override { return scale_; }
    void SetScale(float scale) noexcept override { scale_ = scale; }

private:
    float scale_ = 1;
};

}  // namespace

RasterizerParametersInterface::~RasterizerParametersInterface() = default;

std::shared_ptr<RasterizerParametersInterface> RasterizerParametersInterface::Create()
{
    return std::make_shared<RasterizerParameters>();
}

// Defined here so that each virtual table exists once, in this library.
ISVGDocument::ISVGDocument() = default;

ISVGDocument::~ISVGDocument() = default;

ICSSData::ICSSData() = default;

ICSSData::~ICSSData() = default;

ISVGHandler::ISVGHandler() = default;

ISVGHandler::~ISVGHandler() = default;

}  // namespace kivui::svg
