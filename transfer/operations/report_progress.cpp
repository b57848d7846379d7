// Progress, for hosts that report steps of their own.
#include "transfer/operations/parts_of.h"

void dbTrans::regExProgress(void (*receiver)(int, int, int)) {
    exProgress = receiver;
}
void dbTrans::regImProgress(void (*receiver)(int, int, int)) {
    imProgress = receiver;
}

void dbTrans::progress(int stage, int total, int done) {
    chattransfer::progressOf(*this).report(stage, done, total);
}
