// The five functions that the library exports. Nothing is thrown across them.

#include "api/CustomDefinitions.h"
#include "api/Lifecycle.h"
#include "api/MetadataDialog.h"
#include "api/TraceSites.h"
#include "include/kivmetadataapi.h"

#include <kivcore/Config.h>

#include <functional>

namespace {

using kivcore::config::ExecuteTopLevelFunction;

}  // namespace

extern "C" {

bool MetadataAPIInitialize(const MetadataAPIInitParams* params)
{
    if (params == nullptr) {
        return false;
    }
    bool failed = false;
    ExecuteTopLevelFunction(kivmetadataapi::InstallLocalizerAndErrorManager, &failed);
    if (failed) {
        kivmetadataapi::FirstStageFailureSite().Report("FATAL: Initialization failed (1)\r\n");
        return false;
    }
    ExecuteTopLevelFunction([params] { kivmetadataapi::Initialize(*params); }, &failed);
    if (failed) {
        kivmetadataapi::SecondStageFailureSite().Report("FATAL: Initialization failed (2)\r\n");
        return false;
    }
    if (params->loadCustomDefinitions != 0) {
        ExecuteTopLevelFunction(kivmetadataapi::LoadCustomDefinitions, &failed);
    }
    return !failed;
}

void MetadataAPITerminate(void)
{
    ExecuteTopLevelFunction(kivmetadataapi::Terminate, nullptr);
}

bool DoMetadataDialog(__XMPMeta__* meta, const MetadataDialogRequest* request)
{
    const MetadataDialogRequest effective = request != nullptr ? *request : MetadataDialogRequest{};
    bool failed = false;
    bool isConfirmed = false;
    const auto run = [&] { isConfirmed = kivmetadataapi::RunMetadataDialog(meta, effective); };
    ExecuteTopLevelFunction(std::cref(run), &failed);  // by reference: nothing to allocate
    return isConfirmed;
}

const void* GetGlobalKIVMetadataVector(void)
{
    return kivmetadataapi::CustomDefinitionRecords();
}

size_t GetGlobalKIVMetadataVectorSize(void)
{
    return kivmetadataapi::CustomDefinitionCount();
}

}  // extern "C"
