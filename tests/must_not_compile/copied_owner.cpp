// What owns a handle, a file, a database or a transaction has one owner.
#include HEADER

TYPE& original();

#ifdef MISTAKE
TYPE copy(original());
#else
TYPE& sameOne(original());
#endif
