// What kivxmp throws.

#pragma once

#include <string>

#include <kivxmp/Export.h>
#include <kivxmp/kivxmp.h>

/// A failure around XMP objects. Not derived from std::exception: error managers of hosts catch it
/// by itself.
class KIVXMP_API XMP_Error {
public:
    /// `text` is UTF-8 and names the thing at fault.
    XMP_Error(KivXmpCode code, std::string text);
    XMP_Error(const XMP_Error&);
    XMP_Error& operator=(const XMP_Error&);
    virtual ~XMP_Error();

    KivXmpCode Code() const noexcept { return code_; }
    /// Valid as long as this object.
    const char* Text() const noexcept { return text_.c_str(); }

private:
    KivXmpCode code_;
    std::string text_;
};
