#pragma once

#include <gtest/gtest.h>

#include "Yr/YrException.h"

namespace Morvelan::Testing {

// Runs `action` and expects it to throw `Exception` with exactly `message`
// and `errorCode`.
template <class Exception, class Action>
void ExpectYrException(Action&& action, const char* message, int errorCode) {
    try {
        action();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), message);
        EXPECT_EQ(e.GetErrorCode(), errorCode);
    }
}

// Whether a handler for `Catch` catches `exception` when it is thrown.
template <class Catch, class Thrown>
bool IsCaughtAs(const Thrown& exception) {
    try {
        throw exception;
    } catch (const Catch&) {
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace Morvelan::Testing
