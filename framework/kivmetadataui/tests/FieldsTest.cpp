#include "framework/kivmetadataui/src/Fields.h"

#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

using samples::Describe;
using samples::Print;
using samples::Utf8;

// ---- texts ----

TEST(TextField, LinesAndControls)
{
    TextField line(FieldKind::kText, Describe("photoshop:Headline"));
    line.SetText(u"a\nb\x01");
    EXPECT_EQ(line.Text(), u"a b");
    TextField text(FieldKind::kLongText, Describe("photoshop:Instructions"));
    EXPECT_TRUE(text.IsMultiline());
    text.SetText(u"a\r\nb");
    EXPECT_EQ(text.Text(), u"a\nb");
}

TEST(TextField, UriHasNoSpaces)
{
    TextField field(FieldKind::kUri, Describe("xmpRights:WebStatement"));
    field.SetText(u" http://example.org/a ");
    field.EndEdit();
    EXPECT_FALSE(field.HasError());
    EXPECT_EQ(field.Text(), u"http://example.org/a");
    field.SetText(u"http://example.org/a b");
    field.EndEdit();
    EXPECT_EQ(Utf8(field.Error()), "A web address has no spaces. Write %20 for one.");
}

// ---- language alternatives ----

LanguageField& Fill(LanguageField& field)
{
    field.Load({{"x-default", u"Sea", 1}, {"de", u"Meer", 2}, {"fr-FR", u"Mer", 3}});
    return field;
}

TEST(LanguageField, ShowsTheDefaultFirst)
{
    LanguageField field(Describe("dc:title"), /*isMultiline=*/false);
    Fill(field);
    EXPECT_EQ(field.CurrentLanguage(), "x-default");
    EXPECT_EQ(field.Text(), u"Sea");
    EXPECT_EQ(field.OtherLanguageCount(), 2U);
    field.SetCurrentLanguage("DE");
    EXPECT_EQ(field.CurrentLanguage(), "de");
    EXPECT_EQ(field.CurrentLanguageName().label, u"Deutsch");
    EXPECT_EQ(field.Text(), u"Meer");
    field.SetCurrentLanguage("it");
    EXPECT_EQ(field.CurrentLanguage(), "de") << "unknown languages are ignored";
    EXPECT_FALSE(field.IsChanged());
}

TEST(LanguageField, WithoutDefaultShowsTheFirst)
{
    LanguageField field(Describe("dc:title"), false);
    field.Load({{"de", u"Meer", 1}});
    EXPECT_EQ(field.CurrentLanguage(), "de");
    ASSERT_EQ(field.Languages().size(), 2U);
    EXPECT_EQ(field.Languages()[0].tag, "x-default");
}

TEST(LanguageField, EditsOneLanguageAlone)
{
    LanguageField field(Describe("dc:title"), false);
    Fill(field);
    field.SetTextOf("de", u"Ostsee");
    EXPECT_EQ(Print(field.Items()), "x-default=Sea|de=Ostsee|fr-FR=Mer");
    field.SetTextOf("de", u"");
    EXPECT_EQ(Print(field.Items()), "x-default=Sea|fr-FR=Mer");
    // Typed back, it is in its old place: no change.
    field.SetTextOf("de", u"Meer");
    EXPECT_FALSE(field.IsChanged());
}

TEST(LanguageField, AddsAndRemovesLanguages)
{
    LanguageField field(Describe("dc:title"), false);
    EXPECT_FALSE(field.AddLanguage("not a tag"));
    EXPECT_TRUE(field.AddLanguage("pt-br"));
    EXPECT_EQ(field.CurrentLanguage(), "pt-BR");
    EXPECT_FALSE(field.IsChanged()) << "a language without text is no change";
    field.SetText(u"Mar");
    EXPECT_EQ(Print(field.Items()), "pt-BR=Mar");
    field.SetTextOf("x-default", u"Sea");
    EXPECT_EQ(Print(field.Items()), "x-default=Sea|pt-BR=Mar") << "the default text comes first";
    field.RemoveLanguage("pt-BR");
    EXPECT_EQ(field.CurrentLanguage(), "x-default");
    EXPECT_EQ(Print(field.Items()), "x-default=Sea");
    EXPECT_EQ(field.Languages().size(), 1U);
    field.Undo();
    EXPECT_EQ(Print(field.Items()), "x-default=Sea|pt-BR=Mar");
}

