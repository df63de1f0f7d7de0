#pragma once

namespace Morvelan::Common::IO {

// An all-or-nothing guard around file changes: active until Commit keeps
// the new state or Abort brings the previous one back.
class FileTransaction {
public:
    // Destroying an active transaction aborts it; only exceptions from outside
    // the base family escape, so the destructors may throw.
    virtual ~FileTransaction() noexcept(false) = default;
    virtual bool IsCommitted() const = 0;
    virtual bool IsAborted() const = 0;
    virtual void Commit() = 0;
    virtual void Abort() = 0;
};

}  // namespace Morvelan::Common::IO
