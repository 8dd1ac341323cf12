// How a written file takes the place of the old one, and what a killed writer leaves beside it.

#pragma once

#include <memory>

#include <kivcore/FileStream.h>
#include <kivcore/UString.h>

#include "framework/kivcore/src/FileSystem.h"

namespace kivcore::filesupport {

/// One writer's names beside its target. Whatever ends it, none of them is left.
class FileExchange {
public:
    /// `target` is where the new file goes, links followed; `shownPath` is what messages name.
    FileExchange(UString target, UString shownPath);
    FileExchange(const FileExchange&) = delete;
    FileExchange& operator=(const FileExchange&) = delete;
    ~FileExchange();

    /// Makes the new file. Where the target `exists`, it gets what the target has of owner,
    /// permissions and access lists, as far as the system allows. Throws FileError.
    const std::shared_ptr<SystemFile>& Create(bool exists);

    /// Makes ready for the case that the target has to be put back.
    void KeepOld();

    /// Puts the new file in the target's place, in such a way that it survives a power failure, and
    /// returns its identity there. Nobody else may hold the new file. Throws FileError; the target
    /// is then as it was.
    FileIdentity Place();

private:
    struct Names;
    std::unique_ptr<Names> names_;
};

/// Clears away what killed writers left in `folder`.
void ClearLeftovers(const UString& folder);

/// Clears away what killed writers left for `target`, without looking through its folder.
void RecoverLeftovers(const UString& target);

}  // namespace kivcore::filesupport
