/* Sets texts in a photo's XMP packet and saves it; for tests that judge the result from outside.
 *
 * usage: kivxmp_photo_editor PHOTO [PATH=TEXT]...
 *
 * Prints "saved" or "nothing to save", or why not, and then ends with 1. */

#ifndef KIVXMP_TESTS_PHOTO_EDITOR_H
#define KIVXMP_TESTS_PHOTO_EDITOR_H

/* The program, with arguments in UTF-8; they are changed. Returns its exit status. */
int RunPhotoEditor(int argc, char** argv);

#endif