// Packets hold such things, and what was not touched has to survive.
TEST(LanguageField, DoublesAndEmptyItemsStay)
{
    LanguageField field(Describe("dc:title"), false);
    field.Load({{"x-default", u"", 1}, {"de", u"Meer", 2}, {"de", u"See", 3}});
    field.SetTextOf("x-default", u"Sea");
    field.SetTextOf("x-default", u"");
    EXPECT_FALSE(field.IsChanged());
    field.SetTextOf("de", u"Ostsee");
    EXPECT_EQ(Print(field.Items()), "x-default=|de=Ostsee|de=See");
    EXPECT_EQ(field.OtherLanguageCount(), 1U);
}

TEST(LanguageField, OffersWhatIsNotThere)
{
    LanguageField field(Describe("dc:title"), false);
    const std::size_t all = field.AddableLanguages().size();
    Fill(field);
    EXPECT_EQ(field.AddableLanguages().size(), all - 1) << "de is there; fr-FR is not fr";
    EXPECT_EQ(Utf8(field.SearchText()), "Sea\nMeer\nMer\n");
}

// ---- lists ----

TEST(ListField, AddsLinesOnce)
{
    ListField bag(Describe("dc:subject"), /*isOrdered=*/false);
    bag.Add(u" sea \n\nsky\r\nsea");
    EXPECT_EQ(Print(bag.Items()), "sea|sky");
    bag.Add(u"  ");
    EXPECT_EQ(bag.Count(), 2U);
    ListField sequence(Describe("dc:creator"), /*isOrdered=*/true);
    sequence.Add(u"sea\nsea");
    EXPECT_EQ(sequence.Count(), 2U);
}

TEST(ListField, EditsEntries)
{
    ListField field(Describe("dc:creator"), true);
    field.Load({{{}, u" Ann ", 1}, {{}, u"Bob", 2}, {{}, u"", 3}});
    field.Replace(0, u" Ann ");
    EXPECT_FALSE(field.IsChanged()) << "an entry that was only looked at";
    field.Replace(1, u" Ben ");
    EXPECT_EQ(Print(field.Items()), " Ann |Ben|");
    field.Move(1, 0);
    EXPECT_EQ(Print(field.Items()), "Ben| Ann |");
    field.Replace(1, u" ");
    EXPECT_EQ(Print(field.Items()), "Ben|");
    field.Remove(1);
    field.Remove(7);
    field.Replace(7, u"x");
    field.Move(0, 7);
    EXPECT_EQ(Print(field.Items()), "Ben");
    while (field.CanUndo()) {
        field.Undo();
    }
    EXPECT_FALSE(field.IsChanged());
}

TEST(ListField, WhatComesBackTakesItsPlace)
{
    ListField field(Describe("dc:subject"), false);
    field.Load({{{}, u"sea", 1}, {{}, u"sky", 2}});
    field.Remove(0);
    field.Add(u"sun");
    field.Add(u"sea");
    EXPECT_EQ(Print(field.Items()), "sea|sky|sun");
    field.Remove(2);
    EXPECT_FALSE(field.IsChanged());
    EXPECT_EQ(field.DisplayText(), u"sea; sky");
}

TEST(ListField, SetsAllInOneStep)
{
    ListField field(Describe("dc:subject"), false);
    field.SetAll({u"a", u"b"});
    field.Undo();
    EXPECT_EQ(field.Count(), 0U);
}

// ---- choices ----

TEST(ChoiceField, TakesLabelsAndValues)
{
    ChoiceField field(Describe("photoshop:Urgency"), {{"1", u"High"}, {"5", u"Normal"}}, true);
    EXPECT_EQ(field.Selected(), std::nullopt);
    field.SetText(u"Normal");
    EXPECT_EQ(Print(field.Items()), "5");
    field.SetText(u"1");
    EXPECT_EQ(field.Selected(), 0U);
    EXPECT_EQ(field.Text(), u"High");
    field.Select(1);
    EXPECT_EQ(field.Text(), u"Normal");
    field.Select(std::nullopt);
    EXPECT_TRUE(field.IsEmpty());
}

