/* Uses the C interface as a host in C does: through its header alone. Called from CInterfaceTest;
 * returns the line of the first expectation that does not hold, 0 if all do. */

#include <kivxmp/kivxmp.h>
#include <string.h>

#define EXPECT(condition)    \
    do {                     \
        if (!(condition)) {  \
            return __LINE__; \
        }                    \
    } while (0)

int RunCInterfaceTest(void);

struct Lines {
    char text[4096];
    int left;
};

static int AddLine(void* context, const KivXmpNode* node)
{
    struct Lines* const lines = context;
    static const char* const kForms[] = {"simple", "uri", "struct", "bag", "seq", "alt", "raw"};
    strcat(lines->text, node->path);
    strcat(lines->text, " ");
    strcat(lines->text, kForms[node->form]);
    if (node->valueLength != 0) {
        strcat(lines->text, " ");
        strcat(lines->text, node->value);
    }
    strcat(lines->text, node->isQualifier ? " qualifier\n" : "\n");
    return --lines->left == 0;
}

static int TestNewObject(void)
{
    __XMPMeta__* meta = NULL;
    char* text = NULL;
    size_t count = 9;
    KivXmpForm form = kKivXmpRaw;
    int changed = 9;
    const char* const items[] = {"sea", "a \"b\""};

    EXPECT(KivXmpCreate(&meta) == kKivXmpOk && meta != NULL);
    EXPECT(KivXmpIsChanged(meta, &changed) == kKivXmpOk && changed == 0);
    EXPECT(KivXmpSetText(meta, "dc:title[@x-default]", "Title") == kKivXmpOk);
    EXPECT(KivXmpSetUri(meta, "xmpRights:WebStatement", "http://w/") == kKivXmpOk);
    EXPECT(KivXmpSetList(meta, "dc:subject", kKivXmpBag, items, 2) == kKivXmpOk);
    EXPECT(KivXmpIsChanged(meta, &changed) == kKivXmpOk && changed == 1);

    EXPECT(KivXmpGetText(meta, "dc:title[@x-default]", &text) == kKivXmpOk);
    EXPECT(strcmp(text, "Title") == 0);
    KivXmpFree(text);
    EXPECT(KivXmpGetList(meta, "dc:subject", &text) == kKivXmpOk);
    EXPECT(strcmp(text, "[\"sea\",\"a \\\"b\\\"\"]") == 0);
    KivXmpFree(text);
    EXPECT(KivXmpCount(meta, "dc:subject", &count) == kKivXmpOk && count == 2);
    EXPECT(KivXmpGetForm(meta, "dc:subject", &form) == kKivXmpOk && form == kKivXmpBag);

    EXPECT(KivXmpRemove(meta, "dc:subject[1]") == kKivXmpOk);
    EXPECT(KivXmpRemove(meta, "dc:subject[1]") == kKivXmpOk);
    EXPECT(KivXmpRemove(meta, "dc:subject") == kKivXmpNotFound);
    EXPECT(strcmp(KivXmpLastErrorText(), "dc:subject: nothing stands there") == 0);
    EXPECT(KivXmpCount(meta, "dc:title", &count) == kKivXmpOk && count == 1);
    EXPECT(strcmp(KivXmpLastErrorText(), "") == 0);
    KivXmpRelease(meta);
    return 0;
}

static int TestPackets(void)
{
    static const char kPacket[] =
        "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
        "<rdf:Description xmlns:ex=\"http://ex/\" ex:a=\"1\">"
        "<ex:b><rdf:Alt><rdf:li xml:lang=\"de\">2</rdf:li></rdf:Alt></ex:b>"
        "</rdf:Description></rdf:RDF>";
    __XMPMeta__* meta = NULL;
    __XMPMeta__* clone = NULL;
    void* bytes = NULL;
    size_t size = 0;
    struct Lines lines = {"", 0};

    EXPECT(KivXmpParse(kPacket, sizeof(kPacket) - 1, &meta) == kKivXmpOk);
    EXPECT(KivXmpClone(meta, &clone) == kKivXmpOk);
    EXPECT(KivXmpSetText(clone, "ex:a", "9") == kKivXmpOk);
    EXPECT(KivXmpSerialize(meta, 0, &bytes, &size) == kKivXmpOk);
    EXPECT(size == sizeof(kPacket) - 1 && memcmp(bytes, kPacket, size + 1) == 0);
    KivXmpFree(bytes);
    EXPECT(KivXmpSerialize(clone, 10, &bytes, &size) == kKivXmpOk);
    EXPECT(strstr(bytes, "<ex:a>9</ex:a>") != NULL);
    KivXmpFree(bytes);

    EXPECT(KivXmpWalk(meta, AddLine, &lines) == kKivXmpOk);
    EXPECT(strcmp(lines.text,
                  "ex:a simple 1\nex:b alt\nex:b[@de] simple 2\n"
                  "ex:b[@de]/?xml:lang simple de qualifier\n") == 0);
    memset(&lines, 0, sizeof(lines));
    lines.left = 2;
    EXPECT(KivXmpWalk(meta, AddLine, &lines) == kKivXmpOk);
    EXPECT(strcmp(lines.text, "ex:a simple 1\nex:b alt\n") == 0);

    EXPECT(KivXmpSetText(meta, "ex:b", "3") == kKivXmpWrongForm);
    EXPECT(KivXmpSetUri(meta, "ex:b", "3") == kKivXmpWrongForm);
    EXPECT(KivXmpSetText(meta, "ex:b/?ex:c", "3") == kKivXmpOk);
    KivXmpRelease(clone);
    KivXmpRelease(meta);
    return 0;
}

