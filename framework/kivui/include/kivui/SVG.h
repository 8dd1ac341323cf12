// Vector artwork: the service that the application supplies (UI_NodeManager::SetSVGHandler), and
// the handles that it hands out. This library draws icons through it and knows no SVG itself.
//
// Used on the user interface's thread. The operations of the interfaces stand in their table in the
// order of declaration, which is fixed; new ones go to the end.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kivcore/ImmutableString.h>
#include <kivcore/RefCounted.h>
#include <kivui/Export.h>
#include <kivui/Scrivel.h>

namespace kivui::svg {

/// What whoever draws tells a handler about the pixels behind a drawing target.
class KIVUI_API RasterizerParametersInterface {
public:
    RasterizerParametersInterface() = default;
    RasterizerParametersInterface(const RasterizerParametersInterface&) = delete;
    RasterizerParametersInterface& operator=(const RasterizerParametersInterface&) = delete;
    virtual ~RasterizerParametersInterface();

    /// New parameters, with a scale of 1.
    static std::shared_ptr<RasterizerParametersInterface> Create();

    /// Pixels per design unit.
    virtual float Scale() const noexcept = 0;
    virtual void SetScale(float scale) noexcept = 0;
};

/// A handle of a parsed document; the document itself stays with the handler.
class KIVUI_API ISVGDocument : public kivcore::utility::RefCountedObject {
public:
    ~ISVGDocument() override;
    /// The image's own size in user units, whole numbers; 0 where the handler has it no more.
    virtual float Width() const = 0;
    virtual float Height() const = 0;

    // Belong to whoever asked for the document; a handler leaves them alone.
    std::uint32_t ownerFlags = 0;
    std::uint32_t ownerValue = 0;

protected:
    ISVGDocument();
};

/// By the names of variables, without the leading "--".
using ColorMap = std::map<std::string, scrivel::Color, std::less<>>;

/// A handle of a parsed style sheet, and what else a drawing takes from its owner, who fills it in.
class KIVUI_API ICSSData : public kivcore::utility::RefCountedObject {
public:
    ~ICSSData() override;

    kivcore::ImmutableString name;  // the owner's, for its traces
    std::uint32_t ownerValue = 0;   // the owner's
    ColorMap colors;                // what var() stands for while this is drawn with
    std::shared_ptr<RasterizerParametersInterface> rasterizerParameters =
        RasterizerParametersInterface::Create();

protected:
    ICSSData();
};

class KIVUI_API ISVGHandler {
public:
    ISVGHandler(const ISVGHandler&) = delete;
    ISVGHandler& operator=(const ISVGHandler&) = delete;

    /// Parses SVG text, which is copied. Bad text gives a document all the same, or the exceptions
    /// of the implementation.
    virtual boost::intrusive_ptr<ISVGDocument> CreateDocument(std::string_view text) = 0;
    /// Parses CSS text, which is copied.
    virtual boost::intrusive_ptr<ICSSData> CreateStyleData(std::string_view text) = 0;
    /// Draws so that the image fits into `width` by `height` of the context's user units; its upper
    /// left corner goes to their origin. Without `style` there are no variables. Handles that are
    /// empty, or not the implementation's own, draw nothing. Lets the implementation's exceptions
    /// out.
    virtual void Render(scrivel::DrawingTarget& context,
                        boost::intrusive_ptr<ISVGDocument> document,
                        boost::intrusive_ptr<ICSSData> style, std::int32_t width,
                        std::int32_t height) = 0;

protected:
    ISVGHandler();
    ~ISVGHandler();  // whoever supplies a handler ends it
};

}  // namespace kivui::svg
