#include "tools/svgloom/Artwork.h"

#include "svgloom/src/DocumentCreator.h"
#include "tools/common/Files.h"
#include "tools/common/Program.h"
#include "tools/svgloom/JsonValues.h"

#include <exception>

namespace svgloom {

namespace {

// "NAME=R,G,B,A"
void AddVariable(const std::string& word, SVGLoom::ColorMap& colors)
{
    constexpr std::size_t kNumbers = 4;
    const tools::UsageError wrong("option --var does not take \"" + word + "\"");
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0)
        throw wrong;
    float values[kNumbers];
    std::size_t at = equals + 1;
    for (std::size_t i = 0; i < kNumbers; ++i) {
        const std::size_t end = i + 1 < kNumbers ? word.find(',', at) : word.size();
        if (end == std::string::npos)
            throw wrong;
        const std::optional<float> value = tools::ParseFloat({word.data() + at, end - at});
        if (!value || !(*value >= 0 && *value <= 1))
            throw wrong;
        values[i] = *value;
        at = end + 1;
    }
    colors[word.substr(0, equals)] = {values[0], values[1], values[2], values[3]};
}

}  // namespace

DrawSettings::DrawSettings(const tools::Arguments& arguments) : id_(arguments.Value("--id"))
{
    for (const std::string& word : arguments.Values("--var"))
        AddVariable(word, colors_);
    if (const std::optional<std::string> file = arguments.Value("--css")) {
        sheetName_ = tools::NameOf(*file);
        sheetText_ = tools::ReadInput(*file);
    }
}

void DrawSettings::ParseSheet()
{
    if (sheetText_)
        sheet_.emplace().Add(*sheetText_);
}

Artwork::Artwork(std::string_view text)
    : renderer_(std::make_shared<SVGLoom::ScrivelSVGRenderer>()),
      document_(SVGLoom::CreateDocument(text, renderer_, &xmlError_))
{
}

void Artwork::Draw(const DrawSettings& settings, const SVGLoom::ColorMap& colors, float width,
                   float height, kivui::scrivel::DrawingTarget& target)
{
    renderer_->Bind(target);
    document_->AttachStyleSheet(settings.Sheet());
    try {
        if (settings.Id())
            document_->Render(*settings.Id(), colors, width, height);
        else
            document_->Render(colors, width, height);
    } catch (...) {
        renderer_->Unbind();
        throw;
    }
    renderer_->Unbind();
}

int PrintOfArtwork(const std::string& file, const std::function<void(Artwork& artwork)>& print)
{
    const std::string text = tools::ReadInput(file);
    const auto tell = [&](const std::string& what) {
        tools::Tell("svgloom: " + tools::NameOf(file) + ": " + what + "\n");
    };
    try {
        Artwork artwork(text);
        if (!artwork.XmlError().empty())
            tell("malformed XML: " + artwork.XmlError());
        print(artwork);
        return tools::kDone;
    } catch (const std::exception& error) {
        tools::Print(JsonError(error.what()) + "\n");
        tell(error.what());
        return tools::kBad;
    }
}

}  // namespace svgloom
