// What a host waits for: bringing the library up and down, and the dialog until it is painted.

#include <benchmark/benchmark.h>

#include "include/kivmetadataapi.h"

#include <kivcore/LastFailure.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivxmp/XMPMeta.h>

#include <memory>

namespace {

MetadataAPIInitParams Params()
{
    MetadataAPIInitParams params = {};
    params.clientName = "LibraryBench";
    params.clientVersion = "1";
    params.clientInternalVersion = "1.0";
    params.clientBuildNumber = "1";
    params.language = "en_US";
    params.uiScaleFactor = 1;
    return params;
}

void InitializeAndTerminate(benchmark::State& state)
{
    const MetadataAPIInitParams params = Params();
    for (auto _ : state) {
        if (!MetadataAPIInitialize(&params)) {
            state.SkipWithError(KivLastFailureText());
        }
        MetadataAPITerminate();
    }
}
BENCHMARK(InitializeAndTerminate)->Unit(benchmark::kMillisecond);

// From the call until the dialog is painted, pressed and gone: more than a user waits for.
void OpenAndCancel(benchmark::State& state, bool isFirst)
{
    const MetadataAPIInitParams params = Params();
    if (!MetadataAPIInitialize(&params)) {
        state.SkipWithError(KivLastFailureText());
        return;
    }
    const auto meta = __XMPMeta__::Create();
    meta->SetText("photoshop:City", "Bergen");
    MetadataDialogRequest request = {};
    request.text = "photo.jpg";
    request.brightnessPercent = 50;
    const auto show = [&] {
        kivmetadataui::DialogDriver::Register(kivmetadataui::DialogDriver().PressCancel());
        DoMetadataDialog(meta.get(), &request);
        if (*KivLastFailureText() != '\0') {
            state.SkipWithError(KivLastFailureText());
        }
    };
    if (!isFirst) {
        show();
    }
    for (auto _ : state) {
        show();
    }
    MetadataAPITerminate();
}
// The first dialog of a process happens once.
BENCHMARK_CAPTURE(OpenAndCancel, FirstOfTheProcess, true)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenAndCancel, Later, false)->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
