#include <kivmetadataui/MetadataDialog.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivmetadataui/src/ToolkitInForce.h"
#include "framework/kivmetadataui/tests/FakeToolkit.h"
#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>
#include <kivcore/Config.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Xml.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/Provider.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

namespace kivmetadataui {
namespace {

constexpr char kSample[] = "<photoshop:City>Bonn</photoshop:City>";

class Provider : public kivmetadata::TypicalProviderImpl {
public:
    explicit Provider(__XMPMeta__* meta) : TypicalProviderImpl(meta) {}
    bool CanWriteChanges() const override { return canWrite; }
    void ChangesWritten() override
    {
        ++written;
        if (onWritten) {
            onWritten();
        }
    }
    void DoWriteChanges(const __XMPMeta__& changed) override
    {
        if (refuses) {
            throw XMP_Error(kKivXmpBadValue, "the object refuses");
        }
        TypicalProviderImpl::DoWriteChanges(changed);
    }
    std::function<void()> onWritten;
    bool canWrite = true;
    bool refuses = false;
    int written = 0;
};

class MetadataDialogTest : public testing::Test {
protected:
    void SetUp() override
    {
        kivcore::config::Initialize({});
        kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
        SetToolkitModule(&toolkit_);
        Initialize();
        meta_ = samples::Parse(kSample);
        provider_ = std::make_shared<Provider>(meta_.get());
    }
    void TearDown() override
    {
        Terminate();
        SetToolkitModule(nullptr);
        DialogDriver::Unregister();
        kivcore::xml::ResetParserFactory();
        kivcore::config::Terminate(nullptr);
    }

    bool Show(std::function<DialogResult(ShownDialog&)> onRun = {}, std::uint32_t flags = 0)
    {
        toolkit_.onRun = std::move(onRun);
        MetadataDialogParameters parameters;
        parameters.title = u"sea.jpg";
        parameters.flags = flags;
        return DoMetadataDialog(provider_, nullptr, parameters);
    }
    bool IsUntouched() const { return meta_->Serialize() == samples::Packet(kSample); }

