/* A host in C: only the library's public header, only the surface. Dialogs need a display and are
 * driven elsewhere; here every function meets what it must refuse, and a few plain rounds. */

#include <kivmetadataapi.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

static void Check(bool condition, const char* text)
{
    if (!condition) {
        ++failures;
        printf("failed: %s\n", text);
    }
}

int main(void)
{
    MetadataAPIInitParams params;
    MetadataDialogRequest request;
    int round;

    Check(!MetadataAPIInitialize(NULL), "null parameters are refused");
    Check(GetGlobalKIVMetadataVector() == NULL, "no records before initialize");
    Check(GetGlobalKIVMetadataVectorSize() == 0, "size 0 before initialize");
    Check(!DoMetadataDialog(NULL, NULL), "no dialog before initialize");

    memset(&params, 0, sizeof params);
    Check(!MetadataAPIInitialize(&params), "required texts are required");
    MetadataAPITerminate();

    params.clientName = "CHost";
    params.clientVersion = "1";
    params.clientInternalVersion = "1.0";
    params.clientBuildNumber = "1";
    memset(&request, 0, sizeof request);
    request.text = "nothing.jpg";
    for (round = 0; round < 3; ++round) {
        Check(MetadataAPIInitialize(&params), "initialize");
        Check(!DoMetadataDialog(NULL, &request), "no dialog without an object");
        Check(MetadataAPIInitialize(&params), "nested initialize");
        MetadataAPITerminate();
        MetadataAPITerminate();
        Check(GetGlobalKIVMetadataVectorSize() == 0, "size 0 after terminate");
    }
    Check(!DoMetadataDialog(NULL, &request), "no dialog after terminate");
    printf("%d failed\n", failures);
    return failures == 0 ? 0 : 1;
}
