// Every form of RDF/XML: what is changed beside it leaves its bytes, what is changed in it is read
// back, and so is what is written anew.
//
// With KIV_RDF_FORMS_DIR set, each packet that was written is put into that folder with the tree
// that it stands for, so that readers which share no code with this one can judge both.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/tests/RdfForms.h"
#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp::testing {
namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view kBeside = "<ex:z>1</ex:z>";
constexpr std::string_view kBesideChanged = "<ex:z>2</ex:z>";

struct Document {
    std::string about;
    std::string text;  // kBeside stands in it once
    std::string want;  // lines of Dump, without that of ex:z
    Encoding encoding = Encoding::kUtf8;
    std::string behind = {};  // the text, whatever its encoding
};

std::string Bytes(const Document& document, const std::string& text)
{
    return EncodeFromUtf8(text, document.encoding) + document.behind;
}

std::string Bytes(const Document& document)
{
    return Bytes(document, document.text);
}

/// The text with ex:z in another form.
std::string WithBeside(const Document& document, std::string_view other)
{
    std::string text = document.text;
    return text.replace(text.find(kBeside), kBeside.size(), other);
}

std::vector<Document> PacketDocuments()
{
    const std::string beside(kBeside);
    const std::string rdf = "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"";
    const std::string ex = "xmlns:ex=\"http://ex/\"";
    const std::string described = "<rdf:Description " + ex + ">" + beside + "</rdf:Description>";
    const std::string bare = "<rdf:RDF " + rdf + ">" + described + "</rdf:RDF>";
    const std::string text = "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x8C\x8D";
    const std::string wide = InDescription("<ex:a>" + text + "</ex:a>" + beside, "ex:b='&#8364;'");
    const std::string wideWant = "ex:b simple \xE2\x82\xAC\nex:a simple " + text + "\n";
    const std::string mark(kMark);
    const std::string dtd =
        "<!DOCTYPE x [<!ENTITY e \"<ex:b>1</ex:b>\"><!ENTITY t 't&#38;#x3C;'><!-- ' -->]>\n";
    return {
        {"several descriptions",
         InRdf("<rdf:Description rdf:about=\"\" ex:a=\"1\"/>\n<rdf:Description rdf:about=\"\">" +
               beside +
               "</rdf:Description>\n<rdf:Description><ex:b xml:lang='de'>2</ex:b></rdf:Description>"
               "<rdf:Description about=\"\"></rdf:Description>"),
         "ex:a simple 1\nex:b simple 2\nex:b/?xml:lang simple de\n"},
        {"descriptions of one named resource",
         InRdf("<rdf:Description rdf:about=\"u&amp;\" ex:a=\"1\"/><rdf:Description>" + beside +
               "</rdf:Description><rdf:Description about='u&#38;' q:b=\"2\"/>"),
         "ex:a simple 1\nq:b simple 2\n"},
        {"a description of another resource",
         InRdf("<rdf:Description rdf:about=\"u\">" + beside +
               "</rdf:Description><rdf:Description rdf:about=\"v\"><ex:z>3</ex:z>"
               "</rdf:Description>"),
         "rdf:Description raw <rdf:Description rdf:about=\"v\"><ex:z>3</ex:z></rdf:Description>\n"},
        {"a description with a node identifier",
         InRdf("<rdf:Description rdf:nodeID=\"n\" ex:a=\"1\"/><rdf:Description>" + beside +
               "</rdf:Description>"),
         "rdf:Description raw <rdf:Description rdf:nodeID=\"n\" ex:a=\"1\"/>\n"},
        {"an identified description",
         InRdf("<rdf:Description rdf:ID=\"i\" ex:a=\"1\">" + beside + "</rdf:Description>"),
         "ex:a simple 1\n"},
        {"a typed resource",
         InRdf("<q:Kind ex:a=\"1\"/><rdf:Description>" + beside + "</rdf:Description>"),
         "q:Kind raw <q:Kind ex:a=\"1\"/>\n"},
        {"a list on top", InRdf("<rdf:Bag/><rdf:Description>" + beside + "</rdf:Description>"),
         "rdf:Bag raw <rdf:Bag/>\n"},
        {"a description without properties",
         InRdf("<rdf:Description rdf:about=\"\" />" + described), ""},
        {"no x:xmpmeta", bare, ""},
        {"another frame",
         "<x:xapmeta xmlns:x=\"adobe:ns:meta/\" x:xaptk=\"t\">" + bare + "</x:xapmeta>", ""},
        {"deep in other XML", "<a><b xmlns='c'>t" + bare + "</b><d/></a>", ""},
        {"RDF as the default namespace",
         "<RDF xmlns=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" " + ex + ">\n<Description>\n" +
             beside + "\n<ex:a><Bag><li>1</li></Bag></ex:a></Description></RDF>",
         "ex:a bag\nex:a[1] simple 1\n"},
        {"a wrapper", InWrapper(InDescription(beside), std::string(100, ' ')), ""},
        {"a wrapper, read only",
         "<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d' bytes='9'?>" + InDescription(beside) +
             "\n \n<?xpacket end='r'?>",
         ""},
        {"half a wrapper", "<?xpacket begin='' id=''?>" + bare, ""},
        {"an XML declaration, comments and instructions everywhere",
         mark + "<?xml version='1.0' encoding='utf-8' standalone='yes'?><!--1--><?two?><rdf:RDF " +
             rdf + "><!--3--><rdf:Description " + ex + "><?four?><!--5--><ex:a>1</ex:a><!--6-->" +
             beside + "<!--7--></rdf:Description><?eight?></rdf:RDF><!--9-->\n",
         "ex:a simple 1\n"},
        {"entities", dtd + InDescription("&e;<ex:a>&t;</ex:a>" + beside, "q:a=\"&t;\""),
         "q:a simple t<\nex:b simple 1\nex:a simple t<\n"},
        {"line ends of two characters",
         "<rdf:RDF " + rdf + ">\r\n\t<rdf:Description " + ex + "\r\n ex:a='1\r\n2'>\r\n\t\t" +
             beside + "\r\n\t\t<ex:b>1\r\n2</ex:b>\r\n\t</rdf:Description>\r\n</rdf:RDF>\r\n",
         "ex:a simple 1 2\nex:b simple 1\\n2\n"},
        {"one prefix for two namespaces",
         "<rdf:RDF " + rdf +
             "><rdf:Description xmlns:p='http://p1/' p:a='1'><p:b>2</p:b>"
             "</rdf:Description><rdf:Description xmlns:p='http://p2/' p:a='3'/>" +
             described + "</rdf:RDF>",
         "p:a simple 1\np:b simple 2\n{http://p2/}a simple 3\n"},
        {"two prefixes for one namespace",
         "<rdf:RDF " + rdf +
             "><rdf:Description xmlns:p='http://p/' p:a='1'/>"
             "<rdf:Description xmlns:o='http://p/'><o:b>2</o:b></rdf:Description>" +
             described + "</rdf:RDF>",
         "p:a simple 1\no:b simple 2\n"},
        {"a well-known prefix for another namespace",
         "<rdf:RDF " + rdf + " xmlns:dc='http://p/'><rdf:Description dc:a='1' " + ex + ">" +
             beside + "<dc:b>2</dc:b></rdf:Description></rdf:RDF>",
         "{http://p/}a simple 1\n{http://p/}b simple 2\n"},
        {"unused declarations",
         "<rdf:RDF " + rdf + " xmlns:o='http://o/' xmlns='http://d/'>" + described + "</rdf:RDF>",
         ""},
        {"zeros behind", InDescription(beside), "", Encoding::kUtf8, std::string(5, '\0')},
        {"UTF-16, least byte first", mark + wide, wideWant, Encoding::kUtf16Le, ""},
        {"UTF-16, most byte first", mark + wide, wideWant, Encoding::kUtf16Be, ""},
        {"UTF-16 without a mark", wide, wideWant, Encoding::kUtf16Le, ""},
        {"UTF-16 with a declaration", mark + "<?xml version='1.0' encoding='UTF-16'?>" + wide,
         wideWant, Encoding::kUtf16Be, ""},
        {"UTF-32, least byte first", mark + wide, wideWant, Encoding::kUtf32Le, ""},
        {"UTF-32, most byte first", mark + wide, wideWant, Encoding::kUtf32Be, ""},
        {"UTF-16 in a wrapper", mark + InWrapper(wide, std::string(50, ' ')), wideWant,
         Encoding::kUtf16Le, ""},
        {"Latin 1",
         "<?xml version='1.0' encoding='ISO-8859-1'?>" +
             InDescription("<ex:a>\xC3\xBC</ex:a>" + beside),
         "ex:a simple \xC3\xBC\n", Encoding::kLatin1, ""},
    };
}

