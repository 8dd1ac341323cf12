// One property as the dialog edits it: what it shows, what is wrong with it, whether it changed,
// and how to go back. Fields know nothing of XMP or of widgets: a binding fills them from the
// packet and writes them back.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <kivcore/UString.h>
#include <kivmetadataui/Export.h>

namespace kivmetadataui {

enum class FieldKind {
    kText,                 ///< TextField, one line
    kLongText,             ///< TextField, several lines
    kUri,                  ///< TextField, one line
    kLanguageAlternative,  ///< LanguageField
    kList,                 ///< ListField
    kChoice,               ///< ChoiceField
    kDate,                 ///< DateField
    kNumber,               ///< NumberField
    kRating,               ///< RatingField
    kYesNo,                ///< YesNoField
    kDisplay,              ///< DisplayField: text to read and copy, never editable
};

/// How much of the column a field wants.
enum class FieldWidth { kShort, kMedium, kFull };

/// One value of a field. Most kinds have at most one; a list has one an entry, a language
/// alternative one a language.
struct FieldItem {
    std::string language;  ///< of language alternatives: "x-default", "de"
    kivcore::UString text;
    /// Where the item came from, so that an entry that only moved is known again: 1 and up for what
    /// was read, 0 for what was added.
    std::size_t origin = 0;
    bool operator==(const FieldItem& other) const
    {
        return language == other.language && text == other.text;
    }
};

using FieldItems = std::vector<FieldItem>;

/// Where a value comes from that the packet lacks (<kivxmp/Derived.h>).
struct FieldSource {
    kivcore::UString mark;    ///< stands beside the label: "Exif"; empty for the packet's own
    kivcore::UString detail;  ///< "From the camera’s Exif data: Exif.Photo.FNumber"
    /// The whole property is meant. It cannot be removed: its source goes on telling it.
    bool isWhole = false;
};

class Field;

/// Told of everything that may look different. Calls come in the middle of the change, so a watcher
/// must not edit the model from within.
class FieldObserver {
public:
    virtual ~FieldObserver() = default;
    /// Content, error or changed flag of `field` moved.
    virtual void FieldChanged(Field& field) = 0;
};

/// What a field is, from its definition.
struct FieldDescription {
    std::string path;  ///< of the property: "dc:title", prefix as the packet or the schema has it
    kivcore::UString label;
    kivcore::UString hint;         ///< stands under the field; may be empty
    kivcore::UString placeholder;  ///< shown while empty; may be empty
    bool isReadOnly = false;
    FieldWidth width = FieldWidth::kFull;
};

/// Base of all fields. Edits group into undo steps: typing goes on in one step until EndEdit.
class KIVMETADATAUI_API Field {
public:
    Field(FieldKind kind, FieldDescription description);
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;
    virtual ~Field();

    FieldKind Kind() const noexcept { return kind_; }
    const std::string& Path() const noexcept { return description_.path; }
    const kivcore::UString& Label() const noexcept { return description_.label; }
    const kivcore::UString& Hint() const noexcept { return description_.hint; }
    const kivcore::UString& Placeholder() const noexcept { return description_.placeholder; }
    FieldWidth Width() const noexcept { return description_.width; }
    /// Content can be selected and copied, not edited.
    bool IsReadOnly() const noexcept { return description_.isReadOnly; }
    /// Why an editable property is shown read-only; empty for all others. Stands where the hint
    /// does.
    const kivcore::UString& Explanation() const noexcept { return explanation_; }

    const FieldItems& Items() const noexcept { return items_; }
    const FieldItems& OriginalItems() const noexcept { return original_; }
    bool IsEmpty() const noexcept;
    /// The content as one text, for showing read-only and for copying.
    virtual kivcore::UString DisplayText() const;
    /// What a search looks at besides label and path.
    virtual kivcore::UString SearchText() const { return DisplayText(); }

    /// What is wrong with the content, in words; empty where nothing is.
    const kivcore::UString& Error() const noexcept { return error_; }
    bool HasError() const noexcept { return !error_.empty(); }
    /// True if the content differs from what was read.
    bool IsChanged() const noexcept { return items_ != original_; }
    /// Where what was read comes from; empty where that is the packet.
    const FieldSource& Source() const noexcept { return source_; }
    /// True while the content is that of a source: shown, marked, and never written.
    bool IsDerived() const noexcept { return !source_.mark.empty() && !IsChanged(); }

    /// Goes back to what was read; can be undone.
    void Revert();
    bool CanUndo() const noexcept { return !undo_.empty(); }
    bool CanRedo() const noexcept { return !redo_.empty(); }
    void Undo();
    void Redo();
    /// Typing has come to an end: on leaving the field, Enter, or a pause. Ends the undo step and
    /// says what is wrong with what was typed; a field does not complain about half a word.
    void EndEdit();

    /// For assistive technology: the label.
    kivcore::UString AccessibleName() const { return description_.label; }
    /// "changed" or the source, "read-only", and the error or the hint, as one text; may be empty.
    kivcore::UString AccessibleState() const;

    /// At most one; null takes it away. Not owned.
    void SetObserver(FieldObserver* observer) noexcept { observer_ = observer; }

    /// Used by the binding: sets what was read, without an undo step.
    void Load(FieldItems items);
    /// Used by the binding: shows the content read-only and says why.
    void Lock(kivcore::UString explanation);
    /// Used by the binding: what was read comes from a source.
    void SetSource(FieldSource source);
    /// Used by the model: whether all other parts of what the source tells are empty, so that this
    /// one cannot be. True if that changes the error; nobody is told.
    bool SetLast(bool isLast);
    /// Used by the model: locks without a word.
    void SetReadOnly() noexcept { description_.isReadOnly = true; }

protected:
    enum class EditKind { kTyping, kWhole };
    /// Makes `items` the content. Edits of a read-only field change nothing.
    void Edit(FieldItems items, EditKind kind);
    /// The error for `items`; empty where all is well. Asked only while the field is changed: what
    /// came with the packet may stay.
    virtual kivcore::UString Check(const FieldItems& items) const;
    /// The usual way of writing `items`, taken when an edit ends without an error.
    virtual FieldItems Tidy(FieldItems items) const { return items; }

    /// Called at the end of Load.
    virtual void Loaded() {}
    void Notify();

private:
    kivcore::UString CurrentError() const;
    void SetError(bool isLenient);

    FieldKind kind_;
    FieldDescription description_;
    kivcore::UString explanation_;
    FieldSource source_;
    FieldItems original_;
    FieldItems items_;
    kivcore::UString error_;
    std::vector<FieldItems> undo_;
    std::vector<FieldItems> redo_;
    bool isTyping_ = false;
    bool isLast_ = false;  // of the parts that a source tells
    FieldObserver* observer_ = nullptr;
};

}  // namespace kivmetadataui
