/* Proves that a C host can ask for the last failure's text. */

#include <kivcore/LastFailure.h>

const char* LastFailureAsCSeesIt(void);

const char* LastFailureAsCSeesIt(void)
{
    return KivLastFailureText();
}
