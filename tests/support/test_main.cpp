#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#ifdef __SANITIZE_THREAD__
// GLib orders its threads by locks of its own, which the sanitizer does not see in a library that was
// built without it. What these libraries do among themselves is not ours to judge.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libgobject-2.0.so\n"
           "called_from_lib:libgio-2.0.so\n"
           "called_from_lib:libsecret-1.so\n";
}
#endif

// Every test program runs in a home of its own, so that none can read or soil the developer's.
int main(int argc, char** argv) {
    const halvane::test::TemporaryHome home;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
