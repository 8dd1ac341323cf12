#include "framework/kivxmp/tests/PhotoEditor.h"

int main(int argc, char** argv)
{
    return RunPhotoEditor(argc, argv);
}
