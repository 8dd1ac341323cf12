// A library that is loaded by its path, as a host does that is not linked to it.

#pragma once

#include <string>

#include "include/kivmetadataapi.h"

namespace kivtests {

class SharedLibrary {
public:
    /// Throws std::runtime_error.
    explicit SharedLibrary(const std::string& path);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    ~SharedLibrary();

    /// Throws std::runtime_error where there is no such function.
    void* Find(const char* name) const;

private:
    void* handle_;
};

/// The five functions.
struct Functions {
    explicit Functions(const SharedLibrary& library);

    decltype(&MetadataAPIInitialize) initialize;
    decltype(&MetadataAPITerminate) terminate;
    decltype(&DoMetadataDialog) doDialog;
    decltype(&GetGlobalKIVMetadataVector) getVector;
    decltype(&GetGlobalKIVMetadataVectorSize) getVectorSize;
};

}  // namespace kivtests
