// The kinds of fields. Which class a field is follows from its Kind().

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "framework/kivmetadataui/src/Field.h"

namespace kivmetadataui {

/// One text: a line, a long text or a URI.
class KIVMETADATAUI_API TextField : public Field {
public:
    TextField(FieldKind kind, FieldDescription description);
    kivcore::UString Text() const;
    /// Line ends in one-line fields become spaces.
    void SetText(kivcore::UStringView text);
    bool IsMultiline() const noexcept { return Kind() == FieldKind::kLongText; }

protected:
    kivcore::UString Check(const FieldItems& items) const override;
    FieldItems Tidy(FieldItems items) const override;
};

/// Text to read and copy.
class KIVMETADATAUI_API DisplayField : public Field {
public:
    explicit DisplayField(FieldDescription description);
    kivcore::UString Text() const { return DisplayText(); }
};

/// The name of a language, for buttons and menus.
struct LanguageName {
    std::string tag;         ///< "x-default", "de", "pt-BR"
    kivcore::UString label;  ///< the language's own name; the tag where that is not known
};

/// One text in several languages. Editing one language leaves the others alone. "x-default" stands
/// for the default text and comes first.
class KIVMETADATAUI_API LanguageField : public Field {
public:
    LanguageField(FieldDescription description, bool isMultiline);

    bool IsMultiline() const noexcept { return isMultiline_; }
    /// The languages at hand, "x-default" first also where it has no text.
    std::vector<LanguageName> Languages() const;
    /// Languages to offer for adding, without those at hand.
    std::vector<LanguageName> AddableLanguages() const;
    /// Languages with a text, besides the one shown.
    std::size_t OtherLanguageCount() const;

    const std::string& CurrentLanguage() const noexcept { return current_; }
    LanguageName CurrentLanguageName() const;
    /// Shows another language; not an edit. An unknown one is ignored.
    void SetCurrentLanguage(const std::string& tag);

    /// The text in the language shown.
    kivcore::UString Text() const { return TextOf(current_); }
    void SetText(kivcore::UStringView text) { SetTextOf(current_, text); }
    kivcore::UString TextOf(const std::string& tag) const;
    /// Emptying a text takes the language out; a language that is not there is added.
    void SetTextOf(const std::string& tag, kivcore::UStringView text);

    /// Adds an empty language and shows it. False where `tag` is no language tag; one at hand is
    /// shown.
    bool AddLanguage(const std::string& tag);
    /// Takes a language and its text out; "x-default" loses its text only.
    void RemoveLanguage(const std::string& tag);

    kivcore::UString DisplayText() const override;
    kivcore::UString SearchText() const override;

protected:
    void Loaded() override;

private:
    std::string current_;
    std::vector<std::string> added_;  // languages without text
    bool isMultiline_;
};

/// Texts in a list, shown as chips.
class KIVMETADATAUI_API ListField : public Field {
public:
    ListField(FieldDescription description, bool isOrdered);

    bool IsOrdered() const noexcept { return isOrdered_; }
    std::size_t Count() const noexcept { return Items().size(); }
    /// Adds the texts of `text`, one a line, trimmed, behind the last entry; empty ones and, in
    /// unordered lists, those at hand are left out.
    void Add(kivcore::UStringView text);
    /// An empty text removes the entry.
    void Replace(std::size_t index, kivcore::UStringView text);
    void Remove(std::size_t index);
    void Move(std::size_t from, std::size_t to);
    /// Puts `texts` in place of all entries, as one step.
    void SetAll(const std::vector<kivcore::UString>& texts);

    kivcore::UString DisplayText() const override;

private:
    bool isOrdered_;
};

/// One value of a choice.
struct FieldChoice {
    std::string value;  ///< as it stands in the packet
    kivcore::UString label;
};

/// One of several values; an open choice takes other texts too.
class KIVMETADATAUI_API ChoiceField : public Field {
public:
    ChoiceField(FieldDescription description, std::vector<FieldChoice> choices, bool isClosed);

    const std::vector<FieldChoice>& Choices() const noexcept { return choices_; }
    bool IsClosed() const noexcept { return isClosed_; }
    /// The choice in force; none where the field is empty or holds another value.
    std::optional<std::size_t> Selected() const;
    /// None empties the field.
    void Select(std::optional<std::size_t> index);
    /// What the field shows: the label of the choice, or the value itself.
    kivcore::UString Text() const { return DisplayText(); }
    /// Takes a label or a value; other texts stay as they are, and are an error of a closed choice.
    void SetText(kivcore::UStringView text);

    kivcore::UString DisplayText() const override;

protected:
    kivcore::UString Check(const FieldItems& items) const override;

private:
    std::optional<std::size_t> FindChoice(kivcore::UStringView text) const;

    std::vector<FieldChoice> choices_;
    bool isClosed_;
};

/// A date, as precise as it is known: "2024", "2024-05", "2024-05-17", "2024-05-17 14:30",
/// "2024-05-17 14:30:05.25 +02:00". Without a zone the time is local to wherever it was.
class KIVMETADATAUI_API DateField : public Field {
public:
    explicit DateField(FieldDescription description);
    kivcore::UString Text() const;
    void SetText(kivcore::UStringView text);

protected:
    kivcore::UString Check(const FieldItems& items) const override;
    FieldItems Tidy(FieldItems items) const override;
};

enum class NumberKind { kInteger, kReal, kRational };

struct NumberLimits {
    NumberKind kind = NumberKind::kInteger;
    double minimum = 0;  ///< no limit where both are 0
    double maximum = 0;
};

/// A whole number, a decimal number or a fraction.
class KIVMETADATAUI_API NumberField : public Field {
public:
    NumberField(FieldDescription description, NumberLimits limits, kivcore::UString unit);
    kivcore::UString Text() const;
    void SetText(kivcore::UStringView text);
    /// Stands behind the number; may be empty.
    const kivcore::UString& Unit() const noexcept { return unit_; }
    const NumberLimits& Limits() const noexcept { return limits_; }

    kivcore::UString DisplayText() const override;

protected:
    kivcore::UString Check(const FieldItems& items) const override;
    FieldItems Tidy(FieldItems items) const override;

private:
    NumberLimits limits_;
    kivcore::UString unit_;
};

/// No rating, or 0 to 5 stars; -1 in the packet means rejected.
class KIVMETADATAUI_API RatingField : public Field {
public:
    explicit RatingField(FieldDescription description);
    static constexpr int kRejected = -1;
    static constexpr int kMostStars = 5;
    std::optional<int> Stars() const;
    /// -1 to 5; others are ignored. None takes the rating out.
    void SetStars(std::optional<int> stars);

    /// "3 stars", "Rejected", "No stars".
    kivcore::UString DisplayText() const override;
};

/// Yes, no, or not set.
class KIVMETADATAUI_API YesNoField : public Field {
public:
    explicit YesNoField(FieldDescription description);
    std::optional<bool> Value() const;
    void SetValue(std::optional<bool> value);

    kivcore::UString DisplayText() const override;
};

}  // namespace kivmetadataui
