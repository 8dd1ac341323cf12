// Tests of the library's dialog in real windows, driven by scripts.

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "tests/LibraryFixture.h"

#include <kivcore/ErrorManager.h>
#include <kivmetadataui/DialogDriver.h>
#include <kivxmp/kivxmp.h>

namespace kivtests {

using kivmetadataui::DialogDriver;

/// A packet with a title in two languages, keywords, a rating, a foreign property and comments.
extern const char kSamplePacket[];

class XmpObject {
public:
    explicit XmpObject(const std::string& packet = kSamplePacket);
    XmpObject(const XmpObject&) = delete;
    XmpObject& operator=(const XmpObject&) = delete;
    ~XmpObject();

    __XMPMeta__* Get() const { return object_; }
    /// The packet as a host would save it.
    std::string Bytes() const;
    /// The text at `path`; "(none)" where there is none.
    std::string Text(const char* path) const;

private:
    __XMPMeta__* object_ = nullptr;
};

/// An error manager that a host puts in place of the library's, to be called within the toolkit's
/// callbacks: the dialog runs each of them through it.
class CallbackHook : public kivcore::config::ErrorManager {
public:
    enum class When { kBefore, kAfter };

    /// Puts a hook in force that runs `action` once, in the callback `number` (from 1).
    static std::shared_ptr<CallbackHook> Install(std::size_t number, std::function<void()> action,
                                                 When when = When::kBefore);

    CallbackHook(std::size_t number, std::function<void()> action, When when);
    ~CallbackHook() override;
    int RunAndContain(std::function<int()> function) noexcept override;

    bool HasRun() const noexcept { return hasRun_; }

private:
    void RunAction();

    std::size_t number_;
    std::function<void()> action_;
    When when_;
    std::size_t seen_ = 0;
    bool hasRun_ = false;
};

class DialogFixture : public LibraryFixture {
protected:
    DialogFixture();
    ~DialogFixture() override;

    void Start(const MetadataAPIInitParams& record = StartRecord());

    /// Shows the dialog and carries `script` out in it.
    bool Run(const XmpObject& object, DialogDriver script,
             const MetadataDialogRequest& request = {});

    /// As Run, in a round of its own.
    bool RunRound(const XmpObject& object, DialogDriver script,
                  const MetadataDialogRequest& request = {});

    static DialogDriver Ok() { return std::move(DialogDriver().PressOk()); }
    static DialogDriver Cancel() { return std::move(DialogDriver().PressCancel()); }
    /// Types a title and presses OK.
    static DialogDriver Title(const std::string& title)
    {
        return std::move(DialogDriver().TypeValue("dc:title[@x-default]", title).PressOk());
    }
};

}  // namespace kivtests
