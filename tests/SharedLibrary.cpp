#include "tests/SharedLibrary.h"

namespace kivtests {

Functions::Functions(const SharedLibrary& library)
    : initialize(reinterpret_cast<decltype(initialize)>(library.Find("MetadataAPIInitialize"))),
      terminate(reinterpret_cast<decltype(terminate)>(library.Find("MetadataAPITerminate"))),
      doDialog(reinterpret_cast<decltype(doDialog)>(library.Find("DoMetadataDialog"))),
      getVector(reinterpret_cast<decltype(getVector)>(library.Find("GetGlobalKIVMetadataVector"))),
      getVectorSize(
          reinterpret_cast<decltype(getVectorSize)>(library.Find("GetGlobalKIVMetadataVectorSize")))
{
}

}  // namespace kivtests
