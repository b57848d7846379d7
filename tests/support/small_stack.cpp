#include "tests/support/small_stack.h"

#include <pthread.h>

#include <stdexcept>

namespace test {
namespace {

void* runWork(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

}  // namespace

void onSmallStack(const std::function<void()>& work, std::size_t size) {
    pthread_attr_t attributes{};
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    pthread_t thread{};
    std::function<void()> copy = work;
    const int failure = pthread_create(&thread, &attributes, runWork, &copy);
    pthread_attr_destroy(&attributes);
    if (failure != 0) throw std::runtime_error("no thread");
    pthread_join(thread, nullptr);
}

}  // namespace test
