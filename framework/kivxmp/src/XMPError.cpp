#include <kivxmp/XMPError.h>

#include <utility>

XMP_Error::XMP_Error(KivXmpCode code, std::string text) : code_(code), text_(std::move(text)) {}
XMP_Error::XMP_Error(const XMP_Error&) = default;
XMP_Error& XMP_Error::operator=(const XMP_Error&) = default;
XMP_Error::~XMP_Error() = default;
