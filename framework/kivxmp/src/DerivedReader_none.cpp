// For builds without a library that reads Exif and IIM data.

#include "framework/kivxmp/src/DerivedReader.h"

namespace kivxmp {

void ReadDerived(photo::ByteSource&, DerivedSink&) {}

}  // namespace kivxmp
