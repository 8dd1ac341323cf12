#include <kivmetadata/Provider.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivcore/tests/VirtualSlot.h"

namespace kivmetadata {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Provider : public TypicalProviderImpl {
public:
    explicit Provider(__XMPMeta__* meta) : TypicalProviderImpl(meta) {}
};

constexpr std::string_view kPacket =
    "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
    "<rdf:Description rdf:about='' xmlns:dc='http://purl.org/dc/elements/1.1/'"
    " xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmlns:own='http://own/' xmp:Rating='3'>"
    "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
    "<rdf:li xml:lang='de'>Meer</rdf:li></rdf:Alt></dc:title>"
    "<dc:source rdf:parseType='Literal'>a <b/></dc:source>"
    "<own:note><rdf:Description><rdf:value>N</rdf:value><own:by>me</own:by></rdf:Description>"
    "</own:note>"
    "</rdf:Description></rdf:RDF></x:xmpmeta>";

class ProviderTest : public testing::Test {
protected:
    std::unique_ptr<__XMPMeta__> meta_ = __XMPMeta__::Parse(kPacket);
    Provider provider_{meta_.get()};
    Provider none_{nullptr};
};

TEST(ProviderSlots, StandInTheirOrder)
{
    using kivcore::testing_support::VirtualSlot;
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::QueryPathStatus), 1);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::CanWriteChanges), 2);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::GetAllPathsForDynamicSchema), 3);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::DebugSerializedXMP), 4);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::DebugDescription), 5);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::MetaDataAccess), 6);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::ChangesWritten), 7);
    EXPECT_EQ(VirtualSlot(&MetaDataProvider::DoWriteChanges), 8);
}

TEST_F(ProviderTest, PathStatus)
{
    struct Row {
        const char* path;
        PathStatus want;
    };
    constexpr Row kRows[] = {
        {"dc:title", PathStatus::kPresent},
        {"dc:title[@de]", PathStatus::kPresent},
        {"dc:title[2]", PathStatus::kPresent},
        {"dc:title[3]", PathStatus::kMissing},
        {"dc:creator", PathStatus::kMissing},
        {"xmp:Rating", PathStatus::kPresent},
        {"own:note/?own:by", PathStatus::kPresent},
        {"{http://own/}note", PathStatus::kPresent},
        // Literal XML is nothing that XMP knows, and stays as it is.
        {"dc:source", PathStatus::kReadOnly},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(provider_.QueryPathStatus(row.path), row.want);
        EXPECT_EQ(none_.QueryPathStatus(row.path), PathStatus::kMissing);
    }
    EXPECT_THROW(provider_.QueryPathStatus("dc:"), XMP_Error);
}

TEST_F(ProviderTest, PathsOfOneNamespaceOrAll)
{
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema(""),
                ElementsAre("xmp:Rating", "dc:title", "dc:source", "own:note"));
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema("http://purl.org/dc/elements/1.1/"),
                ElementsAre("dc:title", "dc:source"));
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema("http://own/"), ElementsAre("own:note"));
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema("http://other/"), IsEmpty());
    EXPECT_THAT(none_.GetAllPathsForDynamicSchema(""), IsEmpty());
}

TEST_F(ProviderTest, Access)
{
    EXPECT_EQ(provider_.MetaDataAccess(), meta_.get());
    EXPECT_TRUE(provider_.CanWriteChanges());
    EXPECT_EQ(provider_.DebugSerializedXMP(), kPacket);
    EXPECT_EQ(provider_.DebugDescription(), "XMP object of 4 properties");
    provider_.ChangesWritten();
    EXPECT_EQ(meta_->Serialize(), kPacket);

    EXPECT_EQ(none_.MetaDataAccess(), nullptr);
    EXPECT_FALSE(none_.CanWriteChanges());
    EXPECT_EQ(none_.DebugSerializedXMP(), "");
    EXPECT_EQ(none_.DebugDescription(), "no XMP object");
    none_.ChangesWritten();
}

TEST_F(ProviderTest, WrittenChangesAreTheObjectsContent)
{
    const auto changed = meta_->Clone();
    changed->SetText("dc:title[@de]", "See");
    provider_.DoWriteChanges(*changed);
    EXPECT_EQ(meta_->Find("dc:title[@de]")->Value(), "See");
    EXPECT_EQ(meta_->Serialize(), changed->Serialize());
    // The two are still changed on their own.
    changed->SetText("dc:title[@de]", "Meer");
    EXPECT_EQ(meta_->Find("dc:title[@de]")->Value(), "See");
}

