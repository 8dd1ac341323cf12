// Random access to the bytes of a photo, wherever they lie: in a file, or in memory for tests and
// fuzzers.

#pragma once

#include <kivcore/FileStream.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kivxmp::photo {

struct ByteRange {
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;

    std::uint64_t End() const { return offset + bytes; }
    bool operator==(const ByteRange&) const = default;
};

/// Into file order.
void SortRanges(std::vector<ByteRange>& ranges);

class ByteSource {
public:
    virtual ~ByteSource();
    virtual std::uint64_t SizeBytes() const noexcept = 0;
    /// Reads up to `bytes` bytes at `offset`; less only at the end. Throws kivcore's FileError.
    virtual std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes) = 0;
};

/// Looks at `file`, which must outlive it.
class FileSource final : public ByteSource {
public:
    explicit FileSource(kivcore::filesupport::InputFile& file) : file_(file) {}
    std::uint64_t SizeBytes() const noexcept override { return file_.SizeBytes(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes) override;

private:
    kivcore::filesupport::InputFile& file_;
};

/// Looks at `bytes`, which must outlive it.
class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::string_view bytes) : bytes_(bytes) {}
    std::uint64_t SizeBytes() const noexcept override { return bytes_.size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes) override;

private:
    std::string_view bytes_;
};

/// The bytes of `range`; throws PhotoError where the source ends within it.
std::string ReadRange(ByteSource& source, ByteRange range);

}  // namespace kivxmp::photo
