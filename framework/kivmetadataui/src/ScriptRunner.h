// Carries out a driver's script, one step at a time: decides which view and which part of which
// field a step means, and leaves the events to the dialog's window.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "framework/kivmetadataui/src/ToolkitModule.h"

#include <kivmetadataui/DialogDriver.h>

namespace kivmetadataui {

class ScriptRunner {
public:
    /// `model` must outlive the runner.
    ScriptRunner(DialogModel& model, std::vector<DriverStep> steps);

    bool IsOver() const noexcept { return next_ == steps_.size(); }
    /// Does the next step, or the way to it (opening a view takes a step of its own, so that the
    /// view is painted before something is typed). False where the script was over. Throws
    /// std::runtime_error where the step cannot be done.
    bool RunStep(DialogSurface& surface);
    /// True once OK was pressed: a dialog that is still open then was kept open by something.
    bool HasPressedOk() const noexcept { return hasPressedOk_; }

private:
    /// False while the view is only being opened.
    bool TypeValue(const DriverStep& step, DialogSurface& surface);
    void TypeList(const DriverStep& step, ListField& field, std::size_t item,
                  DialogSurface& surface);
    void TypeWholeList(const DriverStep& step, ListField& field, DialogSurface& surface);
    void TypeChoice(const DriverStep& step, ChoiceField& field, DialogSurface& surface);
    void TypeYesNo(const DriverStep& step, YesNoField& field, DialogSurface& surface);
    void TypeRating(const DriverStep& step, RatingField& field, DialogSurface& surface);

    DialogModel& model_;
    std::vector<DriverStep> steps_;
    std::size_t next_ = 0;
    bool hasOpenedView_ = false;
    bool hasPressedOk_ = false;
};

}  // namespace kivmetadataui
