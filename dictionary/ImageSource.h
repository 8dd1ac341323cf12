// Where a binary image is read from: a block of memory or a stream. Both know how much is left, so
// that every size in an image is checked before anything is allocated for it.

#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>

namespace morvish_private {

class ImageSource {
public:
    ImageSource() = default;
    ImageSource(const ImageSource&) = delete;
    ImageSource& operator=(const ImageSource&) = delete;
    virtual ~ImageSource() = default;

    /// The bytes that can still be read.
    virtual std::uint64_t LeftBytes() const = 0;

    /// Copies the next bytes to `target`.
    /// @return false if there are not as many
    virtual bool Read(void* target, std::size_t sizeBytes) = 0;

    /// The next bytes where they stand, or in `buffer`, which is made for them.
    /// @return null if there are not as many
    virtual const unsigned char* View(std::size_t sizeBytes,
                                      std::unique_ptr<unsigned char[]>& buffer) = 0;
};

/// A block that must outlive this object.
class MemoryImageSource : public ImageSource {
public:
    MemoryImageSource(const void* start, std::size_t sizeBytes);

    std::uint64_t LeftBytes() const override { return leftBytes_; }
    bool Read(void* target, std::size_t sizeBytes) override;
    const unsigned char* View(std::size_t sizeBytes,
                              std::unique_ptr<unsigned char[]>& buffer) override;

private:
    const unsigned char* position_;
    std::size_t leftBytes_;
};

/// A stream from where it stands to its end. It must outlive this object and be able to seek; of
/// one that cannot, nothing is left.
class StreamImageSource : public ImageSource {
public:
    explicit StreamImageSource(std::istream& stream);

    std::uint64_t LeftBytes() const override { return leftBytes_; }
    bool Read(void* target, std::size_t sizeBytes) override;
    const unsigned char* View(std::size_t sizeBytes,
                              std::unique_ptr<unsigned char[]>& buffer) override;

private:
    std::istream& stream_;
    std::uint64_t leftBytes_ = 0;
};

}  // namespace morvish_private
