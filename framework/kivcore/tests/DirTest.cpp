#include <kivcore/Dir.h>

#include <gmock/gmock.h>

#include <kivcore/Config.h>
#include <kivcore/Resource.h>

#include "framework/kivcore/tests/Environment.h"
#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::EnvironmentVariable;
using kivcore::testing::TestFolder;
using kivcore::testing::TextOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct SafeNameCase {
    UStringView name;
    UStringView want;
};

constexpr SafeNameCase kSafeNameCases[] = {
    {u"Quillet", u"Quillet"},
    {u"a b.c-d", u"a b.c-d"},
    {u"\u00e9\u3042\U0001F600", u"\u00e9\u3042\U0001F600"},
    {u"", u"_"},
    {u".", u"_"},
    {u"..", u"_"},
    {u"...", u"___"},
    {u".hidden", u".hidden"},
    {u"../../etc", u".._.._etc"},
    {u"a/b\\c:d*e?f\"g<h>i|j", u"a_b_c_d_e_f_g_h_i_j"},
    {u"tab\tend\u007f", u"tab_end_"},
    // Windows drops these at the end of a name.
    {u"name. ", u"name__"},
    // Devices, with and without an extension, in any case.
    {u"CON", u"_CON"},
    {u"nul.txt", u"_nul.txt"},
    {u"Com7", u"_Com7"},
    {u"LPT0", u"LPT0"},
    {u"COM10", u"COM10"},
    {u"CONSOLE", u"CONSOLE"},
};

TEST(Dir, SafeName)
{
    for (const SafeNameCase& row : kSafeNameCases) {
        EXPECT_EQ(PathToUTF8(Dir::SafeName(row.name)), PathToUTF8(UString(row.want)));
    }
    // A NUL would cut the path.
    EXPECT_EQ(Dir::SafeName(UStringView(u"a\0b", 3)), u"a_b");
}

TEST(Dir, NoFolder)
{
    const Dir none;
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_FALSE(none.Exists());
    EXPECT_THAT(none.FileNames(), IsEmpty());
    EXPECT_FALSE(File().Exists());
}

TEST(Dir, PrefDirNeedsAClientName)
{
    ASSERT_FALSE(config::IsClientNameInitialized());
    const EnvironmentVariable none("KIV_PREF_DIR", std::nullopt);
    EXPECT_THROW(Dir::PrefDir(), std::logic_error);
    const EnvironmentVariable set("KIV_PREF_DIR", "/prefs");
    EXPECT_EQ(Dir::PrefDir().FullPath(), Dir(u"/prefs").FullPath());
}

TEST(Dir, CreatesWhatIsMissing)
{
    const TestFolder folder;
    const Dir deep = Dir(folder.Path("a")) / u"b" / u"c";
    EXPECT_FALSE(deep.Exists());
    deep.Create();
    EXPECT_TRUE(deep.Exists());
    deep.Create();
    EXPECT_TRUE(deep.Exists());
}

TEST(Dir, CreateNamesTheFileInTheWay)
{
    const TestFolder folder;
    folder.Write("a", "x");
    const std::string text = TextOf<FileError>([&] { (Dir(folder.Path("a")) / u"b").Create(); });
    EXPECT_THAT(text, HasSubstr(folder.Of("a").string()));
    EXPECT_THAT(text, HasSubstr("cannot be made"));
}

TEST(Dir, ListsFilesAndFoldersApart)
{
    const TestFolder folder;
    folder.Write("b.txt", "");
    folder.Write("a.txt", "");
    folder.Write(".hidden", "");
    std::filesystem::create_directory(folder.Of("sub"));
    const Dir dir(folder.Path(""));
    EXPECT_THAT(dir.FileNames(), ElementsAre(u".hidden", u"a.txt", u"b.txt"));
    EXPECT_THAT(dir.FolderNames(), ElementsAre(u"sub"));
    EXPECT_THAT((dir / u"missing").FileNames(), IsEmpty());
}

TEST(File, NameAndFolder)
{
    const TestFolder folder;
    const File file(Dir(folder.Path("sub")), u"x.txt");
    EXPECT_EQ(file.Name(), u"x.txt");
    EXPECT_EQ(file.Folder().FullPath(), folder.Path("sub"));
    EXPECT_FALSE(file.Exists());
}

TEST(File, CreateMakesFoldersAndKeepsContent)
{
    const TestFolder folder;
    const File file(folder.Path("sub/x.txt"));
    file.Create(false);
    EXPECT_TRUE(file.Exists());
    EXPECT_EQ(folder.Read("sub/x.txt"), "");
    folder.Write("sub/x.txt", "content");
    file.Create(/*truncate=*/false);
    EXPECT_EQ(folder.Read("sub/x.txt"), "content");
    file.Create(/*truncate=*/true);
    EXPECT_EQ(folder.Read("sub/x.txt"), "");
}

TEST(File, ReadAllHoldsToItsLimit)
{
    const TestFolder folder;
    folder.Write("x", "12345");
    const File file(folder.Path("x"));
    EXPECT_EQ(file.ReadAll(5), "12345");
    try {
        file.ReadAll(4);
        FAIL() << "read beyond the limit";
    } catch (const FileError& error) {
        EXPECT_EQ(error.GetKind(), FileError::Kind::kTooLarge);
        EXPECT_EQ(error.what(), folder.Of("x").string() + ": is too large");
    }
}

TEST(File, MissingAndFolder)
{
    const TestFolder folder;
    const File missing(folder.Path("missing"));
    try {
        missing.ReadAll(10);
        FAIL() << "read what is not there";
    } catch (const FileError& error) {
        EXPECT_EQ(error.GetKind(), FileError::Kind::kNotFound);
        EXPECT_EQ(error.what(),
                  folder.Of("missing").string() + ": cannot be opened: no such file or folder");
    }
    EXPECT_FALSE(File(folder.Path("")).Exists());
    EXPECT_THROW(File(folder.Path("")).ReadAll(10), FileError);
    EXPECT_THROW(File(folder.Path("")).Create(false), FileError);
}

TEST(File, RemoveIsSilentWhereThereIsNone)
{
    const TestFolder folder;
    folder.Write("x", "");
    File(folder.Path("x")).Remove();
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_NO_THROW(File(folder.Path("x")).Remove());
    EXPECT_THROW(File(folder.Path("")).Remove(), FileError);
}

TEST(File, ANulDoesNotCutAPath)
{
    const TestFolder folder;
    folder.Write("secret", "content");
    UString path = folder.Path("secret");
    path += u'\0';
    path += u".jpg";
    EXPECT_FALSE(File(path).Exists());
    EXPECT_THROW(File(path).ReadAll(100), FileError);
    EXPECT_THROW(File(path).Create(/*truncate=*/true), FileError);
    File(path).Remove();
    EXPECT_EQ(folder.Read("secret"), "content");
}

TEST(ModuleFolder, OfNoModule)
{
    const int local = 0;
    EXPECT_TRUE(ModuleFolder(&local).IsEmpty());
    EXPECT_FALSE(LoadXmlResource(&local, "THEME").has_value());
}

}  // namespace
}  // namespace kivcore::filesupport
