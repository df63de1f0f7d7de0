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

}  // namespace Morvelan::Testing
