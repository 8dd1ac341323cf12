// kivhost: the sample host. Shows a photo's metadata in the dialog and saves what was confirmed.

#include "host/Batch.h"
#include "host/Console.h"
#include "host/Interruption.h"
#include "host/Listing.h"
#include "host/Options.h"
#include "include/kivmetadataapi.h"
#include "tools/common/Files.h"
#include "tools/common/Progress.h"

#include <kivcore/LastFailure.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivxmp/kivxmp.h>
#include <kivxmp/kivxmp_file.h>

#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#ifndef KIV_VERSION
#error "the build names the version"
#endif

namespace kivhost {

namespace {

enum ExitStatus { kConfirmed = 0, kFailed = 1, kCancelled = 2 };

struct MetaDeleter {
    void operator()(__XMPMeta__* meta) const { KivXmpRelease(meta); }
};
using Meta = std::unique_ptr<__XMPMeta__, MetaDeleter>;

struct BlockDeleter {
    void operator()(void* block) const { KivXmpFree(block); }
};

// Ends the library whatever happens between.
class Library {
public:
    explicit Library(const Options& options)
    {
        MetadataAPIInitParams params = {};
        params.clientName = "kivhost";
        params.clientVersion = KIV_VERSION;
        params.clientInternalVersion = KIV_VERSION;
        params.clientBuildNumber = "1";
        params.language = options.language.c_str();
        params.startGdiPlus = 1;
        params.uiScaleFactor = options.scale;
        params.loadCustomDefinitions = options.loadsCustomDefinitions ? 1 : 0;
        if (!MetadataAPIInitialize(&params)) {
            const std::string reason = KivLastFailureText();
            MetadataAPITerminate();
            throw std::runtime_error("the library does not start: " + reason);
        }
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { MetadataAPITerminate(); }
};

// The failure's own text names the file.
[[noreturn]] void ThrowXmpError()
{
    throw std::runtime_error(KivXmpLastErrorText());
}

Meta Open(const std::string& file, const Options& options)
{
    __XMPMeta__* meta = nullptr;
    if (KivXmpOpenPhoto(file.c_str(), &options.open, &meta) != kKivXmpOk) {
        ThrowXmpError();
    }
    return Meta(meta);
}

void TellNote(const Meta& meta, const std::string& file)
{
    KivXmpPhotoInfo info = {};
    if (KivXmpGetPhotoInfo(meta.get(), &info) == kKivXmpOk && *info.note != '\0') {
        std::cerr << "kivhost: " << file << ": " << info.note << '\n';
    }
}

// The file's name stands in each line where there are several.
void Dump(const Meta& meta, const std::string& file, const Options& options,
          tools::Progress& progress)
{
    progress.Wipe();
    TellNote(meta, file);
    DumpTree(*meta, options.files.size() > 1 ? file : "", std::cout);
    std::cout.flush();
}

int DumpAll(const Options& options)
{
    const Interruption interruption;
    const BatchResult result =
        RunBatch(options.files, interruption,
                 [&options](const std::string& file, tools::Progress& progress) {
                     Dump(Open(file, options), file, options, progress);
                 });
    if (interruption.IsAskedFor()) {
        std::cerr << "kivhost: interrupted; " << result.notReached << " files were not reached\n";
        return interruption.End();
    }
    if (result.failed > 0 && options.files.size() > 1) {
        std::cerr << "kivhost: " << result.failed << " of " << options.files.size()
                  << " files cannot be read\n";
    }
    return result.failed > 0 ? kFailed : kConfirmed;
}

Meta ReadPacket(const std::string& name)
{
    const std::string bytes = tools::ReadInput(name);
    __XMPMeta__* meta = nullptr;
    if (KivXmpParse(bytes.data(), bytes.size(), &meta) != kKivXmpOk) {
        throw std::runtime_error(tools::NameOf(name) + ": " + KivXmpLastErrorText());
    }
    return Meta(meta);
}

int InsertIntoAll(const Options& options)
{
    const Meta packet = ReadPacket(options.insertFrom);
    std::size_t written = 0;
    std::size_t unchanged = 0;
    const Interruption interruption;
    const BatchResult result = RunBatch(
        options.files, interruption, [&](const std::string& file, tools::Progress& progress) {
            const Meta meta = Open(file, options);
            int isWritten = 0;
            if (KivXmpReplacePacket(meta.get(), packet.get()) != kKivXmpOk ||
                KivXmpSavePhoto(meta.get(), &isWritten) != kKivXmpOk) {
                ThrowXmpError();
            }
            ++(isWritten != 0 ? written : unchanged);
            if (options.dumps) {
                Dump(meta, file, options, progress);
            }
        });
    std::cerr << "kivhost: " << written << " written, " << unchanged << " unchanged, "
              << result.failed << " refused";
    if (interruption.IsAskedFor()) {
        std::cerr << "; interrupted, " << result.notReached << " not reached\n";
        return interruption.End();
    }
    std::cerr << '\n';
    return result.failed > 0 ? kFailed : kConfirmed;
}

// To a file by the library's own safe way; to standard output as it is.
void Extract(const Meta& meta, const std::string& target)
{
    if (target != "-") {
        if (KivXmpWritePacket(meta.get(), target.c_str()) != kKivXmpOk) {
            ThrowXmpError();
        }
        return;
    }
    void* bytes = nullptr;
    std::size_t size = 0;
    if (KivXmpSerialize(meta.get(), 0, &bytes, &size) != kKivXmpOk) {
        ThrowXmpError();
    }
    const std::unique_ptr<void, BlockDeleter> block(bytes);
    std::cout.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}

std::string FileName(const std::string& path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

void LeaveScript(const Options& options)
{
    using kivmetadataui::DialogDriver;
    DialogDriver driver;
    if (!options.view.empty()) {
        driver.ChooseView(options.view);
    }
    for (const auto& [path, value] : options.sets) {
        driver.TypeValue(path, value);
    }
    if (!options.screenshot.empty()) {
        driver.Screenshot(options.screenshot);
    }
    if (options.autoPress == AutoPress::kOk) {
        driver.PressOk();
    } else {
        driver.PressCancel();
    }
    DialogDriver::Register(std::move(driver));
}

void PrintChanges()
{
    for (const auto& change : kivmetadataui::DialogDriver::LastChanges()) {
        std::cout << change.path << '\t' << change.oldJson.value_or("null") << '\t'
                  << change.newJson.value_or("null") << '\n';
    }
}

int RunDialog(const Options& options)
{
    const Meta meta = Open(options.files.front(), options);
    TellNote(meta, options.files.front());
    KivXmpPhotoInfo info = {};
    if (KivXmpGetPhotoInfo(meta.get(), &info) == kKivXmpOk && info.canSave == 0) {
        std::cerr << "kivhost: " << options.files.front()
                  << ": can be looked at, not saved: " << info.reason << '\n';
    }
    const Library library(options);
    if (options.autoPress != AutoPress::kNone) {
        LeaveScript(options);
    }
    const std::string title = options.hasText ? options.text : FileName(options.files.front());
    MetadataDialogRequest request = {};
    request.text = title.c_str();
    request.brightnessPercent = options.brightnessPercent;
    request.flags = options.flags;
    if (!DoMetadataDialog(meta.get(), &request)) {
        const std::string reason = KivLastFailureText();
        kivmetadataui::DialogDriver::Unregister();
        if (!reason.empty()) {
            throw std::runtime_error(reason);
        }
        std::cout << "cancelled\n";
        return kCancelled;
    }
    if (KivXmpSavePhoto(meta.get(), nullptr) != kKivXmpOk) {
        ThrowXmpError();
    }
    std::cout << "confirmed\n";
    PrintChanges();
    return kConfirmed;
}

int Run(const Options& options)
{
    switch (options.mode) {
        case Mode::kHelp:
            std::cout << HelpText();
            return kConfirmed;
        case Mode::kVersion:
            std::cout << "kivhost " KIV_VERSION "\n";
            return kConfirmed;
        case Mode::kDump:
            return DumpAll(options);
        case Mode::kInsert:
            return InsertIntoAll(options);
        case Mode::kExtract:
            Extract(Open(options.files.front(), options), options.extractTo);
            return kConfirmed;
        case Mode::kListDefinitions: {
            const Library library(options);
            ListDefinitions(std::cout);
            return kConfirmed;
        }
        case Mode::kDialog:
            break;
    }
    return RunDialog(options);
}

int Main(int argc, char** argv)
{
    const Console console;
    try {
        const int status = Run(ParseOptions(CommandLineArguments(argc, argv)));
        if (!std::cout.flush()) {
            throw std::runtime_error("standard output cannot be written");
        }
        return status;
    } catch (const UsageError& error) {
        std::cerr << "kivhost: " << error.what() << "\nTry: kivhost --help\n";
    } catch (const std::exception& error) {
        std::cerr << "kivhost: " << error.what() << '\n';
    }
    return kFailed;
}

}  // namespace

}  // namespace kivhost

int main(int argc, char** argv)
{
    return kivhost::Main(argc, argv);
}
