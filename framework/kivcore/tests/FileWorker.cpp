// A small program that works on files in a process of its own, where the environment, the folder of
// the program and its memory can be looked at. Prints the outcome; exits with 1 for a FileError.

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <kivcore/Config.h>
#include <kivcore/Dir.h>
#include <kivcore/FileReplacement.h>
#include <kivcore/Resource.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Xml.h>

#include "framework/kivcore/tests/FileWorker.h"

namespace {

using namespace kivcore;
using namespace kivcore::filesupport;

const char kProgramAnchor = 0;

constexpr int kFillRounds = 40;
constexpr std::size_t kFillBytes = 300'000;

std::string Run(const std::string& command, const std::string& first, const std::string& second)
{
    if (command == "replace") {
        ReplaceWholeFile(PathFromUTF8(first),
                         [&second](OutputFile& out) { out.Write(second.data(), second.size()); },
                         {});
        return "replaced";
    }
    if (command == "copy") {
        InputFile source(PathFromUTF8(first));
        ReplaceWholeFile(
            PathFromUTF8(second),
            [&source](OutputFile& out) { out.CopyFrom(source, 0, source.SizeBytes()); }, {});
        return "copied";
    }
    if (command == "fill") {
        // Again and again, as one of several; tells how often it came through.
        int replaced = 0;
        for (int round = 0; round < kFillRounds; ++round) {
            try {
                ReplaceWholeFile(PathFromUTF8(first),
                                 [&second](OutputFile& out) {
                                     const std::string content(kFillBytes, second.at(0));
                                     out.Write(content.data(), content.size());
                                 },
                                 {});
                ++replaced;
            } catch (const FileError&) {
                continue;
            }
        }
        return std::to_string(replaced);
    }
    if (command == "appdir") {
        return PathToUTF8(Dir::AppDir().FullPath());
    }
    if (command == "prefdir") {
        config::SetCompanyName(string::UTF8to16(first));
        config::SetClientName(string::UTF8to16(second));
        return PathToUTF8(Dir::PrefDir().FullPath());
    }
    if (command == "resource") {
        const void* address = &kProgramAnchor;
        if (first == "library") {
            // A virtual table stands in the library itself, wherever the program keeps its copies
            // of addresses.
            const xml::MSXMLParserFactory object;
            std::memcpy(&address, static_cast<const void*>(&object), sizeof address);
        }
        return LoadXmlResource(address, second).value_or("none");
    }
    return "what?";
}

}  // namespace

int main(int count, char** arguments)
{
    std::vector<std::string> words = WorkerArguments(count, arguments);
    words.resize(3);
    try {
        std::fputs(Run(words[0], words[1], words[2]).c_str(), stdout);
        return 0;
    } catch (const FileError& error) {
        std::fputs(error.what(), stdout);
        return 1;
    }
}
