#include "framework/kivxmp/src/IimBlock.h"

#include <optional>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/TagValue.h"

namespace kivxmp::photo {

namespace {

constexpr char kMarker = '\x1C';
constexpr std::size_t kHeadBytes = 1 + 1 + 1 + 2;  // marker, record, number, length
constexpr std::uint64_t kExtendedFlag = 0x8000;    // then the length tells how long the length is
constexpr unsigned kEnvelopeRecord = 1;
constexpr unsigned kApplicationRecord = 2;
constexpr std::size_t kMaxDatasets = 4096;

struct Dataset {
    unsigned record = 0;
    unsigned number = 0;
    std::string_view head;
    std::string_view value;
};

/// Takes the first one away from `iim`.
std::optional<Dataset> TakeDataset(std::string_view& iim)
{
    if (iim.size() < kHeadBytes || iim.front() != kMarker) {
        return std::nullopt;
    }
    std::size_t headBytes = kHeadBytes;
    std::uint64_t bytes = GetNumber(iim, 3, 2, ByteOrder::kBig);
    if ((bytes & kExtendedFlag) != 0) {
        const std::uint64_t lengthBytes = bytes & ~kExtendedFlag;
        if (lengthBytes == 0 || lengthBytes > 4 || !HasBytes(iim, kHeadBytes, lengthBytes)) {
            return std::nullopt;
        }
        bytes = GetNumber(iim, kHeadBytes, static_cast<std::size_t>(lengthBytes), ByteOrder::kBig);
        headBytes += static_cast<std::size_t>(lengthBytes);
    }
    if (!HasBytes(iim, headBytes, bytes)) {
        return std::nullopt;
    }
    const Dataset dataset{static_cast<unsigned char>(iim[1]), static_cast<unsigned char>(iim[2]),
                          iim.substr(0, headBytes),
                          iim.substr(headBytes, static_cast<std::size_t>(bytes))};
    iim.remove_prefix(headBytes + dataset.value.size());
    return dataset;
}

}  // namespace

std::string SoundIim(std::string_view iim)
{
    std::string sound;
    for (std::size_t count = 0; count < kMaxDatasets; ++count) {
        const std::optional<Dataset> dataset = TakeDataset(iim);
        if (!dataset) {
            break;
        }
        if (dataset->value.size() <= kTagBytesLimit && !dataset->value.empty() &&
            (dataset->record == kEnvelopeRecord || dataset->record == kApplicationRecord)) {
            sound += dataset->head;
            sound += dataset->value;
        }
    }
    return sound;
}

std::string_view FirstDataset(std::string_view soundIim, unsigned record, unsigned number)
{
    while (const std::optional<Dataset> dataset = TakeDataset(soundIim)) {
        if (dataset->record == record && dataset->number == number) {
            return dataset->value;
        }
    }
    return {};
}

}  // namespace kivxmp::photo
