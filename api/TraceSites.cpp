#include "api/TraceSites.h"

namespace kivmetadataapi {

namespace {

constinit kivcore::debug::TraceSite firstStageFailure(kTraceChannel, 0);
constinit kivcore::debug::TraceSite secondStageFailure(kTraceChannel, 0);
constinit kivcore::debug::TraceSite containedFailure(kTraceChannel, 0);

}  // namespace

kivcore::debug::TraceSite& FirstStageFailureSite() noexcept
{
    return firstStageFailure;
}

kivcore::debug::TraceSite& SecondStageFailureSite() noexcept
{
    return secondStageFailure;
}

kivcore::debug::TraceSite& ContainedFailureSite() noexcept
{
    return containedFailure;
}

}  // namespace kivmetadataapi
