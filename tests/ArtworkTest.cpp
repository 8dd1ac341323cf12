// The sample artwork in the folder artwork: what each file asks the drawing layer to do, held by
// the file of the same name that ends in ".calls", and, for those in artwork/pictures, the pixels
// too, by ".hash". KIV_UPDATE_GOLDEN=1 rewrites these files and still fails, so that nobody updates
// unseen.

#include <gtest/gtest.h>

#include <kivui/ScrivelTargets.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/svgloom/Artwork.h"
#include "tools/svgloom/JsonValues.h"
#include "tools/svgloom/Picture.h"

namespace {

constexpr std::string_view kPictures = "pictures";
constexpr std::string_view kOptions = "options: ";
constexpr float kUsualSide = 100;
constexpr tools::OptionRow kOptionRows[] = {
    {"--width", true}, {"--height", true}, {"--id", true}, {"--css", true}, {"--var", true},
};

std::optional<std::string> ReadFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// One file: its point, told in its first comment, and the options that stand there.
class Sample {
public:
    explicit Sample(std::filesystem::path file)
        : file_(std::move(file)), text_(ReadFile(file_).value_or(""))
    {
        const std::size_t open = text_.find("<!-- ");
        const std::size_t close = text_.find(" -->", open);
        if (open == std::string::npos || close == std::string::npos) {
            return;
        }
        point_ = text_.substr(open + 5, close - open - 5);
        if (const std::size_t at = point_.find(kOptions); at != std::string::npos) {
            std::istringstream rest(point_.substr(at + kOptions.size()));
            for (std::string word; rest >> word;) {
                // Files are named from where the sample lies.
                const bool isFile = !words_.empty() && words_.back() == "--css";
                words_.push_back(isFile ? (file_.parent_path() / word).string() : word);
            }
        }
    }

    std::string Name() const
    {
        return file_.parent_path().filename().string() + "/" + file_.stem().string();
    }
    bool IsPicture() const { return file_.parent_path().filename() == kPictures; }
    const std::string& Point() const { return point_; }
    std::filesystem::path Beside(std::string_view ending) const
    {
        return std::filesystem::path(file_).replace_extension(ending);
    }

    float Width() const { return Options().Number("--width").value_or(kUsualSide); }
    float Height() const { return Options().Number("--height").value_or(kUsualSide); }

    /// Returns what the engine threw, if it did.
    std::optional<std::string> Draw(kivui::scrivel::DrawingTarget& target) const
    {
        svgloom::DrawSettings settings(Options());
        try {
            svgloom::Artwork artwork(text_);
            settings.ParseSheet();
            artwork.Draw(settings, settings.Colors(), Width(), Height(), target);
        } catch (const std::exception& error) {
            return error.what();
        }
        return std::nullopt;
    }

private:
    tools::Arguments Options() const { return tools::Arguments(kOptionRows, words_); }

    std::filesystem::path file_;
    std::string text_;
    std::string point_;
    std::vector<std::string> words_;
};

std::vector<Sample> Samples()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(KIV_SAMPLE_ARTWORK_DIR)) {
        if (entry.path().extension() == ".svg") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return {files.begin(), files.end()};
}

/// Holds `outcome` against the file of that ending; tells whether that was rewritten.
bool ExpectGolden(const Sample& sample, std::string_view ending, const std::string& outcome)
{
    const std::filesystem::path file = sample.Beside(ending);
    const std::optional<std::string> want = ReadFile(file);
    EXPECT_EQ(want.value_or("(no file)"), outcome) << sample.Name() << ": " << sample.Point();
    if (want == outcome || std::getenv("KIV_UPDATE_GOLDEN") == nullptr) {
        return false;
    }
    std::ofstream(file, std::ios::binary) << outcome;
    return true;
}

/// For people; nothing compares it.
void WritePicture(const Sample& sample)
{
    svgloom::Picture picture(static_cast<int>(sample.Width()), static_cast<int>(sample.Height()));
    sample.Draw(*picture.Target(picture.Area()));
    std::ofstream(sample.Beside(".png"), std::ios::binary) << picture.Png();
}

std::string Calls(const Sample& sample)
{
    std::string lines;
    const auto target = kivui::scrivel::CreateRecordingTarget(
        [&lines](std::string_view line) { lines.append(line) += '\n'; });
    if (const std::optional<std::string> error = sample.Draw(*target)) {
        lines += svgloom::JsonError(*error) + "\n";
    }
    return lines;
}

/// Size and a hash of the pixels, in hexadecimal digits.
std::string HashOfPixels(const Sample& sample)
{
    const auto width = static_cast<int>(sample.Width());
    const auto height = static_cast<int>(sample.Height());
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) *
                                      static_cast<std::size_t>(height));
    const auto target = kivui::scrivel::CreatePixelTarget({pixels.data(), width, height, width});
    EXPECT_FALSE(sample.Draw(*target).has_value()) << sample.Name();
    EXPECT_NE(std::count(pixels.begin(), pixels.end(), pixels[0]),
              static_cast<std::ptrdiff_t>(pixels.size()))
        << sample.Name() << " shows nothing";
    std::uint64_t hash = 14695981039346656037U;
    for (const std::uint32_t pixel : pixels) {
        for (int byte = 0; byte < 4; ++byte) {
            hash = (hash ^ ((pixel >> (8 * byte)) & 0xFF)) * 1099511628211U;
        }
    }
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, hash, 16).ptr;
    return std::to_string(width) + " " + std::to_string(height) + " " + std::string(digits, end) +
           "\n";
}

TEST(Artwork, Calls)
{
    for (const Sample& sample : Samples()) {
        ExpectGolden(sample, ".calls", Calls(sample));
    }
}

TEST(Artwork, Pixels)
{
    for (const Sample& sample : Samples()) {
        if (sample.IsPicture() && ExpectGolden(sample, ".hash", HashOfPixels(sample))) {
            WritePicture(sample);
        }
    }
}

TEST(Artwork, EveryFileTellsItsPoint)
{
    const std::vector<Sample> samples = Samples();
    EXPECT_GT(samples.size(), 300u);
    for (const Sample& sample : samples) {
        EXPECT_TRUE(sample.Point().find('.') != std::string::npos) << sample.Name();
    }
}

TEST(Artwork, NoOutcomeWithoutItsFile)
{
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(KIV_SAMPLE_ARTWORK_DIR)) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() == ".calls" || path.extension() == ".hash") {
            EXPECT_TRUE(exists(std::filesystem::path(path).replace_extension(".svg"))) << path;
        }
    }
}

}  // namespace
