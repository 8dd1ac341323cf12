#include "svgloom/src/SVGStringParser.h"
#include "tools/common/Files.h"
#include "tools/common/Progress.h"
#include "tools/svgloom/Artwork.h"
#include "tools/svgloom/Commands.h"
#include "tools/svgloom/ContactSheet.h"
#include "tools/svgloom/Picture.h"
#include "tools/svgloom/RenderSize.h"

#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <vector>

namespace svgloom {

namespace {

using tools::Failure;
using tools::UsageError;

std::filesystem::path ToPath(const std::string& name)
{
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

std::string ToUtf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

// A file's name without its folder and its ending.
std::string StemOf(const std::string& file)
{
    return file == tools::kStandard ? "stdin" : ToUtf8(ToPath(file).stem());
}

SVGLoom::Color BackgroundOf(const tools::Arguments& arguments)
{
    const std::optional<std::string> text = arguments.Value("--background");
    if (!text || *text == "none" || *text == "transparent")
        return {0, 0, 0, 0};
    SVGLoom::ColorValue value;
    SVGLoom::ParseResult result = SVGLoom::ParseResult::kInvalid;
    const char* current = text->data();
    const char* const end = current + text->size();
    if (!SVGLoom::SVGStringParser::ParseColor(current, end, value, /*allowCurrentColor=*/false,
                                              result) ||
        current != end || !std::holds_alternative<SVGLoom::Color>(value))
        throw UsageError("option --background does not take \"" + *text +
                         "\": it takes #rgb, #rrggbb, rgb(r,g,b), a name, or none");
    return std::get<SVGLoom::Color>(value);
}

// Where the picture of each file goes; empty for nowhere.
std::vector<std::string> OutputsOf(const tools::Arguments& arguments)
{
    const std::vector<std::string>& files = arguments.Files();
    const std::optional<std::string> output = arguments.Value("-o");
    const std::optional<std::string> folder = arguments.Value("--out-dir");
    if (output && folder)
        throw UsageError("-o and --out-dir exclude each other");
    if (output && files.size() > 1)
        throw UsageError("-o takes one file; for several there is --out-dir");
    if (!output && !folder && !arguments.Has("--contact-sheet"))
        throw UsageError("none of -o, --out-dir and --contact-sheet is there");
    if (!folder)
        return std::vector<std::string>(files.size(), output.value_or(""));

    std::vector<std::string> outputs;
    std::map<std::string, std::string> takenBy;
    for (const std::string& file : files) {
        const std::string picture = ToUtf8(ToPath(*folder) / ToPath(StemOf(file) + ".png"));
        const auto [taken, isNew] = takenBy.emplace(picture, file);
        if (!isNew)
            throw Failure(tools::NameOf(file) + " and " + tools::NameOf(taken->second) +
                          " would both become " + picture);
        outputs.push_back(picture);
    }
    return outputs;
}

void MakeFolder(const std::string& name)
{
    std::error_code error;
    std::filesystem::create_directories(ToPath(name), error);
    if (error)
        throw Failure(name + ": cannot be made: " + error.message());
}

class Rendering {
public:
    explicit Rendering(const tools::Arguments& arguments)
        : settings_(arguments),
          size_(arguments),
          background_(BackgroundOf(arguments)),
          isForMany_(arguments.Has("--out-dir"))
    {
        if (arguments.Has("--contact-sheet"))
            sheet_.emplace(arguments, settings_, size_);
        else if (arguments.Has("--brightness") || arguments.Has("--scales"))
            throw UsageError("--brightness and --scales are for --contact-sheet");
        try {
            settings_.ParseSheet();
        } catch (const std::exception& error) {
            throw Failure(settings_.SheetName() + ": " + error.what());
        }
    }

    // Reads a file and writes its picture; remembers it for the contact sheet.
    void Render(const std::string& file, const std::string& output)
    {
        auto artwork = std::make_unique<Artwork>(tools::ReadInput(file));
        if (!artwork->XmlError().empty())
            throw std::runtime_error("malformed XML: " + artwork->XmlError());
        if (!output.empty())
            WritePicture(*artwork, output);
        if (sheet_)
            sheet_->Add(StemOf(file), std::move(artwork));
    }

    // Returns false if something could not be drawn.
    bool WriteSheet() const { return !sheet_ || sheet_->Write(); }

private:
    void WritePicture(Artwork& artwork, const std::string& output) const
    {
        const RenderSize size = size_.For(artwork.Document().ViewBox());
        Picture picture(size.pixelWidth, size.pixelHeight);
        if (background_.alpha > 0)
            picture.Fill(picture.Area(), background_);
        const auto target = picture.Target(picture.Area());
        artwork.Draw(settings_, settings_.Colors(), size.width, size.height, *target);
        const std::string png = picture.Png();
        if (isForMany_)
            tools::WriteQuickly(output, png);
        else
            tools::WriteOutput(output, [&](std::ostream& out) { out << png; });
    }

    DrawSettings settings_;
    SizeOptions size_;
    SVGLoom::Color background_;
    bool isForMany_;
    std::optional<ContactSheet> sheet_;
};

}  // namespace

int RunRender(const tools::Arguments& arguments)
{
    const std::vector<std::string> outputs = OutputsOf(arguments);
    Rendering rendering(arguments);
    if (const std::optional<std::string> folder = arguments.Value("--out-dir"))
        MakeFolder(*folder);
    int status = tools::kDone;
    {
        tools::Progress progress("svgloom", "files", outputs.size());
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            const std::string& file = arguments.Files()[i];
            try {
                rendering.Render(file, outputs[i]);
            } catch (const Failure& failure) {
                progress.Tell("svgloom: " + std::string(failure.what()));
                status = tools::kBad;
            } catch (const std::exception& error) {
                progress.Tell("svgloom: " + tools::NameOf(file) + ": " + error.what());
                status = tools::kBad;
            }
            progress.Step();
        }
    }
    return rendering.WriteSheet() ? status : tools::kBad;
}

}  // namespace svgloom
