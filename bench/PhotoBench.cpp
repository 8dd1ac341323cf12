// Photos: reading a packet and writing a changed one against Exiv2, and saving against a reference
// that takes the same steps with plain calls of the system. All of a row happens on equal files
// of one file system, in turns; what is read lies in the system's cache.
//
// usage: KIV_BENCH_PHOTOS=FOLDER PhotoBench   (a folder on a disk; it takes 300 MB for a while)

#include "bench/PhotoFiles.h"
#include "bench/Turns.h"
#include "framework/kivcore/src/ReplacementChecks.h"

#include <kivxmp/PhotoFile.h>

#include <benchmark/benchmark.h>
#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool flushes = true;

}  // namespace

// A program's own function comes before the C library's, in our libraries too.
extern "C" [[gnu::visibility("default")]] int fsync(int file)
{
    return flushes ? static_cast<int>(syscall(SYS_fsync, file)) : 0;
}

namespace {

constexpr std::uint64_t kKB = 1000;
constexpr std::uint64_t kMB = 1000 * kKB;

struct Amount {
    const char* name;
    std::uint64_t bytes;
};

struct SizeRow {
    const char* name;
    std::uint64_t bytes;
    int rounds;
};

/// Photos of one row, gone at its end.
class Photos {
public:
    Photos()
    {
        for (const auto& folder : {One(), Other()}) {
            std::filesystem::create_directories(folder);
        }
    }
    Photos(const Photos&) = delete;
    Photos& operator=(const Photos&) = delete;
    ~Photos()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    /// One folder for each contestant: what one leaves to be flushed is not the other's work.
    std::filesystem::path One() const { return folder_ / "one"; }
    std::filesystem::path Other() const { return folder_ / "other"; }

private:
    std::filesystem::path folder_ =
        bench::PhotoFolder() / ("photos-" + std::to_string(static_cast<long>(getpid())));
};

void Require(bool holds, const char* what)
{
    if (!holds) {
        throw std::runtime_error(what);
    }
}

// Reading: open the file, find the packet, have its tree. We read up to the image data (all chunk
// headers in PNG and WebP, the first directory in TIFF), keep the packet's bytes, and look for
// sidecars and leftovers besides. Exiv2 reads a photo's Exif and IIM as well, of which these photos
// have next to nothing. It does not look for the extended part of a JPEG file's packet: where there
// is one it is given the part's text from memory, to make a list of its own of it. We also find the
// part, check its digest and put the two together.

std::size_t ReadWithKivxmp(const std::filesystem::path& path)
{
    return bench::OpenPhoto(path)->PropertyCount();
}

std::size_t ReadWithExiv2(const std::filesystem::path& path, const std::string& extended)
{
    const auto image = Exiv2::ImageFactory::open(path.string());
    image->readMetadata();
    Exiv2::XmpData more;
    if (!extended.empty()) {
        Require(Exiv2::XmpParser::decode(more, extended) == 0, "the extended part is not read");
    }
    return static_cast<std::size_t>(image->xmpData().count() + more.count());
}

void Read(benchmark::State& state, const char* format, std::uint64_t photoBytes,
          std::size_t packetBytes)
{
    const Photos photos;
    const auto path = bench::MakePhoto(photos.One(), "read", format, photoBytes, packetBytes);
    const std::string extended = bench::ExtendedPart(path);
    // Exiv2 lists every field of every step of the history by itself.
    Require(ReadWithKivxmp(path) > 10 && ReadWithExiv2(path, extended) > packetBytes / 100,
            "the packet is not read");
    constexpr int kRounds = 31;
    constexpr int kReads = 20;
    const auto times = [](const auto& read) {
        return [read] {
            for (int i = 0; i < kReads; ++i) {
                benchmark::DoNotOptimize(read());
            }
        };
    };
    for (auto _ : state) {
        const std::vector<bench::Seconds> seconds =
            bench::TimesInTurn(kRounds, {times([&] { return ReadWithKivxmp(path); }),
                                         times([&] { return ReadWithExiv2(path, extended); })});
        state.counters["us"] = 1e6 / kReads * seconds[0].processor;
        state.counters["exiv2_us"] = 1e6 / kReads * seconds[1].processor;
        state.counters["of_exiv2"] = seconds[0].processor / seconds[1].processor;
        state.counters["wall_of_exiv2"] = seconds[0].wall / seconds[1].wall;
    }
}

// Saving: every round sets a title that is longer than the last one.

std::string Title(int round)
{
    return "Title " + std::string(static_cast<std::size_t>(round), '.');
}

/// The object of a photo with a change in it, to be saved.
class KivxmpEdit {
public:
    explicit KivxmpEdit(std::filesystem::path path) : path_(std::move(path)) {}

    void Prepare()
    {
        meta_ = bench::OpenPhoto(path_);
        meta_->SetText("dc:title[@x-default]", Title(++round_));
    }
    void Save()
    {
        Require(kivxmp::SavePhoto(*meta_) == kivxmp::SaveResult::kSaved, "nothing was saved");
    }

private:
    std::filesystem::path path_;
    std::unique_ptr<__XMPMeta__> meta_;
    int round_ = 0;
};

class Exiv2Edit {
public:
    explicit Exiv2Edit(std::filesystem::path path) : path_(std::move(path)) {}

    void Prepare()
    {
        // The pointer that it gives is of a kind that depends on its version.
        image_.reset(Exiv2::ImageFactory::open(path_.string()).release());
        image_->readMetadata();
        image_->xmpData()["Xmp.dc.title"] = Title(++round_);
    }
    void Save() { image_->writeMetadata(); }

private:
    std::filesystem::path path_;
    std::unique_ptr<Exiv2::Image> image_;
    int round_ = 0;
};

/// The steps that a safe replacement cannot do without, and nothing else: copy to a new file,
/// flush it, read both back whole and compare, rename, flush the folder.
class Reference {
public:
    explicit Reference(const std::filesystem::path& path)
        : path_(path), folder_(path.parent_path()), fresh_(path.string() + ".new")
    {
    }

