/* The same with the system's header last. */

#include <kivmetadataapi.h>

#include <windows.h>

HWND OwnerOf(const MetadataDialogRequest* request);

HWND OwnerOf(const MetadataDialogRequest* request)
{
    return IsWindow(request->parentWindow) ? request->parentWindow : NULL;
}
