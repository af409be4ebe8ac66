#pragma once

#include "shell/screens/guardedapplication.h"

#include <QtTest>

// QTEST_MAIN with the desk's own application object, so that a screen test sees
// what the desk does when a slot fails: the guard's message, not an ended process.
#define FENLARK_GUI_TEST_MAIN(TestObject)                                                                              \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        fenlark::GuardedApplication app(argc, argv);                                                                   \
        TestObject test;                                                                                               \
        QTEST_SET_MAIN_SOURCE_PATH                                                                                     \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
