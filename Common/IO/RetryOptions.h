#pragma once

#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Morvelan::Common::IO {

// How often and how patiently a file operation retries after "access denied".
class RetryOptions {
public:
    RetryOptions() = default;
    RetryOptions(Yr::UInt32 retryTimeout, Yr::UInt32 retryCount)
        : m_retryTimeout(retryTimeout), m_retryCount(retryCount) {}

    // Shared instance: 250 ms between tries, 5 further tries.
    static const RetryOptions& GetDefault();

    // Milliseconds to sleep between two tries.
    Yr::UInt32 GetRetryTimeout() const { return m_retryTimeout; }
    // Tries after the first one.
    Yr::UInt32 GetRetryCount() const { return m_retryCount; }
    RetryOptions& SetRetryTimeout(Yr::UInt32 retryTimeout);
    RetryOptions& SetRetryCount(Yr::UInt32 retryCount);

    // Any timeout and count make sense, so always true.
    bool IsValid() const { return true; }
    Yr::UniString ToString() const;

    bool operator==(const RetryOptions&) const = default;

private:
    Yr::UInt32 m_retryTimeout = 0;
    Yr::UInt32 m_retryCount = 0;
};

}  // namespace Morvelan::Common::IO
