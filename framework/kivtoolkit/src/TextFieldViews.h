// Fields that are typed: texts, URIs, dates, numbers, open choices, language alternatives, and
// whatever is shown to be read.

#pragma once

#include "framework/kivtoolkit/src/FieldView.h"

#include <functional>
#include <memory>

namespace kivtoolkit {

/// A text in a frame, of one line or growing from `fewest` to `most` lines. What the field holds
/// and what typing does are given as functions.
class TextFieldView : public FieldView {
public:
    struct Binding {
        std::function<kivcore::UString()> text;
        std::function<void(kivcore::UStringView)> setText;
        int fewestLines = 1;
        int mostLines = 1;
    };

    TextFieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::Field& field,
                  Binding binding);

    TextEntry* EntryFor(const kivmetadataui::FieldPart& part) override;

protected:
    int MeasureBody(int width) override;
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void DrawBody(const kivui::ui::Drawing& drawing, const wxRect& body) override;
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;

    /// Room that something else takes at the trailing end of the frame.
    virtual int TrailingRoom() { return 0; }
    /// Keys before the text sees them.
    virtual bool PressKey(const wxKeyEvent&) { return false; }
    TextEntry* Entry() { return entry_.get(); }
    /// The frame; narrower than the body where something stands behind it.
    virtual wxRect FrameOf(const wxRect& body) { return body; }

private:
    bool HasLines() const { return binding_.mostLines > 1; }
    wxRect EntryRect(const wxRect& frame);

    Binding binding_;
    bool hasMoreLines_ = false;  // than are shown
    kivcore::UString shownText_;
    std::unique_ptr<TextEntry> entry_;
};

/// A number with its unit behind it.
class NumberFieldView : public TextFieldView {
public:
    NumberFieldView(Look& look, Page& page, PopupHost& popups, kivmetadataui::NumberField& field);

protected:
    void DrawBody(const kivui::ui::Drawing& drawing, const wxRect& body) override;
    wxRect FrameOf(const wxRect& body) override;

private:
    kivmetadataui::NumberField& number_;
};

/// A choice that takes other texts too: a text with a button that opens the list.
class OpenChoiceFieldView : public TextFieldView {
public:
    OpenChoiceFieldView(Look& look, Page& page, PopupHost& popups,
                        kivmetadataui::ChoiceField& field);

    void OpenList();

protected:
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    int TrailingRoom() override;
    bool PressKey(const wxKeyEvent& key) override;

private:
    kivmetadataui::ChoiceField& choice_;
    IconButton* open_ = nullptr;  // owned by the page's window
};

/// One text in several languages: the language shown stands as a button at the end.
class LanguageFieldView : public TextFieldView {
public:
    LanguageFieldView(Look& look, Page& page, PopupHost& popups,
                      kivmetadataui::LanguageField& field);

    TextEntry* EntryFor(const kivmetadataui::FieldPart& part) override;

protected:
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;
    int TrailingRoom() override;

private:
    void OpenLanguages();
    kivcore::UString ButtonText() const;

    kivmetadataui::LanguageField& languages_;
    PushButton* button_ = nullptr;  // owned by the page's window
};

/// Text to read, select and copy, without a frame.
class DisplayFieldView : public FieldView {
public:
    using FieldView::FieldView;

protected:
    int MeasureBody(int width) override;
    void CreateBody() override;
    void PlaceBody(const wxRect& body) override;
    void ShowBody(bool isShown) override;
    void DrawBody(const kivui::ui::Drawing& drawing, const wxRect& body) override;
    void UpdateBody() override;
    void CollectBodyStops(std::vector<wxWindow*>& stops) override;

private:
    std::unique_ptr<TextEntry> entry_;
};

}  // namespace kivtoolkit
