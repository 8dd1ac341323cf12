// A switch for benchmarks: what does replacing a file cost without its checks? It stands in no
// installed header; programs cannot ask for it.

#pragma once

#include <kivcore/Export.h>

namespace kivcore::filesupport {

/// While they are off, ReplaceWholeFile() neither reads back what it wrote nor calls the
/// comparison of its caller. They are on at the beginning. Not while a file is being replaced.
KIVCORE_API void SetReplacementChecks(bool areOn) noexcept;

}  // namespace kivcore::filesupport