std::vector<Document> Documents()
{
    std::vector<Document> documents = PacketDocuments();
    for (const FormCase& row : kRdfForms) {
        documents.push_back({row.about, InDescription(row.content + std::string(kBeside)), row.want,
                             Encoding::kUtf8});
    }
    for (const AttributeCase& row : kRdfAttributes) {
        documents.push_back(
            {row.attributes, InDescription(kBeside, row.attributes), row.want, Encoding::kUtf8});
    }
    return documents;
}

Lines LinesOf(const std::string& text)
{
    Lines lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

std::string PathOf(const std::string& line)
{
    return line.substr(0, line.find(' ', line.find('}') == std::string::npos ? 0 : line.find('}')));
}

/// The lines without that of ex:z. The order of properties and fields does not count.
Lines Others(const std::string& dump)
{
    Lines lines = LinesOf(dump);
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("ex:z "); });
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// What `lines` become when the node at `path` gets that text.
Lines WithText(const Lines& lines, const std::string& path, const std::string& text)
{
    Lines changed;
    for (const std::string& line : lines) {
        const std::string_view rest =
            std::string_view(line).substr(std::min(path.size(), line.size()));
        const bool isWithin = line.starts_with(path) && !rest.empty();
        if (isWithin && rest.front() == ' ') {
            changed.push_back(path + (rest.starts_with(" uri") ? " uri " : " simple ") + text);
        } else if (!isWithin || rest.starts_with("/?") ||
                   (rest.front() != '/' && rest.front() != '[')) {
            changed.push_back(line);
        }
    }
    return changed;
}