TEST(ChoiceField, ClosedAndOpen)
{
    ChoiceField closed(Describe("photoshop:Urgency"), {{"1", u"High"}}, true);
    closed.SetText(u"Highest");
    closed.EndEdit();
    EXPECT_EQ(Utf8(closed.Error()), "“Highest” is not one of the choices.");
    ChoiceField open(Describe("xmp:Label"), {{"Red", u"Rot"}}, false);
    open.SetText(u"Lila");
    open.EndEdit();
    EXPECT_FALSE(open.HasError());
    EXPECT_EQ(open.Text(), u"Lila");
    // A value that no choice has came with the packet and may stay.
    closed.Load({{{}, u"7", 1}});
    EXPECT_FALSE(closed.HasError());
    EXPECT_EQ(closed.Text(), u"7");
}

// ---- dates and numbers ----

TEST(DateField, TidiesWhatWasTyped)
{
    DateField field(Describe("xmp:CreateDate"));
    field.Load({{{}, u"2024-05-17 14:30 +02:00", 1}});
    field.SetText(u"2024-05-17T14:30+0200");
    EXPECT_TRUE(field.IsChanged());
    field.EndEdit();
    EXPECT_FALSE(field.IsChanged()) << "the same date in other words";
    field.SetText(u"  ");
    EXPECT_TRUE(field.Items().empty());
}

TEST(NumberField, UnitAndLimits)
{
    NumberField field(Describe("exif:GPSImgDirection"), {NumberKind::kReal, 0, 360}, u"°");
    field.SetText(u"12,5");
    field.EndEdit();
    EXPECT_EQ(field.Text(), u"12.5");
    EXPECT_EQ(field.DisplayText(), u"12.5 °");
    field.SetText(u"361");
    field.EndEdit();
    EXPECT_EQ(Utf8(field.Error()), "The value must lie between 0 and 360.");
    EXPECT_EQ(field.Text(), u"361");
}

TEST(NumberField, AnotherSpellingIsNoChange)
{
    NumberField field(Describe("exif:FNumber"), {NumberKind::kRational, 0, 0}, u"");
    field.Load({{{}, u"2.8", 1}});
    field.SetText(u"2,80");
    field.EndEdit();
    EXPECT_FALSE(field.IsChanged());
    field.SetText(u"28/10");
    field.EndEdit();
    EXPECT_EQ(field.Text(), u"2.8");
}

// ---- rating, yes and no ----

TEST(RatingField, StarsAndRejected)
{
    RatingField field(Describe("xmp:Rating"));
    EXPECT_EQ(field.Stars(), std::nullopt);
    field.SetStars(3);
    EXPECT_EQ(field.DisplayText(), u"3 stars");
    field.SetStars(6);
    field.SetStars(-2);
    EXPECT_EQ(field.Stars(), 3);
    field.SetStars(RatingField::kRejected);
    EXPECT_EQ(field.DisplayText(), u"Rejected");
    field.SetStars(1);
    EXPECT_EQ(field.DisplayText(), u"1 star");
    field.SetStars(0);
    EXPECT_EQ(field.DisplayText(), u"No stars");
    field.SetStars(std::nullopt);
    EXPECT_FALSE(field.IsChanged());
}

TEST(YesNoField, ThreeStates)
{
    YesNoField field(Describe("xmpRights:Marked"));
    field.Load({{{}, u"true", 1}});
    EXPECT_EQ(field.Value(), true);
    field.SetValue(true);
    EXPECT_FALSE(field.IsChanged());
    field.SetValue(false);
    EXPECT_EQ(Print(field.Items()), "False");
    EXPECT_EQ(field.DisplayText(), u"No");
    field.SetValue(std::nullopt);
    EXPECT_TRUE(field.Items().empty());
    field.SetValue(true);
    EXPECT_EQ(Print(field.Items()), "true") << "in the letters it was read in";
    EXPECT_FALSE(field.IsChanged());
    EXPECT_EQ(field.DisplayText(), u"Yes");
}

}  // namespace
}  // namespace kivmetadataui
