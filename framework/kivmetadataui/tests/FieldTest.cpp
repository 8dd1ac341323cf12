#include "framework/kivmetadataui/src/Field.h"

#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

using samples::Describe;
using samples::Utf8;

class Watcher : public FieldObserver {
public:
    void FieldChanged(Field&) override { ++count; }
    int count = 0;
};

TEST(Field, TypingIsOneUndoStep)
{
    TextField field(FieldKind::kText, Describe("photoshop:City"));
    field.Load({{{}, u"Bonn", 1}});
    EXPECT_FALSE(field.CanUndo());
    field.SetText(u"B");
    field.SetText(u"Be");
    field.SetText(u"Berlin");
    field.EndEdit();
    field.SetText(u"Berlin-Mitte");
    EXPECT_TRUE(field.IsChanged());

    field.Undo();
    EXPECT_EQ(field.Text(), u"Berlin");
    field.Undo();
    EXPECT_EQ(field.Text(), u"Bonn");
    EXPECT_FALSE(field.IsChanged());
    EXPECT_FALSE(field.CanUndo());
    field.Undo();
    EXPECT_EQ(field.Text(), u"Bonn");

    field.Redo();
    EXPECT_EQ(field.Text(), u"Berlin");
    field.Redo();
    EXPECT_EQ(field.Text(), u"Berlin-Mitte");
    EXPECT_FALSE(field.CanRedo());
}

TEST(Field, AnEditEndsRedoing)
{
    TextField field(FieldKind::kText, Describe("photoshop:City"));
    field.SetText(u"a");
    field.Undo();
    EXPECT_TRUE(field.CanRedo());
    field.SetText(u"b");
    EXPECT_FALSE(field.CanRedo());
    field.Undo();
    EXPECT_EQ(field.Text(), u"");
}

TEST(Field, UndoStepsAreLimited)
{
    ListField field(Describe("dc:subject"), /*isOrdered=*/true);
    for (int i = 0; i < 300; ++i) {
        field.Add(u"x");
    }
    int steps = 0;
    while (field.CanUndo()) {
        field.Undo();
        ++steps;
    }
    EXPECT_EQ(steps, 200);
    EXPECT_EQ(field.Count(), 100U);
}

TEST(Field, RevertCanBeUndone)
{
    TextField field(FieldKind::kText, Describe("photoshop:City"));
    field.Load({{{}, u"Bonn", 1}});
    field.Revert();
    EXPECT_FALSE(field.CanUndo()) << "there was nothing to go back from";
    field.SetText(u"Berlin");
    field.Revert();
    EXPECT_EQ(field.Text(), u"Bonn");
    EXPECT_FALSE(field.IsChanged());
    field.Undo();
    EXPECT_EQ(field.Text(), u"Berlin");
}

TEST(Field, TypedBackIsNoChange)
{
    TextField field(FieldKind::kText, Describe("photoshop:City"));
    field.Load({{{}, u"Bonn", 1}});
    field.SetText(u"");
    EXPECT_TRUE(field.IsChanged());
    EXPECT_TRUE(field.Items().empty());
    field.SetText(u"Bonn");
    EXPECT_FALSE(field.IsChanged());
}

// A field does not complain about half a word, and stops complaining as soon as it can.
TEST(Field, ErrorsComeLateAndGoEarly)
{
    DateField field(Describe("xmp:CreateDate"));
    field.SetText(u"2024-02-3");
    EXPECT_FALSE(field.HasError());
    field.SetText(u"2024-02-31");
    EXPECT_FALSE(field.HasError());
    field.EndEdit();
    EXPECT_EQ(Utf8(field.Error()), "The 31st of February does not exist. Last day: 29.");
    field.SetText(u"2024-13");
    EXPECT_EQ(Utf8(field.Error()), "There is no month 13. Months run from 1 to 12.");
    field.SetText(u"2024-1");
    EXPECT_FALSE(field.HasError());
    field.EndEdit();
    EXPECT_EQ(field.Text(), u"2024-01");
}

// What came with the packet may stay, whatever it is.
TEST(Field, WhatWasReadIsNoError)
{
    DateField field(Describe("xmp:CreateDate"));
    field.Load({{{}, u"last summer", 1}});
    EXPECT_FALSE(field.HasError());
    field.SetText(u"last winter");
    field.EndEdit();
    EXPECT_TRUE(field.HasError());
    field.SetText(u"last summer");
    field.EndEdit();
    EXPECT_FALSE(field.HasError());
    field.Undo();
    EXPECT_TRUE(field.HasError());
    field.Revert();
    EXPECT_FALSE(field.HasError());
}

TEST(Field, ReadOnlyStaysAsItIs)
{
    TextField field(FieldKind::kText, Describe("photoshop:City"));
    field.Load({{{}, u"Bonn", 1}});
    field.SetText(u"Berlin");
    field.SetReadOnly();
    field.SetText(u"Rome");
    field.Revert();
    field.Undo();
    EXPECT_EQ(field.Text(), u"Berlin");
}

TEST(Field, TellsItsObserver)
{
    Watcher watcher;
    TextField field(FieldKind::kText, Describe("photoshop:City"));
    field.SetObserver(&watcher);
    field.SetText(u"a");
    EXPECT_EQ(watcher.count, 1);
    field.SetText(u"a");
    EXPECT_EQ(watcher.count, 1) << "nothing moved";
    field.EndEdit();
    EXPECT_EQ(watcher.count, 1);
    field.Undo();
    EXPECT_EQ(watcher.count, 2);
    field.SetObserver(nullptr);
    field.Redo();
    EXPECT_EQ(watcher.count, 2);
}

TEST(Field, StateForAssistiveTechnology)
{
    FieldDescription description = Describe("xmp:CreateDate");
    description.label = u"Created";
    description.hint = u"When it was taken";
    DateField field(description);
    EXPECT_EQ(field.AccessibleName(), u"Created");
    EXPECT_EQ(Utf8(field.AccessibleState()), "When it was taken");
    field.SetText(u"2024-02-31");
    field.EndEdit();
    EXPECT_EQ(Utf8(field.AccessibleState()),
              "changed, The 31st of February does not exist. Last day: 29.");
    field.Revert();
    field.Lock(u"It is locked");
    EXPECT_EQ(Utf8(field.AccessibleState()), "read-only, It is locked");
}

}  // namespace
}  // namespace kivmetadataui
