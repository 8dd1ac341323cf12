#include <kivcore/FileStream.h>

#include "framework/kivcore/src/FileSystem.h"
#include "framework/kivcore/src/Path.h"

namespace kivcore::filesupport {

InputFile::InputFile(const UString& path)
    : InputFile(SystemFile::Open(AbsolutePath(path), path), FileStep::kRead)
{
}

InputFile::InputFile(std::shared_ptr<SystemFile> file, FileStep step)
    : file_(std::move(file)), step_(step), identity_(file_->Identity())
{
}

InputFile::~InputFile() = default;

std::size_t InputFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes)
{
    return file_->ReadAt(offset, buffer, bytes, step_);
}

OutputFile::~OutputFile() = default;

}  // namespace kivcore::filesupport
