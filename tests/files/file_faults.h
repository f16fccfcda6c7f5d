// The record of the shim file_faults.so, by which a program that it is preloaded into asks for faults. It
// is found by its name, `fileFaults`, and is for programs with one thread.
#ifndef VELK_TESTS_FILES_FILE_FAULTS_H
#define VELK_TESTS_FILES_FILE_FAULTS_H

constexpr int MostFileCalls = 256;

struct FileCall {
    const char *name; // of the function
    char object[32];  // last part of the path of the file that it works on, as far as one was said
};

struct FileFaults {
    bool isArmed; // calls pass uncounted while it is not
    int nth;      // the call that goes wrong, from 1; 0: none
    bool isShort; // if it moves bytes, half of them, and the next one like it fails with `error` if not 0
    int error;    // errno of the failure
    int count;    // calls so far
    int failed;   // the one of them that failed, 0: none did
    FileCall calls[MostFileCalls];
};

#endif
