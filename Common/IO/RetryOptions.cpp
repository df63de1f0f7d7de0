#include "Common/IO/RetryOptions.h"

#include "Common/IO/SharedDefault.h"

namespace Morvelan::Common::IO {
namespace {

constexpr Yr::UInt32 kDefaultRetryTimeout = 250;
constexpr Yr::UInt32 kDefaultRetryCount = 5;

constinit SharedDefault<RetryOptions> s_default;

}  // namespace

const RetryOptions& RetryOptions::GetDefault() {
    return s_default.Get([] { return RetryOptions(kDefaultRetryTimeout, kDefaultRetryCount); });
}

RetryOptions& RetryOptions::SetRetryTimeout(Yr::UInt32 retryTimeout) {
    m_retryTimeout = retryTimeout;
    return *this;
}

RetryOptions& RetryOptions::SetRetryCount(Yr::UInt32 retryCount) {
    m_retryCount = retryCount;
    return *this;
}

Yr::UniString RetryOptions::ToString() const {
    return Yr::UniString::Printf("RetryOptions (retry-timeout=%u, retry-count=%u)", m_retryTimeout,
                                 m_retryCount);
}

}  // namespace Morvelan::Common::IO