    FakeToolkit toolkit_;
    std::unique_ptr<__XMPMeta__> meta_;
    std::shared_ptr<Provider> provider_;
};

TextField& CityOf(ShownDialog& dialog)
{
    return static_cast<TextField&>(*dialog.Model().FindField("photoshop:City"));
}

std::string Failure()
{
    return KivLastFailureText();
}

TEST_F(MetadataDialogTest, ModuleInfo)
{
    EXPECT_EQ(ModuleInfo::Get().name, "kivmetadataui");
    EXPECT_FALSE(ModuleInfo::Get().version.empty());
}

TEST_F(MetadataDialogTest, ConfirmWritesTheChanges)
{
    EXPECT_TRUE(Show([](ShownDialog& dialog) {
        EXPECT_EQ(dialog.Model().WindowTitle(), u"sea.jpg");
        CityOf(dialog).SetText(u"Köln");
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_EQ(meta_->Find("photoshop:City")->Value(), "Köln");
    EXPECT_EQ(provider_->written, 1);
    EXPECT_EQ(DialogDriver::LastChanges(),
              (std::vector<DialogChange>{{"photoshop:City", "\"Bonn\"", "\"Köln\""}}));
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, ADerivedValueIsTheOldOne)
{
    const kivcore::testing::TestFolder folder;
    folder.Write("sea.jpg", samples::Jpeg(samples::Packet(kSample)));
    folder.Write("sea.jpg.xmp",
                 samples::Packet("<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
                                 "<rdf:li xml:lang='de'>Meer</rdf:li></rdf:Alt></dc:title>"
                                 "<dc:creator><rdf:Seq><rdf:li>Ann</rdf:li></rdf:Seq></dc:creator>"
                                 "<xmp:Rating>4</xmp:Rating>"));
    meta_ = kivxmp::OpenPhoto(folder.Path("sea.jpg"));
    provider_ = std::make_shared<Provider>(meta_.get());
    EXPECT_TRUE(Show([](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        const auto field = [&](const char* path) { return dialog.Model().FindField(path); };
        static_cast<LanguageField&>(*field("dc:title")).SetTextOf("de", u"See");
        static_cast<ListField&>(*field("dc:creator")).Add(u"Bob");
        EXPECT_EQ(dialog.Model().SummaryText(), u"3 changes");
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_EQ(DialogDriver::LastChanges(),
              (std::vector<DialogChange>{{"photoshop:City", "\"Bonn\"", "\"Köln\""},
                                         {"dc:title[@de]", "\"Meer\"", "\"See\""},
                                         {"dc:creator", R"(["Ann"])", R"(["Ann","Bob"])"}}));
    EXPECT_EQ(kivxmp::ToJson(*meta_, meta_->Find("dc:title")), R"({"x-default":"Sea","de":"See"})");
    EXPECT_EQ(meta_->Find("xmp:Rating"), nullptr);
}

TEST_F(MetadataDialogTest, CancelLeavesTheObjectUntouched)
{
    kivcore::SetLastFailureText("from before");
    EXPECT_FALSE(Show([](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        return DialogResult::kCancelled;
    }));
    EXPECT_TRUE(IsUntouched());
    EXPECT_EQ(provider_->written, 0);
    EXPECT_TRUE(DialogDriver::LastChanges().empty());
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, ConfirmWithoutChangesWritesNothing)
{
    EXPECT_TRUE(Show([](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        CityOf(dialog).SetText(u"Bonn");
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_TRUE(IsUntouched());
    EXPECT_EQ(provider_->written, 0);
}

TEST_F(MetadataDialogTest, AnErrorKeepsTheDialogOpen)
{
    EXPECT_FALSE(Show([](ShownDialog& dialog) {
        auto& date = static_cast<DateField&>(*dialog.Model().FindField("xmp:CreateDate"));
        date.SetText(u"2024-02-31");
        EXPECT_FALSE(dialog.Confirm());
        EXPECT_TRUE(date.HasError());
        EXPECT_FALSE(dialog.Model().Message().empty());
        EXPECT_EQ(dialog.Model().FirstError()->field, &date);
        return DialogResult::kCancelled;
    }));
    EXPECT_TRUE(IsUntouched());
}

TEST_F(MetadataDialogTest, ARefusedWriteKeepsTheDialogOpen)
{
    provider_->refuses = true;
    EXPECT_FALSE(Show([](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        EXPECT_FALSE(dialog.Confirm());
        EXPECT_EQ(samples::Utf8(dialog.Model().Message()), "That did not work: the object refuses");
        return DialogResult::kCancelled;
    }));
    EXPECT_TRUE(IsUntouched());
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, ReadOnlyConfirmsNothing)
{
    const auto onRun = [](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        EXPECT_FALSE(dialog.Model().CanConfirm());
        EXPECT_FALSE(dialog.Confirm());
        return DialogResult::kCancelled;
    };
    EXPECT_FALSE(Show(onRun, kReadOnly));
    provider_->canWrite = false;
    EXPECT_FALSE(Show(onRun));
    EXPECT_TRUE(IsUntouched());
}

TEST_F(MetadataDialogTest, PlainFlagReachesTheModel)
{
    Show([](ShownDialog& dialog) {
        EXPECT_TRUE(dialog.Model().FindView("all-properties").has_value());
        return DialogResult::kCancelled;
    });
    Show(
        [](ShownDialog& dialog) {
            EXPECT_FALSE(dialog.Model().FindView("all-properties").has_value());
            return DialogResult::kCancelled;
        },
        kPlain);
}

// ---- what is refused ----

TEST_F(MetadataDialogTest, RefusesWhatCannotBeShown)
{
    MetadataDialogParameters parameters;
    EXPECT_FALSE(DoMetadataDialog(nullptr, nullptr, parameters));
    EXPECT_EQ(Failure(), "There is no metadata to show.");
    EXPECT_FALSE(DoMetadataDialog(std::make_shared<Provider>(nullptr), nullptr, parameters));
    EXPECT_EQ(Failure(), "There is no metadata to show.");
    Terminate();
    EXPECT_FALSE(Show());
    EXPECT_EQ(Failure(), "The dialog is not initialized.");
    EXPECT_EQ(toolkit_.log, "") << "the toolkit is not touched";
}

TEST_F(MetadataDialogTest, NestedCallsAreRefused)
{
    EXPECT_TRUE(Show([this](ShownDialog& dialog) {
        const FakeToolkit* const toolkit = &toolkit_;
        const std::string logBefore = toolkit->log;
        EXPECT_FALSE(DoMetadataDialog(provider_, nullptr, {}));
        EXPECT_EQ(Failure(), "A metadata dialog is open already.");
        EXPECT_EQ(toolkit->log, logBefore);
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, AToolkitThatDoesNotStart)
{
    toolkit_.startFailure = "no display";
    EXPECT_FALSE(Show());
    EXPECT_EQ(Failure(), "no display");
    EXPECT_EQ(toolkit_.log, "start\n");
    Terminate();
    EXPECT_EQ(toolkit_.log, "start\n") << "what did not start is not stopped";
    Initialize();
    toolkit_.startFailure.clear();
    EXPECT_FALSE(Show());
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, AWindowThatCannotBeMade)
{
    EXPECT_FALSE(Show([](ShownDialog&) -> DialogResult { throw std::runtime_error("no window"); }));
    EXPECT_EQ(Failure(), "no window");
    EXPECT_FALSE(Show());
    EXPECT_EQ(Failure(), "") << "the next dialog is not held up";
}

TEST_F(MetadataDialogTest, InitializeNeedsTheFramework)
{
    Terminate();
    kivcore::config::Terminate(nullptr);
    EXPECT_THROW(Initialize(), std::runtime_error);
    EXPECT_FALSE(IsInitialized());
    kivcore::config::Initialize({});
}

// ---- the toolkit's life ----

TEST_F(MetadataDialogTest, TheToolkitStartsAtTheFirstDialogAndEndsInTerminate)
{
    EXPECT_EQ(toolkit_.log, "");
    Show();
    Show();
    EXPECT_EQ(toolkit_.log, "start\nrun\nran\nrun\nran\n");
    Terminate();
    Terminate();
    EXPECT_EQ(toolkit_.log, "start\nrun\nran\nrun\nran\nstop\n");
    Initialize();
    Show();
    EXPECT_EQ(toolkit_.log, "start\nrun\nran\nrun\nran\nstop\nstart\nrun\nran\n");
}

TEST_F(MetadataDialogTest, TerminateFromWithinCancels)
{
    std::weak_ptr<Provider> held = provider_;
    MetadataDialogParameters parameters;
    toolkit_.onRun = [this, &held](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        dialog.Run([] { Terminate(); });
        EXPECT_FALSE(IsInitialized());
        EXPECT_TRUE(toolkit_.isCancelled);
        EXPECT_EQ(toolkit_.log, "start\nrun\ncancel\n") << "it is stopped once the loop is left";
        EXPECT_FALSE(dialog.Confirm()) << "too late";
        EXPECT_FALSE(dialog.Model().Views().empty());
        EXPECT_FALSE(held.expired());
        return DialogResult::kCancelled;
    };
    EXPECT_FALSE(DoMetadataDialog(std::move(provider_), nullptr, parameters));
    EXPECT_TRUE(held.expired());
    EXPECT_EQ(toolkit_.log, "start\nrun\ncancel\nran\nstop\n");
    EXPECT_TRUE(IsUntouched());
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, TerminateAndInitializeFromWithin)
{
    EXPECT_FALSE(Show([this](ShownDialog&) {
        Terminate();
        Initialize();
        EXPECT_FALSE(DoMetadataDialog(provider_, nullptr, {})) << "the old one is still open";
        return DialogResult::kCancelled;
    }));
    EXPECT_TRUE(Show([](ShownDialog& dialog) {
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_EQ(toolkit_.log, "start\nrun\ncancel\nran\nstop\nstart\nrun\nran\n");
}

// Once the changes are in the object, the dialog was confirmed, whatever follows.
TEST_F(MetadataDialogTest, TerminateWhileTheChangesAreWritten)
{
    provider_->onWritten = [] { Terminate(); };
    EXPECT_TRUE(Show([](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_EQ(meta_->Find("photoshop:City")->Value(), "Köln");
}

TEST_F(MetadataDialogTest, TerminateForgetsTheChangesAndDefinitions)
{
    Show([](ShownDialog& dialog) {
        CityOf(dialog).SetText(u"Köln");
        dialog.Confirm();
        return DialogResult::kConfirmed;
    });
    EXPECT_FALSE(DialogDriver::LastChanges().empty());
    EXPECT_FALSE(kivmetadata::CommonViewDefinitions()->empty());
    Terminate();
    EXPECT_TRUE(DialogDriver::LastChanges().empty());
    EXPECT_TRUE(kivmetadata::CommonViewDefinitions()->empty());
}

// ---- failing callbacks ----

class CountingErrorManager : public kivcore::config::ErrorManager {
public:
    int RunAndContain(std::function<int()> function) noexcept override
    {
        ++count;
        return ErrorManager::RunAndContain(std::move(function));
    }
    int count = 0;
};

TEST_F(MetadataDialogTest, CallbacksRunUnderTheErrorManager)
{
    const auto manager = std::make_shared<CountingErrorManager>();
    kivcore::config::SetErrorManager(manager);
    EXPECT_FALSE(Show([&manager](ShownDialog& dialog) {
        const int before = manager->count;
        EXPECT_TRUE(dialog.Run([] {}));
        EXPECT_EQ(manager->count, before + 1);
        return DialogResult::kCancelled;
    }));
    kivcore::config::ResetToDefaultErrorManager();
}

TEST_F(MetadataDialogTest, AFailingCallbackLeavesTheDialogOpenWithAMessage)
{
    EXPECT_TRUE(Show([](ShownDialog& dialog) {
        EXPECT_FALSE(dialog.Run([] { throw std::runtime_error("broken"); }));
        EXPECT_EQ(samples::Utf8(dialog.Model().Message()), "That did not work: broken");
        EXPECT_FALSE(dialog.Run([] { throw XMP_Error(kKivXmpBadValue, "bad value"); }));
        EXPECT_EQ(samples::Utf8(dialog.Model().Message()), "That did not work: bad value");
        EXPECT_FALSE(dialog.Run([] { throw 5; }));
        EXPECT_EQ(samples::Utf8(dialog.Model().Message()),
                  "That did not work: the reason is not known");
        CityOf(dialog).SetText(u"Köln");
        EXPECT_TRUE(dialog.Confirm());
        return DialogResult::kConfirmed;
    }));
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, AFailingObserverIsContained)
{
    class Failing : public DialogModelObserver {
    public:
        void FieldChanged(Field&) override { throw std::runtime_error("field"); }
        void ModelChanged() override { throw std::runtime_error("model"); }
    };
    Show([](ShownDialog& dialog) {
        Failing observer;
        dialog.Model().SetObserver(&observer);
        EXPECT_FALSE(dialog.Run([&dialog] { CityOf(dialog).SetText(u"Köln"); }));
        EXPECT_FALSE(dialog.Model().Message().empty());
        dialog.Model().SetObserver(nullptr);
        return DialogResult::kCancelled;
    });
}

// ---- scripts ----

/// A loop as the module has it: a step for each painted frame.
std::function<DialogResult(ShownDialog&)> Loop(std::string& log)
{
    return [&log](ShownDialog& dialog) {
        FakeSurface surface(dialog.Model(), log);
        std::optional<DialogResult> result;
        surface.onPress = [&](DialogButton button) {
            if (button == DialogButton::kCancel) {
                result = DialogResult::kCancelled;
            } else if (dialog.Confirm()) {
                result = DialogResult::kConfirmed;
            }
        };
        while (!result) {
            if (!dialog.RunScriptStep(surface) && !result) {
                result = DialogResult::kCancelled;
            }
        }
        return *result;
    };
}

TEST_F(MetadataDialogTest, AScriptConfirms)
{
    DialogDriver::Register(DialogDriver().TypeValue("photoshop:City", "Köln").PressOk());
    std::string log;
    EXPECT_TRUE(Show(Loop(log)));
    EXPECT_EQ(meta_->Find("photoshop:City")->Value(), "Köln");
    // It is used up.
    EXPECT_FALSE(Show([](ShownDialog& dialog) {
        EXPECT_FALSE(dialog.HasScript());
        return DialogResult::kCancelled;
    }));
}

TEST_F(MetadataDialogTest, AScriptWithoutAPressCancels)
{
    DialogDriver::Register(DialogDriver().TypeValue("photoshop:City", "Köln"));
    std::string log;
    EXPECT_FALSE(Show(Loop(log)));
    EXPECT_TRUE(IsUntouched());
    EXPECT_EQ(Failure(), "");
}

TEST_F(MetadataDialogTest, AFailedStepCancelsAndSaysWhy)
{
    DialogDriver::Register(
        DialogDriver().TypeValue("photoshop:City", "Köln").TypeValue("dc:nothing", "x").PressOk());
    std::string log;
    EXPECT_FALSE(Show(Loop(log)));
    EXPECT_TRUE(IsUntouched());
    EXPECT_EQ(Failure(), "There is no field for “dc:nothing”.");
    EXPECT_EQ(log.find("press"), std::string::npos);
}

TEST_F(MetadataDialogTest, AnErrorThatKeepsOkFromWorkingIsNamed)
{
    DialogDriver::Register(DialogDriver().TypeValue("xmp:CreateDate", "2024-02-31").PressOk());
    std::string log;
    EXPECT_FALSE(Show(Loop(log)));
    EXPECT_EQ(Failure(), "xmp:CreateDate: The 31st of February does not exist. Last day: 29.");
}

TEST_F(MetadataDialogTest, OkInAReadOnlyDialogIsNamed)
{
    DialogDriver::Register(DialogDriver().PressOk());
    std::string log;
    EXPECT_FALSE(Show(Loop(log), kReadOnly));
    EXPECT_EQ(Failure(), "The dialog is read-only.");
}

TEST_F(MetadataDialogTest, UnregisteredScriptsAreForgotten)
{
    DialogDriver::Register(DialogDriver().PressOk());
    DialogDriver::Unregister();
    Show([](ShownDialog& dialog) {
        EXPECT_FALSE(dialog.HasScript());
        return DialogResult::kCancelled;
    });
}

}  // namespace
}  // namespace kivmetadataui
