/* The binary interface as this compiler lays it out, against the offsets that hosts are promised:
 * each field is printed, and what differs fails. Needs the header only. */

#include <kivmetadataapi.h>
#include <stdio.h>

typedef struct Row {
    const char* name;
    size_t found;
    size_t promised;
    size_t foundSize;
    size_t promisedSize; /* of the field; 0 for a whole record */
} Row;

#define FIELD(record, field, offset, size)                                                     \
    {                                                                                          \
#record "." #field, offsetof(record, field), offset, sizeof(((record*)0)->field), size \
    }
#define RECORD(record, size)                          \
    {                                                 \
        "sizeof " #record, sizeof(record), size, 0, 0 \
    }

static const Row kRows[] = {
    FIELD(MetadataAPIInitParams, clientName, 0, 8),
    FIELD(MetadataAPIInitParams, clientVersion, 8, 8),
    FIELD(MetadataAPIInitParams, clientInternalVersion, 16, 8),
    FIELD(MetadataAPIInitParams, clientBuildNumber, 24, 8),
    FIELD(MetadataAPIInitParams, language, 32, 8),
    FIELD(MetadataAPIInitParams, reserved, 40, 8),
    FIELD(MetadataAPIInitParams, instanceHandle, 48, 8),
    FIELD(MetadataAPIInitParams, startGdiPlus, 56, 1),
    FIELD(MetadataAPIInitParams, uiScaleFactor, 60, 4),
    FIELD(MetadataAPIInitParams, loadCustomDefinitions, 64, 1),
    RECORD(MetadataAPIInitParams, 72),
    FIELD(MetadataDialogRequest, text, 0, 8),
    FIELD(MetadataDialogRequest, parentWindow, 8, 8),
    FIELD(MetadataDialogRequest, brightnessPercent, 16, 4),
    FIELD(MetadataDialogRequest, flags, 20, 1),
    RECORD(MetadataDialogRequest, 24),
    FIELD(KIVMetadataRecord, viewText, 0, 8),
    FIELD(KIVMetadataRecord, itemText, 8, 8),
    FIELD(KIVMetadataRecord, itemKeyText, 16, 8),
    FIELD(KIVMetadataRecord, label, 24, 8),
    FIELD(KIVMetadataRecord, propertyFlag, 32, 1),
    RECORD(KIVMetadataRecord, 40),
};

int main(void)
{
    int failures = 0;
    size_t i;
    for (i = 0; i < sizeof kRows / sizeof kRows[0]; ++i) {
        const Row* row = &kRows[i];
        const bool isGood = row->found == row->promised && row->foundSize == row->promisedSize;
        /* No %zu: the C library of older Windows does not know it. */
        printf("%-45s %2lu", row->name, (unsigned long)row->found);
        if (row->promisedSize != 0) {
            printf(", size %lu", (unsigned long)row->foundSize);
        }
        printf("%s\n", isGood ? "" : "  <- not what is promised");
        failures += isGood ? 0 : 1;
    }
    printf("%d of %d differ\n", failures, (int)(sizeof kRows / sizeof kRows[0]));
    return failures == 0 ? 0 : 1;
}
