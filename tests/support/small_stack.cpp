#include "support/small_stack.h"

#include <gtest/gtest.h>

#include <cstddef>

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace pellum::test {

namespace {

constexpr std::size_t stackSize = std::size_t{1} << 20;

void call(void* body) { (*static_cast<const std::function<void()>*>(body))(); }

}  // namespace

#if defined(_WIN32)

void onSmallStack(const std::function<void()>& body) {
    const auto run = [](void* argument) -> DWORD { return call(argument), 0; };
    void* const argument = const_cast<std::function<void()>*>(&body);
    const HANDLE thread =
        CreateThread(nullptr, stackSize, run, argument, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_TRUE(thread);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

#else

void onSmallStack(const std::function<void()>& body) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackSize), 0);
    pthread_t thread;
    const auto run = [](void* argument) -> void* { return call(argument), nullptr; };
    void* const argument = const_cast<std::function<void()>*>(&body);
    ASSERT_EQ(pthread_create(&thread, &attributes, run, argument), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

#endif

}  // namespace pellum::test