    void Save()
    {
        const int original = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
        const int copy = open(fresh_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        Require(original >= 0 && copy >= 0, "cannot open");
        ssize_t bytes = 0;
        while ((bytes = read(original, one_.data(), one_.size())) > 0) {
            Require(write(copy, one_.data(), static_cast<std::size_t>(bytes)) == bytes,
                    "cannot write");
        }
        Require(bytes == 0 && fsync(copy) == 0, "cannot flush");
        off_t offset = 0;
        while ((bytes = pread(original, one_.data(), one_.size(), offset)) > 0) {
            const auto length = static_cast<std::size_t>(bytes);
            Require(pread(copy, other_.data(), length, offset) == bytes, "cannot read back");
            Require(std::equal(one_.begin(), one_.begin() + bytes, other_.begin()), "is different");
            offset += bytes;
        }
        close(original);
        close(copy);
        Require(rename(fresh_.c_str(), path_.c_str()) == 0, "cannot rename");
        const int folder = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        Require(folder >= 0 && fsync(folder) == 0, "cannot flush the folder");
        close(folder);
    }

private:
    static constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

    std::filesystem::path path_;
    std::filesystem::path folder_;
    std::filesystem::path fresh_;
    std::vector<char> one_ = std::vector<char>(kBlockBytes);
    std::vector<char> other_ = std::vector<char>(kBlockBytes);
};

constexpr std::size_t kPacketBytes = 3 * kKB;

void Report(benchmark::State& state, const std::vector<bench::Seconds>& seconds,
            const std::string& other)
{
    state.counters["ms"] = 1e3 * seconds[0].processor;
    state.counters["wall_ms"] = 1e3 * seconds[0].wall;
    state.counters[other + "_ms"] = 1e3 * seconds[1].processor;
    state.counters[other + "_wall_ms"] = 1e3 * seconds[1].wall;
    state.counters["of_" + other] = seconds[0].processor / seconds[1].processor;
    state.counters["wall_of_" + other] = seconds[0].wall / seconds[1].wall;
}

void Save(benchmark::State& state, const char* format, const SizeRow& size)
{
    const Photos photos;
    KivxmpEdit edit(bench::MakePhoto(photos.One(), "edited", format, size.bytes, kPacketBytes));
    Reference reference(
        bench::MakePhoto(photos.Other(), "copied", format, size.bytes, kPacketBytes));
    sync();
    for (auto _ : state) {
        Report(state,
               bench::TimesInTurn(size.rounds, {[&] { edit.Save(); }, [&] { reference.Save(); }},
                                  [&](std::size_t number) {
                                      if (number == 0) {
                                          edit.Prepare();
                                      }
                                  }),
               "reference");
    }
}

// Neither flushes nor checks, as Exiv2 has none. It writes into the file itself; we still make a
// copy of the whole photo, give it the photo's permissions, and rename it.
void SaveBare(benchmark::State& state, const char* format, const SizeRow& size)
{
    const Photos photos;
    KivxmpEdit edit(bench::MakePhoto(photos.One(), "edited", format, size.bytes, kPacketBytes));
    Exiv2Edit exiv2(bench::MakePhoto(photos.Other(), "other", format, size.bytes, kPacketBytes));
    sync();
    flushes = false;
    kivcore::filesupport::SetReplacementChecks(false);
    for (auto _ : state) {
        Report(state,
               bench::TimesInTurn(
                   size.rounds, {[&] { edit.Save(); }, [&] { exiv2.Save(); }},
                   [&](std::size_t number) { number == 0 ? edit.Prepare() : exiv2.Prepare(); }),
               "exiv2");
    }
    kivcore::filesupport::SetReplacementChecks(true);
    flushes = true;
}

template <class Run>
void Register(const std::string& name, const Run& run)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [run](benchmark::State& state) {
                                     try {
                                         run(state);
                                     } catch (const std::exception& error) {
                                         state.SkipWithError(error.what());
                                     }
                                 })
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv)
{
    static constexpr Amount kPhotos[] = {{"100KB", 100 * kKB}, {"24MB", 24 * kMB}};
    static constexpr Amount kPackets[] = {{"3KB", 3 * kKB}, {"100KB", 100 * kKB}};
    static constexpr SizeRow kSizes[] = {
        {"100KB", 100 * kKB, 301}, {"5MB", 5 * kMB, 31}, {"50MB", 50 * kMB, 11}};
    // Where we may: who has waited for the disk should not have to wait for other programs then.
    const sched_param first{.sched_priority = 1};
    static_cast<void>(sched_setscheduler(0, SCHED_RR, &first));
    Exiv2::XmpParser::initialize();
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    benchmark::AddCustomContext("photos lie on", bench::FileSystemOf(bench::PhotoFolder()));
    for (const char* const format : bench::kPhotoFormats) {
        const std::string name = std::string("/") + format + "/";
        for (const Amount& photo : kPhotos) {
            for (const Amount& packet : kPackets) {
                Register("PhotoRead" + name + photo.name + "/" + packet.name,
                         [=](benchmark::State& state) {
                             Read(state, format, photo.bytes, packet.bytes);
                         });
            }
        }
        for (const SizeRow& size : kSizes) {
            Register("PhotoSave" + name + size.name,
                     [=](benchmark::State& state) { Save(state, format, size); });
            Register("PhotoSaveBare" + name + size.name,
                     [=](benchmark::State& state) { SaveBare(state, format, size); });
        }
    }
    return bench::RunRegistered(argc, argv);
}
