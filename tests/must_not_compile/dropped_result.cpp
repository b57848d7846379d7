// Whoever does not look at the result goes on as if nothing had failed.
#include HEADER

void work() {
#ifdef MISTAKE
    CALL;
#else
    static_cast<void>(CALL);
#endif
}