// Where the object comes from is known to whoever read it, and saving needs it.
TEST_F(ProviderTest, WritingKeepsTheOrigin)
{
    class Place : public kivxmp::Origin {};
    const auto ours = std::make_shared<Place>();
    meta_->SetOrigin(ours);
    const auto other = __XMPMeta__::Create();
    other->SetOrigin(std::make_shared<Place>());
    other->SetText("dc:format", "image/jpeg");
    provider_.DoWriteChanges(*other);
    EXPECT_EQ(meta_->GetOrigin(), ours);
    EXPECT_NE(other->GetOrigin(), ours);
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema(""), ElementsAre("dc:format"));
}

TEST_F(ProviderTest, AnObjectMayBeWrittenToItself)
{
    provider_.DoWriteChanges(*meta_);
    EXPECT_EQ(meta_->Serialize(), kPacket);
}

// A photo without a packet, and a sidecar beside it.
class DerivedProviderTest : public testing::Test {
protected:
    std::unique_ptr<__XMPMeta__> Open() const
    {
        folder_.Write("p.jpg", std::string("\xFF\xD8\xFF\xDA\0\2\xFF\xD9", 8));
        folder_.Write("p.jpg.xmp", std::string(kPacket));
        return kivxmp::OpenPhoto(folder_.Path("p.jpg"));
    }

    const kivcore::testing::TestFolder folder_;
    const std::unique_ptr<__XMPMeta__> meta_ = Open();
    Provider provider_{meta_.get()};
};

TEST_F(DerivedProviderTest, DerivedPropertiesAreThere)
{
    const auto set = meta_->Clone();
    set->SetText("dc:format", "image/jpeg");
    provider_.DoWriteChanges(*set);
    EXPECT_EQ(provider_.QueryPathStatus("dc:title[@de]"), PathStatus::kPresent);
    EXPECT_EQ(provider_.QueryPathStatus("dc:title[@fr]"), PathStatus::kMissing);
    EXPECT_EQ(provider_.QueryPathStatus("dc:creator"), PathStatus::kMissing);
    // Literal XML means nothing outside of its packet.
    EXPECT_EQ(provider_.QueryPathStatus("dc:source"), PathStatus::kMissing);
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema(""),
                ElementsAre("dc:format", "xmp:Rating", "dc:title", "{http://own/}note"));
    EXPECT_THAT(provider_.GetAllPathsForDynamicSchema("http://ns.adobe.com/xap/1.0/"),
                ElementsAre("xmp:Rating"));
}

TEST_F(DerivedProviderTest, AChangeCopiesFirstAndIsTakenBack)
{
    const auto changed = meta_->Clone();
    changed->SetText("dc:title[@de]", "See");
    provider_.DoWriteChanges(*changed);
    EXPECT_EQ(kivxmp::ToJson(*meta_, meta_->Find("dc:title")), R"({"x-default":"Sea","de":"See"})");
    EXPECT_EQ(kivxmp::FindDerivedSource(*meta_, "dc:title"), nullptr);
    EXPECT_EQ(provider_.GetAllPathsForDynamicSchema("").front(), "dc:title");
    changed->SetText("dc:title[@de]", "Meer");
    provider_.DoWriteChanges(*changed);
    EXPECT_FALSE(meta_->IsChanged());
    EXPECT_EQ(meta_->PropertyCount(), 0u);
    ASSERT_NE(kivxmp::FindDerivedSource(*meta_, "dc:title"), nullptr);
    EXPECT_EQ(kivxmp::FindDerivedSource(*meta_, "dc:title")->detail, "p.jpg.xmp");
}

TEST_F(ProviderTest, WithoutAnObjectNothingCanBeWritten)
{
    const auto changed = __XMPMeta__::Create();
    try {
        none_.DoWriteChanges(*changed);
        FAIL();
    } catch (const XMP_Error& error) {
        EXPECT_EQ(error.Code(), kKivXmpBadArgument);
        EXPECT_STREQ(error.Text(), "There is no XMP object to write to");
    }
}

}  // namespace

}  // namespace kivmetadata
