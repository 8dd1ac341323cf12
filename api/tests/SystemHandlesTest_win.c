/* The system's header and ours in one source: the handles are the same types, in either order. This
 * source has the system's first. */

#include <windows.h>

#include <kivmetadataapi.h>

/* Compiles only while both declare the same types. */
MetadataAPIInitParams ParamsOfThisProgram(void);
MetadataDialogRequest RequestOverWindow(HWND window);

MetadataAPIInitParams ParamsOfThisProgram(void)
{
    MetadataAPIInitParams params = {0};
    params.instanceHandle = GetModuleHandleW(NULL);
    return params;
}

MetadataDialogRequest RequestOverWindow(HWND window)
{
    MetadataDialogRequest request = {0};
    request.parentWindow = GetAncestor(window, GA_ROOT);
    return request;
}