/// "path form value" with the names' URIs: what a packet says, whatever its prefixes.
void AddPlainLines(Lines& lines, const std::string& path, const Node& node)
{
    std::string line = path + " " + FormName(node.Form());
    if (node.IsText()) {
        line += " " + Shown(node.Value());
    }
    lines.push_back(line);
    const auto name = [](const Node& part) {
        return "{" + part.NamespaceUri() + "}" + part.LocalName();
    };
    for (const Node& qualifier : node.Qualifiers()) {
        AddPlainLines(lines, path + "/?" + name(qualifier), qualifier);
    }
    const std::vector<Node>& parts = node.Children();
    for (std::size_t i = 0; i < parts.size(); ++i) {
        AddPlainLines(
            lines,
            node.IsArray() ? path + "[" + std::to_string(i + 1) + "]" : path + "/" + name(parts[i]),
            parts[i]);
    }
}

Lines PlainLines(const __XMPMeta__& meta)
{
    Lines lines;
    for (const Node* const property : meta.Properties()) {
        AddPlainLines(lines, "{" + property->NamespaceUri() + "}" + property->LocalName(),
                      *property);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// Puts packets into the folder of KIV_RDF_FORMS_DIR: N.xmp and N-K.xmp, which was made from it,
/// each with N.txt or N-K.txt.
class Gallery {
public:
    Gallery()
    {
        if (const char* const folder = std::getenv("KIV_RDF_FORMS_DIR")) {
            folder_ = folder;
        }
    }

    void Begin(const std::string& packet, const __XMPMeta__& meta)
    {
        ++document_;
        edit_ = 0;
        Put(std::to_string(document_), packet, meta);
    }

    void AddEdited(const std::string& packet, const __XMPMeta__& meta)
    {
        Put(std::to_string(document_) + "-" + std::to_string(++edit_), packet, meta);
    }

private:
    void Put(const std::string& name, const std::string& packet, const __XMPMeta__& meta) const
    {
        if (folder_.empty()) {
            return;
        }
        std::ofstream(folder_ / (name + ".xmp"), std::ios::binary) << packet;
        std::ofstream lines(folder_ / (name + ".txt"), std::ios::binary);
        for (const std::string& line : PlainLines(meta)) {
            lines << line << '\n';
        }
    }

    std::filesystem::path folder_;
    int document_ = 0;
    int edit_ = 0;
};

/// Serializes, and expects that the packet reads back as the object that was written.
std::string Written(const __XMPMeta__& meta)
{
    std::string packet = meta.Serialize();
    EXPECT_EQ(PlainLines(*Parse(packet)), PlainLines(meta)) << packet;
    return packet;
}

TEST(RdfForms, AChangeBesideLeavesTheirBytes)
{
    for (const Document& document : Documents()) {
        SCOPED_TRACE(document.about);
        const auto meta = Parse(Bytes(document));
        EXPECT_EQ(Others(Dump(*meta)), Others(document.want));
        EXPECT_EQ(meta->Serialize(), Bytes(document));

        const auto changed = meta->Clone();
        changed->SetText("ex:z", "2");
        EXPECT_EQ(Written(*changed), Bytes(document, WithBeside(document, kBesideChanged)));
        EXPECT_EQ(Others(Dump(*changed)), Others(document.want));

        // Without a word about its place: somewhere in a description, nothing else touched.
        const auto grown = meta->Clone();
        grown->SetText("ex:y", "3");
        const std::string written = Written(*grown);
        grown->Remove("ex:y");
        EXPECT_EQ(grown->Serialize(), Bytes(document));
        std::string own = EncodeFromUtf8("<ex:y>3</ex:y>", document.encoding);
        ASSERT_NE(written.find(own), std::string::npos);

        // Not even the white space in front of it is anybody's but its own.
        const auto less = meta->Clone();
        less->Remove("ex:z");
        EXPECT_EQ(Others(Dump(*Parse(Written(*less)))), Others(document.want));
    }
}

TEST(RdfForms, EachPartCanBeChanged)
{
    Gallery gallery;
    int edits = 0;
    for (const Document& document : Documents()) {
        SCOPED_TRACE(document.about);
        const auto meta = Parse(Bytes(document));
        gallery.Begin(Bytes(document), *meta);
        const Lines lines = LinesOf(document.want);
        // The second one of a name cannot be reached.
        std::multiset<const Node*> nodes;
        for (const std::string& line : lines) {
            nodes.insert(meta->Find(PathOf(line)));
        }
        for (const std::string& line : lines) {
            const std::string path = PathOf(line);
            SCOPED_TRACE(path);
            // What is in no namespace or a term of RDF can be shown and kept, no more; what stands
            // beside the descriptions is nothing of ours.
            const bool isTerm = path.find("rdf:", path.rfind('/') + 1) != std::string::npos &&
                                !path.ends_with("rdf:type");
            const bool hasNoNamespace = path.find("{}") != std::string::npos;
            const bool isBeside = document.text.find("<q:Kind ex:a") != std::string::npos;
            if (nodes.count(meta->Find(path)) > 1 || isBeside) {
                continue;
            }
            const std::string text = path.ends_with("/?xml:lang") ? "sv" : "T";
            const auto changed = meta->Clone();
            const KivXmpCode code = CodeThrownBy([&] { changed->SetText(path, text); });
            if (isTerm || hasNoNamespace) {
                EXPECT_EQ(code, kKivXmpBadPath);
                continue;
            }
            if (document.text.find("&"
                                   "e;") != std::string::npos &&
                path == "ex:b") {
                EXPECT_EQ(code, kKivXmpNotEditable);
                continue;
            }
            ASSERT_EQ(code, kKivXmpOk);
            // Another language names another item.
            if (!path.ends_with("]/?xml:lang")) {
                Lines want = WithText(lines, path, text);
                std::sort(want.begin(), want.end());
                EXPECT_EQ(Others(Dump(*changed)), want);
            }
            const std::string written = Written(*changed);
            const std::string beside = EncodeFromUtf8(std::string(kBeside), document.encoding);
            EXPECT_NE(written.find(beside), std::string::npos);
            gallery.AddEdited(written, *changed);
            ++edits;
        }
    }
    EXPECT_GT(edits, 200);
}

TEST(RdfForms, EachPropertyCanBeRemovedAndWrittenAnew)
{
    int copies = 0;
    for (const Document& document : Documents()) {
        SCOPED_TRACE(document.about);
        const auto meta = Parse(Bytes(document));
        const auto copy = __XMPMeta__::Create();
        for (const Node* const property : meta->Properties()) {
            PathStep step;
            step.uri = property->NamespaceUri();
            step.local = property->LocalName();
            step.prefix = property->Prefix();
            const Path path{step};
            SCOPED_TRACE(step.local);
            if (meta->Find(path) != property) {
                continue;  // the second one of a name, or beside the descriptions
            }
            if (CodeThrownBy([&] { copy->SetCopy(path, *property); }) == kKivXmpOk) {
                ++copies;
                EXPECT_TRUE(*copy->Find(path) == *property || property->Form() == NodeForm::kRaw);
                const auto same = __XMPMeta__::Create();
                same->SetCopy(path, *property);
                const auto again = Parse(Written(*same));
                EXPECT_EQ(again->Find(path)->Form(), property->Form());
            } else {
                const bool isTerm = step.uri.empty() || property->Prefix() == "rdf";
                EXPECT_TRUE(isTerm || property->Form() == NodeForm::kRaw);
            }
            const auto less = meta->Clone();
            if (CodeThrownBy([&] { less->Remove(path); }) == kKivXmpOk) {
                Lines left = PlainLines(*meta);
                const std::string name = "{" + step.uri + "}" + step.local;
                std::erase_if(left, [&name](const std::string& line) {
                    return line.starts_with(name) &&
                           line.find_first_of(" /[", name.size()) == name.size();
                });
                EXPECT_EQ(PlainLines(*Parse(Written(*less))), left);
            }
        }
    }
    EXPECT_GT(copies, 120);
}

}  // namespace
}  // namespace kivxmp::testing