static int TestFailures(void)
{
    __XMPMeta__* meta = (__XMPMeta__*)1;
    char* text = (char*)1;
    void* bytes = (void*)1;
    size_t size = 1;
    int changed = 0;
    KivXmpForm form = kKivXmpSimple;
    struct Lines lines = {"", 0};
    const char* const items[] = {"a", NULL};

    EXPECT(KivXmpParse("<a>", 3, &meta) == kKivXmpMalformed && meta == NULL);
    EXPECT(strstr(KivXmpLastErrorText(), "line 1") != NULL);
    EXPECT(KivXmpParse(NULL, 3, &meta) == kKivXmpBadArgument);
    EXPECT(KivXmpParse("", 0, &meta) == kKivXmpNoPacket);
    EXPECT(KivXmpParse("<a/>", 4, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpCreate(NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpClone(NULL, &meta) == kKivXmpBadArgument);
    EXPECT(KivXmpReplacePacket(NULL, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpSerialize(NULL, 0, &bytes, &size) == kKivXmpBadArgument);
    EXPECT(bytes == NULL && size == 0);
    EXPECT(KivXmpIsChanged(NULL, &changed) == kKivXmpBadArgument);
    EXPECT(KivXmpGetText(NULL, "dc:title", &text) == kKivXmpBadArgument && text == NULL);
    EXPECT(strcmp(KivXmpLastErrorText(), "meta is null") == 0);
    KivXmpRelease(NULL);
    KivXmpFree(NULL);

    EXPECT(KivXmpCreate(&meta) == kKivXmpOk);
    EXPECT(KivXmpGetText(meta, NULL, &text) == kKivXmpBadArgument);
    EXPECT(KivXmpGetText(meta, "dc:title", NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpGetText(meta, "title", &text) == kKivXmpBadPath);
    EXPECT(KivXmpGetText(meta, "dc:title", &text) == kKivXmpNotFound);
    EXPECT(KivXmpGetForm(meta, "dc:title", &form) == kKivXmpNotFound);
    EXPECT(KivXmpCount(meta, "dc:title", &size) == kKivXmpNotFound);
    EXPECT(KivXmpSetText(meta, "dc:title", NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpSetText(meta, "dc:title", "\x01") == kKivXmpBadValue);
    EXPECT(KivXmpSetList(meta, "dc:title", kKivXmpSimple, items, 1) == kKivXmpBadArgument);
    EXPECT(KivXmpSetList(meta, "dc:title", kKivXmpBag, items, 2) == kKivXmpBadArgument);
    EXPECT(KivXmpSetList(meta, "dc:title", kKivXmpBag, NULL, 2) == kKivXmpBadArgument);
    EXPECT(KivXmpSetList(meta, "dc:title", kKivXmpBag, NULL, 0) == kKivXmpOk);
    EXPECT(KivXmpGetText(meta, "dc:title", &text) == kKivXmpWrongForm && text == NULL);
    EXPECT(KivXmpSetText(meta, "dc:source/photoshop:City", "x") == kKivXmpOk);
    EXPECT(KivXmpGetList(meta, "dc:source", &text) == kKivXmpWrongForm);
    EXPECT(KivXmpWalk(meta, NULL, &lines) == kKivXmpBadArgument);
    EXPECT(KivXmpRegisterNamespace("dc", "http://other/") == kKivXmpBadValue);
    EXPECT(KivXmpRegisterNamespace(NULL, "http://other/") == kKivXmpBadArgument);
    EXPECT(KivXmpRegisterNamespace("ctest", "http://ctest/") == kKivXmpOk);
    EXPECT(KivXmpSetText(meta, "ctest:a", "x") == kKivXmpOk);
    KivXmpRelease(meta);
    return 0;
}

int RunCInterfaceTest(void)
{
    int line = TestNewObject();
    if (line == 0) {
        line = TestPackets();
    }
    return line != 0 ? line : TestFailures();
}
