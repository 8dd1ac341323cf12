// A host that runs wxWidgets itself: the dialog uses it, and neither starts nor stops it.

#include <string>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/init.h>

#include <gtest/gtest.h>

namespace kivtoolkit::tests {
namespace {

class HostApp : public wxApp {
public:
    bool OnInit() override { return true; }
};

// The one in force; always null where wxWidgets is built without assertions.
wxAssertHandler_t AssertHandler()
{
    const wxAssertHandler_t handler = wxSetAssertHandler(nullptr);
    wxSetAssertHandler(handler);
    return handler;
}

TEST(WxHost, ItsToolkitIsUsedAndLeftAlone)
{
    wxApp::SetInstance(new HostApp);
    int argumentCount = 0;
    char* arguments[] = {nullptr};
    ASSERT_TRUE(wxEntryStart(argumentCount, arguments));
    ASSERT_TRUE(wxTheApp->CallOnInit());
    const wxAppConsole* app = wxAppConsole::GetInstance();
    const wxAssertHandler_t assertHandler = AssertHandler();
    auto* frame = new wxFrame(nullptr, wxID_ANY, "host");
    frame->Show();
    for (int round = 0; round < 3; ++round) {
        GuestHost host;
        EXPECT_TRUE(host.ShowDialog(TypeTitle("x" + std::to_string(round))))
            << GuestHost::Failure();
        EXPECT_EQ(wxAppConsole::GetInstance(), app);
    }
    EXPECT_EQ(wxAppConsole::GetInstance(), app);
    EXPECT_EQ(AssertHandler(), assertHandler);
    EXPECT_TRUE(frame->IsShown());
    EXPECT_TRUE(frame->IsEnabled());
    frame->Destroy();
    wxTheApp->OnExit();
    wxEntryCleanup();
    EXPECT_EQ(wxAppConsole::GetInstance(), nullptr);
}

}  // namespace
}  // namespace kivtoolkit::tests
