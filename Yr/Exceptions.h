#pragma once

// The base layer's own exception family. Every inheritance is virtual, so a
// class reached along two paths (InterruptedIOException) holds one root.
#include "Yr/ExceptionMacros.h"

namespace Yr {

YR_DECLARE_EXCEPTION(GeneralException, YrException);
YR_DECLARE_EXCEPTION(IOException, GeneralException);
YR_DECLARE_EXCEPTION(IllegalArgumentException, GeneralException);
YR_DECLARE_EXCEPTION(NullReferenceException, GeneralException);
YR_DECLARE_EXCEPTION(IllegalReferenceException, GeneralException);
YR_DECLARE_EXCEPTION(ConversionErrorException, GeneralException);
YR_DECLARE_EXCEPTION(SynchronizationException, GeneralException);
YR_DECLARE_EXCEPTION(InterruptedException, GeneralException);
YR_DECLARE_EXCEPTION(OutOfMemoryException, YrException);
YR_DECLARE_EXCEPTION(EndOfInputException, IOException);
YR_DECLARE_EXCEPTION(DataIntegrityException, IOException);

class InterruptedIOException : public virtual IOException, public virtual InterruptedException {
public:
    InterruptedIOException(const UniString& message, const char* sourceFile, UInt32 line,
                           const YrException& cause, int errorCode);
    InterruptedIOException(const UniString& message, const char* sourceFile, UInt32 line,
                           int errorCode);
    InterruptedIOException(const char* message, const char* sourceFile, UInt32 line,
                           const YrException& cause, int errorCode);
    InterruptedIOException(const char* message, const char* sourceFile, UInt32 line, int errorCode);
    InterruptedIOException(const InterruptedIOException& other);
    InterruptedIOException(InterruptedIOException&& other) noexcept;
    ~InterruptedIOException() override;
    const char* GetName() const override;
    YrException* Clone() const override;
};

}  // namespace Yr
