#include "tools/common/Files.h"

#include "tools/common/CommandLine.h"
#include "tools/common/Json.h"

#include <kivcore/FileReplacement.h>
#include <kivcore/StringConversion.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <streambuf>
#include <system_error>
#include <utility>

namespace tools {

namespace {

constexpr std::size_t kBlockBytes = 64 * 1024;

std::string ReadStandardInput()
{
    std::string content;
    std::string block(kBlockBytes, '\0');
    std::size_t count;
    while ((count = std::fread(block.data(), 1, block.size(), stdin)) > 0)
        content.append(block, 0, count);
    if (std::ferror(stdin) != 0)
        throw Failure("standard input: cannot be read");
    return content;
}

// Passes on to a file that is being replaced. What the file throws would end in the stream's state;
// it is kept for whoever wrote.
class FileBuffer : public std::streambuf {
public:
    explicit FileBuffer(kivcore::filesupport::OutputFile& file) : file_(file) {}

    void Rethrow() const
    {
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override
    {
        try {
            file_.Write(bytes, static_cast<std::size_t>(count));
            return count;
        } catch (...) {
            failure_ = std::current_exception();
            return 0;
        }
    }
    int_type overflow(int_type unit) override
    {
        const char byte = traits_type::to_char_type(unit);
        return xsputn(&byte, 1) == 1 ? unit : traits_type::eof();
    }

    kivcore::filesupport::OutputFile& file_;
    std::exception_ptr failure_;
};

std::string& PendingOutput()
{
    static std::string pending;
    return pending;
}

class PrintBuffer : public std::streambuf {
    std::streamsize xsputn(const char* bytes, std::streamsize count) override
    {
        Print({bytes, static_cast<std::size_t>(count)});
        return count;
    }
    int_type overflow(int_type unit) override
    {
        const char byte = traits_type::to_char_type(unit);
        Print({&byte, 1});
        return unit;
    }
};

}  // namespace

std::string NameOf(const std::string& name)
{
    return name == kStandard ? "standard input" : name;
}

std::string ReadInput(const std::string& name)
{
    if (name == kStandard)
        return ReadStandardInput();
    try {
        kivcore::filesupport::InputFile file(kivcore::string::UTF8to16(name));
        std::string content(file.SizeBytes(), '\0');
        content.resize(file.ReadAt(0, content.data(), content.size()));
        return content;
    } catch (const kivcore::filesupport::FileError& error) {
        throw Failure(error.what());
    }
}

void WriteOutput(const std::string& name, const std::function<void(std::ostream& out)>& write)
{
    if (name == kStandard) {
        PrintBuffer buffer;
        std::ostream out(&buffer);
        write(out);
        return;
    }
    try {
        kivcore::filesupport::ReplaceWholeFile(kivcore::string::UTF8to16(name),
                                               [&](kivcore::filesupport::OutputFile& file) {
                                                   FileBuffer buffer(file);
                                                   std::ostream out(&buffer);
                                                   write(out);
                                                   buffer.Rethrow();
                                               },
                                               {});
    } catch (const kivcore::filesupport::FileError& error) {
        throw Failure(error.what());
    }
}

void WriteQuickly(const std::string& name, std::string_view content)
{
    const std::filesystem::path path(std::u8string(name.begin(), name.end()));
    std::ofstream out(path, std::ios_base::binary);
    const bool isOpen = out.is_open();
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.close();
    if (out)
        return;
    const std::error_code reason(errno, std::generic_category());
    if (isOpen) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    throw Failure(name + ": cannot be written: " + reason.message());
}

std::vector<JsonLine> ReadJsonLines(const std::string& name)
{
    const std::string content = ReadInput(name);
    std::vector<JsonLine> lines;
    std::size_t number = 0;
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        const std::string_view line(content.data() + start, end - start);
        start = end + 1;
        ++number;
        if (line.find_first_not_of(" \t\r") == std::string_view::npos)
            continue;
        JsonLine read = {{}, number};
        std::string reason;
        if (!ParseJsonString(line, read.text, reason))
            throw Failure(NameOf(name) + ":" + std::to_string(number) + ": the line " + reason);
        lines.push_back(std::move(read));
    }
    return lines;
}

void Print(std::string_view text)
{
    PendingOutput() += text;
    if (PendingOutput().size() >= kBlockBytes)
        FlushOutput();
}

void Tell(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void FlushOutput()
{
    const std::string pending = std::exchange(PendingOutput(), {});
    std::fwrite(pending.data(), 1, pending.size(), stdout);
    // The stream remembers also what failed where it could not be told.
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw Failure("standard output: cannot be written");
}

}  // namespace tools
